#pragma once

#include <map>
#include <optional>
#include <string>

namespace vantrel {

/// The entries of a property list's top-level dictionary whose values are strings.
using StringEntries = std::map<std::string, std::string, std::less<>>;

/// Property lists of other programs, by absolute path in UTF-8.
class PropertyLists {
public:
    virtual ~PropertyLists() = default;

    /// Reads a property list. Nothing when the file is missing, can't be read, or isn't a dictionary at the top.
    virtual std::optional<StringEntries> dictionaryWithContentsOfFile(const std::string& path) = 0;
};

}  // namespace vantrel

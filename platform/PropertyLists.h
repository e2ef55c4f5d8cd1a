#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Preferences.h"

namespace vantrel {

/// The entries of a property list's top-level dictionary.
using PropertyListEntries = std::map<std::string, PreferenceValue, std::less<>>;

/// Property lists of other programs.
class PropertyLists {
public:
    /// Reads the property list in the file at `path`, absolute and in UTF-8. Nothing when the file is missing, can't be
    /// read, or isn't a dictionary at the top.
    virtual std::optional<PropertyListEntries> dictionaryWithContentsOfFile(const std::string& path) = 0;

    /// Reads a property list from its bytes. Nothing when they are none, or no dictionary at the top.
    virtual std::optional<PropertyListEntries> dictionaryWithData(std::string_view bytes) = 0;

    /// `text`, UTF-8, as the content of a `<string>` that these functions read as `text` again.
    virtual std::string xmlText(std::string_view text) = 0;

protected:
    ~PropertyLists() = default;
};

}  // namespace vantrel

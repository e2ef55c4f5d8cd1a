#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel::gnustep {

/// How many containers may stand inside the one at the top, one in the other.
inline constexpr std::size_t deepestNesting = 128;

/// An entry of a property list's dictionary, as it stands in the file.
struct PropertyListEntry {
    /// Its key, with the tags.
    std::string keyElement;
    /// Its value, with the tags.
    std::string element;
    /// The name of the value's tag: "true", "string".
    std::string type;
    /// What the value's text means; nothing in a container.
    std::string text;
};

using PropertyListEntries = std::map<std::string, PropertyListEntry, std::less<>>;

/// The entries of the dictionary at the top of an XML property list, in any encoding that libxml2 knows; of a key that
/// comes twice, the last. Nothing when the XML is damaged, is no property list, has another top, declares something of
/// its own, or is nested more deeply than `deepestNesting`.
std::optional<PropertyListEntries> entriesFromXML(std::string_view xml);

}  // namespace vantrel::gnustep

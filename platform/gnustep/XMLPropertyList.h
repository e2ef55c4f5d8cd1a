#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantrel::gnustep {

/// How many containers may stand inside the one at the top, one in the other.
inline constexpr std::size_t deepestNesting = 128;

/// Where an entry of the dictionary at the top stands in the XML.
struct PropertyListEntry {
    /// Its `<key>`.
    std::uint32_t start;
    /// The text of its key: in the XML, or in `XMLPropertyList::names` when the XML has it in other characters.
    std::uint32_t name;
    std::uint32_t nameLength : 31;
    std::uint32_t isNamedApart : 1;
    /// Its value, with the tags.
    std::uint32_t value;
    std::uint32_t end;
};

/// Notes the key of `entry`, whose start is known and which is written as `element`. Where it doesn't stand in there as
/// it is, appends it to `names`.
void setName(PropertyListEntry& entry, std::string_view element, std::string& names);

struct XMLPropertyList {
    /// In the order of the XML.
    std::vector<PropertyListEntry> entries;
    std::string names;
    /// Where the dictionary's closing tag starts; in `<dict/>`, the slash.
    std::uint32_t dictionaryEnd = 0;
};

/// Finds the entries of the dictionary at the top of an XML property list in UTF-8. Nothing when the XML is damaged, is
/// no property list, has another top, declares something of its own, or is nested more deeply than `deepestNesting`.
/// What it takes grows with the length of `xml` and not faster.
std::optional<XMLPropertyList> readXMLPropertyList(std::string_view xml);

/// What a text, a number or a key means, of which `element` is the sound XML, with its tags.
std::string textOf(std::string_view element);

}  // namespace vantrel::gnustep

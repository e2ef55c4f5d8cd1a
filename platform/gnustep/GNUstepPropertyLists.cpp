#include "platform/gnustep/GNUstepPropertyLists.h"

#include "platform/gnustep/PropertyList.h"
#include "platform/gnustep/XMLText.h"
#include "platform/posix/FileContents.h"

namespace vantrel::gnustep {
namespace {

/// What is read becomes a map, with a hundred bytes for each of its strings.
constexpr std::size_t largestFile = std::size_t{4} * 1024 * 1024;

}  // namespace

std::optional<PropertyListEntries> GNUstepPropertyLists::dictionaryWithContentsOfFile(const std::string& path) {
    const auto contents = posix::contentsOfFile(calls_, path, largestFile);
    return contents ? dictionaryWithData(*contents) : std::nullopt;
}

std::optional<PropertyListEntries> GNUstepPropertyLists::dictionaryWithData(std::string_view bytes) {
    if (bytes.size() > largestFile) return std::nullopt;
    const auto list = PropertyList::parse(std::string(bytes));
    if (!list) return std::nullopt;
    PropertyListEntries entries;
    for (const auto& key : list->keys()) entries.emplace(key, list->value(key));
    return entries;
}

std::string GNUstepPropertyLists::xmlText(std::string_view text) {
    std::string xml;
    appendText(xml, text);
    return xml;
}

}  // namespace vantrel::gnustep

#include "platform/gnustep/GNUstepPropertyLists.h"

#include "platform/gnustep/PropertyList.h"
#include "platform/posix/FileContents.h"

namespace vantrel::gnustep {

std::optional<StringEntries> GNUstepPropertyLists::dictionaryWithContentsOfFile(const std::string& path) {
    const auto contents = posix::contentsOfFile(calls_, path, largestPropertyList);
    const auto list = contents ? PropertyList::parse(*contents) : std::nullopt;
    if (!list) return std::nullopt;

    StringEntries strings;
    for (const auto& key : list->keys()) {
        const PreferenceValue value = list->value(key);
        if (const auto* text = std::get_if<std::string>(&value)) strings.emplace(key, *text);
    }
    return strings;
}

}  // namespace vantrel::gnustep

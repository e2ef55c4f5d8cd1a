#include "platform/gnustep/GNUstepPropertyLists.h"

#include <utility>

#include "platform/gnustep/PropertyList.h"
#include "platform/posix/FileContents.h"

namespace vantrel::gnustep {
namespace {

/// What is read becomes a map, with a hundred bytes for each of its strings.
constexpr std::size_t largestFile = std::size_t{4} * 1024 * 1024;

}  // namespace

std::optional<StringEntries> GNUstepPropertyLists::dictionaryWithContentsOfFile(const std::string& path) {
    auto contents = posix::contentsOfFile(calls_, path, largestFile);
    const auto list = contents ? PropertyList::parse(std::move(*contents)) : std::nullopt;
    if (!list) return std::nullopt;

    StringEntries strings;
    for (const auto& key : list->keys()) {
        const PreferenceValue value = list->value(key);
        if (const auto* text = std::get_if<std::string>(&value)) strings.emplace(key, *text);
    }
    return strings;
}

}  // namespace vantrel::gnustep

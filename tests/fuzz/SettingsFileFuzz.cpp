#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "platform/gnustep/GNUstepPreferences.h"
#include "platform/gnustep/GNUstepPropertyLists.h"
#include "platform/memory/Journal.h"
#include "platform/memory/MemorySystem.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/platform/posix/SystemCallsWithOwnClock.h"
#include "tests/platform/posix/TemporaryFolder.h"

using namespace vantrel;

/// The texts among a list's entries.
static std::map<std::string, std::string> textsOf(const PropertyListEntries& entries) {
    std::map<std::string, std::string> texts;
    for (const auto& [key, value] : entries) {
        if (const auto* text = std::get_if<std::string>(&value)) texts.emplace(key, *text);
    }
    return texts;
}

/// Whatever is in the settings file: a click reaches it, and every entry that could be read stays. The same file as
/// Final Cut Pro's version record has the same texts before and after.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const posix::TemporaryFolder folder;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    folder.write("domain.plist", bytes);
    const auto before = gnustep::PropertyList::parse(bytes);

    posix::SystemCallsWithOwnClock calls;
    gnustep::GNUstepPropertyLists records(calls);
    auto entries = records.dictionaryWithContentsOfFile(folder / "domain.plist");
    gnustep::require(entries.has_value() == before.has_value(), "both read the same files");

    memory::Journal journal;
    memory::MemoryLog log(journal);
    gnustep::GNUstepPreferences preferences(folder.path, log, calls);
    preferences.copyAppValue("FormatRGB8", "domain");
    preferences.setAppValue("FormatRGB8", static_cast<long>(size), "domain");
    gnustep::require(preferences.synchronize("domain"), "a click reaches the file");

    const auto after = gnustep::PropertyList::parse(folder.read("domain.plist"));
    gnustep::require(after && after->holds("FormatRGB8", static_cast<long>(size)), "the file has what was clicked");
    if (!before) {
        std::filesystem::remove_all(folder.path);
        folder.makeFolder("");
        return 0;
    }
    gnustep::requireSameEntries(*before, *after, "FormatRGB8");
    entries->erase("FormatRGB8");
    const auto entriesAfter = records.dictionaryWithContentsOfFile(folder / "domain.plist");
    // A binary list whose entries share what they hold can be too long for a version record once it is XML.
    constexpr std::size_t longestRecord = std::size_t{4} << 20;
    const bool isTooLong = after->bytes().size() > longestRecord;
    gnustep::require(isTooLong || (entriesAfter && textsOf(*entriesAfter) == textsOf(*entries)), "the texts stay");
    return 0;
}

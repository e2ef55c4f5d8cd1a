#include <cstddef>
#include <cstdint>

#include "platform/gnustep/GNUstepPreferences.h"
#include "platform/gnustep/GNUstepPropertyLists.h"
#include "platform/memory/Journal.h"
#include "platform/memory/MemorySystem.h"
#include "tests/fuzz/Fuzzing.h"
#include "tests/platform/posix/SystemCallsWithOwnClock.h"
#include "tests/platform/posix/TemporaryFolder.h"

using namespace vantrel;

/// Whatever is in the settings file: a click reaches it, and every entry that could be read stays. The same file as
/// Final Cut Pro's version record has the same texts before and after.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const posix::TemporaryFolder folder;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    folder.write("domain.plist", bytes);
    const auto before = gnustep::PropertyList::parse(bytes);

    posix::SystemCallsWithOwnClock calls;
    gnustep::GNUstepPropertyLists records(calls);
    auto texts = records.dictionaryWithContentsOfFile(folder / "domain.plist");
    gnustep::require(texts.has_value() == before.has_value(), "both read the same files");

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
    texts->erase("FormatRGB8");
    gnustep::require(records.dictionaryWithContentsOfFile(folder / "domain.plist") == texts, "the texts stay");
    return 0;
}

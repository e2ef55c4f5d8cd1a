#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>

#import "overrides/KVRXMetadataDictionary/MetadataDictionary.h"
#include "overrides/KVRXMetadataDictionary/OverrideRecord.h"
#import "platform/cocoa/CocoaFolders.h"
#include "tests/fuzz/Fuzzing.h"

using namespace vantrel::gnustep;

/// Whatever is in the override record: the library has objects for what it can, and a number that is stored changes one
/// entry and no other. Damaged records are left out: each is waited for, in case somebody is just writing it. So are
/// those that are too long.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    const auto before = PropertyList::parse(bytes);
    if (!before) return 0;
    // A binary list whose entries share what they hold can be too long once it is XML.
    constexpr std::string_view added = "\n\t<key>CPUM</key>\n\t<integer>4096</integer>";
    if (before->bytes().size() + added.size() > vantrel::largestRecord) return 0;

    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    static const std::string folder = vantrel::cocoa::applicationSupportFolder() + "/Vantrel";
    static const std::string path = folder + "/OverrideMetadata.plist";
    std::filesystem::create_directories(folder);
    std::ofstream(path, std::ios::binary) << bytes;

    MetadataDictionary *overrides = [[[MetadataDictionary alloc] initFromOverride] autorelease];
    require(overrides && [overrides metadata], "a sound record gives an instance");
    [overrides addObject:[NSNumber numberWithInt:static_cast<int>(size)] withKey:@"CPUM"];
    require([overrides writeToOverride:nullptr], "a number reaches the record");
    [pool release];

    std::ifstream file(path, std::ios::binary);
    const auto after = PropertyList::parse({std::istreambuf_iterator<char>(file), {}});
    require(after && after->holds("CPUM", static_cast<long>(size)), "the record has the number");
    requireSameEntries(*before, *after, "CPUM");
    return 0;
}

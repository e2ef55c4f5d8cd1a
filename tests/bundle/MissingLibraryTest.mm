#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#import "tests/bundle/Host.h"

namespace vantrel::host {
namespace {

namespace fs = std::filesystem;

using testing::IsEmpty;

TEST(MissingLibrary, ThePaneOpensStoresItsSettingsAndLeavesTheControlsOfTheOverridesAlone) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    emptyHome();
    const Pane pane;
    EXPECT_EQ(NSClassFromString(@"MetadataDictionary"), Class(Nil));
    EXPECT_EQ([pane.variable("filter422To444") state], NSOffState);
    EXPECT_EQ([pane.variable("decodeThreads") indexOfSelectedItem], 0);

    pane.set("filter422To444", NSOnState);
    pane.choose("decodeThreads", 1);
    EXPECT_EQ([pane.variable("filter422To444") state], NSOnState);
    EXPECT_EQ([pane.variable("decodeThreads") indexOfSelectedItem], 1);
    EXPECT_THAT(overrideRecord(), IsEmpty());

    pane.set("fmtRGB8Bit", NSOffState);
    EXPECT_EQ(domainFile()["FormatRGB8"], "bool 0");
    [pool release];
}

/// A copy of the bundle with a library that can't be loaded, so that one that is installed on this machine isn't
/// found in its place.
void copyBundle() {
    fs::remove_all(bundlePath());
    fs::create_directories(fs::path(bundlePath()).parent_path());
    fs::copy(BUILT_BUNDLE_PATH, bundlePath(), fs::copy_options::recursive);
    std::ofstream(bundlePath() + "/libKVRXMetadataDictionary.so.1", std::ios::trunc).flush();
}

}  // namespace
}  // namespace vantrel::host

int main(int argc, char **argv) {
    vantrel::host::copyBundle();
    return vantrel::host::runTests(argc, argv);
}

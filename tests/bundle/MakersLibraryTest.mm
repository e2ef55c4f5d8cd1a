// What the pane with macOS's services does with what it finds where the maker's library is installed. A library that
// was loaded stays in the process, so each of these tests runs in one of its own.
#include <dlfcn.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#import "tests/bundle/Host.h"
#include "tests/host/PrivateMachine.h"

namespace vantrel::host {
namespace {

using testing::Pair;
using testing::UnorderedElementsAre;

std::string library(const std::string &name) {
    return std::getenv("VANTREL_MAKERS_LIBRARIES") + ("/" + name);
}

class MakersLibrary : public testing::Test {
   protected:
    MakersLibrary() {
        std::filesystem::remove_all(home() + "/Defaults");
        std::filesystem::create_directories(home() + "/Defaults");
        writeOverrideRecord([NSDictionary dictionaryWithObjectsAndKeys:[NSNumber numberWithInt:1], @"CLSF",
                                                                       [NSNumber numberWithInt:2], @"CPUM", nil]);
    }
    /// Expects both controls to be as the interface file has them, and clicks on them to store nothing.
    void expectNoRecord() {
        const auto before = overrideRecord();
        const Pane pane;
        EXPECT_EQ([pane.variable("filter422To444") state], NSOffState);
        EXPECT_EQ([pane.variable("decodeThreads") indexOfSelectedItem], 0);

        pane.click("filter422To444");
        pane.choose("decodeThreads", 1);
        EXPECT_EQ([pane.variable("filter422To444") state], NSOnState);
        EXPECT_EQ([pane.variable("decodeThreads") indexOfSelectedItem], 1);
        EXPECT_EQ(overrideRecord(), before);
    }
};

TEST_F(MakersLibrary, ThatIsNotThereLeavesTheControlsAsTheyAre) {
    expectNoRecord();
}

TEST_F(MakersLibrary, ThatIsATextLeavesTheControlsAsTheyAre) {
    std::ofstream(home() + "/text") << "KVRXMetadataDictionary\n";
    installMakersLibrary(home() + "/text");
    expectNoRecord();
}

TEST_F(MakersLibrary, WithAnotherClassLeavesTheControlsAsTheyAre) {
    installMakersLibrary(library("libAnotherClass.so"));
    expectNoRecord();
}

TEST_F(MakersLibrary, WhoseClassLacksASelectorLeavesTheControlsAsTheyAre) {
    installMakersLibrary(library("libLacksASelector.so"));
    expectNoRecord();
}

TEST_F(MakersLibrary, ThatLacksAFunctionIsRefusedBeforeItIsCalled) {
    installMakersLibrary(library("libLacksAFunction.so"));
    expectNoRecord();
}

TEST_F(MakersLibrary, WhoseClassWasThereBeforeFromElsewhereIsNotUsed) {
    ASSERT_TRUE(dlopen(library("libWhole.so").c_str(), RTLD_NOW)) << dlerror();
    installMakersLibrary(library("libWhole.so"));
    expectNoRecord();
}

TEST_F(MakersLibrary, ThatIsWholeIsShownAndWrittenThrough) {
    installMakersLibrary(library("libWhole.so"));
    const Pane pane;
    EXPECT_EQ([pane.variable("filter422To444") state], NSOnState);
    EXPECT_EQ([pane.variable("decodeThreads") indexOfSelectedItem], 2);

    pane.click("filter422To444");
    pane.choose("decodeThreads", 3);
    EXPECT_THAT(overrideRecord(), UnorderedElementsAre(Pair("CLSF", "number 0"), Pair("CPUM", "number 3")));
}

}  // namespace
}  // namespace vantrel::host

int main(int argc, char **argv) {
    vantrel::PrivateMachine::enter();
    return vantrel::host::runTests(argc, argv);
}

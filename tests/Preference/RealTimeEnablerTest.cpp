#include <gmock/gmock.h>

#include "tests/Preference/ValidDomain.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(RealTimeEnabler, TheCheckBoxShowsTheKeyWhateverTheFilesAre) {
    for (const bool stored : {true, false}) {
        ValidPane it;
        it.domain()["fcpRTEnableSwap"] = stored;
        it.files.contents[std::string(enablerPaths::active)] = "Apple's";
        if (!stored) it.files.contents[std::string(enablerPaths::backup)] = "Apple's";
        it.load();
        EXPECT_EQ(it.box("fcpRTEnable").shown, stored ? onState : offState);
        EXPECT_THAT(it.journal.linesStarting("exists"), IsEmpty());
    }
}

TEST(RealTimeEnabler, AMissingKeyIsShownOffAndWrittenFalseWithoutASynchronise) {
    ValidPane it;
    it.domain().erase("fcpRTEnableSwap");
    it.box("fcpRTEnable").shown = onState;
    it.box("fcpRTEnable").enabled = false;
    it.load();
    EXPECT_EQ(it.box("fcpRTEnable").shown, offState);
    EXPECT_TRUE(it.box("fcpRTEnable").enabled);
    EXPECT_THAT(it.journal.preferenceChanges(), ElementsAre("write fcpRTEnableSwap = false"));
}

TEST(RealTimeEnabler, AClickSwapsTheFilesAndIsRemembered) {
    ValidPane it;
    it.propertyLists.dictionaries[std::string(enablerPaths::versionRecord)] = {{"CFBundleVersion", "7.0.3"}};
    it.files.contents = {{enablerPaths::versionEnabler("703"), "ours"}, {std::string(enablerPaths::active), "Apple's"}};
    it.domain().erase("fcpRTEnableSwap");
    it.load();
    it.box("fcpRTEnable").shown = onState;
    it.pane.realTimeEnablerClicked(it.box("fcpRTEnable"));
    EXPECT_EQ(it.files.contents[std::string(enablerPaths::active)], "ours");
    EXPECT_EQ(contents(it.preferences.synchronizedDomain("com.vantrel.codec"))["fcpRTEnableSwap"], "true");
}

TEST(RealTimeEnabler, TheActionWorksOnTheSender) {
    ValidPane it;
    it.load();
    MemoryCheckBox sender{it.journal, "sender"};
    sender.shown = onState;
    it.box("fcpRTEnable").shown = onState;
    it.pane.realTimeEnablerClicked(sender);
    EXPECT_EQ(sender.shown, offState);
    EXPECT_EQ(it.box("fcpRTEnable").shown, onState);
}

/// A refused click leaves the key, so the next pane shows what it shows.
TEST(RealTimeEnabler, AfterARefusedClickTheNextSetUpShowsTheOldKey) {
    ValidPane it;
    it.load();
    it.box("fcpRTEnable").shown = offState;
    it.pane.realTimeEnablerClicked(it.box("fcpRTEnable"));
    EXPECT_EQ(it.journal.lines().back(), "fcpRTEnable setState 0");
    EXPECT_THAT(it.journal.linesStarting("alert"), ElementsAre("alert Could not find any FCP installation"));
    it.pane.mainViewDidLoad();
    EXPECT_EQ(it.box("fcpRTEnable").shown, onState);
}

}  // namespace
}  // namespace vantrel::memory

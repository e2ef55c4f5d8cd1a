#include <gmock/gmock.h>

#include "tests/Preference/ValidDomain.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(StereoStatus, EveryClickIsWrittenSynchronisedLoggedAndPostedInThisOrder) {
    for (const auto& [state, written] : {std::pair{onState, "true"}, std::pair{offState, "false"},
                                         std::pair{mixedState, "true"}, std::pair{256L, "false"}}) {
        ValidPane it;
        it.load();
        it.journal.clear();
        it.box("_showStereoStatus").shown = state;
        it.pane.stereoStatusClicked(it.box("_showStereoStatus"));
        EXPECT_THAT(
            it.journal.lines(),
            ElementsAre(std::string("write ShowStereoStatusMenu = ") + written, "synchronize", "log post notification",
                        "post StereoStatusMenuViewChanged from com.vantrel.PreferencePane at once"));
    }
}

TEST(StereoStatus, AClickThatChangesNothingIsAnnouncedToo) {
    ValidPane it;
    it.load();
    it.pane.stereoStatusClicked(it.box("_showStereoStatus"));
    it.pane.stereoStatusClicked(it.box("_showStereoStatus"));
    EXPECT_THAT(it.journal.linesStarting("post"), testing::SizeIs(2));
}

TEST(StereoStatus, TheActionAsksTheSender) {
    ValidPane it;
    it.load();
    MemoryCheckBox sender{it.journal, "sender"};
    sender.shown = onState;
    it.pane.stereoStatusClicked(sender);
    EXPECT_EQ(contents(it.domain())["ShowStereoStatusMenu"], "true");
}

TEST(StereoStatus, AFailedSynchroniseIsAnnouncedAllTheSame) {
    ValidPane it;
    it.load();
    it.preferences.synchronizes = false;
    it.pane.stereoStatusClicked(it.box("_showStereoStatus"));
    EXPECT_THAT(it.journal.linesStarting("post"), testing::SizeIs(1));
}

TEST(StereoStatus, TheSetUpPostsNothingEvenWhereItWritesTheDefault) {
    for (const auto& fault : faultsOfAFlag) {
        SCOPED_TRACE(fault.name);
        ValidPane it;
        put(it.domain(), "ShowStereoStatusMenu", fault);
        it.load();
        EXPECT_EQ(it.box("_showStereoStatus").shown, onState);
        EXPECT_THAT(it.journal.preferenceChanges(), ElementsAre("write ShowStereoStatusMenu = true", "synchronize"));
        EXPECT_THAT(it.journal.linesStarting("post"), IsEmpty());
        EXPECT_THAT(it.journal.linesStarting("log"), IsEmpty());
    }
}

}  // namespace
}  // namespace vantrel::memory

#include <gmock/gmock.h>

#include "tests/Preference/ValidDomain.h"
#include "tests/Rules.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;

// Stages

struct Stage : Rule {
    SettingsKey key;
    long mask;

    std::string name() const { return std::string(key.name); }
};

struct StageCheckBox : testing::TestWithParam<Stage> {
    /// Clicks the box with `path` stored, and returns what is stored then.
    static std::string pathAfter(long state, const PreferenceValue& path) {
        ValidPane it;
        put(it.domain(), "ColorProcessingPath", {"", path});
        it.load();
        it.click(GetParam().key, state);
        return contents(it.preferences.synchronizedDomain("com.vantrel.codec"))["ColorProcessingPath"];
    }
};

TEST_P(StageCheckBox, WritesItsKeyThenItsBitAndSynchronisesOnce) {
    ValidPane it;
    it.load();
    it.journal.clear();
    it.click(GetParam().key, onState);
    it.click(GetParam().key, offState);
    EXPECT_THAT(it.journal.lines(), ElementsAre("write " + GetParam().name() + " = true", "read ColorProcessingPath",
                                                pathWritten(0x300001 | GetParam().mask), "synchronize",
                                                "write " + GetParam().name() + " = false", "read ColorProcessingPath",
                                                pathWritten(0x300001), "synchronize"));
}

TEST_P(StageCheckBox, SwitchedOffKeepsTheBitsOfAllOthers) {
    EXPECT_EQ(pathAfter(offState, Number{0x7FFFFFFF}), std::to_string(0x7FFFFFFF & ~GetParam().mask));
}

TEST_P(StageCheckBox, SwitchedOnWithoutAPathStoresItsBitAndBit0) {
    for (const PreferenceValue& path : {PreferenceValue(Absent{}), PreferenceValue(true), PreferenceValue(OtherType{}),
                                        PreferenceValue(unreadableNumber), PreferenceValue(std::string("46"))}) {
        EXPECT_EQ(pathAfter(onState, path), std::to_string(GetParam().mask | 1)) << describeStored(path);
    }
}

TEST_P(StageCheckBox, SwitchedOffWithoutAPathStoresZero) {
    for (const PreferenceValue& path : {PreferenceValue(Absent{}), PreferenceValue(true), PreferenceValue(OtherType{}),
                                        PreferenceValue(unreadableNumber), PreferenceValue(std::string("46"))}) {
        EXPECT_EQ(pathAfter(offState, path), "0") << describeStored(path);
    }
}

TEST_P(StageCheckBox, GoesByTheLowestByteOfTheSendersState) {
    for (const auto& [state, written] : {std::pair{mixedState, "true"}, std::pair{256L, "false"}}) {
        ValidPane it;
        it.load();
        MemoryCheckBox sender{it.journal, "sender"};
        sender.shown = state;
        it.box(GetParam().key.outlet).shown = state == mixedState ? offState : onState;
        it.pane.clicked(sender, GetParam().key);
        EXPECT_EQ(contents(it.domain())[GetParam().name()], written);
    }
}

TEST_P(StageCheckBox, ShowsItsKeyWhateverItsBit) {
    for (const bool flag : {true, false}) {
        ValidPane it;
        it.domain()[GetParam().name()] = flag;
        it.domain()["ColorProcessingPath"] = Number{flag ? 0 : 0x2F};
        it.load();
        EXPECT_EQ(it.box(GetParam().key.outlet).shown, flag ? onState : offState);
        EXPECT_THAT(it.journal.preferenceChanges(), ElementsAre());
    }
}

/// Unlike the action, the set-up doesn't add bit 0.
TEST_P(StageCheckBox, MissingAtSetUpAddsItsBitWithoutBit0) {
    ValidPane it;
    it.domain().erase(GetParam().name());
    it.domain().erase("ColorProcessingPath");
    it.load();
    EXPECT_THAT(it.journal.preferenceChanges(),
                ElementsAre("write " + GetParam().name() + " = true", pathWritten(GetParam().mask), "synchronize"));
}

INSTANTIATE_TEST_SUITE_P(ColorProcessing, StageCheckBox,
                         testing::Values(Stage{{"ColorMatrix"}, key("colorMatrix"), 0x2},
                                         Stage{{"WhiteBalance"}, key("whiteBalance"), 0x4},
                                         Stage{{"Look"}, key("look"), 0x8}, Stage{{"Gamma"}, key("gamma"), 0x20}),
                         ByRule());

TEST(ColorProcessing, AMissingStageIsAddedToTheStoredPath) {
    ValidPane it;
    it.domain()["ColorProcessingPath"] = Number{0x1};
    it.domain().erase("look");
    it.load();
    EXPECT_EQ(contents(it.domain())["ColorProcessingPath"], "9");
}

TEST(ColorProcessing, AMissingStageKeepsTheBitsOfTheStoredPathAboveBit31) {
    ValidPane it;
    it.domain()["ColorProcessingPath"] = storedInteger(0x100000001);
    it.domain().erase("look");
    it.load();
    const std::int64_t expected = sizeof(long) == 8 ? 0x100000009 : 0x8;
    EXPECT_EQ(contents(it.domain())["ColorProcessingPath"], std::to_string(expected));
}

// Demosaic methods

struct Demosaic : Rule {
    SettingsKey key;
    int shift;

    std::string name() const { return std::string(key.name); }
};

struct DemosaicPopUp : testing::TestWithParam<Demosaic> {
    static long field(long method) { return method << GetParam().shift; }

    /// Chooses an item and returns what is stored under `key` then.
    static std::string storedAfter(long index, const PreferenceValue& path, const std::string& key) {
        ValidPane it;
        put(it.domain(), "ColorProcessingPath", {"", path});
        it.load();
        it.choose(GetParam().key, index);
        return contents(it.preferences.synchronizedDomain("com.vantrel.codec"))[key];
    }
};

TEST_P(DemosaicPopUp, WritesItsKeyThenItsFieldAndSynchronisesOnce) {
    ValidPane it;
    it.domain()["ColorProcessingPath"] = Number{0x2F};
    it.load();
    it.journal.clear();
    it.choose(GetParam().key, 2);
    EXPECT_THAT(it.journal.lines(), ElementsAre("write " + GetParam().name() + " = 2", "read ColorProcessingPath",
                                                pathWritten(0x2F | field(2)), "synchronize"));
}

TEST_P(DemosaicPopUp, StoresTheLowFourBitsOfItsIndex) {
    for (const auto& [index, method] :
         {std::pair{0L, 0L}, std::pair{1L, 1L}, std::pair{15L, 15L}, std::pair{16L, 0L}, std::pair{17L, 1L},
          std::pair{-1L, 0L}, std::pair{-2L, 0L}, std::pair{static_cast<long>(0x80000003LL), 0L}}) {
        EXPECT_EQ(storedAfter(index, Number{0x2E}, GetParam().name()), std::to_string(method)) << index;
        EXPECT_EQ(storedAfter(index, Number{0x2E}, "ColorProcessingPath"), std::to_string(0x2E | field(method)))
            << index;
    }
}

TEST_P(DemosaicPopUp, ReplacesItsFieldAlone) {
    EXPECT_EQ(storedAfter(0, Number{0x7FFFFFFF}, "ColorProcessingPath"), std::to_string(0x7FFFFFFF & ~field(15)));
    EXPECT_EQ(storedAfter(6, Number{0x7FFFFFFF}, "ColorProcessingPath"), std::to_string(0x7FFFFFFF & ~field(9)));
}

TEST_P(DemosaicPopUp, StandsAloneWithoutAPath) {
    for (const PreferenceValue& path : {PreferenceValue(Absent{}), PreferenceValue(true), PreferenceValue(OtherType{}),
                                        PreferenceValue(unreadableNumber), PreferenceValue(std::string("46"))}) {
        EXPECT_EQ(storedAfter(3, path, "ColorProcessingPath"), std::to_string(field(3))) << describeStored(path);
    }
}

TEST_P(DemosaicPopUp, DropsTheBitsAboveBit31) {
    const std::int64_t expected = sizeof(long) == 8 ? 0x2F | field(3) : field(3);
    EXPECT_EQ(storedAfter(3, storedInteger(0x12345670000002F), "ColorProcessingPath"), std::to_string(expected));
}

TEST_P(DemosaicPopUp, AsksTheSender) {
    ValidPane it;
    it.load();
    MemoryPopUpButton sender{it.journal, "sender"};
    sender.selected = 5;
    it.menu(GetParam().key.outlet).selected = 6;
    it.pane.chosen(sender, GetParam().key);
    EXPECT_EQ(contents(it.domain())[GetParam().name()], "5");
}

TEST_P(DemosaicPopUp, ShowsItsKeyUnchecked) {
    for (const long index : {0L, 4L, 17L, -1L}) {
        ValidPane it;
        it.domain()[GetParam().name()] = Number{index};
        it.load();
        EXPECT_EQ(it.menu(GetParam().key.outlet).selected, index);
        EXPECT_THAT(it.journal.preferenceChanges(), ElementsAre());
    }
}

TEST_P(DemosaicPopUp, ShowsTheWholeLong) {
    ValidPane it;
    it.domain()[GetParam().name()] = storedInteger(0x100000002);
    it.load();
    EXPECT_EQ(it.menu(GetParam().key.outlet).selected, sizeof(long) == 8 ? static_cast<long>(0x100000002LL) : 0);
}

TEST_P(DemosaicPopUp, ShowsItsKeyWhateverItsField) {
    ValidPane it;
    it.domain()[GetParam().name()] = Number{2};
    it.domain()["ColorProcessingPath"] = Number{0};
    it.load();
    EXPECT_EQ(it.menu(GetParam().key.outlet).selected, 2);
    EXPECT_EQ(contents(it.domain())["ColorProcessingPath"], "0");
}

INSTANTIATE_TEST_SUITE_P(ColorProcessing, DemosaicPopUp,
                         testing::Values(Demosaic{{"Presentation"}, key("8bitDebayer"), 16},
                                         Demosaic{{"Render"}, key("RenderDebayer"), 20}),
                         ByRule());

TEST(ColorProcessing, TheDemosaicItemsAreTheInterfaceFiles) {
    MemoryPane it;
    it.menu("presentationDemosaic").items = {"one", "two"};
    it.menu("renderDemosaic").items = {"three"};
    it.load();
    EXPECT_THAT(it.menu("presentationDemosaic").items, ElementsAre("one", "two"));
    EXPECT_THAT(it.menu("renderDemosaic").items, ElementsAre("three"));
}

}  // namespace
}  // namespace vantrel::memory

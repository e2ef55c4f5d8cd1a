#include <gmock/gmock.h>

#include "settings/SettingsStore.h"
#include "tests/StoredValues.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;
using testing::Pair;

struct SettingsStoreTest : testing::Test {
    MemoryPreferences::Domain& domain() { return preferences.domain("com.vantrel.codec"); }
    std::string stored(const std::string& key) { return contents(domain())[key]; }

    Journal journal;
    MemoryPreferences preferences{journal};
    SettingsStore store{preferences};
};

// Reads and repairs

TEST_F(SettingsStoreTest, AReadWritesNothing) {
    EXPECT_TRUE(*store.read(key("FormatRGB8")).flag());
    EXPECT_THAT(journal.lines(), ElementsAre("read FormatRGB8"));
}

TEST_F(SettingsStoreTest, ARepairStoresTheDefaultAndNeverSynchronises) {
    const Reading reading = store.repair(key("FormatRGB8"));
    EXPECT_TRUE(*reading.flag());
    EXPECT_TRUE(reading.synchronizes);
    EXPECT_THAT(journal.lines(), ElementsAre("read FormatRGB8", "write FormatRGB8 = true"));
}

TEST_F(SettingsStoreTest, ARepairedStageWhoseBitNobodyAsksForIsRepairedAlone) {
    EXPECT_TRUE(*store.repair(key("look")).flag());
    EXPECT_THAT(journal.lines(), ElementsAre("read look", "write look = true"));
}

TEST_F(SettingsStoreTest, AValidKeyNeedsNoRepair) {
    domain()["FormatRGB8"] = false;
    const Reading reading = store.repair(key("FormatRGB8"));
    EXPECT_FALSE(*reading.flag());
    EXPECT_FALSE(reading.repair);
    EXPECT_THAT(journal.lines(), ElementsAre("read FormatRGB8"));
}

TEST_F(SettingsStoreTest, EveryReadIsFresh) {
    domain()["look"] = true;
    EXPECT_TRUE(*store.read(key("look")).flag());
    domain()["look"] = false;
    EXPECT_FALSE(*store.read(key("look")).flag());
}

// Changes, by what a key's row says

TEST_F(SettingsStoreTest, AChangedFlagIsWrittenAndSynchronised) {
    store.change(key("FormatRGB8"), false);
    EXPECT_THAT(journal.lines(), ElementsAre("write FormatRGB8 = false", "synchronize"));
}

TEST_F(SettingsStoreTest, AChangedTextIsWrittenAndSynchronised) {
    store.change(key("LUTsPath"), std::string());
    EXPECT_THAT(journal.lines(), ElementsAre("write LUTsPath = \"\"", "synchronize"));
}

TEST_F(SettingsStoreTest, AChangedStageTakesItsBitAlongAndSynchronisesOnce) {
    store.change(key("gamma"), true);
    EXPECT_THAT(journal.lines(), ElementsAre("write gamma = true", "read ColorProcessingPath",
                                             "write ColorProcessingPath = 33", "synchronize"));
}

TEST_F(SettingsStoreTest, WhatIsOfAnotherTypeThanItsKeyIsStoredWithoutBits) {
    store.change(key("gamma"), 2L);
    store.change(key("RenderDebayer"), true);
    EXPECT_THAT(journal.lines(),
                ElementsAre("write gamma = 2", "synchronize", "write RenderDebayer = true", "synchronize"));
}

TEST_F(SettingsStoreTest, AChangedMethodTakesItsFieldAlongAndSynchronisesOnce) {
    domain()["ColorProcessingPath"] = Number{0x2F};
    store.change(key("RenderDebayer"), 2L);
    EXPECT_THAT(journal.lines(), ElementsAre("write RenderDebayer = 2", "read ColorProcessingPath",
                                             "write ColorProcessingPath = " + std::to_string(0x20002F), "synchronize"));
}

TEST_F(SettingsStoreTest, AMenusIndexIsHeldToItsBitsAndARowIsNot) {
    for (const auto& [index, method, limit, row] :
         {std::tuple{17L, "1", "17", "17"}, std::tuple{32L, "0", "0", "32"}, std::tuple{-1L, "0", "0", "-1"},
          std::tuple{static_cast<long>(0x1FFFFFFFELL), "0", "0", "-2"}}) {
        store.change(key("8bitDebayer"), index);
        store.change(key("MaxEncodeThreads"), index);
        store.change(key("QTGammaCorrection"), index);
        EXPECT_EQ(stored("8bitDebayer"), method);
        EXPECT_EQ(stored("MaxEncodeThreads"), limit);
        EXPECT_EQ(stored("QTGammaCorrection"), row);
    }
}

TEST_F(SettingsStoreTest, AWriteIsAChangeWithoutTheSynchronise) {
    store.write(key("look"), true);
    store.write(key("RenderDebayer"), 2L);
    store.write(key("MaxEncodeThreads"), 5L);
    EXPECT_EQ(stored("ColorProcessingPath"), std::to_string(0x200009));
    EXPECT_EQ(stored("MaxEncodeThreads"), "5");
    EXPECT_THAT(journal.linesStarting("synchronize"), ElementsAre());
}

TEST_F(SettingsStoreTest, AChangeTellsWhetherItBecameLasting) {
    EXPECT_TRUE(store.change(key("look"), true));
    preferences.synchronizes = false;
    EXPECT_FALSE(store.change(key("look"), false));
}

// Updates of any key

TEST_F(SettingsStoreTest, AFlagIsWrittenAndSynchronised) {
    store.setFlag("key", true);
    store.setFlag("key", false);
    EXPECT_THAT(journal.lines(), ElementsAre("write key = true", "synchronize", "write key = false", "synchronize"));
}

TEST_F(SettingsStoreTest, AnIntegerIsWrittenSignExtendedAndSynchronised) {
    store.setInteger("key", 1);
    store.setInteger("key", -1);
    store.setInteger("key", -0x7FFFFFFF - 1);
    EXPECT_THAT(journal.lines(), ElementsAre("write key = 1", "synchronize",   //
                                             "write key = -1", "synchronize",  //
                                             "write key = -2147483648", "synchronize"));
}

TEST_F(SettingsStoreTest, AFlagSwitchedOnIsSynchronisedOnceTogetherWithItsBitAndBit0) {
    domain()["ColorProcessingPath"] = Number{0x300000};
    store.setFlagAndBit("look", true, 3);
    EXPECT_THAT(journal.lines(), ElementsAre("write look = true", "read ColorProcessingPath",
                                             "write ColorProcessingPath = " + std::to_string(0x300009), "synchronize"));
}

TEST_F(SettingsStoreTest, AFlagSwitchedOffIsSynchronisedOnceTogetherWithItsBitAlone) {
    domain()["ColorProcessingPath"] = Number{0x32002F};
    store.setFlagAndBit("look", false, 3);
    EXPECT_THAT(journal.lines(), ElementsAre("write look = false", "read ColorProcessingPath",
                                             "write ColorProcessingPath = " + std::to_string(0x320027), "synchronize"));
}

TEST_F(SettingsStoreTest, SettingABitReadsWritesAndSynchronisesOnce) {
    domain()["ColorProcessingPath"] = Number{0x300000};
    store.setPathBit(3);
    EXPECT_THAT(journal.lines(), ElementsAre("read ColorProcessingPath",
                                             "write ColorProcessingPath = " + std::to_string(0x300009), "synchronize"));
}

TEST_F(SettingsStoreTest, ClearingABitReadsWritesAndSynchronisesOnce) {
    domain()["ColorProcessingPath"] = Number{0x2F};
    store.clearPathBit(3);
    EXPECT_THAT(journal.lines(), ElementsAre("read ColorProcessingPath",
                                             "write ColorProcessingPath = " + std::to_string(0x27), "synchronize"));
}

TEST_F(SettingsStoreTest, SettingABitOfWhatIsNoReadableNumberGivesTheBitAndBit0) {
    auto faults = faultsOfAnInteger;
    faults.push_back({"an unreadable number", unreadableNumber});
    for (const auto& fault : faults) {
        SCOPED_TRACE(fault.name);
        put(domain(), "ColorProcessingPath", fault);
        store.setPathBit(3);
        EXPECT_EQ(stored("ColorProcessingPath"), "9");
    }
}

TEST_F(SettingsStoreTest, ClearingABitOfWhatIsNoReadableNumberGivesZero) {
    auto faults = faultsOfAnInteger;
    faults.push_back({"an unreadable number", unreadableNumber});
    for (const auto& fault : faults) {
        SCOPED_TRACE(fault.name);
        put(domain(), "ColorProcessingPath", fault);
        store.clearPathBit(3);
        EXPECT_EQ(stored("ColorProcessingPath"), "0");
    }
}

/// Where a `long` has 32 bits, such a number can't be read and counts as missing.
TEST_F(SettingsStoreTest, BitsAboveBit31SurviveTheBitOperations) {
    constexpr std::int64_t wide = 0x1234567800000000;
    domain()["ColorProcessingPath"] = storedInteger(wide | 0x20);
    store.setPathBit(3);
    EXPECT_EQ(stored("ColorProcessingPath"), std::to_string(sizeof(long) == 8 ? wide | 0x29 : 0x9));
    store.clearPathBit(3);
    EXPECT_EQ(stored("ColorProcessingPath"), std::to_string(sizeof(long) == 8 ? wide | 0x21 : 0x1));
}

TEST_F(SettingsStoreTest, BitsAreAddedToThePathWithoutBit0AndWithoutASynchronise) {
    store.addToPath(std::make_shared<long>(0x2E));
    EXPECT_EQ(stored("ColorProcessingPath"), "46");
    domain()["ColorProcessingPath"] = Number{0x300010};
    store.addToPath(std::make_shared<long>(0x8));
    EXPECT_EQ(stored("ColorProcessingPath"), std::to_string(0x300018));
    EXPECT_THAT(journal.linesStarting("synchronize"), ElementsAre());
}

TEST_F(SettingsStoreTest, WithoutBitsToAddAMissingPathBecomesZero) {
    store.addToPath(std::make_shared<long>(0));
    EXPECT_EQ(stored("ColorProcessingPath"), "0");
}

// Repairs that are carried out on what is stored only later

/// Preferences whose store can't be read at first: nothing is found, and the changes wait.
struct LatePreferences : MemoryPreferences {
    using MemoryPreferences::MemoryPreferences;

    PreferenceValue updateAppValue(std::string_view key, const PreferenceChange& change, std::string_view) override {
        if (change(Absent{})) waiting.emplace_back(key, change);
        return Absent{};
    }

    void carryOut() {
        for (const auto& [key, change] : waiting) MemoryPreferences::updateAppValue(key, change, codecApplicationID);
    }

    std::vector<std::pair<std::string, PreferenceChange>> waiting;
};

struct LateRepairs : testing::Test {
    /// Repairs the stages as a set-up does.
    void repairStages() {
        const auto added = std::make_shared<long>(0);
        for (const auto& row : keyTable) {
            if (std::holds_alternative<colorProcessingPath::Stage>(row.path)) store.repair(row, {}, added);
        }
        store.addToPath(added);
    }

    MemoryPreferences::Domain& domain() { return preferences.domain("com.vantrel.codec"); }

    Journal journal;
    LatePreferences preferences{journal};
    SettingsStore store{preferences};
};

TEST_F(LateRepairs, OfAStoreThatWasEmptyAreThoseOfAnEmptyStore) {
    repairStages();
    preferences.carryOut();
    EXPECT_THAT(contents(domain()),
                ElementsAre(Pair("ColorProcessingPath", "46"), Pair("colorMatrix", "true"), Pair("gamma", "true"),
                            Pair("look", "true"), Pair("whiteBalance", "true")));
}

TEST_F(LateRepairs, LeaveWhatIsStoredAlone) {
    repairStages();
    for (const auto* name : {"whiteBalance", "colorMatrix", "look", "gamma"}) domain()[name] = false;
    domain()["ColorProcessingPath"] = Number{0x300010};
    preferences.carryOut();
    EXPECT_THAT(contents(domain()),
                ElementsAre(Pair("ColorProcessingPath", std::to_string(0x300010)), Pair("colorMatrix", "false"),
                            Pair("gamma", "false"), Pair("look", "false"), Pair("whiteBalance", "false")));
}

TEST_F(LateRepairs, AddTheBitsOfTheStagesWhoseFlagsAreMissingAndNoOthers) {
    repairStages();
    for (const auto* name : {"whiteBalance", "colorMatrix", "gamma"}) domain()[name] = false;
    domain()["ColorProcessingPath"] = Number{0x1};
    preferences.carryOut();
    EXPECT_EQ(contents(domain())["look"], "true");
    EXPECT_EQ(contents(domain())["ColorProcessingPath"], "9");
}

TEST_F(LateRepairs, LeaveAMissingPathMissingWhereAllFlagsAreStored) {
    repairStages();
    for (const auto* name : {"whiteBalance", "colorMatrix", "look", "gamma"}) domain()[name] = false;
    preferences.carryOut();
    EXPECT_FALSE(domain().contains("ColorProcessingPath"));
}

TEST_F(LateRepairs, GiveWayToAClickThatCameMeanwhile) {
    repairStages();
    store.change(key("look"), false);
    domain()["ColorProcessingPath"] = Number{0x30002F};
    for (const auto* name : {"whiteBalance", "colorMatrix", "gamma"}) domain()[name] = true;
    preferences.carryOut();
    EXPECT_EQ(contents(domain())["ColorProcessingPath"], std::to_string(0x300027));
}

// The domain

TEST_F(SettingsStoreTest, NoOtherDomainIsTouched) {
    store.change(key("look"), true);
    store.repair(key("gamma"));
    store.read(key("FormatRGB8"));
    EXPECT_THAT(preferences.applications(), ElementsAre("com.vantrel.codec"));
}

TEST_F(SettingsStoreTest, AFailedSynchroniseIsNotReportedAndLosesNothing) {
    preferences.synchronizes = false;
    store.setInteger("key", 3);
    store.setPathBit(3);
    EXPECT_THAT(contents(preferences.synchronizedDomain("com.vantrel.codec")), ElementsAre());
    preferences.synchronizes = true;
    store.synchronize();
    EXPECT_THAT(contents(preferences.synchronizedDomain("com.vantrel.codec")),
                ElementsAre(Pair("ColorProcessingPath", "9"), Pair("key", "3")));
}

}  // namespace
}  // namespace vantrel::memory

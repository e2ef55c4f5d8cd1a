#include <gmock/gmock.h>

#include "platform/memory/MemoryControls.h"
#include "settings/SettingsStore.h"
#include "tests/Rules.h"
#include "tests/StoredValues.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;
using testing::Pair;

/// The store on preferences in memory, with a check box and a radio matrix of two rows that shows row 1.
struct SettingsStoreTest : testing::Test {
    SettingsStoreTest() {
        appID.set("com.vantrel.codec");
        matrix.selected = 1;
    }

    MemoryPreferences::Domain& domain() { return preferences.domain("com.vantrel.codec"); }
    std::string stored(const std::string& key) { return contents(domain())[key]; }

    Journal journal;
    MemoryPreferences preferences{journal};
    MemoryString appID;
    SettingsStore store{preferences, appID};
    MemoryCheckBox box{journal, "box"};
    MemoryRadioMatrix matrix{journal, "matrix"};
};

// A flag's check box at set-up

TEST_F(SettingsStoreTest, AStoredFlagIsShownAndNothingIsWritten) {
    for (const bool flag : {true, false}) {
        journal.clear();
        domain()["key"] = flag;
        EXPECT_FALSE(store.initPrefCheckForKey(box, "key"));
        EXPECT_THAT(journal.lines(), ElementsAre("read key", flag ? "box setState 1" : "box setState 0"));
        EXPECT_THAT(contents(domain()), ElementsAre(Pair("key", flag ? "true" : "false")));
    }
}

TEST_F(SettingsStoreTest, WhatIsNoFlagIsShownOnAndReplacedByTrueWithoutASynchronise) {
    for (const auto& fault : faultsOfAFlag) {
        SCOPED_TRACE(fault.name);
        journal.clear();
        put(domain(), "key", fault);
        EXPECT_TRUE(store.initPrefCheckForKey(box, "key"));
        EXPECT_THAT(journal.lines(), ElementsAre("read key", "box setState 1", "write key = true"));
        EXPECT_THAT(contents(domain()), ElementsAre(Pair("key", "true")));
    }
}

// An integer's radio matrix at set-up

TEST_F(SettingsStoreTest, AStoredRowIsSelectedAndNothingIsWritten) {
    for (const long row : {0L, 1L}) {
        journal.clear();
        domain()["key"] = Number{row};
        EXPECT_FALSE(store.initIntPrefCheckForKey(matrix, "key"));
        EXPECT_THAT(journal.lines(),
                    ElementsAre("read key", "matrix selectCellAtRow " + std::to_string(row) + " column 0"));
        EXPECT_EQ(matrix.selected, row);
    }
}

TEST_F(SettingsStoreTest, ARadioKeyThatIsNoNumberSwitchesRowZeroOnAndWritesZero) {
    for (const auto& fault : faultsOfAnInteger) {
        SCOPED_TRACE(fault.name);
        journal.clear();
        put(domain(), "key", fault);
        EXPECT_TRUE(store.initIntPrefCheckForKey(matrix, "key"));
        EXPECT_THAT(journal.lines(), ElementsAre("read key", "matrix setState 1 atRow 0 column 0", "write key = 0"));
        EXPECT_THAT(contents(domain()), ElementsAre(Pair("key", "0")));
    }
}

TEST_F(SettingsStoreTest, ARadioKeyOutOfRangeSelectsRowZeroAndWritesZero) {
    for (const std::int64_t row : {2, 5, -1, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        SCOPED_TRACE(row);
        journal.clear();
        domain()["key"] = storedInteger(row);
        EXPECT_TRUE(store.initIntPrefCheckForKey(matrix, "key"));
        EXPECT_THAT(journal.lines(), ElementsAre("read key", "matrix selectCellAtRow 0 column 0", "write key = 0"));
        EXPECT_THAT(contents(domain()), ElementsAre(Pair("key", "0")));
    }
}

TEST_F(SettingsStoreTest, TheMatrixDecidesHowManyRowsThereAre) {
    domain()["key"] = Number{5};
    matrix.rows = 6;
    EXPECT_FALSE(store.initIntPrefCheckForKey(matrix, "key"));
    EXPECT_EQ(matrix.selected, 5);

    domain()["key"] = Number{0};
    matrix.rows = 0;
    EXPECT_TRUE(store.initIntPrefCheckForKey(matrix, "key"));
}

TEST_F(SettingsStoreTest, AnUnreadableRadioKeyLeavesMatrixAndKeyAlone) {
    domain()["key"] = unreadableNumber;
    EXPECT_FALSE(store.initIntPrefCheckForKey(matrix, "key"));
    EXPECT_THAT(journal.lines(), ElementsAre("read key"));
    EXPECT_EQ(matrix.selected, 1);
    EXPECT_EQ(stored("key"), "unreadable number");
}

/// Where a `long` has 32 bits, such a number can't be read at all.
TEST_F(SettingsStoreTest, OfARadioKeyPast32BitsTheLow32BitsCount) {
    matrix.selected = 0;
    domain()["key"] = storedInteger(0x100000001);
    EXPECT_FALSE(store.initIntPrefCheckForKey(matrix, "key"));
    EXPECT_EQ(matrix.selected, sizeof(long) == 8 ? 1 : 0);
    EXPECT_THAT(journal.preferenceChanges(), ElementsAre());
}

TEST_F(SettingsStoreTest, TheLow32BitsOfARadioKeyAreSigned) {
    domain()["key"] = storedInteger(0xFFFFFFFF);
    EXPECT_EQ(store.initIntPrefCheckForKey(matrix, "key"), sizeof(long) == 8);
    EXPECT_EQ(stored("key"), sizeof(long) == 8 ? "0" : "unreadable number");
}

// Updates

TEST_F(SettingsStoreTest, AFlagIsWrittenAndSynchronised) {
    store.updateBoolPrefForKey(true, "key");
    store.updateBoolPrefForKey(false, "key");
    EXPECT_THAT(journal.lines(), ElementsAre("write key = true", "synchronize", "write key = false", "synchronize"));
}

TEST_F(SettingsStoreTest, AnIntegerIsWrittenSignExtendedAndSynchronised) {
    store.updateIntPrefForKey(1, "key");
    store.updateIntPrefForKey(-1, "key");
    store.updateIntPrefForKey(-0x7FFFFFFF - 1, "key");
    EXPECT_THAT(journal.lines(), ElementsAre("write key = 1", "synchronize",   //
                                             "write key = -1", "synchronize",  //
                                             "write key = -2147483648", "synchronize"));
}

TEST_F(SettingsStoreTest, AFlagSwitchedOnIsSynchronisedOnceTogetherWithItsBitAndBit0) {
    domain()["ColorProcessingPath"] = Number{0x300000};
    store.updateBoolPrefForKeyForBit(true, "look", 3);
    EXPECT_THAT(journal.lines(), ElementsAre("write look = true", "read ColorProcessingPath",
                                             "write ColorProcessingPath = " + std::to_string(0x300009), "synchronize"));
}

TEST_F(SettingsStoreTest, AFlagSwitchedOffIsSynchronisedOnceTogetherWithItsBitAlone) {
    domain()["ColorProcessingPath"] = Number{0x32002F};
    store.updateBoolPrefForKeyForBit(false, "look", 3);
    EXPECT_THAT(journal.lines(), ElementsAre("write look = false", "read ColorProcessingPath",
                                             "write ColorProcessingPath = " + std::to_string(0x320027), "synchronize"));
}

TEST_F(SettingsStoreTest, SettingABitReadsWritesAndSynchronisesOnce) {
    domain()["ColorProcessingPath"] = Number{0x300000};
    store.setProcPathBit(3);
    EXPECT_THAT(journal.lines(), ElementsAre("read ColorProcessingPath",
                                             "write ColorProcessingPath = " + std::to_string(0x300009), "synchronize"));
}

TEST_F(SettingsStoreTest, ClearingABitReadsWritesAndSynchronisesOnce) {
    domain()["ColorProcessingPath"] = Number{0x2F};
    store.clearProcPathBit(3);
    EXPECT_THAT(journal.lines(), ElementsAre("read ColorProcessingPath",
                                             "write ColorProcessingPath = " + std::to_string(0x27), "synchronize"));
}

TEST_F(SettingsStoreTest, SettingABitOfWhatIsNoReadableNumberGivesTheBitAndBit0) {
    auto faults = faultsOfAnInteger;
    faults.push_back({"an unreadable number", unreadableNumber});
    for (const auto& fault : faults) {
        SCOPED_TRACE(fault.name);
        put(domain(), "ColorProcessingPath", fault);
        store.setProcPathBit(3);
        EXPECT_EQ(stored("ColorProcessingPath"), "9");
    }
}

TEST_F(SettingsStoreTest, ClearingABitOfWhatIsNoReadableNumberGivesZero) {
    auto faults = faultsOfAnInteger;
    faults.push_back({"an unreadable number", unreadableNumber});
    for (const auto& fault : faults) {
        SCOPED_TRACE(fault.name);
        put(domain(), "ColorProcessingPath", fault);
        store.clearProcPathBit(3);
        EXPECT_EQ(stored("ColorProcessingPath"), "0");
    }
}

/// Where a `long` has 32 bits, such a number can't be read and counts as missing.
TEST_F(SettingsStoreTest, BitsAboveBit31SurviveTheBitOperations) {
    constexpr std::int64_t wide = 0x1234567800000000;
    domain()["ColorProcessingPath"] = storedInteger(wide | 0x20);
    store.setProcPathBit(3);
    EXPECT_EQ(stored("ColorProcessingPath"), std::to_string(sizeof(long) == 8 ? wide | 0x29 : 0x9));
    store.clearProcPathBit(3);
    EXPECT_EQ(stored("ColorProcessingPath"), std::to_string(sizeof(long) == 8 ? wide | 0x21 : 0x1));
}

// The domain

TEST_F(SettingsStoreTest, WorksOnTheDomainThatTheApplicationIDNames) {
    appID.set("com.example.other");
    store.updateBoolPrefForKeyForBit(true, "look", 3);
    store.initPrefCheckForKey(box, "box");
    store.initIntPrefCheckForKey(matrix, "matrix");
    EXPECT_THAT(preferences.applications(), ElementsAre("com.example.other"));
}

TEST_F(SettingsStoreTest, EveryReadIsFresh) {
    domain()["key"] = true;
    store.initPrefCheckForKey(box, "key");
    domain()["key"] = false;
    store.initPrefCheckForKey(box, "key");
    EXPECT_EQ(box.shown, offState);
}

TEST_F(SettingsStoreTest, AFailedSynchroniseIsNotReportedAndLosesNothing) {
    preferences.synchronizes = false;
    store.updateIntPrefForKey(3, "key");
    store.setProcPathBit(3);
    EXPECT_THAT(contents(preferences.synchronizedDomain("com.vantrel.codec")), ElementsAre());
    preferences.synchronizes = true;
    store.synchronize();
    EXPECT_THAT(contents(preferences.synchronizedDomain("com.vantrel.codec")),
                ElementsAre(Pair("ColorProcessingPath", "9"), Pair("key", "3")));
}

// Plain reads

TEST_F(SettingsStoreTest, AReadOfTheWrongTypeFindsNothing) {
    for (const auto& fault : faultsOfAFlag) {
        put(domain(), "key", fault);
        EXPECT_EQ(store.flagForKey("key"), std::nullopt) << fault.name;
    }
    for (const auto& fault : faultsOfAnInteger) {
        put(domain(), "key", fault);
        EXPECT_EQ(store.integerForKey("key"), std::nullopt) << fault.name;
    }
    for (const auto& fault : faultsOfAText) {
        put(domain(), "key", fault);
        EXPECT_EQ(store.textForKey("key"), std::nullopt) << fault.name;
    }
    domain()["key"] = unreadableNumber;
    EXPECT_EQ(store.integerForKey("key"), std::nullopt);
}

TEST_F(SettingsStoreTest, AnIntegerIsReadAsTheWholeLong) {
    domain()["key"] = storedInteger(0x100000001);
    if constexpr (sizeof(long) == 8) {
        EXPECT_EQ(store.integerForKey("key"), static_cast<long>(0x100000001));
    } else {
        EXPECT_EQ(store.integerForKey("key"), std::nullopt);
    }
}

}  // namespace
}  // namespace vantrel::memory

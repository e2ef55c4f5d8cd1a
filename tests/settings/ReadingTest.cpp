#include <gmock/gmock.h>

#include "settings/Reading.h"
#include "tests/StoredValues.h"

namespace vantrel::memory {
namespace {

/// "shown true, writes true, synchronizes": all that a reading says.
std::string describe(const Reading& reading) {
    std::string words = reading.isAbsent ? "absent" : "stored";
    words += reading.shown ? ", shown " + memory::describe(*reading.shown) : ", not shown";
    if (reading.repair) words += ", writes " + memory::describe(*reading.repair);
    if (reading.synchronizes) words += ", synchronizes";
    return words;
}

std::vector<Fault> withUnreadable(std::vector<Fault> faults) {
    faults.push_back({"an unreadable number", unreadableNumber});
    return faults;
}

SettingsKey rowOf(Kind kind, SetUpDefault setUpDefault, Repair repair) {
    return {"key", kind, setUpDefault, repair, Group::untouched, ""};
}

// Flags

TEST(Reading, AStoredFlagIsShown) {
    EXPECT_EQ(describe(readingOf(key("look"), true)), "stored, shown true");
    EXPECT_EQ(describe(readingOf(key("look"), false)), "stored, shown false");
}

TEST(Reading, WhatIsNoFlagIsReplacedByTheDefault) {
    for (const auto& fault : faultsOfAFlag) {
        SCOPED_TRACE(fault.name);
        EXPECT_EQ(describe(readingOf(key("FormatRGB8"), fault.value)), "absent, shown true, writes true, synchronizes");
        EXPECT_EQ(describe(readingOf(key("fcpRTEnableSwap"), fault.value)), "absent, shown false, writes false");
    }
}

/// Every cell has its effect: the default is shown and written, and the repair says whether it is and how.
TEST(Reading, TheRowDecidesWhatIsShownAndWrittenAndSynchronised) {
    for (const bool flag : {true, false}) {
        const std::string word = flag ? "true" : "false";
        EXPECT_EQ(describe(readingOf(rowOf(Kind::flag, flag, Repair::written), Absent{})),
                  "absent, shown " + word + ", writes " + word + ", synchronizes");
        EXPECT_EQ(describe(readingOf(rowOf(Kind::flag, flag, Repair::writtenLazily), Absent{})),
                  "absent, shown " + word + ", writes " + word);
        EXPECT_EQ(describe(readingOf(rowOf(Kind::flag, flag, Repair::none), Absent{})), "absent, shown " + word);
    }
}

TEST(Reading, AFlagWithoutADefaultIsNotShownWhereItIsMissing) {
    EXPECT_EQ(describe(readingOf(key("FormatDualStream3D"), Absent{})), "absent, not shown");
    EXPECT_EQ(describe(readingOf(key("FormatDualStream3D"), true)), "stored, shown true");
}

// Rows

TEST(Reading, AStoredRowThatTheMatrixHasIsShown) {
    for (const long row : {0L, 1L}) {
        EXPECT_EQ(describe(readingOf(key("QTGammaCorrection"), Number{row}, {.choices = 2})),
                  "stored, shown " + std::to_string(row));
    }
    EXPECT_EQ(describe(readingOf(key("QTGammaCorrection"), Number{5}, {.choices = 6})), "stored, shown 5");
}

TEST(Reading, WhatIsNoNumberIsReplacedByRowZero) {
    for (const auto& fault : faultsOfAnInteger) {
        SCOPED_TRACE(fault.name);
        EXPECT_EQ(describe(readingOf(key("QTGammaCorrection"), fault.value, {.choices = 2})),
                  "absent, shown 0, writes 0, synchronizes");
    }
}

TEST(Reading, ARowThatTheMatrixLacksIsReplacedByRowZero) {
    for (const std::int64_t row : {2, 5, -1, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
        SCOPED_TRACE(row);
        EXPECT_EQ(describe(readingOf(key("FCPGammaCorrection"), storedInteger(row), {.choices = 2})),
                  "stored, shown 0, writes 0, synchronizes");
    }
    EXPECT_EQ(describe(readingOf(key("FCPGammaCorrection"), Number{0}, {.choices = 0})),
              "stored, shown 0, writes 0, synchronizes");
}

TEST(Reading, AnUnreadableRowLeavesMatrixAndKeyAlone) {
    EXPECT_EQ(describe(readingOf(key("QTGammaCorrection"), unreadableNumber, {.choices = 2})), "absent, not shown");
}

/// Where a `long` has 32 bits, such a number can't be read at all.
TEST(Reading, OfARowPast32BitsTheLow32BitsCountWithTheirSign) {
    EXPECT_EQ(describe(readingOf(key("QTGammaCorrection"), storedInteger(0x100000001), {.choices = 2})),
              sizeof(long) == 8 ? "stored, shown 1" : "absent, not shown");
    EXPECT_EQ(describe(readingOf(key("QTGammaCorrection"), storedInteger(0xFFFFFFFF), {.choices = 2})),
              sizeof(long) == 8 ? "stored, shown 0, writes 0, synchronizes" : "absent, not shown");
}

// Items, limits and bits

TEST(Reading, AnItemIsShownUncheckedAndAsTheWholeLong) {
    for (const long item : {0L, 4L, 17L, -1L}) {
        EXPECT_EQ(describe(readingOf(key("8bitDebayer"), Number{item})), "stored, shown " + std::to_string(item));
    }
    EXPECT_EQ(describe(readingOf(key("8bitDebayer"), storedInteger(0x100000002))),
              sizeof(long) == 8 ? "stored, shown 4294967298" : "absent, shown 0");
}

TEST(Reading, WhatIsNoItemShowsTheFirstAndWritesNothing) {
    for (const auto& fault : withUnreadable(faultsOfAnInteger)) {
        SCOPED_TRACE(fault.name);
        EXPECT_EQ(describe(readingOf(key("RenderDebayer"), fault.value)), "absent, shown 0");
    }
}

TEST(Reading, ALimitIsLoweredBelowTheNumberOfCores) {
    EXPECT_EQ(describe(readingOf(key("MaxEncodeThreads"), Number{8}, {.choices = 8})),
              "stored, shown 7, writes 7, synchronizes");
    EXPECT_EQ(describe(readingOf(key("MaxEncodeThreads"), Number{7}, {.choices = 8})), "stored, shown 7");
    EXPECT_EQ(describe(readingOf(key("MaxEncodeThreads"), Number{-1}, {.choices = 8})), "stored, shown -1");
}

TEST(Reading, WhatIsNoLimitIsSevenAndWrittenOnlyWhereThatIsLowered) {
    for (const auto& fault : withUnreadable(faultsOfAnInteger)) {
        SCOPED_TRACE(fault.name);
        EXPECT_EQ(describe(readingOf(key("MaxEncodeThreads"), fault.value, {.choices = 8})), "absent, shown 7");
        EXPECT_EQ(describe(readingOf(key("MaxEncodeThreads"), fault.value, {.choices = 4})),
                  "absent, shown 3, writes 3, synchronizes");
    }
}

TEST(Reading, ALimitWhoseRowDoesNotAskForItIsLoweredOnTheScreenAlone) {
    EXPECT_EQ(describe(readingOf(rowOf(Kind::limit, 7L, Repair::none), Number{8}, {.choices = 8})), "stored, shown 7");
}

TEST(Reading, ThePathIsNeverRepairedByItself) {
    for (const auto& fault : withUnreadable(faultsOfAnInteger)) {
        SCOPED_TRACE(fault.name);
        EXPECT_EQ(describe(readingOf(key("ColorProcessingPath"), fault.value)), "absent, shown 0");
    }
    EXPECT_EQ(describe(readingOf(key("ColorProcessingPath"), Number{-1})), "stored, shown -1");
}

// Texts

TEST(Reading, WhatIsNotShownIsOfNoType) {
    const Reading reading = readingOf(key("FormatDualStream3D"), Absent{});
    EXPECT_EQ(reading.flag(), nullptr);
    EXPECT_EQ(reading.index(), nullptr);
    EXPECT_EQ(reading.text(), nullptr);
}

TEST(Reading, AStoredTextIsShown) {
    EXPECT_EQ(describe(readingOf(key("LUTsPath"), std::string("/luts"), {.defaultText = "/default"})),
              "stored, shown \"/luts\"");
    EXPECT_EQ(describe(readingOf(key("LUTsPath"), std::string(), {.defaultText = "/default"})), "stored, shown \"\"");
}

TEST(Reading, WhatIsNoTextIsReplacedByTheBundlesTextWithoutASynchronise) {
    for (const auto& fault : faultsOfAText) {
        SCOPED_TRACE(fault.name);
        EXPECT_EQ(describe(readingOf(key("OverridePath"), fault.value, {.defaultText = "/default"})),
                  "absent, shown \"/default\", writes \"/default\"");
    }
}

// Agreement with ColorProcessingPath

TEST(Agreement, AStageAgreesWithItsBit) {
    EXPECT_TRUE(agrees(key("look"), true, 0x8));
    EXPECT_TRUE(agrees(key("look"), false, 0xF7));
    EXPECT_FALSE(agrees(key("look"), true, 0xF7));
    EXPECT_FALSE(agrees(key("look"), false, 0x8));
}

TEST(Agreement, AMethodAgreesWithItsField) {
    EXPECT_TRUE(agrees(key("RenderDebayer"), 3L, 0x35002F));
    EXPECT_FALSE(agrees(key("RenderDebayer"), 5L, 0x35002F));
    EXPECT_TRUE(agrees(key("8bitDebayer"), 5L, 0x35002F));
    EXPECT_FALSE(agrees(key("8bitDebayer"), 16L, 0));
}

TEST(Agreement, AKeyWithoutAPartAgreesWithEveryPath) {
    EXPECT_TRUE(agrees(key("FormatRGB8"), true, 0));
    EXPECT_TRUE(agrees(key("MaxEncodeThreads"), 5L, 0));
    EXPECT_TRUE(agrees(key("LUTsPath"), std::string("/a"), 0));
}

TEST(ThreadsOffered, AreOneToThirtyTwo) {
    EXPECT_EQ(threadsOffered(0), 1);
    EXPECT_EQ(threadsOffered(-1), 1);
    EXPECT_EQ(threadsOffered(8), 8);
    EXPECT_EQ(threadsOffered(33), 32);
}

}  // namespace
}  // namespace vantrel::memory

#include <gtest/gtest.h>

#include <limits>

#include "settings/ColorProcessingPath.h"

namespace vantrel::colorProcessingPath {
namespace {

constexpr std::int32_t lookBit = 3;
constexpr DemosaicField presentationDemosaic{16};
constexpr DemosaicField renderDemosaic{20};

constexpr std::nullopt_t missing = std::nullopt;

/// A stored value with bits past those of a 32-bit `long`, where a `long` has them.
constexpr long upperBits = static_cast<long>(0x7654321000000000LL);

/// A 32-bit pattern as an integer that is written: sign-extended.
constexpr long signExtended(std::uint32_t pattern) {
    return static_cast<std::int32_t>(pattern);
}

TEST(ColorProcessingPath, EachDemosaicHasFourBits) {
    EXPECT_EQ(presentationDemosaic.mask(), 0xF0000u);
    EXPECT_EQ(renderDemosaic.mask(), 0xF00000u);
}

TEST(ColorProcessingPath, TheMaskIsMadeIn32BitsAndSignExtended) {
    EXPECT_EQ(maskOfBit(0), 1);
    EXPECT_EQ(maskOfBit(30), 0x40000000);
    EXPECT_EQ(maskOfBit(31), std::numeric_limits<std::int32_t>::min());
}

TEST(ColorProcessingPath, BitNumbersCountModulo32) {
    EXPECT_EQ(maskOfBit(32), 1);
    EXPECT_EQ(maskOfBit(35), 0x8);
    EXPECT_EQ(maskOfBit(64 + 5), 0x20);
    EXPECT_EQ(maskOfBit(-1), maskOfBit(31));
    EXPECT_EQ(maskOfBit(-32), 1);
}

TEST(ColorProcessingPath, SettingABitSetsBit0WithIt) {
    EXPECT_EQ(withBitSet(0, 3), 0x9);
    EXPECT_EQ(withBitSet(0x300000, 3), 0x300009);
    EXPECT_EQ(withBitSet(0x300000, 5), 0x300021);
    EXPECT_EQ(withBitSet(0, 0), 0x1);
    EXPECT_EQ(withBitSet(0, 31), signExtended(0x80000001));
}

TEST(ColorProcessingPath, SettingABitOfAMissingValueGivesTheBitAndBit0) {
    EXPECT_EQ(withBitSet(missing, 1), 0x3);
    EXPECT_EQ(withBitSet(missing, 3), 0x9);
}

TEST(ColorProcessingPath, SettingASetBitChangesNothing) {
    EXPECT_EQ(withBitSet(0x2F, 3), 0x2F);
}

TEST(ColorProcessingPath, ClearingABitLeavesBit0) {
    EXPECT_EQ(withBitCleared(0x2F, 3), 0x27);
    EXPECT_EQ(withBitCleared(0x300021, 5), 0x300001);
    EXPECT_EQ(withBitCleared(0x1, 1), 0x1);
}

TEST(ColorProcessingPath, ClearingABitOfAMissingValueGives0) {
    EXPECT_EQ(withBitCleared(missing, 3), 0);
    EXPECT_EQ(withBitCleared(missing, 0), 0);
}

TEST(ColorProcessingPath, ClearingAClearBitChangesNothing) {
    EXPECT_EQ(withBitCleared(0x27, 3), 0x27);
    EXPECT_EQ(withBitCleared(0, 3), 0);
}

TEST(ColorProcessingPath, BitsOfNobodySurviveTheStageBits) {
    constexpr long others = 0x7F00FFD0;
    EXPECT_EQ(withBitSet(others, lookBit), others | 0x9);
    EXPECT_EQ(withBitCleared(others | 0x8, lookBit), others);
}

TEST(ColorProcessingPath, BitsAboveBit31SurviveTheStageBits) {
    EXPECT_EQ(withBitSet(upperBits | 0x20, lookBit), upperBits | 0x29);
    EXPECT_EQ(withBitCleared(upperBits | 0x2F, lookBit), upperBits | 0x27);
}

TEST(ColorProcessingPath, ClearingBit31ClearsTheUpperHalfWithIt) {
    EXPECT_EQ(withBitCleared(upperBits | 0x2F, 31), 0x2F);
    EXPECT_EQ(withBitCleared(-1, 31), 0x7FFFFFFF);
}

TEST(ColorProcessingPath, ADemosaicMethodReplacesItsFieldAlone) {
    EXPECT_EQ(withDemosaic(0x2F, renderDemosaic, 2), 0x20002F);
    EXPECT_EQ(withDemosaic(0x7FFFFFFF, renderDemosaic, 0), 0x7F0FFFFF);
    EXPECT_EQ(withDemosaic(0x7FFFFFFF, presentationDemosaic, 0), 0x7FF0FFFF);
    EXPECT_EQ(withDemosaic(0x7F0FFFFF, renderDemosaic, 15), 0x7FFFFFFF);
    EXPECT_EQ(withDemosaic(0x7FF0FFFF, presentationDemosaic, 9), 0x7FF9FFFF);
}

TEST(ColorProcessingPath, ADemosaicMethodOfAMissingValueStandsAlone) {
    EXPECT_EQ(withDemosaic(missing, presentationDemosaic, 3), 0x30000);
    EXPECT_EQ(withDemosaic(missing, renderDemosaic, 15), 0xF00000);
    EXPECT_EQ(withDemosaic(missing, renderDemosaic, 0), 0);
}

TEST(ColorProcessingPath, ADemosaicMethodNeverSetsBit0) {
    EXPECT_EQ(withDemosaic(0, renderDemosaic, 1), 0x100000);
}

TEST(ColorProcessingPath, ADemosaicMethodDropsTheBitsAboveBit31) {
    EXPECT_EQ(withDemosaic(upperBits | 0x2F, renderDemosaic, 2), 0x20002F);
}

TEST(ColorProcessingPath, Bit31StaysBelowAnEmptyUpperHalfAfterADemosaicMethod) {
    const long written = withDemosaic(-1, presentationDemosaic, 0);
    EXPECT_EQ(static_cast<std::uint32_t>(written), 0xFFF0FFFFu);
    EXPECT_GE(std::int64_t{written}, sizeof(long) == 8 ? 0 : std::numeric_limits<std::int32_t>::min());
}

}  // namespace
}  // namespace vantrel::colorProcessingPath

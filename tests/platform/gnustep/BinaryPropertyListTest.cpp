#include <gmock/gmock.h>

#include <bit>
#include <limits>
#include <string>
#include <vector>

#include "platform/gnustep/BinaryPropertyList.h"
#include "tests/platform/gnustep/PropertyListTesting.h"

namespace vantrel::gnustep {
namespace {

using namespace std::string_literals;

std::string bigEndian(std::uint64_t number, int size) {
    std::string bytes;
    for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 0xFF);
    return bytes;
}

std::string bigEndian(double number) {
    return bigEndian(std::bit_cast<std::uint64_t>(number), 8);
}

/// A binary list of `objects`, of which the first is the top. References to objects take two bytes.
std::string binaryList(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::string offsets;
    for (const auto& object : objects) {
        offsets += bigEndian(bytes.size(), 4);
        bytes += object;
    }
    const auto table = bytes.size();
    return bytes + offsets + std::string(6, '\0') + bigEndian(4, 1) + bigEndian(2, 1) + bigEndian(objects.size(), 8) +
           bigEndian(0, 8) + bigEndian(table, 8);
}

std::string reference(std::size_t index) {
    return bigEndian(index, 2);
}

/// A binary list with `object` under "key".
std::string binaryListWith(const std::string& object) {
    return binaryList({"\xD1" + reference(1) + reference(2), "\x53key", object});
}

std::string readOfBinary(const std::string& object) {
    const auto list = PropertyList::parse(binaryListWith(object));
    return list ? readOf(*list) : "damaged";
}

TEST(BinaryPropertyList, ScalarsAreRead) {
    EXPECT_EQ(readOfBinary("\x09"), "true");
    EXPECT_EQ(readOfBinary("\x08"), "false");
    EXPECT_EQ(readOfBinary("\x10\xFF"), "number 255");
    EXPECT_EQ(readOfBinary("\x13" + bigEndian(~0ULL, 8)), "number -1");
    EXPECT_EQ(readOfBinary("\x14" + bigEndian(0, 8) + bigEndian(~0ULL, 8)), "unreadable number");
    EXPECT_EQ(readOfBinary("\x23" + bigEndian(2.0)), "number 2");
    EXPECT_EQ(readOfBinary("\x23" + bigEndian(0.1)), "unreadable number");
    EXPECT_EQ(readOfBinary("\x53"
                           "abc"),
              "text \"abc\"");
    EXPECT_EQ(readOfBinary("\x62" + bigEndian(0xD83DDE00, 4)), "text \"😀\"");
    EXPECT_EQ(readOfBinary("\x61" + bigEndian(0xD83D, 2)), "text \"\xED\xA0\xBD\"");
    EXPECT_EQ(readOfBinary("\x33" + bigEndian(0.0)), "other");
    EXPECT_EQ(readOfBinary("\x42"
                           "ab"),
              "other");
    EXPECT_EQ(readOfBinary("\x80\x07"), "other");
}

TEST(BinaryPropertyList, TextsAreMeantAsTheyStand) {
    EXPECT_EQ(readOfBinary("\x56\\U0041"), "text \"\\U0041\"");
    EXPECT_EQ(readOfBinary("\x53"
                           "a\rb"),
              "text \"a\rb\"");
    EXPECT_EQ(readOfBinary("\x53\x01<&"), "text \"\x01<&\"");
    EXPECT_EQ(readOfBinary("\x61" + bigEndian(0xFFFE, 2)), "text \"\xEF\xBF\xBE\"");
    EXPECT_EQ(readOfBinary("\x61" + bigEndian(0, 2)), "text \"\0\""s);
    EXPECT_EQ(readOfBinary("\x53"
                           "a\0b"s),
              "text \"a\0b\""s);
}

TEST(BinaryPropertyList, EachObjectIsWrittenAsXMLListsHaveIt) {
    const auto elementOf = [](const std::string& object) {
        return std::string(parsed(binaryListWith(object)).element("key"));
    };
    EXPECT_EQ(elementOf("\x13" + bigEndian(1ULL << 63, 8)), "<integer>-9223372036854775808</integer>");
    EXPECT_EQ(elementOf("\x14" + bigEndian(0, 8) + bigEndian(~0ULL, 8)), "<integer>18446744073709551615</integer>");
    EXPECT_EQ(elementOf("\x14" + bigEndian(~0ULL, 8) + bigEndian(~0ULL, 8)), "<integer>-1</integer>");
    EXPECT_EQ(elementOf("\x12" + bigEndian(~0U, 4)), "<integer>4294967295</integer>");
    EXPECT_EQ(elementOf("\x23" + bigEndian(0.1)), "<real>0.1</real>");
    EXPECT_EQ(elementOf("\x23" + bigEndian(1e23)), "<real>1e+23</real>");
    EXPECT_EQ(elementOf("\x22" + bigEndian(std::bit_cast<std::uint32_t>(0.1F), 4)), "<real>0.10000000149011612</real>");
    EXPECT_EQ(elementOf("\x23" + bigEndian(-std::numeric_limits<double>::infinity())), "<real>-infinity</real>");
    EXPECT_EQ(elementOf("\x23" + bigEndian(std::numeric_limits<double>::quiet_NaN())), "<real>nan</real>");
    EXPECT_EQ(elementOf("\x33" + bigEndian(0.0)), "<date>2001-01-01T00:00:00Z</date>");
    EXPECT_EQ(elementOf("\x33" + bigEndian(-0.5)), "<date>2000-12-31T23:59:59Z</date>");
    EXPECT_EQ(elementOf("\x33" + bigEndian(-63114076800.0)), "<date>0000-12-30T00:00:00Z</date>");
    EXPECT_EQ(elementOf("\x33" + bigEndian(252423993599.9)), "<date>9999-12-31T23:59:59Z</date>");
    EXPECT_EQ(elementOf("\x43\0\1\xFF"s), "<data>AAH/</data>");
    EXPECT_EQ(elementOf("\x81\x01\x02"), "<dict>\n<key>CF$UID</key>\n<integer>258</integer>\n</dict>");
    EXPECT_EQ(elementOf("\xA2" + reference(1) + reference(1)),
              "<array>\n<string>key</string>\n<string>key</string>\n</array>");
}

TEST(BinaryPropertyList, WhatXMLCouldNotGiveBackIsDamage) {
    EXPECT_EQ(readOfBinary("\x51\xE9"), "damaged");
    EXPECT_EQ(readOfBinary("\x14" + bigEndian(1, 8) + bigEndian(0, 8)), "damaged");
    EXPECT_EQ(readOfBinary("\x33" + bigEndian(252423993600.0)), "damaged");
    EXPECT_EQ(readOfBinary("\x33" + bigEndian(-63145526400.5)), "damaged");
    EXPECT_EQ(readOfBinary("\x33" + bigEndian(std::numeric_limits<double>::quiet_NaN())), "damaged");
    EXPECT_EQ(readOfBinary("\0"s), "damaged");
    EXPECT_EQ(readOfBinary("\xC0"), "damaged");
}

TEST(BinaryPropertyList, ALengthPastTheEndIsDamage) {
    EXPECT_EQ(readOfBinary("\x5F\x13" + bigEndian(~0ULL, 8) + "abc"), "damaged");
    EXPECT_EQ(readOfBinary("\x4F\x12" + bigEndian(0x7FFFFFFF, 4) + "abc"), "damaged");
    EXPECT_EQ(readOfBinary("\xAF\x13" + bigEndian(1ULL << 63, 8)), "damaged");
    EXPECT_EQ(readOfBinary("\x59"
                           "abc"),
              "damaged");
}

TEST(BinaryPropertyList, AListThatStopsAnywhereIsDamaged) {
    const auto whole = binaryListWith("\xA1" + reference(1));
    ASSERT_TRUE(isParsed(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) EXPECT_FALSE(isParsed(whole.substr(0, length)));
}

TEST(BinaryPropertyList, OnlyADictionaryWithTextsForKeysIsRead) {
    EXPECT_FALSE(isParsed(binaryList({"\xA1" + reference(1), "\x09"})));
    EXPECT_FALSE(isParsed(binaryList({"\xD1" + reference(1) + reference(1), "\x09"})));
    EXPECT_FALSE(isParsed(binaryList({"\xD1" + reference(1) + reference(9),
                                      "\x51"
                                      "a"})));
}

TEST(BinaryPropertyList, AListThatContainsItselfEndsTheRead) {
    EXPECT_FALSE(isParsed(binaryList({"\xD1" + reference(1) + reference(0),
                                      "\x51"
                                      "a"})));
    EXPECT_FALSE(isParsed(binaryListWith("\xA1" + reference(2))));
}

TEST(BinaryPropertyList, NestingEndsTheReadAndNotTheProcess) {
    const auto nested = [](std::size_t depth) {
        std::vector<std::string> objects{"\xD1" + reference(1) + reference(2),
                                         "\x51"
                                         "a"};
        for (std::size_t level = 1; level < depth; ++level) objects.push_back("\xA1" + reference(objects.size() + 1));
        objects.emplace_back("\xA0");
        return binaryList(objects);
    };
    EXPECT_TRUE(isParsed(nested(deepestNesting)));
    EXPECT_FALSE(isParsed(nested(deepestNesting + 1)));
    EXPECT_FALSE(isParsed(nested(60'000)));
}

TEST(BinaryPropertyList, ObjectsSharedOverAndOverDontGrowPastTheBound) {
    std::vector<std::string> objects{"\xD1" + reference(1) + reference(2),
                                     "\x51"
                                     "a"};
    for (int level = 0; level < 60; ++level) {
        objects.push_back("\xA2" + reference(objects.size() + 1) + reference(objects.size() + 1));
    }
    objects.emplace_back("\x09");
    EXPECT_FALSE(isParsed(binaryList(objects)));
}

TEST(BinaryPropertyList, ObjectsSharedAFewTimesAreRead) {
    EXPECT_TRUE(isParsed(binaryListWith("\xA3" + reference(1) + reference(1) + reference(1))));
}

}  // namespace
}  // namespace vantrel::gnustep

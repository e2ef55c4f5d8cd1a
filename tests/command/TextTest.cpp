#include <gmock/gmock.h>

#include "command/Text.h"

namespace vantrel {
namespace {

TEST(OnOneLine, WhatWouldEndOrDisturbALineIsSpelled) {
    EXPECT_EQ(onOneLine("a\nb\tc\r\x1b[1m\x7f"), "a\\nb\\tc\\x0d\\x1b[1m\\x7f");
    EXPECT_EQ(onOneLine("日本 \"a\" \\"), "日本 \"a\" \\");
}

TEST(OnOneLine, AnEmptyTextIsTwoQuotes) {
    EXPECT_EQ(onOneLine(""), "\"\"");
}

TEST(Columns, AChineseOrJapaneseCharacterTakesTwo) {
    EXPECT_EQ(columns("abc"), 3U);
    EXPECT_EQ(columns("größe"), 5U);
    EXPECT_EQ(columns("日本😀"), 6U);
}

TEST(InColumns, AShortTextIsFilledUpAndALongOneLosesItsStart) {
    EXPECT_EQ(inColumns("abc", 5), "abc  ");
    EXPECT_EQ(inColumns("abcdef", 6), "abcdef");
    EXPECT_EQ(inColumns("abcdefg", 6), "…cdefg");
    EXPECT_EQ(inColumns("日本日本", 6), "…日本 ");
}

TEST(InColumns, ALongTextIsCutAsAShortOne) {
    EXPECT_EQ(inColumns(std::string(1'000'000, 'a'), 6), "…aaaaa");
}

TEST(Styled, TheStyleEndsWithTheTextAndNoStyleAddsNothing) {
    EXPECT_EQ(styled(bold, "abc"), "\033[1mabc\033[0m");
    EXPECT_EQ(styled("", "abc"), "abc");
}

TEST(Nearest, IsTheNameWithTheFewestOtherLetters) {
    const std::vector<std::string> names{"list", "get", "set", "export"};
    EXPECT_EQ(nearest("lst", names), "list");
    EXPECT_EQ(nearest("EXPROT", names), "export");
    EXPECT_EQ(nearest("et", names), "get");
    EXPECT_EQ(nearest("", names), "get");
}

TEST(ShellWord, IsReadBackByAShellAsItWas) {
    EXPECT_EQ(shellWord("/a-b_c.plist"), "/a-b_c.plist");
    EXPECT_EQ(shellWord("a b"), "'a b'");
    EXPECT_EQ(shellWord("it's"), "'it'\\''s'");
    EXPECT_EQ(shellWord("$(rm)"), "'$(rm)'");
    EXPECT_EQ(shellWord(""), "''");
}

TEST(Names, AreTheSameInAnyCase) {
    EXPECT_TRUE(isSameName("FormatRGB8", "formatrgb8"));
    EXPECT_FALSE(isSameName("FormatRGB8", "FormatRGB"));
    EXPECT_FALSE(isSameName("look", "loom"));
}

}  // namespace
}  // namespace vantrel

#include <gmock/gmock.h>

#include <string>

#include "platform/gnustep/TextPropertyList.h"
#include "tests/platform/gnustep/PropertyListTesting.h"

namespace vantrel::gnustep {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

/// How the value reads that is written `value` in the old style.
std::string readOfText(const std::string& value) {
    const auto list = PropertyList::parse("{ key = " + value + "; }");
    return list ? readOf(*list) : "damaged";
}

std::string elementOf(const std::string& value) {
    return std::string(parsed("{ key = " + value + "; }").element("key"));
}

TEST(TextPropertyList, ValuesWithoutATypeAreTexts) {
    EXPECT_EQ(readOfText("1"), "text \"1\"");
    EXPECT_EQ(readOfText("YES"), "text \"YES\"");
    EXPECT_EQ(readOfText("/Library/LUTs"), "text \"/Library/LUTs\"");
    EXPECT_EQ(readOfText("!#$%&*+-./:?@^_|~"), "text \"!#$%&*+-./:?@^_|~\"");
    EXPECT_EQ(readOfText("\"a b\""), "text \"a b\"");
    EXPECT_EQ(readOfText("\"\""), "text \"\"");
    EXPECT_EQ(readOfText(""), "text \"\"");
    EXPECT_EQ(readOfText("\"<é>&😀\""), "text \"<é>&😀\"");
}

TEST(TextPropertyList, GNUstepsTypesAreRead) {
    EXPECT_EQ(readOfText("<*BY>"), "true");
    EXPECT_EQ(readOfText("<*BN>"), "false");
    EXPECT_EQ(readOfText("<*I15>"), "number 15");
    EXPECT_EQ(readOfText("<*I-1>"), "number -1");
    EXPECT_EQ(readOfText("<*I\"15\">"), "number 15");
    EXPECT_EQ(readOfText("<*R2.0>"), "number 2");
    EXPECT_EQ(elementOf("<*R0.1>"), "<real>0.1</real>");
    EXPECT_EQ(elementOf("<*D2001-12-31 23:59:59 +0000>"), "<date>2001-12-31T23:59:59Z</date>");
    EXPECT_EQ(elementOf("<*D2001-12-31 23:59:59 +0100>"), "<date>2001-12-31 23:59:59 +0100</date>");
    EXPECT_EQ(elementOf("<[AAEC AA==]>"), "<data>AAEC AA==</data>");
    for (const auto* value :
         {"<*>", "<*BX>", "<*Q1>", "<*I1<2>", "<*I&>", "<*R<>", "<*Dx>", "<[&]>", "<*I1", "<[AAEC"}) {
        EXPECT_EQ(readOfText(value), "damaged") << value;
    }
}

TEST(TextPropertyList, DataIsHexadecimal) {
    EXPECT_EQ(elementOf("<0fbD 77>"), "<data>D713</data>");
    EXPECT_EQ(elementOf("<>"), "<data></data>");
    for (const auto* value : {"<0>", "<0g>", "<00"}) EXPECT_EQ(readOfText(value), "damaged") << value;
}

TEST(TextPropertyList, EscapesAreRead) {
    EXPECT_EQ(readOfText(R"("\a\b\t\r\n\v\f\"\\\q")"), "text \"\a\b\t\r\n\v\f\"\\q\"");
    EXPECT_EQ(readOfText(R"("\101\0010\400")"),
              "text \"A\x01"
              "0Ā\"");
    EXPECT_EQ(readOfText(R"("\U00e9\u00E9\Ud83d\UDE00")"), "text \"éé😀\"");
    EXPECT_EQ(readOfText(R"("\\U0041")"), "text \"\\U0041\"");
    EXPECT_EQ(readOfText("\"\\é\""), "text \"é\"");
    EXPECT_EQ(readOfText(R"("\UDE00\UD83D")"), "text \"\xED\xB8\x80\xED\xA0\xBD\"");
    for (const auto& value : {"\"\xE9\""s, "\"\0\xE9\""s, "\"a"s, "\"a\\"s}) {
        EXPECT_EQ(readOfText(value), "damaged") << value;
    }
}

TEST(TextPropertyList, ContainersAreOfOtherTypes) {
    EXPECT_EQ(
        elementOf("(a, (), { b = c; })"),
        "<array>\n<string>a</string>\n<array>\n</array>\n<dict>\n<key>b</key>\n<string>c</string>\n</dict>\n</array>");
    EXPECT_EQ(elementOf("(a, b,)"), elementOf("(a, b)"));
    for (const auto* value :
         {"(a b)", "(a", "{ a = b", "{ a }", "{ a = b c = d; }", "{ (a) = b; }", "{ <00> = b; }", ")"}) {
        EXPECT_EQ(readOfText(value), "damaged") << value;
    }
}

TEST(TextPropertyList, CommentsAndTheLastSemicolonMayBeThereOrNot) {
    const auto list = parsed("// one\n/* two */ { \"a\"/**/=//\n1; b = /* } */ 2 } // three");
    EXPECT_THAT(list.keys(), ElementsAre("a", "b"));
    EXPECT_EQ(readOf(list, "b"), "text \"2\"");
    EXPECT_FALSE(isParsed("/*/ { a = 1; }"));
}

TEST(TextPropertyList, OnlyADictionaryMayStandAtTheTop) {
    for (const auto* list : {"(a)", "a", "\"a\"", "<00>", "/* a */", "{ a = 1; } b", "{ a = 1; } {}"}) {
        EXPECT_FALSE(isParsed(list)) << list;
    }
    EXPECT_TRUE(isParsed("{}"));
    EXPECT_TRUE(isParsed("\f{ }\n"));
}

TEST(TextPropertyList, ZerosBehindItAreCutOff) {
    EXPECT_TRUE(isParsed("{ a = 1; }\n\0\0"s));
}

TEST(TextPropertyList, BytesThatAreNotUTF8AreDamage) {
    for (const auto* bytes : {"\xFF", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xF4\x90\x80\x80"}) {
        EXPECT_FALSE(isParsed("{ a = \""s + bytes + "\"; }")) << bytes;
    }
    EXPECT_TRUE(isParsed("{ a = \"é\xEF\xBF\xBD\"; }"));
}

TEST(TextPropertyList, AListThatStopsAnywhereIsDamaged) {
    const auto whole = R"({ a = "b\U0041"; c = (<*I1>, <00>); })"s;
    ASSERT_TRUE(isParsed(whole));
    for (std::size_t length = 0; length < whole.size(); ++length) EXPECT_FALSE(isParsed(whole.substr(0, length)));
}

TEST(TextPropertyList, OfAKeyThatComesTwiceTheLastValueCounts) {
    EXPECT_EQ(readOf(parsed("{ key = 1; key = 2; }")), "text \"2\"");
}

TEST(TextPropertyList, NestingEndsTheReadAndNotTheProcess) {
    const auto nested = [](std::size_t depth) {
        return "{ a = " + std::string(depth, '(') + std::string(depth, ')') + "; }";
    };
    EXPECT_TRUE(isParsed(nested(deepestNesting)));
    EXPECT_FALSE(isParsed(nested(deepestNesting + 1)));
    EXPECT_FALSE(isParsed(nested(1'000'000)));
    EXPECT_TRUE(isParsed("{ a = \"" + std::string(1000, '(') + "\"; }"));
}

}  // namespace
}  // namespace vantrel::gnustep

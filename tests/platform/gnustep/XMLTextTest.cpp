#include <gmock/gmock.h>

#include "platform/gnustep/PropertyList.h"
#include "platform/gnustep/XMLText.h"

namespace vantrel::gnustep {
namespace {

using namespace std::string_literals;

std::string xmlFrom(std::string_view text) {
    std::string xml;
    appendText(xml, text);
    return xml;
}

TEST(XMLText, ATextIsWrittenSoThatEveryReaderGetsIt) {
    EXPECT_EQ(xmlFrom("a\rb"), "a&#13;b");
    EXPECT_EQ(xmlFrom("\\U0041\x01"), "\\U005CU0041\\U0001");
    EXPECT_EQ(xmlFrom("😀<&>"), "😀&lt;&amp;&gt;");
    EXPECT_EQ(xmlFrom("a\0\xEF\xBF\xBE"s), "a\\U0000\\UFFFE");
    EXPECT_EQ(xmlFrom("\xED\xA0\xBD-\xED\xB8\x80"), "\\UD83D-\\UDE00");
}

TEST(XMLText, BytesThatAreNoTextBecomeReplacementCharacters) {
    EXPECT_EQ(xmlFrom("a\xFF\xC3"), "a\xEF\xBF\xBD\xEF\xBF\xBD");
    for (const auto* bytes : {"\xC1\xBF", "\xE0\x80\x80", "\xF4\x90\x80\x80", "\xF7\xBF\xBF\xBF", "\x80"}) {
        EXPECT_THAT(xmlFrom(bytes), testing::StartsWith("\xEF\xBF\xBD")) << bytes;
    }
}

TEST(XMLText, WritingStopsOnceItIsTooMuch) {
    EXPECT_LT(xmlFrom(std::string(largestPropertyList, '\1')).size(), largestPropertyList + 10);
}

TEST(XMLText, EscapesAreReadAsTheUnitsOfUTF16) {
    EXPECT_EQ(withEscapesRead("a\\U0001b\\U00e9\\UD83D\\UDE00"), "a\x01"s + "bé😀");
    EXPECT_EQ(withEscapesRead("\\U005CU0041"), "\\U0041");
    EXPECT_EQ(withEscapesRead("\\UDE00\\UD83D\\U0041x"),
              "\xED\xB8\x80\xED\xA0\xBD"
              "Ax");
    for (const auto* text : {"\\U", "\\U004", "\\U00g1", "C:\\Users"}) {
        EXPECT_EQ(withEscapesRead(text), text);
    }
}

TEST(XMLText, OnlyPairsAreReadWhereOnlyPairsAreWanted) {
    EXPECT_EQ(withPairsRead("\\U0041\\UD83D\\UDE00\\UD83D"), "\\U0041😀\\UD83D");
}

TEST(XMLText, DataIsPaddedToGroupsOfFour) {
    EXPECT_EQ(base64(""), "");
    EXPECT_EQ(base64("\0"s), "AA==");
    EXPECT_EQ(base64("\xFF\xFE"), "//4=");
    EXPECT_EQ(base64("abcd"), "YWJjZA==");
    EXPECT_EQ(base64("\0\x01\x02"s), "AAEC");
}

}  // namespace
}  // namespace vantrel::gnustep

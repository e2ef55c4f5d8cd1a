#include <gtest/gtest.h>

#include "platform/text/UTF16.h"
#include "tests/Rules.h"

namespace vantrel::text {
namespace {

struct Text : Rule {
    std::string_view utf8;
    std::u16string_view utf16;
};

const Text texts[] = {
    {{"AnEmptyText"}, "", u""},
    {{"ASCII"}, "/Volumes/LUTs", u"/Volumes/LUTs"},
    {{"AZero"}, {"a\0b", 3}, {u"a\0b", 3}},
    {{"TheLastOfOneByte"}, "\x7F", u"\x7F"},
    {{"TheFirstOfTwoBytes"}, "\xC2\x80", u"\x80"},
    {{"TheLastOfTwoBytes"}, "\xDF\xBF", u"\x7FF"},
    {{"TheFirstOfThreeBytes"}, "\xE0\xA0\x80", u"\x800"},
    {{"TheLastBeforeTheSurrogates"}, "\xED\x9F\xBF", u"\xD7FF"},
    {{"TheFirstBehindTheSurrogates"}, "\xEE\x80\x80", u"\xE000"},
    {{"TheLastOfThreeBytes"}, "\xEF\xBF\xBF", u"\xFFFF"},
    {{"TheFirstOfFourBytes"}, "\xF0\x90\x80\x80", u"\xD800\xDC00"},
    {{"AnEmoji"}, "\xF0\x9F\x8E\xAC", u"\xD83C\xDFAC"},
    {{"TheLastCharacter"}, "\xF4\x8F\xBF\xBF", u"\xDBFF\xDFFF"},
    {{"AHighHalf"}, "a\xED\xA0\x80z", u"a\xD800z"},
    {{"ALowHalf"}, "\xED\xBF\xBF", u"\xDFFF"},
    {{"AHighHalfAtTheEnd"}, "a\xED\xAF\xBF", u"a\xDBFF"},
    {{"AHighHalfWhoseOtherIsBehindTheEnd"}, "\xED\xA0\x80", {u"\xD800\xDC00", 1}},
    {{"HalvesInTheWrongOrder"}, "\xED\xB0\x80\xED\xA0\x80", u"\xDC00\xD800"},
    {{"AHalfBeforeAPair"}, "\xED\xA0\x80\xF0\x90\x80\x80", u"\xD800\xD800\xDC00"},
};

class EachText : public testing::TestWithParam<Text> {};

TEST_P(EachText, HasOneFormInEach) {
    EXPECT_EQ(toUTF16(GetParam().utf8), GetParam().utf16);
    EXPECT_EQ(fromUTF16(GetParam().utf16), GetParam().utf8);
}

INSTANTIATE_TEST_SUITE_P(ByRule, EachText, testing::ValuesIn(texts), ByRule());

/// Bytes that are no text, which have no way back.
const Text damaged[] = {
    {{"AByteThatNothingBeginsWith"}, "a\xFFz", u"a\uFFFDz"},
    {{"AContinuationWithoutABeginning"}, "\x80", u"\uFFFD"},
    {{"FiveBytes"}, "\xF8\x88\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
    {{"ATextThatIsCut"}, "a\xE6\xBC", u"a\uFFFD\uFFFD"},
    {{"ACharacterThatBreaksOff"}, "\xE6\xBCz", u"\uFFFD\uFFFDz"},
    {{"TooManyBytesForAPoint"}, "\xC0\xAE", u"\uFFFD\uFFFD"},
    {{"TooManyBytesForTwo"}, "\xE0\x82\x80", u"\uFFFD\uFFFD\uFFFD"},
    {{"PastTheLastCharacter"}, "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
};

class EachDamagedText : public testing::TestWithParam<Text> {};

TEST_P(EachDamagedText, HasAReplacementCharacterForEachByte) {
    EXPECT_EQ(toUTF16(GetParam().utf8), GetParam().utf16);
}

INSTANTIATE_TEST_SUITE_P(ByRule, EachDamagedText, testing::ValuesIn(damaged), ByRule());

}  // namespace
}  // namespace vantrel::text

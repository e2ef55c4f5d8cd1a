#include <gmock/gmock.h>

#include <array>
#include <bit>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/gnustep/PropertyList.h"
#include "platform/gnustep/PropertyListText.h"
#include "platform/gnustep/XMLPropertyList.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::gnustep {
namespace {

using namespace std::string_literals;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::Optional;

std::string listOf(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n<dict>\n" +
           entries + "</dict>\n</plist>\n";
}

/// The list that holds `element` under "key".
PropertyList listWith(const std::string& element) {
    auto list = PropertyList::parse(listOf("<key>key</key>" + element));
    EXPECT_TRUE(list) << element;
    return list.value_or(PropertyList());
}

bool isParsed(const std::string& bytes) {
    return PropertyList::parse(bytes).has_value();
}

/// What a read of "key" finds, in words: "absent", "true", "number 5", "unreadable number", "text \"x\"", "other".
std::string readOf(const PropertyList& list) {
    const auto value = list.value("key");
    if (std::holds_alternative<Absent>(value)) return "absent";
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    if (const auto* text = std::get_if<std::string>(&value)) return "text \"" + *text + '"';
    if (const auto* number = std::get_if<Number>(&value)) {
        return number->longValue ? "number " + std::to_string(*number->longValue) : "unreadable number";
    }
    return "other";
}

std::string readOf(const std::string& element) {
    return readOf(listWith(element));
}

/// While it lives, the process's locale has a decimal sign that nobody expects: libplist knows of commas. Made on the
/// spot: none may be installed.
class LocaleWithItsOwnSign {
public:
    LocaleWithItsOwnSign() {
        folder_.write("source", "LC_NUMERIC\ndecimal_point \"'\"\nthousands_sep \"\"\ngrouping -1\nEND LC_NUMERIC\n");
        const auto command = "localedef -c -i " + folder_ / "source" + " " + folder_ / "sign" + " >/dev/null 2>&1";
        // It warns of every category that isn't there, and tells of warnings like of errors.
        [[maybe_unused]] const int warned = std::system(command.c_str());
        setenv("LOCPATH", folder_.path.c_str(), 1);
        const bool isSet = std::setlocale(LC_NUMERIC, "sign") != nullptr;
        unsetenv("LOCPATH");
        if (!isSet) throw std::runtime_error("no locale at " + folder_.path);
    }
    LocaleWithItsOwnSign(const LocaleWithItsOwnSign&) = delete;
    LocaleWithItsOwnSign& operator=(const LocaleWithItsOwnSign&) = delete;
    ~LocaleWithItsOwnSign() { std::setlocale(LC_NUMERIC, "C"); }

private:
    posix::TemporaryFolder folder_;
};

std::string oneAndAHalf() {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "%.1f", 1.5);
    return text.data();
}

// Typed reads

TEST(PropertyListRead, AKeyThatIsNotThereIsAbsent) {
    EXPECT_EQ(readOf(PropertyList()), "absent");
}

TEST(PropertyListRead, BooleansAreBooleansAndNoNumbers) {
    EXPECT_EQ(readOf("<true/>"), "true");
    EXPECT_EQ(readOf("<false></false>"), "false");
    EXPECT_EQ(listWith("<true/>").integer("key"), std::nullopt);
}

TEST(PropertyListRead, IntegersOfEitherSignAreNumbers) {
    EXPECT_EQ(readOf("<integer>46</integer>"), "number 46");
    EXPECT_EQ(readOf("<integer>-1</integer>"), "number -1");
    EXPECT_EQ(readOf("<integer> +5\n</integer>"), "number 5");
    EXPECT_EQ(readOf("<integer>0x1F</integer>"), "number 31");
}

TEST(PropertyListRead, AnIntegerReadsAsALongUpToItsEnds) {
    const auto least = std::to_string(std::numeric_limits<long>::min());
    const auto most = std::to_string(std::numeric_limits<long>::max());
    EXPECT_EQ(readOf("<integer>" + least + "</integer>"), "number " + least);
    EXPECT_EQ(readOf("<integer>" + most + "</integer>"), "number " + most);
}

TEST(PropertyListRead, AnIntegerPastALongIsAnUnreadableNumber) {
    const auto pastIt = std::to_string(static_cast<unsigned long>(std::numeric_limits<long>::max()) + 1);
    EXPECT_EQ(readOf("<integer>" + pastIt + "</integer>"), "unreadable number");
    EXPECT_EQ(readOf("<integer>-9223372036854775809</integer>"), "unreadable number");
    EXPECT_EQ(readOf("<integer>18446744073709551615</integer>"), "unreadable number");
    EXPECT_EQ(readOf("<integer>99999999999999999999999</integer>"), "unreadable number");
}

TEST(PropertyListRead, AnIntegerThatIsNoneIsAnUnreadableNumber) {
    EXPECT_EQ(readOf("<integer>abc</integer>"), "unreadable number");
    EXPECT_EQ(readOf("<integer>1 2</integer>"), "unreadable number");
    EXPECT_EQ(readOf("<integer/>"), "unreadable number");
}

TEST(PropertyListRead, AWholeRealNumberReadsAsALong) {
    EXPECT_EQ(readOf("<real>1.0</real>"), "number 1");
    EXPECT_EQ(readOf("<real>-0.0</real>"), "number 0");
    EXPECT_EQ(readOf("<real>+1e3</real>"), "number 1000");
}

TEST(PropertyListRead, ARealNumberThatWouldLoseSomethingIsUnreadable) {
    for (const auto* real : {"1.5", "0.1", "1e308", "9223372036854775808", "nan", "+infinity", "-inf", "", "x"}) {
        EXPECT_EQ(readOf("<real>"s + real + "</real>"), "unreadable number") << real;
    }
}

TEST(PropertyListRead, DataDatesArraysAndDictionariesAreOfOtherTypes) {
    EXPECT_EQ(readOf("<data>AAEC</data>"), "other");
    EXPECT_EQ(readOf("<date>2001-01-01T00:00:00Z</date>"), "other");
    EXPECT_EQ(readOf("<array><true/><array/></array>"), "other");
    EXPECT_EQ(readOf("<dict><key>a</key><dict><key>b</key><true/></dict></dict>"), "other");
}

TEST(PropertyListRead, ATextComesWithoutItsXML) {
    EXPECT_EQ(readOf("<string>a &lt;&amp;&gt; &quot;&apos; &#65;&#x1F600;</string>"), "text \"a <&> \"' A😀\"");
    EXPECT_EQ(readOf("<string>x<![CDATA[<&>]]>y<!-- no -->z</string>"), "text \"x<&>yz\"");
    EXPECT_EQ(readOf("<string/>"), "text \"\"");
    EXPECT_EQ(readOf("<string>  kept \n </string>"), "text \"  kept \n \"");
}

TEST(PropertyListRead, ATextComesWithoutGNUstepsEscapes) {
    EXPECT_EQ(readOf("<string>a\\U0001b\\U00e9\\UD83D\\UDE00</string>"), "text \"a\x01"s + "bé😀\"");
    EXPECT_EQ(readOf("<string>\\U005CU0041</string>"), "text \"\\U0041\"");
}

TEST(PropertyListRead, HalfASurrogatePairIsReadAsTheTextThatHasIt) {
    EXPECT_EQ(readOf("<string>\\UD83D</string>"), "text \"\xED\xA0\xBD\"");
    EXPECT_EQ(readOf("<string>\\UDE00\\UD83D</string>"), "text \"\xED\xB8\x80\xED\xA0\xBD\"");
    EXPECT_EQ(readOf("<string>\\UD83D\\U0041x</string>"),
              "text \"\xED\xA0\xBD"
              "Ax\"");
}

TEST(PropertyListRead, WhatOnlyLooksLikeAnEscapeStays) {
    for (const auto* text : {"\\U", "\\U004", "\\U00g1", "C:\\Users"}) {
        EXPECT_EQ(readOf("<string>"s + text + "</string>"), "text \""s + text + '"');
    }
}

TEST(PropertyListRead, OfAKeyThatComesTwiceTheLastValueCounts) {
    EXPECT_EQ(readOf("<true/><key>key</key><integer>2</integer>"), "number 2");
}

TEST(PropertyListRead, KeysAreReadAsTexts) {
    const auto list =
        PropertyList::parse(listOf("<key>b&amp;\\U0041</key><true/><key></key><true/><key>a</key><true/>"));
    ASSERT_TRUE(list);
    EXPECT_THAT(list->keys(), ElementsAre("", "a", "b&A"));
}

TEST(PropertyListRead, AnIntValueIsTheLowHalfOfAnIntegerAndTheWholePartOfAReal) {
    EXPECT_EQ(listWith("<integer>-7</integer>").intValue("key"), -7);
    EXPECT_EQ(listWith("<integer>4294967299</integer>").intValue("key"), 3);
    EXPECT_EQ(listWith("<integer>18446744073709551615</integer>").intValue("key"), -1);
    EXPECT_EQ(listWith("<real>-2.9</real>").intValue("key"), -2);
    EXPECT_EQ(listWith("<real>1e300</real>").intValue("key"), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(listWith("<real>nan</real>").intValue("key"), std::nullopt);
    EXPECT_EQ(listWith("<true/>").intValue("key"), 1);
    EXPECT_EQ(listWith("<string>1</string>").intValue("key"), std::nullopt);
    EXPECT_EQ(PropertyList().intValue("key"), std::nullopt);
}

// What is a property list

TEST(PropertyListParse, AListMayStartWithAByteOrderMarkOrWhiteSpaceOrNothing) {
    EXPECT_TRUE(isParsed("\xEF\xBB\xBF" + listOf("")));
    EXPECT_TRUE(isParsed("\n <plist><dict/></plist>"));
    EXPECT_TRUE(isParsed("<dict></dict>"));
    EXPECT_TRUE(isParsed("<!-- a --><plist version='1.0'><!-- b --><dict><!-- c --></dict></plist><!-- d -->"));
}

TEST(PropertyListParse, AnEmptyOrForeignFileIsNone) {
    EXPECT_FALSE(isParsed(""));
    EXPECT_FALSE(isParsed("{ a = 1; }"));
    EXPECT_FALSE(isParsed("\x89PNG\r\n"));
    EXPECT_FALSE(isParsed("<html><dict/></html>"));
}

TEST(PropertyListParse, OnlyADictionaryMayStandAtTheTop) {
    EXPECT_FALSE(isParsed("<plist><array/></plist>"));
    EXPECT_FALSE(isParsed("<plist><string>a</string></plist>"));
    EXPECT_FALSE(isParsed("<plist/>"));
    EXPECT_FALSE(isParsed("<plist><dict/><dict/></plist>"));
}

TEST(PropertyListParse, AListThatStopsAnywhereIsDamaged) {
    const auto whole = listOf("<key>a</key><string>b<![CDATA[c]]>&amp;</string><key>d</key><array><true/></array>");
    ASSERT_TRUE(isParsed(whole));
    const auto end = whole.rfind('>');
    for (std::size_t length = 0; length < end; ++length) EXPECT_FALSE(isParsed(whole.substr(0, length))) << length;
}

TEST(PropertyListParse, TagsThatDontBelongTogetherAreDamage) {
    for (const auto* entries :
         {"<key>a</key>", "<true/>", "<key>a</key><key>b</key><true/>", "<key>a</key><integer>1</real>",
          "<key>a</key><array></dict>", "<key>a</key><dict></array>", "<key>a</key><dict><true/></dict>",
          "<key>a</key><dict><key>b</key></dict>", "<key>a</key><string><b/></string>", "<key>a</key><wrong/>",
          "<key>a</key><string>&unknown;</string>", "<key>a</key><string>&#0;</string>",
          "<key>a</key><string>&#xD800;</string>", "<key>a</key><string>&amp</string>",
          "<key>a</key><string class=\"x\">y</string>", "</array>"}) {
        EXPECT_FALSE(isParsed(listOf(entries))) << entries;
    }
}

TEST(PropertyListParse, EntitiesOfItsOwnAreNotRead) {
    EXPECT_FALSE(isParsed("<!DOCTYPE plist [<!ENTITY a 'b'>]><plist><dict/></plist>"));
    EXPECT_FALSE(isParsed("<!DOCTYPE plist SYSTEM 'x' [<!ATTLIST plist a CDATA 'b'>]><plist><dict/></plist>"));
    EXPECT_FALSE(isParsed("<!DOCTYPE plist []><plist><dict/></plist>"));
}

TEST(PropertyListParse, TheDocumentTypeIsNotFetched) {
    const posix::TemporaryFolder folder;
    folder.write("types", "<!ENTITY a 'b'>");
    const auto type = "<!DOCTYPE plist SYSTEM '" + folder / "types" + "'>";
    EXPECT_TRUE(isParsed(type + "<plist><dict/></plist>"));
    EXPECT_FALSE(isParsed(type + "<plist><dict><key>&a;</key><true/></dict></plist>"));
}

TEST(PropertyListParse, BytesThatAreNotUTF8AreDamage) {
    for (const auto& bytes :
         {"\xFF"s, "\xC3"s, "\xC0\x80"s, "\xE0\x80\x80"s, "\xED\xA0\x80"s, "\xF4\x90\x80\x80"s, "\0"s}) {
        EXPECT_FALSE(isParsed(listOf("<key>a</key><string>" + bytes + "</string>")));
    }
}

TEST(PropertyListParse, OtherEncodingsAreReadAsDeclared) {
    const auto listIn = [](const std::string& encoding) {
        return "<?xml version='1.0' encoding='" + encoding + "'?><plist><dict><key>key</key><string>\xE9\r</string>" +
               "<key>z</key><data>AA==</data></dict></plist>";
    };
    const auto latin = PropertyList::parse(listIn("ISO-8859-1"));
    ASSERT_TRUE(latin);
    EXPECT_EQ(readOf(*latin), "text \"é\n\"");
    EXPECT_EQ(latin->toXML(), listOf("\t<key>key</key>\n\t<string>é\n</string>\n"
                                     "\t<key>z</key>\n\t<data>AA==</data>\n"));
    EXPECT_FALSE(isParsed(listIn("UTF-8")));
    EXPECT_FALSE(isParsed(listIn("ASCII")));
    EXPECT_FALSE(isParsed(listIn("unheard-of")));
}

TEST(PropertyListParse, UTF16IsRead) {
    std::string bytes = "\xFF\xFE";
    for (const char byte : "<plist><dict><key>key</key><string>a</string></dict></plist>"s) bytes += {byte, '\0'};
    const auto list = PropertyList::parse(bytes);
    ASSERT_TRUE(list);
    EXPECT_EQ(readOf(*list), "text \"a\"");
}

TEST(PropertyListParse, NothingMayStandBehindTheList) {
    for (const auto& behind : {"x"s, "\0"s, "\0<plist><dict/></plist>"s, "<plist/>"s}) {
        EXPECT_FALSE(isParsed(listOf("") + behind));
    }
}

TEST(PropertyListParse, TextBetweenTagsIsDamage) {
    for (const auto* entries : {"x", "<key>a</key>x<true/>", "<key>a</key><array>x</array>", "<![CDATA[x]]>"}) {
        EXPECT_FALSE(isParsed(listOf(entries))) << entries;
    }
    EXPECT_FALSE(isParsed("<plist>x<dict/></plist>"));
}

TEST(PropertyListParse, TagsOfAnotherNameSpaceAreDamage) {
    EXPECT_FALSE(isParsed("<plist xmlns:a='b'><a:dict/></plist>"));
    EXPECT_FALSE(isParsed("<plist><dict xmlns='b'/></plist>"));
}

TEST(PropertyListParse, DamageIsSilent) {
    testing::internal::CaptureStderr();
    EXPECT_FALSE(isParsed("<plist><dict></plist>"));
    EXPECT_FALSE(isParsed("<?xml version='1.0' encoding='unheard-of'?><plist/>"));
    EXPECT_FALSE(isParsed("<?xml version='1.0' encoding='ISO-8859-1'?><plist>"));
    EXPECT_EQ(xmlFromText("\xF7\xBF\xBF\xBF").find("\xEF\xBF\xBD"), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(PropertyListParse, ALongListIsCutWhereItsEntriesStart) {
    std::string entries;
    for (int number = 10'000; number < 20'000; ++number) {
        const auto text = std::to_string(number);
        entries += "\t<key>é" + text + "</key>\n\t<string >&quot;" + text + "<!-- <é> --></string>\n";
    }
    const auto list = PropertyList::parse("\xEF\xBB\xBF" + listOf(entries));
    ASSERT_TRUE(list);
    EXPECT_EQ(list->toXML(), listOf(entries));
}

TEST(PropertyListParse, ALongEntryIsReadWhole) {
    const auto data = "<data>" + std::string(12'000'000, 'A') + "</data>";
    EXPECT_THAT(listWith(data).toXML(), HasSubstr(data));
}

TEST(PropertyListParse, NestingEndsTheReadAndNotTheProcess) {
    const auto nested = [](std::size_t depth) {
        std::string arrays;
        for (std::size_t level = 0; level < depth; ++level) arrays += "<array>";
        for (std::size_t level = 0; level < depth; ++level) arrays += "</array>";
        return listOf("<key>a</key>" + arrays);
    };
    EXPECT_TRUE(isParsed(nested(deepestNesting)));
    EXPECT_FALSE(isParsed(nested(deepestNesting + 1)));
    EXPECT_FALSE(isParsed(nested(200'000)));
}

TEST(PropertyListParse, AQuoteDoesntHideNesting) {
    std::string arrays;
    for (std::size_t level = 0; level <= deepestNesting; ++level) arrays += "<array>";
    for (std::size_t level = 0; level <= deepestNesting; ++level) arrays += "</array>";
    const auto list = "<dict><key>a</key>" + arrays + "</dict>";
    EXPECT_FALSE(isParsed("<!DOCTYPE plist \"><dict/><!-- \">" + list + "<!-- -->"));
    EXPECT_FALSE(isParsed("<?x \"?><dict/><!-- \"?>" + list + "<!-- -->"));
}

TEST(PropertyListParse, AKeyWithANulIsDamage) {
    EXPECT_FALSE(isParsed(listOf("<key>a\0b</key><true/>"s)));
}

TEST(PropertyListParse, AListPastTheLargestIsNotRead) {
    EXPECT_FALSE(isParsed(listOf("") + std::string(largestPropertyList, ' ')));
}

// Changes

TEST(PropertyListChange, WhatIsSetIsReadBack) {
    PropertyList list;
    list.setBoolean("key", true);
    EXPECT_EQ(readOf(list), "true");
    list.setInteger("key", -5);
    EXPECT_EQ(readOf(list), "number -5");
    list.setString("key", "a path");
    EXPECT_EQ(readOf(list), "text \"a path\"");
    list.remove("key");
    EXPECT_EQ(readOf(list), "absent");
    list.remove("key");
}

TEST(PropertyListChange, EveryTextSurvivesTheFile) {
    const std::string texts[] = {"",
                                 "plain",
                                 " spaces ",
                                 "a\rb\nc\td\r\n",
                                 "<&>\"'",
                                 "ü 😀 \xEF\xBF\xBE\xEF\xBF\xBF",
                                 "\\U0041 \\UD83D\\UDE00 \\UDE00 \\U \\",
                                 "\\U005CU0041",
                                 "]]> <!-- <![CDATA[",
                                 "\x01\x1B\x7F"s,
                                 "\xED\xA0\xBD half \xED\xB8\x80",
                                 "a\0b"s};
    for (const auto& text : texts) {
        PropertyList list;
        list.setString("key", text);
        list.setBoolean(text, true);
        EXPECT_EQ(readOf(list), "text \"" + text + '"');
        const auto again = PropertyList::parse(list.toXML());
        ASSERT_TRUE(again) << list.toXML();
        EXPECT_EQ(readOf(*again), "text \"" + text + '"') << list.toXML();
        EXPECT_EQ(again->keys(), list.keys());
    }
}

TEST(PropertyListChange, ATextIsWrittenSoThatEveryReaderGetsIt) {
    EXPECT_EQ(xmlFromText("a\rb"), "a&#13;b");
    EXPECT_EQ(xmlFromText("\\U0041\x01"), "\\U005CU0041\\U0001");
    EXPECT_EQ(xmlFromText("😀<&"), "😀&lt;&amp;");
    EXPECT_EQ(xmlFromText("\xED\xA0\xBD-\xED\xB8\x80"), "\\UD83D-\\UDE00");
}

TEST(PropertyListChange, BytesThatAreNoTextBecomeReplacementCharacters) {
    EXPECT_EQ(xmlFromText("a\xFF\xC3"), "a\xEF\xBF\xBD\xEF\xBF\xBD");
    for (const auto* bytes : {"\xC1\xBF", "\xE0\x80\x80", "\xF4\x90\x80\x80", "\x80"}) {
        EXPECT_THAT(xmlFromText(bytes), testing::StartsWith("\xEF\xBF\xBD")) << bytes;
    }
    PropertyList list;
    list.setString("key", "a\xFF");
    EXPECT_EQ(readOf(list), "text \"a\xEF\xBF\xBD\"");
}

TEST(PropertyListChange, AnEmptyListIsAList) {
    EXPECT_EQ(PropertyList().toXML(), listOf(""));
}

TEST(PropertyListChange, EntriesNotTouchedStayLetterForLetter) {
    const std::string entries =
        "\t<key>array</key>\n\t<array>\n\t\t<real>1.50</real>\n\t\t<dict>\n\t\t</dict>\n\t\t<!-- c -->\n\t</array>\n"
        "\t<key>data</key>\n\t<data>\n\tAAEC\n\tAw==\n\t</data>\n"
        "\t<key>dateOld</key>\n\t<date>0001-01-01T00:00:00Z</date>\n"
        "\t<key>dateRecent</key>\n\t<date>2170-12-31T23:59:59Z</date>\n"
        "\t<key>integer</key>\n\t<integer>+0x10</integer>\n"
        "\t<key>integerLarge</key>\n\t<integer>18446744073709551615</integer>\n"
        "\t<key>k&#233;\\U0041</key>\n\t<true></true>\n"
        "\t<key>minus</key>\n\t<real>-0.0</real>\n"
        "\t<key>nan</key>\n\t<real>nan</real>\n"
        "\t<key>string</key>\n\t<string>a\rb\\U0001&quot;<![CDATA[<]]></string>\n"
        "\t<key>tenth</key>\n\t<real>0.1</real>\n"
        "\t<key>uid</key>\n\t<dict><key>CF$UID</key><integer>7</integer></dict>\n";
    auto list = PropertyList::parse(listOf(entries));
    ASSERT_TRUE(list);
    EXPECT_EQ(list->toXML(), listOf(entries));

    list->setBoolean("zz", false);
    list->remove("tenth");
    const auto tenth = entries.find("\t<key>tenth");
    const auto uid = entries.find("\t<key>uid");
    EXPECT_EQ(list->toXML(), listOf(entries.substr(0, tenth) + entries.substr(uid) + "\t<key>zz</key>\n\t<false/>\n"));
}

TEST(PropertyListChange, TheLocaleDoesntMatter) {
    const LocaleWithItsOwnSign locale;
    ASSERT_EQ(oneAndAHalf(), "1'5");
    EXPECT_THAT(listWith("<real>1.5</real>").toXML(), HasSubstr("<real>1.5</real>"));
    EXPECT_EQ(listWith("<real>2.0</real>").integer("key"), 2);
    EXPECT_EQ(oneAndAHalf(), "1'5");
}

TEST(PropertyListChange, AListSurvivesItsCopyAndTheListItCameFrom) {
    auto original = std::make_optional(listWith("<array><string>a</string></array>"));
    const PropertyList copy = *original;
    PropertyList other;
    other.copyEntry("key", *original);
    const auto xml = original->toXML();
    original->setBoolean("key", true);
    original.reset();
    EXPECT_EQ(copy.toXML(), xml);
    EXPECT_EQ(other.toXML(), xml);
}

TEST(PropertyListChange, ACharacterThatGNUstepTookApartIsPutTogether) {
    const auto list = listWith("<array><string>\\UD83D\\UDE00 \\UD83D</string></array>");
    EXPECT_THAT(list.toXML(), HasSubstr("<string>😀 \\UD83D</string>"));
}

TEST(PropertyListChange, AnEntryCopiedIsTheSameEntry) {
    const auto from = listWith("<array><data>AA==</data></array>");
    PropertyList to;
    to.setBoolean("key", true);
    EXPECT_FALSE(to.hasSameEntry("key", from));
    to.copyEntry("key", from);
    EXPECT_TRUE(to.hasSameEntry("key", from));
    EXPECT_EQ(to.toXML(), from.toXML());
}

TEST(PropertyListChange, CopyingAnEntryThatIsNotThereRemovesIt) {
    auto to = listWith("<true/>");
    to.copyEntry("key", PropertyList());
    EXPECT_EQ(readOf(to), "absent");
}

TEST(PropertyListChange, EntriesAreTheSameInTypeAndValue) {
    const auto isSame = [](const char* one, const char* other) {
        return listWith(one).hasSameEntry("key", listWith(other));
    };
    EXPECT_TRUE(isSame("<true/>", "<true></true>"));
    EXPECT_FALSE(isSame("<true/>", "<false/>"));
    EXPECT_FALSE(isSame("<true/>", "<integer>1</integer>"));
    EXPECT_TRUE(isSame("<integer>16</integer>", "<integer>0x10</integer>"));
    EXPECT_FALSE(isSame("<integer>-1</integer>", "<integer>18446744073709551615</integer>"));
    EXPECT_FALSE(isSame("<integer>18446744073709551614</integer>", "<integer>18446744073709551615</integer>"));
    EXPECT_FALSE(isSame("<integer>1</integer>", "<real>1</real>"));
    EXPECT_TRUE(isSame("<string>a&lt;</string>", "<string>\\U0061<![CDATA[<]]></string>"));
    EXPECT_FALSE(isSame("<string>a</string>", "<string>A</string>"));
    EXPECT_FALSE(isSame("<string>a</string>", "<data>a</data>"));
    EXPECT_TRUE(PropertyList().hasSameEntry("key", PropertyList()));
    EXPECT_FALSE(PropertyList().hasSameEntry("key", listWith("<true/>")));
}

// Binary lists

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
}

TEST(BinaryPropertyList, BecomesAnXMLListOfTheSameValues) {
    const auto list = PropertyList::parse(
        binaryList({"\xD5" + reference(1) + reference(2) + reference(3) + reference(4) + reference(5) + reference(6) +
                        reference(7) + reference(8) + reference(9) + reference(10),
                    "\x51"
                    "a",
                    "\x51"
                    "b",
                    "\x51"
                    "c",
                    "\x51"
                    "d",
                    "\x51"
                    "e",
                    "\x14" + bigEndian(0, 8) + bigEndian(~0ULL, 8), "\x23" + bigEndian(0.1),
                    "\x33" + bigEndian(-63113904000.0), "\x43" + "\0\1\xFF"s, "\xA2" + reference(6) + reference(9)}));
    ASSERT_TRUE(list);
    const auto xml = list->toXML();
    EXPECT_THAT(xml, HasSubstr("<key>a</key>\n\t<integer>18446744073709551615</integer>"));
    EXPECT_THAT(xml, HasSubstr("<key>b</key>\n\t<real>0.10000000000000001</real>"));
    EXPECT_THAT(xml, HasSubstr("<key>c</key>\n\t<date>0001-01-01T00:00:00Z</date>"));
    EXPECT_THAT(xml, HasSubstr("AAH/"));
    EXPECT_TRUE(PropertyList::parse(xml));
}

TEST(BinaryPropertyList, TheLocaleDoesntMatter) {
    const LocaleWithItsOwnSign locale;
    ASSERT_EQ(oneAndAHalf(), "1'5");
    const auto list = PropertyList::parse(binaryListWith("\x23" + bigEndian(1.5)));
    ASSERT_TRUE(list);
    EXPECT_THAT(list->toXML(), HasSubstr("<real>1.5</real>"));
    EXPECT_EQ(oneAndAHalf(), "1'5");
}

TEST(BinaryPropertyList, WhatXMLCouldNotGiveBackIsDamage) {
    EXPECT_EQ(readOfBinary("\x53"
                           "a\0b"s),
              "damaged");
    EXPECT_EQ(readOfBinary("\x61" + bigEndian(0xD83D, 2)), "damaged");
    EXPECT_EQ(readOfBinary("\x61" + bigEndian(0xDE00, 2)), "damaged");
    EXPECT_EQ(readOfBinary("\x61" + bigEndian(0, 2)), "damaged");
    EXPECT_EQ(readOfBinary("\x51\xE9"), "damaged");
    EXPECT_EQ(readOfBinary("\x14" + bigEndian(1, 8) + bigEndian(0, 8)), "damaged");
    EXPECT_EQ(readOfBinary("\x33" + bigEndian(1e18)), "damaged");
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

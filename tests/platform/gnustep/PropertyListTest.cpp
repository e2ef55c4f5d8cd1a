#include <gmock/gmock.h>

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/gnustep/PropertyList.h"
#include "platform/gnustep/XMLText.h"
#include "tests/platform/gnustep/PropertyListTesting.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::gnustep {
namespace {

using namespace std::string_literals;
using testing::ElementsAre;

/// While it lives, the process's locale has a decimal sign that nobody expects. Made on the spot: none may be
/// installed.
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
    EXPECT_EQ(readOf("<string>x<![CDATA[<&>]]>y<!-- no -->z<?no?></string>"), "text \"x<&>yz\"");
    EXPECT_EQ(readOf("<string>\r<!-- -->\na\r\nb<![CDATA[\r]]>&#13;&#10;\r\r</string>"), "text \"\n\na\nb\n\r\n\n\n\"");
    EXPECT_EQ(readOf("<string><![CDATA[]]]]><![CDATA[>&amp;]]></string>"), "text \"]]>&amp;\"");
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
        parsed(listOf("<key>b&amp;\\U0041</key><true/><key></key><true/><key>a</key><true/><key>c\rd</key><true/>"
                      "<key>e<!-- f --></key><dict><key>in it</key><true/></dict><key ><![CDATA[<]]></key ><true/>"));
    EXPECT_THAT(list.keys(), ElementsAre("", "<", "a", "b&A", "c\nd", "e"));
    for (const auto& key : list.keys()) EXPECT_NE(list.element(key), "") << key;
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
    EXPECT_FALSE(isParsed("a = 1;"));
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

TEST(PropertyListParse, TextThatXMLDoesntHaveIsDamage) {
    for (const auto* text :
         {"]]>",          "&",        "&;",         "&#;",           "&#x;",    "&#-1;",       "&#+1;",        "&#65",
          "&#X41;",       "&#xFFFE;", "&#x110000;", "&#4294967361;", "&lt",     "&LT;",        "<!-- -- -->",  "<!--->",
          "<!-- ",        "<? a?>",   "<?a",        "<?a!?>",        "<?xml?>", "<![CDATA[]]", "<![cdata[]]>", "\x01",
          "\xEF\xBF\xBE", "\x1F"}) {
        EXPECT_FALSE(isParsed(listOf("<key>a</key><string>"s + text + "</string>"))) << text;
        EXPECT_FALSE(isParsed(listOf("<key>a</key>"s + text + "<true/>"))) << text;
    }
}

TEST(PropertyListParse, AListMayStartWithWhateverXMLAllowsThere) {
    for (const auto* start : {"<?xml version='1.0'?>", "<?xml\tversion = \"1.0\"\nencoding='UTF-8' standalone='yes' ?>",
                              "<?xml-style a?><?a?>", "<!DOCTYPE plist>", "<!DOCTYPE plist >",
                              "<!DOCTYPE plist SYSTEM \"'>\">", "<!-- a --><!DOCTYPE\nplist PUBLIC\n'a' 'b' >"}) {
        EXPECT_TRUE(isParsed(start + "<plist\tversion = '>' ><dict/></plist >"s)) << start;
    }
}

TEST(PropertyListParse, AStartThatXMLDoesntHaveIsDamage) {
    for (const auto* start : {"<?xml version='1.0'>",
                              "<?xml version='1.0?>",
                              "<?xml version=1.0?>",
                              "<?xml version '1.0'?>",
                              "<?xml version='1.0'encoding='UTF-8'?>",
                              "<!-- --><?xml version='1.0'?>",
                              "<!DOCTYPE>",
                              "<!DOCTYPE plist SYSTEM>",
                              "<!DOCTYPE plist PUBLIC 'a'>",
                              "<!DOCTYPE plist PUBLIC 'a''b'>",
                              "<!DOCTYPE plist SYSTEM 'a>",
                              "<!DOCTYPE plist 'a'>",
                              "<!DOCTYPE plist><!DOCTYPE plist>",
                              "<!doctype plist>",
                              "<!-- -- -->",
                              "<plist a>",
                              "<plist a='b'c='d'>",
                              "<plist a='<'>",
                              "<plistic>",
                              "x",
                              "&#32;"}) {
        EXPECT_FALSE(isParsed(start + "<dict/>"s)) << start;
        EXPECT_FALSE(isParsed(start + "<dict/></plist>"s)) << start;
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

TEST(PropertyListParse, WhatXMLCantHoldIsDamageWhereverItStands) {
    const auto listAround = [](std::string_view place, const std::string& what) {
        return std::string(place).replace(place.find('x'), 1, what);
    };
    for (const auto* place :
         {"<!-- x --><dict/>", "<?a x?><dict/>", "<?x?><dict/>", "<!DOCTYPE x><dict/>",
          "<!DOCTYPE a SYSTEM 'x'><dict/>", "<plist a=\"x\"><dict/></plist>", "<plist x=''><dict/></plist>",
          "<dict><key>x</key><true/></dict>", "<dict><key/><data>x</data></dict>",
          "<dict><key/><string><![CDATA[x]]></string></dict>", "<dict><key/><string>a<!--x--></string></dict>"}) {
        EXPECT_TRUE(isParsed(listAround(place, "é"))) << place;
        for (const auto& damage : {"\x01"s, "\0"s, "\xFF"s, "\xEF\xBF\xBE"s}) {
            EXPECT_FALSE(isParsed(listAround(place, damage))) << place;
        }
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
    EXPECT_EQ(latin->bytes(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist><dict><key>key</key><string>é\r</string>"
              "<key>z</key><data>AA==</data></dict></plist>");
    EXPECT_FALSE(isParsed(listIn("UTF-8")));
    EXPECT_FALSE(isParsed(listIn("ASCII")));
    EXPECT_FALSE(isParsed(listIn("unheard-of")));
}

/// In UTF-16, the low byte first; with `isBig`, the high one.
std::string inUTF16(const std::string& text, bool isBig = false) {
    std::string units;
    for (const char character : text) units += isBig ? std::string{'\0', character} : std::string{character, '\0'};
    return units;
}

TEST(PropertyListParse, UTF16IsReadInEitherOrderWithAndWithoutAMark) {
    const auto xml = "<plist><dict><key>key</key><string>a</string></dict></plist>"s;
    for (const auto& bytes : {"\xFF\xFE" + inUTF16(xml), "\xFE\xFF" + inUTF16(xml, true), inUTF16(xml),
                              inUTF16(xml, true), "\xFF\xFE" + inUTF16(xml) + "\0\0\0\0"s}) {
        EXPECT_EQ(parsed(bytes).bytes(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + xml);
    }
    const auto declared = "<?xml version='1.0' encoding='UTF-16'?>" + xml;
    EXPECT_EQ(parsed("\xFF\xFE" + inUTF16(declared)).bytes(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + xml);
    EXPECT_FALSE(isParsed(declared));
}

TEST(PropertyListParse, AListThatIsEncodedTwiceIsDamaged) {
    const auto xml = "<?xml version='1.0'?><plist><dict><key>key</key><string>a</string></dict></plist>"s;
    EXPECT_FALSE(isParsed("\xFF\xFE" + inUTF16(inUTF16(xml))));
    EXPECT_FALSE(isParsed("\xFF\xFE" + inUTF16(inUTF16(xml, true))));
}

TEST(PropertyListParse, AListInAnEncodingThatItDoesntStartWithIsDamaged) {
    const auto xml = "<?xml version='1.0'?><dict><key>key</key><string>a</string></dict>"s;
    EXPECT_FALSE(isParsed(" " + inUTF16(xml)));
    EXPECT_FALSE(isParsed("\n" + inUTF16(xml, true)));
    EXPECT_FALSE(
        isParsed("\x4C\x6F\xA7\x94\x93\x40\xA5\x85\x99\xA2\x89\x96\x95\x7E\x7D\xF1\x4B\xF0\x7D\x40\x85\x95\x83\x96\x84"
                 "\x89\x95\x87\x7E\x7D\xC9\xC2\xD4\xF0\xF3\xF7\x7D\x6F\x6E\x4C\x84\x89\x83\xA3\x61\x6E"));
}

TEST(PropertyListParse, NothingMayStandBehindTheList) {
    for (const auto& behind : {"x"s, "\0x"s, "\0<plist><dict/></plist>"s, "<plist/>"s}) {
        EXPECT_FALSE(isParsed(listOf("") + behind));
    }
}

TEST(PropertyListParse, ZerosAndWhiteSpaceBehindTheListAreCutOff) {
    EXPECT_EQ(parsed(listOf("") + "\0\0"s).bytes(), listOf(""));
    EXPECT_EQ(parsed(listOf("") + " \r\n\0 \0\n"s).bytes(), listOf("") + " \r\n");
    EXPECT_EQ(parsed(listOf("") + "\n\n\t").bytes(), listOf("") + "\n\n\t");
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
    EXPECT_FALSE(isParsed("\xFE\xFF\xD8"));
    EXPECT_FALSE(isParsed("\x4C\x6F\xA7\x94\xFF"));
    EXPECT_FALSE(isParsed("<\0\0\0\xFF\xFF"s));
    EXPECT_FALSE(isParsed("{ a = \"\xFF\"; }"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(PropertyListParse, ALongListIsCutWhereItsEntriesStart) {
    std::string entries;
    for (int number = 10'000; number < 20'000; ++number) {
        const auto text = std::to_string(number);
        entries += "\t<key>é" + text + "</key>\n\t<string >&quot;" + text + "<!-- <é> --></string>\n";
    }
    const auto list = parsed("\xEF\xBB\xBF" + listOf(entries));
    EXPECT_EQ(list.element("é12345"), "<string >&quot;12345<!-- <é> --></string>");
    EXPECT_EQ(readOf(list, "é19999"), "text \"\"19999\"");
}

TEST(PropertyListParse, ALongEntryIsReadWhole) {
    const auto data = "<data>" + std::string(12'000'000, 'A') + "</data>";
    EXPECT_EQ(listWith(data).element("key"), data);
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

TEST(PropertyListParse, TheLocaleDoesntMatter) {
    const auto tenth = "bplist00\xD1\x01\x02Skey#\x3F\xF8\0\0\0\0\0\0\x08\x0B\x0F"s + "\0\0\0\0\0\0\x01\x01"s +
                       "\0\0\0\0\0\0\0\x03"s + "\0\0\0\0\0\0\0\0"s + "\0\0\0\0\0\0\0\x18"s;
    const LocaleWithItsOwnSign locale;
    ASSERT_EQ(oneAndAHalf(), "1'5");
    EXPECT_EQ(parsed(tenth).element("key"), "<real>1.5</real>");
    EXPECT_EQ(readOf("<real>2.0</real>"), "number 2");
    EXPECT_EQ(readOf(parsed("{ key = <*R2.0>; }")), "number 2");
}

// Changes

/// `list` with `changes`, of which it has announced the bytes.
PropertyList with(const PropertyList& list, const PropertyListChanges& changes) {
    std::string announced;
    const auto update = list.updateFor(changes).value();
    for (const auto piece : list.bytesAfter(update)) announced += piece;
    auto changed = list.with(changes).value();
    EXPECT_EQ(changed.bytes(), announced);
    return changed;
}

/// `list` with one value set.
PropertyList withSet(const PropertyList& list, std::string_view key, const NewPreferenceValue& value) {
    PropertyListChanges changes;
    changes.set(key, value);
    return with(list, changes);
}

PropertyList withRemoved(const PropertyList& list, std::string_view key) {
    PropertyListChanges changes;
    changes.remove(key);
    return with(list, changes);
}

PropertyList withCopied(const PropertyList& list, std::string_view key, const PropertyList& from) {
    PropertyListChanges changes;
    changes.copy(key, from);
    return with(list, changes);
}

TEST(PropertyListChange, WhatIsSetIsReadBack) {
    PropertyList list;
    list = withSet(list, "key", true);
    EXPECT_EQ(readOf(list), "true");
    list = withSet(list, "key", -5L);
    EXPECT_EQ(readOf(list), "number -5");
    list = withSet(list, "key", "a path"s);
    EXPECT_EQ(readOf(list), "text \"a path\"");
    list = withRemoved(list, "key");
    EXPECT_EQ(readOf(list), "absent");
    EXPECT_EQ(withRemoved(list, "key").bytes(), PropertyList().bytes());
}

TEST(PropertyListChange, OfSeveralChangesToAKeyTheLastCounts) {
    PropertyListChanges changes;
    changes.remove("key");
    changes.set("key", 1L);
    changes.set("key", false);
    EXPECT_EQ(readOf(with(PropertyList(), changes)), "false");
    changes.remove("key");
    EXPECT_EQ(with(PropertyList(), changes).bytes(), listOf(""));
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
        const auto list = withSet(withSet(PropertyList(), text, true), "key", text);
        EXPECT_EQ(readOf(list), "text \"" + text + '"');
        EXPECT_EQ(readOf(list, text), "true");
        const auto again = parsed(list.bytes());
        EXPECT_EQ(readOf(again), "text \"" + text + '"') << list.bytes();
        EXPECT_EQ(readOf(again, text), "true");
        EXPECT_EQ(again.keys(), list.keys());
    }
}

TEST(PropertyListChange, BytesThatAreNoTextBecomeReplacementCharacters) {
    EXPECT_EQ(readOf(withSet(PropertyList(), "key", "a\xFF"s)), "text \"a\xEF\xBF\xBD\"");
}

TEST(PropertyListChange, AnEmptyListIsAList) {
    EXPECT_EQ(PropertyList().bytes(), listOf(""));
    EXPECT_EQ(parsed(PropertyList().bytes()).bytes(), listOf(""));
}

const std::string entriesOfAllKinds =
    "\t<key>tenth</key>\n\t<real>0.1</real>\n"
    "<!-- a remark -->  <key>array</key><array>\n\t\t<real>1.50</real>\n\t\t<dict>\n\t\t</dict>\n\t\t<!-- c "
    "-->\n\t</array>"
    "\r\n\t<key >data</key>\n\t<data>\n\tAAEC\n\tAw==\n\t</data>\n"
    "\t<key>date</key>\n\t<date>none</date>\n\n\n"
    "\t<key><![CDATA[integer]]></key>\n\t<integer>+0x10</integer>\n"
    "\t<key>k&#233;\\U0041</key>\n\t<true></true>\n"
    "\t<key/>\n\t<real>nan</real>\n"
    "\t<key>string</key>\n\t<!-- value: --><string>a\rb\\U0001&quot;<![CDATA[<]]></string>\n"
    "\t<key>uid</key>\n\t<dict><key>CF$UID</key><integer>7</integer></dict>\n";

TEST(PropertyListChange, AListStaysLetterForLetterButForTheEntryThatIsChanged) {
    const auto list = parsed(listOf(entriesOfAllKinds));
    const auto replaced = [&](const std::string& before, const std::string& after) {
        auto bytes = listOf(entriesOfAllKinds);
        return bytes.replace(bytes.find(before), before.size(), after);
    };
    EXPECT_EQ(list.bytes(), listOf(entriesOfAllKinds));
    EXPECT_EQ(withSet(list, "tenth", true).bytes(), replaced("<real>0.1</real>", "<true/>"));
    EXPECT_EQ(withSet(list, "data", "<"s).bytes(),
              replaced("<data>\n\tAAEC\n\tAw==\n\t</data>", "<string>&lt;</string>"));
    EXPECT_EQ(withSet(list, "integer", 17L).bytes(), replaced("<integer>+0x10</integer>", "<integer>17</integer>"));
    EXPECT_EQ(withSet(list, "kéA", false).bytes(), replaced("<true></true>", "<false/>"));
    EXPECT_EQ(withSet(list, "", 0L).bytes(), replaced("<real>nan</real>", "<integer>0</integer>"));
    EXPECT_EQ(withRemoved(list, "array").bytes(),
              replaced(entriesOfAllKinds.substr(
                           entriesOfAllKinds.find("<key>array"),
                           entriesOfAllKinds.find("\r\n\t<key >") - entriesOfAllKinds.find("<key>array")),
                       ""));
    EXPECT_EQ(withRemoved(list, "data").bytes(),
              replaced("\r\n\t<key >data</key>\n\t<data>\n\tAAEC\n\tAw==\n\t</data>", ""));
    EXPECT_EQ(withSet(list, "zz", -1L).bytes(),
              replaced("</dict>\n</dict>", "</dict>\n\t<key>zz</key>\n\t<integer>-1</integer>\n</dict>"));
}

TEST(PropertyListChange, WhatStandsBehindSeveralChangesIsStillFound) {
    const auto list = parsed(listOf("<key>a</key><string>A</string><key>b</key><true/><key>c</key><string>C</string>"));
    PropertyListChanges changes;
    changes.set("a", "longer"s);
    changes.set("b", 12345L);
    const auto changed = with(list, changes);
    EXPECT_THAT(changed.keys(), ElementsAre("a", "b", "c"));
    EXPECT_EQ(changed.element("c"), "<string>C</string>");
}

TEST(PropertyListChange, ManyChangesAtOnceAreTheSameAsOneByOne) {
    auto list = parsed(listOf(entriesOfAllKinds));
    PropertyListChanges changes;
    const auto other = listWith("<array><true/></array>");
    changes.set("aa", true);
    changes.set("string", "a longer text than before"s);
    changes.remove("data");
    changes.remove("nothing");
    changes.copy("key", other);
    changes.set("", 1L);
    changes.remove("uid");
    changes.set("kéA", false);
    changes.set("zz\x01", 2L);
    const auto atOnce = with(list, changes);

    for (const auto* key : {"", "aa", "data", "key", "kéA", "nothing", "string", "uid", "zz\x01"}) {
        PropertyListChanges one;
        key == "aa"s       ? one.set(key, true)
        : key == "string"s ? one.set(key, "a longer text than before"s)
                           : one.remove(key);
        if (key == ""s) one.set(key, 1L);
        if (key == "key"s) one.copy(key, other);
        if (key == "kéA"s) one.set(key, false);
        if (key == "zz\x01"s) one.set(key, 2L);
        list = with(list, one);
    }
    EXPECT_EQ(atOnce.bytes(), list.bytes());
    EXPECT_EQ(atOnce.keys(), list.keys());
    const auto again = parsed(atOnce.bytes());
    EXPECT_EQ(again.keys(), atOnce.keys());
    for (const auto& key : again.keys()) EXPECT_EQ(again.element(key), atOnce.element(key)) << key;
}

/// Makes `changes` in `list`, which isn't copied.
void make(PropertyList& list, const PropertyListChanges& changes) {
    list.make(list.updateFor(changes).value());
}

TEST(PropertyListMake, WhereverAListFindsRoomItIsTheSame) {
    auto list = parsed(listOf(entriesOfAllKinds));
    std::map<std::string, std::string> wanted;
    for (const auto& key : list.keys()) wanted[key] = list.element(key);
    const auto set = [&](PropertyListChanges& changes, const std::string& key, const std::string& text) {
        changes.set(key, text);
        wanted[key] = "<string>" + text + "</string>";
    };
    const auto remove = [&](PropertyListChanges& changes, const std::string& key) {
        changes.remove(key);
        wanted.erase(key);
    };
    for (const std::size_t length : {1, 2, 1, 0, 50, 49, 500, 2000, 10, 3000, 1}) {
        PropertyListChanges few;
        set(few, "tenth", std::string(length, 'a'));
        set(few, "new", std::string(length, 'b'));
        make(list, few);
        PropertyListChanges many;
        for (const auto* key : {"array", "data", "kéA", "a<&\\", "uid", "\x01", "string"}) {
            set(many, key, std::string(3000 - length, 'c'));
        }
        make(list, many);
        PropertyListChanges removal;
        for (const auto* key : {"new", "array", "kéA", "a<&\\", "\x01"}) remove(removal, key);
        make(list, removal);

        const auto again = parsed(list.bytes());
        EXPECT_EQ(again.keys(), list.keys());
        for (const auto& [key, element] : wanted) {
            EXPECT_EQ(list.element(key), element) << key << ' ' << length;
            EXPECT_EQ(again.element(key), element) << key << ' ' << length;
        }
        EXPECT_EQ(list.keys().size(), wanted.size());
    }
}

TEST(PropertyListMake, AListThatGrowsALittleStaysWhereItIs) {
    auto list = listWith("<string>" + std::string(100'000, 'a') + "</string>");
    PropertyListChanges flag;
    flag.set("flag", true);
    make(list, flag);
    const auto* place = list.bytes().data();
    for (const bool isOn : {false, true, false}) {
        flag.set("flag", isOn);
        make(list, flag);
        EXPECT_EQ(list.bytes().data(), place);
        EXPECT_EQ(readOf(list, "flag"), isOn ? "true" : "false");
    }
}

TEST(PropertyListChange, ANewEntryGoesToTheEndOnALineOfItsOwn) {
    const std::string entry = "\n\t<key>key</key>\n\t<true/>";
    EXPECT_EQ(withSet(parsed("<plist><dict/></plist>"), "key", true).bytes(),
              "<plist><dict>" + entry + "</dict></plist>");
    EXPECT_EQ(withSet(parsed("<dict ></dict >"), "key", true).bytes(), "<dict >" + entry + "</dict >");
    EXPECT_EQ(withSet(parsed("<plist>\n  <dict>\n  </dict>\n</plist>"), "key", true).bytes(),
              "<plist>\n  <dict>" + entry + "\n  </dict>\n</plist>");
    EXPECT_EQ(withSet(parsed("<dict><key>z</key><true/>\r\n</dict>"), "key", true).bytes(),
              "<dict><key>z</key><true/>" + entry + "\r\n</dict>");
    EXPECT_EQ(withSet(parsed("<dict><!-- </dict> --></dict>"), "key", true).bytes(),
              "<dict><!-- </dict> -->" + entry + "</dict>");
}

TEST(PropertyListChange, OfAKeyThatComesTwiceOneEntryIsLeftAndSaysTheNewValue) {
    const auto list = parsed(
        listOf("\t<key>key</key>\n\t<true/>\n\t<key>other</key>\n\t<true/>\n\t<key>k&#101;y</key>\n\t<false/>\n"));
    EXPECT_EQ(readOf(list), "false");
    EXPECT_EQ(withSet(list, "key", 3L).bytes(),
              listOf("\t<key>other</key>\n\t<true/>\n\t<key>k&#101;y</key>\n\t<integer>3</integer>\n"));
    EXPECT_EQ(withRemoved(list, "key").bytes(), listOf("\t<key>other</key>\n\t<true/>\n"));
}

TEST(PropertyListChange, NoListGrowsPastTheLargest) {
    const auto list = parsed(listOf("<!--" + std::string(largestPropertyList / 2, ' ') + "-->"));
    const auto room =
        largestPropertyList - list.bytes().size() - std::string("\n\t<key>key</key>\n\t<string></string>").size();
    const auto full = withSet(list, "key", std::string(room, 'a'));
    EXPECT_EQ(full.bytes().size(), largestPropertyList);
    EXPECT_TRUE(isParsed(full.bytes()));
    PropertyListChanges changes;
    changes.set("key", std::string(room + 1, 'a'));
    EXPECT_EQ(list.with(changes), std::nullopt);
    changes.set("key", std::string(room, '<'));
    EXPECT_EQ(list.with(changes), std::nullopt);
    EXPECT_EQ(readOf(withRemoved(full, "key")), "absent");
}

TEST(PropertyListChange, AListSurvivesTheListItCameFrom) {
    auto original = std::make_optional(listWith("<array><string>a</string></array>"));
    const auto copy = withCopied(PropertyList(), "key", *original);
    original.reset();
    EXPECT_EQ(copy.element("key"), "<array><string>a</string></array>");
}

TEST(PropertyListChange, ACharacterThatGNUstepTookApartIsPutTogether) {
    const auto list = listWith("<array><string>\\UD83D\\UDE00 \\UD83D</string></array>");
    EXPECT_EQ(list.element("key"), "<array><string>😀 \\UD83D</string></array>");
}

TEST(PropertyListChange, AnEntryIsCopiedAsItIsWritten) {
    const auto element = "<array> <data> AA== </data><!-- c --></array>"s;
    EXPECT_EQ(withCopied(listWith("<true/>"), "key", listWith(element)).element("key"), element);
}

TEST(PropertyListChange, CopyingAnEntryThatIsNotThereRemovesIt) {
    EXPECT_EQ(readOf(withCopied(listWith("<true/>"), "key", PropertyList())), "absent");
}

TEST(PropertyListTake, AListHasItsBytesFromWhereItIsReadIfTheyAreJustThese) {
    const auto xml = listOf("<key>key</key><true/>");
    auto bytes = xml;
    PropertyList list;
    EXPECT_TRUE(list.take(bytes));
    EXPECT_EQ(readOf(list), "true");
    EXPECT_EQ(list.bytes(), xml);
    EXPECT_EQ(bytes, "");
}

TEST(PropertyListTake, BytesStayThatAreNotJustTheList) {
    for (const auto& xml : {std::string(listStart) + "<dict />" + std::string(listEnd), listOf("") + "\0"s,
                            listOf("<key>key</key><string>\\UD83D\\UDE00</string>"), "{}"s}) {
        auto bytes = xml;
        PropertyList list;
        EXPECT_TRUE(list.take(bytes));
        EXPECT_EQ(list.bytes(), parsed(xml).bytes());
        EXPECT_EQ(bytes, xml);
    }
}

TEST(PropertyListTake, DamageStaysAndChangesNoList) {
    auto list = listWith("<true/>");
    for (const auto& damage : {listOf("<key>key</key>"), "{ key = 1"s, "bplist00"s}) {
        auto bytes = damage;
        EXPECT_FALSE(list.take(bytes));
        EXPECT_EQ(bytes, damage);
        EXPECT_EQ(list.bytes(), listOf("<key>key</key><true/>"));
        EXPECT_EQ(readOf(list), "true");
    }
}

TEST(PropertyListHolds, NoOtherTypeAndNoOtherValue) {
    const auto holds = [](const std::string& element, const NewPreferenceValue& value) {
        return listWith(element).holds("key", value);
    };
    EXPECT_TRUE(holds("<true/>", true));
    EXPECT_TRUE(holds("<true> </true>", true));
    EXPECT_FALSE(holds("<true/>", false));
    EXPECT_FALSE(holds("<true/>", 1L));
    EXPECT_FALSE(holds("<integer>1</integer>", true));
    EXPECT_TRUE(holds("<integer>16</integer>", 16L));
    EXPECT_TRUE(holds("<integer> +0x10 </integer>", 16L));
    EXPECT_FALSE(holds("<integer>16</integer>", 17L));
    EXPECT_FALSE(holds("<integer>18446744073709551615</integer>", -1L));
    EXPECT_FALSE(holds("<real>1</real>", 1L));
    EXPECT_TRUE(holds("<string>a&lt;</string>", "a<"s));
    EXPECT_TRUE(holds("<string>\\U0061<![CDATA[<]]></string>", "a<"s));
    EXPECT_TRUE(holds("<string>\xEF\xBF\xBD</string>", "\xFF"s));
    EXPECT_FALSE(holds("<string>a</string>", "A"s));
    EXPECT_FALSE(holds("<string>1</string>", 1L));
    EXPECT_FALSE(holds("<data>a</data>", "a"s));
    EXPECT_FALSE(PropertyList().holds("key", false));
}

}  // namespace
}  // namespace vantrel::gnustep

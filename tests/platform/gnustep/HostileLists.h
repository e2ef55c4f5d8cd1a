#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/platform/gnustep/PropertyListTesting.h"

namespace vantrel::gnustep {

/// Lists that would cost a simple reader much more than others of their length, or end the process.
class HostileLists {
public:
    /// None has more than `size` bytes and a thousand.
    explicit HostileLists(std::size_t size) : size_(size) {}

    /// One at a time, each with its name.
    void forEach(const std::function<void(const std::string& name, const std::string& list)>& visit) const {
        // What readers of all that XML can be take long for.
        visit("Attributes", "<plist " + numbered("a", "='' ") + "><dict/></plist>");
        visit("AttributesBehindABracket", "<plist a='>' " + numbered("a", "='' ") + "/>");
        visit("AttributesOfAnEntry", listOf("<key " + numbered("a", "='' ") + ">a</key><true/>"));
        visit("AttributesOfNameSpaces", "<plist " + numbered("a:b", "='' ") + "><dict/></plist>");
        visit("AttributesBehindAHiddenComment",
              "<!DOCTYPE plist SYSTEM '<!--'><plist " + numbered("a", "='' ") + "><dict/><!-- --></plist>");
        visit("NameSpaces", "<plist " + numbered("xmlns:a", "='b' ") + "><dict/></plist>");
        visit("Catalogues", many("<?oasis-xml-catalog catalog='a'?>") + "<dict/>");
        visit("Instructions", many("<?a?>") + "<dict/>");
        visit("InstructionsWithWarnings", many("<?xmla?>") + "<dict/>");
        visit("UnknownEntities", text("&x;"));
        visit("Ampersands", text("&"));
        visit("ControlCharacters", text("\x01"));
        visit("BytesThatAreNoText", text("\xFF"));
        visit("OpenTags", many("<"));
        visit("CloseTags", many("</"));
        visit("AnEndlessName", "<dict><" + std::string(size_, 'a') + "/></dict>");
        visit("AnEndlessType", "<!DOCTYPE plist SYSTEM '" + std::string(size_, 'a') + "'><dict/>");
        visit("EntitiesOfEntities",
              "<!DOCTYPE a [<!ENTITY a 'aaaa'>" + numbered("<!ENTITY a", " '&a;&a;&a;&a;'>") + "]><dict/>");
        visit("SpacesInATag", listOf("<key" + std::string(size_, ' ') + ">a</key><true/>"));
        // What we would take long for.
        visit("Plain", listOf(numbered("<key>key", "</key><string>value</string>")));
        visit("KeyTags", many("<key"));
        visit("ShortEntries", listOf(many("<key/><true/>")));
        visit("OneKey", listOf(many("<key>a</key><true/>")));
        visit("KeysThatStartAlike", listOf(numbered("<key>" + std::string(1000, 'a'), "</key><true/>")));
        visit("KeysBackwards", listOf(numbered("<key>", "</key><true/>", /*isBackwards=*/true)));
        visit("KeysWithReferences", listOf(numbered("<key>&#97;", "</key><true/>")));
        visit("KeysWithEscapes", listOf(numbered("<key>\\U0061", "</key><true/>")));
        visit("KeysOfCharacterData", listOf(numbered("<key><![CDATA[", "]]></key><true/>")));
        visit("KeysInside", listOf("<key>a</key><dict>" + numbered("<key>", "</key><true/>") + "</dict>"));
        visit("OneLongKey", listOf("<key>&lt;" + std::string(size_, 'a') + "</key><true/>"));
        visit("LongKeys", listOf(numbered("<key>&lt;", std::string(100'000, 'a') + "</key><true/>")));
        visit("CarriageReturns", text("\r"));
        visit("References", text("&lt;"));
        visit("CharacterReferences", text("&#65;"));
        visit("CharacterData", text("<![CDATA[]]>"));
        visit("Comments", listOf(many("<!---->")));
        visit("Escapes", text("\\U0041"));
        visit("EscapesOfPairs", text("\\UD83D\\UDE00"));
        visit("EntriesWithAnEscapeOfAPair",
              listOf("<key>a</key><string>\\UD83D\\UDE00</string>" + many("<key/><true/>")));
        visit("Items", listOf("<key>a</key><array>" + many("<true/>") + "</array>"));
        visit("NestedArrays", listOf("<key>a</key>" + many("<array>")));
        visit("WhiteSpace", std::string(size_ / 2, '\n') + "<dict/>" + std::string(size_ / 2, ' '));
        visit("Zeros", "<dict/>" + std::string(size_, '\0'));
        visit("UTF16", inUTF16("<dict>" + many("<key/><true/>", 2) + "</dict>"));
        visit("Latin1", "<?xml version='1.0' encoding='ISO-8859-1'?><dict><key>a</key><string>" +
                            std::string(size_, '\xE9') + "</string></dict>");
        // The binary format.
        visit("BinaryCarriageReturns", binaryWith({longText(0x5, std::string(size_ / 6, '\r'))}));
        visit("BinaryControlCharacters", binaryWith({longText(0x5, std::string(size_, '\x01'))}));
        visit("BinaryBackslashes", binaryWith({longText(0x5, many("\\U"))}));
        visit("BinaryUTF16", binaryWith({longText(0x6, many("\x4E\x2D"))}));
        visit("BinaryData", binaryWith({longText(0x4, std::string(size_ / 2, '\xFF'))}));
        visit("BinaryDates", binaryArray("\x33" + std::string("\xC2\x0D\x63\x43\x00\x00\x00\x00", 8), size_ / 40));
        visit("BinaryIntegers", binaryArray("\x13\x80" + std::string(7, '\0'), size_ / 4));
        visit("BinaryEmptyArrays", binaryArray("\xA0", size_ / 4));
        visit("BinaryLongTextsShared", binaryArray(longText(0x5, std::string(size_ / 2, 'a')), size_ / 8));
        visit("BinaryWideArraysShared", binaryLevels(0xA, size_ / 64, 6));
        visit("BinaryDeepArraysShared", binaryLevels(0xA, 2, 60));
        visit("BinaryDictionariesShared", binaryLevels(0xD, 4, 60));
        visit("BinaryArrayInItself", binaryLevels(0xA, size_ / 16, 1, true));
        // The old text style.
        visit("TextNested", "{ a = " + many("("));
        visit("TextNestedDictionaries", many("{a="));
        visit("TextLongInteger", "{ a = <*I" + std::string(size_, '1') + ">; }");
        visit("TextLongDate", "{ a = <*D" + std::string(size_, '1') + ">; }");
        visit("TextItems", "{ a = (" + many(",") + "); }");
        visit("TextEntries", "{" + numbered("", "=;") + "}");
        visit("TextQuoted", "{ a = \"" + std::string(size_, 'a') + "\"; }");
        visit("TextEscapes", "{ a = \"" + many("\\1") + "\"; }");
        visit("TextControlCharacters", "{ a = \"" + std::string(size_, '\x01') + "\"; }");
        visit("TextComments", many("/**/") + "{}");
        visit("TextOpenComments", "{" + many("/*"));
        visit("TextOpenQuotes", "{ a = " + many("\""));
        visit("TextHexadecimal", "{ a = <" + std::string(size_, 'A') + ">; }");
        visit("TextOpenHexadecimal", "{ a = " + many("<"));
        visit("TextData", "{ a = <[" + std::string(size_, 'A') + "]>; }");
    }

private:
    /// `piece` over and over, `size_` / `share` bytes of it.
    std::string many(std::string_view piece, std::size_t share = 1) const {
        std::string pieces;
        while (pieces.size() + piece.size() <= size_ / share) pieces += piece;
        return pieces;
    }

    /// `before`, a number, `after`, over and over, with another number each time.
    std::string numbered(std::string_view before, std::string_view after, bool isBackwards = false) const {
        std::string pieces;
        for (std::size_t count = 0; pieces.size() + before.size() + after.size() + 20 <= size_; ++count) {
            auto number = std::to_string(count);
            if (isBackwards) std::reverse(number.begin(), number.end());
            pieces.append(before).append(number).append(after);
        }
        return pieces;
    }

    std::string text(std::string_view piece) const {
        return listOf("<key>a</key><string>" + many(piece) + "</string>");
    }

    static std::string inUTF16(const std::string& text) {
        std::string units = "\xFF\xFE";
        for (const char character : text) units += {character, '\0'};
        return units;
    }

    static std::string bigEndian(std::size_t number, int size) {
        std::string bytes;
        for (int shift = 8 * (size - 1); shift >= 0; shift -= 8) {
            bytes += static_cast<char>(static_cast<std::uint64_t>(number) >> shift & 0xFF);
        }
        return bytes;
    }

    /// A text or data with `units` of `kind`.
    static std::string longText(unsigned kind, const std::string& units) {
        const auto count = units.size() / (kind == 0x6 ? 2 : 1);
        return bigEndian(kind << 4 | 0xF, 1) + '\x12' + bigEndian(count, 4) + units;
    }

    /// An array, or of kind 0xD a dictionary, with `count` references, each of which `referenceAt` tells.
    static std::string container(unsigned kind, std::size_t count,
                                 const std::function<std::size_t(std::size_t)>& referenceAt) {
        std::string bytes = bigEndian(kind << 4 | 0xF, 1) + '\x12' + bigEndian(kind == 0xD ? count / 2 : count, 4);
        for (std::size_t index = 0; index < count; ++index) bytes += bigEndian(referenceAt(index), 4);
        return bytes;
    }

    /// A list with the first of `objects` under "a"; it refers to itself as 2, to the one behind it as 3.
    static std::string binaryWith(const std::vector<std::string>& objects) {
        std::string bytes = "bplist00";
        std::string offsets;
        const auto add = [&](const std::string& object) {
            offsets += bigEndian(bytes.size(), 4);
            bytes += object;
        };
        add(container(0xD, 2, [](std::size_t index) { return index + 1; }));
        add("\x51"
            "a");
        for (const auto& object : objects) add(object);
        const auto table = bytes.size();
        return bytes + offsets + std::string(6, '\0') + bigEndian(4, 1) + bigEndian(4, 1) +
               bigEndian(objects.size() + 2, 8) + bigEndian(0, 8) + bigEndian(table, 8);
    }

    static std::string binaryArray(const std::string& object, std::size_t count) {
        return binaryWith({container(0xA, count, [](std::size_t) { return 3; }), object});
    }

    /// Containers one in the other, each with `count` references to the next; the last to itself if `isEndless`.
    static std::string binaryLevels(unsigned kind, std::size_t count, std::size_t depth, bool isEndless = false) {
        std::vector<std::string> objects;
        for (std::size_t level = 0; level < depth; ++level) {
            const auto next = isEndless && level + 1 == depth ? level + 2 : level + 3;
            objects.push_back(
                container(kind, count, [&](std::size_t index) { return kind == 0xD && index < count / 2 ? 1 : next; }));
        }
        objects.emplace_back("\xA0");
        return binaryWith(objects);
    }

    std::size_t size_;
};

}  // namespace vantrel::gnustep

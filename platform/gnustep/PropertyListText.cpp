#include "platform/gnustep/PropertyListText.h"

#include <libxml/chvalid.h>
#include <libxml/entities.h>
#include <libxml/globals.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <optional>

#include "platform/gnustep/XMLCharacters.h"
#include "platform/text/UTF16.h"

namespace vantrel::gnustep {
namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";
constexpr std::size_t escapeLength = 6;
constexpr std::size_t halfLength = 3;

bool isHigh(int unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLow(int unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

bool isOneThatXMLCantHold(int character) {
    return (character >= 0 && character < 0x20 && !xmlIsCharQ(character)) || character == 0xFFFE || character == 0xFFFF;
}

std::string inUTF8(int character) {
    std::array<xmlChar, 4> bytes{};
    const int length = xmlCopyCharMultiByte(bytes.data(), character);
    return {plainCharacters(bytes.data()), static_cast<std::size_t>(length)};
}

/// The character at the start of `text`; nothing where that is no UTF-8.
std::optional<int> characterAt(std::string_view text) {
    int length = static_cast<int>(std::min<std::size_t>(text.size(), 4));
    const int character = xmlGetUTF8Char(xmlCharacters(text.data()), &length);
    if (!isOneThatXMLCantHold(character) && !xmlIsCharQ(character)) return std::nullopt;
    // libxml2 reads what is written with too many bytes.
    return text.starts_with(inUTF8(character)) ? std::optional(character) : std::nullopt;
}

/// The half of a surrogate pair at the start of `text`, as platform/text/UTF16.h has it; nothing when none is there.
std::optional<int> halfAt(std::string_view text) {
    const auto units = text::toUTF16(text.substr(0, halfLength));
    const bool isOne = units.size() == 1 && (isHigh(units.front()) || isLow(units.front()));
    return isOne ? std::optional<int>(units.front()) : std::nullopt;
}

/// The UTF-16 unit that the escape at the start of `text` stands for; nothing when no escape is there.
std::optional<int> escapedUnit(std::string_view text) {
    if (text.size() < escapeLength || !text.starts_with("\\U")) return std::nullopt;
    unsigned unit = 0;
    const char* end = text.data() + escapeLength;
    const auto [last, error] = std::from_chars(text.data() + 2, end, unit, 16);
    return error == std::errc() && last == end ? std::optional(static_cast<int>(unit)) : std::nullopt;
}

/// The character that the two escapes at the start of `text` stand for as a surrogate pair.
std::optional<int> escapedPair(std::string_view text) {
    const auto high = escapedUnit(text);
    if (!high || !isHigh(*high)) return std::nullopt;
    const auto low = escapedUnit(text.substr(escapeLength));
    if (!low || !isLow(*low)) return std::nullopt;
    return 0x10000 + (*high - 0xD800) * 0x400 + (*low - 0xDC00);
}

std::string escape(int unit) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string escaped = "\\U";
    for (const int shift : {12, 8, 4, 0}) escaped += digits[static_cast<std::size_t>(unit >> shift & 0xF)];
    return escaped;
}

std::string read(std::string_view text, bool onlyPairs) {
    std::string plain;
    while (!text.empty()) {
        const auto escapeStart = text.find("\\U");
        plain += text.substr(0, escapeStart);
        if (escapeStart == std::string_view::npos) break;
        text.remove_prefix(escapeStart);

        std::size_t length = escapeLength;
        if (const auto pair = escapedPair(text)) {
            plain += inUTF8(*pair);
            length = 2 * escapeLength;
        } else if (const auto unit = escapedUnit(text); unit && !onlyPairs) {
            const auto single = static_cast<char16_t>(*unit);
            plain += text::fromUTF16({&single, 1});
        } else {
            length = 2;
            plain += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return plain;
}

}  // namespace

std::string withEscapes(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    while (!text.empty()) {
        const auto plain = characterAt(text);
        const auto character = plain ? plain : halfAt(text);
        const auto length = plain ? inUTF8(*plain).size() : character ? halfLength : 1;
        if (!character) {
            escaped += replacementCharacter;
        } else if (!plain || isOneThatXMLCantHold(*character) || escapedUnit(text)) {
            escaped += escape(*character);
        } else {
            escaped += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return escaped;
}

std::string xmlFromText(std::string_view text) {
    const std::unique_ptr<xmlChar, decltype(xmlFree)> xml(
        xmlEncodeSpecialChars(nullptr, xmlCharacters(withEscapes(text).c_str())), xmlFree);
    return plainCharacters(xml.get());
}

std::string withEscapesRead(std::string_view text) {
    return read(text, /*onlyPairs=*/false);
}

std::string withPairsRead(std::string_view text) {
    return read(text, /*onlyPairs=*/true);
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view whiteSpace = " \t\r\n";
    const auto start = text.find_first_not_of(whiteSpace);
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(whiteSpace) - start + 1);
}

}  // namespace vantrel::gnustep

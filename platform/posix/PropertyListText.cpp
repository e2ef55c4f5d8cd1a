#include "platform/posix/PropertyListText.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>

namespace vantrel::posix {
namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";
constexpr std::size_t escapeLength = 6;

bool isSurrogate(std::uint32_t unit) {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

/// The length of the UTF-8 character at the start of `bytes`, 1 to 4, or 0 when there is none.
std::size_t characterLength(std::string_view bytes) {
    const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
    const unsigned first = byteAt(0);
    if (first < 0x80) return 1;
    if (first < 0xC2 || first > 0xF4) return 0;
    const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (bytes.size() < length) return 0;
    for (std::size_t index = 1; index < length; ++index) {
        if ((byteAt(index) & 0xC0U) != 0x80U) return 0;
    }
    const unsigned second = byteAt(1);
    const bool isOverlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
    const bool isNone = (first == 0xED && second > 0x9F) || (first == 0xF4 && second > 0x8F);
    return isOverlong || isNone ? 0 : length;
}

void appendCharacter(std::string& text, std::uint32_t character) {
    const auto append = [&](std::uint32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | character >> 6);
        append(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        append(0xE0 | character >> 12);
        append(0x80 | (character >> 6 & 0x3F));
        append(0x80 | (character & 0x3F));
    } else {
        append(0xF0 | character >> 18);
        append(0x80 | (character >> 12 & 0x3F));
        append(0x80 | (character >> 6 & 0x3F));
        append(0x80 | (character & 0x3F));
    }
}

/// The UTF-16 unit that the escape at the start of `text` stands for; nothing when no escape is there.
std::optional<std::uint32_t> escapedUnit(std::string_view text) {
    if (text.size() < escapeLength || !text.starts_with("\\U")) return std::nullopt;
    std::uint32_t unit = 0;
    const char* end = text.data() + escapeLength;
    const auto [last, error] = std::from_chars(text.data() + 2, end, unit, 16);
    return error == std::errc() && last == end ? std::optional(unit) : std::nullopt;
}

/// The character that the two escapes at the start of `text` stand for as a surrogate pair.
std::optional<std::uint32_t> escapedPair(std::string_view text) {
    const auto high = escapedUnit(text);
    if (!high || *high < 0xD800 || *high > 0xDBFF) return std::nullopt;
    const auto low = escapedUnit(text.substr(escapeLength));
    if (!low || *low < 0xDC00 || *low > 0xDFFF) return std::nullopt;
    return 0x10000 + ((*high - 0xD800) << 10) + (*low - 0xDC00);
}

std::string escape(std::uint32_t unit) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string escaped = "\\U";
    for (const int shift : {12, 8, 4, 0}) escaped += digits[unit >> shift & 0xF];
    return escaped;
}

/// The UTF-16 unit at the start of `text` when XML or GNUstep's reader would not give it back.
std::optional<std::uint32_t> unitToEscape(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first == '\\' && escapedUnit(text)) return first;
    if (first < 0x20 && first != '\t' && first != '\n' && first != '\r') return first;
    if (text.starts_with("\xEF\xBF\xBE")) return 0xFFFE;
    if (text.starts_with("\xEF\xBF\xBF")) return 0xFFFF;
    return std::nullopt;
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
            appendCharacter(plain, *pair);
            length = 2 * escapeLength;
        } else if (const auto unit = escapedUnit(text); unit && !isSurrogate(*unit) && !onlyPairs) {
            appendCharacter(plain, *unit);
        } else {
            length = 2;
            plain += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return plain;
}

}  // namespace

bool isText(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto length = characterLength(bytes);
        if (length == 0 || bytes.front() == '\0') return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string withEscapes(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    while (!text.empty()) {
        const auto length = characterLength(text);
        if (length == 0) {
            escaped += replacementCharacter;
        } else if (const auto unit = unitToEscape(text)) {
            escaped += escape(*unit);
        } else {
            escaped += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return escaped;
}

std::string withEscapesRead(std::string_view text) {
    return read(text, /*onlyPairs=*/false);
}

std::string withPairsRead(std::string_view text) {
    return read(text, /*onlyPairs=*/true);
}

}  // namespace vantrel::posix

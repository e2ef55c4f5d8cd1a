#include "platform/posix/PropertyListText.h"

#include <charconv>
#include <cstdint>
#include <utility>

namespace vantrel::posix {
namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";
constexpr std::size_t escapeLength = 6;

bool isSurrogate(std::uint32_t unit) {
    return unit >= 0xD800 && unit <= 0xDFFF;
}

/// The length of the UTF-8 character at the start of `bytes`, 1 to 4, or 0 when there is none.
std::size_t characterLength(std::string_view bytes) {
    const auto byteAt = [&](std::size_t index) {
        return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U;
    };
    const auto continues = [&](std::size_t index) { return (byteAt(index) & 0xC0U) == 0x80U; };

    const unsigned first = byteAt(0);
    const unsigned second = byteAt(1);
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return continues(1) ? 2 : 0;
    if (first >= 0xE0 && first <= 0xEF) {
        if (first == 0xE0 && second < 0xA0) return 0;  // overlong
        if (first == 0xED && second > 0x9F) return 0;  // surrogate
        return continues(1) && continues(2) ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        if (first == 0xF0 && second < 0x90) return 0;  // overlong
        if (first == 0xF4 && second > 0x8F) return 0;  // past U+10FFFF
        return continues(1) && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
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

std::optional<std::uint32_t> numberFromDigits(std::string_view digits, int base) {
    std::uint32_t number = 0;
    const char* end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, number, base);
    return error == std::errc() && last == end ? std::optional(number) : std::nullopt;
}

/// The UTF-16 unit that the escape at the start of `text` stands for; nothing when no escape is there.
std::optional<std::uint32_t> escapedUnit(std::string_view text) {
    if (text.size() < escapeLength || !text.starts_with("\\U")) return std::nullopt;
    return numberFromDigits(text.substr(2, 4), 16);
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

/// What must stand for the character at the start of `text` where XML or GNUstep's reader would not give it back.
std::optional<std::string> escapeFor(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first == '\\' && escapedUnit(text)) return escape(first);
    if (first < 0x20 && first != '\t' && first != '\n' && first != '\r') return escape(first);
    if (text.starts_with("\xEF\xBF\xBE")) return escape(0xFFFE);
    if (text.starts_with("\xEF\xBF\xBF")) return escape(0xFFFF);
    return std::nullopt;
}

std::string withEscapesRead(std::string_view text) {
    std::string read;
    while (!text.empty()) {
        const auto escapeStart = text.find("\\U");
        read += text.substr(0, escapeStart);
        if (escapeStart == std::string_view::npos) break;
        text.remove_prefix(escapeStart);

        std::size_t length = escapeLength;
        if (const auto pair = escapedPair(text)) {
            appendCharacter(read, *pair);
            length = 2 * escapeLength;
        } else if (const auto unit = escapedUnit(text); unit && !isSurrogate(*unit)) {
            appendCharacter(read, *unit);
        } else {
            length = 2;
            read += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return read;
}

/// Resolves the reference `name` (what stands between `&` and `;`) at the end of `text`.
bool appendReferenced(std::string& text, std::string_view name) {
    constexpr std::pair<std::string_view, char> named[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    for (const auto& [known, character] : named) {
        if (name == known) {
            text += character;
            return true;
        }
    }
    if (!name.starts_with('#')) return false;
    const bool hexadecimal = name.starts_with("#x");
    const auto number = numberFromDigits(name.substr(hexadecimal ? 2 : 1), hexadecimal ? 16 : 10);
    if (!number || *number == 0 || *number > 0x10FFFF || isSurrogate(*number)) return false;
    appendCharacter(text, *number);
    return true;
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

std::string xmlFromText(std::string_view text) {
    std::string xml;
    xml.reserve(text.size());
    while (!text.empty()) {
        const auto length = characterLength(text);
        if (length == 0) {
            xml += replacementCharacter;
            text.remove_prefix(1);
            continue;
        }
        if (const auto escaped = escapeFor(text)) {
            xml += *escaped;
        } else if (text.front() == '&') {
            xml += "&amp;";
        } else if (text.front() == '<') {
            xml += "&lt;";
        } else if (text.front() == '>') {
            xml += "&gt;";
        } else if (text.front() == '\r') {
            xml += "&#13;";
        } else {
            xml += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return xml;
}

std::optional<std::string> textFromXML(std::string_view content) {
    std::string text;
    // Takes `content` up to `closing` away, and `closing` itself.
    const auto takeUntil = [&](std::string_view closing) -> std::optional<std::string_view> {
        const auto end = content.find(closing);
        if (end == std::string_view::npos) return std::nullopt;
        const auto taken = content.substr(0, end);
        content.remove_prefix(end + closing.size());
        return taken;
    };
    const auto skip = [&](std::string_view opening) {
        const bool found = content.starts_with(opening);
        if (found) content.remove_prefix(opening.size());
        return found;
    };

    while (!content.empty()) {
        const auto plain = content.substr(0, content.find_first_of("<&"));
        text += plain;
        content.remove_prefix(plain.size());
        if (content.empty()) break;

        if (skip("<![CDATA[")) {
            const auto section = takeUntil("]]>");
            if (!section) return std::nullopt;
            text += *section;
        } else if (skip("<!--")) {
            if (!takeUntil("-->")) return std::nullopt;
        } else if (skip("&")) {
            const auto name = takeUntil(";");
            if (!name || !appendReferenced(text, *name)) return std::nullopt;
        } else {
            return std::nullopt;
        }
    }
    return withEscapesRead(text);
}

std::string withPlainSurrogatePairs(std::string_view xml) {
    std::string plain;
    plain.reserve(xml.size());
    while (!xml.empty()) {
        const auto escapeStart = xml.find("\\U");
        plain += xml.substr(0, escapeStart);
        if (escapeStart == std::string_view::npos) break;
        xml.remove_prefix(escapeStart);

        const auto pair = escapedPair(xml);
        if (pair) {
            appendCharacter(plain, *pair);
        } else {
            plain += xml.substr(0, 2);
        }
        xml.remove_prefix(pair ? 2 * escapeLength : 2);
    }
    return plain;
}

std::string withEscapes(std::string_view xml) {
    std::string escapedXML;
    escapedXML.reserve(xml.size());
    for (; !xml.empty(); xml.remove_prefix(1)) {
        // The three bytes of U+FFFE and U+FFFF are the only ones of a longer character that are replaced.
        if (const auto escaped = escapeFor(xml)) {
            escapedXML += *escaped;
            if (xml.front() == '\xEF') xml.remove_prefix(2);
        } else if (xml.front() == '\r') {
            escapedXML += "&#13;";
        } else {
            escapedXML += xml.front();
        }
    }
    return escapedXML;
}

}  // namespace vantrel::posix

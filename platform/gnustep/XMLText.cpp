#include "platform/gnustep/XMLText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

#include "platform/gnustep/PropertyList.h"
#include "platform/text/UTF16.h"

namespace vantrel::gnustep {
namespace {

constexpr std::size_t escapeLength = 6;
constexpr char32_t replacementCharacter = 0xFFFD;

/// The UTF-16 unit that the escape at the start of `text` stands for; -1 when no escape is there.
int escapedUnit(std::string_view text) {
    if (text.size() < escapeLength || !text.starts_with("\\U")) return -1;
    unsigned unit = 0;
    const char* end = text.data() + escapeLength;
    const auto [last, error] = std::from_chars(text.data() + 2, end, unit, 16);
    return error == std::errc() && last == end ? static_cast<int>(unit) : -1;
}

std::string escape(char32_t unit) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string escaped = "\\U";
    for (const int shift : {12, 8, 4, 0}) escaped += digits[unit >> shift & 0xF];
    return escaped;
}

/// Whether the two units that stand for one character are escaped at the start of `text`.
bool isEscapedPair(std::string_view text) {
    const int first = escapedUnit(text);
    const int second = first < 0 ? -1 : escapedUnit(text.substr(escapeLength));
    const char16_t units[] = {static_cast<char16_t>(first), static_cast<char16_t>(second)};
    return second >= 0 && text::firstOf(text::fromUTF16({units, 2})).number > 0xFFFF;
}

std::string read(std::string_view text, bool onlyPairs) {
    std::string plain;
    plain.reserve(text.size());
    while (!text.empty()) {
        const auto escapeStart = text.find("\\U");
        plain += text.substr(0, escapeStart);
        if (escapeStart == std::string_view::npos) break;
        text.remove_prefix(escapeStart);

        const int units = onlyPairs ? (isEscapedPair(text) ? 2 : 0) : (escapedUnit(text) >= 0 ? 1 : 0);
        for (int unit = 0; unit < units; ++unit) {
            text::append(plain, static_cast<char16_t>(escapedUnit(text)));
            text.remove_prefix(escapeLength);
        }
        if (units > 0) continue;
        plain += text.substr(0, 2);
        text.remove_prefix(2);
    }
    return plain;
}

/// How a character is written that has a meaning in XML; empty for all others.
std::string_view reference(char character) {
    switch (character) {
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '&':
            return "&amp;";
        case '\r':
            return "&#13;";
        default:
            return {};
    }
}

bool isPlain(char character) {
    return character >= ' ' && character <= '~' && character != '\\' && reference(character).empty();
}

}  // namespace

bool isXMLCharacter(char32_t character) {
    if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
    return character < 0xD800 || (character > 0xDFFF && character < 0xFFFE) ||
           (character > 0xFFFF && character <= 0x10FFFF);
}

void append(std::string& xml, std::string_view piece) {
    constexpr auto tooMuch = largestPropertyList + 1;
    xml += piece.substr(0, tooMuch - std::min(xml.size(), tooMuch));
}

void appendText(std::string& xml, std::string_view text) {
    while (!text.empty() && xml.size() <= largestPropertyList) {
        auto [character, length] = text::firstOf(text);
        if (character == replacementCharacter) {
            append(xml, "\xEF\xBF\xBD");
        } else if (!isXMLCharacter(character) || escapedUnit(text) >= 0) {
            append(xml, escape(character));
        } else if (!reference(text.front()).empty()) {
            append(xml, reference(text.front()));
        } else {
            // Most texts are plain from the start to the end.
            while (length < text.size() && isPlain(text[length])) ++length;
            append(xml, text.substr(0, length));
        }
        text.remove_prefix(length);
    }
}

std::string withEscapesRead(std::string_view text) {
    return read(text, /*onlyPairs=*/false);
}

std::string withPairsRead(std::string_view text) {
    return read(text, /*onlyPairs=*/true);
}

void appendElement(std::string& xml, std::string_view name, std::string_view content) {
    for (const auto piece : std::initializer_list<std::string_view>{"<", name, ">", content, "</", name, ">\n"})
        append(xml, piece);
}

void appendTextElement(std::string& xml, std::string_view name, std::string_view text) {
    for (const auto piece : std::initializer_list<std::string_view>{"<", name, ">"}) append(xml, piece);
    appendText(xml, text);
    for (const auto piece : std::initializer_list<std::string_view>{"</", name, ">\n"}) append(xml, piece);
}

std::string base64(std::string_view data) {
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((data.size() + 2) / 3 * 4);
    for (; !data.empty(); data.remove_prefix(std::min<std::size_t>(data.size(), 3))) {
        std::uint32_t group = 0;
        for (std::size_t index = 0; index < 3; ++index) {
            group = group << 8 | (index < data.size() ? static_cast<unsigned char>(data[index]) : 0);
        }
        for (std::size_t index = 0; index < 4; ++index) {
            text += index <= data.size() ? digits[group >> (18 - 6 * index) & 0x3F] : '=';
        }
    }
    return text;
}

std::string_view trimmed(std::string_view text) {
    const auto isSpace = [](char character) {
        return character == ' ' || character == '\t' || character == '\r' || character == '\n';
    };
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace vantrel::gnustep

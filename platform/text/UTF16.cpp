#include "platform/text/UTF16.h"

namespace vantrel::text {

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;
constexpr char32_t firstBeyondUnits = 0x10000;
constexpr char32_t lastCharacter = 0x10FFFF;
constexpr std::size_t lengthOfHalf = 3;

bool isHigh(char32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLow(char32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

std::size_t lengthInUTF8(char32_t character) {
    if (character < 0x80) return 1;
    if (character < 0x800) return 2;
    return character < firstBeyondUnits ? 3 : 4;
}

/// How many bytes the character takes that begins with `lead`; 0 where none does.
std::size_t lengthFrom(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead < 0xC0) return 0;
    if (lead < 0xE0) return 2;
    if (lead < 0xF0) return 3;
    return lead < 0xF8 ? 4 : 0;
}

}  // namespace

std::u16string toUTF16(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const auto [number, length] = firstOf(text);
        if (number < firstBeyondUnits) {
            units += static_cast<char16_t>(number);
        } else {
            const char32_t offset = number - firstBeyondUnits;
            units += static_cast<char16_t>(0xD800 + (offset >> 10));
            units += static_cast<char16_t>(0xDC00 + (offset & 0x3FF));
        }
        text.remove_prefix(length);
    }
    return units;
}

std::string fromUTF16(std::u16string_view units) {
    std::string text;
    text.reserve(units.size());
    for (const char16_t unit : units) append(text, unit);
    return text;
}

void append(std::string& text, char16_t unit) {
    char32_t character = unit;
    if (isLow(unit) && text.size() >= lengthOfHalf) {
        const auto before = text.size() - lengthOfHalf;
        const char32_t high = firstOf(std::string_view(text).substr(before)).number;
        if (isHigh(high)) {
            character = firstBeyondUnits + ((high - 0xD800) << 10) + (unit - 0xDC00U);
            text.erase(before);
        }
    }
    append(text, character);
}

void append(std::string& text, char32_t character) {
    const std::size_t length = lengthInUTF8(character);
    if (length == 1) {
        text += static_cast<char>(character);
        return;
    }
    const auto leadBits = static_cast<char32_t>(0xF00U >> length & 0xFFU);
    for (std::size_t left = length; left-- > 0;) {
        const char32_t bits = character >> 6 * left;
        text += static_cast<char>(left + 1 == length ? leadBits | bits : 0x80U | (bits & 0x3FU));
    }
}

Character firstOf(std::string_view text) {
    constexpr Character none{replacementCharacter, 1};
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = lengthFrom(lead);
    if (length == 0 || length > text.size()) return none;
    if (length == 1) return {lead, 1};

    char32_t number = lead & (0x7FU >> length);
    for (const char next : text.substr(1, length - 1)) {
        const auto byte = static_cast<unsigned char>(next);
        if ((byte & 0xC0U) != 0x80) return none;
        number = number << 6 | (byte & 0x3FU);
    }
    return number <= lastCharacter && lengthInUTF8(number) == length ? Character{number, length} : none;
}

}  // namespace vantrel::text

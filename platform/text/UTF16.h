#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantrel::text {

/// The platforms keep texts as UTF-16, these sources as UTF-8. UTF-16 can hold half of a surrogate pair, UTF-8 can't:
/// here such a half stands as the three bytes that UTF-8's own rule makes of its number. So every text of the platform
/// has one form here, and comes back unit for unit.

/// Bytes that are no UTF-8, and no such half, become U+FFFD, one for each.
std::u16string toUTF16(std::string_view text);

std::string fromUTF16(std::u16string_view units);

/// Appends a unit to a text. The second half of a surrogate pair becomes one character with the first, if that is what
/// the text ends with.
void append(std::string& text, char16_t unit);

/// Appends a character.
void append(std::string& text, char32_t character);

struct Character {
    char32_t number;
    /// In bytes.
    std::size_t length;

    /// Whether it stands for a byte that is no text.
    bool isDamage() const { return number == 0xFFFD && length == 1; }
};

/// The character, or the half of a surrogate pair, at the start of `text`, which isn't empty; U+FFFD with a length of 1
/// where there is none.
Character firstOf(std::string_view text);

}  // namespace vantrel::text

#include "command/Text.h"

#include <algorithm>
#include <numeric>

namespace vantrel {
namespace {

constexpr std::string_view ellipsis = "…";

char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool continues(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// The length of the character at the front, at least one byte.
std::size_t lengthOfFirst(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && continues(text[length])) ++length;
    return length;
}

/// From the Chinese radicals on, characters take two columns, with few exceptions that are not worth a table here.
std::size_t columnsOfFirst(std::string_view character) {
    return character < "\u2E80" ? 1 : 2;
}

/// How many letters have to be put in, taken away or replaced to make one of the other.
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t replaced = diagonal + (lower(one[i]) == lower(other[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string onOneLine(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    if (text.empty()) return "\"\"";
    std::string line;
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (code >= 0x20 && code != 0x7F) {
            line += character;
        } else if (character == '\n') {
            line += "\\n";
        } else if (character == '\t') {
            line += "\\t";
        } else {
            line.append("\\x").append(1, digits[code >> 4]).append(1, digits[code & 0xF]);
        }
    }
    return line;
}

std::size_t columns(std::string_view text) {
    std::size_t sum = 0;
    while (!text.empty()) {
        const auto length = lengthOfFirst(text);
        sum += columnsOfFirst(text.substr(0, length));
        text.remove_prefix(length);
    }
    return sum;
}

std::string inColumns(std::string_view text, std::size_t wanted) {
    std::string fitting;
    std::size_t taken = columns(text);
    if (taken > wanted) {
        fitting = ellipsis;
        for (++taken; taken > wanted; text.remove_prefix(lengthOfFirst(text))) {
            taken -= columnsOfFirst(text.substr(0, lengthOfFirst(text)));
        }
    }
    fitting += text;
    return fitting.append(wanted - taken, ' ');
}

std::string styled(std::string_view style, std::string_view text) {
    const std::string_view end = style.empty() ? "" : "\033[0m";
    return std::string(style).append(text).append(end);
}

bool isSameName(std::string_view one, std::string_view other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                      [](char left, char right) { return lower(left) == lower(right); });
}

std::string nearest(std::string_view word, const std::vector<std::string>& names) {
    return *std::min_element(names.begin(), names.end(), [word](const std::string& left, const std::string& right) {
        return distance(word, left) < distance(word, right);
    });
}

std::string shellWord(std::string_view text) {
    constexpr std::string_view plain = "-+./:=@_%,";
    const auto isPlain = [plain](char character) {
        return (lower(character) >= 'a' && lower(character) <= 'z') || (character >= '0' && character <= '9') ||
               plain.find(character) != std::string_view::npos;
    };
    if (!text.empty() && std::all_of(text.begin(), text.end(), isPlain)) return std::string(text);
    std::string word = "'";
    for (const char character : text) {
        if (character == '\'') {
            word += "'\\''";
        } else {
            word += character;
        }
    }
    return word + '\'';
}

}  // namespace vantrel

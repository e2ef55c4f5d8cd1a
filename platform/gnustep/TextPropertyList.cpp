#include "platform/gnustep/TextPropertyList.h"

#include <algorithm>

#include "platform/gnustep/PropertyList.h"
#include "platform/gnustep/XMLText.h"
#include "platform/text/UTF16.h"

namespace vantrel::gnustep {
namespace {

constexpr char whiteSpace[] = " \t\n\v\f\r";
constexpr char base64Characters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/= \t\n\r";

bool isUnquoted(char character) {
    constexpr std::string_view others = "\"'(),;<=>[\\]`{}";
    return character > ' ' && character <= '~' && others.find(character) == std::string_view::npos;
}

/// The digit's value; 16 when it is none.
int digit(char character) {
    constexpr std::string_view digits = "0123456789ABCDEF0123456789abcdef";
    const auto found = digits.find(character);
    return found == std::string_view::npos ? 16 : static_cast<int>(found % 16);
}

/// The number at the start of `text`, of up to `most` digits, which it takes off.
int takeNumber(std::string_view& text, int most, int base) {
    int number = 0;
    for (; most > 0 && !text.empty() && digit(text.front()) < base; --most) {
        number = number * base + digit(text.front());
        text.remove_prefix(1);
    }
    return number;
}

/// The text that stands between quotes.
std::string readQuoted(std::string_view quoted) {
    constexpr std::string_view letters = "abtrnvf";
    constexpr std::string_view meanings = "\a\b\t\r\n\v\f";
    std::string text;
    text.reserve(quoted.size());
    for (std::string_view rest = quoted; !rest.empty();) {
        const bool isEscape = rest.starts_with('\\') && rest.size() > 1;
        if (isEscape) rest.remove_prefix(1);
        const char character = rest.front();
        if (isEscape && digit(character) < 8) {
            text::append(text, static_cast<char16_t>(takeNumber(rest, 3, 8)));
            continue;
        }
        rest.remove_prefix(1);
        if (isEscape && (character == 'U' || character == 'u')) {
            text::append(text, static_cast<char16_t>(takeNumber(rest, 4, 16)));
        } else {
            const auto letter = isEscape ? letters.find(character) : std::string_view::npos;
            text += letter == std::string_view::npos ? character : meanings[letter];
        }
    }
    return text;
}

bool isUTF8(std::string_view text) {
    while (!text.empty()) {
        const auto character = text::firstOf(text);
        if (character.isDamage()) return false;
        text.remove_prefix(character.length);
    }
    return true;
}

/// Walks a list and writes what it comes by.
class TextWalk {
public:
    explicit TextWalk(std::string_view text) : text_(text), xml_(listStart) {
        xml_.reserve(std::min(4 * text.size(), largestPropertyList + 1));
    }

    std::string toXML() {
        if (!writeItem(0)) return {};
        skipSpace();
        append(xml_, listEnd);
        return text_.empty() ? std::move(xml_) : std::string();
    }

private:
    bool writeItem(std::size_t depth) {
        skipSpace();
        if (xml_.size() > largestPropertyList || depth > deepestNesting + 1) return false;
        if (take("{")) return writeDictionary(depth);
        if (take("(")) return writeArray(depth);
        if (take("<*")) return writeTyped(takeUntil(">"));
        if (take("<[")) return element("data", takeUntil("]>"), base64Characters);
        if (take("<")) return writeHexadecimal(takeUntil(">"));
        return writeText("string");
    }

    bool writeDictionary(std::size_t depth) {
        append(xml_, "<dict>\n");
        for (skipSpace(); !take("}"); skipSpace()) {
            if (!writeText("key") || !takeSeparator("=") || !writeItem(depth + 1)) return false;
            // The last semicolon isn't missed.
            if (!takeSeparator(";") && !text_.starts_with('}')) return false;
        }
        append(xml_, "</dict>\n");
        return true;
    }

    bool writeArray(std::size_t depth) {
        append(xml_, "<array>\n");
        for (skipSpace(); !take(")"); skipSpace()) {
            if (!writeItem(depth + 1)) return false;
            if (!takeSeparator(",") && !text_.starts_with(')')) return false;
        }
        append(xml_, "</array>\n");
        return true;
    }

    bool writeText(std::string_view name) {
        std::string text;
        if (take("\"")) {
            std::size_t end = 0;
            while (end < text_.size() && text_[end] != '"') end += text_[end] == '\\' ? 2 : 1;
            if (end >= text_.size()) return false;
            text = readQuoted(text_.substr(0, end));
            text_.remove_prefix(end + 1);
        } else {
            text.assign(text_.begin(), std::find_if_not(text_.begin(), text_.end(), isUnquoted));
            text_.remove_prefix(text.size());
        }
        appendTextElement(xml_, name, text);
        return true;
    }

    /// A letter for the type, and the value with or without quotes.
    bool writeTyped(std::string_view typed) {
        const char type = typed.empty() ? '\0' : typed.front();
        std::string value(typed.substr(typed.empty() ? 0 : 1));
        if (value.size() > 2 && value.starts_with('"') && value.ends_with('"'))
            value = value.substr(1, value.size() - 2);
        // XML lists have a spelling of their own for dates in universal time.
        if (value.size() == 25 && value.ends_with(" +0000")) value.replace(10, 1, "T").replace(19, 6, "Z");
        switch (type) {
            case 'B':
                return (value == "Y" || value == "N") && element(value == "Y" ? "true" : "false", "", "");
            case 'I':
                return element("integer", value, "+-0123456789");
            case 'R':
                return element("real", value, "+-.0123456789Eeinfa");
            case 'D':
                return element("date", value, "+-: 0123456789TZ");
            default:
                return false;
        }
    }

    bool writeHexadecimal(std::string_view digits) {
        std::string data;
        data.reserve(digits.size() / 2);
        int byte = 1;
        for (const char character : digits) {
            if (std::string_view(whiteSpace).find(character) != std::string_view::npos) continue;
            if (digit(character) > 15) return false;
            // The leading 1 tells when there are two digits.
            byte = byte << 4 | digit(character);
            if (byte < 0x100) continue;
            data += static_cast<char>(byte);
            byte = 1;
        }
        appendElement(xml_, "data", base64(data));
        return byte == 1;
    }

    /// False when `content` has other characters than `allowed`.
    bool element(std::string_view name, std::string_view content, std::string_view allowed) {
        appendElement(xml_, name, content);
        return content.find_first_not_of(allowed) == std::string_view::npos;
    }

    void skipSpace() {
        while (true) {
            text_.remove_prefix(std::min(text_.find_first_not_of(whiteSpace), text_.size()));
            const bool isLine = take("//");
            if (!isLine && !take("/*")) return;
            takeUntil(isLine ? "\n" : "*/");
        }
    }

    bool take(std::string_view start) {
        if (!text_.starts_with(start)) return false;
        text_.remove_prefix(start.size());
        return true;
    }

    bool takeSeparator(std::string_view separator) {
        skipSpace();
        return take(separator);
    }

    /// What stands before `end`, which is taken off with it, or else all that is left.
    std::string_view takeUntil(std::string_view end) {
        const auto before = text_.substr(0, text_.find(end));
        text_.remove_prefix(std::min(before.size() + end.size(), text_.size()));
        return before;
    }

    std::string_view text_;
    std::string xml_;
};

}  // namespace

bool isTextPropertyList(std::string_view bytes) {
    const auto start = bytes.find_first_not_of(whiteSpace);
    return start != std::string_view::npos && (bytes[start] == '{' || bytes[start] == '/');
}

std::string xmlFromTextPropertyList(const std::string& text) {
    return isUTF8(text) ? TextWalk(text).toXML() : std::string();
}

}  // namespace vantrel::gnustep

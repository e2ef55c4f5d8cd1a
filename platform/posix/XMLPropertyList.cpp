#include <time.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/PropertyListInspection.h"

namespace vantrel::posix {
namespace {

constexpr std::string_view whiteSpace = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    const auto start = text.find_first_not_of(whiteSpace);
    if (start == std::string_view::npos) return {};
    return text.substr(start, text.find_last_not_of(whiteSpace) - start + 1);
}

template <typename Number, typename... Base>
bool isWholly(std::string_view digits, Number& number, Base... base) {
    const char* end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, number, base...);
    return error == std::errc() && last == end;
}

/// Whether libplist holds the number: one from -2^63 to 2^64 - 1. It would take a leading zero for octal.
bool isInteger(std::string_view digits) {
    const bool negative = digits.starts_with('-');
    if (negative || digits.starts_with('+')) digits.remove_prefix(1);
    const bool hexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    if (hexadecimal) digits.remove_prefix(2);
    if (!hexadecimal && digits.size() > 1 && digits.starts_with('0')) return false;
    std::uint64_t magnitude = 0;
    return isWholly(digits, magnitude, hexadecimal ? 16 : 10) && (!negative || magnitude <= std::uint64_t{1} << 63);
}

bool isReal(std::string_view digits) {
    if (digits.starts_with('+')) digits.remove_prefix(1);
    double number = 0;
    return isWholly(digits, number);
}

bool isDate(std::string_view text) {
    constexpr std::size_t length = 20;
    constexpr int firstYear = 1900;
    if (text.size() != length) return false;
    const std::string terminated(text);
    struct tm time {};
    const char* end = strptime(terminated.c_str(), "%Y-%m-%dT%H:%M:%SZ", &time);
    const std::chrono::year_month_day day{std::chrono::year(time.tm_year + firstYear),
                                          std::chrono::month(static_cast<unsigned>(time.tm_mon + 1)),
                                          std::chrono::day(static_cast<unsigned>(time.tm_mday))};
    return end == terminated.c_str() + length && day.ok() && time.tm_sec < 60;
}

bool isBase64(std::string_view text) {
    std::size_t digits = 0;
    std::size_t padding = 0;
    for (const char byte : text) {
        if (whiteSpace.find(byte) != std::string_view::npos) continue;
        const bool isLetter = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
        const bool isDigit = isLetter || (byte >= '0' && byte <= '9') || byte == '+' || byte == '/';
        if (byte == '=' ? ++padding > 2 : !isDigit || padding > 0) return false;
        ++digits;
    }
    return digits % 4 == 0;
}

bool isContent(std::string_view type, std::string_view content) {
    if (type == "integer") return isInteger(trimmed(content));
    if (type == "real") return isReal(trimmed(content));
    if (type == "date") return isDate(content);
    if (type == "data") return isBase64(content);
    return trimmed(content).empty();
}

/// Whether the bytes of `xml` mean what UTF-8 says they mean.
bool isDeclaredAsUTF8(std::string_view xml) {
    if (!xml.starts_with("<?xml")) return true;
    const auto declaration = xml.substr(0, xml.find("?>"));
    const auto has = [&](std::string_view name) { return declaration.find(name) != std::string_view::npos; };
    if (!has("encoding") || has("UTF-8") || has("utf-8")) return true;
    return std::all_of(xml.begin(), xml.end(), [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

class Inspector {
public:
    explicit Inspector(std::string_view xml) : rest_(xml) {}

    bool isSound() {
        while (skipBlank()) {
            if (--tagsLeft_ == 0) return false;
            const bool goesOn = rest_.starts_with("<!--") ? take("-->", 4).has_value() : takeTag();
            if (!goesOn) return false;
        }
        return rest_.empty() && isClosed_ && !isWrapped_;
    }

private:
    struct Container {
        bool isDictionary;
        bool hasKey;
    };

    bool skipBlank() {
        rest_.remove_prefix(std::min(rest_.find_first_not_of(whiteSpace), rest_.size()));
        return rest_.starts_with('<');
    }

    /// Takes everything up to and with `end`, and tells what stood before it.
    std::optional<std::string_view> take(std::string_view end, std::size_t from) {
        const auto found = rest_.find(end, from);
        if (found == std::string_view::npos) return std::nullopt;
        const auto taken = rest_.substr(0, found);
        rest_.remove_prefix(found + end.size());
        return taken;
    }

    bool takeTag() {
        const bool isInstruction = rest_.starts_with("<?");
        auto tag = take(isInstruction ? "?>" : ">", 1);
        // Where a quote holds the end of the tag, libplist looks for another.
        if (!tag || std::count(tag->begin(), tag->end(), '"') % 2 != 0) return false;
        if (isInstruction) return true;
        if (tag->starts_with("<!")) {
            return tag->starts_with("<!DOCTYPE") && tag->find('[') == std::string_view::npos && !isOpen();
        }
        tag->remove_prefix(1);
        const bool isEmpty = tag->ends_with('/');
        if (isEmpty) tag->remove_suffix(1);
        const auto name = tag->substr(0, tag->find_first_of(whiteSpace));
        if (name == "plist") return !isEmpty && !isOpen() && !std::exchange(isWrapped_, true);
        if (!trimmed(tag->substr(name.size())).empty()) return false;
        return name.starts_with('/') ? close(name.substr(1)) : open(name, isEmpty);
    }

    bool isOpen() const { return isClosed_ || !open_.empty(); }

    bool close(std::string_view name) {
        if (name == "plist") return isClosed_ && std::exchange(isWrapped_, false);
        if (open_.empty() || open_.back().hasKey || open_.back().isDictionary != (name == "dict")) return false;
        open_.pop_back();
        isClosed_ = open_.empty();
        return true;
    }

    bool open(std::string_view name, bool isEmpty) {
        const bool isDictionary = name == "dict";
        const bool isKey = name == "key";
        if (open_.empty()) {
            if (!isDictionary || isClosed_) return false;
        } else if (open_.back().isDictionary) {
            if (open_.back().hasKey == isKey) return false;
            open_.back().hasKey = isKey;
        } else if (isKey) {
            return false;
        }
        if (isDictionary || name == "array") {
            if (!isEmpty) open_.push_back({isDictionary, false});
            isClosed_ = open_.empty();
            return open_.size() <= deepestNesting + 1;
        }
        if (isKey || name == "string") return isEmpty || takeText();
        if (isEmpty) return isContent(name, "");
        const auto content = take("</", 0);
        return content && isContent(name, *content) && take(">", 0) == name;
    }

    bool takeText() {
        while (true) {
            const auto next = rest_.find('<');
            if (next == std::string_view::npos) return false;
            rest_.remove_prefix(next);
            if (!rest_.starts_with("<!")) return take(">", 0).has_value();
            const bool isComment = rest_.starts_with("<!--");
            if (!take(isComment ? "-->" : "]]>", isComment ? 4 : 9)) return false;
        }
    }

    std::string_view rest_;
    std::vector<Container> open_;
    bool isWrapped_ = false;
    bool isClosed_ = false;
    std::size_t tagsLeft_ = 2 * mostObjects;
};

}  // namespace

bool isSoundXMLPropertyList(std::string_view xml) {
    return xml.find('\0') == std::string_view::npos && isDeclaredAsUTF8(xml) && Inspector(xml).isSound();
}

}  // namespace vantrel::posix

#include "platform/gnustep/BinaryPropertyList.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>

#include "platform/gnustep/PropertyList.h"
#include "platform/gnustep/UniversalTime.h"
#include "platform/gnustep/XMLText.h"
#include "platform/text/UTF16.h"

namespace vantrel::gnustep {
namespace {

constexpr char magic[] = "bplist00";
constexpr std::size_t magicSize = sizeof magic - 1;
constexpr std::size_t trailerSize = 32;

std::string textOfReal(double number) {
    if (std::isinf(number)) return number > 0 ? "+infinity" : "-infinity";
    std::array<char, 32> digits{};
    std::to_chars(digits.data(), digits.data() + digits.size(), number);
    return std::isnan(number) ? "nan" : digits.data();
}

/// `seconds` count from the start of 2001. Empty for a date that isn't written in four digits.
std::string textOfDate(double seconds) {
    using namespace std::chrono;
    constexpr sys_seconds reference = sys_days{2001y / January / 1};
    constexpr auto first = static_cast<double>((sys_days{0y / January / 1} - reference).count());
    constexpr auto end = static_cast<double>((sys_days{10000y / January / 1} - reference).count());
    if (!(seconds >= first && seconds < end)) return {};
    return universalTime(reference + floor<std::chrono::seconds>(duration<double>(seconds)));
}

/// What is too long is cut short, but not so short that it could be written.
std::string utf8From(std::string_view utf16) {
    std::string text;
    text.reserve(std::min(2 * utf16.size(), largestPropertyList + 4));
    for (std::size_t at = 0; at < utf16.size() && text.size() <= largestPropertyList; at += 2) {
        const unsigned high = static_cast<unsigned char>(utf16[at]);
        text::append(text, static_cast<char16_t>(high << 8 | static_cast<unsigned char>(utf16[at + 1])));
    }
    return text;
}

/// Walks a binary list and writes what it comes by, an object as often as it is referred to. Each takes its place in
/// what is written, so that the bound of that is a bound of the walk.
class BinaryWalk {
public:
    explicit BinaryWalk(std::string_view bytes) : bytes_(bytes), xml_(listStart) {
        xml_.reserve(std::min(4 * bytes.size(), largestPropertyList + 1));
    }

    std::string toXML() {
        if (bytes_.size() < magicSize + trailerSize || !bytes_.starts_with(magic)) return {};
        const auto trailer = bytes_.size() - trailerSize;
        offsetSize_ = integerAt(trailer + 6, 1);
        referenceSize_ = integerAt(trailer + 7, 1);
        count_ = integerAt(trailer + 8, 8);
        end_ = integerAt(trailer + 24, 8);
        if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8) return {};
        if (end_ > trailer || count_ > (trailer - end_) / offsetSize_) return {};
        if (!write(integerAt(trailer + 16, 8), 0)) return {};
        append(xml_, listEnd);
        return std::move(xml_);
    }

private:
    /// An object's kind, the number of its units or items (of a number, the logarithm of its size in bytes), and where
    /// its content starts.
    struct Object {
        unsigned kind;
        std::uint64_t count;
        std::size_t content;
    };

    std::optional<Object> object(std::uint64_t index) const {
        if (index >= count_) return std::nullopt;
        const auto offset = integerAt(end_ + index * offsetSize_, offsetSize_);
        if (offset < magicSize || offset >= end_) return std::nullopt;
        const auto marker = integerAt(offset, 1);
        Object object{static_cast<unsigned>(marker >> 4), marker & 0xF, static_cast<std::size_t>(offset) + 1};
        if (object.kind >= 0x4 && object.kind != 0x8 && object.count == 0xF) {
            // More than fit into the marker: an integer tells how many.
            if (!holds(object.content, 1)) return std::nullopt;
            const auto sizeMarker = integerAt(object.content, 1);
            const std::size_t size = std::size_t{1} << (sizeMarker & 0xF);
            if (sizeMarker >> 4 != 0x1 || size > 8 || !holds(object.content + 1, size)) return std::nullopt;
            object.count = integerAt(object.content + 1, size);
            object.content += 1 + size;
        }
        return object.count <= bytes_.size() ? std::optional(object) : std::nullopt;
    }

    bool write(std::uint64_t index, std::size_t depth) {
        const auto found = object(index);
        if (!found || xml_.size() > largestPropertyList) return false;
        const auto [kind, count, content] = *found;
        // One that contains itself is found out by its depth.
        if (kind == 0xA || kind == 0xD) return depth <= deepestNesting && writeContainer(*found, depth);
        if (kind == 0x5 || kind == 0x6) return writeText("string", *found);
        if (kind == 0x0) return (count == 8 || count == 9) && element(count == 9 ? "true" : "false", "");

        const auto size = kind == 0x4 ? count : kind == 0x8 ? count + 1 : std::uint64_t{1} << (count & 0xF);
        if (!holds(content, size)) return false;
        switch (kind) {
            case 0x1:
                return writeInteger(content, size);
            case 0x2:
                return (size == 4 || size == 8) && element("real", textOfReal(realAt(content, size)));
            case 0x3: {
                const auto date = size == 8 ? textOfDate(realAt(content, size)) : "";
                return !date.empty() && element("date", date);
            }
            case 0x4:
                return element("data", base64(bytes_.substr(content, size)));
            case 0x8:  // an archiver's reference, which XML lists hold like this
                append(xml_, "<dict>\n");
                element("key", "CF$UID");
                if (size > 4 || !writeInteger(content, size)) return false;
                append(xml_, "</dict>\n");
                return true;
            default:
                return false;
        }
    }

    bool writeContainer(const Object& container, std::size_t depth) {
        const bool isDictionary = container.kind == 0xD;
        const auto size = container.count * referenceSize_;
        if (!holds(container.content, isDictionary ? 2 * size : size)) return false;
        append(xml_, isDictionary ? "<dict>\n" : "<array>\n");
        for (auto at = container.content; at < container.content + size; at += referenceSize_) {
            const auto key = isDictionary ? object(integerAt(at, referenceSize_)) : std::nullopt;
            if (isDictionary && !(key && writeText("key", *key))) return false;
            if (!write(integerAt(isDictionary ? at + size : at, referenceSize_), depth + 1)) return false;
        }
        append(xml_, isDictionary ? "</dict>\n" : "</array>\n");
        return true;
    }

    bool writeText(std::string_view name, const Object& object) {
        const bool isASCII = object.kind == 0x5;
        if (!isASCII && object.kind != 0x6) return false;
        if (!holds(object.content, isASCII ? object.count : 2 * object.count)) return false;
        const auto text = bytes_.substr(object.content, isASCII ? object.count : 2 * object.count);
        appendTextElement(xml_, name, isASCII ? text : utf8From(text));
        const auto isOfASCII = [](char byte) { return static_cast<unsigned char>(byte) < 0x80; };
        return !isASCII || std::all_of(text.begin(), text.end(), isOfASCII);
    }

    /// Integers of 8 or 16 bytes have a sign, shorter ones don't.
    bool writeInteger(std::size_t offset, std::size_t size) {
        const auto high = size == 16 ? integerAt(offset, 8) : 0;
        const auto low = size == 16 ? integerAt(offset + 8, 8) : integerAt(offset, size);
        const bool isNegative = low >> 63 != 0 && (size == 8 || high == ~std::uint64_t{0});
        element("integer", isNegative ? std::to_string(static_cast<std::int64_t>(low)) : std::to_string(low));
        return size <= 16 && (high == 0 || isNegative);
    }

    double realAt(std::size_t offset, std::size_t size) const {
        if (size == 4) return std::bit_cast<float>(static_cast<std::uint32_t>(integerAt(offset, 4)));
        return std::bit_cast<double>(integerAt(offset, 8));
    }

    bool element(std::string_view name, std::string_view content) {
        appendElement(xml_, name, content);
        return true;
    }

    /// Whether so many bytes stand between `offset` and the offset table.
    bool holds(std::uint64_t offset, std::uint64_t size) const { return offset <= end_ && size <= end_ - offset; }

    std::uint64_t integerAt(std::size_t offset, std::size_t size) const {
        std::uint64_t value = 0;
        for (const char byte : bytes_.substr(offset, size)) value = value << 8 | static_cast<unsigned char>(byte);
        return value;
    }

    std::string_view bytes_;
    std::string xml_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::uint64_t count_ = 0;
    /// Where the objects end and the offset table starts.
    std::uint64_t end_ = 0;
};

}  // namespace

bool isBinaryPropertyList(std::string_view bytes) {
    return bytes.starts_with("bplist");
}

std::string xmlFromBinaryPropertyList(std::string_view bytes) {
    return BinaryWalk(bytes).toXML();
}

}  // namespace vantrel::gnustep

#include "platform/posix/BinaryPropertyList.h"

#include <locale.h>
#include <plist/plist.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/posix/PropertyList.h"
#include "platform/posix/PropertyListText.h"

namespace vantrel::posix {
namespace {

constexpr std::string_view magic = "bplist00";
constexpr std::size_t trailerSize = 32;

/// Looks a binary list over before libplist may see it. libplist descends by recursion, writes an object out as often
/// as it is referred to, and cuts texts and numbers short that it can't hold: all that must be known before.
class Inspector {
public:
    explicit Inspector(std::string_view bytes) : bytes_(bytes) {}

    bool isSound() {
        if (bytes_.size() < magic.size() + trailerSize || !bytes_.starts_with(magic)) return false;
        const auto trailer = bytes_.size() - trailerSize;
        offsetSize_ = integerAt(trailer + 6, 1);
        referenceSize_ = integerAt(trailer + 7, 1);
        const auto count = integerAt(trailer + 8, 8);
        const auto top = integerAt(trailer + 16, 8);
        const auto offsetTable = integerAt(trailer + 24, 8);
        if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8) return false;
        // Looked at before it becomes a std::size_t, which has 32 bits on some hosts.
        if (offsetTable > trailer || count > (trailer - offsetTable) / offsetSize_) return false;
        offsetTable_ = offsetTable;
        objects_.resize(count);
        return inspect(top, 0);
    }

private:
    /// What is known of an object with all below it.
    struct Object {
        enum { unseen, open, closed } state = unseen;
        std::size_t height = 0;
        /// About what it costs to write it out.
        std::size_t cost = 0;
    };

    struct Header {
        unsigned kind;
        unsigned detail;
        /// For what has a length, the number of items.
        std::uint64_t count;
        std::size_t content;
    };

    /// An object's own cost, beside its content: its tags and the white space before them.
    static constexpr std::size_t objectCost = 64;

    bool inspect(std::uint64_t index, std::size_t depth) {
        if (index >= objects_.size()) return false;
        Object& object = objects_[index];
        if (object.state == Object::open) return false;  // it contains itself
        if (object.state == Object::closed) return depth + object.height <= deepestNesting;
        if (depth > deepestNesting) return false;

        const auto header = headerAt(index);
        if (!header) return false;
        object.state = Object::open;
        object.cost = objectCost;
        const bool isSound = header->kind == 0xA || header->kind == 0xD ? inspectItems(object, *header, depth)
                                                                        : inspectScalar(object, *header);
        object.state = Object::closed;
        return isSound && object.cost <= largestPropertyList;
    }

    bool inspectItems(Object& object, const Header& header, std::size_t depth) {
        const bool isDictionary = header.kind == 0xD;
        if (!holds(header, referenceSize_ * (isDictionary ? 2 : 1))) return false;
        const auto references = header.count * (isDictionary ? 2 : 1);
        for (std::uint64_t item = 0; item < references; ++item) {
            const auto index = integerAt(header.content + item * referenceSize_, referenceSize_);
            if (!inspect(index, depth + 1)) return false;
            if (isDictionary && item < header.count && !isString(index)) return false;
            object.height = std::max(object.height, objects_[index].height + 1);
            object.cost += objects_[index].cost;
            if (object.cost > largestPropertyList) return false;
        }
        return true;
    }

    bool inspectScalar(Object& object, const Header& header) {
        switch (header.kind) {
            case 0x0:
                return header.detail == 8 || header.detail == 9;
            case 0x1:
                if (header.detail > 4 || !holds(header.content, std::size_t{1} << header.detail)) return false;
                return header.detail < 4 || integerAt(header.content, 8) == 0;
            case 0x2:
                return (header.detail == 2 || header.detail == 3) &&
                       holds(header.content, std::size_t{1} << header.detail);
            case 0x3:
                return header.detail == 3 && holds(header.content, 8) && isCommonDate(header.content);
            case 0x4:
                object.cost += 2 * header.count;
                return holds(header, 1);
            case 0x5:
                object.cost += header.count;
                return holds(header, 1) && isASCII(bytes_.substr(header.content, header.count));
            case 0x6:
                object.cost += 3 * header.count;
                return holds(header, 2) && isUTF16(header);
            case 0x8:
                return holds(header.content, header.detail + 1);
            default:
                return false;
        }
    }

    std::optional<Header> headerAt(std::uint64_t index) const {
        const auto offset = integerAt(offsetTable_ + index * offsetSize_, offsetSize_);
        if (offset < magic.size() || offset >= offsetTable_) return std::nullopt;
        const auto marker = static_cast<unsigned>(integerAt(offset, 1));
        Header header{marker >> 4, marker & 0xF, marker & 0xF, static_cast<std::size_t>(offset) + 1};
        const bool hasLength = header.kind >= 0x4 && header.kind != 0x8;
        if (hasLength && header.detail == 0xF) {
            if (!holds(header.content, 1)) return std::nullopt;
            const auto sizeMarker = integerAt(header.content, 1);
            const std::size_t size = std::size_t{1} << (sizeMarker & 0xF);
            if (sizeMarker >> 4 != 1 || size > 8 || !holds(header.content + 1, size)) return std::nullopt;
            header.count = integerAt(header.content + 1, size);
            header.content += 1 + size;
        }
        return header;
    }

    bool isString(std::uint64_t index) const {
        const auto header = headerAt(index);
        return header && (header->kind == 0x5 || header->kind == 0x6);
    }

    static bool isASCII(std::string_view text) {
        for (const char byte : text) {
            if (byte == 0 || static_cast<unsigned char>(byte) > 0x7F) return false;
        }
        return true;
    }

    bool isUTF16(const Header& header) const {
        bool expectsLow = false;
        for (std::uint64_t index = 0; index < header.count; ++index) {
            const auto unit = integerAt(header.content + 2 * index, 2);
            const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
            if (unit == 0 || isLow != expectsLow) return false;
            expectsLow = unit >= 0xD800 && unit <= 0xDBFF;
        }
        return !expectsLow;
    }

    /// Whether the date, in seconds since 2001, lies in the years 1 to 9999.
    bool isCommonDate(std::size_t offset) const {
        const auto seconds = std::bit_cast<double>(integerAt(offset, 8));
        return seconds >= -63113904000.0 && seconds < 252423993599.0;
    }

    /// Whether so many bytes stand between `offset` and the offset table.
    bool holds(std::size_t offset, std::size_t size) const {
        return offset <= offsetTable_ && size <= offsetTable_ - offset;
    }

    bool holds(const Header& header, std::size_t itemSize) const {
        return header.count <= largestPropertyList && holds(header.content, header.count * itemSize);
    }

    std::uint64_t integerAt(std::size_t offset, std::size_t size) const {
        std::uint64_t value = 0;
        for (const char byte : bytes_.substr(offset, size)) value = value << 8 | static_cast<unsigned char>(byte);
        return value;
    }

    std::string_view bytes_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    std::size_t offsetTable_ = 0;
    std::vector<Object> objects_;
};

/// libplist writes real numbers with the decimal sign of the thread's locale.
class PlainNumbers {
public:
    PlainNumbers() : plain_(newlocale(LC_NUMERIC_MASK, "C", nullptr)) {
        if (plain_) before_ = uselocale(plain_);
    }
    ~PlainNumbers() {
        if (!plain_) return;
        uselocale(before_);
        freelocale(plain_);
    }
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;

private:
    locale_t plain_;
    locale_t before_ = nullptr;
};

/// libplist leaves the zeros in front of a short year out.
std::string withFullYears(std::string xml) {
    constexpr std::string_view opening = "<date>";
    constexpr std::size_t yearLength = 4;
    for (auto found = xml.find(opening); found != std::string::npos; found = xml.find(opening, found + 1)) {
        const auto year = found + opening.size();
        const auto length = xml.find('-', year) - year;
        if (length < yearLength) xml.insert(year, yearLength - length, '0');
    }
    return xml;
}

}  // namespace

bool isBinaryPropertyList(std::string_view bytes) {
    return bytes.starts_with("bplist");
}

std::optional<std::string> xmlFromBinaryPropertyList(std::string_view bytes) {
    if (bytes.size() > largestPropertyList || !Inspector(bytes).isSound()) return std::nullopt;

    const PlainNumbers plainNumbers;
    plist_t root = nullptr;  // libplist reads it before it sets it
    plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    if (!root) return std::nullopt;
    const std::unique_ptr<void, decltype(&plist_free)> list(root, plist_free);

    char* written = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(root, &written, &length);
    if (!written) return std::nullopt;
    const std::unique_ptr<char, decltype(&plist_to_xml_free)> xml(written, plist_to_xml_free);
    return withFullYears(withEscapes({written, length}));
}

}  // namespace vantrel::posix

#include "platform/gnustep/BinaryPropertyList.h"

#include <locale.h>
#include <plist/plist.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/gnustep/PropertyList.h"
#include "platform/gnustep/PropertyListText.h"
#include "platform/gnustep/XMLPropertyList.h"

namespace vantrel::gnustep {
namespace {

constexpr std::string_view magic = "bplist00";
constexpr std::size_t trailerSize = 32;

/// What an object costs to write beside its content, in bytes: its tags and the white space before them.
constexpr std::size_t objectCost = 64;
constexpr std::size_t mostObjects = largestPropertyList / objectCost;

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
        end_ = integerAt(trailer + 24, 8);
        if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8) return false;
        if (end_ > trailer || count > mostObjects || count > (trailer - end_) / offsetSize_) return false;
        objects_.resize(count);
        return inspect(top, 0);
    }

private:
    /// What is known of an object with all below it: all 0 before it was looked at.
    struct Object {
        unsigned kind = 0;
        std::size_t height = 0;
        /// About what it takes to write it out.
        std::uint64_t cost = 0;
    };

    bool inspect(std::uint64_t index, std::size_t depth) {
        if (index >= objects_.size()) return false;
        Object& object = objects_[index];
        // An object that contains itself is found out by its depth.
        if (object.cost == 0 && (depth > deepestNesting || !measure(object, index, depth))) return false;
        return depth + object.height <= deepestNesting && object.cost <= largestPropertyList;
    }

    bool measure(Object& object, std::uint64_t index, std::size_t depth) {
        const auto offset = integerAt(end_ + index * offsetSize_, offsetSize_);
        if (offset < magic.size() || offset >= end_) return false;
        const auto marker = integerAt(offset, 1);
        const auto kind = static_cast<unsigned>(marker >> 4);
        std::uint64_t count = marker & 0xF;
        std::size_t content = offset + 1;
        if (kind >= 0x4 && kind != 0x8 && count == 0xF) {
            if (!holds(content, 1)) return false;
            const auto sizeMarker = integerAt(content, 1);
            const std::size_t size = std::size_t{1} << (sizeMarker & 0xF);
            if (sizeMarker >> 4 != 1 || size > 8 || !holds(content + 1, size)) return false;
            count = integerAt(content + 1, size);
            content += 1 + size;
        }
        if (count > largestPropertyList) return false;

        if (kind == 0xA || kind == 0xD) {
            if (!inspectItems(object, content, count, kind == 0xD, depth)) return false;
        } else if (!isScalar(kind, content, count)) {
            return false;
        }
        object.kind = kind;
        object.cost += objectCost + (kind >= 0x4 && kind <= 0x6 ? 3 * count : 0);
        return true;
    }

    bool inspectItems(Object& object, std::size_t content, std::uint64_t count, bool isDictionary, std::size_t depth) {
        const auto references = count * (isDictionary ? 2 : 1);
        if (!holds(content, references * referenceSize_)) return false;
        std::size_t height = 0;
        std::uint64_t cost = 0;
        for (std::uint64_t item = 0; item < references; ++item) {
            const auto index = integerAt(content + item * referenceSize_, referenceSize_);
            if (!inspect(index, depth + 1)) return false;
            const Object& found = objects_[index];
            if (isDictionary && item < count && found.kind != 0x5 && found.kind != 0x6) return false;
            height = std::max(height, found.height + 1);
            cost += found.cost;
        }
        object.height = height;
        object.cost = cost;
        return true;
    }

    /// `count` is the number of a text's or data's units, and for what has none, what stands in its place.
    bool isScalar(unsigned kind, std::size_t content, std::uint64_t count) const {
        switch (kind) {
            case 0x0:  // a Boolean
                return count == 8 || count == 9;
            case 0x1:  // an integer, of which libplist keeps 64 bits
                return count <= 4 && holds(content, std::size_t{1} << count) &&
                       (count < 4 || integerAt(content, 8) == 0);
            case 0x2:  // a real
                return (count == 2 || count == 3) && holds(content, std::size_t{1} << count);
            case 0x3:  // a date
                return count == 3 && holds(content, 8) && isCommonDate(std::bit_cast<double>(integerAt(content, 8)));
            case 0x4:  // data
                return holds(content, count);
            case 0x5:  // a text in ASCII
                return holds(content, count) && isASCII(bytes_.substr(content, count));
            case 0x6:  // a text in UTF-16
                return holds(content, 2 * count) && isUTF16(content, count);
            case 0x8:  // an archiver's reference
                return count < 4 && holds(content, count + 1);
            default:
                return false;
        }
    }

    static bool isASCII(std::string_view text) {
        return std::all_of(text.begin(), text.end(), [](char byte) { return static_cast<signed char>(byte) > 0; });
    }

    bool isUTF16(std::size_t content, std::uint64_t count) const {
        bool expectsLow = false;
        for (std::uint64_t index = 0; index < count; ++index) {
            const auto unit = integerAt(content + 2 * index, 2);
            const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
            if (unit == 0 || isLow != expectsLow) return false;
            expectsLow = unit >= 0xD800 && unit <= 0xDBFF;
        }
        return !expectsLow;
    }

    /// Whether the date, in seconds since 2001, lies in the years 1 to 9999.
    static bool isCommonDate(double seconds) { return seconds >= -63113904000.0 && seconds < 252423993600.0; }

    /// Whether so many bytes stand between `offset` and the offset table.
    bool holds(std::uint64_t offset, std::uint64_t size) const { return offset <= end_ && size <= end_ - offset; }

    std::uint64_t integerAt(std::size_t offset, std::size_t size) const {
        std::uint64_t value = 0;
        for (const char byte : bytes_.substr(offset, size)) value = value << 8 | static_cast<unsigned char>(byte);
        return value;
    }

    std::string_view bytes_;
    std::size_t offsetSize_ = 0;
    std::size_t referenceSize_ = 0;
    /// Where the objects end and the offset table starts.
    std::uint64_t end_ = 0;
    std::vector<Object> objects_;
};

/// libplist writes real numbers with the decimal sign of the thread's locale.
class PlainNumbers {
public:
    PlainNumbers() : plain_(newlocale(LC_ALL_MASK, "C", nullptr)), before_(uselocale(plain_)) {}
    ~PlainNumbers() {
        uselocale(before_);
        freelocale(plain_);
    }
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;

private:
    locale_t plain_;
    locale_t before_;
};

/// What libplist wrote, as XML: with references for carriage returns, and the zeros in front of a short year.
std::string corrected(std::string xml) {
    const auto insertBehind = [&](std::string_view found, auto insert) {
        for (auto at = xml.find(found); at != std::string::npos; at = xml.find(found, at + 1))
            insert(at + found.size());
    };
    insertBehind("\r", [&](std::size_t end) { xml.replace(end - 1, 1, "&#13;"); });
    insertBehind("<date>", [&](std::size_t year) {
        constexpr std::size_t yearLength = 4;
        const auto length = xml.find('-', year) - year;
        if (length < yearLength) xml.insert(year, yearLength - length, '0');
    });
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
    const std::unique_ptr<void, decltype(&plist_free)> list(root, plist_free);
    char* written = nullptr;
    std::uint32_t length = 0;
    if (root) plist_to_xml(root, &written, &length);
    if (!written) return std::nullopt;
    const std::unique_ptr<char, decltype(&plist_to_xml_free)> xml(written, plist_to_xml_free);
    return corrected(withEscapes({written, length}));
}

}  // namespace vantrel::gnustep

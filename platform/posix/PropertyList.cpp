#include "platform/PropertyList.h"

#include <locale.h>
#include <plist/plist.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <utility>

#include "platform/posix/PropertyListInspection.h"
#include "platform/posix/PropertyListText.h"

namespace vantrel {
namespace {

using posix::withEscapes;
using posix::withEscapesRead;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

/// A value in libplist's form, which keeps the list alive that it belongs to. Never changed: lists share them.
using Node = std::shared_ptr<void>;

Node makeNode(plist_t node) {
    return {node, plist_free};
}

/// libplist reads and writes real numbers with the decimal sign of the thread's locale.
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

std::string_view textOf(plist_t node) {
    std::uint64_t length = 0;
    const char* text = plist_get_string_ptr(node, &length);
    return {text, static_cast<std::size_t>(length)};
}

/// Calls `visit(key, item)` for the entries of a dictionary, `visit("", item)` for the items of an array, until one
/// returns false. Returns whether none did.
template <typename Visit>
bool forEachItem(plist_t container, Visit visit) {
    const bool isDictionary = plist_get_node_type(container) == PLIST_DICT;
    void* next = nullptr;
    if (isDictionary) {
        plist_dict_new_iter(container, &next);
    } else {
        plist_array_new_iter(container, &next);
    }
    const std::unique_ptr<void, decltype(&free)> iterator(next, free);
    while (true) {
        char* key = nullptr;
        plist_t item = nullptr;
        if (isDictionary) {
            plist_dict_next_item(container, next, &key, &item);
        } else {
            plist_array_next_item(container, next, &item);
        }
        const std::unique_ptr<char, decltype(&free)> keyOwner(key, free);
        if (!item) return true;
        if (!visit(std::string_view(key ? key : ""), item)) return false;
    }
}

/// Changes every text and key below `node`. Returns whether all were UTF-8.
bool changeTexts(plist_t node, std::string (*changed)(std::string_view)) {
    const auto type = plist_get_node_type(node);
    if (type == PLIST_STRING) {
        const auto text = textOf(node);
        if (!posix::isText(text)) return false;
        if (const auto other = changed(text); other != text) plist_set_string_val(node, other.c_str());
    }
    if (type != PLIST_DICT && type != PLIST_ARRAY) return true;
    return forEachItem(node, [&](std::string_view key, plist_t item) {
        if (!posix::isText(key)) return false;
        if (const auto other = changed(key); other != key) {
            plist_set_key_val(plist_dict_item_get_key(item), other.c_str());
        }
        return changeTexts(item, changed);
    });
}

std::string xmlOf(plist_t node) {
    const PlainNumbers plainNumbers;
    char* written = nullptr;
    std::uint32_t length = 0;
    plist_to_xml(node, &written, &length);
    const std::unique_ptr<char, decltype(&plist_to_xml_free)> xml(written, plist_to_xml_free);
    return written ? std::string(written, length) : std::string();
}

std::string replaced(std::string text, std::string_view old, std::string_view replacement) {
    for (auto found = text.find(old); found != std::string::npos; found = text.find(old, found + replacement.size())) {
        text.replace(found, old.size(), replacement);
    }
    return text;
}

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

/// A node's integer: its 64 bits, which libplist gives out without telling -1 from 2^64 - 1.
std::uint64_t bitsOf(plist_t node) {
    std::uint64_t bits = 0;
    plist_get_uint_val(node, &bits);
    return bits;
}

std::optional<std::int64_t> exactly(plist_t integer) {
    const auto number = static_cast<std::int64_t>(bitsOf(integer));
    const bool isNegative = number < 0 && xmlOf(integer).find("<integer>-") != std::string::npos;
    return number >= 0 || isNegative ? std::optional(number) : std::nullopt;
}

double realOf(plist_t node) {
    double number = 0;
    plist_get_real_val(node, &number);
    return number;
}

std::optional<std::int64_t> exactly(double number) {
    // The largest integer isn't a double itself, the power of two behind it is.
    constexpr auto lowest = static_cast<double>(std::numeric_limits<std::int64_t>::min());
    if (!(number >= lowest && number < -lowest) || std::trunc(number) != number) return std::nullopt;
    return static_cast<std::int64_t>(number);
}

std::optional<std::int32_t> heldToRange(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(number)) return std::nullopt;
    return static_cast<std::int32_t>(
        std::clamp(number, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

bool isTrue(plist_t boolean) {
    std::uint8_t flag = 0;
    plist_get_bool_val(boolean, &flag);
    return flag != 0;
}

}  // namespace

struct PropertyList::Entries {
    struct Entry {
        /// The key with the escapes that it was read with.
        std::string writtenKey;
        Node value;
    };

    plist_t find(std::string_view key) const {
        const auto found = byKey.find(key);
        return found == byKey.end() ? nullptr : found->second.value.get();
    }

    void set(std::string_view key, plist_t value) {
        byKey.insert_or_assign(std::string(key), Entry{withEscapes(key), makeNode(value)});
    }

    std::map<std::string, Entry, std::less<>> byKey;
};

PropertyList::PropertyList() : entries_(std::make_unique<Entries>()) {}
PropertyList::PropertyList(std::unique_ptr<Entries> entries) : entries_(std::move(entries)) {}
PropertyList::~PropertyList() = default;
PropertyList::PropertyList(PropertyList&&) noexcept = default;
PropertyList& PropertyList::operator=(PropertyList&&) noexcept = default;

PropertyList::PropertyList(const PropertyList& other) : entries_(std::make_unique<Entries>(*other.entries_)) {}

PropertyList& PropertyList::operator=(const PropertyList& other) {
    return *this = PropertyList(other);
}

std::optional<PropertyList> PropertyList::parse(std::string_view bytes) {
    if (bytes.size() > largestPropertyList) return std::nullopt;
    const bool isBinary = posix::isBinaryPropertyList(bytes);
    if (!isBinary && bytes.starts_with(byteOrderMark)) bytes.remove_prefix(byteOrderMark.size());
    if (!(isBinary ? posix::isSoundBinaryPropertyList(bytes) : posix::isSoundXMLPropertyList(bytes))) {
        return std::nullopt;
    }

    const PlainNumbers plainNumbers;
    const std::string terminated(bytes);  // libplist reads numbers up to the first byte that is no digit
    plist_t root = nullptr;               // libplist reads it before it sets it
    (isBinary ? plist_from_bin : plist_from_xml)(terminated.data(), static_cast<std::uint32_t>(bytes.size()), &root);
    const Node list = makeNode(root);
    // A binary list has no escapes, and GNUstep's of an XML list are better without some.
    const auto changed = isBinary ? posix::withEscapes : posix::withPairsRead;
    if (plist_get_node_type(root) != PLIST_DICT || !changeTexts(root, changed)) return std::nullopt;

    auto entries = std::make_unique<Entries>();
    forEachItem(root, [&](std::string_view key, plist_t item) {
        entries->byKey.insert_or_assign(withEscapesRead(key), Entries::Entry{std::string(key), Node(list, item)});
        return true;
    });
    return PropertyList(std::move(entries));
}

PreferenceValue PropertyList::value(std::string_view key) const {
    const plist_t node = entries_->find(key);
    if (!node) return Absent{};
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN:
            return isTrue(node);
        case PLIST_STRING:
            return withEscapesRead(textOf(node));
        case PLIST_UINT:
        case PLIST_REAL: {
            const auto number = integer(key);
            const bool fits =
                number && *number >= std::numeric_limits<long>::min() && *number <= std::numeric_limits<long>::max();
            return Number{fits ? std::optional(static_cast<long>(*number)) : std::nullopt};
        }
        default:
            return OtherType{};
    }
}

std::optional<std::int64_t> PropertyList::integer(std::string_view key) const {
    const plist_t node = entries_->find(key);
    switch (plist_get_node_type(node)) {
        case PLIST_UINT:
            return exactly(node);
        case PLIST_REAL:
            return exactly(realOf(node));
        default:
            return std::nullopt;
    }
}

std::optional<std::int32_t> PropertyList::intValue(std::string_view key) const {
    const plist_t node = entries_->find(key);
    switch (plist_get_node_type(node)) {
        case PLIST_BOOLEAN:
            return isTrue(node) ? 1 : 0;
        case PLIST_UINT:
            return static_cast<std::int32_t>(bitsOf(node));
        case PLIST_REAL:
            return heldToRange(realOf(node));
        default:
            return std::nullopt;
    }
}

void PropertyList::setBoolean(std::string_view key, bool flag) {
    entries_->set(key, plist_new_bool(flag ? 1 : 0));
}

void PropertyList::setInteger(std::string_view key, std::int64_t number) {
    entries_->set(key, plist_new_uint(static_cast<std::uint64_t>(number)));
}

void PropertyList::setString(std::string_view key, std::string_view text) {
    entries_->set(key, plist_new_string(withEscapes(text).c_str()));
}

void PropertyList::remove(std::string_view key) {
    const auto found = entries_->byKey.find(key);
    if (found != entries_->byKey.end()) entries_->byKey.erase(found);
}

void PropertyList::copyEntry(std::string_view key, const PropertyList& other) {
    const auto found = other.entries_->byKey.find(key);
    if (found == other.entries_->byKey.end()) {
        remove(key);
    } else if (this != &other) {
        entries_->byKey.insert_or_assign(std::string(key), found->second);
    }
}

bool PropertyList::hasSameEntry(std::string_view key, const PropertyList& other) const {
    const plist_t mine = entries_->find(key);
    const plist_t others = other.entries_->find(key);
    if (!mine || !others) return mine == others;
    const auto type = plist_get_node_type(mine);
    if (type != plist_get_node_type(others)) return false;
    if (type == PLIST_STRING) return withEscapesRead(textOf(mine)) == withEscapesRead(textOf(others));
    return xmlOf(mine) == xmlOf(others);
}

std::vector<std::string> PropertyList::keys() const {
    std::vector<std::string> keys;
    keys.reserve(entries_->byKey.size());
    for (const auto& [key, entry] : entries_->byKey) keys.push_back(key);
    return keys;
}

std::string PropertyList::toXML() const {
    const Node dictionary = makeNode(plist_new_dict());
    for (const auto& [key, entry] : entries_->byKey) {
        plist_dict_set_item(dictionary.get(), entry.writtenKey.c_str(), plist_copy(entry.value.get()));
    }
    return withFullYears(replaced(xmlOf(dictionary.get()), "\r", "&#13;"));
}

}  // namespace vantrel

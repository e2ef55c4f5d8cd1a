#include "platform/gnustep/PropertyList.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include "platform/gnustep/BinaryPropertyList.h"
#include "platform/gnustep/PropertyListText.h"
#include "platform/gnustep/XMLPropertyList.h"

namespace vantrel::gnustep {
namespace {

using Entry = PropertyListEntry;

/// Any integer that a property list can hold: from -(2^64 - 1) to 2^64 - 1.
struct WholeNumber {
    bool isNegative = false;
    std::uint64_t magnitude = 0;
};

/// `format` is what `from_chars` wants to know beside the digits.
template <typename Value>
std::optional<Value> numberFrom(std::string_view digits, auto... format) {
    Value number{};
    const char* end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, number, format...);
    return error == std::errc() && last == end ? std::optional(number) : std::nullopt;
}

std::optional<WholeNumber> wholeNumber(const Entry* entry) {
    if (!entry || entry->type != "integer") return std::nullopt;
    auto digits = trimmed(entry->text);
    const bool isNegative = digits.starts_with('-');
    if (isNegative || digits.starts_with('+')) digits.remove_prefix(1);
    const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    if (isHexadecimal) digits.remove_prefix(2);
    const auto magnitude = numberFrom<std::uint64_t>(digits, isHexadecimal ? 16 : 10);
    return magnitude ? std::optional(WholeNumber{isNegative, *magnitude}) : std::nullopt;
}

std::optional<double> realNumber(const Entry* entry) {
    if (!entry || entry->type != "real") return std::nullopt;
    auto digits = trimmed(entry->text);
    if (digits.starts_with('+')) digits.remove_prefix(1);
    return numberFrom<double>(digits);
}

std::optional<std::int64_t> exactly(const WholeNumber& number) {
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    if (number.magnitude > largest + (number.isNegative ? 1 : 0)) return std::nullopt;
    return static_cast<std::int64_t>(number.isNegative ? 0 - number.magnitude : number.magnitude);
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

bool isBoolean(const Entry* entry) {
    return entry && (entry->type == "true" || entry->type == "false");
}

}  // namespace

/// Each entry keeps the very text that it was read with, so that what isn't set here stays letter for letter.
struct PropertyList::Entries {
    const Entry* find(std::string_view key) const {
        const auto found = byKey.find(key);
        return found == byKey.end() ? nullptr : &found->second;
    }

    void set(std::string_view key, std::string element, std::string type, std::string_view text) {
        byKey.insert_or_assign(std::string(key), Entry{"<key>" + xmlFromText(key) + "</key>", std::move(element),
                                                       std::move(type), std::string(text)});
    }

    PropertyListEntries byKey;
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
    std::optional<std::string> converted;
    if (isBinaryPropertyList(bytes)) {
        converted = xmlFromBinaryPropertyList(bytes);
        if (!converted) return std::nullopt;
        bytes = *converted;
    }
    auto entries = entriesFromXML(bytes);
    if (!entries) return std::nullopt;
    return PropertyList(std::make_unique<Entries>(Entries{std::move(*entries)}));
}

PreferenceValue PropertyList::value(std::string_view key) const {
    const Entry* entry = entries_->find(key);
    if (!entry) return Absent{};
    if (isBoolean(entry)) return entry->type == "true";
    if (entry->type == "string") return entry->text;
    if (entry->type != "integer" && entry->type != "real") return OtherType{};
    const auto number = integer(key);
    const bool fits =
        number && *number >= std::numeric_limits<long>::min() && *number <= std::numeric_limits<long>::max();
    return Number{fits ? std::optional(static_cast<long>(*number)) : std::nullopt};
}

std::optional<std::int64_t> PropertyList::integer(std::string_view key) const {
    const Entry* entry = entries_->find(key);
    if (const auto number = wholeNumber(entry)) return exactly(*number);
    if (const auto number = realNumber(entry)) return exactly(*number);
    return std::nullopt;
}

std::optional<std::int32_t> PropertyList::intValue(std::string_view key) const {
    const Entry* entry = entries_->find(key);
    if (isBoolean(entry)) return entry->type == "true" ? 1 : 0;
    if (const auto number = wholeNumber(entry)) {
        return static_cast<std::int32_t>(number->isNegative ? 0 - number->magnitude : number->magnitude);
    }
    if (const auto number = realNumber(entry)) return heldToRange(*number);
    return std::nullopt;
}

void PropertyList::setBoolean(std::string_view key, bool flag) {
    entries_->set(key, flag ? "<true/>" : "<false/>", flag ? "true" : "false", {});
}

void PropertyList::setInteger(std::string_view key, std::int64_t number) {
    const auto digits = std::to_string(number);
    entries_->set(key, "<integer>" + digits + "</integer>", "integer", digits);
}

void PropertyList::setString(std::string_view key, std::string_view text) {
    const auto escaped = withEscapes(text);
    entries_->set(key, "<string>" + xmlFromText(text) + "</string>", "string", withEscapesRead(escaped));
}

void PropertyList::remove(std::string_view key) {
    const auto found = entries_->byKey.find(key);
    if (found != entries_->byKey.end()) entries_->byKey.erase(found);
}

void PropertyList::copyEntry(std::string_view key, const PropertyList& other) {
    const Entry* entry = other.entries_->find(key);
    if (!entry) {
        remove(key);
    } else if (this != &other) {
        entries_->byKey.insert_or_assign(std::string(key), *entry);
    }
}

bool PropertyList::hasSameEntry(std::string_view key, const PropertyList& other) const {
    const Entry* mine = entries_->find(key);
    const Entry* others = other.entries_->find(key);
    if (!mine || !others) return mine == others;
    if (mine->type != others->type) return false;
    if (mine->type == "string") return mine->text == others->text;
    const auto number = mine->type == "integer" ? integer(key) : std::nullopt;
    return isBoolean(mine) || mine->element == others->element || (number && number == other.integer(key));
}

std::vector<std::string> PropertyList::keys() const {
    std::vector<std::string> keys;
    keys.reserve(entries_->byKey.size());
    for (const auto& [key, entry] : entries_->byKey) keys.push_back(key);
    return keys;
}

std::string PropertyList::toXML() const {
    std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n"
        "<dict>\n";
    for (const auto& [key, entry] : entries_->byKey) {
        xml += '\t' + entry.keyElement + "\n\t" + entry.element + '\n';
    }
    xml += "</dict>\n</plist>\n";
    return xml;
}

}  // namespace vantrel::gnustep

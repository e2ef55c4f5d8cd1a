#include "platform/gnustep/PropertyList.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "platform/gnustep/BinaryPropertyList.h"
#include "platform/gnustep/TextPropertyList.h"
#include "platform/gnustep/XMLEncoding.h"
#include "platform/gnustep/XMLText.h"

namespace vantrel::gnustep {
namespace {

using namespace std::string_view_literals;

/// `format` is what `from_chars` wants to know beside the digits.
template <typename Value>
std::optional<Value> numberFrom(std::string_view digits, auto... format) {
    Value number{};
    const char* end = digits.data() + digits.size();
    const auto [last, error] = std::from_chars(digits.data(), end, number, format...);
    return error == std::errc() && last == end ? std::optional(number) : std::nullopt;
}

/// Nothing for what is no integer, or doesn't fit.
std::optional<long> integerFrom(std::string_view text) {
    auto digits = trimmed(text);
    const bool isNegative = digits.starts_with('-');
    if (isNegative || digits.starts_with('+')) digits.remove_prefix(1);
    const bool isHexadecimal = digits.starts_with("0x") || digits.starts_with("0X");
    if (isHexadecimal) digits.remove_prefix(2);
    const auto magnitude = numberFrom<unsigned long>(digits, isHexadecimal ? 16 : 10);
    constexpr unsigned long largest = std::numeric_limits<long>::max();
    if (!magnitude || *magnitude > largest + (isNegative ? 1 : 0)) return std::nullopt;
    return static_cast<long>(isNegative ? 0 - *magnitude : *magnitude);
}

/// The same of a real number, which must be a whole one.
std::optional<long> integerFromReal(std::string_view text) {
    auto digits = trimmed(text);
    if (digits.starts_with('+')) digits.remove_prefix(1);
    const auto number = numberFrom<double>(digits);
    // The largest integer isn't always a double itself, the power of two behind it is.
    constexpr auto lowest = static_cast<double>(std::numeric_limits<long>::min());
    if (!number || !(*number >= lowest && *number < -lowest)) return std::nullopt;
    const auto whole = static_cast<long>(*number);
    return static_cast<double>(whole) == *number ? std::optional(whole) : std::nullopt;
}

/// The first letter of the tag: of the types that are read here, no two have the same.
char typeOf(std::string_view element) {
    return element[1];
}

std::string elementFor(const NewPreferenceValue& value) {
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "<true/>" : "<false/>";
    if (const auto* number = std::get_if<long>(&value)) return "<integer>" + std::to_string(*number) + "</integer>";
    std::string element = "<string>";
    appendText(element, *std::get_if<std::string>(&value));
    return element += "</string>";
}

/// Programs of GNUstep don't mind zeros behind a list, other readers of XML do.
void cutZeros(std::string& bytes) {
    const auto zeros = std::min(bytes.find('\0'), bytes.size());
    if (bytes.find_first_not_of("\0 \t\r\n"sv, zeros) == std::string::npos) bytes.resize(zeros);
}

/// Makes a sound list in any format an XML one.
void convert(std::string& bytes) {
    if (bytes.size() > largestPropertyList) return;
    if (isBinaryPropertyList(bytes)) bytes = xmlFromBinaryPropertyList(bytes);
    cutZeros(bytes);
    if (isTextPropertyList(bytes)) bytes = xmlFromTextPropertyList(bytes);
    const auto encoding = encodingOf(bytes);
    if (!encoding.empty()) {
        bytes = inUTF8(bytes, encoding);
        cutZeros(bytes);
    }
    if (bytes.find("\\U") != std::string::npos) bytes = withPairsRead(bytes);
}

/// Whether `convert` surely leaves `bytes` as they are, as it does almost all lists.
bool isConverted(std::string_view bytes) {
    return bytes.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>") &&
           bytes.find("\\U") == std::string_view::npos && bytes.find('\0') == std::string_view::npos;
}

/// Where the line break before `position` stands; `position` itself if there is more than white space between.
std::uint32_t lineBreakBefore(std::string_view bytes, std::uint32_t position) {
    const auto last = bytes.substr(0, position).find_last_not_of(" \t");
    if (last == std::string_view::npos || bytes[last] != '\n') return position;
    return static_cast<std::uint32_t>(last > 0 && bytes[last - 1] == '\r' ? last - 1 : last);
}

void moveEntry(PropertyListEntry& entry, std::uint32_t distance) {
    entry.start += distance;
    entry.value += distance;
    entry.end += distance;
    if (!entry.isNamedApart) entry.name += distance;
}

}  // namespace

void PropertyListChanges::set(std::string_view key, const NewPreferenceValue& value) {
    elements_.insert_or_assign(std::string(key), elementFor(value));
}

void PropertyListChanges::remove(std::string_view key) {
    elements_.insert_or_assign(std::string(key), "");
}

void PropertyListChanges::copy(std::string_view key, const PropertyList& list) {
    elements_.insert_or_assign(std::string(key), list.element(key));
}

PropertyList::PropertyList() {
    bytes_.append(listStart).append("<dict>\n</dict>\n").append(listEnd);
    dictionaryEnd_ = static_cast<std::uint32_t>(bytes_.rfind("</dict>"));
}

std::optional<PropertyList> PropertyList::parse(std::string bytes) {
    PropertyList list;
    convert(bytes);
    return list.takeXML(bytes) ? std::optional(std::move(list)) : std::nullopt;
}

bool PropertyList::take(std::string& bytes) {
    if (isConverted(bytes)) return takeXML(bytes);
    std::string xml = bytes;
    convert(xml);
    return takeXML(xml);
}

bool PropertyList::takeXML(std::string& xml) {
    auto list = readXMLPropertyList(xml);
    if (!list) return false;
    if (xml[list->dictionaryEnd] == '/') {
        constexpr std::string_view open = "></dict";
        bytes_.reserve(xml.size() + open.size());
        bytes_ = xml;
        bytes_.replace(list->dictionaryEnd++, 1, open);
    } else {
        bytes_ = std::exchange(xml, {});
    }
    entries_ = std::move(list->entries);
    names_ = std::move(list->names);
    dictionaryEnd_ = list->dictionaryEnd;
    sort(0);
    return true;
}

PreferenceValue PropertyList::value(std::string_view key) const {
    const auto found = element(key);
    if (found.empty()) return Absent{};
    const char type = typeOf(found);
    if (type == 't' || type == 'f') return type == 't';
    if (type != 's' && type != 'i' && type != 'r') return OtherType{};
    auto text = textOf(found);
    if (type == 's') return text;
    return Number{type == 'i' ? integerFrom(text) : integerFromReal(text)};
}

bool PropertyList::holds(std::string_view key, const NewPreferenceValue& value) const {
    const auto found = element(key);
    const auto wanted = elementFor(value);
    if (found.empty() || typeOf(found) != typeOf(wanted)) return false;
    if (std::holds_alternative<bool>(value)) return true;
    const auto text = textOf(found);
    if (const auto* number = std::get_if<long>(&value)) return integerFrom(text) == *number;
    return text == textOf(wanted);
}

std::string_view PropertyList::element(std::string_view key) const {
    const auto [first, last] = indicesOf(key);
    if (first == last) return {};
    const Entry& entry = entries_[last - 1];
    return std::string_view(bytes_).substr(entry.value, entry.end - entry.value);
}

std::vector<std::string> PropertyList::keys() const {
    std::vector<std::string> keys;
    for (const Entry& entry : entries_) {
        if (keys.empty() || keys.back() != name(entry)) keys.emplace_back(name(entry));
    }
    return keys;
}

std::optional<PropertyListUpdate> PropertyList::updateFor(const PropertyListChanges& changes) const {
    PropertyListUpdate update;
    std::string added;
    for (const auto& [key, element] : changes.elements_) {
        auto [index, last] = indicesOf(key);
        if (!element.empty() && index == last) {
            addTo(added, update, key, element);
        } else if (!element.empty()) {
            const Entry& entry = entries_[--last];
            update.ends_.emplace_back(last, static_cast<std::uint32_t>(entry.value + element.size()));
            update.splices_.add(entry.value, entry.end, element);
        }
        for (; index < last; ++index) {
            update.ends_.emplace_back(index, 0);
            update.splices_.add(lineBreakBefore(bytes_, entries_[index].start), entries_[index].end, {});
        }
    }
    update.addedAt_ = lineBreakBefore(bytes_, dictionaryEnd_);
    if (!added.empty()) update.splices_.add(update.addedAt_, update.addedAt_, added);
    update.splices_.sort();
    if (bytes_.size() + update.splices_.growth() > largestPropertyList) return std::nullopt;
    return update;
}

void PropertyList::make(const PropertyListUpdate& update) {
    const auto& splices = update.splices_;
    // What may find no memory comes first.
    entries_.reserve(entries_.size() + update.added_.size());
    names_.reserve(names_.size() + update.names_.size());
    splices.applyTo(bytes_);
    bool anyGoes = false;
    for (const auto& [index, end] : update.ends_) {
        entries_[index].end = end;
        anyGoes |= end == 0;
    }
    if (anyGoes) std::erase_if(entries_, [](const Entry& entry) { return entry.end == 0; });
    for (Entry& entry : entries_) moveEntry(entry, splices.distanceAt(entry.start));
    const auto firstNew = entries_.size();
    const auto addedAt = update.addedAt_ + splices.distanceAt(update.addedAt_);
    for (Entry entry : update.added_) {
        moveEntry(entry, addedAt);
        if (entry.isNamedApart) entry.name += static_cast<std::uint32_t>(names_.size());
        entries_.push_back(entry);
    }
    names_ += update.names_;
    dictionaryEnd_ += static_cast<std::uint32_t>(splices.growth());
    sort(firstNew);
}

std::optional<PropertyList> PropertyList::with(const PropertyListChanges& changes) const {
    const auto update = updateFor(changes);
    if (!update) return std::nullopt;
    PropertyList list = *this;
    list.make(*update);
    return list;
}

void PropertyList::addTo(std::string& added, PropertyListUpdate& update, std::string_view key,
                         std::string_view element) {
    Entry entry{};
    added += "\n\t";
    entry.start = static_cast<std::uint32_t>(added.size());
    added += "<key>";
    appendText(added, key);
    added += "</key>";
    setName(entry, std::string_view(added).substr(entry.start), update.names_);
    added += "\n\t";
    entry.value = static_cast<std::uint32_t>(added.size());
    added += element;
    entry.end = static_cast<std::uint32_t>(added.size());
    update.added_.push_back(entry);
}

std::pair<std::size_t, std::size_t> PropertyList::indicesOf(std::string_view key) const {
    const auto first =
        std::partition_point(entries_.begin(), entries_.end(), [&](const Entry& entry) { return name(entry) < key; });
    const auto last =
        std::partition_point(first, entries_.end(), [&](const Entry& entry) { return name(entry) == key; });
    return {first - entries_.begin(), last - entries_.begin()};
}

std::string_view PropertyList::name(const Entry& entry) const {
    return std::string_view(entry.isNamedApart ? names_ : bytes_).substr(entry.name, entry.nameLength);
}

void PropertyList::sort(std::size_t firstNew) {
    const auto isBefore = [this](const Entry& one, const Entry& other) {
        const int order = name(one).compare(name(other));
        return order < 0 || (order == 0 && one.start < other.start);
    };
    // Other programs write their entries sorted.
    const auto first = entries_.begin() + static_cast<std::ptrdiff_t>(firstNew);
    const auto unsorted = std::is_sorted_until(first, entries_.end(), isBefore);
    std::sort(unsorted, entries_.end(), isBefore);
    std::inplace_merge(first, unsorted, entries_.end(), isBefore);
    std::inplace_merge(entries_.begin(), first, entries_.end(), isBefore);
}

}  // namespace vantrel::gnustep

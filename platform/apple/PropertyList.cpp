#include "platform/PropertyList.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "platform/apple/CoreFoundationValue.h"

namespace vantrel {

using apple::makeString;
using apple::Owned;
using apple::toUTF8;

struct PropertyList::Entries {
    /// Copies the dictionary, not what is in it, which nobody can change.
    explicit Entries(CFDictionaryRef from) : dictionary(CFDictionaryCreateMutableCopy(nullptr, 0, from)) {}
    Entries()
        : dictionary(CFDictionaryCreateMutable(nullptr, 0, &kCFTypeDictionaryKeyCallBacks,
                                               &kCFTypeDictionaryValueCallBacks)) {}

    CFPropertyListRef find(std::string_view key) const {
        const auto string = makeString(key);
        return string ? CFDictionaryGetValue(dictionary.get(), string.get()) : nullptr;
    }

    /// Does nothing when one of the two couldn't be made, because a text isn't UTF-8.
    void set(std::string_view key, CFPropertyListRef value) {
        const auto string = makeString(key);
        if (string && value) CFDictionarySetValue(dictionary.get(), string.get(), value);
    }

    Owned<CFMutableDictionaryRef> dictionary;
};

namespace {

CFNumberRef toNumber(CFPropertyListRef value) {
    return value && CFGetTypeID(value) == CFNumberGetTypeID() ? static_cast<CFNumberRef>(value) : nullptr;
}

bool isFloat(CFPropertyListRef value) {
    const CFNumberRef number = toNumber(value);
    return number && CFNumberIsFloatType(number);
}

std::optional<std::int32_t> heldToRange(double number) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(number)) return std::nullopt;
    return static_cast<std::int32_t>(
        std::clamp(number, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

}  // namespace

PropertyList::PropertyList() : entries_(std::make_unique<Entries>()) {}
PropertyList::PropertyList(std::unique_ptr<Entries> entries) : entries_(std::move(entries)) {}
PropertyList::~PropertyList() = default;
PropertyList::PropertyList(PropertyList&&) noexcept = default;
PropertyList& PropertyList::operator=(PropertyList&&) noexcept = default;

PropertyList::PropertyList(const PropertyList& other)
    : entries_(std::make_unique<Entries>(other.entries_->dictionary.get())) {}

PropertyList& PropertyList::operator=(const PropertyList& other) {
    return *this = PropertyList(other);
}

std::optional<PropertyList> PropertyList::parse(std::string_view bytes) {
    if (bytes.size() > largestPropertyList) return std::nullopt;
    const Owned<CFDataRef> data(
        CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(bytes.data()), static_cast<CFIndex>(bytes.size())));
    CFPropertyListFormat format = kCFPropertyListOpenStepFormat;
    const Owned<CFPropertyListRef> list(
        CFPropertyListCreateWithData(nullptr, data.get(), kCFPropertyListImmutable, &format, nullptr));
    if (!list || format == kCFPropertyListOpenStepFormat || CFGetTypeID(list.get()) != CFDictionaryGetTypeID() ||
        !CFPropertyListIsValid(list.get(), kCFPropertyListXMLFormat_v1_0)) {
        return std::nullopt;
    }
    return PropertyList(std::make_unique<Entries>(static_cast<CFDictionaryRef>(list.get())));
}

PreferenceValue PropertyList::value(std::string_view key) const {
    const CFPropertyListRef value = entries_->find(key);
    if (!value) return Absent{};
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFBooleanGetTypeID()) return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
    if (type == CFStringGetTypeID()) return toUTF8(static_cast<CFStringRef>(value));
    if (type != CFNumberGetTypeID()) return OtherType{};
    long number = 0;
    if (!CFNumberGetValue(toNumber(value), kCFNumberLongType, &number)) return Number{};
    return Number{number};
}

std::optional<std::int64_t> PropertyList::integer(std::string_view key) const {
    const CFNumberRef number = toNumber(entries_->find(key));
    std::int64_t value = 0;
    if (!number || !CFNumberGetValue(number, kCFNumberSInt64Type, &value)) return std::nullopt;
    return value;
}

std::optional<std::int32_t> PropertyList::intValue(std::string_view key) const {
    const CFPropertyListRef value = entries_->find(key);
    if (value && CFGetTypeID(value) == CFBooleanGetTypeID()) {
        return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) ? 1 : 0;
    }
    const CFNumberRef number = toNumber(value);
    if (!number) return std::nullopt;
    if (isFloat(number)) {
        double real = 0;
        CFNumberGetValue(number, kCFNumberDoubleType, &real);
        return heldToRange(real);
    }
    // Where the number is too large, what fits of it is given all the same.
    std::int64_t integer = 0;
    CFNumberGetValue(number, kCFNumberSInt64Type, &integer);
    return static_cast<std::int32_t>(integer);
}

void PropertyList::setBoolean(std::string_view key, bool flag) {
    entries_->set(key, flag ? kCFBooleanTrue : kCFBooleanFalse);
}

void PropertyList::setInteger(std::string_view key, std::int64_t number) {
    entries_->set(key, Owned<CFNumberRef>(CFNumberCreate(nullptr, kCFNumberSInt64Type, &number)).get());
}

void PropertyList::setString(std::string_view key, std::string_view text) {
    entries_->set(key, makeString(text).get());
}

void PropertyList::remove(std::string_view key) {
    if (const auto string = makeString(key)) CFDictionaryRemoveValue(entries_->dictionary.get(), string.get());
}

void PropertyList::copyEntry(std::string_view key, const PropertyList& other) {
    if (const CFPropertyListRef value = other.entries_->find(key)) {
        entries_->set(key, value);
    } else {
        remove(key);
    }
}

bool PropertyList::hasSameEntry(std::string_view key, const PropertyList& other) const {
    const CFPropertyListRef mine = entries_->find(key);
    const CFPropertyListRef others = other.entries_->find(key);
    if (!mine || !others) return mine == others;
    // To CoreFoundation 1 and 1.0 are equal.
    return isFloat(mine) == isFloat(others) && CFEqual(mine, others);
}

std::vector<std::string> PropertyList::keys() const {
    std::vector<const void*> strings(static_cast<std::size_t>(CFDictionaryGetCount(entries_->dictionary.get())));
    CFDictionaryGetKeysAndValues(entries_->dictionary.get(), strings.data(), nullptr);
    std::vector<std::string> keys;
    keys.reserve(strings.size());
    for (const void* string : strings) keys.push_back(toUTF8(static_cast<CFStringRef>(string)));
    std::sort(keys.begin(), keys.end());
    return keys;
}

std::string PropertyList::toXML() const {
    const Owned<CFDataRef> data(CFPropertyListCreateData(nullptr, entries_->dictionary.get(),
                                                         kCFPropertyListXMLFormat_v1_0, /*options=*/0, nullptr));
    if (!data) return {};
    return {reinterpret_cast<const char*>(CFDataGetBytePtr(data.get())),
            static_cast<std::size_t>(CFDataGetLength(data.get()))};
}

}  // namespace vantrel

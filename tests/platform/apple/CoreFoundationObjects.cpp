#include "tests/platform/apple/CoreFoundationObjects.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <utility>

namespace vantrel::apple {
namespace {

struct Object {
    Content content;
    int references = 1;
};

/// A deque never moves what it holds.
std::deque<Object>& objects() {
    static std::deque<Object> all;
    return all;
}

int tooLate = 0;

Object& objectAt(CFTypeRef reference) {
    auto& object = *static_cast<Object*>(const_cast<void*>(reference));
    if (object.references <= 0) ++tooLate;
    return object;
}

template <class Type>
const Type* contentAs(CFTypeRef object) {
    return std::get_if<Type>(&contentOf(object));
}

enum Type : CFTypeID { booleanType = 1, numberType, stringType, strangeType };

/// Converts as a cast does, and says whether that lost nothing.
template <class From>
bool convert(From from, long& to) {
    to = static_cast<long>(from);
    return static_cast<From>(to) == from;
}

bool convertDouble(double from, long& to) {
    // The bound itself is one too many, and a cast of what is out of range means nothing.
    constexpr double bound = -static_cast<double>(std::numeric_limits<long>::min());
    return from >= -bound && from < bound && convert(from, to);
}

/// Orders integers of 64 bits with and without a sign.
bool isLess(const Content& one, const Content& other) {
    if (one.index() != other.index()) return std::holds_alternative<std::int64_t>(one);
    if (const auto* large = std::get_if<LargeInteger>(&one)) return large->value < std::get<LargeInteger>(other).value;
    return std::get<std::int64_t>(one) < std::get<std::int64_t>(other);
}

}  // namespace

CFTypeRef makeObject(Content content) {
    return &objects().emplace_back(Object{std::move(content)});
}

const Content& contentOf(CFTypeRef object) {
    return objectAt(object).content;
}

int references() {
    int count = 0;
    for (const auto& object : objects()) count += object.references;
    return count;
}

int usesAfterRelease() {
    return tooLate;
}

}  // namespace vantrel::apple

using namespace vantrel::apple;

extern "C" {

const CFBooleanRef kCFBooleanTrue = static_cast<CFBooleanRef>(makeObject(true));
const CFBooleanRef kCFBooleanFalse = static_cast<CFBooleanRef>(makeObject(false));
const CFStringRef kCFPreferencesCurrentUser = static_cast<CFStringRef>(makeObject(u"current user"));
const CFStringRef kCFPreferencesAnyHost = static_cast<CFStringRef>(makeObject(u"any host"));

void CFRelease(CFTypeRef object) {
    --objectAt(object).references;
}

CFTypeRef CFRetain(CFTypeRef object) {
    ++objectAt(object).references;
    return object;
}

CFTypeID CFGetTypeID(CFTypeRef object) {
    if (contentAs<bool>(object)) return booleanType;
    if (contentAs<std::u16string>(object)) return stringType;
    return contentAs<Stranger>(object) ? strangeType : numberType;
}

CFTypeID CFBooleanGetTypeID(void) {
    return booleanType;
}

CFTypeID CFNumberGetTypeID(void) {
    return numberType;
}

CFTypeID CFStringGetTypeID(void) {
    return stringType;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    return *contentAs<bool>(boolean);
}

CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType, const void* value) {
    return static_cast<CFNumberRef>(makeObject(std::int64_t{*static_cast<const long*>(value)}));
}

/// The only type that is declared is `long`.
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType, void* value) {
    auto& wanted = *static_cast<long*>(value);
    if (const auto* real = contentAs<double>(number)) return convertDouble(*real, wanted);
    if (const auto* large = contentAs<LargeInteger>(number)) return convert(large->value, wanted);
    return convert(*contentAs<std::int64_t>(number), wanted);
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
    return contentAs<double>(number) != nullptr;
}

/// Compares integers, as no other numbers are.
CFComparisonResult CFNumberCompare(CFNumberRef number, CFNumberRef other, void*) {
    if (isLess(contentOf(number), contentOf(other))) return kCFCompareLessThan;
    return isLess(contentOf(other), contentOf(number)) ? kCFCompareGreaterThan : kCFCompareEqualTo;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* characters, CFIndex count) {
    return static_cast<CFStringRef>(makeObject(std::u16string(characters, characters + count)));
}

CFIndex CFStringGetLength(CFStringRef string) {
    return static_cast<CFIndex>(contentAs<std::u16string>(string)->size());
}

void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer) {
    const auto start = contentAs<std::u16string>(string)->begin() + range.location;
    std::copy(start, start + range.length, buffer);
}
}

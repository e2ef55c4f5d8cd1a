#include "platform/apple/ApplePreferences.h"

#include "platform/apple/CoreFoundationValue.h"

namespace vantrel::apple {

namespace {

/// The value as CoreFoundation stores it. The flags are constants that nobody owns, hence the extra reference.
Owned<CFTypeRef> makeValue(const NewPreferenceValue& value) {
    if (const auto* flag = std::get_if<bool>(&value)) {
        return Owned<CFTypeRef>(CFRetain(*flag ? kCFBooleanTrue : kCFBooleanFalse));
    }
    if (const auto* number = std::get_if<long>(&value)) {
        return Owned<CFTypeRef>(CFNumberCreate(nullptr, kCFNumberLongType, number));
    }
    return Owned<CFTypeRef>(makeString(*std::get_if<std::string>(&value)).release());
}

Number readNumber(CFNumberRef number) {
    long value = 0;
    if (!CFNumberGetValue(number, kCFNumberLongType, &value)) return {};
    if (CFNumberIsFloatType(number)) return {value};
    // Of 2^63 and more, CoreFoundation drops the upper half and calls that a success.
    const Owned<CFNumberRef> readBack(CFNumberCreate(nullptr, kCFNumberLongType, &value));
    if (CFNumberCompare(number, readBack.get(), nullptr) != kCFCompareEqualTo) return {};
    return {value};
}

}  // namespace

PreferenceValue ApplePreferences::copyAppValue(std::string_view key, std::string_view applicationID) {
    const Owned<CFPropertyListRef> value(
        CFPreferencesCopyAppValue(makeString(key).get(), makeString(applicationID).get()));
    if (!value) return Absent{};
    const CFTypeID type = CFGetTypeID(value.get());
    if (type == CFBooleanGetTypeID()) return CFBooleanGetValue(static_cast<CFBooleanRef>(value.get())) != 0;
    if (type == CFNumberGetTypeID()) return readNumber(static_cast<CFNumberRef>(value.get()));
    if (type == CFStringGetTypeID()) return toUTF8(static_cast<CFStringRef>(value.get()));
    return OtherType{};
}

void ApplePreferences::setAppValue(std::string_view key, const NewPreferenceValue& value,
                                   std::string_view applicationID) {
    CFPreferencesSetAppValue(makeString(key).get(), makeValue(value).get(), makeString(applicationID).get());
}

PreferenceValue ApplePreferences::updateAppValue(std::string_view key, const PreferenceChange& change,
                                                 std::string_view applicationID) {
    PreferenceValue stored = copyAppValue(key, applicationID);
    if (const auto value = change(stored)) setAppValue(key, *value, applicationID);
    return stored;
}

bool ApplePreferences::synchronize(std::string_view applicationID) {
    return CFPreferencesSynchronize(makeString(applicationID).get(), kCFPreferencesCurrentUser,
                                    kCFPreferencesAnyHost) != 0;
}

}  // namespace vantrel::apple

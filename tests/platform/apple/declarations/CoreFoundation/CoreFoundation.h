// The few declarations of CoreFoundation that platform/apple/ uses, so that its sources compile where there is no
// macOS. Nothing is ever linked against them.
#pragma once

#include <cstdint>

extern "C" {

using Boolean = unsigned char;
using UInt8 = std::uint8_t;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFStringEncoding = std::uint32_t;
using CFNumberType = CFIndex;
struct CFRange {
    CFIndex location;
    CFIndex length;
};

using CFTypeRef = const void*;
using CFPropertyListRef = CFTypeRef;
using CFAllocatorRef = const struct __CFAllocator*;
using CFStringRef = const struct __CFString*;
using CFBooleanRef = const struct __CFBoolean*;
using CFNumberRef = const struct __CFNumber*;

extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;
extern const CFStringRef kCFPreferencesCurrentUser;
extern const CFStringRef kCFPreferencesAnyHost;
inline constexpr CFNumberType kCFNumberLongType = 10;
inline constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;

void CFRelease(CFTypeRef object);
CFTypeRef CFRetain(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);

CFTypeID CFBooleanGetTypeID();
Boolean CFBooleanGetValue(CFBooleanRef boolean);

CFTypeID CFNumberGetTypeID();
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void* value);
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

CFTypeID CFStringGetTypeID();
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex size,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                         Boolean isExternalRepresentation, UInt8* buffer, CFIndex capacity, CFIndex* used);

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID);
void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID);
Boolean CFPreferencesSynchronize(CFStringRef applicationID, CFStringRef user, CFStringRef host);
}

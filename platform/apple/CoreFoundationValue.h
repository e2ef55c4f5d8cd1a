#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

namespace vantrel::apple {

struct Releaser {
    void operator()(const void* object) const { CFRelease(object); }
};

/// A reference to a CoreFoundation object that we release; empty for null.
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Releaser>;

/// A string with the UTF-8 text.
inline Owned<CFStringRef> makeString(std::string_view text) {
    return Owned<CFStringRef>(CFStringCreateWithBytes(nullptr, reinterpret_cast<const UInt8*>(text.data()),
                                                      static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8,
                                                      /*isExternalRepresentation=*/false));
}

/// The string as UTF-8; what UTF-8 can't hold, a surrogate on its own, becomes '?'.
inline std::string toUTF8(CFStringRef string) {
    const CFRange whole{0, CFStringGetLength(string)};
    CFIndex size = 0;
    CFStringGetBytes(string, whole, kCFStringEncodingUTF8, '?', false, nullptr, 0, &size);
    std::string text(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(string, whole, kCFStringEncodingUTF8, '?', false, reinterpret_cast<UInt8*>(text.data()), size,
                     nullptr);
    return text;
}

}  // namespace vantrel::apple

#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>

#include "platform/text/UTF16.h"

namespace vantrel::apple {

struct Releaser {
    void operator()(const void* object) const { CFRelease(object); }
};

/// A reference to a CoreFoundation object that we release; empty for null.
template <typename Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, Releaser>;

static_assert(sizeof(UniChar) == sizeof(char16_t));

/// A string with the text, which is as platform/text/UTF16.h says.
inline Owned<CFStringRef> makeString(std::string_view text) {
    const std::u16string units = text::toUTF16(text);
    return Owned<CFStringRef>(CFStringCreateWithCharacters(nullptr, reinterpret_cast<const UniChar*>(units.data()),
                                                           static_cast<CFIndex>(units.size())));
}

/// The reverse of `makeString`.
inline std::string toUTF8(CFStringRef string) {
    std::u16string units(static_cast<std::size_t>(CFStringGetLength(string)), u'\0');
    CFStringGetCharacters(string, CFRangeMake(0, CFStringGetLength(string)), reinterpret_cast<UniChar*>(units.data()));
    return text::fromUTF16(units);
}

}  // namespace vantrel::apple

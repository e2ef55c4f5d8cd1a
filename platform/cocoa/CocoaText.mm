#import "platform/cocoa/CocoaText.h"

#include "platform/text/UTF16.h"

namespace vantrel::cocoa {

static_assert(sizeof(unichar) == sizeof(char16_t));

NSString *toNSString(std::string_view text) {
    const std::u16string units = text::toUTF16(text);
    return [NSString stringWithCharacters:reinterpret_cast<const unichar *>(units.data()) length:units.size()];
}

std::string toUTF8(NSString *string) {
    std::u16string units([string length], u'\0');
    [string getCharacters:reinterpret_cast<unichar *>(units.data()) range:NSMakeRange(0, units.size())];
    return text::fromUTF16(units);
}

}  // namespace vantrel::cocoa

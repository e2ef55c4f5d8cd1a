#import "platform/cocoa/CocoaText.h"

#include "platform/text/UTF16.h"

namespace vantrel::cocoa {

namespace {

static_assert(sizeof(unichar) == sizeof(char16_t));

NSString *stringWithUnits(std::u16string_view units) {
    return [NSString stringWithCharacters:reinterpret_cast<const unichar *>(units.data()) length:units.size()];
}

/// The half of a surrogate pair, or any other unit, as a part of a string that GNUstep makes.
NSString *stringWithUnit(char16_t unit) {
    const bool isHigh = unit >= 0xD800 && unit <= 0xDBFF;
    const bool isLow = unit >= 0xDC00 && unit <= 0xDFFF;
    if (!isHigh && !isLow) return stringWithUnits({&unit, 1});
    const std::u16string pair{isHigh ? unit : u'\xD800', isLow ? unit : u'\xDC00'};
    return [stringWithUnits(pair) substringWithRange:NSMakeRange(isLow ? 1 : 0, 1)];
}

}  // namespace

NSString *toNSString(std::string_view text) {
    const std::u16string units = text::toUTF16(text);
    if (NSString *string = stringWithUnits(units)) return string;
    // GNUstep makes no string with half a surrogate pair in it, but keeps one that comes to have it.
    NSMutableString *string = [[NSMutableString new] autorelease];
    for (const char16_t unit : units) [string appendString:stringWithUnit(unit)];
    return string;
}

std::string toUTF8(NSString *string) {
    std::u16string units([string length], u'\0');
    [string getCharacters:reinterpret_cast<unichar *>(units.data()) range:NSMakeRange(0, units.size())];
    return text::fromUTF16(units);
}

}  // namespace vantrel::cocoa

#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace vantrel::cocoa {

/// An autoreleased string with the UTF-8 text; the empty string when `text` is not UTF-8.
NSString *toNSString(std::string_view text);

/// The string as UTF-8; empty for nil. What UTF-8 can't hold, a surrogate on its own, is replaced.
std::string toUTF8(NSString *string);

}  // namespace vantrel::cocoa

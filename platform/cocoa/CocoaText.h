#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace vantrel::cocoa {

/// An autoreleased string with the text, which is as platform/text/UTF16.h says.
NSString *toNSString(std::string_view text);

/// The reverse of `toNSString`; empty for nil.
std::string toUTF8(NSString *string);

}  // namespace vantrel::cocoa

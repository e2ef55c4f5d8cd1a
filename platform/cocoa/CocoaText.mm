#import "platform/cocoa/CocoaText.h"

namespace vantrel::cocoa {

NSString *toNSString(std::string_view text) {
    NSString *string = [[[NSString alloc] initWithBytes:text.data() length:text.size()
                                               encoding:NSUTF8StringEncoding] autorelease];
    return string ? string : @"";
}

std::string toUTF8(NSString *string) {
    NSData *bytes = [string dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    return bytes ? std::string(static_cast<const char *>([bytes bytes]), [bytes length]) : std::string();
}

}  // namespace vantrel::cocoa

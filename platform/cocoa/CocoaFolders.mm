#import "platform/cocoa/CocoaFolders.h"

#import <Foundation/Foundation.h>

#import "platform/cocoa/CocoaText.h"

namespace vantrel::cocoa {

std::string applicationSupportFolder() {
    NSArray *folders = NSSearchPathForDirectoriesInDomains(NSApplicationSupportDirectory, NSUserDomainMask, YES);
    return toUTF8([folders objectAtIndex:0]);
}

#ifndef __APPLE__
std::string defaultsFolder() {
    return toUTF8(GSDefaultsRootForUser(NSUserName()));
}
#endif

}  // namespace vantrel::cocoa

#import "platform/cocoa/CocoaAlerts.h"

#import <AppKit/AppKit.h>

#import "platform/cocoa/CocoaText.h"

namespace vantrel::cocoa {

void CocoaAlerts::runModal(const Alert &alert) {
    NSAlert *panel = [NSAlert new];
    [panel setMessageText:toNSString(alert.messageText)];
    if (alert.informativeText) {
        [panel setInformativeText:toNSString(*alert.informativeText)];
    } else {
#ifdef GNUSTEP
        // Left without, GNUstep's alert says "No information".
        [panel setInformativeText:@""];
#endif
    }
    [panel runModal];
    [panel release];
}

}  // namespace vantrel::cocoa

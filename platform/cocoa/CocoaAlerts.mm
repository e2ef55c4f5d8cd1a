#import "platform/cocoa/CocoaAlerts.h"

#import <AppKit/AppKit.h>

#import "platform/cocoa/CocoaText.h"

namespace vantrel::cocoa {

void CocoaAlerts::runModal(const Alert &alert) {
    NSAlert *panel = [NSAlert new];
    [panel setMessageText:toNSString(alert.messageText)];
    // Left without, GNUstep's alert says "No information".
    [panel setInformativeText:toNSString(alert.informativeText.value_or(""))];
    [panel runModal];
    [panel release];
}

}  // namespace vantrel::cocoa

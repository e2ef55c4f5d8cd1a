#import <Foundation/Foundation.h>

#import "platform/apple/AppleStoreInspection.h"
#import "platform/cocoa/CocoaWatch.h"
#include "settings/KeyTable.h"
#include "system/CommandServices.h"

namespace vantrel {

CommandServices commandServices(Alerts &alerts, Log &log) {
    // Lives as long as the program.
    [NSAutoreleasePool new];
    static apple::AppleStoreInspection inspection{std::string(codecApplicationID)};
    static cocoa::CocoaWatch watch([] { return cocoa::ChangeEvents(); }, log);
    return {systemServices(alerts, log), inspection, watch};
}

}  // namespace vantrel

#include "Preference/Vantrel/SystemServices.h"
#include "overrides/OverrideRecord.h"
#import "platform/cocoa/CocoaFolders.h"
#import "platform/cocoa/CocoaSystem.h"
#include "platform/gnustep/GNUstepPreferences.h"
#include "platform/gnustep/GNUstepPropertyLists.h"
#include "platform/linux/SysfsProcessors.h"
#include "platform/posix/PosixFiles.h"

namespace vantrel {

const Services& systemServices() {
    static cocoa::CocoaLog log;
    static gnustep::GNUstepPreferences preferences(cocoa::defaultsFolder(), log);
    static OverrideRecordClass overrideRecord(cocoa::applicationSupportFolder());
    static linux::SysfsProcessors processors;
    static posix::PosixFiles files;
    static gnustep::GNUstepPropertyLists propertyLists;
    static cocoa::CocoaAlerts alerts;
    static cocoa::CocoaNotifications notifications;
    static const Services services{preferences,   overrideRecord, processors, files,
                                   propertyLists, alerts,         log,        notifications};
    return services;
}

}  // namespace vantrel

#include "Preference/Vantrel/SystemServices.h"
#include "overrides/OverrideRecord.h"
#import "platform/cocoa/CocoaFolders.h"
#import "platform/cocoa/CocoaSystem.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixPreferences.h"
#include "platform/posix/SysfsProcessors.h"

namespace vantrel {

const Services& systemServices() {
    static cocoa::CocoaLog log;
    static posix::PosixPreferences preferences(cocoa::defaultsFolder(), log);
    static OverrideRecordClass overrideRecord(cocoa::applicationSupportFolder());
    static posix::SysfsProcessors processors;
    static posix::PosixFiles files;
    static cocoa::CocoaAlerts alerts;
    static cocoa::CocoaNotifications notifications;
    static const Services services{preferences, overrideRecord, processors, files, alerts, log, notifications};
    return services;
}

}  // namespace vantrel

#include "Preference/Vantrel/SystemServices.h"
#include "host/EnablerSwitch.h"
#import "overrides/InstalledMetadataDictionary.h"
#import "overrides/MetadataDictionaryOverrides.h"
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
    static MetadataDictionaryOverrides overrides(installedMetadataDictionary());
    static linux::SysfsProcessors processors;
    static posix::PosixFiles files(posix::SystemCalls::real(), std::string(enablerPaths::application));
    static gnustep::GNUstepPropertyLists propertyLists;
    static cocoa::CocoaAlerts alerts;
    static cocoa::CocoaNotifications notifications;
    static const Services services{preferences,   overrides, processors, files,
                                   propertyLists, alerts,    log,        notifications};
    return services;
}

}  // namespace vantrel

#include "system/SystemServices.h"

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

Services systemServices(Alerts &alerts, Log &log) {
    static gnustep::GNUstepPreferences preferences(cocoa::defaultsFolder(), log);
    static MetadataDictionaryOverrides overrides(installedMetadataDictionary());
    static linux::SysfsProcessors processors;
    static posix::PosixFiles files(posix::SystemCalls::real(), std::string(enablerPaths::application));
    static gnustep::GNUstepPropertyLists propertyLists;
    static cocoa::CocoaNotifications notifications(log);
    return {preferences, overrides, processors, files, propertyLists, alerts, log, notifications};
}

}  // namespace vantrel

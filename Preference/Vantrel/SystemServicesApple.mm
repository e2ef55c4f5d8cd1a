#include "Preference/Vantrel/SystemServices.h"
#import "overrides/MetadataDictionaryOverrides.h"
#import "platform/apple/AppleFiles.h"
#include "platform/apple/ApplePreferences.h"
#include "platform/apple/AppleProcessors.h"
#import "platform/apple/MakersMetadataDictionary.h"
#import "platform/cocoa/CocoaSystem.h"

namespace vantrel {

const Services& systemServices() {
    static apple::ApplePreferences preferences;
    static MetadataDictionaryOverrides overrides(apple::makersMetadataDictionary());
    static apple::AppleProcessors processors;
    static apple::AppleFiles files;
    static apple::ApplePropertyLists propertyLists;
    static cocoa::CocoaAlerts alerts;
    static cocoa::CocoaLog log;
    static cocoa::CocoaNotifications notifications;
    static const Services services{preferences,   overrides, processors, files,
                                   propertyLists, alerts,    log,        notifications};
    return services;
}

}  // namespace vantrel

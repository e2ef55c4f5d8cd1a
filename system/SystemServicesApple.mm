#include "system/SystemServices.h"

#import "overrides/MetadataDictionaryOverrides.h"
#import "platform/apple/AppleFiles.h"
#include "platform/apple/ApplePreferences.h"
#include "platform/apple/AppleProcessors.h"
#import "platform/apple/MakersMetadataDictionary.h"
#import "platform/cocoa/CocoaSystem.h"

namespace vantrel {

Services systemServices(Alerts &alerts, Log &log) {
    static apple::ApplePreferences preferences;
    static MetadataDictionaryOverrides overrides(apple::makersMetadataDictionary());
    static apple::AppleProcessors processors;
    static apple::AppleFiles files;
    static apple::ApplePropertyLists propertyLists;
    static cocoa::CocoaNotifications notifications(log);
    return {preferences, overrides, processors, files, propertyLists, alerts, log, notifications};
}

}  // namespace vantrel

#include "Preference/Vantrel/SystemServices.h"
#import "overrides/CocoaMetadataDictionary.h"
#include "overrides/OverrideRecord.h"
#import "platform/apple/AppleFiles.h"
#include "platform/apple/ApplePreferences.h"
#include "platform/apple/AppleProcessors.h"
#import "platform/apple/MakersMetadataDictionary.h"
#import "platform/cocoa/CocoaFolders.h"
#import "platform/cocoa/CocoaSystem.h"

namespace vantrel {

namespace {

/// The installed library's override record where it can serve, ours where it can't.
MetadataDictionaryClass& metadataDictionaryClass() {
    static const Class makers = apple::makersMetadataDictionary();
    if (cocoa::CocoaMetadataDictionaryClass::serves(makers)) {
        static cocoa::CocoaMetadataDictionaryClass theirs(makers);
        return theirs;
    }
    static OverrideRecordClass ours(cocoa::applicationSupportFolder());
    return ours;
}

}  // namespace

const Services& systemServices() {
    static apple::ApplePreferences preferences;
    static apple::AppleProcessors processors;
    static apple::AppleFiles files;
    static cocoa::CocoaAlerts alerts;
    static cocoa::CocoaLog log;
    static cocoa::CocoaNotifications notifications;
    static const Services services{preferences,  metadataDictionaryClass(), processors, files, alerts, log,
                                   notifications};
    return services;
}

}  // namespace vantrel

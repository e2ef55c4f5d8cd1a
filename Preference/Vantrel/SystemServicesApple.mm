#include "Preference/Vantrel/SystemServices.h"
#import "overrides/CocoaMetadataDictionary.h"
#import "platform/apple/AppleFiles.h"
#include "platform/apple/ApplePreferences.h"
#include "platform/apple/AppleProcessors.h"
#import "platform/apple/MakersMetadataDictionary.h"
#import "platform/cocoa/CocoaSystem.h"

namespace vantrel {

namespace {

/// Where no library can serve, there is no override record to show or to change.
class NoMetadataDictionaryClass : public MetadataDictionaryClass {
   public:
    std::unique_ptr<MetadataDictionary> initFromOverride() override { return nullptr; }
};

MetadataDictionaryClass& metadataDictionaryClass() {
    static const Class makers = apple::makersMetadataDictionary();
    if (cocoa::CocoaMetadataDictionaryClass::serves(makers)) {
        static cocoa::CocoaMetadataDictionaryClass theirs(makers);
        return theirs;
    }
    static NoMetadataDictionaryClass none;
    return none;
}

}  // namespace

const Services& systemServices() {
    static apple::ApplePreferences preferences;
    static apple::AppleProcessors processors;
    static apple::AppleFiles files;
    static apple::ApplePropertyLists propertyLists;
    static cocoa::CocoaAlerts alerts;
    static cocoa::CocoaLog log;
    static cocoa::CocoaNotifications notifications;
    static const Services services{
        preferences, metadataDictionaryClass(), processors, files, propertyLists, alerts, log, notifications};
    return services;
}

}  // namespace vantrel

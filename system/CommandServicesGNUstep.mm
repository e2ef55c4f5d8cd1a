#import <Foundation/Foundation.h>
#include <objc/runtime.h>

#include "overrides/KVRXMetadataDictionary/OverrideRecord.h"
#import "platform/cocoa/CocoaFolders.h"
#import "platform/cocoa/CocoaText.h"
#import "platform/cocoa/CocoaWatch.h"
#include "platform/gnustep/GNUstepStoreInspection.h"
#include "platform/linux/FolderEvents.h"
#include "platform/posix/Folders.h"
#include "settings/KeyTable.h"
#include "system/CommandServices.h"

namespace vantrel {
namespace {

id noDefaults(id, SEL) {
    return nil;
}

/// Foundation reads a program's own defaults as soon as it reads a property list or makes a time zone. It takes the
/// same lock for that as the store here, waits for one that a dead process left, and breaks it. A command has no
/// defaults of its own, and one that only looks must not do so.
void keepFoundationFromDefaults() {
    Method method = class_getClassMethod(objc_getClass("NSUserDefaults"), @selector(standardUserDefaults));
    method_setImplementation(method, reinterpret_cast<IMP>(noDefaults));
}

Log *programsLog = nullptr;

/// What libraries log: one line, without the time and the process that NSLog puts before it.
void takeLogLine(NSString *message) {
    std::string line = cocoa::toUTF8(message);
    const auto end = line.find("] ");
    if (end != std::string::npos) line.erase(0, end + 2);
    while (line.ends_with('\n')) line.pop_back();
    programsLog->log(line);
}

/// Notifications for whoever listens already. The daemon that carries them runs as long as somebody listens; posting
/// would start it, ten times as long as all else that a command does, and for nobody.
class HeardNotifications : public Notifications {
   public:
    explicit HeardNotifications(Notifications &all) : all_(all) {}

    void postNotificationName(std::string_view name, std::string_view object, bool deliverImmediately) override {
        NSPort *daemon = [[NSMessagePortNameServer sharedInstance] portForName:@"GDNCServer" onHost:@""];
        if (daemon) all_.postNotificationName(name, object, deliverImmediately);
    }

   private:
    Notifications &all_;
};

}  // namespace

CommandServices commandServices(Alerts &alerts, Log &log) {
    keepFoundationFromDefaults();
    // Lives as long as the program.
    [NSAutoreleasePool new];
    programsLog = &log;
    _NSLog_printf_handler = takeLogLine;

    static const std::string defaultsFolder = cocoa::defaultsFolder();
    static const std::string record = overrideRecordFile(cocoa::applicationSupportFolder());
    static gnustep::GNUstepStoreInspection inspection(
        {defaultsFolder, std::string(codecApplicationID), record, largestRecord});
    static const auto begin = [] {
        static linux::FolderEvents events({defaultsFolder, posix::folderOf(record)});
        return cocoa::ChangeEvents{events.descriptor(), [] { events.acknowledge(); }};
    };
    static cocoa::CocoaWatch watch(begin, log);
    const Services all = systemServices(alerts, log);
    static HeardNotifications notifications(all.notifications);
    return {{all.preferences, all.overrides, all.processors, all.files, all.propertyLists, alerts, log, notifications},
            inspection,
            watch};
}

}  // namespace vantrel

#pragma once

#import <Foundation/Foundation.h>

#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/Notifications.h"
#import "platform/cocoa/CocoaText.h"

namespace vantrel::cocoa {

class CocoaLog : public Log {
   public:
    void log(std::string_view line) override { NSLog(@"%@", toNSString(line)); }
};

class CocoaNotifications : public Notifications {
   public:
    /// What can't be posted is told to `log`.
    explicit CocoaNotifications(Log &log) : log_(log) {}

    void postNotificationName(std::string_view name, std::string_view object, bool deliverImmediately) override;

   private:
    Log &log_;
};

class CocoaBundle : public Bundle {
   public:
    /// Serves while `bundle` lives.
    explicit CocoaBundle(NSBundle *bundle) : bundle_(bundle) {}

    std::string localizedStringForKey(std::string_view key, std::string_view value) override;
    std::optional<std::string> infoString(std::string_view key) override;

   private:
    NSBundle *bundle_;
};

}  // namespace vantrel::cocoa

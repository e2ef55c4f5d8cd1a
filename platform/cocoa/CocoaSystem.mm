#import "platform/cocoa/CocoaSystem.h"

namespace vantrel::cocoa {

void CocoaNotifications::postNotificationName(std::string_view name, std::string_view object, bool deliverImmediately) {
    try {
        [[NSDistributedNotificationCenter defaultCenter] postNotificationName:toNSString(name)
                                                                       object:toNSString(object)
                                                                     userInfo:nil
                                                           deliverImmediately:deliverImmediately];
    } catch (...) {
        // GNUstep raises where it can't have the daemon that carries notifications; g++ can't catch that by its class.
        log_.log(std::string(name) + " could not be posted");
    }
}

std::string CocoaBundle::localizedStringForKey(std::string_view key, std::string_view value) {
    return toUTF8([bundle_ localizedStringForKey:toNSString(key) value:toNSString(value) table:nil]);
}

std::optional<std::string> CocoaBundle::infoString(std::string_view key) {
    id value = [[bundle_ infoDictionary] objectForKey:toNSString(key)];
    if (![value isKindOfClass:[NSString class]]) return std::nullopt;
    return toUTF8(value);
}

}  // namespace vantrel::cocoa

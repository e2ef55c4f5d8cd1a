#include "host/StereoStatusNotification.h"

namespace vantrel {

void postStereoStatusChange(Notifications& notifications, Log& log) {
    log.log("post notification");
    notifications.postNotificationName(stereoStatusChanged, stereoStatusSender, /*deliverImmediately=*/true);
}

}  // namespace vantrel

#include "host/StereoStatusNotification.h"

namespace vantrel {

void postStereoStatusChange(Notifications& notifications, Log& log) {
    log.log("post notification");
    notifications.postNotificationName("StereoStatusMenuViewChanged", "com.vantrel.PreferencePane",
                                       /*deliverImmediately=*/true);
}

}  // namespace vantrel

#include <gmock/gmock.h>

#include "host/StereoStatusNotification.h"
#include "platform/memory/MemorySystem.h"

namespace vantrel::memory {
namespace {

TEST(StereoStatusNotification, IsLoggedAndThenPostedOnceForImmediateDelivery) {
    Journal journal;
    MemoryNotifications notifications{journal};
    MemoryLog log{journal};
    postStereoStatusChange(notifications, log);
    EXPECT_THAT(journal.lines(),
                testing::ElementsAre("log post notification",
                                     "post StereoStatusMenuViewChanged from com.vantrel.PreferencePane at once"));
}

}  // namespace
}  // namespace vantrel::memory

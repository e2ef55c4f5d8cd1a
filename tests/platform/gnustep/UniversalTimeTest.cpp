#include <gmock/gmock.h>

#include "platform/gnustep/UniversalTime.h"

namespace vantrel::gnustep {
namespace {

using namespace std::chrono;

TEST(UniversalTime, HasDateHourMinuteAndSecond) {
    EXPECT_EQ(universalTime(sys_days{2024y / February / 29} + 1h + 2min + 3s), "2024-02-29T01:02:03Z");
}

TEST(UniversalTime, GoesBackBeforeTheClocksStart) {
    EXPECT_EQ(universalTime(sys_days{1969y / December / 31} + 23h + 4min + 5s), "1969-12-31T23:04:05Z");
}

TEST(UniversalTime, HasFourDigitsForAYear) {
    EXPECT_EQ(universalTime(sys_days{7y / January / 1}), "0007-01-01T00:00:00Z");
}

}  // namespace
}  // namespace vantrel::gnustep

#include <gmock/gmock.h>

#include <algorithm>

#include "platform/posix/Patience.h"
#include "tests/platform/posix/SystemCallsWithOwnClock.h"

namespace vantrel::posix {
namespace {

/// Notes how long each pause is, in milliseconds.
struct NotingCalls : SystemCallsWithOwnClock {
    int nanosleep(const struct timespec& duration) override {
        pauses.push_back(static_cast<double>(duration.tv_sec) * 1e3 + static_cast<double>(duration.tv_nsec) * 1e-6);
        return SystemCallsWithOwnClock::nanosleep(duration);
    }
    std::vector<double> pauses;
};

std::vector<double> pausesOfTwoSeconds() {
    NotingCalls calls;
    Patience patience(calls, 2);
    while (patience.pause()) {
    }
    return calls.pauses;
}

TEST(Patience, EndsWithItsTime) {
    NotingCalls calls;
    Patience patience(calls, 2);
    EXPECT_TRUE(patience.pause());
    calls.pass(1.9);
    EXPECT_TRUE(patience.pause());
    calls.pass(0.1);
    EXPECT_FALSE(patience.pause());
    EXPECT_EQ(calls.pauses.size(), 2U);
}

TEST(Patience, PausesAreShortAtFirstAndNeverLong) {
    const auto pauses = pausesOfTwoSeconds();
    EXPECT_LE(pauses.front(), 1);
    EXPECT_GE(*std::max_element(pauses.begin(), pauses.end()), 2.5);
    for (const double pause : pauses) {
        EXPECT_GE(pause, 0.24);
        EXPECT_LE(pause, 5);
    }
}

TEST(Patience, WhoHasWaitedForLongLooksMoreOften) {
    const auto pauses = pausesOfTwoSeconds();
    double waited = 0;
    for (const double pause : pauses) {
        if (waited > 100) {
            EXPECT_LE(pause, 1);
        }
        waited += pause;
    }
}

TEST(Patience, TwoThatWaitForTheSameDontKeepInStep) {
    EXPECT_NE(pausesOfTwoSeconds(), pausesOfTwoSeconds());
}

TEST(Patience, WithoutAClockThereIsNone) {
    NotingCalls calls;
    calls.fail("clockGettime", EINVAL);
    Patience blind(calls, 2);
    EXPECT_FALSE(blind.pause());
    Patience seeing(calls, 2);
    calls.fail("clockGettime", EINVAL);
    EXPECT_FALSE(seeing.pause());
}

}  // namespace
}  // namespace vantrel::posix

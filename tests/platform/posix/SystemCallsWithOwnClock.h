#pragma once

#include <ctime>

#include "tests/platform/posix/FaultySystemCalls.h"

namespace vantrel::posix {

/// System calls with a clock of their own, which starts at the real time and then stands still but for what the test
/// and every `nanosleep` add to it. Nobody waits.
class SystemCallsWithOwnClock : public FaultySystemCalls {
public:
    SystemCallsWithOwnClock() {
        struct timespec time {};
        clock_gettime(CLOCK_REALTIME, &time);
        start_ = nanoseconds(time);
    }

    /// Moves the clock forward.
    void pass(double seconds) { passed_ += static_cast<long long>(seconds * 1e9); }

    struct timespec now() const {
        const long long time = start_ + passed_;
        return {static_cast<time_t>(time / nanosecondsInSecond), static_cast<long>(time % nanosecondsInSecond)};
    }

    double secondsSlept() const { return static_cast<double>(slept_) * 1e-9; }

    int nanosleep(const struct timespec& duration) override {
        passed_ += nanoseconds(duration);
        slept_ += nanoseconds(duration);
        return FaultySystemCalls::nanosleep({0, 0});
    }

    int clockGettime(clockid_t clock, struct timespec* time) override {
        const int told = FaultySystemCalls::clockGettime(clock, time);
        *time = now();
        return told;
    }

private:
    static constexpr long long nanosecondsInSecond = 1'000'000'000;

    static long long nanoseconds(const struct timespec& time) {
        return time.tv_sec * nanosecondsInSecond + time.tv_nsec;
    }

    long long start_ = 0;
    long long passed_ = 0;
    long long slept_ = 0;
};

}  // namespace vantrel::posix

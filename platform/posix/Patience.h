#pragma once

#include <optional>
#include <random>

#include "platform/posix/SystemCalls.h"

namespace vantrel::posix {

/// Pauses between tries for what another process has: short at first, then up to 5 ms, each of random length, so that
/// processes that wait for the same thing don't keep in step.
class Patience {
public:
    /// From now on, for `longest` seconds in all.
    Patience(SystemCalls& calls, double longest);

    /// Pauses. False, at once, when the time is over or there is no telling.
    [[nodiscard]] bool pause();

private:
    /// Seconds; nothing when the clock can't be read.
    std::optional<double> now();

    SystemCalls& calls_;
    std::optional<double> end_;
    long pause_;
    std::minstd_rand random_;
};

}  // namespace vantrel::posix

#pragma once

#include <optional>
#include <random>

#include "platform/posix/SystemCalls.h"

namespace vantrel::posix {

/// Pauses between tries for what another process has: short at first, then up to 5 ms, each of random length, so that
/// processes that wait for the same thing don't keep in step; and shorter again for who has waited for long: that one
/// comes before the others.
class Patience {
public:
    /// For `longest` seconds in all, from the first pause on.
    Patience(SystemCalls& calls, double longest) : calls_(calls), longest_(longest) {}

    /// Pauses. False, at once, when the time is over or there is no telling.
    [[nodiscard]] bool pause();

private:
    /// Seconds; nothing when the clock can't be read.
    std::optional<double> now();

    SystemCalls& calls_;
    double longest_;
    /// When the first pause was.
    std::optional<double> start_;
    /// The longest that the last pause could be, in seconds.
    double pause_ = 0;
    std::minstd_rand random_;
};

}  // namespace vantrel::posix

#include "platform/posix/Patience.h"

#include <algorithm>

namespace vantrel::posix {
namespace {

// Seconds.
constexpr double firstPause = 0.001;
constexpr double shortestPause = 0.0005;
constexpr double longestPause = 0.005;

/// A pause of the longest kind is for who has waited for four of them; who has waited for twice as long looks twice as
/// often.
constexpr double longWait = 4 * longestPause;

}  // namespace

bool Patience::pause() {
    const auto time = now();
    if (!time) return false;
    if (!start_) {
        start_ = time;
        pause_ = firstPause / 2;
        random_.seed(static_cast<std::minstd_rand::result_type>(static_cast<long long>(*time * 1e9)));
    }
    const double waited = *time - *start_;
    if (waited >= longest_) return false;
    pause_ = std::min(2 * pause_, longestPause);
    if (waited > longWait) pause_ = std::max(longestPause * longWait / waited, shortestPause);
    std::uniform_real_distribution length(pause_ / 2, pause_);
    calls_.nanosleep({0, static_cast<long>(length(random_) * 1e9)});
    return true;
}

std::optional<double> Patience::now() {
    struct timespec time {};
    if (calls_.clockGettime(CLOCK_MONOTONIC, &time) != 0) return std::nullopt;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace vantrel::posix

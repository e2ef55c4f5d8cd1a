#include "platform/posix/Patience.h"

#include <algorithm>

namespace vantrel::posix {
namespace {

// Nanoseconds.
constexpr long firstPause = 1'000'000;
constexpr long longestPause = 5'000'000;

}  // namespace

Patience::Patience(SystemCalls& calls, double longest) : calls_(calls), end_(now()), pause_(firstPause) {
    if (!end_) return;
    random_.seed(static_cast<std::minstd_rand::result_type>(*end_ * 1e9));
    *end_ += longest;
}

bool Patience::pause() {
    const auto time = now();
    if (!time || !end_ || *time >= *end_) return false;
    calls_.nanosleep({0, std::uniform_int_distribution(pause_ / 2, pause_)(random_)});
    pause_ = std::min(2 * pause_, longestPause);
    return true;
}

std::optional<double> Patience::now() {
    struct timespec time {};
    if (calls_.clockGettime(CLOCK_MONOTONIC, &time) != 0) return std::nullopt;
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace vantrel::posix

#include "platform/posix/Patience.h"

#include <algorithm>

namespace vantrel::posix {
namespace {

constexpr long longestPause = 5'000'000;  // nanoseconds

}  // namespace

bool Patience::pause() {
    const auto time = now();
    if (!time) return false;
    if (!end_) {
        random_.seed(static_cast<std::minstd_rand::result_type>(static_cast<long long>(*time * 1e9)));
        end_ = *time + longest_;
    }
    if (*time >= *end_) return false;
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

#include "platform/gnustep/DefaultsLock.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/posix/Folders.h"

namespace vantrel::gnustep {
namespace {

constexpr double oldAge = 20;       // seconds, as GNUstep has it
constexpr double longestWait = 30;  // seconds: time for one dead holder and a queue behind it
// Nanoseconds. GNUstep looks every 0.1 seconds; a user who clicks shouldn't wait so long for a lock held that shortly.
constexpr long firstPause = 1'000'000;
constexpr long longestPause = 50'000'000;

double seconds(const struct timespec& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace

DefaultsLock::DefaultsLock(posix::SystemCalls& calls, std::string folder)
    : calls_(calls), folder_(std::move(folder)), path_(folder_ + "/.lck/.GNUstepDefaults.lck") {}

DefaultsLock::~DefaultsLock() {
    release();
}

bool DefaultsLock::take() {
    struct timespec now {};
    if (calls_.clockGettime(CLOCK_MONOTONIC, &now) != 0) return false;
    const double start = seconds(now);
    std::optional<Identity> watched;
    double watchedSince = start;
    long pause = firstPause;
    bool madeFolders = false;

    while (calls_.mkdir(path_.c_str(), 0755) != 0) {
        if (errno == ENOENT && !madeFolders) {
            madeFolders = true;
            if (posix::makeFolders(calls_, folder_ + "/.lck") != 0) return false;
            continue;
        }
        if (errno != EEXIST) return false;

        struct timespec wallClock {};
        if (calls_.clockGettime(CLOCK_MONOTONIC, &now) != 0) return false;
        if (calls_.clockGettime(CLOCK_REALTIME, &wallClock) != 0) return false;
        if (seconds(now) - start > longestWait) return false;

        if (const auto other = standing()) {
            if (!watched || !isSame(*watched, *other)) {
                watched = other;
                watchedSince = seconds(now);
            }
            // A clock that was set back makes a lock look younger than it is: the time it was watched counts as well.
            const double age = std::max(seconds(wallClock) - seconds(other->made), seconds(now) - watchedSince);
            if (age > oldAge) {
                if (calls_.rmdir(path_.c_str()) != 0 && errno != ENOENT) return false;
                continue;
            }
        }
        calls_.nanosleep({0, pause});
        pause = std::min(2 * pause, longestPause);
    }

    held_ = standing();
    if (!held_) calls_.rmdir(path_.c_str());
    return held_.has_value();
}

void DefaultsLock::release() {
    if (!held_) return;
    const auto now = standing();
    // One that can't be looked at is most likely still ours, and left behind it would keep everyone waiting.
    if (!now || isSame(*held_, *now)) calls_.rmdir(path_.c_str());
    held_.reset();
}

std::optional<DefaultsLock::Identity> DefaultsLock::standing() {
    struct stat status {};
    if (calls_.lstat(path_.c_str(), &status) != 0) return std::nullopt;
    return Identity{status.st_dev, status.st_ino, status.st_mtim};
}

bool DefaultsLock::isSame(const Identity& one, const Identity& other) {
    return one.device == other.device && one.file == other.file && one.made.tv_sec == other.made.tv_sec &&
           one.made.tv_nsec == other.made.tv_nsec;
}

}  // namespace vantrel::gnustep

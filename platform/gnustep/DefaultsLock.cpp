#include "platform/gnustep/DefaultsLock.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <utility>

#include "platform/posix/Descriptor.h"
#include "platform/posix/Folders.h"

namespace vantrel::gnustep {
namespace {

constexpr double oldAge = 20;  // seconds, as GNUstep has it

/// How long, in seconds, another process may reach for a folder whose path it has looked up.
constexpr double longestReach = 2;

double seconds(const struct timespec& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

}  // namespace

DefaultsLock::DefaultsLock(posix::SystemCalls& calls, std::string folder)
    : calls_(calls),
      folder_(std::move(folder)),
      path_(folder_ + "/.lck/.GNUstepDefaults.lck"),
      aside_(folder_ + "/.lck/.Vantrel-free") {}

DefaultsLock::~DefaultsLock() {
    release();
    if (hasPutAside_) calls_.rmdir(aside_.c_str());
}

int DefaultsLock::take(posix::Patience& patience) {
    release();
    bool hasMadeFolders = false;
    bool hasBroken = false;
    while (!isTaken_ && make() != 0) {
        if (errno == ENOENT && !std::exchange(hasMadeFolders, true)) {
            if (posix::makeFolders(calls_, folder_ + "/.lck") != 0) return -1;
            continue;
        }
        if (errno != EEXIST) return -1;
        const auto other = identityOf(path_);
        if (other && isOld(*other) && !std::exchange(hasBroken, true)) {
            breakOld(*other);
            continue;
        }
        const bool isGivenUp = other && givenUp_ && isSame(*givenUp_, *other);
        if (isGivenUp || !patience.pause()) {
            givenUp_ = other;
            errno = EBUSY;
            return -1;
        }
    }
    if (!std::exchange(isTaken_, true)) held_ = identityOf(path_);
    return 0;
}

int DefaultsLock::make() {
    // It has to be young before it stands there: GNUstep's programs break an old one at once. With the slash, only a
    // folder is renamed.
    if (calls_.utimensat(AT_FDCWD, aside_.c_str(), nullptr, AT_SYMLINK_NOFOLLOW) == 0) {
        if (calls_.renameNoReplace((aside_ + '/').c_str(), path_.c_str()) == 0) return 0;
        if (errno == EEXIST) return -1;
    }
    return calls_.mkdir(path_.c_str(), 0755);
}

bool DefaultsLock::isAbandoned() {
    const auto other = identityOf(path_);
    return other && isOld(*other);
}

void DefaultsLock::release() {
    if (!isTaken_) return;
    const auto now = identityOf(path_);
    const bool isGone = !now && errno == ENOENT;
    // One that can't be looked at is most likely still ours, and left behind it would keep everyone waiting.
    isTaken_ = !isGone && (!held_ || !now || isOurs(*now));
    if (!isTaken_) return;
    const bool isPutAside = calls_.rename(path_.c_str(), aside_.c_str()) == 0;
    hasPutAside_ = hasPutAside_ || isPutAside;
    // Something may have been put there meanwhile that is no empty folder.
    isTaken_ = !isPutAside && calls_.rmdir(path_.c_str()) != 0 && errno != ENOENT;
}

/// Another process that wanted the one aside, and found it just before it was renamed, makes it a little younger just
/// afterwards. One that was taken by another is younger by at least the age at which ours was broken.
bool DefaultsLock::isOurs(const Identity& now) const {
    return now.device == held_->device && now.file == held_->file &&
           std::abs(seconds(now.made) - seconds(held_->made)) < longestReach;
}

bool DefaultsLock::isOld(const Identity& other) {
    struct timespec steady {};
    struct timespec wall {};
    if (calls_.clockGettime(CLOCK_MONOTONIC, &steady) != 0 || calls_.clockGettime(CLOCK_REALTIME, &wall) != 0) {
        return false;
    }
    if (!watched_ || !isSame(*watched_, other)) {
        watched_ = other;
        watchedSince_ = seconds(steady);
    }
    // A clock that was set back makes a lock look younger than it is: the time it was watched counts as well.
    return std::max(seconds(wall) - seconds(other.made), seconds(steady) - watchedSince_) > oldAge;
}

/// Between the look at a lock and its removal another process may break it and take its own, which must stay. Among
/// processes like this one, one at a time looks and removes; where it comes from another program after all, it shows
/// once the lock is renamed, and then it goes back.
void DefaultsLock::breakOld(const Identity& old) {
    const posix::Descriptor folder(calls_, posix::openFolder(calls_, folder_ + "/.lck"));
    if (!folder.isOpen() || (calls_.flock(folder.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)) return;
    const auto now = identityOf(path_);
    const std::string aside = folder_ + "/.lck/.Vantrel-broken";
    if (!now || !isSame(*now, old) || calls_.rename(path_.c_str(), aside.c_str()) != 0) return;
    const auto renamed = identityOf(aside);
    if (renamed && !isSame(*renamed, old)) {
        calls_.renameNoReplace(aside.c_str(), path_.c_str());
    } else {
        calls_.rmdir(aside.c_str());
    }
}

std::optional<DefaultsLock::Identity> DefaultsLock::identityOf(const std::string& path) {
    struct stat status {};
    if (calls_.lstat(path.c_str(), &status) != 0) return std::nullopt;
    return Identity{status.st_dev, status.st_ino, status.st_mtim};
}

bool DefaultsLock::isSame(const Identity& one, const Identity& other) {
    return one.device == other.device && one.file == other.file && one.made.tv_sec == other.made.tv_sec &&
           one.made.tv_nsec == other.made.tv_nsec;
}

}  // namespace vantrel::gnustep

#pragma once

#include <optional>
#include <string>

#include "platform/posix/Patience.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel::gnustep {

/// The lock that every GNUstep process takes while it changes a file in the defaults folder: a folder that only one can
/// make. Who dies with it leaves it behind; the next one breaks it when it is 20 seconds old.
///
/// To make and remove a folder costs the disk ten times what renaming one does. So ours is put aside when it is freed,
/// and whichever process like this one comes next puts it back.
class DefaultsLock {
public:
    /// For the defaults folder at `folder`, an absolute path. Takes nothing yet.
    DefaultsLock(posix::SystemCalls& calls, std::string folder);
    DefaultsLock(const DefaultsLock&) = delete;
    DefaultsLock& operator=(const DefaultsLock&) = delete;
    /// Frees the lock if it is taken, and leaves nothing aside.
    ~DefaultsLock();

    /// Takes the lock, and makes the defaults folder if it is missing. Waits with `patience` while another process has
    /// it, but never twice for one that was waited for in vain. 0; or -1 and `errno` when it can't be had, with EBUSY
    /// when another process keeps it.
    [[nodiscard]] int take(posix::Patience& patience);

    /// Frees the lock, unless this process was held up for so long that another has broken it meanwhile. Where that
    /// fails, the lock stays taken, and the next call tries again.
    void release();

    /// The folder that is the lock.
    const std::string& path() const { return path_; }

    /// Whether another process has left the lock behind: it is so old that it may be broken.
    bool isAbandoned();

private:
    /// What tells one lock from the next in the same place.
    struct Identity {
        dev_t device;
        ino_t file;
        /// Or taken, where it is the same folder.
        struct timespec made;
    };

    /// Makes the folder that is the lock, or puts the one aside in its place. 0, or -1 and `errno`.
    int make();
    /// Whether that lock, which stands there now, is the one taken here.
    bool isOurs(const Identity& now) const;
    std::optional<Identity> identityOf(const std::string& path);
    static bool isSame(const Identity& one, const Identity& other);
    /// Whether that lock, which stands there now, is older than anybody holds one.
    bool isOld(const Identity& other);
    void breakOld(const Identity& old);

    posix::SystemCalls& calls_;
    std::string folder_;
    std::string path_;
    std::string aside_;
    bool isTaken_ = false;
    bool hasPutAside_ = false;
    /// Our own, if it could be looked at; otherwise nothing.
    std::optional<Identity> held_;
    /// Another's, and since when it is watched, in seconds of a clock that nobody sets.
    std::optional<Identity> watched_;
    double watchedSince_ = 0;
    /// Another's that was waited for in vain.
    std::optional<Identity> givenUp_;
};

}  // namespace vantrel::gnustep

#pragma once

#include <optional>
#include <string>

#include "platform/posix/SystemCalls.h"

namespace vantrel::gnustep {

/// The lock that every GNUstep process takes while it changes a file in the defaults folder: a folder that only one can
/// make. Who dies with it leaves it behind; the next one breaks it when it is 20 seconds old.
class DefaultsLock {
public:
    /// For the defaults folder at `folder`, an absolute path. Takes nothing yet.
    DefaultsLock(posix::SystemCalls& calls, std::string folder);
    DefaultsLock(const DefaultsLock&) = delete;
    DefaultsLock& operator=(const DefaultsLock&) = delete;
    /// Frees the lock if it is taken.
    ~DefaultsLock();

    /// Takes the lock, and makes the defaults folder if it is missing. Waits while another process has it. False when
    /// it can't be made or broken, or goes from hand to hand for 30 seconds without ever being free.
    bool take();

    /// Frees the lock, unless this process was held up for so long that another has broken it meanwhile.
    void release();

private:
    /// What tells one lock from the next in the same place.
    struct Identity {
        dev_t device;
        ino_t file;
        struct timespec made;
    };

    /// The lock that stands there now, whoever's it is.
    std::optional<Identity> standing();
    static bool isSame(const Identity& one, const Identity& other);

    posix::SystemCalls& calls_;
    std::string folder_;
    std::string path_;
    std::optional<Identity> held_;
};

}  // namespace vantrel::gnustep

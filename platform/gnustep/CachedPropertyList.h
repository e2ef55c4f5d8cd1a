#pragma once

#include <optional>
#include <string>

#include "platform/gnustep/PropertyList.h"
#include "platform/posix/ReplaceFile.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel::gnustep {

/// A property list file as it is now, at the cost of one `stat` while nothing changes it.
class CachedPropertyList {
public:
    enum class State {
        /// There is no file.
        missing,
        /// There is something, but what is in it can't be told: no permission, an error of the disk, not a file, or
        /// another program in the middle of writing it.
        unreadable,
        /// The file isn't a property list, has no dictionary at its top, or is too large, and that for a quarter of a
        /// second.
        damaged,
        readable
    };

    CachedPropertyList(posix::SystemCalls& calls, std::string path);

    /// Looks at the file. Takes a quarter of a second when it is damaged and wasn't at the last look.
    State refresh();

    State state() const { return state_; }

    /// Why it is `unreadable`, as `errno` has it.
    int error() const { return error_; }

    /// What is in the file; or was, when it last could be read. Empty for one that is missing or was never read.
    const PropertyList& list() const { return list_; }

    /// What the last look was told of the file, if there is one and it could be told.
    const struct stat& status() const { return status_; }

    /// Grows with every look that finds something else than the one before.
    unsigned long revision() const { return revision_; }

    /// Takes over what this process has just put into the file: what an update makes of the list, and what the system
    /// says of that.
    void wasReplaced(const PropertyListUpdate& update, const struct stat& status,
                     const posix::FileReplacement& replacement);

private:
    State read();
    std::optional<std::string> contents();
    State becomes(State state, std::string bytes);
    State failed();
    /// What the file holds.
    const std::string& held() const;

    posix::SystemCalls& calls_;
    std::string path_;
    State state_ = State::missing;
    int error_ = 0;
    PropertyList list_;
    /// What the file holds, damaged or not, if it can be read. Empty for one that holds just the list's bytes: a large
    /// one is kept once.
    std::string bytes_;
    unsigned long revision_ = 0;
    struct stat status_ {};
    /// Whether any later change must show in `status_`.
    bool isSettled_ = false;
};

}  // namespace vantrel::gnustep

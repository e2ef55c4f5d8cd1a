#pragma once

#include <string>

#include "platform/gnustep/PropertyList.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel::gnustep {

/// A property list file as it is now, at the cost of one `stat` while nothing changes it.
class CachedPropertyList {
public:
    enum class State {
        /// There is no file.
        missing,
        /// There is something, but what is in it can't be told: no permission, an error of the disk, not a file.
        unreadable,
        /// The file isn't a property list, has no dictionary at its top, or is too large.
        damaged,
        readable
    };

    CachedPropertyList(posix::SystemCalls& calls, std::string path);

    /// Looks at the file.
    State refresh();

    /// What the last look found; empty unless it was `readable`.
    const PropertyList& list() const { return list_; }

    /// Grows with every look that finds something else than the one before.
    unsigned long revision() const { return revision_; }

    /// Takes over what this process has just put into the file: its content, `bytes`, and what the system says of it.
    void wasReplaced(PropertyList list, std::string bytes, const struct stat& status);

private:
    State read();
    void keep(State state, PropertyList list, std::string bytes);

    posix::SystemCalls& calls_;
    std::string path_;
    State state_ = State::missing;
    PropertyList list_;
    /// What `list_` was made from.
    std::string bytes_;
    unsigned long revision_ = 0;
    struct stat status_ {};
    /// Whether any later change must show in `status_`.
    bool isSettled_ = false;
};

}  // namespace vantrel::gnustep

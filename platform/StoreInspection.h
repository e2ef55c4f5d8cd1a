#pragma once

#include <string>
#include <vector>

namespace vantrel {

/// Something about the files of the settings that a person should know of.
struct StoreFinding {
    /// First those that hide what is stored.
    enum class Problem {
        unreadable,        ///< it, or the folder that it is in, may not be read
        damaged,           ///< it is no file, no property list, or has no dictionary at its top
        tooLong,           ///< it is longer than what is read
        notFollowed,       ///< it is a symbolic link, where none is followed
        foreign,           ///< it belongs to another user
        readableByOthers,  ///< other users may read or write it
        setAside,          ///< a damaged file, kept under another name when the settings were next stored
        unfinished,        ///< a process died before it had given the file its name
        abandonedLock      ///< a process died with the lock, which holds everybody up
    };

    Problem problem;
    std::string path;

    /// Whether settings that are stored can't be seen.
    bool hidesSettings() const { return problem <= Problem::notFollowed; }
};

/// The files in which the settings and the override metadata are kept.
class StoreInspection {
public:
    /// What is amiss, store by store. Unfinished files are looked for in `otherFolders` as well. Changes nothing.
    virtual std::vector<StoreFinding> findings(const std::vector<std::string>& otherFolders) = 0;

protected:
    ~StoreInspection() = default;
};

}  // namespace vantrel

#include "overrides/KVRXMetadataDictionary/OverrideRecord.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>

#include "platform/posix/FileContents.h"
#include "platform/posix/Folders.h"
#include "platform/posix/Patience.h"
#include "platform/posix/ReplaceFile.h"

namespace vantrel {
namespace {

using gnustep::PropertyList;
using gnustep::PropertyListChanges;
using posix::Trouble;

/// Seconds. With the quarter of one for a file that isn't whole, nobody who clicks waits for two.
constexpr double longestWait = 1.5;
/// A quarter of a second, after which a file is whole that another program was rewriting in place.
constexpr struct timespec untilWhole { 0, 250'000'000 };
/// How often a change is made again because somebody who doesn't ask for the lock came in between.
constexpr int mostTries = 10;

/// What is to change in the record: what differs between the two lists.
PropertyListChanges changesBetween(const PropertyList& before, const PropertyList& after) {
    PropertyListChanges changes;
    for (const auto* list : {&before, &after}) {
        for (const auto& key : list->keys()) {
            if (before.element(key) != after.element(key)) changes.copy(key, after);
        }
    }
    return changes;
}

/// The record as it was found. Its file stays open, so that no other one can get its number while they are compared.
class Look {
public:
    Look(posix::SystemCalls& calls, const std::string& path)
        : calls_(calls),
          path_(path),
          file_(calls, posix::openToRead(calls, path, status_, O_NOFOLLOW)),
          list_(read()),
          error_(errno) {}

    std::optional<PropertyList>& list() { return list_; }

    /// Why there is no `list`.
    int error() const { return error_; }

    /// Whether this may be the beginning of a file that another program is rewriting in place.
    bool isDoubtful() const { return file_.isOpen() && (!list_ || status_.st_size == 0); }

    /// Whether another look would find the same.
    bool isStillSo() const {
        struct stat now {};
        const bool isThere = calls_.lstat(path_.c_str(), &now) == 0;
        if (!file_.isOpen()) return !isThere && errno == ENOENT;
        return posix::isUnchanged(status_, now);
    }

private:
    std::optional<PropertyList> read() const {
        if (!file_.isOpen()) return errno == ENOENT ? std::optional(PropertyList()) : std::nullopt;
        auto bytes = posix::contentsOf(calls_, file_.number(), status_, largestRecord);
        if (!bytes) return std::nullopt;
        if (bytes->empty()) return PropertyList();
        bool isTooLong = bytes->size() > largestRecord;
        auto list = isTooLong ? std::nullopt : PropertyList::parse(std::move(*bytes));
        // A binary list can be many times longer once it is written out.
        isTooLong |= list && list->bytes().size() > largestRecord;
        if (isTooLong) list.reset();
        if (!list) errno = isTooLong ? EOVERFLOW : EBADMSG;
        return list;
    }

    posix::SystemCalls& calls_;
    const std::string& path_;
    struct stat status_ {};
    posix::Descriptor file_;
    std::optional<PropertyList> list_;
    int error_;
};

}  // namespace

OverrideRecord::OverrideRecord(const std::string& applicationSupportFolder, Log& log, posix::SystemCalls& calls)
    : path_(overrideRecordFile(applicationSupportFolder)),
      folder_(posix::folderOf(path_)),
      calls_(calls),
      failure_(log),
      lockFailure_(log) {}

std::optional<PropertyList> OverrideRecord::read() {
    const posix::Descriptor folder(calls_, posix::openFolder(calls_, folder_, O_NOFOLLOW));
    if (!folder.isOpen()) return errno == ENOENT ? std::optional(PropertyList()) : std::nullopt;
    Look look(calls_, path_);
    if (!look.isDoubtful()) return std::move(look.list());
    calls_.nanosleep(untilWhole);
    return std::move(Look(calls_, path_).list());
}

bool OverrideRecord::change(const PropertyList& before, const PropertyList& after) {
    const auto trouble = store(before, after);
    if (trouble) {
        failure_.met(posix::sentence(path_, "couldn’t be changed", *trouble));
    } else {
        failure_.isOver("“" + posix::nameOf(path_) + "” can be changed again: " + path_);
    }
    return !trouble;
}

std::optional<Trouble> OverrideRecord::store(const PropertyList& before, const PropertyList& after) {
    if (posix::makeFolders(calls_, folder_) != 0) return Trouble{errno, folder_};
    posix::Descriptor folder(calls_, posix::openFolder(calls_, folder_, O_NOFOLLOW));
    if (!folder.isOpen()) return Trouble{errno, folder_};
    lock(folder);

    const auto changes = changesBetween(before, after);
    for (int tries = 0; tries < mostTries; ++tries) {
        Look look(calls_, path_);
        if (tries == 0 && look.isDoubtful()) {
            calls_.nanosleep(untilWhole);
            continue;
        }
        if (!look.list()) return Trouble{look.error(), path_};
        const auto list = look.list()->with(changes);
        // What couldn't be read again would be lost to everybody.
        if (!list || list->bytes().size() > largestRecord) return Trouble{EOVERFLOW, path_};

        posix::FileReplacement replacement(calls_, path_, posix::Links::replaced);
        if (replacement.prepare(list->bytes()) != 0) return Trouble{errno, folder_};
        if (!look.isStillSo()) continue;
        if (replacement.place() != 0) return Trouble{errno, path_};
        // Others go on while the renaming is on its way to the disk: who writes without end would starve them else.
        folder.close();
        return replacement.settle() == 0 ? std::nullopt : std::optional(Trouble{errno, folder_});
    }
    return Trouble{EBUSY, path_};
}

// The lock is on the folder: nothing is left behind, nothing can be put in its place, and it dies with its process. On
// a network file system it holds between the processes of one machine; against the others, and where there are no
// locks, only the look before the renaming helps.
void OverrideRecord::lock(const posix::Descriptor& folder) {
    posix::Patience patience(calls_, longestWait);
    while (calls_.flock(folder.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        if (patience.pause()) continue;
        lockFailure_.met(posix::sentence(path_, "is changed without its lock", {EBUSY, folder_}));
        return;
    }
    lockFailure_.isOver("“" + posix::nameOf(path_) + "” is changed with its lock again: " + folder_);
}

}  // namespace vantrel

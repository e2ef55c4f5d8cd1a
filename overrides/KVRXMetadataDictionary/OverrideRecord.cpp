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

constexpr double longestWait = 2;  // seconds
/// How often a change is made again because somebody who doesn't ask for the lock came in between.
constexpr int mostTries = 10;
/// A quarter of a second, after which a file is whole that was empty or damaged because a program was rewriting it in
/// place.
constexpr struct timespec untilWhole { 0, 250'000'000 };

/// What a record of these bytes holds; nothing when it can't be read.
std::optional<PropertyList> listFrom(std::string_view bytes) {
    if (bytes.empty()) return PropertyList();
    auto list = bytes.size() <= largestRecord ? PropertyList::parse(bytes) : std::nullopt;
    // A binary list can be many times longer when it is written out.
    const bool isSmall = list && list->toXML().size() <= largestRecord;
    return isSmall ? std::move(list) : std::nullopt;
}

}  // namespace

OverrideRecord::OverrideRecord(const std::string& applicationSupportFolder, Log& log, posix::SystemCalls& calls)
    : folder_(applicationSupportFolder + "/Vantrel"),
      path_(folder_ + "/OverrideMetadata.plist"),
      log_(log),
      calls_(calls) {}

std::optional<PropertyList> OverrideRecord::read() {
    const posix::Descriptor folder(calls_, openFolder());
    if (!folder.isOpen()) return errno == ENOENT ? std::optional(PropertyList()) : std::nullopt;
    struct stat status {};
    auto list = listIn(posix::Descriptor(calls_, openRecord(status)));
    if (!list && S_ISREG(status.st_mode)) {
        calls_.nanosleep(untilWhole);
        list = listIn(posix::Descriptor(calls_, openRecord(status)));
    }
    return list;
}

bool OverrideRecord::change(const PropertyList& before, const PropertyList& after) {
    if (posix::makeFolders(calls_, folder_) != 0) return false;
    posix::Descriptor folder(calls_, openFolder());
    if (!folder.isOpen()) return false;
    lock(folder);

    for (int tries = 0; tries < mostTries; ++tries) {
        // Kept open, so that no other file can get its number before it is compared with what stands there then.
        struct stat status {};
        const posix::Descriptor record(calls_, openRecord(status));
        auto list = listIn(record);
        if (tries == 0 && record.isOpen() && (!list || status.st_size == 0)) {
            calls_.nanosleep(untilWhole);
            continue;
        }
        if (!list) return false;
        for (const auto* entries : {&before, &after}) {
            for (const auto& key : entries->keys()) {
                if (!after.hasSameEntry(key, before)) list->copyEntry(key, after);
            }
        }

        // What passes one of the reader's bounds would be lost to everybody.
        const std::string bytes = list->toXML();
        if (!listFrom(bytes)) return false;

        posix::FileReplacement replacement(calls_, path_, posix::Links::replaced);
        if (replacement.prepare(bytes) != 0) return false;
        if (!isStill(record, status)) continue;
        const bool isPlaced = replacement.place() == 0;
        // Others go on while the renaming is on its way to the disk: who writes without end would starve them else.
        folder.close();
        return isPlaced && replacement.settle() == 0;
    }
    return false;
}

int OverrideRecord::openFolder() {
    return posix::openFolder(calls_, folder_, O_NOFOLLOW);
}

int OverrideRecord::openRecord(struct stat& status) {
    return posix::openToRead(calls_, path_, status, O_NOFOLLOW);
}

/// `record` as it has just been opened, with the `errno` of that.
std::optional<PropertyList> OverrideRecord::listIn(const posix::Descriptor& record) {
    if (!record.isOpen()) return errno == ENOENT ? std::optional(PropertyList()) : std::nullopt;
    const auto bytes = posix::contentsOf(calls_, record.number(), largestRecord);
    return bytes ? listFrom(*bytes) : std::nullopt;
}

bool OverrideRecord::isStill(const posix::Descriptor& record, const struct stat& status) {
    struct stat now {};
    const bool isThere = calls_.lstat(path_.c_str(), &now) == 0;
    if (!isThere || !record.isOpen()) return !isThere && errno == ENOENT && !record.isOpen();
    return posix::isUnchanged(status, now);
}

/// The lock is on the folder: nothing is left behind, nothing can be put in its place, and it dies with its process. On
/// a network file system it holds between the processes of one machine; against the others, and where there are no
/// locks, only the look before the renaming helps.
void OverrideRecord::lock(const posix::Descriptor& folder) {
    posix::Patience patience(calls_, longestWait);
    while (calls_.flock(folder.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        if (patience.pause()) continue;
        log_.log(folder_ + " is locked by another program for too long, the override record is changed all the same");
        return;
    }
}

}  // namespace vantrel

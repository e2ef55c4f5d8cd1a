#include "platform/gnustep/DomainFile.h"

#include <cerrno>
#include <chrono>
#include <map>
#include <utility>

#include "platform/gnustep/UniversalTime.h"
#include "platform/posix/Folders.h"
#include "platform/posix/ReplaceFile.h"

namespace vantrel::gnustep {
namespace {

using posix::sentence;
using posix::Trouble;

/// As many files of one name kept aside within one second are enough.
constexpr int mostNames = 100;

/// As often in a row another process may change the file in our hands without the lock.
constexpr int mostTries = 10;

/// "20240229T235959Z".
std::string timestamp(const struct timespec& time) {
    auto text = universalTime(std::chrono::sys_seconds(std::chrono::seconds(time.tv_sec)));
    std::erase_if(text, [](char character) { return character == '-' || character == ':'; });
    return text;
}

bool cantLink(int error) {
    return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK;
}

}  // namespace

struct DomainFile::Next {
    PropertyListUpdate update;
    /// The file's that it was made for.
    unsigned long revision;
    posix::FileReplacement replacement;
};

DomainFile::DomainFile(posix::SystemCalls& calls, Log& log, DefaultsLock& lock, const std::string& folder,
                       std::string_view name)
    : calls_(calls),
      log_(log),
      lock_(lock),
      folder_(folder),
      path_(folder + '/' + std::string(name) + ".plist"),
      file_(calls, path_),
      failure_(log),
      lockFailure_(log) {}

PreferenceValue DomainFile::value(std::string_view key, unsigned long sequence) {
    look(sequence);
    auto value = file_.list().value(key);
    for (const auto& [changed, change] : pending_) {
        if (changed != key) continue;
        if (const auto now = change(value)) value = asStored(*now);
    }
    return value;
}

void DomainFile::setValue(std::string_view key, const NewPreferenceValue& value) {
    std::erase_if(pending_, [key](const auto& pending) { return pending.first == key; });
    update(key, [value](const PreferenceValue&) { return value; });
}

void DomainFile::update(std::string_view key, const PreferenceChange& change) {
    pending_.emplace_back(key, change);
}

bool DomainFile::synchronize(unsigned long sequence, posix::Patience& patience) {
    // One that couldn't be freed the last time is freed even if there is nothing to store.
    lock_.release();
    if (pending_.empty() && !mustReplaceAgain_) return true;
    const auto trouble = store(sequence, patience);
    lock_.release();
    if (trouble) {
        failure_.met(sentence(path_, "couldn’t be stored", *trouble));
    } else {
        failure_.isOver("“" + posix::nameOf(path_) + "” is stored again: " + path_);
    }
    return !trouble;
}

std::optional<Trouble> DomainFile::store(unsigned long sequence, posix::Patience& patience) {
    look(sequence);
    // What takes long, the way to the disk, comes before the lock: it is seldom that another writes meanwhile, and
    // nobody waits for our disk. A missing folder is made with the lock.
    std::unique_ptr<Next> next;
    auto trouble = prepare(next);
    if (trouble ? trouble->error != ENOENT : !next) return trouble;

    takeLock(patience);
    for (int tries = 0; tries < mostTries; ++tries) {
        file_.refresh();
        if (!next || next->revision != file_.revision()) {
            trouble = prepare(next);
            if (trouble || !next) return trouble;
            // Without the lock, another may have come meanwhile.
            continue;
        }
        trouble = place(*next);
        if (!trouble || trouble->error != EEXIST) return trouble;
    }
    return Trouble{EBUSY, path_};
}

/// Looks at the file unless that was done for this sequence.
void DomainFile::look(unsigned long sequence) {
    if (std::exchange(sequence_, sequence) != sequence) file_.refresh();
}

/// Brings what the file is to hold to the disk, beside it. No `next` where it holds all that.
std::optional<Trouble> DomainFile::prepare(std::unique_ptr<Next>& next) {
    next.reset();
    if (file_.state() == CachedPropertyList::State::unreadable) return Trouble{file_.error(), path_};
    const auto changes = changesToMake();
    if (!changes) {
        pending_.clear();
        return std::nullopt;
    }
    auto update = file_.list().updateFor(*changes);
    if (!update) return Trouble{EOVERFLOW, path_};
    next.reset(new Next{std::move(*update), file_.revision(), {calls_, path_}});
    if (next->replacement.prepare(file_.list().bytesAfter(next->update)) == 0) return std::nullopt;
    Trouble trouble{errno, posix::folderOf(next->replacement.target())};
    next.reset();
    return trouble;
}

/// What the file lacks of the changes that were made here. Nothing where it holds all that, and for good. A damaged one
/// lacks all of it: the list is what was last read.
std::optional<PropertyListChanges> DomainFile::changesToMake() const {
    std::map<std::string, NewPreferenceValue> values;
    for (const auto& [key, change] : pending_) {
        const auto earlier = values.find(key);
        const auto value = change(earlier == values.end() ? file_.list().value(key) : asStored(earlier->second));
        if (value) values.insert_or_assign(key, *value);
    }
    const bool isDamaged = file_.state() == CachedPropertyList::State::damaged;
    PropertyListChanges changes;
    bool differs = mustReplaceAgain_;
    for (const auto& [key, value] : values) {
        if (!isDamaged && file_.list().holds(key, value)) continue;
        changes.set(key, value);
        differs = true;
    }
    return differs ? std::optional(std::move(changes)) : std::nullopt;
}

void DomainFile::takeLock(posix::Patience& patience) {
    if (lock_.take(patience) != 0) {
        lockFailure_.met(sentence(path_, "is stored without its lock", {errno, lock_.path()}));
    } else {
        lockFailure_.isOver("“" + posix::nameOf(path_) + "” is stored with its lock again: " + lock_.path());
    }
}

/// The trouble is EEXIST where there was no file and now there is one.
std::optional<Trouble> DomainFile::place(Next& next) {
    const std::string& path = next.replacement.target();
    if (file_.state() == CachedPropertyList::State::damaged) {
        // Its second name is for good before its first one goes.
        if (keepAside(path) != 0 || next.replacement.settle() != 0) return Trouble{errno, path};
    }
    const bool isMissing = file_.state() == CachedPropertyList::State::missing;
    struct stat status {};
    if (next.replacement.place(&status, isMissing ? posix::InPlace::nothing : posix::InPlace::anything) != 0) {
        return Trouble{errno, path};
    }
    lock_.release();

    file_.wasReplaced(next.update, status, next.replacement);
    pending_.clear();
    mustReplaceAgain_ = next.replacement.settle() != 0;
    return mustReplaceAgain_ ? std::optional(Trouble{errno, posix::folderOf(path)}) : std::nullopt;
}

/// Gives a damaged file a free second name beside it and logs that: the new file can then take its first one, without a
/// moment in which there is neither. 0, or -1 and `errno`.
int DomainFile::keepAside(const std::string& path) {
    const std::string kept = path + std::string(setAsideMark) + timestamp(file_.status().st_mtim);
    for (int number = 1; number <= mostNames; ++number) {
        std::string free = kept;
        if (number > 1) free += '-' + std::to_string(number);
        int named = calls_.link(path.c_str(), free.c_str());
        if (named != 0 && cantLink(errno)) named = calls_.renameNoReplace(path.c_str(), free.c_str());
        if (named == 0) {
            log_.log(std::string(path).append(" is not a property list, it is kept as ").append(free));
            return 0;
        }
        if (errno != EEXIST) return -1;
        // One that died before it could go on has named it already.
        struct stat status {};
        const auto& damaged = file_.status();
        if (calls_.lstat(free.c_str(), &status) == 0 && status.st_ino == damaged.st_ino) return 0;
    }
    return -1;
}

}  // namespace vantrel::gnustep

#include "platform/gnustep/DomainFile.h"

#include <array>
#include <cerrno>
#include <ctime>
#include <optional>
#include <utility>

#include "platform/gnustep/DefaultsLock.h"

namespace vantrel::gnustep {
namespace {

/// As many files of one name kept aside within one second are enough.
constexpr int mostNames = 100;

/// "20240229T235959Z".
std::string universalTime(const struct timespec& time) {
    struct tm parts {};
    std::array<char, sizeof "20240229T235959Z"> text{};
    if (!gmtime_r(&time.tv_sec, &parts)) return "then";
    return {text.data(), std::strftime(text.data(), text.size(), "%Y%m%dT%H%M%SZ", &parts)};
}

/// One change, and then another on what it made.
PreferenceChange inTurn(const PreferenceChange& first, const PreferenceChange& second) {
    return [first, second](const PreferenceValue& stored) {
        const auto between = first(stored);
        const auto last = second(between ? asStored(*between) : stored);
        return last ? last : between;
    };
}

}  // namespace

DomainFile::DomainFile(posix::SystemCalls& calls, Log& log, std::string folder, std::string_view name)
    : calls_(calls),
      log_(log),
      folder_(std::move(folder)),
      path_(folder_ + '/' + std::string(name) + ".plist"),
      file_(calls, path_) {}

PreferenceValue DomainFile::value(std::string_view key) {
    file_.refresh();
    auto stored = file_.list().value(key);
    const auto pending = pending_.find(key);
    const auto changed = pending == pending_.end() ? std::nullopt : pending->second(stored);
    return changed ? asStored(*changed) : stored;
}

void DomainFile::setValue(std::string_view key, const NewPreferenceValue& value) {
    pending_.insert_or_assign(std::string(key), [value](const PreferenceValue&) { return value; });
}

void DomainFile::update(std::string_view key, const PreferenceChange& change) {
    auto& pending = pending_[std::string(key)];
    pending = pending ? inTurn(pending, change) : change;
}

bool DomainFile::synchronize() {
    // Looked at once without the lock: often there is nothing to do.
    auto state = file_.refresh();
    auto changes = changesToMake();
    if (!changes) {
        pending_.clear();
        return true;
    }
    if (state == CachedPropertyList::State::unreadable) return false;

    std::optional<PropertyList> list;
    std::optional<posix::FileReplacement> replacement;
    const auto prepare = [&] {
        list = file_.list().with(*changes);
        errno = EFBIG;
        if (!list) return false;
        replacement.emplace(calls_, path_);
        return replacement->prepare(list->bytes()) == 0;
    };

    // What takes long, the way to the disk, comes before the lock: it is seldom that another writes meanwhile, and
    // nobody waits for our disk. A missing folder is made with the lock.
    const bool isPrepared = prepare();
    if (!isPrepared && errno != ENOENT) return false;
    const auto preparedFor = file_.revision();
    DefaultsLock lock(calls_, folder_);
    if (!lock.take()) return false;
    state = file_.refresh();
    if (state == CachedPropertyList::State::unreadable) return false;
    if (!isPrepared || file_.revision() != preparedFor) {
        changes = changesToMake();
        if (!changes) {
            pending_.clear();
            return true;
        }
        if (!prepare()) return false;
    }

    if (state == CachedPropertyList::State::damaged && !keepAside(replacement->target())) return false;
    struct stat status {};
    if (replacement->place(&status) != 0) return false;
    lock.release();

    auto bytes = list->bytes();
    file_.wasReplaced(std::move(*list), std::move(bytes), status);
    pending_.clear();
    mustReplaceAgain_ = replacement->settle() != 0;
    return !mustReplaceAgain_;
}

std::optional<PropertyListChanges> DomainFile::changesToMake() const {
    PropertyListChanges changes;
    bool differs = mustReplaceAgain_;
    for (const auto& [key, change] : pending_) {
        const auto value = change(file_.list().value(key));
        if (!value || file_.list().holds(key, *value)) continue;
        changes.set(key, *value);
        differs = true;
    }
    return differs ? std::optional(std::move(changes)) : std::nullopt;
}

bool DomainFile::keepAside(const std::string& path) {
    struct timespec now {};
    calls_.clockGettime(CLOCK_REALTIME, &now);
    const std::string kept = path + ".unreadable-" + universalTime(now);
    for (int number = 1; number <= mostNames; ++number) {
        std::string free = kept;
        if (number > 1) free += '-' + std::to_string(number);
        if (calls_.renameNoReplace(path.c_str(), free.c_str()) == 0) {
            log_.log(std::string(path).append(" is not a property list, it is kept as ").append(free));
            return true;
        }
        if (errno != EEXIST) return false;
    }
    return false;
}

}  // namespace vantrel::gnustep

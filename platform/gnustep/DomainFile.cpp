#include "platform/gnustep/DomainFile.h"

#include <algorithm>
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

}  // namespace

DomainFile::DomainFile(posix::SystemCalls& calls, Log& log, std::string folder, std::string_view name)
    : calls_(calls),
      log_(log),
      folder_(std::move(folder)),
      path_(folder_ + '/' + std::string(name) + ".plist"),
      file_(calls, path_) {}

PreferenceValue DomainFile::value(std::string_view key) {
    auto value = pending_.value(key);
    if (!std::holds_alternative<Absent>(value)) return value;
    file_.refresh();
    return file_.list().value(key);
}

void DomainFile::setValue(std::string_view key, const NewPreferenceValue& value) {
    if (const auto* flag = std::get_if<bool>(&value)) {
        pending_.setBoolean(key, *flag);
    } else if (const auto* number = std::get_if<long>(&value)) {
        pending_.setInteger(key, *number);
    } else {
        pending_.setString(key, std::get<std::string>(value));
    }
}

bool DomainFile::synchronize() {
    // Looked at once without the lock: often there is nothing to do.
    auto state = file_.refresh();
    if (isDone()) {
        pending_ = {};
        return true;
    }
    if (state == CachedPropertyList::State::unreadable) return false;

    PropertyList list;
    std::string bytes;
    std::optional<posix::FileReplacement> replacement;
    const auto prepare = [&] {
        list = file_.list();
        for (const auto& key : pending_.keys()) list.copyEntry(key, pending_);
        bytes = list.toXML();
        replacement.emplace(calls_, path_);
        return replacement->prepare(bytes) == 0;
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
    if (isDone()) {
        pending_ = {};
        return true;
    }
    if ((!isPrepared || file_.revision() != preparedFor) && !prepare()) return false;

    if (state == CachedPropertyList::State::damaged && !keepAside(replacement->target())) return false;
    struct stat status {};
    if (replacement->place(&status) != 0) return false;
    lock.release();

    file_.wasReplaced(std::move(list), std::move(bytes), status);
    pending_ = {};
    mustReplaceAgain_ = replacement->settle() != 0;
    return !mustReplaceAgain_;
}

bool DomainFile::isDone() const {
    const auto keys = pending_.keys();
    return !mustReplaceAgain_ && std::all_of(keys.begin(), keys.end(), [this](const std::string& key) {
        return file_.list().hasSameEntry(key, pending_);
    });
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

#include "platform/gnustep/CachedPropertyList.h"

#include <cerrno>
#include <optional>
#include <utility>

#include "platform/posix/Descriptor.h"
#include "platform/posix/FileContents.h"

namespace vantrel::gnustep {
namespace {

/// How old a file's times must be, in nanoseconds, for a later change to give it others. The kernel stamps with the
/// time of its last tick, at most 10 ms ago; some file systems keep only whole seconds of it, or every other one.
constexpr long long settlingTime = 20'000'000;
constexpr long long settlingTimeOfWholeSeconds = 2'020'000'000;

/// How long another program may take to write a file that it writes in place: a quarter of a second.
constexpr struct timespec rewritingTime { 0, 250'000'000 };

long long nanoseconds(const struct timespec& time) {
    return static_cast<long long>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

bool isSettledAt(const struct timespec& now, const struct stat& status) {
    const bool hasWholeSeconds = status.st_mtim.tv_nsec == 0 && status.st_ctim.tv_nsec == 0;
    const auto needed = hasWholeSeconds ? settlingTimeOfWholeSeconds : settlingTime;
    return nanoseconds(now) - nanoseconds(status.st_mtim) > needed &&
           nanoseconds(now) - nanoseconds(status.st_ctim) > needed;
}

}  // namespace

CachedPropertyList::CachedPropertyList(posix::SystemCalls& calls, std::string path)
    : calls_(calls), path_(std::move(path)) {}

CachedPropertyList::State CachedPropertyList::refresh() {
    struct stat now {};
    if (calls_.stat(path_.c_str(), &now) != 0) {
        if (errno != ENOENT && errno != ENOTDIR) return failed();
        isSettled_ = false;
        list_ = {};
        return becomes(State::missing, {});
    }
    if (isSettled_ && posix::isUnchanged(status_, now)) return state_;
    return read();
}

void CachedPropertyList::wasReplaced(const PropertyListUpdate& update, const struct stat& status,
                                     const posix::FileReplacement& replacement) {
    list_.make(update);
    becomes(State::readable, {});
    status_ = status;
    isSettled_ = replacement.isAsMade(status);
}

CachedPropertyList::State CachedPropertyList::read() {
    auto bytes = contents();
    if (!bytes) return failed();
    const bool isKnown = state_ == State::readable || state_ == State::damaged;
    if (isKnown && *bytes == held()) return state_;
    if (!list_.take(*bytes)) {
        calls_.nanosleep(rewritingTime);
        auto again = contents();
        if (!again) return failed();
        if (*again == *bytes) return becomes(State::damaged, std::move(*bytes));
        bytes = std::move(again);
        if (!list_.take(*bytes)) {
            errno = EBUSY;
            return failed();
        }
    }
    // Emptied, it would keep its memory.
    if (*bytes == list_.bytes()) bytes.emplace();
    return becomes(State::readable, std::move(*bytes));
}

/// Nothing, and `errno`, when the file can't be read.
std::optional<std::string> CachedPropertyList::contents() {
    // The clock first: what changes the file after this look gives it times that are later than that.
    struct timespec now {};
    const bool clockIsKnown = calls_.clockGettime(CLOCK_REALTIME, &now) == 0;
    struct stat status {};
    const posix::Descriptor file(calls_, posix::openToRead(calls_, path_, status));
    if (!file.isOpen()) return std::nullopt;
    auto bytes = posix::contentsOf(calls_, file.number(), status, largestPropertyList);
    if (!bytes) return std::nullopt;
    status_ = status;
    isSettled_ = clockIsKnown && isSettledAt(now, status);
    return bytes;
}

/// What was last read stays.
CachedPropertyList::State CachedPropertyList::failed() {
    error_ = errno;
    isSettled_ = false;
    return becomes(State::unreadable, {});
}

const std::string& CachedPropertyList::held() const {
    return state_ == State::readable && bytes_.empty() ? list_.bytes() : bytes_;
}

/// A list that is `readable` is another one than before.
CachedPropertyList::State CachedPropertyList::becomes(State state, std::string bytes) {
    if (state == State::readable || state != state_ || bytes != bytes_) ++revision_;
    state_ = state;
    bytes_.swap(bytes);
    return state_;
}

}  // namespace vantrel::gnustep

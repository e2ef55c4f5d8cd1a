#include "platform/gnustep/CachedPropertyList.h"

#include <array>
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
        const bool isMissing = errno == ENOENT || errno == ENOTDIR;
        isSettled_ = false;
        keep(isMissing ? State::missing : State::unreadable, {}, {});
    } else if (!isSettled_ || !posix::isUnchanged(status_, now)) {
        state_ = read();
    }
    return state_;
}

void CachedPropertyList::wasReplaced(PropertyList list, std::string bytes, const struct stat& status) {
    keep(State::readable, std::move(list), std::move(bytes));
    status_ = status;
    isSettled_ = false;
}

CachedPropertyList::State CachedPropertyList::read() {
    isSettled_ = false;
    // The clock first: what changes the file after this look gives it times that are later than that.
    struct timespec now {};
    const bool clockIsKnown = calls_.clockGettime(CLOCK_REALTIME, &now) == 0;
    struct stat status {};
    const posix::Descriptor file(calls_, posix::openToRead(calls_, path_, status));
    std::string bytes;
    bool isWhole = file.isOpen();
    while (isWhole && bytes.size() <= largestPropertyList) {
        std::array<char, 16384> buffer;
        const ssize_t got = posix::readOnce(calls_, file.number(), buffer.data(), buffer.size());
        if (got == 0) break;
        isWhole = got > 0;
        if (isWhole) bytes.append(buffer.data(), static_cast<std::size_t>(got));
    }
    if (!isWhole) {
        keep(State::unreadable, {}, {});
        return state_;
    }

    status_ = status;
    isSettled_ = clockIsKnown && isSettledAt(now, status);
    const bool wasParsed = state_ == State::readable || state_ == State::damaged;
    if (wasParsed && bytes == bytes_) return state_;
    auto list = PropertyList::parse(bytes);
    const auto state = list ? State::readable : State::damaged;
    keep(state, list ? std::move(*list) : PropertyList(), std::move(bytes));
    return state_;
}

void CachedPropertyList::keep(State state, PropertyList list, std::string bytes) {
    if (state != state_ || bytes != bytes_) ++revision_;
    state_ = state;
    list_ = std::move(list);
    bytes_ = std::move(bytes);
}

}  // namespace vantrel::gnustep

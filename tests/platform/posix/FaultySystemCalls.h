#pragma once

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/posix/SystemCalls.h"

namespace vantrel::posix {

/// The real system calls, counted, of which some fail. Calls go by the names of their functions: "open",
/// "renameNoReplace". A call that is made to fail does nothing but set `errno`; only `close` still closes, as the
/// kernel does.
class FaultySystemCalls : public SystemCalls {
public:
    /// The `nth` call of that name from now on fails with `error`; 1 is the next one.
    void failNth(const std::string& name, int nth, int error) { planned_[{name, count(name) + nth}] = error; }

    /// The next call of that name fails with `error`.
    void fail(const std::string& name, int error) { failNth(name, 1, error); }

    /// Every call of that name fails with `error` from now on; 0 ends that.
    void failEvery(const std::string& name, int error) { always_[name] = error; }

    /// The names of the calls made so far, in order, failed ones included.
    const std::vector<std::string>& made() const { return made_; }

    /// How often the call of that name was made so far.
    int count(const std::string& name) const {
        const auto found = counts_.find(name);
        return found == counts_.end() ? 0 : found->second;
    }

    /// Run before and after every call, with its name. `errno` is the call's own again afterwards.
    std::function<void(const std::string& name)> before;
    std::function<void(const std::string& name)> after;

    /// `read` and `write` move no more bytes than this at once.
    std::size_t mostBytesAtOnce = static_cast<std::size_t>(-1);

    int open(const char* path, int flags, mode_t mode) override {
        return run("open", [&] { return SystemCalls::open(path, flags, mode); });
    }
    int close(int descriptor) override {
        const int closed = SystemCalls::close(descriptor);
        return run("close", [&] { return closed; });
    }
    ssize_t read(int descriptor, void* buffer, std::size_t size) override {
        return run("read", [&] { return SystemCalls::read(descriptor, buffer, std::min(size, mostBytesAtOnce)); });
    }
    ssize_t write(int descriptor, const void* buffer, std::size_t size) override {
        return run("write", [&] { return SystemCalls::write(descriptor, buffer, std::min(size, mostBytesAtOnce)); });
    }
    int fsync(int descriptor) override {
        // No test can see what is on the disk, and flushing takes its time.
        return run("fsync", [&] { return ::fcntl(descriptor, F_GETFD) < 0 ? -1 : 0; });
    }
    int fallocate(int descriptor, off_t size) override {
        return run("fallocate", [&] { return SystemCalls::fallocate(descriptor, size); });
    }
    int syncFileRange(int descriptor, off_t offset, off_t size) override {
        return run("syncFileRange", [&] { return SystemCalls::syncFileRange(descriptor, offset, size); });
    }
    int fchmod(int descriptor, mode_t mode) override {
        return run("fchmod", [&] { return SystemCalls::fchmod(descriptor, mode); });
    }
    int futimens(int descriptor, const struct timespec times[2]) override {
        return run("futimens", [&] { return SystemCalls::futimens(descriptor, times); });
    }
    int utimensat(int folder, const char* path, const struct timespec times[2], int flags) override {
        return run("utimensat", [&] { return SystemCalls::utimensat(folder, path, times, flags); });
    }
    int fstat(int descriptor, struct stat* status) override {
        return run("fstat", [&] { return SystemCalls::fstat(descriptor, status); });
    }
    int stat(const char* path, struct stat* status) override {
        return run("stat", [&] { return SystemCalls::stat(path, status); });
    }
    int lstat(const char* path, struct stat* status) override {
        return run("lstat", [&] { return SystemCalls::lstat(path, status); });
    }
    ssize_t readlink(const char* path, char* buffer, std::size_t size) override {
        return run("readlink", [&] { return SystemCalls::readlink(path, buffer, size); });
    }
    int mkostemp(char* pathTemplate) override {
        return run("mkostemp", [&] { return SystemCalls::mkostemp(pathTemplate); });
    }
    int rename(const char* from, const char* to) override {
        return run("rename", [&] { return SystemCalls::rename(from, to); });
    }
    int renameNoReplace(const char* from, const char* to) override {
        return run("renameNoReplace", [&] { return SystemCalls::renameNoReplace(from, to); });
    }
    int link(const char* from, const char* to) override {
        return run("link", [&] { return SystemCalls::link(from, to); });
    }
    int unlink(const char* path) override {
        return run("unlink", [&] { return SystemCalls::unlink(path); });
    }
    int mkdir(const char* path, mode_t mode) override {
        return run("mkdir", [&] { return SystemCalls::mkdir(path, mode); });
    }
    int rmdir(const char* path) override {
        return run("rmdir", [&] { return SystemCalls::rmdir(path); });
    }
    int flock(int descriptor, int operation) override {
        return run("flock", [&] { return SystemCalls::flock(descriptor, operation); });
    }
    int listFolder(const char* path, std::vector<std::string>& names) override {
        return run("listFolder", [&] { return SystemCalls::listFolder(path, names); });
    }
    int nanosleep(const struct timespec& duration) override {
        return run("nanosleep", [&] { return SystemCalls::nanosleep(duration); });
    }
    int clockGettime(clockid_t clock, struct timespec* time) override {
        return run("clockGettime", [&] { return SystemCalls::clockGettime(clock, time); });
    }
    long sysconf(int name) override {
        return run("sysconf", [&] { return SystemCalls::sysconf(name); });
    }

private:
    template <typename Call>
    auto run(const std::string& name, const Call& call) -> decltype(call()) {
        made_.push_back(name);
        ++counts_[name];
        if (before) before(name);
        decltype(call()) result = -1;
        int error = errorForCall(name);
        if (error == 0) {
            result = call();
            error = errno;
        }
        if (after) after(name);
        errno = error;
        return result;
    }

    /// What the call just counted fails with, or 0.
    int errorForCall(const std::string& name) const {
        const auto always = always_.find(name);
        if (always != always_.end() && always->second != 0) return always->second;
        const auto planned = planned_.find({name, count(name)});
        return planned == planned_.end() ? 0 : planned->second;
    }

    std::vector<std::string> made_;
    std::map<std::string, int> counts_;
    std::map<std::pair<std::string, int>, int> planned_;
    std::map<std::string, int> always_;
};

}  // namespace vantrel::posix

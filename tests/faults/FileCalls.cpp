// The system's calls on files, in front of those of the C library for all of the process: a program's own functions
// come first wherever a library that it loads looks for them.
#include "tests/faults/FileCalls.h"

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>
#include <utility>

namespace vantrel::faults {
namespace {

struct Range {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
};

std::array<const char*, 2> watched;
std::array<Range, 4> ranges;
std::size_t rangeCount = 0;

Attack current;
Report unwanted;
Report* report = &unwanted;
bool isCounting = false;
/// The kind of call that keeps failing.
const char* kept = nullptr;
long long passed = 0;
long long pausedInStep = 0;

int noteRange(struct dl_phdr_info* object, std::size_t, void*) {
    const std::string_view name = object->dlpi_name;
    const bool isWatched = std::any_of(watched.begin(), watched.end(), [name](const char* part) {
        return part && name.find(part) != std::string_view::npos;
    });
    if (!isWatched || rangeCount == ranges.size()) return 0;
    auto& range = ranges[rangeCount++];
    range.begin = UINTPTR_MAX;
    for (int index = 0; index < object->dlpi_phnum; ++index) {
        const auto& segment = object->dlpi_phdr[index];
        if (segment.p_type != PT_LOAD) continue;
        range.begin = std::min(range.begin, object->dlpi_addr + segment.p_vaddr);
        range.end = std::max(range.end, object->dlpi_addr + segment.p_vaddr + segment.p_memsz);
    }
    return 0;
}

bool isWatched(void* caller) {
    const auto address = reinterpret_cast<std::uintptr_t>(caller);
    return std::any_of(ranges.begin(), ranges.begin() + rangeCount,
                       [address](const Range& range) { return address >= range.begin && address < range.end; });
}

/// Whether the call of that name is to be carried out, and whether it is to be said to have failed.
std::pair<bool, bool> fateOf(const char* name) {
    if (!isCounting) return {true, false};
    const bool isNow = ++report->calls == current.call;
    if (isNow && current.fault == Fault::killed) kill(getpid(), SIGKILL);
    if (isNow && current.fault == Fault::kept) kept = name;
    const bool isKept = kept && std::strcmp(kept, name) == 0;
    if (isKept || (isNow && current.fault == Fault::failed)) return {false, true};
    return {true, isNow && current.fault == Fault::misreported};
}

/// Makes the call or not, as the attack says.
template <typename Call>
auto run(void* caller, const char* name, const Call& call) -> decltype(call()) {
    if (!isWatched(caller)) return call();
    const auto [isDone, isSaidToFail] = fateOf(name);
    // A descriptor is gone whatever `close` says.
    const bool isClose = std::strcmp(name, "close") == 0;
    auto result = isDone || isClose ? call() : decltype(call()){-1};
    if (isSaidToFail) {
        result = -1;
        errno = current.error;
    }
    return result;
}

}  // namespace

void watchLibraries(const char* one, const char* other) {
    watched = {one, other};
    rangeCount = 0;
    dl_iterate_phdr(noteRange, nullptr);
}

void attack(const Attack& attack, Report& to) {
    current = attack;
    report = &to;
    kept = nullptr;
    isCounting = true;
}

void endAttack() {
    isCounting = false;
    kept = nullptr;
    beginStep();
}

void beginStep() {
    report->longestPause = std::max(report->longestPause, pausedInStep);
    pausedInStep = 0;
}

void passTime(std::chrono::nanoseconds time) {
    passed += time.count();
}

}  // namespace vantrel::faults

using namespace vantrel::faults;

/// The C library's function of that name.
#define REAL(name) reinterpret_cast<decltype(&(name))>(dlsym(RTLD_NEXT, #name))

/// Defines a function that stands before the C library's; by another name here, where that one is declared already.
#define STAND_BEFORE(result, name, parameters, arguments)                               \
    extern "C" result before_##name parameters asm(#name);                              \
    extern "C" result before_##name parameters {                                        \
        static const auto real = REAL(name);                                            \
        return run(__builtin_return_address(0), #name, [&] { return real arguments; }); \
    }

STAND_BEFORE(int, close, (int descriptor), (descriptor))
STAND_BEFORE(ssize_t, read, (int descriptor, void* buffer, std::size_t size), (descriptor, buffer, size))
STAND_BEFORE(ssize_t, write, (int descriptor, const void* buffer, std::size_t size), (descriptor, buffer, size))
STAND_BEFORE(int, fchmod, (int descriptor, mode_t mode), (descriptor, mode))
STAND_BEFORE(int, futimens, (int descriptor, const struct timespec times[2]), (descriptor, times))
STAND_BEFORE(int, utimensat, (int folder, const char* path, const struct timespec times[2], int flags),
             (folder, path, times, flags))
STAND_BEFORE(int, flock, (int descriptor, int operation), (descriptor, operation))
STAND_BEFORE(int, open64, (const char* path, int flags, mode_t mode), (path, flags, mode))
STAND_BEFORE(int, fstat64, (int descriptor, struct stat64* status), (descriptor, status))
STAND_BEFORE(int, stat64, (const char* path, struct stat64* status), (path, status))
STAND_BEFORE(int, lstat64, (const char* path, struct stat64* status), (path, status))
STAND_BEFORE(ssize_t, readlink, (const char* path, char* buffer, std::size_t size), (path, buffer, size))
STAND_BEFORE(int, mkostemp64, (char* pathTemplate, int flags), (pathTemplate, flags))
STAND_BEFORE(int, rename, (const char* from, const char* to), (from, to))
STAND_BEFORE(int, renameat2, (int fromFolder, const char* from, int toFolder, const char* to, unsigned int flags),
             (fromFolder, from, toFolder, to, flags))
STAND_BEFORE(int, link, (const char* from, const char* to), (from, to))
STAND_BEFORE(int, unlink, (const char* path), (path))
STAND_BEFORE(int, mkdir, (const char* path, mode_t mode), (path, mode))
STAND_BEFORE(int, rmdir, (const char* path), (path))

extern "C" DIR* before_opendir(const char* path) asm("opendir");
extern "C" DIR* before_opendir(const char* path) {
    static const auto real = REAL(opendir);
    DIR* folder = nullptr;
    const int told = run(__builtin_return_address(0), "opendir", [&] {
        folder = real(path);
        return folder ? 0 : -1;
    });
    if (told != 0 && folder) closedir(std::exchange(folder, nullptr));
    return folder;
}

// No one here can see what is on the disk, and flushing takes its time.
extern "C" int before_fsync(int descriptor) asm("fsync");
extern "C" int before_fsync(int descriptor) {
    struct stat64 status {};
    return run(__builtin_return_address(0), "fsync", [&] { return fstat64(descriptor, &status); });
}

extern "C" int before_nanosleep(const struct timespec* duration, struct timespec* left) asm("nanosleep");
extern "C" int before_nanosleep(const struct timespec* duration, struct timespec* left) {
    static const auto real = REAL(nanosleep);
    if (!isWatched(__builtin_return_address(0))) return real(duration, left);
    const long long length = duration->tv_sec * 1'000'000'000LL + duration->tv_nsec;
    passed += length;
    pausedInStep += length;
    return 0;
}

extern "C" int before_clock_gettime(clockid_t clock, struct timespec* time) asm("clock_gettime");
extern "C" int before_clock_gettime(clockid_t clock, struct timespec* time) {
    static const auto real = REAL(clock_gettime);
    const int told = real(clock, time);
    if (told != 0 || !isWatched(__builtin_return_address(0))) return told;
    const long long nanoseconds = time->tv_nsec + passed;
    time->tv_sec += static_cast<time_t>(nanoseconds / 1'000'000'000);
    time->tv_nsec = static_cast<long>(nanoseconds % 1'000'000'000);
    return 0;
}

#include "platform/posix/FileContents.h"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

#include "platform/posix/Descriptor.h"

namespace vantrel::posix {

ssize_t readOnce(SystemCalls& calls, int descriptor, void* buffer, std::size_t size) {
    ssize_t got = -1;
    do {
        got = calls.read(descriptor, buffer, size);
    } while (got < 0 && errno == EINTR);
    return got;
}

int writeAll(SystemCalls& calls, int descriptor, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t put = calls.write(descriptor, bytes, size);
        if (put < 0 && errno == EINTR) continue;
        if (put < 0) return -1;
        bytes += put;
        size -= static_cast<std::size_t>(put);
    }
    return 0;
}

int openToRead(SystemCalls& calls, const std::string& path, struct stat& status, int flags) {
    // Without O_NONBLOCK, opening a pipe waits for someone to write into it.
    const int descriptor = calls.open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | flags);
    if (descriptor < 0) return -1;
    int error = 0;
    if (calls.fstat(descriptor, &status) != 0) {
        error = errno;
    } else if (S_ISDIR(status.st_mode)) {
        error = EISDIR;
    } else if (!S_ISREG(status.st_mode)) {
        error = ENODEV;
    }
    if (error == 0) return descriptor;
    calls.close(descriptor);
    errno = error;
    return -1;
}

std::optional<std::string> contentsOf(SystemCalls& calls, int descriptor, const struct stat& status,
                                      std::size_t mostBytes) {
    // Read to the end rather than for the length that was told: the files of the kernel tell none.
    std::string contents;
    contents.reserve(std::min(static_cast<std::size_t>(status.st_size), mostBytes));
    while (contents.size() <= mostBytes) {
        std::array<char, 16384> buffer;
        const ssize_t got = readOnce(calls, descriptor, buffer.data(), buffer.size());
        if (got < 0) return std::nullopt;
        if (got == 0) break;
        contents.append(buffer.data(), static_cast<std::size_t>(got));
    }
    return contents;
}

std::optional<std::string> contentsOfFile(SystemCalls& calls, const std::string& path, std::size_t mostBytes) {
    struct stat status {};
    const Descriptor file(calls, openToRead(calls, path, status));
    auto contents = file.isOpen() ? contentsOf(calls, file.number(), status, mostBytes) : std::nullopt;
    return contents && contents->size() <= mostBytes ? std::move(contents) : std::nullopt;
}

bool isUnchanged(const struct stat& before, const struct stat& now) {
    const auto isSame = [](const struct timespec& one, const struct timespec& other) {
        return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
    };
    return before.st_dev == now.st_dev && before.st_ino == now.st_ino && before.st_size == now.st_size &&
           isSame(before.st_mtim, now.st_mtim) && isSame(before.st_ctim, now.st_ctim);
}

}  // namespace vantrel::posix

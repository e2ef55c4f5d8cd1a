#include "platform/posix/SystemCalls.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace vantrel::posix {

int SystemCalls::open(const char* path, int flags, mode_t mode) {
    return ::open(path, flags, mode);
}

int SystemCalls::close(int descriptor) {
    return ::close(descriptor);
}

ssize_t SystemCalls::read(int descriptor, void* buffer, std::size_t size) {
    return ::read(descriptor, buffer, size);
}

ssize_t SystemCalls::write(int descriptor, const void* buffer, std::size_t size) {
    return ::write(descriptor, buffer, size);
}

int SystemCalls::fsync(int descriptor) {
    return ::fsync(descriptor);
}

int SystemCalls::fallocate(int descriptor, off_t size) {
    return ::fallocate(descriptor, FALLOC_FL_KEEP_SIZE, 0, size);
}

int SystemCalls::syncFileRange(int descriptor, off_t offset, off_t size) {
    return ::sync_file_range(descriptor, offset, size, SYNC_FILE_RANGE_WRITE);
}

int SystemCalls::fchmod(int descriptor, mode_t mode) {
    return ::fchmod(descriptor, mode);
}

int SystemCalls::futimens(int descriptor, const struct timespec times[2]) {
    return ::futimens(descriptor, times);
}

int SystemCalls::utimensat(int folder, const char* path, const struct timespec times[2], int flags) {
    return ::utimensat(folder, path, times, flags);
}

int SystemCalls::fstat(int descriptor, struct stat* status) {
    return ::fstat(descriptor, status);
}

int SystemCalls::stat(const char* path, struct stat* status) {
    return ::stat(path, status);
}

int SystemCalls::lstat(const char* path, struct stat* status) {
    return ::lstat(path, status);
}

ssize_t SystemCalls::readlink(const char* path, char* buffer, std::size_t size) {
    return ::readlink(path, buffer, size);
}

int SystemCalls::mkostemp(char* pathTemplate) {
    const int file = ::mkostemp(pathTemplate, O_CLOEXEC);
    if (file < 0 || file > STDERR_FILENO) return file;
    const int higher = ::fcntl(file, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    ::close(file);
    return higher;
}

int SystemCalls::rename(const char* from, const char* to) {
    return ::rename(from, to);
}

int SystemCalls::renameNoReplace(const char* from, const char* to) {
    return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
}

int SystemCalls::link(const char* from, const char* to) {
    return ::link(from, to);
}

int SystemCalls::unlink(const char* path) {
    return ::unlink(path);
}

int SystemCalls::mkdir(const char* path, mode_t mode) {
    return ::mkdir(path, mode);
}

int SystemCalls::rmdir(const char* path) {
    return ::rmdir(path);
}

int SystemCalls::flock(int descriptor, int operation) {
    return ::flock(descriptor, operation);
}

int SystemCalls::listFolder(const char* path, std::vector<std::string>& names) {
    DIR* const folder = ::opendir(path);
    if (!folder) return -1;
    // The kernel allows it to the folder's owner.
    ::fcntl(::dirfd(folder), F_SETFL, O_NOATIME);
    while (const struct dirent* entry = ::readdir(folder)) names.emplace_back(entry->d_name);
    ::closedir(folder);
    return 0;
}

int SystemCalls::nanosleep(const struct timespec& duration) {
    struct timespec left = duration;
    int slept = -1;
    while ((slept = ::nanosleep(&left, &left)) != 0 && errno == EINTR) {
    }
    return slept;
}

int SystemCalls::clockGettime(clockid_t clock, struct timespec* time) {
    return ::clock_gettime(clock, time);
}

long SystemCalls::sysconf(int name) {
    return ::sysconf(name);
}

SystemCalls& SystemCalls::real() {
    static SystemCalls calls;
    return calls;
}

}  // namespace vantrel::posix

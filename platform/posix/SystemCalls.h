#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <string>
#include <vector>

namespace vantrel::posix {

/// Every system call that this folder makes on files. Each behaves as the call of its name: -1 and `errno` on
/// failure. A test derives from it to make one call fail, or to see which were made.
class SystemCalls {
public:
    virtual int open(const char* path, int flags, mode_t mode = 0);
    virtual int close(int descriptor);
    virtual ssize_t read(int descriptor, void* buffer, std::size_t size);
    virtual ssize_t write(int descriptor, const void* buffer, std::size_t size);
    virtual int fsync(int descriptor);
    /// Sets room aside for as many bytes, in one piece if there is one; the file stays as long as it is.
    virtual int fallocate(int descriptor, off_t size);
    /// Has the disk begin with the bytes that were written there, without waiting. No flush.
    virtual int syncFileRange(int descriptor, off_t offset, off_t size);
    virtual int fchmod(int descriptor, mode_t mode);
    /// Sets when an open file was last read and written, in that order.
    virtual int futimens(int descriptor, const struct timespec times[2]);
    /// The same by path, from the folder that is open as `folder`; now, without `times`.
    virtual int utimensat(int folder, const char* path, const struct timespec times[2], int flags);
    virtual int fstat(int descriptor, struct stat* status);
    virtual int stat(const char* path, struct stat* status);
    virtual int lstat(const char* path, struct stat* status);
    virtual ssize_t readlink(const char* path, char* buffer, std::size_t size);
    /// Creates and opens a file of a new name, mode 0600, close-on-exec; replaces the six X of `pathTemplate`. Its
    /// number is none of a standard stream's: where that is closed, what the program says would get into the file.
    virtual int mkostemp(char* pathTemplate);
    virtual int rename(const char* from, const char* to);
    /// Renames only if nothing stands at `to`, decided by the kernel in one step; EEXIST otherwise.
    virtual int renameNoReplace(const char* from, const char* to);
    virtual int link(const char* from, const char* to);
    virtual int unlink(const char* path);
    virtual int mkdir(const char* path, mode_t mode);
    virtual int rmdir(const char* path);
    /// Takes or frees a lock that dies with the open file.
    virtual int flock(int descriptor, int operation);
    /// Adds all names in a folder to `names`, as far as it can be read. Where the system allows it, that doesn't count
    /// as reading: the folder's new time would be one more block to flush with a new file in it.
    virtual int listFolder(const char* path, std::vector<std::string>& names);
    /// Pauses for as long, signals or not.
    virtual int nanosleep(const struct timespec& duration);
    virtual int clockGettime(clockid_t clock, struct timespec* time);
    virtual long sysconf(int name);

    /// The system itself.
    static SystemCalls& real();
};

}  // namespace vantrel::posix

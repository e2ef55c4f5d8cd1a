#include "platform/posix/PosixFiles.h"

#include <array>
#include <cerrno>
#include <filesystem>

#include "platform/posix/Descriptor.h"
#include "platform/posix/FileContents.h"
#include "platform/posix/Folders.h"
#include "platform/posix/TemporaryFile.h"

namespace vantrel::posix {

namespace {

constexpr mode_t permissionBits = S_IRWXU | S_IRWXG | S_IRWXO;

/// What went wrong, and where: `error` is an `errno`, `path` what a person has to look at.
struct Trouble {
    int error;
    std::string path;
};

std::string nameOf(const std::string& path) {
    return std::filesystem::path(path).filename().string();
}

struct Reason {
    int error;
    const char* text;
};

/// The reasons in our own words: the system's own come in the language of the process, and many are obscure.
constexpr auto reasons = std::to_array<Reason>({
    {EACCES, "permission is denied here"},
    {EBUSY, "this is in use"},
    {EDQUOT, "your share of the disk is used up here"},
    {EEXIST, "this already exists"},
    {EFBIG, "the file is too large for the disk here"},
    {EINVAL, "the disk here can’t rename without the risk of overwriting"},
    {EIO, "the disk reports an error here"},
    {EISDIR, "this is a folder"},
    {ELOOP, "too many links lead to this"},
    {EMFILE, "too many files are open to use this one"},
    {ENAMETOOLONG, "this path or a name in it is too long"},
    {ENFILE, "too many files are open to use this one"},
    {ENODEV, "this is no ordinary file"},
    {ENOENT, "this doesn’t exist"},
    {ENOMEM, "too little memory is free to use this"},
    {ENOSPC, "the disk is full here"},
    {ENOSYS, "the system can’t rename without the risk of overwriting this"},
    {ENOTDIR, "a part of this path is no folder"},
    {EPERM, "the system doesn’t permit it here"},
    {EROFS, "the disk here can only be read"},
    {EXDEV, "this is on another disk"},
});

std::string reasonFor(int error) {
    for (const auto& reason : reasons) {
        if (reason.error == error) return reason.text;
    }
    return "the system reports error " + std::to_string(error) + " here";
}

std::string sentence(const std::string& subject, const std::string& what, const Trouble& trouble) {
    return "“" + nameOf(subject) + "” couldn’t be " + what + " because " + reasonFor(trouble.error) + ": " +
           trouble.path;
}

std::string sentence(const std::string& subject, const std::string& what, const std::string& destination,
                     const Trouble& trouble) {
    return sentence(subject, what + " to “" + nameOf(folderOf(destination)) + "”", trouble);
}

/// What a move that failed with `error` is to be blamed on; the system names neither of its two paths.
Trouble troubleOfMove(SystemCalls& calls, int error, const std::string& from, const std::string& to) {
    struct stat status {};
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            return {error, calls.lstat(from.c_str(), &status) == 0 ? folderOf(to) : from};
        case EACCES:
        case EPERM:
        case EROFS:
            return {error, folderOf(from) == folderOf(to) ? folderOf(to) : folderOf(from) + " or " + folderOf(to)};
        default:
            return {error, to};
    }
}

/// Copies what is left to read of `source` into `copy`, and makes it lasting.
std::optional<Trouble> fill(SystemCalls& calls, const Descriptor& copy, const std::string& to, const Descriptor& source,
                            const std::string& from, mode_t mode) {
    std::array<char, 65536> buffer{};
    while (true) {
        const ssize_t got = readOnce(calls, source.number(), buffer.data(), buffer.size());
        if (got < 0) return Trouble{errno, from};
        if (got == 0) break;
        const auto size = static_cast<std::size_t>(got);
        if (writeAll(calls, copy.number(), buffer.data(), size) != 0) return Trouble{errno, to};
    }
    if (calls.fchmod(copy.number(), mode) != 0 || calls.fsync(copy.number()) != 0) return Trouble{errno, to};
    return std::nullopt;
}

std::optional<Trouble> copyFile(SystemCalls& calls, const std::string& from, const std::string& to) {
    struct stat status {};
    const Descriptor source(calls, openToRead(calls, from, status));
    if (!source.isOpen()) return Trouble{errno, from};

    TemporaryFile copy(calls);
    if (copy.create(folderOf(to)) != 0) return Trouble{errno, folderOf(to)};

    auto trouble = fill(calls, copy.file(), to, source, from, status.st_mode & permissionBits);
    if (!trouble && copy.renameNoReplace(to) != 0) trouble = Trouble{errno, to};
    return trouble;
}

}  // namespace

bool PosixFiles::fileExistsAtPath(const std::string& path) {
    // A version record can hold any text, which becomes part of a path; the system would read it up to its first zero.
    if (path.find('\0') != std::string::npos) return false;
    struct stat status {};
    return calls_.stat(path.c_str(), &status) == 0;
}

FileFailure PosixFiles::moveItemAtPath(const std::string& from, const std::string& to) {
    if (calls_.renameNoReplace(from.c_str(), to.c_str()) == 0) return std::nullopt;
    return sentence(from, "moved", to, troubleOfMove(calls_, errno, from, to));
}

FileFailure PosixFiles::copyItemAtPath(const std::string& from, const std::string& to) {
    const auto trouble = copyFile(calls_, from, to);
    if (!trouble) return std::nullopt;
    return sentence(from, "copied", to, *trouble);
}

FileFailure PosixFiles::removeItemAtPath(const std::string& path) {
    if (calls_.unlink(path.c_str()) == 0) return std::nullopt;
    return sentence(path, "removed", {errno, path});
}

}  // namespace vantrel::posix

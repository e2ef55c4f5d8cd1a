#include "platform/posix/PosixFiles.h"

#include <array>
#include <cerrno>

#include "platform/posix/Descriptor.h"
#include "platform/posix/FileContents.h"
#include "platform/posix/Folders.h"
#include "platform/posix/TemporaryFile.h"
#include "platform/posix/Trouble.h"

namespace vantrel::posix {

namespace {

constexpr std::size_t mostCompared = std::size_t{16} * 1024 * 1024;

constexpr mode_t permissionBits = S_IRWXU | S_IRWXG | S_IRWXO;

std::string sentence(const std::string& subject, const std::string& predicate, const std::string& destination,
                     const Trouble& trouble) {
    return sentence(subject, predicate + " to “" + nameOf(folderOf(destination)) + "”", trouble);
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

}  // namespace

bool PosixFiles::fileExistsAtPath(const std::string& path) {
    // A version record can hold any text, which becomes part of a path; the system would read it up to its first zero.
    if (path.find('\0') != std::string::npos) return false;
    struct stat status {};
    return calls_.stat(path.c_str(), &status) == 0;
}

bool PosixFiles::contentsEqualAtPath(const std::string& one, const std::string& other) {
    const auto contents = contentsOfFile(calls_, one, mostCompared);
    return contents && contents == contentsOfFile(calls_, other, mostCompared);
}

FileFailure PosixFiles::moveItemAtPath(const std::string& from, const std::string& to) {
    const auto fail = [&](const Trouble& trouble) { return sentence(from, "couldn’t be moved", to, trouble); };
    for (const auto& path : {from, to}) {
        if (const auto trouble = linkOnTheWayTo(path)) return fail(*trouble);
    }
    if (calls_.renameNoReplace(from.c_str(), to.c_str()) != 0) return fail(troubleOfMove(calls_, errno, from, to));
    const bool staysInItsFolder = folderOf(from) == folderOf(to);
    if (flush(folderOf(to)) == 0 && (staysInItsFolder || flush(folderOf(from)) == 0)) return std::nullopt;
    const Trouble trouble{errno, folderOf(to)};
    calls_.renameNoReplace(to.c_str(), from.c_str());
    return fail(trouble);
}

FileFailure PosixFiles::copyItemAtPath(const std::string& from, const std::string& to) {
    const auto trouble = copyFile(from, to);
    if (!trouble) return std::nullopt;
    return sentence(from, "couldn’t be copied", to, *trouble);
}

FileFailure PosixFiles::removeItemAtPath(const std::string& path) {
    auto trouble = linkOnTheWayTo(path);
    if (!trouble && calls_.unlink(path.c_str()) != 0) trouble = Trouble{errno, path};
    if (trouble) return sentence(path, "couldn’t be removed", *trouble);
    // What is gone can't be had back, whether it stays gone or not.
    (void)flush(folderOf(path));
    return std::nullopt;
}

/// The first link on the way from `linkFree_` to the folder of `path`, if that is below.
std::optional<Trouble> PosixFiles::linkOnTheWayTo(const std::string& path) {
    if (linkFree_.empty() || !path.starts_with(linkFree_ + '/')) return std::nullopt;
    for (auto end = path.find('/', linkFree_.size() + 1); end != std::string::npos; end = path.find('/', end + 1)) {
        const auto folder = path.substr(0, end);
        struct stat status {};
        if (calls_.lstat(folder.c_str(), &status) == 0 && S_ISLNK(status.st_mode)) return Trouble{ELOOP, folder};
    }
    return std::nullopt;
}

/// 0, or -1 and `errno`. Nothing is written through in a folder that can't be opened: whoever may only write there has
/// no way to.
int PosixFiles::flush(const std::string& folder) {
    const Descriptor descriptor(calls_, openFolder(calls_, folder));
    return descriptor.isOpen() ? flushFolder(calls_, descriptor.number()) : 0;
}

std::optional<Trouble> PosixFiles::copyFile(const std::string& from, const std::string& to) {
    if (auto trouble = linkOnTheWayTo(to)) return trouble;
    struct stat status {};
    const Descriptor source(calls_, openToRead(calls_, from, status));
    if (!source.isOpen()) return Trouble{errno, from};

    TemporaryFile copy(calls_);
    if (copy.create(folderOf(to)) != 0) return Trouble{errno, folderOf(to)};
    if (auto trouble = fill(calls_, copy.file(), to, source, from, status.st_mode & permissionBits)) return trouble;
    if (copy.renameNoReplace(to) != 0) return Trouble{errno, to};
    if (flush(folderOf(to)) == 0) return std::nullopt;
    Trouble trouble{errno, folderOf(to)};
    calls_.unlink(to.c_str());
    return trouble;
}

}  // namespace vantrel::posix

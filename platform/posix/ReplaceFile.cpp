#include "platform/posix/ReplaceFile.h"

#include <fcntl.h>

#include <array>
#include <cerrno>
#include <utility>

#include "platform/posix/FileContents.h"

namespace vantrel::posix {
namespace {

/// As many links in a row as the kernel itself follows.
constexpr int mostLinks = 40;
constexpr std::size_t longestLink = 4096;

/// The folder that `path` is in, with the slash behind it; empty for a bare name.
std::string folderOf(const std::string& path) {
    return path.substr(0, path.rfind('/') + 1);
}

/// Follows the links at `path`, so that it names the file itself or where a link says there should be one.
int followLinks(SystemCalls& calls, std::string& path) {
    for (int links = 0; links < mostLinks; ++links) {
        std::array<char, longestLink> leadsTo{};
        const ssize_t length = calls.readlink(path.c_str(), leadsTo.data(), leadsTo.size());
        if (length < 0) return errno == EINVAL || errno == ENOENT ? 0 : -1;
        if (static_cast<std::size_t>(length) == leadsTo.size()) {
            errno = ENAMETOOLONG;
            return -1;
        }
        const std::string_view next(leadsTo.data(), static_cast<std::size_t>(length));
        path = next.starts_with('/') ? std::string(next) : folderOf(path).append(next);
    }
    errno = ELOOP;
    return -1;
}

}  // namespace

FileReplacement::FileReplacement(SystemCalls& calls, std::string path) : calls_(calls), target_(std::move(path)) {}

FileReplacement::~FileReplacement() {
    const int error = errno;
    close(file_);
    close(folder_);
    if (!temporary_.empty()) calls_.unlink(temporary_.c_str());
    errno = error;
}

int FileReplacement::prepare(std::string_view bytes) {
    if (followLinks(calls_, target_) != 0) return -1;
    // Opened now, so that as little as possible can fail once the file is in its place.
    if (openFolder() != 0) return -1;
    return createAndWrite(bytes);
}

int FileReplacement::place(struct stat* status) {
    if (calls_.rename(temporary_.c_str(), target_.c_str()) != 0) return -1;
    temporary_.clear();
    // Asked after the renaming, which changes the file's times.
    if (status && calls_.fstat(file_, status) != 0) *status = {};
    close(file_);
    return 0;
}

int FileReplacement::settle() {
    const int synced = calls_.fsync(folder_);
    // Some file systems have nothing to write through for a folder.
    if (synced != 0 && errno != EINVAL) return -1;
    close(folder_);
    return 0;
}

int FileReplacement::openFolder() {
    const std::string folder = folderOf(target_);
    folder_ = calls_.open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return folder_ >= 0 ? 0 : -1;
}

int FileReplacement::createAndWrite(std::string_view bytes) {
    std::string pathTemplate = target_ + ".XXXXXX";
    file_ = calls_.mkostemp(pathTemplate.data());
    if (file_ < 0) return -1;
    temporary_ = std::move(pathTemplate);
    if (writeAll(calls_, file_, bytes.data(), bytes.size()) != 0) return -1;
    return calls_.fsync(file_);
}

void FileReplacement::close(int& descriptor) {
    // What was written is on the disk by now, so that there is nothing left for this to fail at.
    if (descriptor >= 0) calls_.close(descriptor);
    descriptor = -1;
}

int replaceFile(SystemCalls& calls, const std::string& path, std::string_view bytes) {
    FileReplacement replacement(calls, path);
    if (replacement.prepare(bytes) != 0 || replacement.place() != 0) return -1;
    return replacement.settle();
}

}  // namespace vantrel::posix

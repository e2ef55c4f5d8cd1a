#include "platform/posix/TemporaryFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <vector>

namespace vantrel::posix {
namespace {

constexpr char nameTemplate[] = ".Vantrel-unfinished-XXXXXX";
/// How often a new file may be taken for left behind before it is locked.
constexpr int mostTries = 5;

bool isLetterOrDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z');
}

bool isTemporaryName(std::string_view name) {
    const std::string_view ours = nameTemplate;
    const auto start = ours.substr(0, ours.find('X'));
    return name.size() == ours.size() && name.starts_with(start) &&
           std::all_of(name.begin() + start.size(), name.end(), isLetterOrDigit);
}

std::string inside(const std::string& folder, std::string_view name) {
    return (folder.empty() ? "." : folder) + '/' + std::string(name);
}

/// Whether the new file is ours for good: locked, and still there. Without locks on its file system nobody takes it for
/// left behind.
bool isKept(SystemCalls& calls, const Descriptor& file) {
    struct stat status {};
    if (calls.flock(file.number(), LOCK_EX | LOCK_NB) != 0) return errno != EWOULDBLOCK;
    return calls.fstat(file.number(), &status) == 0 && status.st_nlink > 0;
}

void visitIfLeft(SystemCalls& calls, const std::string& path, const std::function<void(const std::string&)>& visit) {
    const Descriptor file(calls, calls.open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || calls.fstat(file.number(), &status) != 0) return;
    if (!S_ISREG(status.st_mode) || status.st_uid != geteuid() || status.st_nlink != 1) return;
    // A shared lock is enough to learn that its writer's is gone, and network file systems give it for reading.
    if (calls.flock(file.number(), LOCK_SH | LOCK_NB) == 0) visit(path);
}

}  // namespace

TemporaryFile::~TemporaryFile() {
    const int error = errno;
    if (!path_.empty()) calls_.unlink(path_.c_str());
    errno = error;
}

int TemporaryFile::create(const std::string& folder) {
    removeLeftovers(calls_, folder);
    for (int tries = 0; tries < mostTries; ++tries) {
        std::string path = inside(folder, nameTemplate);
        file_.emplace(calls_, calls_.mkostemp(path.data()));
        if (!file_->isOpen()) return -1;
        if (isKept(calls_, *file_)) {
            path_ = std::move(path);
            return 0;
        }
        calls_.unlink(path.c_str());
    }
    errno = EAGAIN;
    return -1;
}

int TemporaryFile::rename(const std::string& path) {
    if (calls_.rename(path_.c_str(), path.c_str()) != 0) return -1;
    path_.clear();
    return 0;
}

int TemporaryFile::renameNoReplace(const std::string& path) {
    if (calls_.renameNoReplace(path_.c_str(), path.c_str()) != 0) return -1;
    path_.clear();
    return 0;
}

void visitLeftovers(SystemCalls& calls, const std::string& folder,
                    const std::function<void(const std::string& path)>& visit) {
    std::vector<std::string> names;
    if (calls.listFolder(folder.empty() ? "." : folder.c_str(), names) != 0) return;
    for (const auto& name : names) {
        if (isTemporaryName(name)) visitIfLeft(calls, inside(folder, name), visit);
    }
}

void removeLeftovers(SystemCalls& calls, const std::string& folder) {
    visitLeftovers(calls, folder, [&calls](const std::string& path) { calls.unlink(path.c_str()); });
}

}  // namespace vantrel::posix

#include "platform/posix/Folders.h"

#include <fcntl.h>

#include <cerrno>

#include "platform/posix/Descriptor.h"

namespace vantrel::posix {
namespace {

/// 0 also when it is there already.
int makeFolder(SystemCalls& calls, const std::string& path) {
    if (calls.mkdir(path.c_str(), 0700) != 0) return errno == EEXIST ? 0 : -1;
    const Descriptor above(calls, openFolder(calls, folderOf(path)));
    return above.isOpen() ? flushFolder(calls, above.number()) : -1;
}

}  // namespace

std::string folderOf(const std::string& path) {
    const auto end = path.rfind('/');
    if (end == std::string::npos) return ".";
    return path.substr(0, end == 0 ? 1 : end);
}

int makeFolders(SystemCalls& calls, const std::string& path) {
    if (makeFolder(calls, path) == 0) return 0;
    const std::string above = folderOf(path);
    if (errno != ENOENT || above.size() >= path.size()) return -1;
    return makeFolders(calls, above) == 0 ? makeFolder(calls, path) : -1;
}

int openFolder(SystemCalls& calls, const std::string& path, int flags) {
    return calls.open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags);
}

int flushFolder(SystemCalls& calls, int folder) {
    // Some file systems have nothing to write through for a folder.
    return calls.fsync(folder) == 0 || errno == EINVAL ? 0 : -1;
}

}  // namespace vantrel::posix

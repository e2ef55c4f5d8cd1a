#include "platform/posix/Folders.h"

#include <cerrno>

namespace vantrel::posix {

int makeFolders(SystemCalls& calls, const std::string& path) {
    if (calls.mkdir(path.c_str(), 0700) == 0 || errno == EEXIST) return 0;
    const auto parentEnd = path.rfind('/');
    if (errno != ENOENT || parentEnd == std::string::npos || parentEnd == 0) return -1;
    if (makeFolders(calls, path.substr(0, parentEnd)) != 0) return -1;
    return calls.mkdir(path.c_str(), 0700) == 0 || errno == EEXIST ? 0 : -1;
}

}  // namespace vantrel::posix

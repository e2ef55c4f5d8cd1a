#pragma once

#include <string>

#include "platform/posix/SystemCalls.h"

namespace vantrel::posix {

/// The folder that what `path` names is in.
std::string folderOf(const std::string& path);

/// Makes the folder at `path`, and those above it that are missing, for their user alone (mode 0700), lasting. Returns
/// 0 when it is there in the end, or -1 and `errno`.
[[nodiscard]] int makeFolders(SystemCalls& calls, const std::string& path);

/// Opens the folder at `path`; `flags` as for `open`. -1 and `errno` on failure.
int openFolder(SystemCalls& calls, const std::string& path, int flags = 0);

/// Writes through to the disk what was made, renamed or removed in an open folder. Returns 0, or -1 and `errno`.
[[nodiscard]] int flushFolder(SystemCalls& calls, int folder);

}  // namespace vantrel::posix

#pragma once

#include <string>

#include "platform/posix/SystemCalls.h"

namespace vantrel::posix {

/// Makes the folder at `path`, and those above it that are missing, for their user alone (mode 0700). Returns 0 when it
/// is there in the end, or -1 and `errno`.
int makeFolders(SystemCalls& calls, const std::string& path);

}  // namespace vantrel::posix

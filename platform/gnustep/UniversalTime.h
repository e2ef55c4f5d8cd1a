#pragma once

#include <chrono>
#include <string>

namespace vantrel::gnustep {

/// "2024-02-29T23:59:59Z", as property lists have it.
std::string universalTime(std::chrono::sys_seconds time);

}  // namespace vantrel::gnustep

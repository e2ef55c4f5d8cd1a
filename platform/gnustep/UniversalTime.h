#pragma once

#include <chrono>
#include <string>

namespace vantrel::gnustep {

/// "2024-02-29T23:59:59Z", as property lists have it. For years from 0 to 9999; a later one has more digits.
std::string universalTime(std::chrono::sys_seconds time);

}  // namespace vantrel::gnustep

#include "platform/apple/AppleProcessors.h"

#include <sys/sysctl.h>

#include <cstddef>

namespace vantrel::apple {

std::int32_t AppleProcessors::physicalCPUCount() {
    std::int32_t count = 0;
    std::size_t size = sizeof count;
    if (sysctlbyname("hw.physicalcpu", &count, &size, nullptr, 0) != 0) return 0;
    return count;
}

}  // namespace vantrel::apple

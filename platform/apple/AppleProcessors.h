#pragma once

#include "platform/Processors.h"

namespace vantrel::apple {

/// Asks the kernel for "hw.physicalcpu".
class AppleProcessors : public Processors {
public:
    std::int32_t physicalCPUCount() override;
};

}  // namespace vantrel::apple

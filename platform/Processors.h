#pragma once

#include <cstdint>

namespace vantrel {

/// The machine's processors.
class Processors {
public:
    virtual ~Processors() = default;

    /// The number of physical cores, hyper-threads not counted; 0 when the system doesn't tell.
    virtual std::int32_t physicalCPUCount() = 0;
};

}  // namespace vantrel

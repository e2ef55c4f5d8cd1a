#pragma once

#include <cstdint>

namespace vantrel {

/// The machine's processors.
class Processors {
public:
    /// The number of physical cores, hyper-threads not counted; 0 when the system doesn't tell.
    virtual std::int32_t physicalCPUCount() = 0;

protected:
    ~Processors() = default;
};

}  // namespace vantrel

#pragma once

#include <string>

#include "platform/Processors.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel::linux {

/// Processors on Linux, as the kernel's device tree tells them.
class SysfsProcessors : public Processors {
public:
    /// `root` is the folder of the list "online" and of the folders "cpu0", "cpu1" and so on.
    explicit SysfsProcessors(std::string root = "/sys/devices/system/cpu",
                             posix::SystemCalls& calls = posix::SystemCalls::real())
        : root_(std::move(root)), calls_(calls) {}

    /// Counts the cores of the processors that are online now: those with the same package and core are threads of
    /// one. A processor for which the kernel knows no package or no core (it tells -1, on virtual machines and small
    /// boards) is taken for a core of its own. One that tells nothing isn't counted: it went offline meanwhile, or
    /// the folder can't be read.
    std::int32_t physicalCPUCount() override;

private:
    std::string root_;
    posix::SystemCalls& calls_;
};

}  // namespace vantrel::linux

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
    /// one. A processor that tells no package or no core is taken for a core of its own: the kernel knows none (it
    /// tells -1, on virtual machines and small boards), or its files can't be read. Where the list itself can't be
    /// read, the number of processors online stands in: rather too many than a limit that is lowered for no reason. 0
    /// when the system doesn't tell that either.
    std::int32_t physicalCPUCount() override;

private:
    std::string root_;
    posix::SystemCalls& calls_;
};

}  // namespace vantrel::linux

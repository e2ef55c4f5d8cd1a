#include <gtest/gtest.h>
#include <sys/sysctl.h>

#include <cstring>
#include <string>

#include "platform/apple/AppleProcessors.h"

namespace {

/// The kernel's answer to the next question, and what it was asked.
struct Kernel {
    std::int32_t answer = 0;
    bool fails = false;
    std::string name;
    std::size_t size = 0;
    bool wasChanged = false;
} kernel;

}  // namespace

extern "C" int sysctlbyname(const char* name, void* oldValue, size_t* oldSize, void* newValue, size_t newSize) {
    kernel.name = name;
    kernel.size = *oldSize;
    kernel.wasChanged = newValue != nullptr || newSize != 0;
    if (kernel.fails) {
        // A value that doesn't fit is cut, and the call fails all the same.
        std::memset(oldValue, 0xFF, *oldSize);
        return -1;
    }
    std::memcpy(oldValue, &kernel.answer, sizeof kernel.answer);
    *oldSize = sizeof kernel.answer;
    return 0;
}

namespace vantrel::apple {
namespace {

struct AppleProcessorsTest : testing::Test {
    AppleProcessorsTest() { kernel = {}; }
    AppleProcessors processors;
};

TEST_F(AppleProcessorsTest, TheCountIsTheKernelsAnswer) {
    kernel.answer = 12;
    EXPECT_EQ(processors.physicalCPUCount(), 12);
}

TEST_F(AppleProcessorsTest, TheKernelIsAskedForPhysicalCoresInFourBytes) {
    processors.physicalCPUCount();
    EXPECT_EQ(kernel.name, "hw.physicalcpu");
    EXPECT_EQ(kernel.size, 4U);
    EXPECT_FALSE(kernel.wasChanged);
}

TEST_F(AppleProcessorsTest, WhereTheKernelDoesNotTellTheCountIsZero) {
    kernel.fails = true;
    EXPECT_EQ(processors.physicalCPUCount(), 0);
}

}  // namespace
}  // namespace vantrel::apple

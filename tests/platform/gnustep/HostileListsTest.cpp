#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <new>

#include "tests/platform/gnustep/HostileLists.h"

namespace {

/// What this process has allocated.
struct Allocations {
    std::size_t bytes = 0;
    std::size_t mostBytes = 0;
    std::size_t count = 0;

    void* allocated(void* memory) {
        bytes += malloc_usable_size(memory);
        mostBytes = std::max(mostBytes, bytes);
        ++count;
        return memory;
    }

    void* allocate(std::size_t size) { return allocated(std::malloc(size)); }

    void release(void* memory) {
        bytes -= malloc_usable_size(memory);
        std::free(memory);
    }
} allocations;

}  // namespace

void* operator new(std::size_t size) {
    return allocations.allocate(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocations.allocate(size);
}

void operator delete(void* memory) noexcept {
    allocations.release(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    allocations.release(memory);
}

namespace vantrel::gnustep {
namespace {

struct Cost {
    std::string name;
    std::size_t size;
    /// At most, beside the list's own.
    std::size_t bytes;
    std::size_t allocations;
    std::clock_t processorTime;
};

Cost costOfReading(const std::string& name, const std::string& bytes) {
    std::string contents = bytes;
    const auto time = std::clock();
    const auto count = allocations.count;
    const auto before = allocations.bytes;
    allocations.mostBytes = before;
    {
        PropertyList list;
        if (list.take(contents)) list.value("a");
    }
    return {name, bytes.size(), allocations.mostBytes - before, allocations.count - count, std::clock() - time};
}

/// What it costs to read each list when it is as large as a list may be.
const std::vector<Cost>& costs() {
    static const auto all = [] {
        std::vector<Cost> costs;
        HostileLists(largestPropertyList - 1000).forEach([&](const std::string& name, const std::string& list) {
            costs.push_back(costOfReading(name, list));
        });
        return costs;
    }();
    return all;
}

TEST(HostileLists, NoneIsTooLargeToBeRead) {
    for (const auto& cost : costs()) EXPECT_LE(cost.size, largestPropertyList) << cost.name;
}

TEST(HostileLists, EachIsReadOrRefusedWithin64MegabytesBesideIt) {
    for (const auto& cost : costs()) EXPECT_LT(cost.bytes, 64'000'000U) << cost.name;
}

TEST(HostileLists, EachIsReadOrRefusedWithAnAllocationForEveryFourBytesAtMost) {
    for (const auto& cost : costs()) EXPECT_LT(cost.allocations, largestPropertyList / 4) << cost.name;
}

TEST(HostileLists, NoneTakesLongerThanThirtyPlainOnes) {
    const auto& all = costs();
    const auto plain = std::find_if(all.begin(), all.end(), [](const Cost& cost) { return cost.name == "Plain"; });
    ASSERT_NE(plain, all.end());
    for (const auto& cost : all) EXPECT_LT(cost.processorTime, 30 * plain->processorTime) << cost.name;
}

}  // namespace
}  // namespace vantrel::gnustep

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <new>
#include <string>
#include <utility>

#include "platform/gnustep/CachedPropertyList.h"
#include "tests/platform/gnustep/HostileLists.h"
#include "tests/platform/posix/SystemCallsWithOwnClock.h"
#include "tests/platform/posix/TemporaryFolder.h"

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

/// What a look at a file of a million bytes leaves allocated, and then one at a small list in its place.
std::pair<std::size_t, std::size_t> keptOf(const std::string& start, const std::string& end) {
    const posix::TemporaryFolder folder;
    posix::SystemCallsWithOwnClock calls;
    CachedPropertyList file(calls, folder / "list");
    const auto before = allocations.bytes;
    const auto lookAt = [&](const std::string& bytes) {
        folder.write("list", bytes);
        file.refresh();
    };
    lookAt(start + std::string(1'000'000, 'x') + end);
    const auto large = allocations.bytes - before;
    lookAt("<dict><key>a</key><true/></dict>");
    return {large, allocations.bytes - before};
}

TEST(CachedPropertyListMemory, AListIsKeptOnceHoweverItIsWritten) {
    for (const auto* declaration : {"<?xml version=\"1.0\" encoding=\"UTF-8\"?>", "<?xml version='1.0'?>"}) {
        const auto [large, small] = keptOf(std::string(declaration) + "<dict><key>a</key><string>", "</string></dict>");
        EXPECT_LT(large, 1'500'000U) << declaration;
        EXPECT_LT(small, 500'000U) << declaration;
    }
}

TEST(CachedPropertyListMemory, DamageIsForgottenWithTheFileThatHadIt) {
    const auto [large, small] = keptOf("<dict>", "");
    EXPECT_LT(large, 1'500'000U);
    EXPECT_LT(small, 500'000U);
}

TEST(HostileLists, NoChangeTakesLongerThanThirtyReadings) {
    constexpr int times = 100'000;
    std::string entries;
    for (const auto* key : {"z", "a"}) {
        for (int count = 0; count < times; ++count) entries.append("<key>").append(key).append("</key><true/>");
    }
    PropertyListChanges changes;
    changes.set("a", false);
    changes.set("z", false);

    const auto start = std::clock();
    auto list = PropertyList::parse("<dict>" + entries + "</dict>");
    const auto isRead = std::clock();
    ASSERT_TRUE(list);
    list->make(list->updateFor(changes).value());
    EXPECT_LT(std::clock() - isRead, 30 * (isRead - start));
    EXPECT_EQ(list->bytes(), "<dict><key>z</key><false/><key>a</key><false/></dict>");
}

TEST(PropertyListMemory, AListThatGrowsALittleTakesALittleMore) {
    std::string bytes = "<dict><key>a</key><string>" + std::string(1'000'000, 'x') + "</string></dict>";
    bytes.shrink_to_fit();
    const auto before = allocations.bytes - bytes.capacity();
    auto list = PropertyList::parse(std::move(bytes));
    ASSERT_TRUE(list);
    PropertyListChanges changes;
    changes.set("b", true);
    list->make(list->updateFor(changes).value());
    EXPECT_LT(allocations.bytes - before, 1'500'000U);
}

}  // namespace
}  // namespace vantrel::gnustep

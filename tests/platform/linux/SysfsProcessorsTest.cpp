#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <memory>
#include <set>

#include "platform/linux/SysfsProcessors.h"
#include "tests/platform/posix/FaultySystemCalls.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::linux {
namespace {

/// A folder like /sys/devices/system/cpu.
struct ProcessorTree : testing::Test {
    posix::TemporaryFolder root;

    void online(const std::string& list) { root.write("online", list); }

    void processor(int number, const std::string& package, const std::string& core) {
        const std::string topology = "cpu" + std::to_string(number) + "/topology";
        root.makeFolder(topology);
        root.write(topology + "/physical_package_id", package);
        root.write(topology + "/core_id", core);
    }

    std::int32_t count() { return SysfsProcessors(root.path, calls).physicalCPUCount(); }

    /// A machine of seven processors online.
    struct SevenOnline : posix::FaultySystemCalls {
        long sysconf(int name) override { return name == _SC_NPROCESSORS_ONLN ? 7 : -1; }
    };
    SevenOnline calls;
};

using SysfsProcessorsTest = ProcessorTree;

TEST_F(SysfsProcessorsTest, EveryCoreOfOnePackageCounts) {
    online("0-3\n");
    for (int core = 0; core < 4; ++core) processor(core, "0\n", std::to_string(core) + "\n");
    EXPECT_EQ(count(), 4);
}

TEST_F(SysfsProcessorsTest, TheThreadsOfACoreCountOnce) {
    online("0-3\n");
    processor(0, "0\n", "0\n");
    processor(1, "0\n", "1\n");
    processor(2, "0\n", "0\n");
    processor(3, "0\n", "1\n");
    EXPECT_EQ(count(), 2);
}

TEST_F(SysfsProcessorsTest, CoresOfTheSameNumberInTwoPackagesCountTwice) {
    online("0-1\n");
    processor(0, "0\n", "0\n");
    processor(1, "1\n", "0\n");
    EXPECT_EQ(count(), 2);
}

TEST_F(SysfsProcessorsTest, ProcessorsThatAreOfflineDoNotCount) {
    online("0,2\n");
    for (int core = 0; core < 4; ++core) processor(core, "0\n", std::to_string(core) + "\n");
    EXPECT_EQ(count(), 2);
}

TEST_F(SysfsProcessorsTest, AListOfRangesAndSingleNumbersIsUnderstood) {
    online("0-3,8,10-11\n");
    for (int core = 0; core < 12; ++core) processor(core, "0\n", std::to_string(core) + "\n");
    EXPECT_EQ(count(), 7);
}

TEST_F(SysfsProcessorsTest, AListNeedsNoLineEnd) {
    online("0");
    processor(0, "0", "0");
    EXPECT_EQ(count(), 1);
}

TEST_F(SysfsProcessorsTest, MoreThanThirtyTwoCoresAreToldAsTheyAre) {
    online("0-39\n");
    for (int core = 0; core < 40; ++core) processor(core, "0\n", std::to_string(core) + "\n");
    EXPECT_EQ(count(), 40);
}

TEST_F(SysfsProcessorsTest, WithoutAPackageEveryProcessorIsACore) {
    online("0-2\n");
    for (int core = 0; core < 3; ++core) processor(core, "-1\n", "0\n");
    EXPECT_EQ(count(), 3);
}

TEST_F(SysfsProcessorsTest, WithoutACoreNumberEveryProcessorIsACore) {
    online("0-2\n");
    for (int core = 0; core < 3; ++core) processor(core, "0\n", "-1\n");
    EXPECT_EQ(count(), 3);
}

TEST_F(SysfsProcessorsTest, AProcessorThatTellsNothingIsACore) {
    online("0-2\n");
    processor(0, "0\n", "0\n");
    processor(1, "0\n", "0\n");
    EXPECT_EQ(count(), 2);
}

TEST_F(SysfsProcessorsTest, AProcessorWhoseFilesCantBeReadIsACore) {
    online("0-1\n");
    processor(0, "0\n", "0\n");
    processor(1, "0\n", "0\n");
    ASSERT_EQ(count(), 1);
    for (const int nth : {2, 3, 4, 5}) {
        calls.failNth("open", nth, EACCES);
        EXPECT_EQ(count(), 2) << "open number " << nth;
    }
}

TEST_F(SysfsProcessorsTest, WithoutTheListTheProcessorsOnlineStandIn) {
    processor(0, "0\n", "0\n");
    EXPECT_EQ(count(), 7);
}

TEST_F(SysfsProcessorsTest, AnUnreadableListIsNone) {
    online("0\n");
    processor(0, "0\n", "0\n");
    calls.fail("read", EIO);
    EXPECT_EQ(count(), 7);
}

TEST_F(SysfsProcessorsTest, ASystemThatTellsNothingHasNone) {
    posix::FaultySystemCalls failing;
    failing.failEvery("sysconf", EINVAL);
    EXPECT_EQ(SysfsProcessors(root.path + "/missing", failing).physicalCPUCount(), 0);
}

class MalformedList : public ProcessorTree, public testing::WithParamInterface<const char*> {};

TEST_P(MalformedList, IsNone) {
    online(GetParam());
    for (int core = 0; core < 4; ++core) processor(core, "0\n", std::to_string(core) + "\n");
    EXPECT_EQ(count(), 7);
}

INSTANTIATE_TEST_SUITE_P(SysfsProcessors, MalformedList,
                         testing::Values("", "\n", "all\n", "0-\n", "-1\n", "3-0\n", "0,3-1\n", "0,\n", ",0\n", "0 1\n",
                                         "0-1-2\n", "0-3\n\n", "0x3\n", "99999999999999999999\n", "0-2147483647\n"));

class MalformedIdentifier : public ProcessorTree, public testing::WithParamInterface<const char*> {};

TEST_P(MalformedIdentifier, IsNone) {
    online("0-2\n");
    processor(0, "0\n", GetParam());
    processor(1, "0\n", "1\n");
    processor(2, "0\n", "1\n");
    EXPECT_EQ(count(), 2);
}

INSTANTIATE_TEST_SUITE_P(SysfsProcessors, MalformedIdentifier,
                         testing::Values("", "\n", "one\n", "0 0\n", "99999999999999999999\n"));

/// The cores of this machine as lscpu counts them: its lines read "core,socket" behind comments.
std::size_t coresThatLscpuLists() {
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen("lscpu --parse=CORE,SOCKET", "r"), &pclose);
    if (!output) return 0;
    std::set<std::string> cores;
    std::array<char, 256> line{};
    while (fgets(line.data(), static_cast<int>(line.size()), output.get())) {
        if (line[0] != '#') cores.insert(line.data());
    }
    return cores.size();
}

TEST(SysfsProcessorsOfThisMachine, AreAsManyAsLscpuLists) {
    const auto expected = coresThatLscpuLists();
    ASSERT_GT(expected, 0U);
    EXPECT_EQ(static_cast<std::size_t>(SysfsProcessors().physicalCPUCount()), expected);
}

}  // namespace
}  // namespace vantrel::linux

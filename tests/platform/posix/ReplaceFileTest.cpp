#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <string>

#include "platform/posix/ReplaceFile.h"
#include "tests/platform/posix/FaultySystemCalls.h"
#include "tests/platform/posix/Processes.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::posix {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

/// A folder that holds the file "own" and nothing else.
struct ReplaceFileTest : testing::Test {
    ReplaceFileTest() { folder.write("own", "old"); }

    int replace(const std::string& name) { return replaceFile(calls, folder / name, "new content"); }

    void makeLink(const std::string& leadsTo, const std::string& name) {
        ASSERT_EQ(symlink(leadsTo.c_str(), (folder / name).c_str()), 0);
    }

    bool isLink(const std::string& name) {
        struct stat status {};
        return lstat((folder / name).c_str(), &status) == 0 && S_ISLNK(status.st_mode);
    }

    TemporaryFolder folder;
    FaultySystemCalls calls;
};

TEST_F(ReplaceFileTest, TheFileHoldsTheNewContentAndNothingElseStays) {
    EXPECT_EQ(replace("own"), 0);
    EXPECT_EQ(folder.read("own"), "new content");
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

TEST_F(ReplaceFileTest, AFileThatIsMissingIsMade) {
    EXPECT_EQ(replace("fresh"), 0);
    EXPECT_EQ(folder.read("fresh"), "new content");
}

TEST_F(ReplaceFileTest, OnlyItsUserMayReadIt) {
    ASSERT_EQ(chmod((folder / "own").c_str(), 0644), 0);
    ASSERT_EQ(replace("own"), 0);
    struct stat status {};
    ASSERT_EQ(stat((folder / "own").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
}

TEST_F(ReplaceFileTest, TheContentIsOnTheDiskBeforeTheNameAndTheNameBeforeTheEnd) {
    ASSERT_EQ(replace("own"), 0);
    std::vector<std::string> order;
    for (const auto& name : calls.made()) {
        if (name == "write" || name == "fsync" || name == "rename") order.push_back(name);
    }
    EXPECT_THAT(order, ElementsAre("write", "fsync", "rename", "fsync"));
}

/// 600 kB in pieces of which none ends where the disk begins with what there is.
struct LongFileTest : ReplaceFileTest {
    int replaceByPieces() {
        FileReplacement replacement(calls, folder / "own");
        const std::string_view whole = content;
        const std::array pieces{whole.substr(0, 1000), whole.substr(1000, 499'000), whole.substr(500'000)};
        if (replacement.prepare(pieces) != 0 || replacement.place() != 0) return -1;
        return replacement.settle();
    }

    const std::string content = std::string(300'000, 'a') + std::string(300'000, 'b');
};

TEST_F(LongFileTest, TheDiskIsBusyWithItsBeginningWhileItsEndIsWritten) {
    ASSERT_EQ(replaceByPieces(), 0);
    std::vector<std::string> order;
    for (const auto& name : calls.made()) {
        const bool counts = name == "fallocate" || name == "write" || name == "syncFileRange" || name == "fsync";
        if (counts && (order.empty() || order.back() != name)) order.push_back(name);
    }
    EXPECT_THAT(order, ElementsAre("fallocate", "write", "syncFileRange", "write", "syncFileRange", "write",
                                   "syncFileRange", "write", "fsync"));
}

TEST_F(LongFileTest, TheDiskBeginsWithEachPartOnce) {
    struct NotingCalls : FaultySystemCalls {
        int syncFileRange(int descriptor, off_t offset, off_t size) override {
            EXPECT_EQ(offset, end);
            end = offset + size;
            return FaultySystemCalls::syncFileRange(descriptor, offset, size);
        }
        off_t end = 0;
    } noting;
    ASSERT_EQ(replaceFile(noting, folder / "own", content), 0);
    EXPECT_GT(noting.end, 0);
    EXPECT_LE(noting.end, static_cast<off_t>(content.size()));
}

TEST_F(ReplaceFileTest, AShortFileIsWrittenWithoutAnyOfThis) {
    ASSERT_EQ(replace("own"), 0);
    EXPECT_EQ(calls.count("fallocate") + calls.count("syncFileRange"), 0);
}

TEST_F(LongFileTest, ItIsWhole) {
    calls.mostBytesAtOnce = 100'000;
    ASSERT_EQ(replaceByPieces(), 0);
    EXPECT_EQ(folder.read("own"), content);
}

TEST_F(LongFileTest, WhereTheDiskCantBeginEarlierItIsWholeAllTheSame) {
    calls.failEvery("fallocate", EOPNOTSUPP);
    calls.failEvery("syncFileRange", EINVAL);
    ASSERT_EQ(replaceByPieces(), 0);
    EXPECT_EQ(folder.read("own"), content);
}

TEST_F(ReplaceFileTest, ManyShortWritesMakeOneWholeFile) {
    calls.mostBytesAtOnce = 1;
    calls.failNth("write", 3, EINTR);
    EXPECT_EQ(replace("own"), 0);
    EXPECT_EQ(folder.read("own"), "new content");
}

TEST_F(ReplaceFileTest, ALinkStaysAndItsFileIsReplaced) {
    folder.makeFolder("elsewhere");
    folder.write("elsewhere/file", "old");
    makeLink(folder / "elsewhere/file", "link");
    EXPECT_EQ(replace("link"), 0);
    EXPECT_TRUE(isLink("link"));
    EXPECT_EQ(folder.read("elsewhere/file"), "new content");
}

TEST_F(ReplaceFileTest, AChainOfRelativeLinksIsFollowed) {
    folder.makeFolder("a/b");
    makeLink("a/second", "first");
    makeLink("b/third", "a/second");
    makeLink("../../own", "a/b/third");
    EXPECT_EQ(replace("first"), 0);
    EXPECT_EQ(folder.read("own"), "new content");
    EXPECT_TRUE(isLink("first") && isLink("a/second") && isLink("a/b/third"));
}

TEST_F(ReplaceFileTest, ALinkToNothingMakesTheFileItLeadsTo) {
    folder.makeFolder("elsewhere");
    makeLink("elsewhere/file", "link");
    EXPECT_EQ(replace("link"), 0);
    EXPECT_EQ(folder.read("elsewhere/file"), "new content");
    EXPECT_TRUE(isLink("link"));
}

TEST_F(ReplaceFileTest, ALinkIntoAFolderThatIsMissingFails) {
    makeLink("nowhere/file", "link");
    EXPECT_EQ(replace("link"), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_TRUE(isLink("link"));
}

TEST_F(ReplaceFileTest, LinksInACircleFail) {
    makeLink("two", "one");
    makeLink("one", "two");
    EXPECT_EQ(replace("one"), -1);
    EXPECT_EQ(errno, ELOOP);
}

TEST_F(ReplaceFileTest, ALinkThatIsNotToBeFollowedIsReplacedItself) {
    folder.makeFolder("elsewhere");
    folder.write("elsewhere/file", "old");
    makeLink("elsewhere/file", "link");
    FileReplacement replacement(calls, folder / "link", Links::replaced);
    ASSERT_EQ(replacement.prepare("new content"), 0);
    ASSERT_EQ(replacement.place(), 0);
    EXPECT_FALSE(isLink("link"));
    EXPECT_EQ(folder.read("link"), "new content");
    EXPECT_EQ(folder.read("elsewhere/file"), "old");
}

TEST_F(ReplaceFileTest, WhereNothingMayBeAFileThatCameMeanwhileStays) {
    FileReplacement replacement(calls, folder / "fresh");
    ASSERT_EQ(replacement.prepare("new content"), 0);
    folder.write("fresh", "another's");
    EXPECT_EQ(replacement.place(nullptr, InPlace::nothing), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(folder.read("fresh"), "another's");
}

TEST_F(ReplaceFileTest, WhereTheDiskCantTellThatNothingIsThereTheNewFileComesAllTheSame) {
    for (const int error : {EINVAL, ENOSYS}) {
        FileReplacement replacement(calls, folder / "fresh");
        ASSERT_EQ(replacement.prepare("new content"), 0);
        calls.fail("renameNoReplace", error);
        EXPECT_EQ(replacement.place(nullptr, InPlace::nothing), 0);
        EXPECT_EQ(folder.read("fresh"), "new content");
    }
}

/// The `status` of a file that was placed and then, within the same tick of the clock, changed by `change`.
struct AsMadeTest : ReplaceFileTest {
    bool isAsMade(const std::function<void()>& change) {
        FileReplacement replacement(calls, folder / "own");
        EXPECT_EQ(replacement.prepare("new content"), 0);
        EXPECT_EQ(replacement.place(), 0);
        change();
        struct stat status {};
        EXPECT_EQ(stat((folder / "own").c_str(), &status), 0);
        return replacement.isAsMade(status);
    }
};

TEST_F(AsMadeTest, AFileThatNobodyChangedIsAsMade) {
    EXPECT_TRUE(isAsMade([] {}));
}

TEST_F(AsMadeTest, AFileThatAnyoneWroteIntoIsNot) {
    for (int round = 0; round < 100; ++round) {
        EXPECT_FALSE(isAsMade([&] { folder.write("own", "new content"); }));
    }
}

TEST_F(AsMadeTest, AFileWhoseTimeCouldntBeSetIsNot) {
    calls.fail("futimens", EPERM);
    EXPECT_FALSE(isAsMade([] {}));
    calls.fail("clockGettime", EINVAL);
    EXPECT_FALSE(isAsMade([] {}));
}

TEST_F(ReplaceFileTest, AFolderIsNotReplaced) {
    folder.makeFolder("in the way");
    EXPECT_EQ(replace("in the way"), -1);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "in the way"));
}

TEST_F(ReplaceFileTest, AFolderWithNothingToWriteThroughIsNoFailure) {
    calls.failNth("fsync", 2, EINVAL);
    EXPECT_EQ(replace("own"), 0);
}

/// Removing what others left, the lock that keeps them from removing ours, the second try that a look at it costs, the
/// time by which later changes are told, and what makes a long file faster.
bool canBeDoneWithout(const std::string& call) {
    return call == "close" || call == "listFolder" || call == "flock" || call == "fstat" || call == "clockGettime" ||
           call == "futimens" || call == "fallocate" || call == "syncFileRange";
}

struct ReplaceFileBySizeTest : ReplaceFileTest, testing::WithParamInterface<std::size_t> {
    const std::string content = std::string(GetParam(), 'n');
};

INSTANTIATE_TEST_SUITE_P(ShortAndLong, ReplaceFileBySizeTest, testing::Values(10, 300'000));

TEST_P(ReplaceFileBySizeTest, WhateverFailsTheFileIsWholeAndNothingElseStays) {
    FaultySystemCalls counted;
    ASSERT_EQ(replaceFile(counted, folder / "own", content), 0);
    folder.write("own", "old");
    std::map<std::string, int> seen;
    for (const auto& name : counted.made()) {
        const int nth = ++seen[name];
        FaultySystemCalls failing;
        failing.failNth(name, nth, EIO);
        const int replaced = replaceFile(failing, folder / "own", content);

        const bool isPlaced = canBeDoneWithout(name) || (name == "fsync" && nth == 2);
        EXPECT_EQ(replaced, canBeDoneWithout(name) ? 0 : -1) << name << ' ' << nth;
        EXPECT_TRUE(folder.read("own") == (isPlaced ? content : "old")) << name << ' ' << nth;
        EXPECT_THAT(folder.names(), UnorderedElementsAre("own")) << name << ' ' << nth;
        folder.write("own", "old");
    }
}

TEST_P(ReplaceFileBySizeTest, WheneverItIsKilledTheFileIsWholeAndTheNextOneLeavesNothingElse) {
    const auto replace = [&](SystemCalls& killing) { (void)replaceFile(killing, folder / "own", content); };
    std::size_t number = 0;
    for (; killedBeforeCall(number, replace); ++number) {
        const auto held = folder.read("own");
        EXPECT_TRUE(held == "old" || held == content) << number;
        ASSERT_EQ(replaceFile(calls, folder / "own", "old"), 0);
        EXPECT_THAT(folder.names(), UnorderedElementsAre("own")) << number;
    }
    EXPECT_GE(number, 8U);
}

TEST_F(ReplaceFileTest, AFullDiskHalfWayLeavesTheOldFile) {
    calls.mostBytesAtOnce = 4;
    calls.failNth("write", 2, ENOSPC);
    EXPECT_EQ(replace("own"), -1);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_EQ(folder.read("own"), "old");
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

}  // namespace
}  // namespace vantrel::posix

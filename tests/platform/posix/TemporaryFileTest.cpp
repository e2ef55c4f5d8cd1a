#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/TemporaryFile.h"
#include "tests/platform/posix/FaultySystemCalls.h"
#include "tests/platform/posix/Processes.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::posix {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::UnorderedElementsAre;

struct TemporaryFileTest : testing::Test {
    /// What a process leaves that is killed while it has a temporary file. Returns the file's name.
    std::string leave() {
        const auto before = folder.names();
        EXPECT_TRUE(killedBeforeCall(0, [&](SystemCalls& calls) {
            TemporaryFile file(SystemCalls::real());
            if (file.create(folder.path) == 0) calls.fsync(file.file().number());
        }));
        for (const auto& name : folder.names()) {
            if (!before.contains(name)) return name;
        }
        ADD_FAILURE() << "nothing was left";
        return {};
    }

    std::set<std::string> namesAfterCleaning() {
        removeLeftovers(calls, folder.path);
        return folder.names();
    }

    TemporaryFolder folder;
    FaultySystemCalls calls;
};

TEST_F(TemporaryFileTest, IsHiddenEmptyAndForItsUserAlone) {
    TemporaryFile file(calls);
    ASSERT_EQ(file.create(folder.path), 0);
    EXPECT_THAT(folder.names(), ElementsAre(MatchesRegex("\\.Vantrel-unfinished-[a-zA-Z0-9]{6}")));
    struct stat status {};
    ASSERT_EQ(fstat(file.file().number(), &status), 0);
    EXPECT_EQ(status.st_size, 0);
    EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
}

TEST_F(TemporaryFileTest, NeverHasTheNumberOfAStandardStreamThatIsClosed) {
    const int kept = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    TemporaryFile file(calls);
    const int created = file.create(folder.path);
    dup2(kept, STDIN_FILENO);
    close(kept);
    ASSERT_EQ(created, 0);
    EXPECT_GT(file.file().number(), STDERR_FILENO);
}

TEST_F(TemporaryFileTest, IsGoneAtTheEndUnlessItWasRenamed) {
    {
        TemporaryFile dropped(calls);
        ASSERT_EQ(dropped.create(folder.path), 0);
        TemporaryFile renamed(calls);
        ASSERT_EQ(renamed.create(folder.path), 0);
        EXPECT_EQ(renamed.rename(folder / "own"), 0);
    }
    EXPECT_THAT(folder.names(), ElementsAre("own"));
}

TEST_F(TemporaryFileTest, TakesTheNameFromWhatHasItOnlyWhenAskedTo) {
    folder.write("own", "old");
    TemporaryFile file(calls);
    ASSERT_EQ(file.create(folder.path), 0);
    EXPECT_EQ(file.renameNoReplace(folder / "own"), -1);
    EXPECT_EQ(errno, EEXIST);
    EXPECT_EQ(folder.read("own"), "old");
    EXPECT_EQ(file.rename(folder / "own"), 0);
    EXPECT_EQ(folder.read("own"), "");
}

TEST_F(TemporaryFileTest, TheNextOneRemovesWhatAKilledProcessLeft) {
    leave();
    leave();
    TemporaryFile file(calls);
    ASSERT_EQ(file.create(folder.path), 0);
    EXPECT_EQ(folder.names().size(), 1U);
}

TEST_F(TemporaryFileTest, OneThatIsBeingWrittenStays) {
    TemporaryFile mine(calls);
    ASSERT_EQ(mine.create(folder.path), 0);
    EXPECT_EQ(namesAfterCleaning().size(), 1U);
    EXPECT_EQ(endOf(startProcess([&] { return namesAfterCleaning().size() == 1; })), 0);
    EXPECT_EQ(mine.rename(folder / "own"), 0);
}

TEST_F(TemporaryFileTest, NamesThatAreOnlyLikeOursStay) {
    const std::set<std::string> names{".Vantrel-unfinished-",          ".Vantrel-unfinished-abc",
                                      ".Vantrel-unfinished-abcdefg",   ".Vantrel-unfinished-abc.ef",
                                      ".Vantrel-unfinished-abcde~",    "Vantrel-unfinished-abcdef",
                                      ".vantrel-unfinished-abcdef",    ".Vantrel-abcdef",
                                      "com.vantrel.codec.plist.backup"};
    for (const auto& name : names) folder.write(name, "");
    EXPECT_EQ(namesAfterCleaning(), names);
}

TEST_F(TemporaryFileTest, WhatIsNoFileStaysWhateverItsName) {
    folder.write("own", "");
    folder.makeFolder(".Vantrel-unfinished-folder");
    ASSERT_EQ(mkfifo((folder / ".Vantrel-unfinished-pipe00").c_str(), 0600), 0);
    ASSERT_EQ(symlink("own", (folder / ".Vantrel-unfinished-link00").c_str()), 0);
    ASSERT_EQ(symlink("nowhere", (folder / ".Vantrel-unfinished-link01").c_str()), 0);
    const auto before = folder.names();
    EXPECT_EQ(namesAfterCleaning(), before);
}

TEST_F(TemporaryFileTest, AFileWithASecondNameStays) {
    const auto name = leave();
    ASSERT_EQ(link((folder / name).c_str(), (folder / "second").c_str()), 0);
    EXPECT_THAT(namesAfterCleaning(), UnorderedElementsAre(name, "second"));
    ASSERT_EQ(unlink((folder / "second").c_str()), 0);
    EXPECT_THAT(namesAfterCleaning(), IsEmpty());
}

/// Every file belongs to somebody else.
struct OtherOwner : SystemCalls {
    int fstat(int descriptor, struct stat* status) override {
        const int told = SystemCalls::fstat(descriptor, status);
        ++status->st_uid;
        return told;
    }
};

TEST_F(TemporaryFileTest, AFileOfAnotherUserStays) {
    const auto name = leave();
    OtherOwner others;
    removeLeftovers(others, folder.path);
    EXPECT_THAT(folder.names(), ElementsAre(name));
}

TEST_F(TemporaryFileTest, WhatCantBeLookedAtStaysAndStopsNothing) {
    const auto name = leave();
    for (const char* call : {"listFolder", "open", "fstat", "flock", "unlink"}) {
        SCOPED_TRACE(call);
        calls.fail(call, EIO);
        EXPECT_THAT(namesAfterCleaning(), ElementsAre(name));
    }
    calls.fail("open", EACCES);
    TemporaryFile file(calls);
    EXPECT_EQ(file.create(folder.path), 0);
}

TEST_F(TemporaryFileTest, LookingForThemLeavesTheFoldersTimeOfReading) {
    const struct timespec old { 1'000'000'000, 0 };
    const struct timespec times[] {
        old, { 0, UTIME_NOW }
    };
    ASSERT_EQ(utimensat(AT_FDCWD, folder.path.c_str(), times, 0), 0);
    removeLeftovers(calls, folder.path);
    struct stat status {};
    ASSERT_EQ(stat(folder.path.c_str(), &status), 0);
    EXPECT_EQ(status.st_atim.tv_sec, old.tv_sec);
}

TEST_F(TemporaryFileTest, OneThatIsTakenForLeftBehindBeforeItIsLockedIsMadeAgain) {
    calls.before = [&](const std::string& name) {
        if (name == "flock" && calls.count("flock") == 1) removeLeftovers(SystemCalls::real(), folder.path);
    };
    TemporaryFile file(calls);
    ASSERT_EQ(file.create(folder.path), 0);
    EXPECT_EQ(file.rename(folder / "own"), 0);
    EXPECT_THAT(folder.names(), ElementsAre("own"));
}

TEST_F(TemporaryFileTest, OneThatIsJustBeingTakenForLeftBehindIsMadeAgain) {
    calls.fail("flock", EWOULDBLOCK);
    TemporaryFile file(calls);
    ASSERT_EQ(file.create(folder.path), 0);
    EXPECT_EQ(calls.count("mkostemp"), 2);
    EXPECT_EQ(folder.names().size(), 1U);
}

TEST_F(TemporaryFileTest, SomebodyWhoAlwaysComesInBetweenEndsInAFailure) {
    calls.failEvery("flock", EWOULDBLOCK);
    TemporaryFile file(calls);
    EXPECT_EQ(file.create(folder.path), -1);
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(TemporaryFileTest, AFileSystemWithoutLocksCostsTheCleaningAndNothingElse) {
    const auto name = leave();
    calls.failEvery("flock", EOPNOTSUPP);
    TemporaryFile file(calls);
    ASSERT_EQ(file.create(folder.path), 0);
    EXPECT_EQ(file.rename(folder / "own"), 0);
    EXPECT_THAT(folder.names(), UnorderedElementsAre(name, "own"));
}

TEST_F(TemporaryFileTest, InAFolderThatIsMissingThereIsNone) {
    TemporaryFile file(calls);
    EXPECT_EQ(file.create(folder / "nowhere"), -1);
    EXPECT_EQ(errno, ENOENT);
}

}  // namespace
}  // namespace vantrel::posix

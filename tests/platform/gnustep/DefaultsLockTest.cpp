#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "platform/gnustep/DefaultsLock.h"
#include "tests/platform/posix/SystemCallsWithOwnClock.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::gnustep {
namespace {

/// A defaults folder, and its lock as a process sees it that waits only in its own time.
struct DefaultsLockTest : testing::Test {
    bool isTaken() { return std::filesystem::exists(folder / lockName); }
    /// Makes the lock `seconds` after the time it is for `lock`.
    void takeAsAnother(time_t seconds = 0) {
        folder.makeFolder(lockName);
        auto time = calls.now();
        time.tv_sec += seconds;
        const struct timespec times[] = {time, time};
        ASSERT_EQ(utimensat(AT_FDCWD, (folder / lockName).c_str(), times, 0), 0);
    }
    void freeAsAnother() { std::filesystem::remove(folder / lockName); }

    const std::string lockName = ".lck/.GNUstepDefaults.lck";
    posix::TemporaryFolder folder;
    posix::SystemCallsWithOwnClock calls;
    DefaultsLock lock{calls, folder.path};
};

TEST_F(DefaultsLockTest, ItIsAFolderWhereGNUstepHasIt) {
    EXPECT_TRUE(lock.take());
    EXPECT_TRUE(std::filesystem::is_directory(folder / lockName));
}

TEST_F(DefaultsLockTest, ReleasingFreesIt) {
    ASSERT_TRUE(lock.take());
    lock.release();
    EXPECT_FALSE(isTaken());
}

TEST_F(DefaultsLockTest, ItIsFreeAtTheEndOfItsScope) {
    {
        DefaultsLock scoped(calls, folder.path);
        ASSERT_TRUE(scoped.take());
    }
    EXPECT_FALSE(isTaken());
}

TEST_F(DefaultsLockTest, OneThatWasNeverTakenFreesNothing) {
    takeAsAnother();
    { const DefaultsLock scoped(calls, folder.path); }
    EXPECT_TRUE(isTaken());
}

TEST_F(DefaultsLockTest, AMissingDefaultsFolderIsMadeForItsUserAlone) {
    DefaultsLock deep(calls, folder / "GNUstep/Defaults");
    EXPECT_TRUE(deep.take());
    EXPECT_EQ(std::filesystem::status(folder / "GNUstep/Defaults").permissions(), std::filesystem::perms::owner_all);
}

TEST_F(DefaultsLockTest, OneThatAnotherHoldsIsWaitedFor) {
    takeAsAnother();
    calls.before = [this](const std::string& name) {
        if (name == "nanosleep" && calls.count("nanosleep") == 3) freeAsAnother();
    };
    EXPECT_TRUE(lock.take());
    EXPECT_EQ(calls.count("nanosleep"), 3);
}

TEST_F(DefaultsLockTest, OneThatIsOlderThanTwentySecondsIsBrokenAtOnce) {
    takeAsAnother();
    calls.pass(20.5);
    EXPECT_TRUE(lock.take());
    EXPECT_EQ(calls.count("nanosleep"), 0);
}

TEST_F(DefaultsLockTest, OneThatIsNineteenSecondsOldIsWaitedFor) {
    takeAsAnother();
    calls.pass(19);
    EXPECT_TRUE(lock.take());
    EXPECT_GE(calls.secondsSlept(), 1);
    EXPECT_LE(calls.secondsSlept(), 1.2);
}

TEST_F(DefaultsLockTest, OneFromTheFutureIsBrokenWhenItWasWatchedForTwentySeconds) {
    takeAsAnother(1'000'000);
    EXPECT_TRUE(lock.take());
    EXPECT_GE(calls.secondsSlept(), 20);
    EXPECT_LE(calls.secondsSlept(), 21);
}

TEST_F(DefaultsLockTest, OneThatGoesFromHandToHandIsGivenUp) {
    takeAsAnother();
    calls.before = [&](const std::string& name) {
        if (name != "nanosleep") return;
        freeAsAnother();
        takeAsAnother();
    };
    EXPECT_FALSE(lock.take());
    EXPECT_TRUE(isTaken());
    EXPECT_GE(calls.secondsSlept(), 30);
    EXPECT_LE(calls.secondsSlept(), 31);
}

TEST_F(DefaultsLockTest, AnOldOneThatCantBeBrokenIsGivenUpAtOnce) {
    takeAsAnother();
    calls.pass(21);
    calls.failEvery("rmdir", EACCES);
    EXPECT_FALSE(lock.take());
    EXPECT_EQ(calls.count("nanosleep"), 0);
}

TEST_F(DefaultsLockTest, AFolderThatCantBeWrittenIsGivenUpAtOnce) {
    for (const int error : {EACCES, EROFS, ENOSPC}) {
        calls.failEvery("mkdir", error);
        EXPECT_FALSE(lock.take());
    }
    EXPECT_EQ(calls.count("nanosleep"), 0);
}

TEST_F(DefaultsLockTest, OneThatAnotherBrokeAndTookIsNotFreed) {
    ASSERT_TRUE(lock.take());
    // Another one in between, so that the next has another number, and its own time.
    std::filesystem::rename(folder / lockName, folder / "broken");
    takeAsAnother();
    lock.release();
    EXPECT_TRUE(isTaken());
}

}  // namespace
}  // namespace vantrel::gnustep

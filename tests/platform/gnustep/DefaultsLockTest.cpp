#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/gnustep/DefaultsLock.h"
#include "tests/platform/posix/SystemCallsWithOwnClock.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::gnustep {
namespace {

constexpr double longestWait = 1.5;

/// A defaults folder, and its lock as a process sees it that waits only in its own time.
struct DefaultsLockTest : testing::Test {
    /// What is done before and after a call is the test's, and the lock outlives that.
    ~DefaultsLockTest() override { calls.before = calls.after = nullptr; }

    /// With the patience of one click.
    bool take(DefaultsLock& which) {
        posix::Patience patience(calls, longestWait);
        return which.take(patience) == 0;
    }
    bool take() { return take(lock); }

    bool isTaken() { return std::filesystem::exists(folder / lockName); }
    ino_t number() {
        struct stat status {};
        EXPECT_EQ(lstat((folder / lockName).c_str(), &status), 0);
        return status.st_ino;
    }
    /// Makes the lock `seconds` after the time it is for `lock`.
    void takeAsAnother(time_t seconds = 0) {
        folder.makeFolder(lockName);
        setTime(lockName, seconds);
    }
    /// Sets when a folder was changed, in seconds from the time it is for `lock`.
    void setTime(const std::string& name, time_t seconds) {
        auto time = calls.now();
        time.tv_sec += seconds;
        const struct timespec times[] = {time, time};
        ASSERT_EQ(utimensat(AT_FDCWD, (folder / name).c_str(), times, 0), 0);
    }
    void freeAsAnother() { std::filesystem::remove(folder / lockName); }
    /// Another breaks the lock that stands there and takes its own, which has another number.
    void breakAsAnother() {
        std::filesystem::rename(folder / lockName, folder / "broken");
        takeAsAnother();
    }

    bool isAside() { return std::filesystem::exists(std::filesystem::symlink_status(folder / asideName)); }
    /// Nothing is left beside what was put aside.
    bool isTidy() { return std::filesystem::remove(folder / asideName) && std::filesystem::is_empty(folder / ".lck"); }

    const std::string lockName = ".lck/.GNUstepDefaults.lck";
    const std::string asideName = ".lck/.Vantrel-free";
    posix::TemporaryFolder folder;
    posix::SystemCallsWithOwnClock calls;
    DefaultsLock lock{calls, folder.path};
};

TEST_F(DefaultsLockTest, ItIsAFolderWhereGNUstepHasIt) {
    EXPECT_TRUE(take());
    EXPECT_TRUE(std::filesystem::is_directory(folder / lockName));
    EXPECT_EQ(lock.path(), folder / lockName);
}

TEST_F(DefaultsLockTest, ReleasingFreesIt) {
    ASSERT_TRUE(take());
    lock.release();
    EXPECT_FALSE(isTaken());
}

TEST_F(DefaultsLockTest, ItIsFreeAtTheEndOfItsScope) {
    {
        DefaultsLock scoped(calls, folder.path);
        ASSERT_TRUE(take(scoped));
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
    EXPECT_TRUE(take(deep));
    EXPECT_EQ(std::filesystem::status(folder / "GNUstep/Defaults").permissions(), std::filesystem::perms::owner_all);
}

TEST_F(DefaultsLockTest, AFolderThatCantBeWrittenIsGivenUpAtOnce) {
    for (const int error : {EACCES, EROFS, ENOSPC}) {
        calls.failEvery("mkdir", error);
        EXPECT_FALSE(take());
        EXPECT_EQ(errno, error);
    }
    EXPECT_EQ(calls.count("nanosleep"), 0);
}

// Putting aside

TEST_F(DefaultsLockTest, TheNextProcessTakesWhatOneHasPutAside) {
    ASSERT_TRUE(take());
    lock.release();
    const auto made = calls.count("mkdir");
    DefaultsLock another(calls, folder.path);
    EXPECT_TRUE(take(another));
    EXPECT_TRUE(isTaken());
    EXPECT_FALSE(isAside());
    EXPECT_EQ(calls.count("mkdir"), made);
}

TEST_F(DefaultsLockTest, WhatWasPutAsideIsGoneAtTheEnd) {
    {
        DefaultsLock scoped(calls, folder.path);
        for (int taken = 0; taken < 2; ++taken) {
            ASSERT_TRUE(take(scoped));
            scoped.release();
        }
        EXPECT_TRUE(isAside());
    }
    EXPECT_FALSE(isAside());
}

TEST_F(DefaultsLockTest, WhatAProcessThatDiedLeftAsideIsGoneAtTheEndOfTheNext) {
    folder.makeFolder(asideName);
    {
        DefaultsLock scoped(calls, folder.path);
        ASSERT_TRUE(take(scoped));
    }
    EXPECT_FALSE(isAside());
}

TEST_F(DefaultsLockTest, OneThatWasNeverTakenLeavesWhatAnotherHasPutAside) {
    folder.makeFolder(asideName);
    { const DefaultsLock scoped(calls, folder.path); }
    EXPECT_TRUE(isAside());
}

TEST_F(DefaultsLockTest, TheEndOfOneDoesntKeepAnotherFromTakingIt) {
    {
        DefaultsLock scoped(calls, folder.path);
        ASSERT_TRUE(take(scoped));
        scoped.release();
        ASSERT_TRUE(take());
        lock.release();
    }
    EXPECT_TRUE(take());
    EXPECT_TRUE(isTaken());
}

TEST_F(DefaultsLockTest, WhatStoodAsideForAnHourIsAsYoungAsANewOneFromTheMomentItIsTaken) {
    folder.makeFolder(asideName);
    setTime(asideName, -3600);
    calls.after = [this](const std::string& name) {
        if (name != "renameNoReplace") return;
        EXPECT_GE(std::filesystem::last_write_time(folder / lockName),
                  std::filesystem::last_write_time(folder / "new"));
    };
    folder.makeFolder("new");
    EXPECT_TRUE(take());
    EXPECT_EQ(calls.count("renameNoReplace"), 1);
}

TEST_F(DefaultsLockTest, WhatCantBeMadeYoungIsNotTaken) {
    folder.makeFolder(asideName);
    calls.failEvery("utimensat", EPERM);
    EXPECT_TRUE(take());
    EXPECT_TRUE(isAside());
}

TEST_F(DefaultsLockTest, WhereEveryRenamingOverwritesANewOneIsMade) {
    calls.failEvery("renameNoReplace", EINVAL);
    for (int taken = 0; taken < 2; ++taken) {
        EXPECT_TRUE(take());
        EXPECT_TRUE(isTaken());
        lock.release();
        EXPECT_FALSE(isTaken());
    }
    EXPECT_TRUE(isTidy());
}

TEST_F(DefaultsLockTest, OneThatAnotherHoldsStaysThoughOneIsAside) {
    folder.makeFolder(asideName);
    takeAsAnother();
    const auto others = number();
    EXPECT_FALSE(take());
    EXPECT_EQ(number(), others);
    EXPECT_EQ(calls.count("mkdir"), 0);
}

TEST_F(DefaultsLockTest, WhatSomebodyPutInThatPlaceIsNeverTheLockUnlessItIsAFolder) {
    folder.makeFolder(".lck");
    folder.makeFolder("elsewhere");
    setTime("elsewhere", -3600);
    const auto time = std::filesystem::last_write_time(folder / "elsewhere");
    const std::vector<std::function<void(const std::string&)>> plants{
        [&](const std::string&) { folder.write(asideName, ""); },
        [](const std::string& path) { std::filesystem::create_symlink("nowhere", path); },
        [&](const std::string& path) { std::filesystem::create_directory_symlink(folder / "elsewhere", path); }};
    for (const auto& plant : plants) {
        plant(folder / asideName);
        DefaultsLock scoped(calls, folder.path);
        for (int taken = 0; taken < 2; ++taken) {
            EXPECT_TRUE(take(scoped));
            EXPECT_TRUE(std::filesystem::is_directory(std::filesystem::symlink_status(folder / lockName)));
            scoped.release();
            EXPECT_FALSE(isTaken());
        }
        EXPECT_EQ(std::filesystem::last_write_time(folder / "elsewhere"), time);
        EXPECT_TRUE(isTidy());
    }
}

TEST_F(DefaultsLockTest, WhatSomebodyPutIntoTheOneAsideStays) {
    folder.makeFolder(asideName + "/somebody's");
    {
        DefaultsLock scoped(calls, folder.path);
        EXPECT_TRUE(take(scoped));
    }
    EXPECT_FALSE(isTaken());
    EXPECT_TRUE(std::filesystem::exists(folder / (asideName + "/somebody's")));
}

TEST_F(DefaultsLockTest, WhereSomethingCameInThatPlaceMeanwhileItIsRemoved) {
    ASSERT_TRUE(take());
    folder.makeFolder(asideName + "/somebody's");
    lock.release();
    EXPECT_FALSE(isTaken());
    EXPECT_TRUE(std::filesystem::exists(folder / (asideName + "/somebody's")));
}

// Waiting

TEST_F(DefaultsLockTest, OneThatAnotherHoldsIsWaitedFor) {
    takeAsAnother();
    calls.before = [this](const std::string& name) {
        if (name == "nanosleep" && calls.count("nanosleep") == 3) freeAsAnother();
    };
    EXPECT_TRUE(take());
    EXPECT_EQ(calls.count("nanosleep"), 3);
}

TEST_F(DefaultsLockTest, OneThatStandsIsWaitedForAsLongAsThePatienceLasts) {
    takeAsAnother();
    EXPECT_FALSE(take());
    EXPECT_EQ(errno, EBUSY);
    EXPECT_GE(calls.secondsSlept(), longestWait);
    EXPECT_LE(calls.secondsSlept(), longestWait + 0.01);
    EXPECT_TRUE(isTaken());
}

TEST_F(DefaultsLockTest, OneThatWasWaitedForInVainIsNotWaitedForAgain) {
    takeAsAnother();
    ASSERT_FALSE(take());
    const auto slept = calls.secondsSlept();
    EXPECT_FALSE(take());
    EXPECT_EQ(errno, EBUSY);
    EXPECT_EQ(calls.secondsSlept(), slept);
}

TEST_F(DefaultsLockTest, TheNextOneInItsPlaceIsWaitedForAgain) {
    takeAsAnother();
    ASSERT_FALSE(take());
    const auto slept = calls.secondsSlept();
    breakAsAnother();
    EXPECT_FALSE(take());
    EXPECT_GE(calls.secondsSlept(), slept + longestWait);
}

TEST_F(DefaultsLockTest, OneThatGoesFromHandToHandIsGivenUp) {
    takeAsAnother();
    calls.before = [&](const std::string& name) {
        if (name != "nanosleep" || calls.count(name) % 100 != 0) return;
        freeAsAnother();
        takeAsAnother();
    };
    EXPECT_FALSE(take());
    EXPECT_TRUE(isTaken());
    EXPECT_LE(calls.secondsSlept(), longestWait + 0.01);
}

TEST_F(DefaultsLockTest, AllThatShareAPatienceWaitNoLongerTogether) {
    posix::Patience patience(calls, longestWait);
    for (int taken = 0; taken < 5; ++taken) {
        takeAsAnother();
        EXPECT_EQ(lock.take(patience), -1);
        breakAsAnother();
        std::filesystem::remove(folder / "broken");
        freeAsAnother();
    }
    EXPECT_LE(calls.secondsSlept(), longestWait + 0.01);
}

// Breaking

TEST_F(DefaultsLockTest, OneThatIsOlderThanTwentySecondsIsBrokenAtOnce) {
    takeAsAnother();
    calls.pass(20.5);
    EXPECT_TRUE(take());
    EXPECT_EQ(calls.count("nanosleep"), 0);
    lock.release();
    EXPECT_TRUE(isTidy());
}

TEST_F(DefaultsLockTest, OneThatIsNineteenSecondsOldIsWaitedFor) {
    takeAsAnother();
    calls.pass(19);
    EXPECT_TRUE(take());
    EXPECT_GE(calls.secondsSlept(), 1);
    EXPECT_LE(calls.secondsSlept(), 1.1);
}

TEST_F(DefaultsLockTest, OneThatWasGivenUpIsBrokenOnceItIsOld) {
    takeAsAnother();
    ASSERT_FALSE(take());
    calls.pass(20);
    EXPECT_TRUE(take());
}

TEST_F(DefaultsLockTest, OneFromTheFutureIsBrokenWhenItWasWatchedForTwentySeconds) {
    takeAsAnother(1'000'000);
    ASSERT_FALSE(take());
    calls.pass(18);
    ASSERT_FALSE(take());
    calls.pass(2);
    EXPECT_TRUE(take());
}

TEST_F(DefaultsLockTest, OneWhoseAgeNoClockTellsIsNotBroken) {
    takeAsAnother();
    calls.pass(30);
    calls.failEvery("clockGettime", EIO);
    EXPECT_FALSE(take());
    EXPECT_TRUE(isTaken());
}

TEST_F(DefaultsLockTest, AnOldOneWithSomethingInItIsBroken) {
    takeAsAnother();
    folder.write(lockName + "/somebody's", "");
    calls.pass(30);
    EXPECT_TRUE(take());
}

TEST_F(DefaultsLockTest, AnOldOneThatCantBeBrokenIsWaitedForOnceAndNotAgain) {
    takeAsAnother();
    calls.pass(21);
    calls.failEvery("rename", EACCES);
    EXPECT_FALSE(take());
    const auto slept = calls.secondsSlept();
    EXPECT_FALSE(take());
    EXPECT_EQ(calls.secondsSlept(), slept);
}

TEST_F(DefaultsLockTest, OfTwoThatBreakAnOldOneTheSecondLeavesTheFirstOnesAlone) {
    // The first one comes when the second has seen how old the lock is: before its next call, or the one after that.
    for (const std::string at : {"open", "flock"}) {
        takeAsAnother();
        calls.pass(30);
        DefaultsLock first(calls, folder.path);
        bool hasCome = false;
        ino_t firstOnes = 0;
        calls.before = [&](const std::string& name) {
            if (name != at || std::exchange(hasCome, true)) return;
            EXPECT_TRUE(take(first));
            firstOnes = number();
        };
        EXPECT_FALSE(take()) << at;
        calls.before = nullptr;
        EXPECT_EQ(number(), firstOnes) << at;
        first.release();
        EXPECT_TRUE(isTidy()) << at;
    }
}

TEST_F(DefaultsLockTest, ANewOneIsPutBackWhereAProgramThatLocksNothingBrokeTheOldOneAtTheLastMoment) {
    takeAsAnother();
    calls.pass(30);
    ino_t othersNew = 0;
    calls.before = [&](const std::string& name) {
        if (name != "rename" || othersNew != 0) return;
        breakAsAnother();
        othersNew = number();
    };
    EXPECT_FALSE(take());
    EXPECT_EQ(number(), othersNew);
}

TEST_F(DefaultsLockTest, OneThatAnotherIsBreakingIsLeftToIt) {
    takeAsAnother();
    calls.pass(30);
    calls.failEvery("flock", EWOULDBLOCK);
    EXPECT_FALSE(take());
    EXPECT_EQ(calls.count("rename"), 0);
    EXPECT_TRUE(isTaken());
}

TEST_F(DefaultsLockTest, WhereNoFolderCanBeLockedAnOldOneIsBrokenAllTheSame) {
    takeAsAnother();
    calls.pass(30);
    calls.failEvery("flock", ENOLCK);
    EXPECT_TRUE(take());
}

TEST_F(DefaultsLockTest, WhatABreakerLeftThatDiedIsGoneWithTheNextOneThatIsBroken) {
    folder.makeFolder(".lck/.Vantrel-broken");
    takeAsAnother();
    calls.pass(30);
    EXPECT_TRUE(take());
    lock.release();
    EXPECT_TRUE(isTidy());
}

// Our own

TEST_F(DefaultsLockTest, OneThatAnotherBrokeAndTookIsNotFreed) {
    ASSERT_TRUE(take());
    breakAsAnother();
    lock.release();
    EXPECT_TRUE(isTaken());
}

TEST_F(DefaultsLockTest, OneThatCouldntBeLookedAtIsFreed) {
    calls.failEvery("lstat", EIO);
    ASSERT_TRUE(take());
    lock.release();
    EXPECT_FALSE(isTaken());
}

TEST_F(DefaultsLockTest, OneThatAnotherMadeYoungerJustAfterItWasTakenIsFreed) {
    ASSERT_TRUE(take());
    setTime(lockName, 1);
    lock.release();
    EXPECT_FALSE(isTaken());
}

TEST_F(DefaultsLockTest, OneThatWasTakenSecondsLaterIsNotFreedThoughItHasTheSameNumber) {
    for (const time_t seconds : {4, -4}) {
        ASSERT_TRUE(take());
        setTime(lockName, seconds);
        lock.release();
        EXPECT_TRUE(isTaken());
        freeAsAnother();
    }
}

TEST_F(DefaultsLockTest, OneThatIsGoneIsNotReachedForSoThatTheNextOnesStays) {
    ASSERT_TRUE(take());
    freeAsAnother();
    const auto renamed = calls.count("rename");
    lock.release();
    EXPECT_EQ(calls.count("rename"), renamed);
}

TEST_F(DefaultsLockTest, OneThatCouldntBeFreedIsFreedTheNextTime) {
    ASSERT_TRUE(take());
    calls.fail("rename", EIO);
    calls.fail("rmdir", EIO);
    lock.release();
    ASSERT_TRUE(isTaken());
    lock.release();
    EXPECT_FALSE(isTaken());
}

TEST_F(DefaultsLockTest, OneThatCouldntBeFreedIsStillHeldWhenItIsTakenAgain) {
    ASSERT_TRUE(take());
    for (const auto* call : {"rename", "rmdir"}) calls.failEvery(call, EIO);
    lock.release();
    EXPECT_TRUE(take());
    EXPECT_EQ(calls.count("nanosleep"), 0);
    for (const auto* call : {"rename", "rmdir"}) calls.failEvery(call, 0);
    lock.release();
    EXPECT_FALSE(isTaken());
}

TEST_F(DefaultsLockTest, OneThatCouldntBeFreedAndThatAnotherBrokeIsTheOthers) {
    ASSERT_TRUE(take());
    for (const auto* call : {"rename", "rmdir"}) calls.fail(call, EIO);
    lock.release();
    breakAsAnother();
    EXPECT_FALSE(take());
    lock.release();
    EXPECT_TRUE(isTaken());
}

}  // namespace
}  // namespace vantrel::gnustep

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "platform/gnustep/GNUstepPreferences.h"
#include "platform/memory/Journal.h"
#include "platform/memory/MemorySystem.h"
#include "tests/platform/gnustep/PropertyListTesting.h"
#include "tests/platform/posix/SystemCallsWithOwnClock.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::gnustep {
namespace {

using testing::AnyOf;
using testing::Eq;
using testing::UnorderedElementsAre;

constexpr std::string_view appID = "com.vantrel.codec";
const std::string fileName = "com.vantrel.codec.plist";

const std::string oldFile = listOf("<key>data</key><data>AA==</data><key>look</key><false/>");
const std::string newFile = listOf("<key>data</key><data>AA==</data><key>look</key><true/>");

/// A defaults folder with an old file in it; each attempt writes "look" as true and synchronises.
struct Attempt {
    Attempt() {
        folder.makeFolder(".lck");
        folder.write(fileName, oldFile);
    }

    bool write(bool look = true) {
        preferences.setAppValue("look", look, appID);
        return preferences.synchronize(appID);
    }

    bool looksTrue() {
        const auto value = preferences.copyAppValue("look", appID);
        const auto* flag = std::get_if<bool>(&value);
        return flag && *flag;
    }

    posix::TemporaryFolder folder;
    memory::Journal journal;
    memory::MemoryLog log{journal};
    posix::SystemCallsWithOwnClock calls;
    GNUstepPreferences preferences{folder.path, log, calls};
};

/// The calls that one undisturbed attempt makes.
std::vector<std::string> callsOfAnAttempt() {
    Attempt attempt;
    EXPECT_TRUE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), newFile);
    return attempt.calls.made();
}

/// A lock that was left behind is broken in time.
void expectNoLockInTheWay(Attempt& attempt) {
    EXPECT_TRUE(attempt.write(false));
    EXPECT_EQ(attempt.folder.read(fileName), oldFile);
    EXPECT_TRUE(std::filesystem::is_empty(attempt.folder / ".lck"));
}

/// What must hold after an attempt that failed: nothing lost here, nothing broken there, and all is well the next time.
void expectRecovery(Attempt& attempt, bool saidItWasDone) {
    const auto file = attempt.folder.read(fileName);
    EXPECT_THAT(file, AnyOf(Eq(oldFile), Eq(newFile)));
    if (saidItWasDone) {
        EXPECT_EQ(file, newFile);
    }
    EXPECT_TRUE(attempt.looksTrue());
    EXPECT_THAT(attempt.folder.names(), UnorderedElementsAre(".lck", fileName));
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(attempt.folder.read(fileName), newFile);
    EXPECT_TRUE(attempt.looksTrue());
    EXPECT_TRUE(attempt.journal.lines().empty());
    expectNoLockInTheWay(attempt);
}

TEST(GNUstepPreferencesFaults, WhicheverCallFailsTheFileIsWholeAndTheValuesReachItTheNextTime) {
    std::map<std::string, int> seen;
    for (const auto& name : callsOfAnAttempt()) {
        const int nth = ++seen[name];
        for (const int error : {EIO, ENOSPC, EACCES}) {
            SCOPED_TRACE(name + " number " + std::to_string(nth) + " fails with error " + std::to_string(error));
            Attempt attempt;
            attempt.calls.failNth(name, nth, error);
            expectRecovery(attempt, attempt.write());
        }
    }
}

TEST(GNUstepPreferencesFaults, WhicheverCallFailsForAWhileTheValuesReachTheFileAfterIt) {
    const auto made = callsOfAnAttempt();
    for (const auto& name : std::set<std::string>(made.begin(), made.end())) {
        // A lock that can't be removed keeps only the next writer waiting.
        if (name == "rmdir") continue;
        SCOPED_TRACE(name + " fails");
        Attempt attempt;
        attempt.calls.failEvery(name, EIO);
        const bool done = attempt.write() && attempt.preferences.synchronize(appID);
        const bool canBeDoneWithout = name == "close" || name == "stat" || name == "scandir" || name == "flock";
        EXPECT_TRUE(canBeDoneWithout || !done);
        attempt.calls.failEvery(name, 0);
        expectRecovery(attempt, done);
    }
}

TEST(GNUstepPreferencesFaults, AFullDiskHalfWayLeavesTheOldFile) {
    Attempt attempt;
    attempt.calls.mostBytesAtOnce = 100;
    attempt.calls.failNth("write", 2, ENOSPC);
    EXPECT_FALSE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), oldFile);
    expectRecovery(attempt, false);
}

TEST(GNUstepPreferencesFaults, ShortReadsAndWritesThatAreInterruptedMakeAWholeFile) {
    Attempt attempt;
    attempt.calls.mostBytesAtOnce = 3;
    attempt.calls.failNth("write", 5, EINTR);
    attempt.calls.failNth("read", 5, EINTR);
    EXPECT_TRUE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), newFile);
}

TEST(GNUstepPreferencesFaults, AFileThatCantBeReadIsNeverReplaced) {
    for (const int error : {EACCES, EIO, EMFILE}) {
        Attempt attempt;
        attempt.calls.failEvery("open", error);
        EXPECT_TRUE(std::holds_alternative<Absent>(attempt.preferences.copyAppValue("data", appID)));
        EXPECT_FALSE(attempt.write());
        EXPECT_EQ(attempt.folder.read(fileName), oldFile);
        attempt.calls.failEvery("open", 0);
        expectRecovery(attempt, false);
    }
}

TEST(GNUstepPreferencesFaults, AFileThatBreaksOffWithAnErrorIsNeverReplaced) {
    Attempt attempt;
    attempt.calls.mostBytesAtOnce = 50;
    attempt.calls.failEvery("read", EIO);
    EXPECT_FALSE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), oldFile);
}

TEST(GNUstepPreferencesFaults, AFolderThatCantBeWrittenCostsOnlyTheFile) {
    Attempt attempt;
    attempt.calls.failEvery("mkdir", EROFS);
    EXPECT_FALSE(attempt.write());
    EXPECT_FALSE(attempt.write());
    EXPECT_TRUE(attempt.looksTrue());
    attempt.calls.failEvery("mkdir", 0);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(attempt.folder.read(fileName), newFile);
}

TEST(GNUstepPreferencesFaults, ARenamingThatWasNotWrittenThroughIsDoneAgainThoughNothingChanged) {
    Attempt attempt;
    attempt.calls.failNth("fsync", 2, EIO);
    EXPECT_FALSE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), newFile);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(attempt.calls.count("rename"), 2);
    EXPECT_EQ(attempt.calls.count("fsync"), 4);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(attempt.calls.count("rename"), 2);
}

TEST(GNUstepPreferencesFaults, WhereverTheProcessDiesTheFileIsOldOrNewAndTheNextOneCanWrite) {
    const auto calls = callsOfAnAttempt().size();
    int oldFiles = 0;
    for (std::size_t last = 0; last < calls; ++last) {
        SCOPED_TRACE("dies at call " + std::to_string(last + 1) + " of " + std::to_string(calls));
        Attempt attempt;
        const pid_t child = fork();
        ASSERT_NE(child, -1);
        if (child == 0) {
            attempt.calls.before = [&](const std::string&) {
                if (attempt.calls.made().size() > last) _exit(0);
            };
            attempt.write();
            _exit(1);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);

        const auto file = attempt.folder.read(fileName);
        EXPECT_THAT(file, AnyOf(Eq(oldFile), Eq(newFile)));
        if (file == oldFile) ++oldFiles;
        EXPECT_TRUE(attempt.write());
        EXPECT_EQ(attempt.folder.read(fileName), newFile);
        expectNoLockInTheWay(attempt);
    }
    EXPECT_GT(oldFiles, 0);
    EXPECT_LT(oldFiles, static_cast<int>(calls));
}

}  // namespace
}  // namespace vantrel::gnustep

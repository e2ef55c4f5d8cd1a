#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "platform/gnustep/GNUstepPreferences.h"
#include "platform/memory/Journal.h"
#include "platform/memory/MemorySystem.h"
#include "tests/platform/gnustep/CodecDomain.h"
#include "tests/platform/gnustep/PropertyListTesting.h"
#include "tests/platform/posix/Processes.h"
#include "tests/platform/posix/SystemCallsWithOwnClock.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::gnustep {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::ElementsAre;
using testing::Eq;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

/// What stands under each key of a list.
std::map<std::string, std::string> entriesOf(const std::string& bytes) {
    const auto list = parsed(bytes);
    std::map<std::string, std::string> entries;
    for (const auto& key : list.keys()) entries[key] = list.element(key);
    return entries;
}

const std::string oldFile = listOf("<key>data</key><data>AA==</data><key>look</key><false/>");
const std::string newFile = listOf("<key>data</key><data>AA==</data><key>look</key><true/>");

const std::string lockName = ".lck/.GNUstepDefaults.lck";

/// A defaults folder with an old file in it, and another folder; each attempt writes "look" as true and synchronises.
struct Attempt {
    explicit Attempt(const std::string& folderThere = ".lck") {
        folder.makeFolder(folderThere);
        folder.write(fileName, oldFile);
    }
    /// What is done before and after a call is the test's, and the store outlives that.
    ~Attempt() { calls.before = calls.after = nullptr; }

    bool write(bool look = true) {
        preferences.setAppValue("look", look, appID);
        return preferences.synchronize(appID);
    }

    bool looksTrue() {
        const auto value = preferences.copyAppValue("look", appID);
        const auto* flag = std::get_if<bool>(&value);
        return flag && *flag;
    }

    /// What was logged, but for what was done without the lock and with it again.
    std::vector<std::string> failuresLogged() const {
        auto lines = journal.lines();
        std::erase_if(lines, [](const auto& line) { return line.find(" lock") != std::string::npos; });
        return lines;
    }

    posix::TemporaryFolder folder;
    memory::Journal journal;
    memory::MemoryLog log{journal};
    posix::SystemCallsWithOwnClock calls;
    GNUstepPreferences preferences{folder.path, log, calls};
};

/// The calls that one undisturbed attempt makes.
std::vector<std::string> callsOfAnAttempt(const std::string& folderThere) {
    Attempt attempt(folderThere);
    EXPECT_TRUE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), newFile);
    return attempt.calls.made();
}

/// A lock that was left behind is broken in time.
void expectNoLockInTheWay(Attempt& attempt) {
    attempt.calls.pass(21);
    EXPECT_TRUE(attempt.write(false));
    EXPECT_EQ(attempt.folder.read(fileName), oldFile);
    EXPECT_FALSE(std::filesystem::exists(attempt.folder / lockName));
}

/// What must hold after an attempt that failed: nothing lost here, nothing broken there, and all is well the next time.
/// Who clicked has heard of it.
void expectRecovery(Attempt& attempt, bool saidItWasDone) {
    const auto file = attempt.folder.read(fileName);
    EXPECT_THAT(file, AnyOf(Eq(oldFile), Eq(newFile)));
    if (saidItWasDone) {
        EXPECT_EQ(file, newFile);
        EXPECT_THAT(attempt.failuresLogged(), IsEmpty());
    } else {
        EXPECT_THAT(attempt.failuresLogged(), ElementsAre(HasSubstr("couldn’t be stored because")));
    }
    EXPECT_TRUE(attempt.looksTrue());
    EXPECT_THAT(attempt.folder.names(), UnorderedElementsAre(".lck", fileName));
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(attempt.folder.read(fileName), newFile);
    EXPECT_TRUE(attempt.looksTrue());
    EXPECT_THAT(attempt.failuresLogged(), SizeIs(saidItWasDone ? 0 : 2));
    expectNoLockInTheWay(attempt);
}

using GNUstepPreferencesFaults = testing::Test;

/// Without a lock that was put aside, and with one.
struct GNUstepPreferencesEachCall : testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(, GNUstepPreferencesEachCall, testing::Values(".lck", ".lck/.Vantrel-free"));

TEST_P(GNUstepPreferencesEachCall, WhicheverCallFailsTheFileIsWholeAndTheValuesReachItTheNextTime) {
    std::map<std::string, int> seen;
    for (const auto& name : callsOfAnAttempt(GetParam())) {
        const int nth = ++seen[name];
        for (const int error : {EIO, ENOSPC, EACCES}) {
            SCOPED_TRACE(name + " number " + std::to_string(nth) + " fails with error " + std::to_string(error));
            Attempt attempt(GetParam());
            attempt.calls.failNth(name, nth, error);
            expectRecovery(attempt, attempt.write());
        }
    }
}

/// Looks at what isn't known to have changed, and what is done for others: for who comes later, or at the same time.
const std::set<std::string> canBeDoneWithout{"clockGettime", "close",           "flock", "futimens",   "lstat",
                                             "mkdir",        "renameNoReplace", "rmdir", "listFolder", "utimensat"};

TEST_P(GNUstepPreferencesEachCall, WhicheverCallFailsForAWhileTheValuesReachTheFileAfterIt) {
    const auto made = callsOfAnAttempt(GetParam());
    for (const auto& name : std::set<std::string>(made.begin(), made.end())) {
        SCOPED_TRACE(name + " fails");
        Attempt attempt(GetParam());
        attempt.calls.failEvery(name, EIO);
        const bool done = attempt.write() && attempt.preferences.synchronize(appID);
        EXPECT_EQ(done, canBeDoneWithout.contains(name));
        attempt.calls.failEvery(name, 0);
        expectRecovery(attempt, done);
    }
}

TEST_F(GNUstepPreferencesFaults, AFullDiskHalfWayLeavesTheOldFile) {
    Attempt attempt;
    attempt.calls.mostBytesAtOnce = 100;
    attempt.calls.failNth("write", 2, ENOSPC);
    EXPECT_FALSE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), oldFile);
    expectRecovery(attempt, false);
}

TEST_F(GNUstepPreferencesFaults, ShortReadsAndWritesThatAreInterruptedMakeAWholeFile) {
    Attempt attempt;
    attempt.calls.mostBytesAtOnce = 3;
    attempt.calls.failNth("write", 5, EINTR);
    attempt.calls.failNth("read", 5, EINTR);
    EXPECT_TRUE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), newFile);
}

TEST_F(GNUstepPreferencesFaults, AFolderThatCantBeWrittenCostsOnlyTheFile) {
    Attempt attempt;
    for (const auto* call : {"mkdir", "mkostemp"}) attempt.calls.failEvery(call, EROFS);
    EXPECT_FALSE(attempt.write());
    EXPECT_FALSE(attempt.write());
    EXPECT_TRUE(attempt.looksTrue());
    for (const auto* call : {"mkdir", "mkostemp"}) attempt.calls.failEvery(call, 0);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(attempt.folder.read(fileName), newFile);
}

TEST_F(GNUstepPreferencesFaults, ARenamingThatWasNotWrittenThroughIsDoneAgainThoughNothingChanged) {
    Attempt attempt;
    attempt.calls.failNth("fsync", 2, EIO);
    EXPECT_FALSE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), newFile);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    // Each time the file, and the lock that is freed.
    EXPECT_EQ(attempt.calls.count("rename"), 4);
    EXPECT_EQ(attempt.calls.count("fsync"), 4);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(attempt.calls.count("rename"), 4);
}

TEST_P(GNUstepPreferencesEachCall, WhereverTheProcessDiesTheFileIsOldOrNewAndTheNextOneCanWrite) {
    int deaths = 0;
    int oldFiles = 0;
    // How often a young file is looked at depends on the time, so the calls are not counted beforehand.
    for (std::size_t last = 0;; ++last) {
        SCOPED_TRACE("dies at call " + std::to_string(last + 1));
        Attempt attempt(GetParam());
        const bool isDead = posix::killedBeforeCall(last, [&](posix::SystemCalls& killing) {
            GNUstepPreferences preferences(attempt.folder.path, attempt.log, killing);
            preferences.setAppValue("look", true, appID);
            preferences.synchronize(appID);
        });
        if (!isDead) break;

        ++deaths;
        const auto file = attempt.folder.read(fileName);
        EXPECT_THAT(file, AnyOf(Eq(oldFile), Eq(newFile)));
        if (file == oldFile) ++oldFiles;
        EXPECT_TRUE(attempt.write());
        EXPECT_EQ(attempt.folder.read(fileName), newFile);
        EXPECT_THAT(attempt.folder.names(), UnorderedElementsAre(".lck", fileName));
        expectNoLockInTheWay(attempt);
    }
    EXPECT_GT(oldFiles, 0);
    EXPECT_LT(oldFiles, deaths);
}

// A file that can't be read

using GNUstepPreferencesUnreadable = testing::Test;

/// All that keeps a file from being read, while it is there.
void makeUnreadable(Attempt& attempt, int error) {
    for (const auto* call : {"open", "stat"}) attempt.calls.failEvery(call, error);
}

TEST_F(GNUstepPreferencesUnreadable, NothingOfItIsReplaced) {
    for (const int error : {EACCES, EIO, EMFILE, ESTALE}) {
        Attempt attempt;
        makeUnreadable(attempt, error);
        EXPECT_TRUE(std::holds_alternative<Absent>(attempt.preferences.copyAppValue("data", appID)));
        EXPECT_FALSE(attempt.write());
        EXPECT_EQ(attempt.folder.read(fileName), oldFile);
        makeUnreadable(attempt, 0);
        expectRecovery(attempt, false);
    }
}

TEST_F(GNUstepPreferencesUnreadable, OneThatBreaksOffWithAnErrorIsNeverReplaced) {
    Attempt attempt;
    attempt.calls.mostBytesAtOnce = 50;
    attempt.calls.failEvery("read", EIO);
    EXPECT_FALSE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), oldFile);
}

TEST_F(GNUstepPreferencesUnreadable, OneThatOnlySeemsMissingIsNotReplaced) {
    Attempt attempt;
    attempt.calls.failEvery("stat", ENOENT);
    EXPECT_FALSE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), oldFile);
    attempt.calls.failEvery("stat", 0);
    expectRecovery(attempt, false);
}

TEST_F(GNUstepPreferencesUnreadable, WhatWasLastReadStandsIn) {
    Attempt attempt;
    attempt.folder.write(fileName, newFile);
    ASSERT_TRUE(attempt.looksTrue());
    makeUnreadable(attempt, EIO);
    EXPECT_TRUE(attempt.looksTrue());
    EXPECT_TRUE(attempt.looksTrue());
}

TEST_F(GNUstepPreferencesUnreadable, OneThatIsGoneHasNothingThatStandsIn) {
    Attempt attempt;
    attempt.folder.write(fileName, newFile);
    ASSERT_TRUE(attempt.looksTrue());
    std::filesystem::remove(attempt.folder / fileName);
    EXPECT_FALSE(attempt.looksTrue());
}

/// Writes true where nothing is stored, as a set-up does.
std::optional<NewPreferenceValue> defaultOn(const PreferenceValue& stored) {
    if (std::holds_alternative<Absent>(stored)) return true;
    return std::nullopt;
}

TEST_F(GNUstepPreferencesUnreadable, ADefaultYieldsToWhatIsStored) {
    Attempt attempt;
    makeUnreadable(attempt, EACCES);
    attempt.preferences.updateAppValue("look", defaultOn, appID);
    EXPECT_TRUE(attempt.looksTrue());
    EXPECT_FALSE(attempt.preferences.synchronize(appID));
    makeUnreadable(attempt, 0);
    EXPECT_FALSE(attempt.looksTrue());
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(attempt.folder.read(fileName), oldFile);
}

TEST_F(GNUstepPreferencesUnreadable, ADefaultReachesAFileThatLacksIt) {
    Attempt attempt;
    makeUnreadable(attempt, EACCES);
    attempt.preferences.updateAppValue("gamma", defaultOn, appID);
    EXPECT_FALSE(attempt.preferences.synchronize(appID));
    makeUnreadable(attempt, 0);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(entriesOf(attempt.folder.read(fileName)),
              entriesOf(listOf("<key>data</key><data>AA==</data><key>gamma</key><true/><key>look</key><false/>")));
}

/// The number that is stored, or 0, with one added.
std::optional<NewPreferenceValue> oneMore(const PreferenceValue& stored) {
    const auto* number = std::get_if<Number>(&stored);
    return number ? number->longValue.value_or(0) + 1 : 1L;
}

TEST_F(GNUstepPreferencesUnreadable, AComputedValueIsComputedFromWhatIsReallyStored) {
    Attempt attempt;
    attempt.folder.write(fileName, listOf("<key>n</key><integer>40</integer>"));
    makeUnreadable(attempt, EIO);
    attempt.preferences.updateAppValue("n", oneMore, appID);
    attempt.preferences.updateAppValue("n", oneMore, appID);
    EXPECT_FALSE(attempt.preferences.synchronize(appID));
    makeUnreadable(attempt, 0);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(attempt.folder.read(fileName), listOf("<key>n</key><integer>42</integer>"));
}

TEST_F(GNUstepPreferencesUnreadable, AValueThatWasSetReplacesTheChangesBeforeIt) {
    Attempt attempt;
    makeUnreadable(attempt, EIO);
    attempt.preferences.updateAppValue("n", oneMore, appID);
    attempt.preferences.setAppValue("n", 7L, appID);
    attempt.preferences.updateAppValue("n", oneMore, appID);
    makeUnreadable(attempt, 0);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(
        entriesOf(attempt.folder.read(fileName)),
        entriesOf(listOf("<key>data</key><data>AA==</data><key>look</key><false/><key>n</key><integer>8</integer>")));
}

TEST_F(GNUstepPreferencesUnreadable, AValueIsKeptThoughTheLastReadHadIt) {
    Attempt attempt;
    ASSERT_FALSE(attempt.looksTrue());
    makeUnreadable(attempt, EIO);
    EXPECT_FALSE(attempt.write(false));
    attempt.folder.write(fileName, newFile);
    makeUnreadable(attempt, 0);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(attempt.folder.read(fileName), oldFile);
}

/// What an ordinary user does, for whom permissions count.
bool asOrdinaryUser(const posix::TemporaryFolder& folder, const std::function<bool()>& work) {
    constexpr uid_t nobody = 65534;
    const bool isRoot = geteuid() == 0;
    if (isRoot) {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path)) {
            EXPECT_EQ(chown(entry.path().c_str(), nobody, nobody), 0);
        }
        EXPECT_EQ(chown(folder.path.c_str(), nobody, nobody), 0);
    }
    return posix::endOf(posix::startProcess(
               [&] { return (!isRoot || (setgid(nobody) == 0 && setuid(nobody) == 0)) && work(); })) == 0;
}

TEST_F(GNUstepPreferencesUnreadable, WhatItsUserMayNotReadKeepsItsValuesOverASetUpAndAClick) {
    for (const bool isTheFolder : {false, true}) {
        Attempt attempt;
        const auto path = isTheFolder ? attempt.folder.path : attempt.folder / fileName;
        EXPECT_TRUE(asOrdinaryUser(attempt.folder, [&] {
            if (chmod(path.c_str(), 0) != 0) return false;
            attempt.preferences.updateAppValue("look", defaultOn, appID);
            attempt.preferences.setAppValue("gamma", false, appID);
            const bool stored = attempt.preferences.synchronize(appID);
            if (chmod(path.c_str(), isTheFolder ? 0700 : 0600) != 0) return false;
            return !stored && attempt.preferences.synchronize(appID) && attempt.journal.lines().size() >= 2;
        })) << path;
        EXPECT_EQ(entriesOf(attempt.folder.read(fileName)),
                  entriesOf(listOf("<key>data</key><data>AA==</data><key>gamma</key><false/><key>look</key><false/>")));
    }
}

TEST_F(GNUstepPreferencesUnreadable, AFileOnADiskThatIsMountedLaterKeepsItsValues) {
    Attempt attempt;
    std::filesystem::remove(attempt.folder / fileName);
    ASSERT_EQ(symlink("disk/codec.plist", (attempt.folder / fileName).c_str()), 0);
    attempt.preferences.updateAppValue("look", defaultOn, appID);
    attempt.preferences.setAppValue("gamma", false, appID);
    EXPECT_FALSE(attempt.preferences.synchronize(appID));
    attempt.folder.makeFolder("disk");
    attempt.folder.write("disk/codec.plist", oldFile);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_EQ(entriesOf(attempt.folder.read(fileName)),
              entriesOf(listOf("<key>data</key><data>AA==</data><key>gamma</key><false/><key>look</key><false/>")));
}

// What the log hears

using GNUstepPreferencesLog = testing::Test;

TEST_F(GNUstepPreferencesLog, AFailureIsToldOnceWithItsReasonAndItsPathAndOnceWhenItIsOver) {
    Attempt attempt;
    attempt.calls.failEvery("write", ENOSPC);
    for (int click = 0; click < 5; ++click) EXPECT_FALSE(attempt.write());
    attempt.calls.failEvery("write", 0);
    for (int click = 0; click < 5; ++click) EXPECT_TRUE(attempt.write(click % 2 == 0));
    EXPECT_THAT(attempt.journal.lines(),
                ElementsAre("log “com.vantrel.codec.plist” couldn’t be stored because the disk is full here: " +
                                attempt.folder.path,
                            "log “com.vantrel.codec.plist” is stored again: " + attempt.folder / fileName));
}

TEST_F(GNUstepPreferencesLog, AnotherReasonIsToldToo) {
    Attempt attempt;
    for (const int error : {ENOSPC, EIO}) {
        attempt.calls.failEvery("write", error);
        EXPECT_FALSE(attempt.write());
        EXPECT_FALSE(attempt.write());
    }
    EXPECT_THAT(attempt.journal.lines(), ElementsAre(HasSubstr("is full"), HasSubstr("reports an error")));
}

TEST_F(GNUstepPreferencesLog, WhatCantBeReadIsTold) {
    Attempt attempt;
    makeUnreadable(attempt, EACCES);
    EXPECT_FALSE(attempt.write());
    EXPECT_THAT(attempt.journal.lines(),
                ElementsAre(AllOf(HasSubstr("permission is denied here: " + attempt.folder / fileName))));
}

TEST_F(GNUstepPreferencesLog, ASynchroniseWithNothingToStoreHasNothingToTell) {
    Attempt attempt;
    makeUnreadable(attempt, EACCES);
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_THAT(attempt.journal.lines(), IsEmpty());
}

// Without the lock

struct GNUstepPreferencesLock : testing::Test {
    void takeAsAnother() { attempt.folder.makeFolder(lockName); }
    void freeAsAnother() { std::filesystem::remove(attempt.folder / lockName); }
    /// Another program that takes no lock replaces the file.
    void replaceAsAnother(int number) {
        attempt.folder.write("new", listOf("<key>n</key><integer>" + std::to_string(number) + "</integer>"));
        std::filesystem::rename(attempt.folder / "new", attempt.folder / fileName);
    }

    Attempt attempt;
};

TEST_F(GNUstepPreferencesLock, OneThatStandsIsWaitedForForTwoSecondsAtMostAndGoneWithout) {
    takeAsAnother();
    EXPECT_TRUE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), newFile);
    EXPECT_GE(attempt.calls.secondsSlept(), 1);
    EXPECT_LE(attempt.calls.secondsSlept(), 2);
    EXPECT_TRUE(std::filesystem::exists(attempt.folder / lockName));
}

TEST_F(GNUstepPreferencesLock, ThatItWasGoneWithoutIsToldOnceAndOnceWhenItIsOver) {
    takeAsAnother();
    for (int click = 0; click < 4; ++click) EXPECT_TRUE(attempt.write(click % 2 == 0));
    freeAsAnother();
    for (int click = 0; click < 4; ++click) EXPECT_TRUE(attempt.write(click % 2 == 0));
    const auto lock = attempt.folder / lockName;
    EXPECT_THAT(attempt.journal.lines(),
                ElementsAre("log “com.vantrel.codec.plist” is stored without its lock because this is in use: " + lock,
                            "log “com.vantrel.codec.plist” is stored with its lock again: " + lock));
}

TEST_F(GNUstepPreferencesLock, WithoutItTheFileIsLookedAtBetweenTheFlushAndTheRenaming) {
    takeAsAnother();
    std::vector<std::string> order;
    attempt.calls.before = [&](const std::string& name) {
        // Another comes after the last pause: what was prepared before is out of date.
        if (name == "stat" && attempt.calls.count("fsync") == 1) replaceAsAnother(7);
        order.push_back(name);
    };
    EXPECT_TRUE(attempt.write());
    const auto renamed = std::find(order.rbegin(), order.rend(), "rename");
    const auto looked = std::find(renamed, order.rend(), "stat");
    EXPECT_LT(looked, std::find(renamed, order.rend(), "fsync"));
    EXPECT_EQ(entriesOf(attempt.folder.read(fileName)),
              entriesOf(listOf("<key>look</key><true/><key>n</key><integer>7</integer>")));
}

TEST_F(GNUstepPreferencesLock, WhatAnotherWritesUpToThatLookIsKept) {
    takeAsAnother();
    int flushed = 0;
    attempt.calls.before = [&](const std::string& name) {
        if (name == "fsync" && ++flushed <= 3) replaceAsAnother(flushed);
    };
    EXPECT_TRUE(attempt.write());
    EXPECT_EQ(entriesOf(attempt.folder.read(fileName)),
              entriesOf(listOf("<key>look</key><true/><key>n</key><integer>3</integer>")));
}

TEST_F(GNUstepPreferencesLock, AFileThatNeverComesToRestIsLeftToTheOther) {
    takeAsAnother();
    int flushed = 0;
    attempt.calls.before = [&](const std::string& name) {
        if (name == "fsync") replaceAsAnother(++flushed);
    };
    EXPECT_FALSE(attempt.write());
    EXPECT_EQ(attempt.folder.read(fileName), listOf("<key>n</key><integer>" + std::to_string(flushed) + "</integer>"));
    EXPECT_THAT(attempt.failuresLogged(), ElementsAre(HasSubstr("couldn’t be stored because this is in use")));
    attempt.calls.before = nullptr;
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_TRUE(attempt.looksTrue());
}

TEST_F(GNUstepPreferencesLock, AFileThatComesToWhereThereWasNoneIsKept) {
    std::filesystem::remove(attempt.folder / fileName);
    takeAsAnother();
    bool hasCome = false;
    attempt.calls.before = [&](const std::string& name) {
        if (name != "renameNoReplace" || std::exchange(hasCome, true)) return;
        replaceAsAnother(5);
    };
    EXPECT_TRUE(attempt.write());
    EXPECT_EQ(entriesOf(attempt.folder.read(fileName)),
              entriesOf(listOf("<key>look</key><true/><key>n</key><integer>5</integer>")));
}

TEST_F(GNUstepPreferencesLock, AllOfASequenceWaitsForTwoSecondsTogether) {
    const PreferencesSequence sequence(attempt.preferences);
    for (const int group : {0, 1, 2, 3}) {
        // A lock that isn't the one before.
        takeAsAnother();
        EXPECT_TRUE(attempt.write(group % 2 == 0));
        std::filesystem::rename(attempt.folder / lockName, attempt.folder / std::to_string(group));
    }
    EXPECT_LE(attempt.calls.secondsSlept(), 2);
}

TEST_F(GNUstepPreferencesLock, OneThatCouldntBeFreedIsFreedByTheNextSynchroniseThoughItHasNothingToStore) {
    // The file's renaming comes first.
    for (const int nth : {2, 3}) attempt.calls.failNth("rename", nth, EIO);
    for (const int nth : {1, 2}) attempt.calls.failNth("rmdir", nth, EIO);
    EXPECT_TRUE(attempt.write());
    EXPECT_TRUE(std::filesystem::exists(attempt.folder / lockName));
    EXPECT_TRUE(attempt.preferences.synchronize(appID));
    EXPECT_FALSE(std::filesystem::exists(attempt.folder / lockName));
}

}  // namespace
}  // namespace vantrel::gnustep

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <set>
#include <string>

#include "platform/gnustep/GNUstepPreferences.h"
#include "platform/gnustep/PropertyList.h"
#include "platform/memory/Journal.h"
#include "platform/memory/MemorySystem.h"
#include "tests/platform/gnustep/CodecDomain.h"
#include "tests/platform/posix/Processes.h"
#include "tests/platform/posix/SystemCallsWithOwnClock.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::gnustep {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAre;

const std::string damage = "<plist><dict><key>cut off";

std::string listOf(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n<dict>\n" +
           entries + "</dict>\n</plist>\n";
}

/// How a value reads: "absent", "true", "5", "unreadable", "\"text\"", "other".
std::string inWords(const PreferenceValue& value) {
    if (std::holds_alternative<Absent>(value)) return "absent";
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    if (const auto* text = std::get_if<std::string>(&value)) return '"' + *text + '"';
    if (const auto* number = std::get_if<Number>(&value)) {
        return number->longValue ? std::to_string(*number->longValue) : "unreadable";
    }
    return "other";
}

/// A defaults folder, preferences of this process on it, and those of another process.
struct GNUstepPreferencesTest : testing::Test {
    /// What is done before and after a call is the test's, and the store outlives that.
    ~GNUstepPreferencesTest() override { calls.before = calls.after = nullptr; }

    std::string read(std::string_view key) { return inWords(preferences.copyAppValue(key, appID)); }
    std::string readByAnother(std::string_view key) {
        GNUstepPreferences others(folder.path, log);
        return inWords(others.copyAppValue(key, appID));
    }
    void write(std::string_view key, const NewPreferenceValue& value) { preferences.setAppValue(key, value, appID); }
    bool synchronize() { return preferences.synchronize(appID); }
    void writeFile(const std::string& entries) { folder.write(fileName, listOf(entries)); }

    struct stat fileStatus() {
        struct stat status {};
        EXPECT_EQ(stat((folder / fileName).c_str(), &status), 0);
        return status;
    }

    /// Lets the file's times become old enough to be relied on.
    void settle() { calls.pass(3600); }

    posix::TemporaryFolder folder;
    memory::Journal journal;
    memory::MemoryLog log{journal};
    posix::SystemCallsWithOwnClock calls;
    GNUstepPreferences preferences{folder.path, log, calls};
};

// Values

using GNUstepPreferencesValues = GNUstepPreferencesTest;

TEST_F(GNUstepPreferencesValues, WithoutAFileEverythingIsAbsent) {
    EXPECT_EQ(read("look"), "absent");
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(GNUstepPreferencesValues, EachTypeIsToldApart) {
    writeFile(
        "<key>flag</key><true/><key>number</key><integer>1</integer><key>text</key><string>1</string>"
        "<key>data</key><data>AA==</data><key>fraction</key><real>1.5</real>");
    EXPECT_EQ(read("flag"), "true");
    EXPECT_EQ(read("number"), "1");
    EXPECT_EQ(read("text"), "\"1\"");
    EXPECT_EQ(read("data"), "other");
    EXPECT_EQ(read("fraction"), "unreadable");
    EXPECT_EQ(read("nothing"), "absent");
}

TEST_F(GNUstepPreferencesValues, EachTypeIsWrittenAndReadBackByAnotherProcess) {
    const auto most = std::numeric_limits<long>::max();
    write("flag", true);
    write("number", -7L);
    write("large", most);
    write("text", std::string("/a \\U0041 <😀>\r"));
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(readByAnother("flag"), "true");
    EXPECT_EQ(readByAnother("number"), "-7");
    EXPECT_EQ(readByAnother("large"), std::to_string(most));
    EXPECT_EQ(readByAnother("text"), "\"/a \\U0041 <😀>\r\"");
}

TEST_F(GNUstepPreferencesValues, AOneUnderAFlagIsReallyReplacedByTrue) {
    writeFile("\t<key>look</key>\n\t<integer>1</integer>\n");
    write("look", true);
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(folder.read(fileName), listOf("\t<key>look</key>\n\t<true/>\n"));
}

TEST_F(GNUstepPreferencesValues, AKeyTheApplicationLacksIsLookedUpForAllApplications) {
    writeFile("<key>own</key><integer>1</integer>");
    folder.write("NSGlobalDomain.plist",
                 listOf("<key>own</key><integer>2</integer><key>shared</key><string>s</string>"));
    EXPECT_EQ(read("own"), "1");
    EXPECT_EQ(read("shared"), "\"s\"");
}

TEST_F(GNUstepPreferencesValues, AnotherTypeInTheApplicationsDomainHidesTheOneForAll) {
    writeFile("<key>look</key><data></data>");
    folder.write("NSGlobalDomain.plist", listOf("<key>look</key><true/>"));
    EXPECT_EQ(read("look"), "other");
}

TEST_F(GNUstepPreferencesValues, AWriteGoesToTheApplicationsDomain) {
    folder.write("NSGlobalDomain.plist", listOf("<key>look</key><true/>"));
    write("look", false);
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(read("look"), "false");
    EXPECT_EQ(folder.read("NSGlobalDomain.plist"), listOf("<key>look</key><true/>"));
}

TEST_F(GNUstepPreferencesValues, ApplicationsDontSeeEachOther) {
    write("look", true);
    preferences.setAppValue("look", false, "com.vantrel.other");
    ASSERT_TRUE(synchronize());
    EXPECT_THAT(folder.names(), UnorderedElementsAre(".lck", fileName));
    EXPECT_EQ(inWords(preferences.copyAppValue("look", "com.vantrel.other")), "false");
    EXPECT_EQ(read("look"), "true");
}

TEST_F(GNUstepPreferencesValues, ABinaryFileIsRead) {
    using namespace std::string_literals;
    folder.write(fileName, "bplist00\xD1\x01\x02Tlook\x09\x08\x0B\x10"s + "\0\0\0\0\0\0\x01\x01"s +
                               "\0\0\0\0\0\0\0\x03"s + "\0\0\0\0\0\0\0\0"s + "\0\0\0\0\0\0\0\x11"s);
    EXPECT_EQ(read("look"), "true");
    write("gamma", false);
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(readByAnother("look"), "true");
    EXPECT_EQ(readByAnother("gamma"), "false");
}

// Fresh reads

using GNUstepPreferencesReads = GNUstepPreferencesTest;

TEST_F(GNUstepPreferencesReads, WhatAnotherProcessWroteIsSeen) {
    GNUstepPreferences others(folder.path, log);
    for (long round = 0; round < 20; ++round) {
        others.setAppValue("round", round, appID);
        ASSERT_TRUE(others.synchronize(appID));
        EXPECT_EQ(read("round"), std::to_string(round));
    }
}

/// A file system that tells the same times of every file, and the time it is now.
struct SameTimes : posix::SystemCalls {
    SameTimes(struct timespec ofFiles, struct timespec ofClock) : ofFiles_(ofFiles), ofClock_(ofClock) {}

    int stat(const char* path, struct stat* status) override {
        return tell(posix::SystemCalls::stat(path, status), status);
    }
    int fstat(int descriptor, struct stat* status) override {
        return tell(posix::SystemCalls::fstat(descriptor, status), status);
    }
    int clockGettime(clockid_t, struct timespec* time) override {
        *time = ofClock_;
        return 0;
    }

private:
    int tell(int told, struct stat* status) const {
        status->st_mtim = status->st_ctim = ofFiles_;
        return told;
    }

    struct timespec ofFiles_;
    struct timespec ofClock_;
};

TEST_F(GNUstepPreferencesReads, AFileRewrittenInPlaceWithinOneTickOfTheClockIsSeen) {
    SameTimes tenMilliseconds({1'700'000'000, 500'000'000}, {1'700'000'000, 510'000'000});
    GNUstepPreferences ours(folder.path, log, tenMilliseconds);
    writeFile("<key>look</key><integer>1</integer>");
    EXPECT_EQ(inWords(ours.copyAppValue("look", appID)), "1");
    writeFile("<key>look</key><integer>2</integer>");
    EXPECT_EQ(inWords(ours.copyAppValue("look", appID)), "2");
}

TEST_F(GNUstepPreferencesReads, AFileWhoseTimesAreWholeSecondsIsNotReliedOnForTwoOfThem) {
    SameTimes twoSeconds({1'700'000'000, 0}, {1'700'000'002, 0});
    GNUstepPreferences ours(folder.path, log, twoSeconds);
    writeFile("<key>look</key><integer>1</integer>");
    EXPECT_EQ(inWords(ours.copyAppValue("look", appID)), "1");
    writeFile("<key>look</key><integer>2</integer>");
    EXPECT_EQ(inWords(ours.copyAppValue("look", appID)), "2");
}

TEST_F(GNUstepPreferencesReads, AFileThatDidNotChangeCostsOneLookAtIt) {
    writeFile("<key>look</key><true/>");
    settle();
    ASSERT_EQ(read("look"), "true");
    const auto callsBefore = calls.made().size();
    EXPECT_EQ(read("look"), "true");
    EXPECT_EQ(calls.made().size(), callsBefore + 1);
    EXPECT_EQ(calls.made().back(), "stat");
}

TEST_F(GNUstepPreferencesReads, AfterAWriteOfItsOwnTheFileIsNotReadAgain) {
    write("look", true);
    ASSERT_TRUE(synchronize());
    const auto reads = calls.count("read");
    for (int round = 0; round < 5; ++round) {
        EXPECT_EQ(read("look"), round % 2 == 0 ? "true" : "false");
        write("look", round % 2 != 0);
        ASSERT_TRUE(synchronize());
    }
    EXPECT_EQ(calls.count("read"), reads);
}

TEST_F(GNUstepPreferencesReads, AFileThatIsWrittenInPlaceRightAfterAWriteOfItsOwnIsSeen) {
    for (long round = 100; round < 200; ++round) {
        write("look", round);
        ASSERT_TRUE(synchronize());
        // As long as the one that it replaces, and most often within the same tick of the clock.
        std::string other = folder.read(fileName);
        other.replace(other.find("<integer>"), 10, "<integer>9");
        folder.write(fileName, other);
        EXPECT_NE(read("look"), std::to_string(round));
    }
}

TEST_F(GNUstepPreferencesReads, WhereTheFilesTimeCouldntBeSetItIsReadAgain) {
    calls.failEvery("futimens", EPERM);
    write("look", true);
    ASSERT_TRUE(synchronize());
    const auto reads = calls.count("read");
    EXPECT_EQ(read("look"), "true");
    EXPECT_GT(calls.count("read"), reads);
}

TEST_F(GNUstepPreferencesReads, AFileThatVanishesIsAbsentAndOneThatComesIsSeen) {
    writeFile("<key>look</key><true/>");
    settle();
    ASSERT_EQ(read("look"), "true");
    std::filesystem::remove(folder / fileName);
    EXPECT_EQ(read("look"), "absent");
    writeFile("<key>look</key><false/>");
    EXPECT_EQ(read("look"), "false");
}

TEST_F(GNUstepPreferencesReads, AFolderOrAPipeInItsPlaceReadsAsEmptyAndStays) {
    ASSERT_EQ(mkfifo((folder / fileName).c_str(), 0600), 0);
    EXPECT_EQ(read("look"), "absent");
    write("look", true);
    EXPECT_FALSE(synchronize());
    EXPECT_TRUE(S_ISFIFO(fileStatus().st_mode));

    std::filesystem::remove(folder / fileName);
    folder.makeFolder(fileName);
    EXPECT_FALSE(synchronize());
    EXPECT_TRUE(S_ISDIR(fileStatus().st_mode));
    EXPECT_EQ(read("look"), "true");
    EXPECT_THAT(journal.lines(), ElementsAre(HasSubstr("this is no ordinary file"), HasSubstr("this is a folder")));
}

// Sequences of calls

struct GNUstepPreferencesSequence : GNUstepPreferencesTest {
    GNUstepPreferencesSequence() {
        writeFile("<key>look</key><integer>1</integer>");
        settle();
    }
};

TEST_F(GNUstepPreferencesSequence, LooksAtTheFileOnce) {
    read("look");
    const auto callsBefore = calls.made().size();
    {
        const PreferencesSequence sequence(preferences);
        for (int round = 0; round < 30; ++round) EXPECT_EQ(read("look"), "1");
    }
    EXPECT_EQ(calls.made().size(), callsBefore + 1);
    EXPECT_EQ(calls.made().back(), "stat");
}

TEST_F(GNUstepPreferencesSequence, LooksOnceAtTheFileForAllApplicationsToo) {
    folder.write("NSGlobalDomain.plist", listOf("<key>shared</key><true/>"));
    const PreferencesSequence sequence(preferences);
    for (int round = 0; round < 30; ++round) {
        EXPECT_EQ(read("shared"), "true");
        EXPECT_EQ(read("nothing"), "absent");
    }
    EXPECT_EQ(calls.count("stat"), 2);
}

TEST_F(GNUstepPreferencesSequence, SeesOneStateOfTheStoreWithItsOwnChanges) {
    {
        const PreferencesSequence sequence(preferences);
        EXPECT_EQ(read("look"), "1");
        writeFile("<key>look</key><integer>2</integer>");
        EXPECT_EQ(read("look"), "1");
        write("gamma", true);
        EXPECT_EQ(read("gamma"), "true");
        ASSERT_TRUE(synchronize());
        EXPECT_EQ(read("look"), "2");
    }
    writeFile("<key>look</key><integer>3</integer>");
    EXPECT_EQ(read("look"), "3");
}

TEST_F(GNUstepPreferencesSequence, IsAsFreshAsItsFirstCall) {
    read("look");
    writeFile("<key>look</key><integer>2</integer>");
    const PreferencesSequence sequence(preferences);
    EXPECT_EQ(read("look"), "2");
}

// Writes

using GNUstepPreferencesWrites = GNUstepPreferencesTest;

TEST_F(GNUstepPreferencesWrites, AWriteIsSeenHereAtOnceAndByOthersFromTheNextSynchroniseOn) {
    write("look", true);
    EXPECT_EQ(read("look"), "true");
    EXPECT_EQ(readByAnother("look"), "absent");
    EXPECT_THAT(folder.names(), IsEmpty());
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(readByAnother("look"), "true");
}

TEST_F(GNUstepPreferencesWrites, OfTwoWritesUnderAKeyTheLaterCounts) {
    write("look", true);
    write("look", std::string("b"));
    EXPECT_EQ(read("look"), "\"b\"");
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(readByAnother("look"), "\"b\"");
}

TEST_F(GNUstepPreferencesWrites, AfterTheSynchroniseAnotherProcessHasTheLastWord) {
    write("look", true);
    ASSERT_TRUE(synchronize());
    writeFile("<key>look</key><false/>");
    EXPECT_EQ(read("look"), "false");
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(readByAnother("look"), "false");
}

TEST_F(GNUstepPreferencesWrites, OtherKeysStayLetterForLetter) {
    const std::string others =
        "\t<key>array</key>\n\t<array>\n\t\t<real>1.50</real>\n\t\t<dict><key>a</key><false/></dict>\n\t</array>\n"
        "\t<key>data</key>\n\t<data>\n\tAAECAw==\n\t</data>\n"
        "\t<key>date</key>\n\t<date>1850-06-01T12:34:56Z</date>\n"
        "\t<key>real</key>\n\t<real>0.1</real>\n"
        "\t<key>unsigned</key>\n\t<integer>18446744073709551615</integer>\n";
    writeFile(others);
    write("x", 1L);
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(folder.read(fileName), listOf(others + "\t<key>x</key>\n\t<integer>1</integer>\n"));
}

TEST_F(GNUstepPreferencesWrites, KeysThatAnotherProcessWroteMeanwhileStay) {
    writeFile("<key>theirs</key><integer>1</integer>");
    ASSERT_EQ(read("theirs"), "1");
    write("ours", true);
    writeFile("<key>theirs</key><integer>2</integer><key>more</key><data>AA==</data>");
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(readByAnother("theirs"), "2");
    EXPECT_EQ(readByAnother("more"), "other");
    EXPECT_EQ(readByAnother("ours"), "true");
}

TEST_F(GNUstepPreferencesWrites, WhatAnotherProcessWritesWhileTheLockIsWaitedForStays) {
    write("ours", true);
    folder.makeFolder(".lck/.GNUstepDefaults.lck");
    calls.before = [this](const std::string& name) {
        if (name != "nanosleep") return;
        writeFile("<key>theirs</key><integer>2</integer>");
        std::filesystem::remove(folder / ".lck/.GNUstepDefaults.lck");
        calls.before = nullptr;
    };
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(readByAnother("theirs"), "2");
    EXPECT_EQ(readByAnother("ours"), "true");
}

TEST_F(GNUstepPreferencesWrites, TheLockIsHeldFromTheLastLookAtTheFileToItsRenaming) {
    writeFile("<key>look</key><false/>");
    write("look", true);
    const std::set<std::string> wanted{"mkdir", "rmdir", "rename", "renameNoReplace", "mkostemp", "stat"};
    std::vector<std::string> order;
    calls.before = [&](const std::string& name) {
        if (wanted.contains(name)) order.push_back(name);
    };
    ASSERT_TRUE(synchronize());
    // The folder .lck is missing at first.
    EXPECT_THAT(order, ElementsAre("stat", "mkostemp", "mkdir", "mkdir", "mkdir", "stat", "rename", "rename"));
    EXPECT_FALSE(std::filesystem::exists(folder / ".lck/.GNUstepDefaults.lck"));

    // The lock stands aside by now.
    order.clear();
    write("look", false);
    ASSERT_TRUE(synchronize());
    EXPECT_THAT(order, ElementsAre("stat", "mkostemp", "renameNoReplace", "stat", "rename", "rename"));
    EXPECT_FALSE(std::filesystem::exists(folder / ".lck/.GNUstepDefaults.lck"));
}

TEST_F(GNUstepPreferencesWrites, WhatAnotherProcessWritesWhileTheNewFileGoesToTheDiskStays) {
    write("ours", true);
    calls.before = [this](const std::string& name) {
        if (name != "fsync") return;
        writeFile("<key>theirs</key><integer>2</integer>");
        calls.before = nullptr;
    };
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(readByAnother("theirs"), "2");
    EXPECT_EQ(readByAnother("ours"), "true");
    EXPECT_THAT(folder.names(), UnorderedElementsAre(".lck", fileName));
}

TEST_F(GNUstepPreferencesWrites, NothingIsWrittenWhenAnotherProcessWroteTheSameMeanwhile) {
    write("look", true);
    calls.before = [this](const std::string& name) {
        if (name != "fsync") return;
        writeFile("<key>look</key><true></true>");
        calls.before = nullptr;
    };
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(folder.read(fileName), listOf("<key>look</key><true></true>"));
    EXPECT_THAT(folder.names(), UnorderedElementsAre(".lck", fileName));
}

TEST_F(GNUstepPreferencesWrites, NothingIsWrittenWhenNothingChanged) {
    writeFile("<key>look</key><true></true><key>n</key><integer>0x10</integer><key>t</key><string>&#97;</string>");
    const auto before = fileStatus();
    write("look", true);
    write("n", 16L);
    write("t", std::string("a"));
    EXPECT_TRUE(synchronize());
    EXPECT_TRUE(synchronize());
    const auto after = fileStatus();
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_EQ(after.st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    EXPECT_EQ(after.st_ctim.tv_nsec, before.st_ctim.tv_nsec);
    EXPECT_EQ(calls.count("mkdir"), 0);
}

TEST_F(GNUstepPreferencesWrites, TheFileIsItsUsersAlone) {
    writeFile("");
    ASSERT_EQ(chmod((folder / fileName).c_str(), 0644), 0);
    write("look", true);
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(fileStatus().st_mode & 07777, 0600U);
}

TEST_F(GNUstepPreferencesWrites, AMissingFolderIsMade) {
    GNUstepPreferences deep(folder / "GNUstep/Defaults", log, calls);
    deep.setAppValue("look", true, appID);
    EXPECT_TRUE(deep.synchronize(appID));
    EXPECT_EQ(folder.read("GNUstep/Defaults/" + fileName), listOf("\t<key>look</key>\n\t<true/>\n"));
}

TEST_F(GNUstepPreferencesWrites, AFileBehindALinkIsReplacedThroughIt) {
    folder.makeFolder("dotfiles");
    folder.write("dotfiles/codec", listOf("<key>theirs</key><true/>"));
    ASSERT_EQ(symlink("dotfiles/codec", (folder / fileName).c_str()), 0);
    write("look", true);
    ASSERT_TRUE(synchronize());
    EXPECT_TRUE(std::filesystem::is_symlink(folder / fileName));
    EXPECT_FALSE(std::filesystem::is_symlink(folder / "dotfiles/codec"));
    EXPECT_EQ(readByAnother("theirs"), "true");
    EXPECT_EQ(readByAnother("look"), "true");
}

TEST_F(GNUstepPreferencesWrites, TwoProcessesThatWriteAllTheTimeLoseNothing) {
    constexpr long rounds = 150;
    const auto writeRounds = [this](const std::string& prefix) {
        GNUstepPreferences own(folder.path, log);
        bool isFine = true;
        for (long round = 0; round < rounds; ++round) {
            own.setAppValue(prefix + std::to_string(round), round, appID);
            isFine = own.synchronize(appID) && isFine;
        }
        return isFine;
    };
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) _exit(writeRounds("child") ? 0 : 1);
    EXPECT_TRUE(writeRounds("parent"));
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);

    const auto list = PropertyList::parse(folder.read(fileName));
    ASSERT_TRUE(list);
    EXPECT_THAT(list->keys(), SizeIs(2 * rounds));
}

// A file that is no property list

struct GNUstepPreferencesDamage : GNUstepPreferencesTest {
    GNUstepPreferencesDamage() {
        folder.write(fileName, damage);
        const struct timespec written[] = {{1'709'251'199, 0}, {1'709'251'199, 0}};
        EXPECT_EQ(utimensat(AT_FDCWD, (folder / fileName).c_str(), written, 0), 0);
    }

    /// The names of what was kept aside.
    std::vector<std::string> kept() const {
        std::vector<std::string> found;
        for (const auto& name : folder.names()) {
            if (name.starts_with(fileName + ".unreadable-")) found.push_back(name);
        }
        return found;
    }

    /// While the store pauses, another program goes on writing.
    void whilePausing(const std::function<void()>& work) {
        calls.before = [work](const std::string& name) {
            if (name == "nanosleep") work();
        };
    }
};

TEST_F(GNUstepPreferencesDamage, ItReadsAsEmptyAndStaysUntilTheNextWrite) {
    EXPECT_EQ(read("look"), "absent");
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(folder.read(fileName), damage);
    EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(GNUstepPreferencesDamage, TheNextWriteKeepsItBesideItselfAndSaysSoOnce) {
    write("look", true);
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(folder.read(fileName), listOf("\t<key>look</key>\n\t<true/>\n"));
    ASSERT_THAT(kept(), SizeIs(1));
    EXPECT_EQ(folder.read(kept()[0]), damage);
    EXPECT_THAT(journal.lines(), ElementsAre(AllOf(HasSubstr(folder / fileName), HasSubstr(kept()[0]))));

    write("look", false);
    ASSERT_TRUE(synchronize());
    EXPECT_THAT(kept(), SizeIs(1));
    EXPECT_THAT(journal.lines(), SizeIs(1));
}

TEST_F(GNUstepPreferencesDamage, TheNameTellsWhenItWasWritten) {
    write("look", true);
    ASSERT_TRUE(synchronize());
    EXPECT_THAT(kept(), ElementsAre(fileName + ".unreadable-20240229T235959Z"));
}

TEST_F(GNUstepPreferencesDamage, AnotherOfThatTimeGetsANumber) {
    folder.write(fileName + ".unreadable-20240229T235959Z", "an earlier one");
    write("look", true);
    ASSERT_TRUE(synchronize());
    ASSERT_THAT(kept(),
                ElementsAre(fileName + ".unreadable-20240229T235959Z", fileName + ".unreadable-20240229T235959Z-2"));
    EXPECT_EQ(folder.read(kept()[0]), "an earlier one");
    EXPECT_EQ(folder.read(kept()[1]), damage);
}

TEST_F(GNUstepPreferencesDamage, AnArrayAtTheTopIsKeptAsideToo) {
    folder.write(fileName, "<plist><array/></plist>");
    write("look", true);
    ASSERT_TRUE(synchronize());
    EXPECT_THAT(kept(), SizeIs(1));
}

TEST_F(GNUstepPreferencesDamage, AFileThatNestsTooDeeplyIsKeptAsideToo) {
    std::string nested = "<plist><dict><key>a</key>";
    for (int level = 0; level < 200'000; ++level) nested += "<array>";
    folder.write(fileName, nested);
    EXPECT_EQ(read("a"), "absent");
    write("look", true);
    ASSERT_TRUE(synchronize());
    EXPECT_THAT(kept(), SizeIs(1));
}

TEST_F(GNUstepPreferencesDamage, BehindALinkItIsKeptBesideTheFileAndNotTheLink) {
    folder.makeFolder("dotfiles");
    folder.write("dotfiles/codec", damage);
    std::filesystem::remove(folder / fileName);
    ASSERT_EQ(symlink("dotfiles/codec", (folder / fileName).c_str()), 0);
    write("look", true);
    ASSERT_TRUE(synchronize());
    EXPECT_THAT(kept(), IsEmpty());
    EXPECT_TRUE(std::filesystem::is_symlink(folder / fileName));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "dotfiles"), {}), 2);
}

TEST_F(GNUstepPreferencesDamage, WhatItHeldWhenItCouldLastBeReadIsInTheNewFile) {
    writeFile("\t<key>theirs</key>\n\t<data>AA==</data>\n");
    ASSERT_EQ(read("theirs"), "other");
    folder.write(fileName, damage);
    EXPECT_EQ(read("theirs"), "other");
    write("x", 1L);
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(folder.read(fileName), listOf("\t<key>theirs</key>\n\t<data>AA==</data>\n"
                                            "\t<key>x</key>\n\t<integer>1</integer>\n"));
    EXPECT_THAT(kept(), SizeIs(1));
}

TEST_F(GNUstepPreferencesDamage, OneThatAnotherProgramIsStillWritingIsReadWhenThatIsDone) {
    whilePausing([this] { writeFile("\t<key>theirs</key>\n\t<true/>\n"); });
    EXPECT_EQ(read("theirs"), "true");
    EXPECT_EQ(calls.secondsSlept(), 0.25);
    write("x", 1L);
    ASSERT_TRUE(synchronize());
    EXPECT_EQ(readByAnother("theirs"), "true");
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(GNUstepPreferencesDamage, OneThatAnotherProgramEmptiedAndFillsAfterTheSetUpIsMergedWith) {
    folder.write(fileName, "");
    write("x", 1L);
    int pauses = 0;
    whilePausing([&] {
        if (++pauses == 1) folder.write(fileName, "<plist><dict>");
        if (pauses == 2) writeFile("\t<key>theirs</key>\n\t<true/>\n");
    });
    EXPECT_FALSE(synchronize());
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(readByAnother("theirs"), "true");
    EXPECT_EQ(readByAnother("x"), "1");
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(GNUstepPreferencesDamage, OneThatIsStillChangingIsNotKeptAside) {
    write("look", true);
    whilePausing([this] { folder.write(fileName, damage + " later"); });
    EXPECT_FALSE(synchronize());
    EXPECT_EQ(folder.read(fileName), damage + " later");
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(GNUstepPreferencesDamage, OneThatVanishesMeanwhileIsNotKept) {
    write("look", true);
    whilePausing([this] { std::filesystem::remove(folder / fileName); });
    EXPECT_TRUE(synchronize());
    EXPECT_EQ(readByAnother("look"), "true");
    EXPECT_THAT(kept(), IsEmpty());
}

TEST_F(GNUstepPreferencesDamage, IsWaitedForOnceAndNotAtEachRead) {
    settle();
    for (int round = 0; round < 5; ++round) EXPECT_EQ(read("look"), "absent");
    EXPECT_EQ(calls.secondsSlept(), 0.25);
}

TEST_F(GNUstepPreferencesDamage, WhenItCantBeKeptAsideItIsNotReplaced) {
    for (const auto* call : {"link", "renameNoReplace"}) calls.failEvery(call, EACCES);
    write("look", true);
    EXPECT_FALSE(synchronize());
    EXPECT_EQ(folder.read(fileName), damage);
    EXPECT_EQ(read("look"), "true");
    EXPECT_THAT(journal.lines(), ElementsAre(HasSubstr("couldn’t be stored because permission is denied")));
    for (const auto* call : {"link", "renameNoReplace"}) calls.failEvery(call, 0);
    EXPECT_TRUE(synchronize());
    EXPECT_THAT(kept(), SizeIs(1));
}

TEST_F(GNUstepPreferencesDamage, WhenAHundredOfItsTimeAreKeptItIsNotReplaced) {
    const std::string name = fileName + ".unreadable-20240229T235959Z";
    folder.write(name, "");
    for (int number = 2; number <= 100; ++number) folder.write(name + '-' + std::to_string(number), "");
    write("look", true);
    EXPECT_FALSE(synchronize());
    EXPECT_EQ(folder.read(fileName), damage);
}

TEST_F(GNUstepPreferencesDamage, OnADiskWithoutSecondNamesItIsRenamed) {
    for (const int error : {EPERM, EOPNOTSUPP, ENOSYS, EMLINK}) {
        folder.write(fileName, damage + std::to_string(error));
        calls.fail("link", error);
        write("look", true);
        ASSERT_TRUE(synchronize());
        EXPECT_EQ(readByAnother("look"), "true");
    }
    EXPECT_THAT(kept(), SizeIs(4));
}

TEST_F(GNUstepPreferencesDamage, WheneverTheProcessIsKilledThereIsAFileAndTheDamagedOneIsKeptOnce) {
    std::size_t number = 0;
    const auto store = [this](posix::SystemCalls& killing) {
        GNUstepPreferences theirs(folder.path, log, killing);
        theirs.setAppValue("look", true, appID);
        theirs.synchronize(appID);
    };
    for (; posix::killedBeforeCall(number, store); ++number) {
        SCOPED_TRACE(number);
        ASSERT_TRUE(std::filesystem::exists(folder / fileName));
        calls.pass(30);
        write("look", true);
        ASSERT_TRUE(synchronize());
        ASSERT_THAT(kept(), SizeIs(1));
        EXPECT_EQ(folder.read(kept()[0]), damage);
        EXPECT_THAT(folder.names(), UnorderedElementsAre(".lck", fileName, kept()[0]));
        std::filesystem::rename(folder / kept()[0], folder / fileName);
    }
    EXPECT_GE(number, 20U);
}

}  // namespace
}  // namespace vantrel::gnustep

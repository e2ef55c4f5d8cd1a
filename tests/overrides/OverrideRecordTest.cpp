#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>

#include "overrides/KVRXMetadataDictionary/OverrideRecord.h"
#include "platform/memory/MemorySystem.h"
#include "tests/platform/posix/DiskWithPowerCuts.h"
#include "tests/platform/posix/Processes.h"
#include "tests/platform/posix/SystemCallsWithOwnClock.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel {
namespace {

using gnustep::PropertyList;
using gnustep::PropertyListChanges;
using posix::TemporaryFolder;
using testing::_;
using testing::AllOf;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const std::string recordName = "Vantrel/OverrideMetadata.plist";

std::string listOf(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>" + entries +
           "</dict>\n</plist>\n";
}

PropertyList numbers(const std::map<std::string, int>& entries, const PropertyList& base = {}) {
    PropertyListChanges changes;
    for (const auto& [key, number] : entries) changes.set(key, long{number});
    return *base.with(changes);
}

/// -1 when there is none.
int numberIn(const PropertyList& list, const std::string& key) {
    const auto value = list.value(key);
    const auto* number = std::get_if<Number>(&value);
    return number ? static_cast<int>(number->longValue.value_or(-1)) : -1;
}

PropertyList textUnder(const std::string& key, const std::string& text) {
    PropertyListChanges changes;
    changes.set(key, text);
    return *PropertyList().with(changes);
}

/// A user's application support folder with the record in it, on which nobody waits.
struct OverrideRecordTest : testing::Test {
    void writeRecord(const std::string& contents) {
        folder.makeFolder("Vantrel");
        folder.write(recordName, contents);
    }

    std::string file() const { return folder.read(recordName); }

    /// The record's file and what else is in its folder.
    std::set<std::string> names() const {
        std::set<std::string> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder / "Vantrel")) {
            found.insert(entry.path().filename());
        }
        return found;
    }

    std::map<std::string, int> stored() {
        std::map<std::string, int> found;
        const auto list = PropertyList::parse(file());
        if (!list) throw std::runtime_error("the record can't be parsed");
        for (const auto& key : list->keys()) found[key] = numberIn(*list, key);
        return found;
    }

    bool set(const std::map<std::string, int>& entries) { return record.change({}, numbers(entries)); }

    TemporaryFolder folder;
    posix::SystemCallsWithOwnClock calls;
    memory::Journal journal;
    memory::MemoryLog log{journal};
    OverrideRecord record{folder.path, log, calls};
};

using Numbers = std::map<std::string, int>;

// Reading

TEST_F(OverrideRecordTest, WithoutAFileOrAFolderItIsEmptyAndNothingIsMade) {
    ASSERT_TRUE(record.read());
    EXPECT_THAT(record.read()->keys(), IsEmpty());
    EXPECT_THAT(folder.names(), IsEmpty());
    folder.makeFolder("Vantrel");
    ASSERT_TRUE(record.read());
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(OverrideRecordTest, AnEmptyFileIsNoRecordAndIsReplaced) {
    writeRecord("");
    ASSERT_TRUE(record.read());
    EXPECT_THAT(record.read()->keys(), IsEmpty());
    EXPECT_TRUE(set({{"CPUM", 3}}));
    EXPECT_EQ(stored(), (Numbers{{"CPUM", 3}}));
}

TEST_F(OverrideRecordTest, HasWhatItsFileHasNow) {
    writeRecord(listOf("<key>CPUM</key><integer>2</integer>"));
    EXPECT_EQ(numberIn(*record.read(), "CPUM"), 2);
    writeRecord(listOf("<key>CPUM</key><integer>5</integer>"));
    EXPECT_EQ(numberIn(*record.read(), "CPUM"), 5);
}

struct Unusable {
    const char* name;
    std::string contents;

    friend void PrintTo(const Unusable& record, std::ostream* out) { *out << record.name; }
};

/// A sound binary list whose one text stands in it once and is meant twenty thousand times.
std::string listThatGrowsWhenItIsRead() {
    constexpr std::size_t copies = 20'000;
    const auto twoBytes = [](std::size_t number) {
        return std::string{static_cast<char>(number >> 8U), static_cast<char>(number & 0xFFU)};
    };
    std::string bytes = "bplist00";
    std::string offsets;
    const auto begin = [&] { offsets += twoBytes(bytes.size()); };
    begin();
    bytes += std::string("\xD1") + twoBytes(1) + twoBytes(2);
    begin();
    bytes += "\x54LOOK";
    begin();
    bytes += "\xAF\x11" + twoBytes(copies);
    for (std::size_t copy = 0; copy < copies; ++copy) bytes += twoBytes(3);
    begin();
    bytes += "\x5F\x10\x40" + std::string(64, 'x');
    const auto table = bytes.size();
    const auto eightBytes = [](std::uint64_t number) {
        std::string text;
        for (unsigned shift = 64; shift > 0; shift -= 8) text += static_cast<char>((number >> (shift - 8)) & 0xFFU);
        return text;
    };
    return bytes + offsets + std::string(6, '\0') + "\x02\x02" + eightBytes(4) + eightBytes(0) + eightBytes(table);
}

class UnusableRecord : public OverrideRecordTest, public testing::WithParamInterface<Unusable> {};

TEST_P(UnusableRecord, CantBeReadAndIsNeverOverwritten) {
    writeRecord(GetParam().contents);
    EXPECT_FALSE(record.read());
    EXPECT_FALSE(set({{"CLSF", 1}}));
    EXPECT_EQ(file(), GetParam().contents);
    EXPECT_THAT(names(), ElementsAre("OverrideMetadata.plist"));
}

INSTANTIATE_TEST_SUITE_P(
    Each, UnusableRecord,
    testing::Values(Unusable{"Garbage", "not a list"}, Unusable{"Blank", " "},
                    Unusable{"CutShort", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>CLSF</key>"},
                    Unusable{"AnArrayAtTheTop", "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>"},
                    Unusable{"CutShortBinary", "bplist00"},
                    Unusable{"TooLong",
                             listOf("<key>CLSF</key><integer>1</integer>" + std::string(largestRecord, ' '))},
                    Unusable{"TooLongOnceItIsRead", listThatGrowsWhenItIsRead()}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(OverrideRecordTest, CantBeReadWhereACallSaysSo) {
    writeRecord(listOf(""));
    for (const char* call : {"open", "fstat", "read"}) {
        calls.failEvery(call, EACCES);
        EXPECT_FALSE(record.read()) << call;
        calls.failEvery(call, 0);
    }
    calls.failNth("open", 2, EIO);
    EXPECT_FALSE(record.read());
}

TEST_F(OverrideRecordTest, AFileThatIsWholeAQuarterOfASecondLaterIsRead) {
    const auto whole = listOf("<key>CPUM</key><integer>2</integer>");
    writeRecord(whole.substr(0, 60));
    calls.before = [&](const std::string& name) {
        if (name == "nanosleep") writeRecord(whole);
    };
    ASSERT_TRUE(record.read());
    EXPECT_EQ(numberIn(*record.read(), "CPUM"), 2);
}

TEST_F(OverrideRecordTest, NobodyWaitsForAFileThatCantBeOpened) {
    writeRecord(listOf(""));
    calls.failNth("open", 2, EACCES);
    EXPECT_FALSE(record.read());
    EXPECT_EQ(calls.count("nanosleep"), 0);
}

// Changing

TEST_F(OverrideRecordTest, TheFirstChangeMakesFileAndFoldersForTheirUserAlone) {
    OverrideRecord deep(folder / "Library/ApplicationSupport", log, calls);
    EXPECT_TRUE(deep.change({}, numbers({{"CPUM", 3}})));
    struct stat status {};
    ASSERT_EQ(stat((folder / ("Library/ApplicationSupport/" + recordName)).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
    ASSERT_EQ(stat((folder / "Library/ApplicationSupport/Vantrel").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode, S_IFDIR | 0700U);
    EXPECT_EQ(numberIn(*deep.read(), "CPUM"), 3);
}

TEST_F(OverrideRecordTest, WhatIsNewIsAddedWhatIsOtherReplacedAndWhatIsGoneTakenAway) {
    writeRecord(
        listOf("<key>GONE</key><integer>1</integer><key>KEPT</key><integer>2</integer>"
               "<key>OTHER</key><integer>3</integer>"));
    EXPECT_TRUE(record.change(numbers({{"GONE", 1}, {"KEPT", 2}, {"OTHER", 3}}),
                              numbers({{"KEPT", 2}, {"OTHER", 4}, {"NEW", 5}})));
    EXPECT_EQ(stored(), (Numbers{{"KEPT", 2}, {"OTHER", 4}, {"NEW", 5}}));
}

TEST_F(OverrideRecordTest, WhatOthersChangedSinceTheLoadStays) {
    writeRecord(
        listOf("<key>MINE</key><integer>1</integer><key>THEIRS</key><integer>1</integer>"
               "<key>TAKEN</key><integer>1</integer>"));
    const auto loaded = *record.read();
    ASSERT_TRUE(record.change(loaded, numbers({{"MINE", 1}, {"THEIRS", 2}, {"ADDED", 2}})));

    ASSERT_TRUE(record.change(loaded, numbers({{"MINE", 3}, {"THEIRS", 1}, {"TAKEN", 1}})));
    EXPECT_EQ(stored(), (Numbers{{"MINE", 3}, {"THEIRS", 2}, {"ADDED", 2}}));
}

TEST_F(OverrideRecordTest, OfTwoWhoChangeOneEntryTheLastOneWins) {
    writeRecord(listOf("<key>CPUM</key><integer>1</integer>"));
    const auto loaded = *record.read();
    EXPECT_TRUE(record.change(loaded, numbers({{"CPUM", 2}})));
    EXPECT_TRUE(record.change(loaded, numbers({{"CPUM", 3}})));
    EXPECT_EQ(stored(), (Numbers{{"CPUM", 3}}));
    EXPECT_TRUE(record.change(loaded, {}));
    EXPECT_EQ(stored(), Numbers());
}

TEST_F(OverrideRecordTest, AnEntryOfAnotherTypeIsAnotherEntry) {
    writeRecord(listOf("<key>CLSF</key><true/>"));
    EXPECT_TRUE(record.change(*record.read(), numbers({{"CLSF", 1}})));
    EXPECT_THAT(file(), HasSubstr("<integer>1</integer>"));
}

TEST_F(OverrideRecordTest, EveryOtherEntryStaysLetterForLetter) {
    const std::vector<std::string> others{
        "<array><integer>1</integer><string>two</string></array>",
        "<data>\n\tAAEC\n\t</data>",
        "<date>2100-11-21T00:00:00Z</date>",
        "<date>the day after tomorrow</date>",
        "<dict><key>CLSF</key><integer>9</integer></dict>",
        "<false/>",
        "<real>0.10000000000000001</real>",
        "<integer>0x0010</integer>",
        "<integer>18446744073709551615</integer>",
        "<string>&lt;&amp;&#13;<!-- &#65; --> \xE6\xBC\xA2<![CDATA[ ]]></string>",
    };
    std::string entries;
    for (std::size_t index = 0; index < others.size(); ++index) {
        entries += "<key>other" + std::to_string(index) + "</key>" + others[index];
    }
    writeRecord(listOf(entries));
    for (int round = 0; round < 3; ++round) EXPECT_TRUE(set({{"CLSF", round}}));
    for (const auto& other : others) EXPECT_THAT(file(), HasSubstr(other));
}

TEST_F(OverrideRecordTest, ARecordThatBecomesUnreadableAfterItWasLoadedIsNotOverwritten) {
    writeRecord(listOf("<key>CPUM</key><integer>1</integer>"));
    const auto loaded = *record.read();
    writeRecord("an editor's first draft");
    EXPECT_FALSE(record.change(loaded, numbers({{"CPUM", 2}})));
    EXPECT_EQ(file(), "an editor's first draft");
}

TEST_F(OverrideRecordTest, NoChangeMakesItLongerThanCanBeRead) {
    const auto half = textUnder("HALF", std::string(largestRecord / 2, 'x'));
    const auto other = textUnder("OTHER", std::string(largestRecord / 2, 'x'));
    ASSERT_TRUE(record.change({}, half));
    const auto before = file();
    EXPECT_FALSE(record.change({}, other));
    EXPECT_EQ(file(), before);
    EXPECT_TRUE(record.read());
}

TEST_F(OverrideRecordTest, NorLongerThanAnyListCanBe) {
    writeRecord(listOf("<key>CPUM</key><integer>1</integer>"));
    const auto before = file();
    // As long a list as can be read, with no room for another entry.
    auto entries = "<key>HUGE</key><string>" + std::string(gnustep::largestPropertyList, 'x') + "</string>";
    entries.erase(30, listOf(entries).size() - gnustep::largestPropertyList);
    const auto huge = PropertyList::parse(listOf(entries));
    ASSERT_TRUE(huge);
    EXPECT_FALSE(record.change({}, *huge));
    EXPECT_EQ(file(), before);
}

TEST_F(OverrideRecordTest, WhereNothingCanBeWrittenTheRecordStaysAndTheChangeFails) {
    writeRecord(listOf("<key>CPUM</key><integer>1</integer>"));
    calls.failEvery("mkostemp", EROFS);
    EXPECT_FALSE(set({{"CPUM", 2}}));
    EXPECT_EQ(stored(), (Numbers{{"CPUM", 1}}));
}

TEST_F(OverrideRecordTest, AChangeIsOnTheDiskBeforeItsNameAndTheNameBeforeTheEnd) {
    writeRecord(listOf(""));
    ASSERT_TRUE(set({{"CPUM", 1}}));
    std::vector<std::string> order;
    for (const auto& name : calls.made()) {
        if (name == "write" || name == "fsync" || name == "rename") order.push_back(name);
    }
    EXPECT_THAT(order, ElementsAre("write", "fsync", "rename", "fsync"));
}

// Several programs at once

/// Processes that each add numbers under keys of their own, all at the same time. Returns how many there are in the
/// end.
std::size_t numbersOf(const TemporaryFolder& folder, int processes, int numbersOfEach) {
    std::vector<pid_t> started;
    started.reserve(static_cast<std::size_t>(processes));
    for (int process = 0; process < processes; ++process) {
        started.push_back(posix::startProcess([&] {
            memory::Journal journal;
            memory::MemoryLog log(journal);
            OverrideRecord record(folder.path, log);
            for (int number = 0; number < numbersOfEach; ++number) {
                const auto loaded = record.read();
                if (!loaded) return false;
                const auto wanted =
                    numbers({{std::to_string(process) + " " + std::to_string(number), number}}, *loaded);
                if (!record.change(*loaded, wanted)) return false;
            }
            return journal.lines().empty();
        }));
    }
    for (const pid_t process : started) EXPECT_EQ(posix::endOf(process), 0);
    const auto list = PropertyList::parse(folder.read(recordName));
    return list ? list->keys().size() : 0;
}

TEST_F(OverrideRecordTest, TwoProcessesThatEachStoreThreeHundredNumbersLoseNone) {
    EXPECT_EQ(numbersOf(folder, 2, 300), 600U);
    EXPECT_THAT(names(), ElementsAre("OverrideMetadata.plist"));
}

TEST_F(OverrideRecordTest, ThreeProcessesLoseNoneEither) {
    EXPECT_EQ(numbersOf(folder, 3, 300), 900U);
    EXPECT_THAT(names(), ElementsAre("OverrideMetadata.plist"));
}

TEST_F(OverrideRecordTest, WhoTakesNoLockAndComesInBetweenLosesNothing) {
    const auto theirs = listOf("<key>THEIRS</key><integer>1</integer>");
    for (const std::string& before : {std::string(), listOf("<key>OLD</key><integer>1</integer>")}) {
        if (!before.empty()) writeRecord(before);
        bool cameIn = false;
        calls.before = [&](const std::string& name) {
            if (name != "lstat" || cameIn) return;
            cameIn = true;
            folder.write("Vantrel/new", theirs);
            std::filesystem::rename(folder / "Vantrel/new", folder / recordName);
        };
        EXPECT_TRUE(set({{"MINE", 2}}));
        EXPECT_EQ(stored(), (Numbers{{"MINE", 2}, {"THEIRS", 1}}));
        EXPECT_TRUE(cameIn);
        std::filesystem::remove(folder / recordName);
    }
}

TEST_F(OverrideRecordTest, WhoRemovesTheRecordInBetweenHasRemovedIt) {
    writeRecord(listOf("<key>OLD</key><integer>1</integer>"));
    calls.before = [&](const std::string& name) {
        if (name == "lstat" && calls.count("lstat") == 1) std::filesystem::remove(folder / recordName);
    };
    EXPECT_TRUE(set({{"MINE", 2}}));
    EXPECT_EQ(stored(), (Numbers{{"MINE", 2}}));
}

TEST_F(OverrideRecordTest, SomebodyWhoComesInBetweenEveryTimeKeepsTheRecordAndTheChangeFails) {
    int times = 0;
    calls.before = [&](const std::string& name) {
        if (name == "lstat") writeRecord(listOf("<key>TIME</key><integer>" + std::to_string(++times) + "</integer>"));
    };
    EXPECT_FALSE(set({{"MINE", 2}}));
    EXPECT_EQ(stored(), (Numbers{{"TIME", times}}));
    EXPECT_THAT(names(), ElementsAre("OverrideMetadata.plist"));
}

TEST_F(OverrideRecordTest, WhatCantBeLookedAtAgainIsNotReplaced) {
    writeRecord(listOf("<key>OLD</key><integer>1</integer>"));
    calls.failEvery("lstat", EACCES);
    EXPECT_FALSE(set({{"MINE", 2}}));
    EXPECT_EQ(stored(), (Numbers{{"OLD", 1}}));
}

TEST_F(OverrideRecordTest, NorIsARecordMadeWhereNobodyCanTellWhetherThereIsOne) {
    calls.failEvery("lstat", EACCES);
    EXPECT_FALSE(set({{"MINE", 2}}));
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(OverrideRecordTest, WhoRewritesTheFileInPlaceLosesNothing) {
    const auto whole = listOf("<key>THEIRS</key><integer>1</integer>");
    for (const auto& half : {std::string(), whole.substr(0, 60)}) {
        writeRecord(half);
        calls.before = [&](const std::string& name) {
            if (name == "nanosleep") writeRecord(whole);
        };
        EXPECT_TRUE(set({{"MINE", 2}})) << half;
        EXPECT_EQ(stored(), (Numbers{{"MINE", 2}, {"THEIRS", 1}})) << half;
    }
}

/// The lock on the record's folder, as another program has it.
struct Lock {
    explicit Lock(const TemporaryFolder& folder) {
        folder.makeFolder("Vantrel");
        file = open((folder / "Vantrel").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        EXPECT_EQ(flock(file, LOCK_EX | LOCK_NB), 0);
    }
    ~Lock() { close(file); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    int file = -1;
};

TEST_F(OverrideRecordTest, ALockIsWaitedForASecondAndAHalfAndThenDoneWithoutInOneLineOfTheLog) {
    {
        const Lock lock(folder);
        EXPECT_TRUE(set({{"CPUM", 2}}));
        EXPECT_GE(calls.secondsSlept(), 1.5);
        EXPECT_LE(calls.secondsSlept(), 1.505);
        EXPECT_EQ(stored(), (Numbers{{"CPUM", 2}}));
        EXPECT_TRUE(set({{"CPUM", 3}}));
        EXPECT_THAT(journal.lines(), ElementsAre(AllOf(HasSubstr("is changed without its lock because this is in use"),
                                                       HasSubstr(folder / "Vantrel"))));
    }
    EXPECT_TRUE(set({{"CPUM", 4}}));
    EXPECT_THAT(journal.lines(), ElementsAre(_, HasSubstr("is changed with its lock again")));
}

TEST_F(OverrideRecordTest, WithoutTheLockWhatOthersWroteMeanwhileStays) {
    writeRecord(listOf("<key>OLD</key><integer>1</integer>"));
    const Lock lock(folder);
    calls.before = [&](const std::string& name) {
        if (name == "lstat" && calls.count("lstat") == 1) writeRecord(listOf("<key>THEIRS</key><integer>1</integer>"));
    };
    EXPECT_TRUE(set({{"MINE", 2}}));
    EXPECT_EQ(stored(), (Numbers{{"MINE", 2}, {"THEIRS", 1}}));
}

TEST_F(OverrideRecordTest, ALockIsTakenAsSoonAsItIsFree) {
    auto lock = std::make_unique<Lock>(folder);
    calls.before = [&](const std::string& name) {
        if (name == "nanosleep" && calls.secondsSlept() > 0.5) lock.reset();
    };
    EXPECT_TRUE(set({{"CPUM", 2}}));
    EXPECT_LE(calls.secondsSlept(), 0.6);
    EXPECT_THAT(journal.lines(), IsEmpty());
}

TEST_F(OverrideRecordTest, TheLockIsHeldUntilTheRecordIsChanged) {
    calls.after = [&](const std::string& name) {
        if (name != "rename" && name != "lstat") return;
        const int other = open((folder / "Vantrel").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), -1) << name;
        close(other);
    };
    EXPECT_TRUE(set({{"CPUM", 2}}));
    const Lock free(folder);
}

TEST_F(OverrideRecordTest, TheLockIsFreeWhileTheRenamingIsOnItsWayToTheDisk) {
    int renamings = 0;
    calls.before = [&](const std::string& name) {
        if (name != "fsync" || calls.count("rename") == 0) return;
        const Lock free(folder);
        ++renamings;
    };
    EXPECT_TRUE(set({{"CPUM", 2}}));
    EXPECT_EQ(renamings, 1);
}

TEST_F(OverrideRecordTest, TheLockOfAProcessThatIsKilledIsFree) {
    const pid_t process = posix::startProcess([&] {
        const Lock lock(folder);
        folder.write("has the lock", "");
        pause();
        return true;
    });
    while (!folder.names().contains("has the lock")) usleep(1000);
    kill(process, SIGKILL);
    posix::endOf(process);
    EXPECT_TRUE(set({{"CPUM", 2}}));
    EXPECT_EQ(calls.count("nanosleep"), 0);
}

TEST_F(OverrideRecordTest, AFileSystemWithoutLocksIsDoneWithout) {
    calls.failEvery("flock", ENOLCK);
    EXPECT_TRUE(set({{"CPUM", 2}}));
    EXPECT_EQ(calls.count("nanosleep"), 0);
    EXPECT_THAT(journal.lines(), IsEmpty());
}

// Links

TEST_F(OverrideRecordTest, ALinkInItsPlaceIsNeitherFollowedNorReplaced) {
    folder.makeFolder("Vantrel");
    const auto outside = listOf("<key>CPUM</key><integer>1</integer>");
    folder.write("outside.plist", outside);
    for (const char* leadsTo : {"../outside.plist", "../nowhere.plist"}) {
        std::filesystem::create_symlink(leadsTo, folder / recordName);
        EXPECT_FALSE(record.read()) << leadsTo;
        EXPECT_FALSE(set({{"CPUM", 2}})) << leadsTo;
        EXPECT_EQ(std::filesystem::read_symlink(folder / recordName), leadsTo);
        std::filesystem::remove(folder / recordName);
    }
    EXPECT_EQ(folder.read("outside.plist"), outside);
    EXPECT_EQ(folder.names(), (std::set<std::string>{"Vantrel", "outside.plist"}));
}

TEST_F(OverrideRecordTest, ALinkInThePlaceOfItsFolderIsNotFollowed) {
    folder.makeFolder("outside");
    folder.write("outside/OverrideMetadata.plist", listOf(""));
    for (const char* leadsTo : {"outside", "nowhere"}) {
        std::filesystem::create_symlink(leadsTo, folder / "Vantrel");
        EXPECT_FALSE(record.read()) << leadsTo;
        EXPECT_FALSE(set({{"CPUM", 2}})) << leadsTo;
        std::filesystem::remove(folder / "Vantrel");
    }
    EXPECT_EQ(folder.read("outside/OverrideMetadata.plist"), listOf(""));
    EXPECT_EQ(folder.names(), std::set<std::string>{"outside"});
}

TEST_F(OverrideRecordTest, ALinkThatTakesItsPlaceMeanwhileIsNotFollowedEither) {
    writeRecord(listOf(""));
    folder.write("outside.plist", listOf(""));
    calls.before = [&](const std::string& name) {
        if (name != "lstat" || calls.count("lstat") > 1) return;
        std::filesystem::remove(folder / recordName);
        std::filesystem::create_symlink("../outside.plist", folder / recordName);
    };
    EXPECT_FALSE(set({{"CPUM", 2}}));
    EXPECT_EQ(folder.read("outside.plist"), listOf(""));
}

TEST_F(OverrideRecordTest, TheFoldersAboveMayBeLinks) {
    folder.makeFolder("elsewhere");
    std::filesystem::create_symlink("elsewhere", folder / "ApplicationSupport");
    OverrideRecord linked(folder / "ApplicationSupport", log, calls);
    EXPECT_TRUE(linked.change({}, numbers({{"CPUM", 2}})));
    EXPECT_EQ(numberIn(*linked.read(), "CPUM"), 2);
}

// Failures

TEST_F(OverrideRecordTest, AFailureIsLoggedOnceWithPathAndReasonAndSoIsItsEnd) {
    writeRecord(listOf(""));
    calls.failEvery("mkostemp", ENOSPC);
    EXPECT_FALSE(set({{"CPUM", 2}}));
    EXPECT_FALSE(set({{"CPUM", 3}}));
    EXPECT_THAT(journal.lines(),
                ElementsAre(AllOf(HasSubstr("“OverrideMetadata.plist” couldn’t be changed because the disk is full"),
                                  HasSubstr(folder / "Vantrel"))));
    calls.failEvery("mkostemp", 0);
    EXPECT_TRUE(set({{"CPUM", 2}}));
    EXPECT_TRUE(set({{"CPUM", 3}}));
    EXPECT_THAT(journal.lines(), ElementsAre(_, HasSubstr("“OverrideMetadata.plist” can be changed again: ")));
}

TEST_F(OverrideRecordTest, TheLogTellsWhyARecordCantBeChanged) {
    const struct {
        std::string record;
        const char* reason;
    } unusable[] = {{"not a list", "this isn’t a property list: "},
                    {listOf(std::string(largestRecord, ' ')), "this is too long: "},
                    {listThatGrowsWhenItIsRead(), "this is too long: "}};
    for (const auto& each : unusable) {
        writeRecord(each.record);
        EXPECT_FALSE(set({{"CPUM", 2}}));
        EXPECT_THAT(journal.lines().back(), HasSubstr(each.reason + folder / recordName));
    }
}

TEST_F(OverrideRecordTest, TheLogTellsOfEveryCallThatKeepsAChangeFromTheRecord) {
    writeRecord(listOf(""));
    const struct {
        const char* call;
        int nth;
    } needed[] = {{"open", 1},  {"open", 2},  {"open", 3},   {"mkostemp", 1},
                  {"write", 1}, {"fsync", 1}, {"rename", 1}, {"fsync", 2}};
    for (const auto& [call, nth] : needed) {
        const auto told = journal.lines().size();
        calls.failNth(call, nth, EIO);
        EXPECT_FALSE(set({{"CPUM", 2}})) << call << nth;
        EXPECT_THAT(journal.lines().back(), HasSubstr("because the disk reports an error here: ")) << call << nth;
        EXPECT_TRUE(set({{"CPUM", 3}}));
        EXPECT_EQ(journal.lines().size(), told + 2) << call << nth;
    }
}

TEST_F(OverrideRecordTest, WhateverCallFailsTheRecordIsTheOldOneOrTheNewOneAndNothingElseIsLeft) {
    writeRecord(listOf("<key>CPUM</key><integer>1</integer>"));
    const auto old = file();
    ASSERT_TRUE(set({{"CPUM", 2}}));
    const auto changed = file();
    const auto usual = calls.made();

    for (const int error : {EIO, ENOSPC, EACCES, EDQUOT, EROFS, EMFILE}) {
        for (std::size_t index = 0; index < usual.size(); ++index) {
            SCOPED_TRACE(usual[index] + " number " + std::to_string(index) + " fails with " + std::to_string(error));
            writeRecord(old);
            posix::SystemCallsWithOwnClock faulty;
            faulty.before = [&](const std::string& name) {
                if (faulty.made().size() == index + 1) faulty.failNth(name, 0, error);
            };
            OverrideRecord failing(folder.path, log, faulty);
            const bool done = failing.change({}, numbers({{"CPUM", 2}}));
            EXPECT_THAT(file(), AnyOf(old, changed));
            EXPECT_TRUE(!done || file() == changed);
            EXPECT_THAT(names(), ElementsAre("OverrideMetadata.plist"));

            ASSERT_TRUE(set({{"CPUM", 2}}));
            EXPECT_EQ(file(), changed);
        }
    }
}

TEST_F(OverrideRecordTest, WhereverAProcessIsKilledTheRecordIsWholeAndTheNextChangeLeavesNothingElse) {
    writeRecord(listOf("<key>CPUM</key><integer>1</integer>"));
    std::size_t number = 0;
    const auto change = [&](posix::SystemCalls& killing) {
        OverrideRecord killed(folder.path, log, killing);
        EXPECT_TRUE(killed.change({}, numbers({{"KILLED", 1}})));
    };
    for (; posix::killedBeforeCall(number, change); ++number) {
        SCOPED_TRACE(number);
        EXPECT_THAT(stored(), AnyOf(Numbers{{"CPUM", 1}}, Numbers{{"CPUM", 1}, {"KILLED", 1}}));
        ASSERT_TRUE(record.change(numbers({{"KILLED", 1}}), {}));
        EXPECT_EQ(stored(), (Numbers{{"CPUM", 1}}));
        EXPECT_THAT(names(), ElementsAre("OverrideMetadata.plist"));
    }
    EXPECT_GE(number, 15U);
}

TEST_F(OverrideRecordTest, WheneverThePowerIsCutTheRecordIsWholeAndAFinishedChangeIsInIt) {
    for (const std::string& old : {std::string(), listOf("<key>CPUM</key><integer>1</integer>")}) {
        if (!old.empty()) writeRecord(old);
        posix::DiskWithPowerCuts disk(folder.path);
        std::set<std::string> found;
        const auto cut = [&] {
            for (const auto& contents : disk.afterACut()) {
                const auto left = contents.find(recordName);
                found.insert(left == contents.end() ? "" : left->second);
            }
        };
        disk.before = [&](const std::string&) { cut(); };
        OverrideRecord onDisk(folder.path, log, disk);
        EXPECT_TRUE(onDisk.change({}, numbers({{"CPUM", 2}})));
        const auto changed = file();
        EXPECT_THAT(found, UnorderedElementsAre(old, changed));

        found.clear();
        cut();
        EXPECT_THAT(found, ElementsAre(changed));
        std::filesystem::remove_all(folder / "Vantrel");
    }
}

}  // namespace
}  // namespace vantrel

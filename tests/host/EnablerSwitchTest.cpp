#include <gmock/gmock.h>

#include "host/EnablerSwitch.h"
#include "platform/memory/MemoryControls.h"
#include "platform/memory/MemoryFiles.h"
#include "platform/memory/MemorySystem.h"
#include "tests/Rules.h"
#include "tests/StoredValues.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Pair;

using Lines = std::vector<std::string>;

const std::string record = "/Applications/Final Cut Pro.app/Contents/version.plist";
const std::string active =
    "/Applications/Final Cut Pro.app/Contents/Resources/Non-Localized Settings/FXScripts/Enablers/RT Software "
    "Enabler.txt";
const std::string backup =
    "/Applications/Final Cut Pro.app/Contents/Resources/Non-Localized Settings/FXScripts/Enablers/RT Software "
    "EnablerA.txt";
const std::string ours703 = "/Library/Application Support/Vantrel/PLugins/RT Software Enabler703.txt";

/// The four states that the folder can be in, and a fifth for what must never come to be.
enum class Folder { inactive, active, broken, empty, other };

std::ostream& operator<<(std::ostream& out, Folder folder) {
    constexpr const char* names[] = {"inactive", "active", "broken", "empty", "other"};
    return out << names[static_cast<int>(folder)];
}

/// A switch in front of Final Cut Pro 7.0.3, for which there is an enabler. Nothing is swapped yet.
struct EnablerSwitchTest : testing::Test {
    EnablerSwitchTest() {
        propertyLists.dictionaries[record] = {{"CFBundleVersion", "7.0.3"}, {"CFBundleShortVersionString", "10.1"}};
        files.contents[ours703] = "ours";
        enter(Folder::inactive);
    }

    void enter(Folder folder) {
        files.contents.erase(active);
        files.contents.erase(backup);
        if (folder == Folder::inactive) files.contents[active] = "Apple's";
        if (folder == Folder::active) files.contents[active] = "ours";
        if (folder == Folder::active || folder == Folder::broken) files.contents[backup] = "Apple's";
    }

    Folder folder() {
        const auto at = [this](const std::string& path) {
            const auto found = files.contents.find(path);
            return found == files.contents.end() ? "" : found->second;
        };
        const std::pair found{at(active), at(backup)};
        if (found == std::pair<std::string, std::string>{"Apple's", ""}) return Folder::inactive;
        if (found == std::pair<std::string, std::string>{"ours", "Apple's"}) return Folder::active;
        if (found == std::pair<std::string, std::string>{"", "Apple's"}) return Folder::broken;
        if (found == std::pair<std::string, std::string>{"", ""}) return Folder::empty;
        return Folder::other;
    }

    /// The user clicks; the platform has changed the box before the switch hears of it.
    void click(long state) {
        box.shown = state;
        journal.clear();
        if (const auto shown = enabler.turn(state)) box.setState(*shown);
    }

    /// The key as it is read back, "absent" where it was never written.
    std::string key() {
        const auto& domain = preferences.domain("com.vantrel.codec");
        const auto found = domain.find("fcpRTEnableSwap");
        return found == domain.end() ? "absent" : describeStored(found->second);
    }

    /// What happened, with a word for each path.
    Lines events() const {
        const std::pair<std::string, std::string> words[] = {
            {record, "RECORD"}, {active, "ACTIVE"}, {backup, "BACKUP"}, {ours703, "OURS"}};
        Lines lines = journal.lines();
        for (auto& line : lines) {
            for (const auto& [path, word] : words) {
                for (auto at = line.find(path); at != std::string::npos; at = line.find(path)) {
                    line.replace(at, path.size(), word);
                }
            }
        }
        return lines;
    }

    Journal journal;
    MemoryPreferences preferences{journal};
    MemoryFiles files{journal};
    MemoryPropertyLists propertyLists{journal};
    MemoryAlerts alerts{journal};
    MemoryLog log{journal};
    SettingsStore store{preferences};
    MemoryCheckBox box{journal, "box"};
    EnablerSwitch enabler{files, propertyLists, alerts, log, store};
};

// Finding Final Cut Pro and the enabler for its version

TEST_F(EnablerSwitchTest, LooksAtTheFixedPathsAlone) {
    click(onState);
    EXPECT_THAT(journal.lines(),
                ElementsAre("dictionary " + record, "exists " + ours703, "move " + active + " -> " + backup,
                            "log Install enabler " + ours703, "copy " + ours703 + " -> " + active,
                            "write fcpRTEnableSwap = true", "synchronize"));
}

struct Refusal : Rule {
    std::optional<PropertyListEntries> versionRecord;
    /// What happens before the check box goes off.
    Lines events;
};

struct EnablerRefusal : EnablerSwitchTest, testing::WithParamInterface<Refusal> {};

/// Whichever way the box is clicked, and whatever the key and the folder hold.
TEST_P(EnablerRefusal, GoesOffTouchesNoFileAndWritesNoKey) {
    propertyLists.dictionaries.erase(record);
    if (GetParam().versionRecord) propertyLists.dictionaries[record] = *GetParam().versionRecord;
    Lines expected = GetParam().events;
    expected.emplace_back("box setState 0");

    for (const long state : {onState, offState, mixedState}) {
        for (const auto start : {Folder::inactive, Folder::active, Folder::broken, Folder::empty}) {
            for (const bool stored : {true, false}) {
                preferences.domain("com.vantrel.codec")["fcpRTEnableSwap"] = stored;
                enter(start);
                click(state);
                EXPECT_THAT(events(), ElementsAreArray(expected));
                EXPECT_EQ(box.shown, offState);
                EXPECT_EQ(folder(), start);
                EXPECT_EQ(key(), stored ? "true" : "false");
            }
        }
    }
}

Refusal refusedVersion(const std::string& rule, const std::string& version) {
    return {{rule},
            PropertyListEntries{{"CFBundleVersion", version}},
            {"dictionary RECORD", "alert Could not find supported version of FCP (Found version " + version + ")"}};
}

/// A version of the right length for which there is no enabler is looked for first.
Refusal missingEnabler(const std::string& rule, const std::string& version, const std::string& tag) {
    return {
        {rule},
        PropertyListEntries{{"CFBundleVersion", version}},
        {"dictionary RECORD", "exists /Library/Application Support/Vantrel/PLugins/RT Software Enabler" + tag + ".txt",
         "alert Could not find supported version of FCP (Found version " + version + ")"}};
}

INSTANTIATE_TEST_SUITE_P(
    EnablerSwitch, EnablerRefusal,
    testing::Values(Refusal{{"WithoutAVersionRecord"},
                            std::nullopt,
                            {"dictionary RECORD", "alert Could not find any FCP installation"}},
                    Refusal{{"WithAnEmptyVersionRecord"},
                            PropertyListEntries{},
                            {"dictionary RECORD",
                             "alert Could not find supported version of FCP (No version number in application)"}},
                    Refusal{{"WithAVersionUnderAnotherKeyOnly"},
                            PropertyListEntries{{"CFBundleShortVersionString", "7.0.3"}},
                            {"dictionary RECORD",
                             "alert Could not find supported version of FCP (No version number in application)"}},
                    refusedVersion("WithAnEmptyVersion", ""),                               //
                    refusedVersion("WithAVersionOf3Characters", "7.0"),                     //
                    refusedVersion("WithAVersionOf4Characters", "7.03"),                    //
                    refusedVersion("WithAVersionOf6Characters", "10.0.1"),                  //
                    refusedVersion("WithABlankBehindTheVersion", "7.0.3 "),                 //
                    refusedVersion("WithAVersionOf5BytesThatAre4Characters", "7.0\u00E9"),  //
                    refusedVersion("WithAVersionOf6BytesThatAre4Units",
                                   "7\U0001F600"
                                   "0"),                                                           //
                    refusedVersion("WithAVersionOf5CodePointsThatAre6Units", "7.\U0001F600.0"),    //
                    refusedVersion("WithAVersionOf5LettersThatAre6Units", "7.0.e\u0301"),          //
                    missingEnabler("WithoutAnEnablerForTheVersion", "7.0.2", "702"),               //
                    missingEnabler("WithoutAnEnablerForAVersionOfOtherPoints", "7,0,3", "7,0,3"),  //
                    missingEnabler("WithAVersionOfPointsAlone", ".....", "")),
    ByRule());

struct VersionTag : Rule {
    std::string version;
    std::string tag;
};

struct EnablerVersion : EnablerSwitchTest, testing::WithParamInterface<VersionTag> {};

TEST_P(EnablerVersion, FindsTheEnablerThatTheTagNames) {
    const std::string enablerPath =
        "/Library/Application Support/Vantrel/PLugins/RT Software Enabler" + GetParam().tag + ".txt";
    propertyLists.dictionaries[record] = {{"CFBundleVersion", GetParam().version}};
    files.contents = {{active, "Apple's"}, {enablerPath, "ours"}};
    click(onState);
    EXPECT_THAT(events(), ElementsAre("dictionary RECORD", "exists " + enablerPath, "move ACTIVE -> BACKUP",
                                      "log Install enabler " + enablerPath, "copy " + enablerPath + " -> ACTIVE",
                                      "write fcpRTEnableSwap = true", "synchronize"));
    EXPECT_EQ(folder(), Folder::active);
}

INSTANTIATE_TEST_SUITE_P(
    EnablerSwitch, EnablerVersion,
    testing::Values(VersionTag{{"OfAnOrdinaryVersion"}, "6.0.6", "606"},                    //
                    VersionTag{{"OfAVersionWithoutPoints"}, "12345", "12345"},              //
                    VersionTag{{"OfAVersionWithOnePoint"}, "10.41", "1041"},                //
                    VersionTag{{"OfAVersionWithPointsAtItsEnds"}, ".1.2.", "12"},           //
                    VersionTag{{"OfAVersionWithPointsInARow"}, "7...3", "73"},              //
                    VersionTag{{"OfAVersionOfPointsAlone"}, ".....", ""},                   //
                    VersionTag{{"OfAccentedLetters"}, "\u00E9.0.\u00FC", "\u00E90\u00FC"},  //
                    VersionTag{{"OfAnAccentOfItsOwn"}, "7.0e\u0301", "70e\u0301"},          //
                    VersionTag{{"OfIdeographs"},
                               "\u65E5.\u672C.1",
                               "\u65E5\u672C"
                               "1"},  //
                    VersionTag{{"OfAPairOfSurrogates"},
                               "7.\U0001F600"
                               "0",
                               "7\U0001F600"
                               "0"},
                    VersionTag{{"OfTwoPairsOfSurrogates"}, "\U0001F600.\U0001F600", "\U0001F600\U0001F600"}),
    ByRule());

// The swap

struct Click : Rule {
    Folder before;
    long state;
    /// File operations that fail by themselves, beside those that the folder's state makes fail.
    std::set<std::string> failing;
    /// What happens after the enabler for the version was found.
    Lines events;
    Folder after;
    long shown;
    /// The key, which was absent before the click.
    std::string key;
};

struct EnablerTransition : EnablerSwitchTest, testing::WithParamInterface<Click> {};

const std::string save = "move " + active + " -> " + backup;
const std::string install = "copy " + ours703 + " -> " + active;
const std::string restore = "move " + backup + " -> " + active;
const std::string erase = "remove " + active;

TEST_P(EnablerTransition, EndsAsTheTableSays) {
    const auto& click = GetParam();
    enter(click.before);
    files.failing = click.failing;
    this->click(click.state);

    Lines expected{"dictionary RECORD", "exists OURS"};
    expected.insert(expected.end(), click.events.begin(), click.events.end());
    EXPECT_THAT(events(), ElementsAreArray(expected));
    EXPECT_EQ(folder(), click.after);
    EXPECT_EQ(box.shown, click.shown);
    EXPECT_EQ(key(), click.key);
    EXPECT_EQ(files.contents[ours703], "ours");
}

INSTANTIATE_TEST_SUITE_P(
    EnablerSwitch, EnablerTransition,
    testing::Values(
        Click{{"SwitchingOnSavesTheirsInstallsOursAndWritesTrue"},
              Folder::inactive,
              onState,
              {},
              {"move ACTIVE -> BACKUP", "log Install enabler OURS", "copy OURS -> ACTIVE",
               "write fcpRTEnableSwap = true", "synchronize"},
              Folder::active,
              onState,
              "true"},
        Click{{"SwitchingOnWhereTheirsCantBeSavedGoesOff"},
              Folder::inactive,
              onState,
              {save},
              {"move ACTIVE -> BACKUP", "log Failed told to fail", "box setState 0"},
              Folder::inactive,
              offState,
              "absent"},
        Click{{"SwitchingOnWhereOursCantBeInstalledMovesTheirsBackAndGoesOff"},
              Folder::inactive,
              onState,
              {install},
              {"move ACTIVE -> BACKUP", "log Install enabler OURS", "copy OURS -> ACTIVE",
               "log Failed to replace RT file told to fail", "move BACKUP -> ACTIVE", "box setState 0"},
              Folder::inactive,
              offState,
              "absent"},
        Click{{"SwitchingOnWhereTheirsCantBeMovedBackEitherLeavesTheFolderBroken"},
              Folder::inactive,
              onState,
              {install, restore},
              {"move ACTIVE -> BACKUP", "log Install enabler OURS", "copy OURS -> ACTIVE",
               "log Failed to replace RT file told to fail", "move BACKUP -> ACTIVE", "box setState 0"},
              Folder::broken,
              offState,
              "absent"},
        Click{{"SwitchingOffWhatWasNeverOnSpringsBack"},
              Folder::inactive,
              offState,
              {},
              {"log Turn off enabler", "exists BACKUP", "log Saved RT Enabler file missing", "box setState 1"},
              Folder::inactive,
              onState,
              "absent"},
        Click{{"SwitchingOffDeletesOursMovesTheirsBackAndWritesFalse"},
              Folder::active,
              offState,
              {},
              {"log Turn off enabler", "exists BACKUP", "remove ACTIVE", "move BACKUP -> ACTIVE",
               "write fcpRTEnableSwap = false", "synchronize"},
              Folder::inactive,
              offState,
              "false"},
        Click{{"SwitchingOffCountsAsDoneWhereTheirsCantBeMovedBack"},
              Folder::active,
              offState,
              {restore},
              {"log Turn off enabler", "exists BACKUP", "remove ACTIVE", "move BACKUP -> ACTIVE",
               "write fcpRTEnableSwap = false", "synchronize"},
              Folder::broken,
              offState,
              "false"},
        Click{{"SwitchingOffWhereOursCantBeDeletedSpringsBack"},
              Folder::active,
              offState,
              {erase},
              {"log Turn off enabler", "exists BACKUP", "remove ACTIVE", "log Cannot delete RT File told to fail",
               "box setState 1"},
              Folder::active,
              onState,
              "absent"},
        Click{{"SwitchingOnWhatIsOnKeepsItAndGoesOff"},
              Folder::active,
              onState,
              {},
              {"move ACTIVE -> BACKUP", "log Failed BACKUP exists", "box setState 0"},
              Folder::active,
              offState,
              "absent"},
        Click{{"SwitchingOnABrokenFolderGoesOff"},
              Folder::broken,
              onState,
              {},
              {"move ACTIVE -> BACKUP", "log Failed ACTIVE does not exist", "box setState 0"},
              Folder::broken,
              offState,
              "absent"},
        Click{{"SwitchingOffABrokenFolderSpringsBack"},
              Folder::broken,
              offState,
              {},
              {"log Turn off enabler", "exists BACKUP", "remove ACTIVE",
               "log Cannot delete RT File ACTIVE does not exist", "box setState 1"},
              Folder::broken,
              onState,
              "absent"},
        Click{{"SwitchingOnAnEmptyFolderGoesOff"},
              Folder::empty,
              onState,
              {},
              {"move ACTIVE -> BACKUP", "log Failed ACTIVE does not exist", "box setState 0"},
              Folder::empty,
              offState,
              "absent"},
        Click{{"SwitchingOffAnEmptyFolderSpringsBack"},
              Folder::empty,
              offState,
              {},
              {"log Turn off enabler", "exists BACKUP", "log Saved RT Enabler file missing", "box setState 1"},
              Folder::empty,
              onState,
              "absent"},
        Click{{"TheMixedStateSwitchesOn"},
              Folder::inactive,
              mixedState,
              {},
              {"move ACTIVE -> BACKUP", "log Install enabler OURS", "copy OURS -> ACTIVE",
               "write fcpRTEnableSwap = true", "synchronize"},
              Folder::active,
              mixedState,
              "true"},
        Click{{"AFailedSwitchOnFromTheMixedStateGoesOff"},
              Folder::active,
              mixedState,
              {},
              {"move ACTIVE -> BACKUP", "log Failed BACKUP exists", "box setState 0"},
              Folder::active,
              offState,
              "absent"}),
    ByRule());

/// Of any state other than 0 the direction is on; the flag goes by its lowest byte, as everywhere.
TEST_F(EnablerSwitchTest, AStateWhoseLowestByteIsZeroSwitchesOnAndWritesFalse) {
    click(256);
    EXPECT_EQ(folder(), Folder::active);
    EXPECT_EQ(key(), "false");
}

/// All four file operations, failing alone and together, in all four states, in both directions.
TEST_F(EnablerSwitchTest, WhateverFailsTheOutcomeIsOneOfTheTable) {
    const std::string operations[] = {save, install, restore, erase};
    for (const auto before : {Folder::inactive, Folder::active, Folder::broken, Folder::empty}) {
        for (const long state : {onState, offState}) {
            for (unsigned subset = 0; subset < 16; ++subset) {
                files.failing.clear();
                for (unsigned i = 0; i < 4; ++i) {
                    if (subset & (1u << i)) files.failing.insert(operations[i]);
                }
                const auto fails = [this](const std::string& operation) { return files.failing.contains(operation); };
                const bool wasOn = state == onState;
                const bool moved =
                    wasOn ? before == Folder::inactive && !fails(save) : before == Folder::active && !fails(erase);
                const bool succeeds = moved && !(wasOn && fails(install));
                auto after = before;
                if (moved) after = fails(restore) ? Folder::broken : Folder::inactive;
                if (succeeds && wasOn) after = Folder::active;

                for (const bool stored : {true, false}) {
                    SCOPED_TRACE(testing::Message() << before << " clicked " << (wasOn ? "on" : "off") << " subset "
                                                    << subset << " key " << stored);
                    preferences.domain("com.vantrel.codec")["fcpRTEnableSwap"] = stored;
                    enter(before);
                    click(state);
                    EXPECT_EQ(folder(), after);
                    EXPECT_EQ(box.shown, succeeds ? state : (wasOn ? offState : onState));
                    EXPECT_EQ(key(), (succeeds ? wasOn : stored) ? "true" : "false");
                    EXPECT_THAT(journal.preferenceChanges(),
                                succeeds ? ElementsAreArray(Lines{
                                               std::string("write fcpRTEnableSwap = ") + (wasOn ? "true" : "false"),
                                               "synchronize"})
                                         : ElementsAreArray(Lines{}));
                    EXPECT_THAT(journal.linesStarting("alert"), IsEmpty());
                }
            }
        }
    }
}

TEST_F(EnablerSwitchTest, OnAndOffAgainLeavesEverythingAsItWas) {
    const auto before = files.contents;
    click(onState);
    click(offState);
    EXPECT_EQ(files.contents, before);
    EXPECT_THAT(contents(preferences.synchronizedDomain("com.vantrel.codec")),
                ElementsAre(Pair("fcpRTEnableSwap", "false")));
}

TEST_F(EnablerSwitchTest, NeverEnablesOrDisablesItsBox) {
    box.enabled = false;
    click(onState);
    click(offState);
    EXPECT_FALSE(box.enabled);
}

// How the folder stands

struct Standing : Rule {
    std::string activeContent;
    std::string backupContent;
    EnablerState state;
};

struct EnablerStanding : EnablerSwitchTest, testing::WithParamInterface<Standing> {
    EnablerStanding() {
        files.contents.erase(active);
        if (!GetParam().activeContent.empty()) files.contents[active] = GetParam().activeContent;
        if (!GetParam().backupContent.empty()) files.contents[backup] = GetParam().backupContent;
    }
};

TEST_P(EnablerStanding, IsToldWithoutAWordOrAChange) {
    const auto before = files.contents;
    EXPECT_EQ(enabler.state(), GetParam().state);
    EXPECT_EQ(files.contents, before);
    EXPECT_THAT(journal.linesStarting("alert"), IsEmpty());
    EXPECT_THAT(journal.linesStarting("log"), IsEmpty());
}

TEST_P(EnablerStanding, IsMendedWhereItIsBrokenAlone) {
    auto expected = files.contents;
    if (GetParam().state == EnablerState::broken) expected = {{ours703, "ours"}, {active, "Apple's"}};
    EXPECT_EQ(enabler.mend(), std::nullopt);
    EXPECT_EQ(files.contents, expected);
    EXPECT_EQ(key(), "absent");
}

TEST_P(EnablerStanding, IsAsABoxOfThatStateWantsIt) {
    EXPECT_EQ(enabler.isTurned(true), GetParam().state == EnablerState::on);
    EXPECT_EQ(enabler.isTurned(false), GetParam().state == EnablerState::off);
}

INSTANTIATE_TEST_SUITE_P(EnablerSwitch, EnablerStanding,
                         testing::Values(Standing{{"Off"}, "Apple's", "", EnablerState::off},
                                         Standing{{"On"}, "ours", "Apple's", EnablerState::on},
                                         Standing{{"Broken"}, "", "Apple's", EnablerState::broken},
                                         Standing{{"Empty"}, "", "", EnablerState::unknown},
                                         Standing{{"OursAlone"}, "ours", "", EnablerState::unknown},
                                         Standing{{"TwoOfItsOwn"}, "Apple's", "Apple's", EnablerState::unknown}),
                         ByRule());

TEST_F(EnablerSwitchTest, WithoutFinalCutProNothingIsThereAndOffIsAsWanted) {
    propertyLists.dictionaries.erase(record);
    EXPECT_EQ(enabler.state(), EnablerState::noFinalCutPro);
    EXPECT_TRUE(enabler.isTurned(false));
    EXPECT_FALSE(enabler.isTurned(true));
}

TEST_F(EnablerSwitchTest, WithoutAnEnablerForTheVersionNothingIsAsWanted) {
    files.contents.erase(ours703);
    enter(Folder::broken);
    EXPECT_EQ(enabler.state(), EnablerState::unsupported);
    EXPECT_FALSE(enabler.isTurned(false));
    EXPECT_FALSE(enabler.isTurned(true));
    EXPECT_EQ(enabler.mend(), std::nullopt);
    EXPECT_EQ(folder(), Folder::broken);
}

TEST_F(EnablerSwitchTest, AMoveThatFailsIsToldByTheMending) {
    enter(Folder::broken);
    files.failing = {restore};
    EXPECT_EQ(enabler.mend(), "told to fail");
    EXPECT_EQ(folder(), Folder::broken);
}

}  // namespace
}  // namespace vantrel::memory

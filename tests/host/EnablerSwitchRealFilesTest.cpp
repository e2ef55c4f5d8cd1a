#include <gmock/gmock.h>
#include <sys/wait.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <sstream>

#include "host/EnablerSwitch.h"
#include "platform/gnustep/GNUstepPropertyLists.h"
#include "platform/memory/MemoryControls.h"
#include "platform/memory/MemoryPreferences.h"
#include "platform/memory/MemorySystem.h"
#include "platform/posix/PosixFiles.h"
#include "tests/host/PrivateMachine.h"
#include "tests/platform/posix/FaultySystemCalls.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Lines = std::vector<std::string>;

const std::string record = "/Applications/Final Cut Pro.app/Contents/version.plist";
const std::string enablers =
    "/Applications/Final Cut Pro.app/Contents/Resources/Non-Localized Settings/FXScripts/Enablers";
const std::string active = enablers + "/RT Software Enabler.txt";
const std::string backup = enablers + "/RT Software EnablerA.txt";
const std::string plugIns = "/Library/Application Support/Vantrel/PLugins";
const std::string enabler703 = plugIns + "/RT Software Enabler703.txt";

/// Longer than what one system call moves, and not the same anywhere.
std::string longText(const std::string& name) {
    std::string text;
    for (int line = 0; text.size() < 150'000; ++line) text += name + " " + std::to_string(line) + "\n";
    return text;
}

const std::string theirs = longText("Final Cut Pro's own");
const std::string ours = longText("for 7.0.3");

const std::string xmlVersionRecord = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
<dict>
	<key>BuildVersion</key>
	<string>1</string>
	<key>CFBundleVersion</key>
	<string>7.0.3</string>
</dict>
</plist>
)";

/// The same version as a binary list: a head, a dictionary with one reference to each of its two texts, those texts, a
/// table of where the three start, and 32 bytes that tell the sizes.
const std::string binaryVersionRecord = std::string("bplist00\xD1\x01\x02\x5F\x10\x0F") + "CFBundleVersion" + "\x55" +
                                        "7.0.3" + "\x08\x0B\x1D" + std::string(6, '\0') + "\x01\x01" +
                                        std::string(7, '\0') + "\x03" + std::string(8, '\0') + std::string(7, '\0') +
                                        "\x23";

void writeFile(const std::string& path, const std::string& contents) {
    std::ofstream file(path, std::ios::binary);
    file << contents;
    if (!file.flush()) throw std::runtime_error("can't write " + path);
}

/// What is in a file, or nothing when there is none.
std::optional<std::string> contentsOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) return std::nullopt;
    std::ostringstream contents;
    contents << file.rdbuf();
    return contents.str();
}

/// What the two enablers in Final Cut Pro's folder are; `corrupt` is anything that must never be.
enum class State { inactive, active, broken, empty, corrupt };

std::ostream& operator<<(std::ostream& out, State state) {
    constexpr const char* names[] = {"inactive", "active", "broken", "empty", "corrupt"};
    return out << names[static_cast<int>(state)];
}

State stateOfTheFolder() {
    const auto now = contentsOf(active);
    const auto saved = contentsOf(backup);
    if (now == theirs && !saved) return State::inactive;
    if (now == ours && saved == theirs) return State::active;
    if (!now && saved == theirs) return State::broken;
    if (!now && !saved) return State::empty;
    return State::corrupt;
}

void makeFolderBe(State state) {
    for (const std::string top : {"/Applications", "/Library"}) {
        for (const auto& entry : fs::directory_iterator(top)) fs::remove_all(entry.path());
    }
    fs::create_directories(enablers);
    fs::create_directories(plugIns);
    writeFile(record, xmlVersionRecord);
    writeFile(enabler703, ours);
    if (state == State::inactive) writeFile(active, theirs);
    if (state == State::active) writeFile(active, ours);
    if (state == State::active || state == State::broken) writeFile(backup, theirs);
}

std::set<std::string> namesIn(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename());
    return names;
}

/// The files in Final Cut Pro's folder that are none of the two enablers.
std::set<std::string> strangers() {
    auto names = namesIn(enablers);
    names.erase("RT Software Enabler.txt");
    names.erase("RT Software EnablerA.txt");
    return names;
}

/// The pane's part in front of real files.
struct Switch {
    /// The user clicks the check box, which then shows `on`.
    void click(bool on) {
        control.shown = on ? onState : offState;
        if (const auto shown = enablerSwitch.turn(control.shown)) control.setState(*shown);
    }

    /// The value of the key: "true", "false", or "" when it was not written.
    std::string key() {
        auto& domain = preferences.domain("com.vantrel.codec");
        const auto found = domain.find("fcpRTEnableSwap");
        if (found == domain.end()) return "";
        return std::get<bool>(found->second) ? "true" : "false";
    }

    memory::Journal journal;
    memory::MemoryCheckBox control{journal, "fcpRTEnable"};
    memory::MemoryAlerts alerts{journal};
    memory::MemoryLog log{journal};
    memory::MemoryPreferences preferences{journal};
    SettingsStore store{preferences};
    posix::FaultySystemCalls calls;
    posix::PosixFiles files{calls};
    gnustep::GNUstepPropertyLists propertyLists{calls};
    EnablerSwitch enablerSwitch{files, propertyLists, alerts, log, store};
};

/// What a click can come to.
enum class Result { done, noFinalCutPro, noVersionEnabler, saveFailed, copyFailed, noBackup, deleteFailed };

/// The alert or the last log line of a result, up to what the system contributes.
std::string messageOf(Result result, bool on) {
    switch (result) {
        case Result::done:
            return on ? "log Install enabler " + enabler703 : "log Turn off enabler";
        case Result::noFinalCutPro:
            return "alert Could not find any FCP installation";
        case Result::noVersionEnabler:
            return "alert Could not find supported version of FCP (Found version 7.0.3)";
        case Result::saveFailed:
            return "log Failed “RT Software Enabler.txt” couldn’t be moved to “Enablers” because ";
        case Result::copyFailed:
            return "log Failed to replace RT file “RT Software Enabler703.txt” couldn’t be copied to “Enablers” "
                   "because ";
        case Result::noBackup:
            return "log Saved RT Enabler file missing";
        case Result::deleteFailed:
            return "log Cannot delete RT File “RT Software Enabler.txt” couldn’t be removed because ";
    }
    return "";
}

/// Everything that a click says, in order, each line up to what the system contributes.
Lines messagesOf(Result result, bool on) {
    Lines lines;
    const bool foundEnabler = result != Result::noFinalCutPro && result != Result::noVersionEnabler;
    if (!on && foundEnabler) lines.push_back("log Turn off enabler");
    if (result == Result::copyFailed) lines.push_back("log Install enabler " + enabler703);
    if (lines.empty() || result != Result::done) lines.push_back(messageOf(result, on));
    return lines;
}

/// Expects what the user and the log were told, where the check box went and what became of the key.
void expectResult(Switch& it, bool on, Result result) {
    Lines said;
    for (const auto& line : it.journal.lines()) {
        if (line.starts_with("log ") || line.starts_with("alert ")) said.push_back(line);
    }
    std::vector<testing::Matcher<std::string>> expected;
    for (const auto& line : messagesOf(result, on)) {
        if (line.ends_with(" because ")) {
            expected.push_back(testing::StartsWith(line));
        } else {
            expected.push_back(line);
        }
    }
    EXPECT_THAT(said, ElementsAreArray(expected));

    const bool springsToOn = result == Result::noBackup || result == Result::deleteFailed;
    const bool shown = result == Result::done ? on : springsToOn;
    EXPECT_EQ(it.control.shown, shown ? onState : offState);

    const std::string written = on ? "true" : "false";
    EXPECT_EQ(it.key(), result == Result::done ? written : "");
    EXPECT_EQ(it.journal.linesStarting("synchronize").size(), result == Result::done ? 1U : 0U);
}

/// A click in one state of the folder.
struct Click {
    State from;
    bool on;
    Result result;
    State after;
    /// The system calls that it makes, in order.
    Lines calls;
};

std::ostream& operator<<(std::ostream& out, const Click& click) {
    return out << click.from << (click.on ? " on" : " off");
}

std::string nameOf(const testing::TestParamInfo<Click>& test) {
    std::ostringstream name;
    name << test.param.from << (test.param.on ? "On" : "Off");
    return name.str();
}

/// The calls that every click begins with: reading the version record, looking for the version enabler.
const Lines beginning{"open", "fstat", "read", "read", "close", "stat"};

Lines operator+(Lines first, const Lines& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// Writing the folder through to the disk.
const Lines flushing{"open", "fsync", "close"};

const Lines moving = Lines{"renameNoReplace"} + flushing;
const Lines removing = Lines{"unlink"} + flushing;

/// Copying the version enabler.
const Lines copying = Lines{"open", "fstat", "listFolder", "mkostemp", "flock", "fstat",  "read",  "write",
                            "read", "write", "read",       "write",    "read",  "fchmod", "fsync", "renameNoReplace"} +
                      flushing + Lines{"close", "close"};

const std::vector<Click> clicks{
    {State::inactive, true, Result::done, State::active, beginning + moving + copying},
    {State::inactive, false, Result::noBackup, State::inactive, beginning + Lines{"stat"}},
    {State::active, true, Result::saveFailed, State::active, beginning + Lines{"renameNoReplace"}},
    {State::active, false, Result::done, State::inactive, beginning + Lines{"stat"} + removing + moving},
    {State::broken, true, Result::saveFailed, State::broken, beginning + Lines{"renameNoReplace", "lstat"}},
    {State::broken, false, Result::deleteFailed, State::broken, beginning + Lines{"stat", "unlink"}},
    {State::empty, true, Result::saveFailed, State::empty, beginning + Lines{"renameNoReplace", "lstat"}},
    {State::empty, false, Result::noBackup, State::empty, beginning + Lines{"stat"}},
};

class EnablerSwitchOnRealFiles : public testing::TestWithParam<Click> {};

INSTANTIATE_TEST_SUITE_P(EveryState, EnablerSwitchOnRealFiles, testing::ValuesIn(clicks), nameOf);

TEST_P(EnablerSwitchOnRealFiles, LeavesTheFolderTheCheckBoxTheKeyAndTheLogAsTheStateAsks) {
    const auto& click = GetParam();
    makeFolderBe(click.from);
    Switch it;
    it.click(click.on);
    expectResult(it, click.on, click.result);
    EXPECT_EQ(stateOfTheFolder(), click.after);
    EXPECT_THAT(it.calls.made(), ElementsAreArray(click.calls));
    EXPECT_EQ(contentsOf(enabler703), ours);
    EXPECT_THAT(strangers(), IsEmpty());
}

/// What a click comes to whose system call number `failing`, counted from 0, fails.
struct Failed {
    Result result;
    State after;
};

/// Whether nothing depends on the call number `number`: it closes a file, finds out what to blame for a failure, cares
/// for what others left, or opens a folder that is to be written through.
bool canBeDoneWithout(const Lines& calls, std::size_t number) {
    const auto& name = calls[number];
    if (name == "close" || name == "lstat" || name == "listFolder" || name == "flock") return true;
    if (name == "open") return number + 1 < calls.size() && calls[number + 1] == "fsync";
    return name == "fstat" && calls[number - 1] == "flock";
}

Failed withFailing(const Click& click, std::size_t failing) {
    const auto& name = click.calls[failing];
    if (failing < 4) return {Result::noFinalCutPro, click.from};
    if (failing == 5) return {Result::noVersionEnabler, click.from};
    if (canBeDoneWithout(click.calls, failing)) return {click.result, click.after};
    const auto step = failing - beginning.size();
    if (click.on) return {step < moving.size() ? Result::saveFailed : Result::copyFailed, click.from};
    if (step == 0) return {Result::noBackup, click.from};
    if (name == "unlink") return {Result::deleteFailed, click.from};
    const bool movesBack = step > removing.size();
    return {click.result, movesBack ? State::broken : click.after};
}

/// Lets the call number `failing` of all calls, counted from 0, fail.
void failCall(Switch& it, const Lines& calls, std::size_t failing) {
    const auto& name = calls[failing];
    const auto nth = std::count(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(failing) + 1, name);
    it.calls.failNth(name, static_cast<int>(nth), EIO);
}

TEST_P(EnablerSwitchOnRealFiles, SpringsBackAndLosesNothingWhicheverSystemCallFails) {
    const auto& click = GetParam();
    for (std::size_t failing = 0; failing < click.calls.size(); ++failing) {
        SCOPED_TRACE("call number " + std::to_string(failing) + ", " + click.calls[failing]);
        makeFolderBe(click.from);
        Switch it;
        failCall(it, click.calls, failing);
        it.click(click.on);
        const auto expected = withFailing(click, failing);
        expectResult(it, click.on, expected.result);
        EXPECT_EQ(stateOfTheFolder(), expected.after);
        EXPECT_EQ(contentsOf(enabler703), ours);
        EXPECT_THAT(strangers(), IsEmpty());
    }
}

TEST(EnablerSwitchOnRealFilesTwice, IsLeftBrokenWhenTheCopyFailsAndTheMoveBackToo) {
    makeFolderBe(State::inactive);
    Switch it;
    it.calls.failNth("fsync", 2, ENOSPC);
    it.calls.failNth("renameNoReplace", 2, EIO);
    it.click(true);
    expectResult(it, true, Result::copyFailed);
    EXPECT_EQ(stateOfTheFolder(), State::broken);
    EXPECT_THAT(strangers(), IsEmpty());
}

TEST(EnablerSwitchOnRealFilesTwice, GoesOnAndOffAgainAndAgain) {
    makeFolderBe(State::inactive);
    Switch it;
    for (int time = 0; time < 3; ++time) {
        it.click(true);
        EXPECT_EQ(stateOfTheFolder(), State::active);
        EXPECT_EQ(it.key(), "true");
        it.click(false);
        EXPECT_EQ(stateOfTheFolder(), State::inactive);
        EXPECT_EQ(it.key(), "false");
    }
    EXPECT_EQ(fs::file_size(active), theirs.size());
}

/// Makes a process click and kills it when `calls` says so. Returns whether it was killed; it wasn't when it finished
/// before. `prepare` sets the process up.
bool killedDuring(bool on, const std::function<void(Switch&)>& prepare) {
    const pid_t child = fork();
    if (child == 0) {
        Switch it;
        prepare(it);
        it.click(on);
        _exit(0);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) throw std::runtime_error("can't run a process");
    if (!WIFSIGNALED(status) && WEXITSTATUS(status) != 0)
        throw std::runtime_error("the process didn't finish its click");
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

enum class Moment { before, after };

/// Kills this process at its call number `number`, counted from 1.
void killAtCall(Switch& it, std::size_t number, Moment moment) {
    auto& hook = moment == Moment::before ? it.calls.before : it.calls.after;
    hook = [&it, number](const std::string&) {
        if (it.calls.made().size() == number) kill(getpid(), SIGKILL);
    };
}

/// Expects that Final Cut Pro's own file is whole, as the active or the backup enabler, and the version enabler too.
void expectNothingLost() {
    EXPECT_THAT(stateOfTheFolder(), AnyOf(State::inactive, State::active, State::broken));
    EXPECT_EQ(contentsOf(enabler703), ours);
    for (const auto& name : strangers()) EXPECT_THAT(name, testing::StartsWith(".Vantrel-"));
}

/// Kills a click before and after each of its system calls from number `first` on, counted from 1, and returns how
/// often it could.
std::size_t killEverywhere(State from, bool on, const std::function<void(Switch&)>& prepare, std::size_t first = 1) {
    std::size_t killed = 0;
    for (const auto moment : {Moment::before, Moment::after}) {
        for (std::size_t number = first;; ++number) {
            SCOPED_TRACE(std::string(moment == Moment::before ? "before" : "after") + " call number " +
                         std::to_string(number - 1));
            makeFolderBe(from);
            const bool wasKilled = killedDuring(on, [&](Switch& it) {
                prepare(it);
                killAtCall(it, number, moment);
            });
            expectNothingLost();
            if (!wasKilled) break;
            ++killed;
        }
    }
    return killed;
}

TEST_P(EnablerSwitchOnRealFiles, KilledBeforeOrAfterAnySystemCallStillHasFinalCutProsOwnFileWhole) {
    const auto& click = GetParam();
    if (click.from == State::empty) {
        // There is no file of Final Cut Pro's to lose; none may appear either.
        makeFolderBe(State::empty);
        EXPECT_TRUE(killedDuring(click.on, [&](Switch& it) { killAtCall(it, click.calls.size(), Moment::after); }));
        EXPECT_EQ(stateOfTheFolder(), State::empty);
        return;
    }
    EXPECT_EQ(killEverywhere(click.from, click.on, [](Switch&) {}), 2 * click.calls.size());
}

TEST(EnablerSwitchKilled, WhileItMendsAFailedCopyStillHasFinalCutProsOwnFileWhole) {
    const auto& calls = clicks[0].calls;
    for (std::size_t failing = beginning.size() + 1; failing < calls.size(); ++failing) {
        SCOPED_TRACE("with call number " + std::to_string(failing) + " failing, " + calls[failing]);
        // The failing call's own number, counted from 1, and on; what comes before is as without the failure.
        const auto prepare = [&](Switch& it) { failCall(it, calls, failing); };
        EXPECT_GT(killEverywhere(State::inactive, true, prepare, failing + 1), 0U);
    }
}

/// The state that the folder is in when a click is killed right after each of its renames and deletes, in order.
std::vector<State> statesAfterChanges(State from, bool on) {
    std::vector<State> states;
    makeFolderBe(from);
    Switch it;
    it.calls.after = [&](const std::string& name) {
        if (name == "renameNoReplace" || name == "unlink") states.push_back(stateOfTheFolder());
    };
    it.click(on);
    return states;
}

TEST(EnablerSwitchOnRealFilesTwice, SwitchingOnIsBrokenBetweenItsTwoSteps) {
    EXPECT_THAT(statesAfterChanges(State::inactive, true), ElementsAre(State::broken, State::active));
}

TEST(EnablerSwitchOnRealFilesTwice, SwitchingOffIsBrokenBetweenItsTwoSteps) {
    EXPECT_THAT(statesAfterChanges(State::active, false), ElementsAre(State::broken, State::inactive));
}

TEST(EnablerSwitchKilled, WhileItCopiesCanBeMendedByHand) {
    makeFolderBe(State::inactive);
    const auto beforeFsync = static_cast<std::size_t>(
        std::find(clicks[0].calls.begin(), clicks[0].calls.end(), "fchmod") - clicks[0].calls.begin() + 2);
    ASSERT_TRUE(killedDuring(true, [&](Switch& it) { killAtCall(it, beforeFsync, Moment::before); }));
    EXPECT_EQ(stateOfTheFolder(), State::broken);
    fs::rename(backup, active);

    Switch it;
    it.click(true);
    expectResult(it, true, Result::done);
    EXPECT_EQ(stateOfTheFolder(), State::active);
}

// Links that somebody planted in Final Cut Pro's folder

/// The pane's part as the host has it: no link below Final Cut Pro is followed.
struct BoundedSwitch : Switch {
    posix::PosixFiles bounded{calls, std::string(enablerPaths::application)};
    EnablerSwitch boundedSwitch{bounded, propertyLists, alerts, log, store};

    std::optional<long> turn(bool on) { return boundedSwitch.turn(on ? onState : offState); }
};

/// A folder of somebody's whose files must stay as they are.
struct EnablerSwitchLinks : testing::Test {
    EnablerSwitchLinks() {
        makeFolderBe(State::inactive);
        fs::create_directory(victim);
        for (const auto& name : {"RT Software Enabler.txt", "RT Software EnablerA.txt"}) {
            writeFile(victim + "/" + name, "precious");
        }
    }

    void expectVictimUntouched() {
        EXPECT_THAT(namesIn(victim), ElementsAre("RT Software Enabler.txt", "RT Software EnablerA.txt"));
        for (const auto& name : namesIn(victim)) EXPECT_EQ(contentsOf(victim + "/" + name), "precious");
    }

    const std::string victim = "/Library/somebody's";
};

TEST_F(EnablerSwitchLinks, InPlaceOfAnyOfItsFoldersLeadNoWriteOutside) {
    for (fs::path folder = enablers; folder != enablerPaths::application; folder = folder.parent_path()) {
        makeFolderBe(State::inactive);
        fs::create_directory(victim);
        // What is below the folder has its place below the victim's.
        const auto below = victim / fs::path(enablers).lexically_relative(folder);
        fs::create_directories(below);
        for (const auto& path : {active, backup}) writeFile(below / fs::path(path).filename(), "precious");
        if (folder.filename() == "Contents") writeFile(victim + "/version.plist", xmlVersionRecord);
        fs::remove_all(folder);
        fs::create_directory_symlink(victim, folder);

        for (const bool on : {true, false}) {
            BoundedSwitch it;
            EXPECT_EQ(it.turn(on), on ? offState : onState) << folder;
            EXPECT_THAT(it.journal.lines().back(), testing::HasSubstr("a link leads here that can’t be followed"));
        }
        for (const auto& path : {active, backup}) {
            EXPECT_EQ(contentsOf(below / fs::path(path).filename()), "precious") << folder;
        }
        EXPECT_THAT(namesIn(below), testing::IsSupersetOf({fs::path(active).filename(), fs::path(backup).filename()}));
    }
}

TEST_F(EnablerSwitchLinks, InPlaceOfTheActiveEnablerAreMovedAndComeBack) {
    fs::remove(active);
    fs::create_symlink(victim + "/RT Software Enabler.txt", active);
    BoundedSwitch it;
    EXPECT_EQ(it.turn(true), std::nullopt);
    EXPECT_TRUE(fs::is_symlink(backup));
    EXPECT_EQ(contentsOf(active), ours);
    expectVictimUntouched();
    EXPECT_EQ(it.turn(false), std::nullopt);
    EXPECT_TRUE(fs::is_symlink(active));
    expectVictimUntouched();
}

TEST_F(EnablerSwitchLinks, InPlaceOfTheBackupAreNotWrittenThrough) {
    for (const std::string& leadsTo : {victim + "/RT Software EnablerA.txt", victim + "/none"}) {
        fs::remove(backup);
        fs::create_symlink(leadsTo, backup);
        BoundedSwitch it;
        EXPECT_EQ(it.turn(true), offState);
        EXPECT_EQ(contentsOf(active), theirs);
        expectVictimUntouched();
    }
}

// The exact sentences of the log

std::string onlyLineWith(Switch& it, const std::string& start) {
    const auto lines = it.journal.linesStarting("log " + start);
    return lines.size() == 1 ? lines.front() : "not one line with " + start;
}

TEST(EnablerSwitchLog, NamesTheSavedEnablerThatIsInTheWay) {
    makeFolderBe(State::active);
    Switch it;
    it.click(true);
    EXPECT_EQ(
        onlyLineWith(it, "Failed "),
        "log Failed “RT Software Enabler.txt” couldn’t be moved to “Enablers” because this already exists: " + backup);
}

TEST(EnablerSwitchLog, NamesTheEnablerThatIsMissing) {
    makeFolderBe(State::broken);
    Switch it;
    it.click(true);
    EXPECT_EQ(
        onlyLineWith(it, "Failed "),
        "log Failed “RT Software Enabler.txt” couldn’t be moved to “Enablers” because this doesn’t exist: " + active);
    it.click(false);
    EXPECT_EQ(onlyLineWith(it, "Cannot delete"),
              "log Cannot delete RT File “RT Software Enabler.txt” couldn’t be removed because this doesn’t exist: " +
                  active);
}

TEST(EnablerSwitchLog, SaysThatTheDiskIsFull) {
    makeFolderBe(State::inactive);
    Switch it;
    it.calls.fail("write", ENOSPC);
    it.click(true);
    EXPECT_EQ(onlyLineWith(it, "Failed to"),
              "log Failed to replace RT file “RT Software Enabler703.txt” couldn’t be copied to “Enablers” because the "
              "disk is full here: " +
                  active);
}

// Where all this happens

/// The root of the machine's own file tree, opened before this process had one of its own.
int machine = -1;

/// What the machine's own tree has under our two names: number and last change of each.
std::string onTheMachine() {
    std::ostringstream found;
    for (const char* name : {"Applications", "Library"}) {
        struct stat status {};
        if (fstatat(machine, name, &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
        found << name << ' ' << status.st_ino << ' ' << status.st_mtim.tv_sec << '.' << status.st_mtim.tv_nsec << '\n';
    }
    return found.str();
}

TEST(EnablerSwitchPrivateMachine, IsSeenByNobodyElse) {
    const auto before = onTheMachine();
    makeFolderBe(State::active);
    EXPECT_EQ(onTheMachine(), before);
    EXPECT_NE(fs::file_size(active), 0U);
}

// What stands in the way

TEST(EnablerSwitchInTheWay, ALinkThatLeadsNowhereCountsAsASavedEnablerForAMoveAlone) {
    makeFolderBe(State::inactive);
    fs::create_symlink("nowhere", backup);
    Switch it;
    it.click(true);
    expectResult(it, true, Result::saveFailed);
    EXPECT_TRUE(fs::is_symlink(backup));
    EXPECT_EQ(contentsOf(active), theirs);

    Switch other;
    other.click(false);
    expectResult(other, false, Result::noBackup);
    EXPECT_EQ(contentsOf(active), theirs);
}

TEST(EnablerSwitchInTheWay, AFileThatAppearsDuringTheCopyIsNotOverwritten) {
    makeFolderBe(State::inactive);
    Switch it;
    it.calls.before = [](const std::string& name) {
        if (name == "fsync") writeFile(active, "someone else's");
    };
    it.click(true);
    expectResult(it, true, Result::copyFailed);
    EXPECT_EQ(contentsOf(active), "someone else's");
    EXPECT_EQ(contentsOf(backup), theirs);
    EXPECT_THAT(strangers(), IsEmpty());
}

TEST(EnablerSwitchInTheWay, AFolderWithoutAVersionEnablerOfThatNameStopsEitherClick) {
    for (const bool on : {true, false}) {
        makeFolderBe(State::active);
        fs::remove(enabler703);
        writeFile(plugIns + "/RT Software Enabler702.txt", ours);
        Switch it;
        it.click(on);
        expectResult(it, on, Result::noVersionEnabler);
        EXPECT_EQ(contentsOf(active), ours);
        EXPECT_EQ(contentsOf(backup), theirs);
    }
}

TEST(EnablerSwitchInTheWay, AMoveFromOneDiskToAnotherFailsAndSaysSo) {
    makeFolderBe(State::inactive);
    EXPECT_EQ(posix::PosixFiles().moveItemAtPath(active, plugIns + "/saved.txt"),
              "“RT Software Enabler.txt” couldn’t be moved to “PLugins” because this is on another disk: " + plugIns +
                  "/saved.txt");
    EXPECT_EQ(contentsOf(active), theirs);
    EXPECT_THAT(namesIn(plugIns), ElementsAre("RT Software Enabler703.txt"));
}

TEST(EnablerSwitchMode, TheCopyHasTheModeOfTheVersionEnabler) {
    for (const auto mode : {fs::perms{0444}, fs::perms{0664}}) {
        makeFolderBe(State::inactive);
        fs::permissions(enabler703, mode);
        Switch it;
        it.click(true);
        EXPECT_EQ(fs::status(active).permissions(), mode);
    }
}

// The version record

TEST(EnablerSwitchVersionRecord, IsReadAsXML) {
    makeFolderBe(State::inactive);
    writeFile(record, xmlVersionRecord);
    Switch it;
    it.click(true);
    expectResult(it, true, Result::done);
}

TEST(EnablerSwitchVersionRecord, IsReadAsABinaryList) {
    makeFolderBe(State::inactive);
    writeFile(record, binaryVersionRecord);
    Switch it;
    it.click(true);
    expectResult(it, true, Result::done);
    EXPECT_EQ(stateOfTheFolder(), State::active);
}

/// A version record, and the alert that it leads to.
struct Refused {
    const char* name;
    std::string contents;
    const char* alert;

    friend std::ostream& operator<<(std::ostream& out, const Refused& record) { return out << record.name; }
};

std::string xmlRecordOf(const std::string& top) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + top + "</plist>\n";
}

std::string xmlRecordOfVersion(const std::string& version) {
    return xmlRecordOf("<dict><key>CFBundleVersion</key><string>" + version + "</string></dict>");
}

class EnablerSwitchVersionRecordRefused : public testing::TestWithParam<Refused> {};

TEST_P(EnablerSwitchVersionRecordRefused, AlertsAndTouchesNothingWhicheverWayTheClick) {
    for (const bool on : {true, false}) {
        makeFolderBe(State::active);
        writeFile(record, GetParam().contents);
        Switch it;
        it.click(on);
        EXPECT_THAT(it.journal.linesStarting("alert "), ElementsAre(GetParam().alert));
        EXPECT_EQ(it.control.shown, offState);
        EXPECT_EQ(it.key(), "");
        EXPECT_EQ(stateOfTheFolder(), State::active);
    }
}

constexpr const char* noFinalCutPro = "alert Could not find any FCP installation";
constexpr const char* noVersion = "alert Could not find supported version of FCP (No version number in application)";

INSTANTIATE_TEST_SUITE_P(
    Records, EnablerSwitchVersionRecordRefused,
    testing::Values(Refused{"Empty", "", noFinalCutPro}, Refused{"Garbage", "7.0.3", noFinalCutPro},
                    Refused{"Array", xmlRecordOf("<array><string>7.0.3</string></array>"), noFinalCutPro},
                    Refused{"Text", xmlRecordOf("<string>7.0.3</string>"), noFinalCutPro},
                    Refused{"CutXML", xmlVersionRecord.substr(0, 250), noFinalCutPro},
                    Refused{"CutBinary", binaryVersionRecord.substr(0, 69), noFinalCutPro},
                    Refused{"NoVersion", xmlRecordOf("<dict/>"), noVersion},
                    Refused{"VersionIsANumber",
                            xmlRecordOf("<dict><key>CFBundleVersion</key><integer>12345</integer></dict>"), noVersion},
                    Refused{"ThreeCharacters", xmlRecordOfVersion("7.0"),
                            "alert Could not find supported version of FCP (Found version 7.0)"},
                    Refused{"SixCharacters", xmlRecordOfVersion("10.0.1"),
                            "alert Could not find supported version of FCP (Found version 10.0.1)"},
                    Refused{"NoEnabler", xmlRecordOfVersion("7.0.4"),
                            "alert Could not find supported version of FCP (Found version 7.0.4)"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(EnablerSwitchVersionRecord, IsMissingWithoutFinalCutPro) {
    for (const bool on : {true, false}) {
        makeFolderBe(State::active);
        fs::remove_all("/Applications/Final Cut Pro.app");
        Switch it;
        it.click(on);
        expectResult(it, on, Result::noFinalCutPro);
        EXPECT_THAT(namesIn("/Applications"), IsEmpty());
    }
}

}  // namespace
}  // namespace vantrel

/// Without a file tree of its own, every test fails here: there is nowhere else that it may work.
int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (!GTEST_FLAG_GET(list_tests)) {
        try {
            vantrel::machine = open("/", O_PATH | O_DIRECTORY | O_CLOEXEC);
            vantrel::PrivateMachine::enter();
        } catch (const std::exception& error) {
            std::cerr << error.what() << '\n';
            return EXIT_FAILURE;
        }
    }
    return RUN_ALL_TESTS();
}

// Attacks the built bundle at every call that it makes on files: kills it before the call, lets the call fail once or
// from then on, or lets it be carried out and said to have failed. Then looks whether anything was lost.
//
//     attack_host [EVERY]    attacks every call, or one in EVERY
//
// Prints a table; ends with status 1, and what didn't hold, if anything didn't.
#import <AppKit/AppKit.h>
#include <dlfcn.h>
#include <fcntl.h>
#import <objc/runtime.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/faults/FileCalls.h"
#import "tests/faults/PaneWithoutView.h"
#include "tests/host/PrivateMachine.h"

namespace vantrel::faults {
namespace {

namespace fs = std::filesystem;

// What is stored

/// A property list's keys, each with its value as "class value": "bool 1", "number 46", "string /Volumes".
using Entries = std::map<std::string, std::string>;

const std::string defaults = HOME_PATH "/Defaults";
const std::string domainFile = defaults + "/com.vantrel.codec.plist";
const std::string records = HOME_PATH "/Library/ApplicationSupport/Vantrel";
const std::string recordFile = records + "/OverrideMetadata.plist";
const std::string logFile = HOME_PATH "/log";
const std::string finalCut = "/Applications/Final Cut Pro.app/Contents";
const std::string enablers = finalCut + "/Resources/Non-Localized Settings/FXScripts/Enablers";
const std::string active = enablers + "/RT Software Enabler.txt";
const std::string backup = enablers + "/RT Software EnablerA.txt";
const std::string plugIns = "/Library/Application Support/Vantrel/PLugins";

const std::string theirs = "Final Cut Pro's own";
const std::string ours = "for 7.0.3";
const std::string damage = "<plist><dict><key>cut off";

std::string contentsOf(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string &path, const std::string &contents) {
    std::ofstream file(path, std::ios::binary);
    file << contents;
    if (!file.flush()) throw std::runtime_error("can't write " + path);
}

NSString *toNSString(const std::string &text) {
    return [NSString stringWithUTF8String:text.c_str()];
}

/// What the platform reads from a file; nothing in it, with the key "damaged", when it can't.
Entries entriesOf(const std::string &path) {
    if (!fs::exists(path)) return {};
    if (contentsOf(path) == damage) return {{"damaged", damage}};
    NSDictionary *dictionary = [NSDictionary dictionaryWithContentsOfFile:toNSString(path)];
    if (!dictionary) return {{"damaged", contentsOf(path)}};
    Entries entries;
    NSEnumerator *keys = [dictionary keyEnumerator];
    while (NSString *key = [keys nextObject]) {
        id value = [dictionary objectForKey:key];
        std::string kind = "other";
        if ([value isKindOfClass:[NSString class]]) kind = "string";
        if ([value isKindOfClass:[NSNumber class]]) kind = *[value objCType] == *@encode(BOOL) ? "bool" : "number";
        const std::string name = [key UTF8String];
        entries[name] = kind + " " + [[value description] UTF8String];
    }
    return entries;
}

std::string list(const std::string &entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>" + entries + "</dict></plist>\n";
}

/// Every key with a value that is not its default, and what other programs stored.
std::string validDomain(bool isSwapped = false) {
    std::string entries = "<key>theirs</key><array><data>AA==</data><date>2020-01-01T00:00:00Z</date></array>";
    for (const char *flag : {"colorMatrix", "whiteBalance", "look", "gamma", "FormatYUV8", "FormatYUV8A", "FormatYUV16",
                             "FormatYUV32", "FormatRGB8", "FormatRGB16", "FormatRGB32", "FCPForceLetterBox",
                             "PProCS5HasMovieSetup", "ShowStereoStatusMenu"}) {
        entries += "<key>" + std::string(flag) + "</key><false/>";
    }
    entries += std::string("<key>fcpRTEnableSwap</key>") + (isSwapped ? "<true/>" : "<false/>");
    for (const char *row : {"QTGammaCorrection", "FCPGammaCorrection"}) {
        entries += "<key>" + std::string(row) + "</key><integer>1</integer>";
    }
    entries += "<key>ColorProcessingPath</key><integer>3145729</integer><key>MaxEncodeThreads</key><integer>0</integer>"
               "<key>LUTsPath</key><string>/mine</string><key>OverridePath</key><string>/mine too</string>";
    return list(entries);
}

// What is attacked

/// What a user does, from the start of the host on.
struct Flow {
    const char *name;
    /// The domain file's content before; empty for no file.
    std::string domain;
    /// What is done once the pane is open.
    std::function<void(const PaneWithoutView &)> act;
    /// Keys that are stored together or not at all.
    std::set<std::string> together = {};
    /// Which enabler is in place before, for a flow that swaps them.
    std::string swap = {};
};

void leaveIt(const PaneWithoutView &) {}

std::vector<Flow> flows() {
    const auto clicking = [](const char *outlet, const char *action, NSInteger number) {
        return [=](const PaneWithoutView &pane) { pane.click(outlet, action, number); };
    };
    const auto flag = clicking("fmtRGB8Bit", "fmtRGB8BitCheckBox:", NSOnState);
    const auto stage = clicking("look", "lookCheckBox:", NSOnState);
    return {
        {"opening, nothing stored", "", leaveIt},
        {"opening, all stored", validDomain(), leaveIt},
        {"opening, keys mistyped",
         list("<key>look</key><integer>1</integer><key>QTGammaCorrection</key><integer>9"
              "</integer><key>LUTsPath</key><true/><key>theirs</key><data>AA==</data>"),
         leaveIt},
        {"flag", validDomain(), flag},
        {"flag, nothing stored", "", flag},
        {"flag, file damaged", damage, flag},
        {"stage", validDomain(), stage, {"look", "ColorProcessingPath"}},
        {"stage, nothing stored", "", stage},
        {"demosaic method",
         validDomain(),
         clicking("renderDemosaic", "precisionDemosaicSelect:", 2),
         {"RenderDebayer", "ColorProcessingPath"}},
        {"folder", validDomain(),
         [](const PaneWithoutView &pane) { pane.type("_LUTsPath", "LUTsOKUpdate:", @"/elsewhere"); }},
        {"chroma filter", validDomain(), clicking("filter422To444", "filter422To444Button:", NSOnState)},
        {"decoder threads", validDomain(), clicking("decodeThreads", "decodeThreadLimitChange:", 1)},
        {"enabler on", validDomain(), clicking("fcpRTEnable", "fcpRTEnableCheckBox:", NSOnState), {}, theirs},
        {"enabler off", validDomain(true), clicking("fcpRTEnable", "fcpRTEnableCheckBox:", NSOffState), {}, ours},
        {"two panes", validDomain(),
         [=](const PaneWithoutView &pane) {
             const PaneWithoutView other;
             other.open();
             flag(pane);
             stage(other);
         }},
    };
}

/// The clicks that every flow ends with when it is left alone again. They write, whatever is stored.
void clickAnother(const PaneWithoutView &pane) {
    for (const NSInteger state : {NSOffState, NSOnState}) {
        pane.click("fmtDualStream3D", "fmtDualStream3DCheckBox:", state);
    }
}

void prepare(const Flow &flow) {
    for (const auto &folder : {defaults, records, enablers, plugIns}) {
        fs::create_directories(folder);
        for (const auto &entry : fs::directory_iterator(folder)) fs::remove_all(entry.path());
    }
    if (!flow.domain.empty()) writeFile(domainFile, flow.domain);
    writeFile(recordFile, list("<key>theirs</key><integer>5</integer>"));
    writeFile(finalCut + "/version.plist", list("<key>CFBundleVersion</key><string>7.0.3</string>"));
    writeFile(plugIns + "/RT Software Enabler703.txt", ours);
    writeFile(active, flow.swap == ours ? ours : theirs);
    if (flow.swap == ours) writeFile(backup, theirs);
}

/// Runs `work` in a process of its own, whose log is in `logFile`. Returns what `waitpid` tells of it.
int inProcess(const std::function<void()> &work) {
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const int log = open(logFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (log < 0 || dup2(log, STDERR_FILENO) < 0) _exit(2);
        work();
        // As a host ends that is quit: the bundle tidies up.
        std::exit(0);
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child) throw std::runtime_error("can't run a process");
    return status;
}

/// What a flow came to that was played.
struct Outcome {
    int status = 0;
    Report report;
    /// The domain as it was when the flow had ended, and after the next click.
    Entries atEnd;
    Entries afterClick;
    Entries record;
    std::string log;
};

Report &sharedReport() {
    static void *memory = mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    return *static_cast<Report *>(memory);
}

/// Plays a flow under attack, and one more click without.
Outcome play(const Flow &flow, const Attack &wanted, const std::function<void(const PaneWithoutView &)> &act) {
    prepare(flow);
    Report &report = sharedReport();
    report = {};
    const std::string domainAtEnd = HOME_PATH "/atEnd.plist";
    fs::remove(domainAtEnd);
    Outcome outcome;
    outcome.status = inProcess([&] {
        attack(wanted, report);
        const PaneWithoutView pane;
        pane.open();
        beginStep();
        act(pane);
        endAttack();
        if (fs::exists(domainFile)) fs::copy_file(domainFile, domainAtEnd);
        clickAnother(pane);
    });
    outcome.report = report;
    outcome.atEnd = entriesOf(domainAtEnd);
    outcome.afterClick = entriesOf(domainFile);
    outcome.record = entriesOf(recordFile);
    outcome.log = contentsOf(logFile);
    return outcome;
}

/// The next start of the host, half a minute later: the pane is opened, and all of its stores are written to.
void playNext() {
    inProcess([] {
        passTime(std::chrono::seconds(30));
        const PaneWithoutView pane;
        pane.open();
        clickAnother(pane);
        pane.click("filter422To444", "filter422To444Button:", NSMixedState);
    });
}

// What must hold

std::set<std::string> namesIn(const std::string &folder) {
    std::set<std::string> names;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        names.insert(fs::relative(entry.path(), folder));
    }
    return names;
}

/// The sound states of Final Cut Pro's folder, in a word; "corrupt" for any other.
std::string stateOfEnablers() {
    const auto now = contentsOf(active);
    const auto saved = contentsOf(backup);
    if (now == theirs && saved.empty()) return "off";
    if (now == ours && saved == theirs) return "on";
    if (now.empty() && saved == theirs) return "broken";
    return "corrupt";
}

/// A value in words, for one that may be missing.
std::string valueOf(const Entries &entries, const std::string &key) {
    const auto found = entries.find(key);
    return found == entries.end() ? "missing" : found->second;
}

std::set<std::string> keysOf(const std::vector<Entries> &all) {
    std::set<std::string> keys;
    for (const auto &entries : all) {
        for (const auto &[key, value] : entries) keys.insert(key);
    }
    return keys;
}

/// A click as a user makes it: the check box goes to the other state than it shows.
void toggleEnabler(const PaneWithoutView &pane) {
    const bool isOn = pane.number("fcpRTEnable") != NSOffState;
    pane.click("fcpRTEnable", "fcpRTEnableCheckBox:", isOn ? NSOffState : NSOnState);
}

/// What docs/troubleshooting.md says to do when the check box doesn't tell what is in Final Cut Pro's folder.
void mendEnablers() {
    if (stateOfEnablers() == "broken") fs::rename(backup, active);
    const bool isOn = stateOfEnablers() == "on";
    if (valueOf(entriesOf(domainFile), "fcpRTEnableSwap") == (isOn ? "bool 1" : "bool 0")) return;
    const std::string value = isOn ? "'<*BY>'" : "'<*BN>'";
    if (std::system(("defaults write com.vantrel.codec fcpRTEnableSwap " + value).c_str()) != 0) {
        throw std::runtime_error("`defaults` doesn't write");
    }
}

struct Figures {
    int attacks = 0;
    int broken = 0;
};

class Judge {
   public:
    explicit Judge(const Flow &flow) : flow_(flow) {
        before_ = (prepare(flow), entriesOf(domainFile));
        recordBefore_ = entriesOf(recordFile);
        done_ = play(flow, {}, flow.act);
        notDone_ = play(flow, {}, leaveIt);
        if (done_.status != 0 || notDone_.status != 0) {
            throw std::runtime_error("without an attack already, " + std::string(flow.name) + " fails");
        }
    }

    int calls() const { return done_.report.calls; }

    /// Attacks once, and notes what doesn't hold.
    void attackOnce(const Attack &attack, const std::string &name, Figures &figures) {
        now_ = name;
        const auto violations = violations_.size();
        const auto outcome = play(flow_, attack, flow_.act);
        // Young files are looked at more often than others.
        if (outcome.report.calls < attack.call) return;
        ++figures.attacks;
        const bool wasKilled = WIFSIGNALED(outcome.status) && WTERMSIG(outcome.status) == SIGKILL;
        require(wasKilled == (attack.fault == Fault::killed) && (wasKilled || outcome.status == 0),
                "the process ended with " + std::to_string(outcome.status));
        require(outcome.report.longestPause <= 2'000'000'000,
                "paused for " + std::to_string(outcome.report.longestPause) + " ns");
        requireOneOf("the domain", outcome.afterClick, possibleNow(wasKilled));
        requireOneOf("the record", outcome.record, {recordBefore_, done_.record});
        if (!wasKilled) requireThatItWasTold(outcome);
        requireEnablers(wasKilled);
        playNext();
        requireOneOf("the domain later", entriesOf(domainFile), possibleLater());
        requireNothingLeft();
        if (violations_.size() > violations) ++figures.broken;
    }

    const std::vector<std::string> &violations() const { return violations_; }
    /// How often a kill left Final Cut Pro's folder in which state, with which key.
    const std::map<std::string, int> &enablerStates() const { return enablerStates_; }

   private:
    void require(bool holds, const std::string &what) {
        if (!holds) violations_.push_back(std::string(flow_.name) + ", " + now_ + ": " + what);
    }

    bool swaps() const { return !flow_.swap.empty(); }

    std::vector<Entries> possibleNow(bool wasKilled) const {
        if (wasKilled) return {before_, notDone_.atEnd, done_.atEnd};
        // Only Final Cut Pro's folder may refuse a click for good.
        if (swaps()) return {notDone_.afterClick, done_.afterClick};
        return {done_.afterClick};
    }

    std::vector<Entries> possibleLater() const { return {notDone_.afterClick, done_.afterClick}; }

    /// Each key has its value of one of these, and keys that are stored together are all of the same.
    void requireOneOf(const std::string &what, const Entries &found, const std::vector<Entries> &possible) {
        auto all = possible;
        all.push_back(found);
        for (const auto &key : keysOf(all)) {
            const auto value = valueOf(found, key);
            const bool holds = std::any_of(possible.begin(), possible.end(), [&](const Entries &one) {
                return valueOf(one, key) == value && (!flow_.together.contains(key) || agree(found, one));
            });
            // How many cores there are is anybody's guess where that can't be read.
            const bool isGuess = key == "MaxEncodeThreads" && flow_.domain != validDomain();
            require(holds || (isGuess && value.starts_with("number ")), what + " has " + key + " = " + value);
        }
    }

    bool agree(const Entries &found, const Entries &one) const {
        return std::all_of(flow_.together.begin(), flow_.together.end(),
                           [&](const std::string &key) { return valueOf(found, key) == valueOf(one, key); });
    }

    /// Who clicked what isn't stored has heard of it, once, and once that it is over.
    void requireThatItWasTold(const Outcome &outcome) {
        const auto count = [&](const std::string &text) {
            int lines = 0;
            for (auto at = outcome.log.find(text); at != std::string::npos; at = outcome.log.find(text, at + 1))
                ++lines;
            return lines;
        };
        const bool isStored = std::all_of(done_.atEnd.begin(), done_.atEnd.end(), [&](const auto &entry) {
            return entry.first == "MaxEncodeThreads" || valueOf(outcome.atEnd, entry.first) == entry.second;
        });
        const int told = count("couldn’t be stored because");
        require(isStored || swaps() || told > 0, "nothing was stored and nothing said");
        require(told <= 2, "said " + std::to_string(told) + " times that nothing was stored");
        require(told == 0 || count("is stored again") > 0, "never said that all is stored again");
    }

    void requireEnablers(bool wasKilled) {
        const auto state = stateOfEnablers();
        require(state != "corrupt", "Final Cut Pro's own enabler is lost");
        if (wasKilled && swaps()) {
            ++enablerStates_[state + ", key " + valueOf(entriesOf(domainFile), "fcpRTEnableSwap").substr(5)];
        }
    }

    /// Nothing lies about once the next process has written everywhere.
    void requireNothingLeft() {
        auto names = namesIn(defaults);
        std::erase_if(names, [&](const std::string &name) {
            return flow_.domain == damage && name.find(".unreadable-") != std::string::npos;
        });
        for (const char *expected : {".lck", "com.vantrel.codec.plist"}) names.erase(expected);
        for (const auto &name : names) require(false, "left " + name);
        for (const auto &name : namesIn(records)) require(name == "OverrideMetadata.plist", "left " + name);
        if (flow_.domain == damage) {
            const auto all = namesIn(defaults);
            require(all.size() == 3, "the damaged file isn't kept once");
        }
        if (!swaps()) return;
        mendEnablers();
        inProcess([] {
            const PaneWithoutView pane;
            pane.open();
            const bool isOn = pane.number("fcpRTEnable") != NSOffState;
            if (isOn) toggleEnabler(pane);
            toggleEnabler(pane);
        });
        require(stateOfEnablers() == "on", "the swap doesn't work any more");
        require(namesIn(enablers).size() == 2, "left something in Final Cut Pro's folder");
    }

    const Flow &flow_;
    Entries before_;
    Entries recordBefore_;
    Outcome done_;
    Outcome notDone_;
    std::string now_;
    std::vector<std::string> violations_;
    std::map<std::string, int> enablerStates_;
};

// All of it

struct Kind {
    const char *name;
    Fault fault;
    std::vector<int> errors;
};

/// No space, no permission, no descriptor left, a broken disk, a server that lost the file, a folder that isn't
/// mounted.
const std::vector<int> errors{ENOSPC, EACCES, EMFILE, EIO, ESTALE, ENOENT};

const std::vector<Kind> kinds{{"killed", Fault::killed, {0}},
                              {"failing once", Fault::failed, errors},
                              {"failing on", Fault::kept, errors},
                              {"done, but said to fail", Fault::misreported, {EIO}}};

NSInteger runNothing(id, SEL) {
    return 0;
}

int run(int every) {
    PrivateMachine::enter();
    for (const std::string &folder : {defaults, std::string(HOME_PATH "/Library")}) {
        fs::create_directories(folder);
        PrivateMachine::putInMemory(folder);
    }
    if (std::string([GSDefaultsRootForUser(NSUserName()) UTF8String]) != defaults) {
        throw std::runtime_error("this is not " + defaults);
    }
    principalClass();
    // Its images and what they need are loaded once for all processes.
    [[NSMenuItem new] release];
    // An alert is a window.
    method_setImplementation(class_getInstanceMethod([NSAlert class], @selector(runModal)),
                             reinterpret_cast<IMP>(reinterpret_cast<void *>(runNothing)));
    // The pane would load it later, unwatched.
    if (!dlopen(BUNDLE_PATH "/libKVRXMetadataDictionary.so.1", RTLD_NOW)) throw std::runtime_error(dlerror());
    watchLibraries("Vantrel.prefPane/Vantrel", "KVRXMetadataDictionary");

    std::printf("%-26s %5s", "attacks that broke a promise", "calls");
    for (const auto &kind : kinds) std::printf("  %22s", kind.name);
    std::printf("\n");
    std::vector<std::string> violations;
    std::map<std::string, int> enablerStates;
    int first = 0;
    for (const auto &flow : flows()) {
        NSAutoreleasePool *pool = [NSAutoreleasePool new];
        Judge judge(flow);
        std::printf("%-28s %5d", flow.name, judge.calls());
        for (const auto &kind : kinds) {
            Figures figures;
            for (int call = 1 + first++ % every; call <= judge.calls(); call += every) {
                for (const int error : kind.errors) {
                    const auto name = std::string(kind.name) + " at call " + std::to_string(call) +
                                      (error ? " with error " + std::to_string(error) : "");
                    judge.attackOnce({kind.fault, call, error}, name, figures);
                }
            }
            std::printf("  %10d of %8d", figures.broken, figures.attacks);
            std::fflush(stdout);
        }
        std::printf("\n");
        violations.insert(violations.end(), judge.violations().begin(), judge.violations().end());
        for (const auto &[state, count] : judge.enablerStates())
            enablerStates[std::string(flow.name) + ": " + state] += count;
        [pool release];
    }
    std::printf("\nFinal Cut Pro's folder after a kill:\n");
    for (const auto &[state, count] : enablerStates) std::printf("    %s (%d)\n", state.c_str(), count);
    std::fflush(stdout);
    for (const auto &violation : violations) std::fprintf(stderr, "%s\n", violation.c_str());
    return violations.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace vantrel::faults

int main(int argc, char **argv) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    const int status = vantrel::faults::run(argc > 1 ? std::max(std::atoi(argv[1]), 1) : 1);
    [pool release];
    return status;
}

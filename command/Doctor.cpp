#include <sys/stat.h>

#include <array>
#include <iostream>

#include "command/Commands.h"
#include "command/Text.h"

namespace vantrel {
namespace {

struct Finding {
    /// What it is about: a setting or a file.
    std::string what;
    bool isSetting;
    std::string problem;
    std::string meaning;
    std::string mend;
};

std::string commandToSet(const Setting& setting, const NewPreferenceValue& value) {
    return "vantrelctl set " + std::string(setting.name()) + ' ' + shellWord(setting.shown(value));
}

/// Sets every stage and method to what the pane shows, which makes a `ColorProcessingPath` anew.
std::string commandForPath(Store& store) {
    std::string command = "vantrelctl set";
    for (const auto& setting : store.settings()) {
        if (!setting.key() || setting.key()->path.index() == 0) continue;
        command += ' ' + std::string(setting.name()) + ' ' + setting.shown(store.standing(setting).value);
    }
    return command;
}

void examineSetting(const Setting& setting, Store& store, std::vector<Finding>& findings) {
    const Standing standing = store.standing(setting);
    const auto fault = store.fault(setting, standing);
    if (!fault) return;
    const auto& value = setting.canShow(standing.value) ? standing.value : setting.setUpDefault();
    findings.push_back({std::string(setting.name()), true, std::string(fault->problem), fault->meaning,
                        setting.hasControl() ? commandToSet(setting, value) : commandForPath(store)});
}

void examineEnabler(Store& store, std::vector<Finding>& findings) {
    const Setting& setting = store.setting("fcpRTEnableSwap");
    const Standing standing = store.standing(setting);
    const auto* flag = std::get_if<bool>(&standing.value);
    const bool on = flag && *flag;
    auto& enabler = store.enabler();
    const EnablerState state = enabler.state();
    Finding finding{std::string(setting.name()), true, "disagreeing", {}, {}};
    if (state == EnablerState::broken) {
        finding.problem = "broken";
        finding.meaning = "Final Cut Pro's own enabler is saved, and none is active";
        finding.mend = "vantrelctl enabler mend";
    } else if (!enabler.isTurned(on)) {
        finding.meaning = "it is " + setting.shown(standing.value) + ", and Final Cut Pro's folder is " +
                          std::string(describe(state));
        const bool isPlain = state == EnablerState::off || state == EnablerState::on;
        if (isPlain) {
            finding.mend = commandToSet(setting, on);
        } else if (state == EnablerState::noFinalCutPro) {
            finding.mend = commandToSet(setting, false);
        } else {
            finding.mend = "install Final Cut Pro again";
        }
    } else {
        return;
    }
    findings.push_back(finding);
}

/// What a finding about a file means, and what mends it, with the file behind it.
struct Advice {
    StoreFinding::Problem problem;
    std::string_view word;
    std::string_view meaning;
    std::string_view mend;
};

constexpr auto advices = std::to_array<Advice>({
    {StoreFinding::Problem::unreadable, "unreadable", "it can't be read, so defaults are shown", "chmod u+rwX"},
    {StoreFinding::Problem::damaged, "damaged", "it is no property list, so defaults are shown", "mv"},
    {StoreFinding::Problem::tooLong, "damaged", "it is longer than what is read, so defaults are shown", "mv"},
    {StoreFinding::Problem::notFollowed, "unreadable", "it is a link, which is not followed, so defaults are shown",
     "mv"},
    {StoreFinding::Problem::foreign, "foreign", "it belongs to another user", "sudo chown \"$(id -un)\""},
    {StoreFinding::Problem::readableByOthers, "exposed", "other users may read or write it", "chmod go="},
    {StoreFinding::Problem::setAside, "aside", "it was set aside because it was no property list", "rm"},
    {StoreFinding::Problem::unfinished, "unfinished", "a process died while it wrote this", "rm"},
    {StoreFinding::Problem::abandonedLock, "abandoned", "a process died with this lock, which makes others wait",
     "rmdir"},
});

/// A name for a damaged file that none has yet: an older one is not lost.
std::string nameForDamaged(const std::string& path) {
    std::string free = path + ".damaged";
    struct stat status {};
    for (int number = 2; lstat(free.c_str(), &status) == 0; ++number) {
        free = path + ".damaged-" + std::to_string(number);
    }
    return free;
}

void examineFiles(StoreInspection& inspection, std::vector<Finding>& findings) {
    const std::string enabler(enablerPaths::active);
    for (const auto& found : inspection.findings({enabler.substr(0, enabler.rfind('/'))})) {
        for (const auto& advice : advices) {
            if (advice.problem != found.problem) continue;
            const std::string file = shellWord(found.path);
            std::string mend = std::string(advice.mend) + ' ' + file;
            if (advice.mend == "mv") mend += ' ' + shellWord(nameForDamaged(found.path));
            findings.push_back(
                {onOneLine(found.path), false, std::string(advice.word), std::string(advice.meaning), mend});
        }
    }
}

Node nodeOf(const Finding& finding) {
    return {Node::Members{{"key", finding.isSetting ? Node{finding.what} : Node{nullptr}},
                          {"problem", {finding.problem}},
                          {"meaning", {finding.isSetting ? finding.meaning : finding.what + ": " + finding.meaning}},
                          {"mend", {finding.mend}}}};
}

}  // namespace

Status doctor(Context& context, const Arguments& arguments) {
    std::vector<Finding> findings;
    const PreferencesSequence sequence(context.system.services.preferences);
    for (const auto& setting : context.store.settings()) examineSetting(setting, context.store, findings);
    examineEnabler(context.store, findings);
    examineFiles(context.system.inspection, findings);

    Node::List nodes;
    for (const auto& finding : findings) {
        if (arguments.json) {
            nodes.push_back(nodeOf(finding));
        } else {
            std::cout << styled(context.isColorful ? bold : "", finding.what) << ": " << finding.meaning << "; "
                      << finding.mend << '\n';
        }
    }
    if (arguments.json) std::cout << toJSON({nodes}) << '\n';
    return findings.empty() ? Status::done : Status::different;
}

}  // namespace vantrel

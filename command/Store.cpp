#include "command/Store.h"

#include <algorithm>

#include "command/Problem.h"
#include "command/Text.h"
#include "host/StereoStatusNotification.h"
#include "platform/Controls.h"
#include "settings/Reading.h"

namespace vantrel {
namespace {

constexpr const SettingsKey& enablerKey = key("fcpRTEnableSwap");

bool isFor(const Setting& setting, const SettingsKey& key) {
    return setting.key() == &key;
}

/// A stored value as one that can be written; nothing where it can't.
std::optional<NewPreferenceValue> writable(const PreferenceValue& stored) {
    if (const auto* flag = std::get_if<bool>(&stored)) return *flag;
    if (const auto* text = std::get_if<std::string>(&stored)) return *text;
    const auto* number = std::get_if<Number>(&stored);
    return number && number->longValue ? std::optional<NewPreferenceValue>(*number->longValue) : std::nullopt;
}

/// What a value of `ColorProcessingPath` says in the key's part.
std::string inPath(const SettingsKey& key, long path) {
    const auto* field = std::get_if<colorProcessingPath::DemosaicField>(&key.path);
    if (field) return std::to_string(colorProcessingPath::methodIn(path, *field));
    const auto* stage = std::get_if<colorProcessingPath::Stage>(&key.path);
    return stage && colorProcessingPath::hasStage(path, *stage) ? "on" : "off";
}

/// The log of a program that has nothing to say as long as all goes well.
class NoLog : public Log {
public:
    void log(std::string_view) override {}
};

}  // namespace

std::string_view describe(State state) {
    switch (state) {
        case State::stored:
            return "stored";
        case State::missing:
            return "missing";
        case State::mistyped:
            break;
    }
    return "mistyped";
}

std::string_view describe(EnablerState state) {
    switch (state) {
        case EnablerState::off:
            return "off";
        case EnablerState::on:
            return "on";
        case EnablerState::broken:
            return "broken";
        case EnablerState::unknown:
            return "unknown";
        case EnablerState::noFinalCutPro:
        case EnablerState::unsupported:
            break;
    }
    return "absent";
}

std::string shownText(const Setting& setting, const Standing& standing) {
    const auto stored = standing.state == State::stored ? writable(standing.stored) : std::nullopt;
    return stored ? onOneLine(setting.shown(*stored)) : std::string(describe(standing.state));
}

std::string Change::line() const {
    const std::string wanted = onOneLine(setting->shown(after));
    return std::string(setting->name()) + ": " + (isNeeded ? beforeText + " -> " + wanted : wanted + " (unchanged)");
}

Store::Store(const Services& services)
    : services_(services),
      settings_(allSettings(threadsOffered(services.processors.physicalCPUCount()))),
      store_(services.preferences),
      enabler_(services.files, services.propertyLists, services.alerts, services.log, store_) {}

Standing Store::standing(const Setting& setting) {
    if (const auto* overrideKey = setting.overrideKey()) {
        const auto loaded = services_.overrides.load();
        const PreferenceValue stored = loaded ? loaded->stored(*overrideKey) : Absent{};
        if (std::holds_alternative<Absent>(stored)) return {stored, State::missing, setting.setUpDefault()};
        const auto number = loaded->number(*overrideKey);
        return {stored, std::holds_alternative<Number>(stored) ? State::stored : State::mistyped,
                number ? NewPreferenceValue(long{*number}) : setting.setUpDefault()};
    }
    const auto& key = *setting.key();
    const PreferenceValue stored = services_.preferences.copyAppValue(key.name, codecApplicationID);
    const Reading reading = readingOf(key, stored, {.choices = setting.choices()});
    const bool isMissing = std::holds_alternative<Absent>(stored);
    if (reading.isAbsent) return {stored, isMissing ? State::missing : State::mistyped, setting.setUpDefault()};
    return {stored, State::stored, reading.shown ? *reading.shown : setting.setUpDefault()};
}

std::vector<Change> Store::changes(const std::vector<Wish>& wishes) {
    const bool isPathWished =
        std::any_of(wishes.begin(), wishes.end(), [](const Wish& wish) { return isFor(*wish.setting, pathKey); });
    std::vector<Change> changes;
    const PreferencesSequence sequence(services_.preferences);
    for (const auto& wish : wishes) {
        const auto& setting = *wish.setting;
        const auto isNamed = [&](const Change& change) { return change.setting == &setting; };
        if (std::any_of(changes.begin(), changes.end(), isNamed)) {
            throw Problem::misuse(std::string(setting.name()) + ": is named twice");
        }
        if (setting.overrideKey() && !services_.overrides.load()) {
            throw Problem::failure(std::string(setting.name()) + ": the override metadata can't be opened");
        }
        const Standing before = standing(setting);
        const auto stored = before.state == State::stored ? writable(before.stored) : std::nullopt;
        std::string text = shownText(setting, before);
        bool isNeeded = stored != wish.value;
        const bool hasPart = setting.key() && setting.key()->path.index() != 0;
        if (const auto rest = disagreement(wish); !isNeeded && !rest.empty() && !(hasPart && isPathWished)) {
            text += rest;
            isNeeded = true;
        }
        changes.push_back({&setting, before, text, wish.value, isNeeded});
    }
    return changes;
}

std::string Store::disagreement(const Wish& wish) {
    const auto* key = wish.setting->key();
    if (!key) return "";
    if (const auto* on = std::get_if<bool>(&wish.value); on && key == &enablerKey) {
        return enabler_.isTurned(*on) ? "" : ", its folder " + std::string(describe(enabler_.state()));
    }
    if (key->path.index() == 0) return "";
    const Standing path = this->path();
    const auto* bits = std::get_if<long>(&path.value);
    if (path.state == State::mistyped || !bits) return ", in ColorProcessingPath nothing";
    return agrees(*key, wish.value, *bits) ? "" : ", in ColorProcessingPath " + inPath(*key, *bits);
}

std::optional<Fault> Store::fault(const Setting& setting, const Standing& standing) {
    const std::string shown = onOneLine(setting.shown(standing.value));
    if (standing.state == State::mistyped) {
        return Fault{"mistyped",
                     onOneLine(storedText(standing.stored)) + " is no " + std::string(setting.type()) +
                         (setting.key() ? ", so it counts as missing and the pane shows " : ", and the pane shows ") +
                         shown};
    }
    const auto stored = writable(standing.stored);
    if (standing.state == State::missing || !stored) return std::nullopt;
    if (!setting.canShow(*stored)) return Fault{"outside", storedText(standing.stored) + " is not in its menu here"};
    const Standing path = this->path();
    const auto* bits = std::get_if<long>(&path.value);
    const auto* key = setting.key();
    if (!key || path.state != State::stored || !bits || agrees(*key, *stored, *bits)) return std::nullopt;
    return Fault{"disagreeing", "it is " + shown + ", and " + inPath(*key, *bits) + " in ColorProcessingPath"};
}

Standing Store::path() {
    return standing(setting(pathKey.name));
}

void Store::make(std::vector<Change>& changes) {
    makeInDomain(changes);
    for (auto& change : changes) {
        if (change.isNeeded && change.setting->overrideKey()) makeInOverrides(change);
    }
    for (auto& change : changes) {
        if (change.isNeeded && isFor(*change.setting, enablerKey)) turnEnabler(change);
    }
}

void Store::makeInDomain(std::vector<Change>& changes) {
    std::vector<Change*> made;
    Change* path = nullptr;
    bool isPathTouched = false;
    for (auto& change : changes) {
        const auto* key = change.setting->key();
        if (key == &pathKey) path = &change;
        if (!change.isNeeded || !key || key == &enablerKey) continue;
        made.push_back(&change);
        if (key == &pathKey) continue;
        store_.write(*key, change.after);
        isPathTouched |= key->path.index() != 0;
    }
    if (path && (path->isNeeded || isPathTouched)) store_.write(pathKey, path->after);
    if (made.empty()) return;
    if (!store_.synchronize()) {
        std::string lines;
        for (const auto* change : made) {
            lines += std::string(lines.empty() ? "" : "\n") + std::string(change->setting->name()) + ": " +
                     onOneLine(change->setting->shown(change->after)) + " could not be stored";
        }
        throw Problem::failure(lines);
    }
    for (auto* change : made) {
        change->isMade = true;
        if (!isFor(*change->setting, key("ShowStereoStatusMenu"))) continue;
        NoLog quiet;
        postStereoStatusChange(services_.notifications, quiet);
    }
}

void Store::makeInOverrides(Change& change) {
    const auto* number = std::get_if<long>(&change.after);
    change.isMade =
        number && services_.overrides.write(*change.setting->overrideKey(), static_cast<std::int32_t>(*number));
    if (change.isMade) return;
    throw Problem::failure(std::string(change.setting->name()) + ": " + change.setting->shown(change.after) +
                           " could not be stored in the override metadata");
}

void Store::turnEnabler(Change& change) {
    const auto* flag = std::get_if<bool>(&change.after);
    const bool on = flag && *flag;
    if (enabler_.isTurned(on)) {
        store_.write(enablerKey, on);
    } else if (enabler_.turn(on ? onState : offState)) {
        throw Problem::failure(std::string(enablerKey.name) + ": could not be switched " + (on ? "on" : "off"));
    }
    // What the switch stored is synchronised already, unless that failed.
    change.isMade = store_.synchronize();
    if (!change.isMade)
        throw Problem::failure(std::string(enablerKey.name) + ": " + (on ? "on" : "off") + " could not be stored");
}

}  // namespace vantrel

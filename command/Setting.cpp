#include "command/Setting.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "command/PaneControls.h"
#include "command/Problem.h"
#include "command/Text.h"
#include "settings/Reading.h"

namespace vantrel {
namespace {

constexpr const OverrideKey* overrides[] = {&overrideKeys::chromaFilter, &overrideKeys::decodeThreads};

constexpr const SettingsKey& stageKey = key("look");
constexpr std::string_view pathTitle = "Stages and demosaic methods, as bits";

constexpr std::string_view wordsForOn[] = {"on", "true", "yes", "1"};
constexpr std::string_view wordsForOff[] = {"off", "false", "no", "0"};

bool isAnyOf(std::span<const std::string_view> words, std::string_view word) {
    return std::any_of(words.begin(), words.end(), [word](auto known) { return isSameName(word, known); });
}

std::optional<long> numberIn(const std::string& word) {
    long number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size() ? std::optional(number) : std::nullopt;
}

const PaneControl* controlAt(std::string_view outlet) {
    for (const auto& control : paneControls) {
        if (control.outlet == outlet) return &control;
    }
    return nullptr;
}

Setting::Form formOf(const SettingsKey& key) {
    switch (key.kind) {
        case Kind::flag:
            return Setting::Form::flag;
        case Kind::row:
        case Kind::item:
            return Setting::Form::item;
        case Kind::limit:
            return Setting::Form::threads;
        case Kind::text:
            return Setting::Form::text;
        case Kind::bits:
            break;
    }
    return Setting::Form::bits;
}

NewPreferenceValue defaultOf(const SettingsKey& key, std::int32_t choices, bool isOn) {
    std::string folder;
    if (const auto* text = std::get_if<LocalizedText>(&key.setUpDefault)) {
        folder = text->fallback;
        for (const auto& known : defaultFolders) {
            if (known.key == text->key) folder = known.path;
        }
    }
    const Reading reading = readingOf(key, Absent{}, {.choices = choices, .defaultText = folder});
    return reading.shown ? *reading.shown : NewPreferenceValue(isOn);
}

bool isOn(const NewPreferenceValue& value) {
    const auto* flag = std::get_if<bool>(&value);
    const auto* number = std::get_if<long>(&value);
    return flag ? *flag : number && *number != 0;
}

}  // namespace

Setting::Setting(const SettingsKey* key, const OverrideKey* overrideKey, std::int32_t threads)
    : key_(key), overrideKey_(overrideKey), threads_(threads), name_(key ? key->name : overrideKey->name) {
    const bool isPath = key == &pathKey;
    const auto* control = controlAt(overrideKey ? overrideKey->outlet : isPath ? stageKey.outlet : key->outlet);
    if (control) {
        title_ = isPath ? pathTitle : control->title;
        group_ = control->group;
        items_ = control->items;
    }
    if (key) {
        form_ = formOf(*key);
        default_ = defaultOf(*key, choices(), control && control->isOn);
    } else {
        const bool isFilter = overrideKey == &overrideKeys::chromaFilter;
        form_ = isFilter ? Form::flag : Form::threadsOrAll;
        default_ = long{control && control->isOn};
    }
}

std::string_view Setting::type() const {
    if (overrideKey_) return "number";
    if (form_ == Form::flag) return "flag";
    return form_ == Form::text ? "text" : "integer";
}

std::int32_t Setting::choices() const {
    return form_ == Form::item ? static_cast<std::int32_t>(items_.size()) : threads_;
}

std::vector<std::string> Setting::words() const {
    if (form_ == Form::flag) return {"on", "off"};
    std::vector<std::string> words;
    if (form_ == Form::threadsOrAll) words.emplace_back("all");
    if (form_ == Form::threads || form_ == Form::threadsOrAll) {
        for (std::int32_t threads = 1; threads <= threads_; ++threads) words.push_back(std::to_string(threads));
    }
    for (const auto& item : items_) words.emplace_back(item);
    return words;
}

bool Setting::canShow(const NewPreferenceValue& value) const {
    const auto* index = std::get_if<long>(&value);
    if (!index || form_ == Form::bits) return true;
    if (form_ == Form::flag) return *index == 0 || *index == 1;
    return *index >= 0 && *index < choices() + (form_ == Form::threadsOrAll ? 1 : 0);
}

std::string Setting::shown(const NewPreferenceValue& value) const {
    if (form_ == Form::flag) return isOn(value) ? "on" : "off";
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    const auto* index = std::get_if<long>(&value);
    if (form_ == Form::threadsOrAll && index && *index == 0) return "all";
    return index ? std::to_string(*index + (form_ == Form::threads ? 1 : 0)) : "";
}

Node Setting::shownNode(const NewPreferenceValue& value) const {
    const auto* index = std::get_if<long>(&value);
    if (form_ == Form::flag) return {isOn(value)};
    if (!index || (form_ == Form::threadsOrAll && *index == 0)) return {shown(value)};
    return {*index + (form_ == Form::threads ? 1 : 0)};
}

void Setting::mustHaveControl() const {
    if (!hasControl()) throw Problem::misuse(std::string(name()) + ": only apply can set it, from a profile");
}

NewPreferenceValue Setting::parse(const std::string& word) const {
    mustHaveControl();
    std::optional<NewPreferenceValue> value;
    const auto number = numberIn(word);
    if (form_ == Form::text) {
        value = word;
    } else if (form_ == Form::flag && (isAnyOf(wordsForOn, word) || isAnyOf(wordsForOff, word))) {
        value = flag(isAnyOf(wordsForOn, word));
    } else if (form_ == Form::threadsOrAll && (isSameName(word, "all") || (number && *number > 0))) {
        value = number.value_or(0);
    } else if (form_ == Form::threads && number && *number > 0) {
        value = *number - 1;
    } else if (form_ == Form::item && number) {
        value = *number;
    }
    for (std::size_t index = 0; index < items_.size(); ++index) {
        if (isSameName(word, items_[index])) value = static_cast<long>(index);
    }
    if (value && canShow(*value)) return *value;
    throw Problem::misuse(std::string(name()) + ": " + onOneLine(word) + " is not " + expectation());
}

NewPreferenceValue Setting::flag(bool on) const {
    if (overrideKey_) return long{on};
    return on;
}

NewPreferenceValue Setting::accept(const PreferenceValue& value) const {
    std::optional<NewPreferenceValue> accepted;
    const auto* flag = std::get_if<bool>(&value);
    const auto* number = std::get_if<Number>(&value);
    const auto* text = std::get_if<std::string>(&value);
    if (form_ == Form::text && text) {
        accepted = *text;
    } else if (form_ == Form::flag && flag) {
        accepted = this->flag(*flag);
    } else if (type() != "flag" && type() != "text" && number && number->longValue) {
        accepted = *number->longValue;
    }
    if (accepted && canShow(*accepted)) return *accepted;

    std::string wanted = expectation();
    if (form_ == Form::flag) wanted = overrideKey_ ? "0 or 1" : "true or false";
    if (form_ == Form::item) wanted = "an index from 0 to " + std::to_string(choices() - 1);
    if (form_ == Form::threads)
        wanted = "an index from 0 to " + std::to_string(threads_ - 1) + ", one less than threads";
    if (form_ == Form::threadsOrAll) wanted = "a number from 0, which is all, to " + std::to_string(threads_);
    const std::string quotes = text ? "\"" : "";
    throw Problem::misuse(std::string(name()) + ": " + quotes + (text ? onOneLine(*text) : storedText(value)) + quotes +
                          " is not " + wanted);
}

std::string Setting::expectation() const {
    const auto last = std::to_string(choices() - (form_ == Form::item ? 1 : 0));
    switch (form_) {
        case Form::flag:
            return "on or off";
        case Form::item: {
            std::string titles;
            for (const auto& item : items_) titles += std::string(titles.empty() ? "" : ", ") + std::string(item);
            return "an index from 0 to " + last + ", nor one of: " + titles;
        }
        case Form::threads:
            return "a number of threads from 1 to " + last;
        case Form::threadsOrAll:
            return "all, or a number of threads from 1 to " + last;
        case Form::text:
            return "a text";
        case Form::bits:
            break;
    }
    return "a whole number";
}

std::vector<Setting> allSettings(std::int32_t threads) {
    std::vector<Setting> settings;
    std::ptrdiff_t behindStages = 0;
    for (const auto& control : paneControls) {
        for (const auto& key : keyTable) {
            if (key.outlet != control.outlet) continue;
            settings.emplace_back(&key, nullptr, threads);
            if (key.path.index() != 0) behindStages = static_cast<std::ptrdiff_t>(settings.size());
        }
        for (const auto* key : overrides) {
            if (key->outlet == control.outlet) settings.emplace_back(nullptr, key, threads);
        }
    }
    settings.insert(settings.begin() + behindStages, Setting(&pathKey, nullptr, threads));
    return settings;
}

const Setting& settingNamed(std::string_view name, const std::vector<Setting>& settings) {
    std::vector<std::string> names;
    for (const auto& setting : settings) {
        if (isSameName(name, setting.name())) return setting;
        names.emplace_back(setting.name());
    }
    throw Problem::misuse("no setting " + onOneLine(name) + "; did you mean " + nearest(name, names) + "?");
}

std::string storedText(const PreferenceValue& value) {
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    const auto* number = std::get_if<Number>(&value);
    if (!number) return "a list, a date or data";
    return number->longValue ? std::to_string(*number->longValue) : "a number with a fraction, or too large";
}

Node storedNode(const PreferenceValue& value) {
    if (std::holds_alternative<Absent>(value)) return {nullptr};
    if (const auto* flag = std::get_if<bool>(&value)) return {*flag};
    const auto* number = std::get_if<Number>(&value);
    if (number && number->longValue) return {*number->longValue};
    return {storedText(value)};
}

}  // namespace vantrel

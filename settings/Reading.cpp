#include "settings/Reading.h"

namespace vantrel {
namespace {

/// The value in the type of its kind; nothing where it has another, or can't be read as a `long`.
std::optional<NewPreferenceValue> typed(Kind kind, const PreferenceValue& stored) {
    const auto* flag = std::get_if<bool>(&stored);
    const auto* number = std::get_if<Number>(&stored);
    const auto* text = std::get_if<std::string>(&stored);
    if (kind == Kind::flag) return flag ? std::optional<NewPreferenceValue>(*flag) : std::nullopt;
    if (kind == Kind::text) return text ? std::optional<NewPreferenceValue>(*text) : std::nullopt;
    if (!number || !number->longValue) return std::nullopt;
    return kind == Kind::row ? long{static_cast<std::int32_t>(*number->longValue)} : *number->longValue;
}

std::optional<NewPreferenceValue> defaultOf(const SettingsKey& key, const Surroundings& surroundings) {
    if (const auto* flag = std::get_if<bool>(&key.setUpDefault)) return *flag;
    if (const auto* number = std::get_if<long>(&key.setUpDefault)) return *number;
    if (std::holds_alternative<LocalizedText>(key.setUpDefault)) return surroundings.defaultText;
    return std::nullopt;
}

}  // namespace

Reading readingOf(const SettingsKey& key, const PreferenceValue& stored, const Surroundings& surroundings) {
    Reading reading;
    reading.shown = typed(key.kind, stored);
    reading.isAbsent = !reading.shown;
    // A matrix whose number can't be read keeps its row, and the number stays.
    if (key.kind == Kind::row && reading.isAbsent && std::holds_alternative<Number>(stored)) return reading;

    const long* row = key.kind == Kind::row ? reading.index() : nullptr;
    if (reading.isAbsent || (row && (*row < 0 || *row >= surroundings.choices))) {
        reading.shown = defaultOf(key, surroundings);
        if (key.repair == Repair::written || key.repair == Repair::writtenLazily) reading.repair = reading.shown;
    }

    const long* limit = key.kind == Kind::limit ? reading.index() : nullptr;
    if (limit && *limit >= surroundings.choices) {
        reading.shown = long{surroundings.choices} - 1;
        if (key.repair == Repair::ifLowered) reading.repair = reading.shown;
    }

    reading.synchronizes = reading.repair && key.repair != Repair::writtenLazily;
    return reading;
}

bool agrees(const SettingsKey& key, const NewPreferenceValue& value, long path) {
    const auto* flag = std::get_if<bool>(&value);
    const auto* index = std::get_if<long>(&value);
    const auto* stage = std::get_if<colorProcessingPath::Stage>(&key.path);
    const auto* field = std::get_if<colorProcessingPath::DemosaicField>(&key.path);
    if (stage && flag) return colorProcessingPath::hasStage(path, *stage) == *flag;
    if (field && index) return colorProcessingPath::methodIn(path, *field) == *index;
    return true;
}

}  // namespace vantrel

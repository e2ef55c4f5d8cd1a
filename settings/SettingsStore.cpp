#include "settings/SettingsStore.h"

#include "settings/ColorProcessingPath.h"
#include "settings/KeyTable.h"

namespace vantrel {

bool SettingsStore::initPrefCheckForKey(CheckBox& control, std::string_view key) {
    if (const auto flag = flagForKey(key)) {
        control.setState(*flag ? onState : offState);
        return false;
    }
    control.setState(onState);
    setValueForKey(true, key);
    return true;
}

bool SettingsStore::initIntPrefCheckForKey(RadioMatrix& control, std::string_view key) {
    const PreferenceValue value = preferences_.copyAppValue(key, appID());
    const auto* number = std::get_if<Number>(&value);
    if (!number) {
        control.setStateAtRow(onState, 0, 0);
        setValueForKey(0L, key);
        return true;
    }
    if (!number->longValue) return false;

    const auto row = static_cast<std::int32_t>(*number->longValue);
    if (row >= 0 && row < control.numberOfRows()) {
        control.selectCellAtRow(row, 0);
        return false;
    }
    control.selectCellAtRow(0, 0);
    setValueForKey(0L, key);
    return true;
}

void SettingsStore::updateBoolPrefForKey(bool value, std::string_view key) {
    setValueForKey(value, key);
    synchronize();
}

void SettingsStore::updateIntPrefForKey(std::int32_t value, std::string_view key) {
    setValueForKey(long{value}, key);
    synchronize();
}

void SettingsStore::updateBoolPrefForKeyForBit(bool value, std::string_view key, std::int32_t bit) {
    setValueForKey(value, key);
    if (value) {
        setProcPathBit(bit);
    } else {
        clearProcPathBit(bit);
    }
}

void SettingsStore::setProcPathBit(std::int32_t bit) {
    const auto& key = keys::colorProcessingPath.name;
    setValueForKey(colorProcessingPath::withBitSet(integerForKey(key), bit), key);
    synchronize();
}

void SettingsStore::clearProcPathBit(std::int32_t bit) {
    const auto& key = keys::colorProcessingPath.name;
    setValueForKey(colorProcessingPath::withBitCleared(integerForKey(key), bit), key);
    synchronize();
}

std::optional<bool> SettingsStore::flagForKey(std::string_view key) {
    const PreferenceValue value = preferences_.copyAppValue(key, appID());
    const auto* flag = std::get_if<bool>(&value);
    return flag ? std::optional(*flag) : std::nullopt;
}

std::optional<long> SettingsStore::integerForKey(std::string_view key) {
    const PreferenceValue value = preferences_.copyAppValue(key, appID());
    const auto* number = std::get_if<Number>(&value);
    return number ? number->longValue : std::nullopt;
}

std::optional<std::string> SettingsStore::textForKey(std::string_view key) {
    PreferenceValue value = preferences_.copyAppValue(key, appID());
    auto* text = std::get_if<std::string>(&value);
    return text ? std::optional(std::move(*text)) : std::nullopt;
}

void SettingsStore::setValueForKey(const NewPreferenceValue& value, std::string_view key) {
    preferences_.setAppValue(key, value, appID());
}

void SettingsStore::synchronize() {
    preferences_.synchronize(appID());
}

}  // namespace vantrel

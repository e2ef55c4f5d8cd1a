#include "settings/SettingsStore.h"

#include <algorithm>

#include "settings/ColorProcessingPath.h"

namespace vantrel {
namespace {

/// A menu's index as it is stored: no selection counts as the first item, and `bits` holds it to what the codec reads.
std::int32_t itemIndex(long index, std::int32_t bits) {
    return std::max(static_cast<std::int32_t>(index), 0) & bits;
}

constexpr std::int32_t limitBits = 0x1F;
constexpr std::int32_t methodBits = 0xF;

}  // namespace

Reading SettingsStore::read(const SettingsKey& key, const Surroundings& surroundings) {
    return readingOf(key, preferences_.copyAppValue(key.name, codecApplicationID), surroundings);
}

Reading SettingsStore::repair(const SettingsKey& key, const Surroundings& surroundings, const AddedBits& added) {
    const auto repaired = [key, surroundings, added](const PreferenceValue& stored) {
        const Reading reading = readingOf(key, stored, surroundings);
        if (const auto* stage = std::get_if<colorProcessingPath::Stage>(&key.path); stage && added) {
            const long mask = colorProcessingPath::maskOfBit(stage->bit);
            const bool isSwitchedOn = reading.repair && reading.flag() && *reading.flag();
            *added = isSwitchedOn ? *added | mask : *added & ~mask;
        }
        return reading.repair;
    };
    return readingOf(key, preferences_.updateAppValue(key.name, repaired, codecApplicationID), surroundings);
}

bool SettingsStore::change(const SettingsKey& key, const NewPreferenceValue& chosen) {
    write(key, chosen);
    return synchronize();
}

void SettingsStore::write(const SettingsKey& key, const NewPreferenceValue& chosen) {
    const auto* flag = std::get_if<bool>(&chosen);
    const auto* index = std::get_if<long>(&chosen);
    if (const auto* stage = std::get_if<colorProcessingPath::Stage>(&key.path); stage && flag) {
        set(key.name, *flag);
        updatePathBit(stage->bit, *flag);
    } else if (const auto* field = std::get_if<colorProcessingPath::DemosaicField>(&key.path); field && index) {
        const auto method = itemIndex(*index, methodBits);
        set(key.name, long{method});
        updatePath([field = *field, method](std::optional<long> stored) {
            return colorProcessingPath::withDemosaic(stored, field, static_cast<std::uint32_t>(method));
        });
    } else if (index && key.kind == Kind::limit) {
        set(key.name, long{itemIndex(*index, limitBits)});
    } else if (index && key.kind == Kind::row) {
        set(key.name, long{static_cast<std::int32_t>(*index)});
    } else {
        set(key.name, chosen);
    }
}

void SettingsStore::setFlag(std::string_view key, bool flag) {
    set(key, flag);
    synchronize();
}

void SettingsStore::setInteger(std::string_view key, std::int32_t number) {
    set(key, long{number});
    synchronize();
}

void SettingsStore::setFlagAndBit(std::string_view key, bool flag, std::int32_t bit) {
    set(key, flag);
    updatePathBit(bit, flag);
    synchronize();
}

void SettingsStore::setPathBit(std::int32_t bit) {
    updatePathBit(bit, true);
    synchronize();
}

void SettingsStore::clearPathBit(std::int32_t bit) {
    updatePathBit(bit, false);
    synchronize();
}

void SettingsStore::addToPath(const AddedBits& added) {
    updatePath([added, first = *added](std::optional<long> stored) -> std::optional<long> {
        // All flags that were missing are stored after all: a missing path stays missing.
        if (!stored && first != 0 && *added == 0) return std::nullopt;
        return stored.value_or(0) | *added;
    });
}

bool SettingsStore::synchronize() {
    return preferences_.synchronize(codecApplicationID);
}

void SettingsStore::updatePathBit(std::int32_t bit, bool isSet) {
    updatePath([bit, isSet](std::optional<long> stored) {
        return isSet ? colorProcessingPath::withBitSet(stored, bit) : colorProcessingPath::withBitCleared(stored, bit);
    });
}

void SettingsStore::updatePath(const NewPath& newPath) {
    const auto change = [newPath](const PreferenceValue& stored) -> std::optional<NewPreferenceValue> {
        const auto* number = std::get_if<Number>(&stored);
        return newPath(number ? number->longValue : std::nullopt);
    };
    preferences_.updateAppValue(key("ColorProcessingPath").name, change, codecApplicationID);
}

void SettingsStore::set(std::string_view key, const NewPreferenceValue& value) {
    preferences_.setAppValue(key, value, codecApplicationID);
}

}  // namespace vantrel

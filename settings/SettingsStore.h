#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

#include "platform/Preferences.h"
#include "settings/KeyTable.h"
#include "settings/Reading.h"

namespace vantrel {

/// The codec's settings: one preferences domain, read and written key by key. It keeps no copy of any value, and
/// nothing here reports an error: a key that is absent, mistyped or unreadable has its default.
class SettingsStore {
public:
    explicit SettingsStore(Preferences& preferences) : preferences_(preferences) {}

    /// What the value that is stored under `key` comes to. Writes nothing.
    Reading read(const SettingsKey& key, const Surroundings& surroundings = {});

    /// The same, and stores the repair, if there is one. Never synchronises: the caller does so once for all its keys.
    Reading repair(const SettingsKey& key, const Surroundings& surroundings = {});

    /// Stores what the user chose, with the key's part of `ColorProcessingPath`, and synchronises once. An index that
    /// is no selection (negative) counts as 0 in a menu and is stored as it is in a radio matrix. A menu's index is
    /// held to the bits that it has: five for a limit, four for a demosaic method.
    void change(const SettingsKey& key, const NewPreferenceValue& chosen);

    /// Writes a flag and synchronises.
    void setFlag(std::string_view key, bool flag);

    /// Writes an integer and synchronises.
    void setInteger(std::string_view key, std::int32_t number);

    /// Writes a flag, then sets or clears its bit of `ColorProcessingPath`, and synchronises both.
    void setFlagAndBit(std::string_view key, bool flag, std::int32_t bit);

    /// Sets a bit of `ColorProcessingPath`, and always bit 0 with it, and synchronises. The bit counts modulo 32.
    void setPathBit(std::int32_t bit);

    /// Clears a bit of `ColorProcessingPath`, which becomes 0 when it was missing, and synchronises. The bit counts
    /// modulo 32.
    void clearPathBit(std::int32_t bit);

    /// Adds the bits of `mask` to `ColorProcessingPath`, from 0 when it was missing, without synchronising.
    void addToPath(long mask);

    /// Makes all writes so far lasting and visible to other processes.
    void synchronize();

private:
    void updatePath(const std::function<long(std::optional<long> stored)>& newPath);
    void set(std::string_view key, const NewPreferenceValue& value);

    Preferences& preferences_;
};

}  // namespace vantrel

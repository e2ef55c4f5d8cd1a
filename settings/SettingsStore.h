#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/Preferences.h"
#include "settings/KeyTable.h"
#include "settings/Reading.h"

namespace vantrel {

/// Bits that a set-up adds to `ColorProcessingPath`, those of the stages whose flags it repairs. They follow what
/// becomes of each repair on its way to the store: a flag that turns out to be stored after all takes its bit out
/// again.
using AddedBits = std::shared_ptr<long>;

/// The codec's settings: one preferences domain, read and written key by key. It keeps no copy of any value, and
/// nothing here reports an error: a key that is absent, mistyped or unreadable has its default.
class SettingsStore {
public:
    explicit SettingsStore(Preferences& preferences) : preferences_(preferences) {}

    /// What the value that is stored under `key` comes to. Writes nothing.
    Reading read(const SettingsKey& key, const Surroundings& surroundings = {});

    /// The same, and stores the repair, if there is one. Never synchronises: the caller does so once for all its keys.
    /// `added`, if any, is told the bit of a stage that is switched on thereby.
    Reading repair(const SettingsKey& key, const Surroundings& surroundings = {}, const AddedBits& added = nullptr);

    /// Writes what the user chose, with the key's part of `ColorProcessingPath`, and synchronises once. An index that
    /// is no selection (negative) counts as 0 in a menu and is stored as it is in a radio matrix. A menu's index is
    /// held to the bits that it has: five for a limit, four for a demosaic method. A value of another type than the
    /// key's is stored as it is, alone. Returns as `synchronize` does.
    bool change(const SettingsKey& key, const NewPreferenceValue& chosen);

    /// The same without the synchronise, for several changes that are to become lasting together.
    void write(const SettingsKey& key, const NewPreferenceValue& chosen);

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

    /// Adds bits to `ColorProcessingPath`, from 0 when it was missing, without synchronising.
    void addToPath(const AddedBits& added);

    /// Makes all writes so far lasting and visible to other processes. Returns false when that failed.
    bool synchronize();

private:
    /// What becomes of `ColorProcessingPath`, of which there is nothing where it is missing, mistyped or unreadable.
    using NewPath = std::function<std::optional<long>(std::optional<long> stored)>;

    void updatePathBit(std::int32_t bit, bool isSet);
    void updatePath(const NewPath& newPath);
    void set(std::string_view key, const NewPreferenceValue& value);

    Preferences& preferences_;
};

}  // namespace vantrel

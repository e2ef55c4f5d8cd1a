#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Controls.h"
#include "platform/Preferences.h"

namespace vantrel {

/// The codec's settings: one preferences domain, read and written key by key. It keeps no copy of any value, and
/// nothing here reports an error: a key that is absent, mistyped or unreadable has its default.
///
/// The two `init` checks never synchronise; their caller does so once for all its keys. Every update does.
class SettingsStore {
public:
    /// Works on the domain that `appID` names at the time of each call.
    SettingsStore(Preferences& preferences, const OwnedString& appID) : preferences_(preferences), appID_(appID) {}

    /// Puts a check box into the state of a flag. An absent or mistyped key gives on, and true is written.
    /// Returns whether it wrote.
    bool initPrefCheckForKey(CheckBox& control, std::string_view key);

    /// Selects the row that an integer names by its low 32 bits. An absent or mistyped key switches row 0 on and
    /// a row that the matrix doesn't have selects row 0; either way 0 is written. A number that can't be read as
    /// a `long` leaves matrix and key alone. Returns whether it wrote.
    bool initIntPrefCheckForKey(RadioMatrix& control, std::string_view key);

    /// Writes a flag and synchronises.
    void updateBoolPrefForKey(bool value, std::string_view key);

    /// Writes an integer and synchronises.
    void updateIntPrefForKey(std::int32_t value, std::string_view key);

    /// Writes a flag, then sets or clears its bit of `ColorProcessingPath`, which synchronises both.
    void updateBoolPrefForKeyForBit(bool value, std::string_view key, std::int32_t bit);

    /// Sets a bit of `ColorProcessingPath`, and always bit 0 with it, and synchronises. The bit counts modulo 32.
    void setProcPathBit(std::int32_t bit);

    /// Clears a bit of `ColorProcessingPath`, which becomes 0 when it was missing, and synchronises. The bit counts
    /// modulo 32.
    void clearProcPathBit(std::int32_t bit);

    /// The flag under `key`; nothing when it is absent or mistyped.
    std::optional<bool> flagForKey(std::string_view key);

    /// The integer under `key`; nothing when it is absent, mistyped, or not readable as a `long`.
    std::optional<long> integerForKey(std::string_view key);

    /// The text under `key`; nothing when it is absent or mistyped.
    std::optional<std::string> textForKey(std::string_view key);

    /// Writes without synchronising.
    void setValueForKey(const NewPreferenceValue& value, std::string_view key);

    /// Makes all writes so far lasting and visible to other processes.
    void synchronize();

private:
    std::string appID() const { return appID_.value().value_or(""); }

    Preferences& preferences_;
    const OwnedString& appID_;
};

}  // namespace vantrel

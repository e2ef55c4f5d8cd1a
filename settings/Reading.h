#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/Preferences.h"
#include "settings/KeyTable.h"

namespace vantrel {

/// What a key's reading depends on beside its row and its value.
struct Surroundings {
    /// How many rows the radio matrix has, or how many threads are offered.
    std::int32_t choices = 0;
    /// The default of a text.
    std::string defaultText = {};
};

/// The thread menus offer no more threads, whatever the machine has.
inline constexpr std::int32_t mostThreads = 32;

/// How many threads the thread menus offer on a machine that tells so many cores: at least 1.
constexpr std::int32_t threadsOffered(std::int32_t physicalCPUs) {
    return std::clamp(physicalCPUs, 1, mostThreads);
}

/// What a stored value comes to.
struct Reading {
    /// Whether the value counts as absent: it is missing, mistyped, or can't be read as a `long`.
    bool isAbsent = false;
    /// What the control is to show; nothing where it is to keep its state.
    std::optional<NewPreferenceValue> shown;
    /// What is to be stored instead, if anything, when the view is set up, and whether that is to be synchronised with
    /// its group.
    std::optional<NewPreferenceValue> repair;
    bool synchronizes = false;

    /// What is shown, if it is of that type.
    const bool* flag() const { return shown ? std::get_if<bool>(&*shown) : nullptr; }
    const long* index() const { return shown ? std::get_if<long>(&*shown) : nullptr; }
    const std::string* text() const { return shown ? std::get_if<std::string>(&*shown) : nullptr; }
};

/// Reads a value as its key's row says. Writes nothing.
Reading readingOf(const SettingsKey& key, const PreferenceValue& stored, const Surroundings& surroundings = {});

/// Whether `path`, a value of `ColorProcessingPath`, has in the key's part what the choice of `value` puts there. A key
/// without a part agrees with every path.
bool agrees(const SettingsKey& key, const NewPreferenceValue& value, long path);

}  // namespace vantrel

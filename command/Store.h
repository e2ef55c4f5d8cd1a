#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command/Setting.h"
#include "host/EnablerSwitch.h"
#include "settings/SettingsStore.h"
#include "system/SystemServices.h"

namespace vantrel {

/// How it stands with a stored value.
enum class State {
    stored,
    missing,
    mistyped  ///< it has another type, or is a number that can't be read
};

/// "stored", "missing", "mistyped".
std::string_view describe(State state);

/// "off", "on", "broken", "unknown", "absent".
std::string_view describe(EnablerState state);

/// What is stored for a setting, and what it comes to.
struct Standing {
    PreferenceValue stored;
    State state = State::missing;
    /// What the pane would show.
    NewPreferenceValue value;
};

/// What is wrong with a stored value.
struct Fault {
    /// "mistyped", "outside" or "disagreeing".
    std::string_view problem;
    /// A clause, without the setting's name.
    std::string meaning;
};

/// The stored value as the pane would show it, also where its menu has no such item; or "missing" or "mistyped".
std::string shownText(const Setting& setting, const Standing& standing);

/// A setting and the value that it is to have.
struct Wish {
    const Setting* setting;
    NewPreferenceValue value;
};

/// What a wish comes to.
struct Change {
    const Setting* setting;
    Standing before;
    /// The shown value and what disagrees with it, or "missing" or "mistyped".
    std::string beforeText;
    NewPreferenceValue after;
    /// Whether anything has to be written.
    bool isNeeded = false;
    /// Whether it was.
    bool isMade = false;

    /// "FormatRGB8: on -> off", "FormatRGB8: off (unchanged)".
    std::string line() const;
};

/// The settings where they are stored: the preferences domain, the override metadata, and Final Cut Pro's enabler.
class Store {
public:
    explicit Store(const Services& services);

    const std::vector<Setting>& settings() const { return settings_; }
    const Setting& setting(std::string_view name) const { return settingNamed(name, settings_); }

    /// What is stored now.
    Standing standing(const Setting& setting);

    /// What is wrong with what is stored: it is mistyped, outside its menu, or `ColorProcessingPath` says something
    /// else. A missing value is right.
    std::optional<Fault> fault(const Setting& setting, const Standing& standing);

    /// What the wishes come to; writes nothing. A wish for `ColorProcessingPath` stands for the bits of all stages and
    /// the fields of all methods.
    std::vector<Change> changes(const std::vector<Wish>& wishes);

    /// Makes the changes that are needed as clicks would make them: the domain's together in one write,
    /// `ColorProcessingPath` last of them, then the override metadata, then the enabler. Throws a Problem at the first
    /// that could not be made.
    void make(std::vector<Change>& changes);

    EnablerSwitch& enabler() { return enabler_; }

private:
    void makeInDomain(std::vector<Change>& changes);
    void makeInOverrides(Change& change);
    void turnEnabler(Change& change);
    /// What of a wish is not so beside its own value; empty when nothing is.
    std::string disagreement(const Wish& wish);
    /// The stored `ColorProcessingPath`, or why there is none.
    Standing path();

    Services services_;
    std::vector<Setting> settings_;
    SettingsStore store_;
    EnablerSwitch enabler_;
};

}  // namespace vantrel

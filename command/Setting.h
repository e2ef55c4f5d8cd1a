#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "command/JSON.h"
#include "overrides/OverrideMetadata.h"
#include "platform/Preferences.h"
#include "settings/KeyTable.h"

namespace vantrel {

/// Its setting has no control of its own.
inline constexpr const SettingsKey& pathKey = key("ColorProcessingPath");

/// One setting, as the pane shows it and as it is stored. A value is of the type that is stored: the index of an item,
/// one thread less than the encoder's menu shows, 0 or 1 for the chroma filter.
class Setting {
public:
    /// How a value is shown and typed.
    enum class Form {
        flag,          ///< on or off
        item,          ///< an index from 0, or the item's title
        threads,       ///< the number of threads, one more than is stored
        threadsOrAll,  ///< the number of threads, or "all", which is stored as 0
        text,          ///< any text
        bits           ///< a number
    };

    /// A setting of the domain, or of the override metadata: one of both is null. `threads` is how many the menus
    /// offer.
    Setting(const SettingsKey* key, const OverrideKey* overrideKey, std::int32_t threads);

    std::string_view name() const { return name_; }
    std::string_view title() const { return title_; }
    std::string_view group() const { return group_; }
    Form form() const { return form_; }
    /// "flag", "integer", "text" or "number".
    std::string_view type() const;
    const SettingsKey* key() const { return key_; }
    const OverrideKey* overrideKey() const { return overrideKey_; }

    /// Whether it can be set by itself; `ColorProcessingPath` can't. `mustHaveControl` throws a Problem then.
    bool hasControl() const { return form_ != Form::bits; }
    void mustHaveControl() const;

    /// How many rows, items or threads its control has.
    std::int32_t choices() const;

    /// The words that `parse` takes, one for each value; none for texts.
    std::vector<std::string> words() const;

    /// What the pane shows when nothing is stored.
    const NewPreferenceValue& setUpDefault() const { return default_; }

    /// Whether its control can show the value.
    bool canShow(const NewPreferenceValue& value) const;

    /// The value as the pane shows it: "on", "8", "all", "/Library".
    std::string shown(const NewPreferenceValue& value) const;
    Node shownNode(const NewPreferenceValue& value) const;

    /// The value that a word on the command line asks for. Throws a Problem when it asks for none.
    NewPreferenceValue parse(const std::string& word) const;

    /// A value of a profile, which is one as it is stored; the chroma filter may be a Boolean there as well. Throws a
    /// Problem when it has another type, or when the control can't show it.
    NewPreferenceValue accept(const PreferenceValue& value) const;

private:
    /// A flag as it is stored.
    NewPreferenceValue flag(bool on) const;
    /// What a word or value would have to be.
    std::string expectation() const;

    const SettingsKey* key_;
    const OverrideKey* overrideKey_;
    std::int32_t threads_;
    std::string_view name_;
    Form form_ = Form::bits;
    std::string_view title_;
    std::string_view group_;
    std::span<const std::string_view> items_;
    NewPreferenceValue default_ = false;
};

/// All settings, in the order of the pane.
std::vector<Setting> allSettings(std::int32_t threads);

/// The setting of that name, in any case. Throws a Problem that offers the nearest when there is none.
const Setting& settingNamed(std::string_view name, const std::vector<Setting>& settings);

/// A stored value as it is: "true", "7", "/Library".
std::string storedText(const PreferenceValue& value);
/// Likewise; null when there is none.
Node storedNode(const PreferenceValue& value);

}  // namespace vantrel

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace vantrel {

/// What a read finds under a key.
struct Absent {};

/// A number, of whatever stored type. A Boolean is not a number.
struct Number {
    /// The value as the platform's signed `long`; nothing when the conversion would lose something: a fraction,
    /// or an integer outside the range of this build's `long` (32 bits in a 32-bit host).
    std::optional<long> longValue;
};

/// A value that is neither Boolean nor number nor string: data, date, array, dictionary.
struct OtherType {};

using PreferenceValue = std::variant<Absent, bool, Number, std::string, OtherType>;

/// What a write stores: a flag, a signed integer of the platform's `long` type, or a UTF-8 text.
using NewPreferenceValue = std::variant<bool, long, std::string>;

/// A written value as a read finds it.
inline PreferenceValue asStored(const NewPreferenceValue& value) {
    if (const auto* flag = std::get_if<bool>(&value)) return *flag;
    if (const auto* number = std::get_if<long>(&value)) return Number{*number};
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    return Absent{};
}

/// What becomes of a stored value: the one to store instead, or nothing to leave it as it is.
using PreferenceChange = std::function<std::optional<NewPreferenceValue>(const PreferenceValue& stored)>;

/// The per-user preferences of applications, each under its application ID, as the platform keeps them. Other
/// processes read and write the same values. A write that can't reach the disk lives on in this process and is tried
/// again by the next synchronise. A platform may promise more; its class then says so.
class Preferences {
public:
    /// Looks `key` up for the application: first in its own domain, then in the user's global one. What another process
    /// has stored is seen from this process's next `synchronize` on, if not before.
    virtual PreferenceValue copyAppValue(std::string_view key, std::string_view applicationID) = 0;

    /// Stores `value` in the application's own domain for the current user and any host, replacing a value of any
    /// type. Reads in this process see it at once, other processes from the next `synchronize` on.
    virtual void setAppValue(std::string_view key, const NewPreferenceValue& value, std::string_view applicationID) = 0;

    /// Looks `key` up as `copyAppValue` does, stores what `change` makes of it as `setAppValue` does, and returns what
    /// was found. `change` may be called again until the next successful `synchronize`, with another value if that is
    /// stored by then, and in the order of these calls; it must hold what it needs. One that makes nothing of what is
    /// found is forgotten at once.
    virtual PreferenceValue updateAppValue(std::string_view key, const PreferenceChange& change,
                                           std::string_view applicationID) = 0;

    /// Makes the writes of the application's domain (current user, any host) lasting and visible to other
    /// processes. Returns false when that failed.
    virtual bool synchronize(std::string_view applicationID) = 0;

protected:
    ~Preferences() = default;

private:
    friend class PreferencesSequence;

    /// For a platform to which it matters that calls belong together.
    virtual void beginSequence() {}
    virtual void endSequence() {}
};

/// Calls that belong together, as long as it lives: a view is set up, or all settings are listed. Where a platform can
/// tell, they see one state of the store, as it was at the first of them and as they change it, and all waiting in them
/// for other processes is bounded together. A call outside is a sequence of its own. Sequences don't nest.
class PreferencesSequence {
public:
    explicit PreferencesSequence(Preferences& preferences) : preferences_(preferences) { preferences_.beginSequence(); }
    PreferencesSequence(const PreferencesSequence&) = delete;
    PreferencesSequence& operator=(const PreferencesSequence&) = delete;
    ~PreferencesSequence() { preferences_.endSequence(); }

private:
    Preferences& preferences_;
};

}  // namespace vantrel

#pragma once

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

/// The per-user preferences of applications, each under its application ID, as the platform keeps them. Other
/// processes read and write the same values. Nothing here reports an error: a value that can't be read is
/// absent, a write that can't reach the disk lives on in this process and is tried again by the next synchronise.
class Preferences {
public:
    virtual ~Preferences() = default;

    /// Looks `key` up for the application: first in its own domain, then in the user's global one. Fresh at every
    /// call: what another process had stored before the call is seen.
    virtual PreferenceValue copyAppValue(std::string_view key, std::string_view applicationID) = 0;

    /// Stores `value` in the application's own domain for the current user and any host, replacing a value of any
    /// type. Reads in this process see it at once, other processes from the next `synchronize` on.
    virtual void setAppValue(std::string_view key, const NewPreferenceValue& value, std::string_view applicationID) = 0;

    /// Makes the writes of the application's domain (current user, any host) lasting and visible to other
    /// processes. Returns false when that failed.
    virtual bool synchronize(std::string_view applicationID) = 0;
};

}  // namespace vantrel

#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "platform/memory/MemoryPreferences.h"

namespace vantrel::memory {

/// A stored integer as this build reads it: past the range of a 32-bit host's `long` it can't be read there.
inline Number storedInteger(std::int64_t value) {
    const bool fits = value >= std::numeric_limits<long>::min() && value <= std::numeric_limits<long>::max();
    return Number{fits ? std::optional(static_cast<long>(value)) : std::nullopt};
}

inline const Number unreadableNumber{};

/// What a domain holds, each value as the journal spells it.
inline std::map<std::string, std::string> contents(const MemoryPreferences::Domain& domain) {
    std::map<std::string, std::string> found;
    for (const auto& [key, value] : domain) found.emplace(key, describeStored(value));
    return found;
}

/// One way in which a key can be other than it should; `Absent` where it is missing.
struct Fault {
    std::string name;
    PreferenceValue value;
};

inline void put(MemoryPreferences::Domain& domain, const std::string& key, const Fault& fault) {
    if (std::holds_alternative<Absent>(fault.value)) {
        domain.erase(key);
    } else {
        domain.insert_or_assign(key, fault.value);
    }
}

/// Everything that is no flag.
inline const std::vector<Fault> faultsOfAFlag{
    {"missing", Absent{}},          {"the number 0", Number{0}},
    {"the number 1", Number{1}},    {"an unreadable number", unreadableNumber},
    {"a text", std::string("YES")}, {"another type", OtherType{}},
};

/// Everything that is no number.
inline const std::vector<Fault> faultsOfAnInteger{
    {"missing", Absent{}},
    {"true", true},
    {"false", false},
    {"a text", std::string("1")},
    {"an empty text", std::string()},
    {"another type", OtherType{}},
};

/// Everything that is no text.
inline const std::vector<Fault> faultsOfAText{
    {"missing", Absent{}},         {"true", true}, {"a number", Number{1}}, {"an unreadable number", unreadableNumber},
    {"another type", OtherType{}},
};

}  // namespace vantrel::memory

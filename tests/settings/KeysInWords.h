#pragma once

#include <string>

#include "settings/KeyTable.h"

namespace vantrel {

/// The key table's columns as people read them.
inline std::string typeOf(Kind kind) {
    if (kind == Kind::flag) return "flag";
    return kind == Kind::text ? "text" : "integer";
}

inline std::string describe(const SetUpDefault& value) {
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    if (const auto* number = std::get_if<long>(&value)) return std::to_string(*number);
    if (const auto* text = std::get_if<LocalizedText>(&value)) {
        return std::string(text->key) + " or \"" + std::string(text->fallback) + '"';
    }
    return "never read";
}

}  // namespace vantrel

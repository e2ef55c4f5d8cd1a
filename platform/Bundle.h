#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// The pane's own bundle.
class Bundle {
public:
    /// The text under `key` in the default string table of the user's language, or `value` when it has none.
    virtual std::string localizedStringForKey(std::string_view key, std::string_view value) = 0;

    /// The string under `key` in the information dictionary, or nothing.
    virtual std::optional<std::string> infoString(std::string_view key) = 0;

protected:
    ~Bundle() = default;
};

}  // namespace vantrel

#pragma once

#include <optional>
#include <string>

namespace vantrel {

/// What an alert says; it has the platform's one default button.
struct Alert {
    std::string messageText;
    std::optional<std::string> informativeText;
};

/// Alerts for the user.
class Alerts {
public:
    /// Shows a fresh alert, modal for the whole application, and returns when the user has dismissed it.
    virtual void runModal(const Alert& alert) = 0;

protected:
    ~Alerts() = default;
};

}  // namespace vantrel

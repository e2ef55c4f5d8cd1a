#pragma once

#include <string_view>

namespace vantrel {

/// The notification centre that all processes of the logged-in user share.
class Notifications {
public:
    /// Posts a notification without user information to every process that observes `name` from any sender or
    /// from `object`. With `deliverImmediately`, observers whose delivery is suspended get it at once. A post
    /// that can't be delivered is dropped.
    virtual void postNotificationName(std::string_view name, std::string_view object, bool deliverImmediately) = 0;

protected:
    ~Notifications() = default;
};

}  // namespace vantrel

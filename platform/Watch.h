#pragma once

#include <functional>
#include <string>

namespace vantrel {

/// What other processes do to the settings.
class Watch {
public:
    /// What is watched for, and what is done then.
    struct Reactions {
        /// The name of a notification, and who posts it.
        std::string name;
        std::string object;
        /// Called once before anything is waited for, and whenever something may have changed since: at once on systems
        /// that tell, elsewhere every second.
        std::function<void()> changed;
        /// Called for each notification.
        std::function<void()> posted;
    };

    /// Returns with the process alone.
    virtual void run(const Reactions& reactions) = 0;

protected:
    ~Watch() = default;
};

}  // namespace vantrel

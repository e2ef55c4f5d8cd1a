#pragma once

#include "platform/Preferences.h"

namespace vantrel::apple {

/// CoreFoundation's preferences, call for call: reads search the current user's domains, writes and synchronises go
/// to the current user on any host. Where no daemon keeps the preferences, before macOS 10.8, a process keeps what it
/// has read: another one's change is then seen from the next synchronise on.
class ApplePreferences : public Preferences {
public:
    PreferenceValue copyAppValue(std::string_view key, std::string_view applicationID) override;
    void setAppValue(std::string_view key, const NewPreferenceValue& value, std::string_view applicationID) override;
    PreferenceValue updateAppValue(std::string_view key, const PreferenceChange& change,
                                   std::string_view applicationID) override;
    bool synchronize(std::string_view applicationID) override;
};

}  // namespace vantrel::apple

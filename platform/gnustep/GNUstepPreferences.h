#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Log.h"
#include "platform/Preferences.h"
#include "platform/gnustep/DefaultsLock.h"
#include "platform/gnustep/DomainFile.h"
#include "platform/posix/Patience.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel::gnustep {

/// The preferences as GNUstep keeps them: a property list for each application in the user's defaults folder, named
/// after its ID, and NSGlobalDomain.plist for all of them. GNUstep's own programs read and write the same files.
///
/// Each read is fresh: what another process had stored before the call, or before the `PreferencesSequence` that it
/// belongs to, is seen. What can't be read is not missing: what was last read stands in for it, and a change is carried
/// out on the value that the file really holds by the time the change reaches it. So nothing that is stored is ever
/// replaced because it couldn't be read.
class GNUstepPreferences : public Preferences {
public:
    /// `folder` is the defaults folder, an absolute path. It need not exist: the first synchronise makes it.
    GNUstepPreferences(std::string folder, Log& log, posix::SystemCalls& calls = posix::SystemCalls::real());

    PreferenceValue copyAppValue(std::string_view key, std::string_view applicationID) override;
    void setAppValue(std::string_view key, const NewPreferenceValue& value, std::string_view applicationID) override;
    PreferenceValue updateAppValue(std::string_view key, const PreferenceChange& change,
                                   std::string_view applicationID) override;
    bool synchronize(std::string_view applicationID) override;

private:
    DomainFile& domain(std::string_view name);
    /// `value`, or what the user's global domain has under `key` where there is none.
    PreferenceValue orGlobal(std::string_view key, PreferenceValue value);
    /// The sequence that a call belongs to.
    unsigned long sequence();
    void beginSequence() override;
    void endSequence() override;

    std::string folder_;
    Log& log_;
    posix::SystemCalls& calls_;
    DefaultsLock lock_;
    unsigned long sequence_ = 0;
    bool isInSequence_ = false;
    /// The sequence's, from its first wait on.
    std::optional<posix::Patience> patience_;
    std::map<std::string, DomainFile, std::less<>> domains_;
};

}  // namespace vantrel::gnustep

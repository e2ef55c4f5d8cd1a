#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Alerts.h"
#include "platform/Files.h"
#include "platform/Log.h"
#include "platform/PropertyLists.h"
#include "settings/SettingsStore.h"

namespace vantrel {

namespace enablerPaths {

/// Final Cut Pro itself.
inline constexpr std::string_view application = "/Applications/Final Cut Pro.app";

/// Its version record, a property list.
inline constexpr std::string_view versionRecord = "/Applications/Final Cut Pro.app/Contents/version.plist";

/// The enabler that Final Cut Pro reads.
inline constexpr std::string_view active =
    "/Applications/Final Cut Pro.app/Contents/Resources/Non-Localized Settings/FXScripts/Enablers/"
    "RT Software Enabler.txt";

/// Where Final Cut Pro's own enabler waits while ours is active.
inline constexpr std::string_view backup =
    "/Applications/Final Cut Pro.app/Contents/Resources/Non-Localized Settings/FXScripts/Enablers/"
    "RT Software EnablerA.txt";

/// The enabler that the codec's installation brings for one version of Final Cut Pro; the tag is the version without
/// its points. The folder's second capital is how the installer has always spelled it.
std::string versionEnabler(std::string_view versionTag);

}  // namespace enablerPaths

/// Swaps Final Cut Pro's real-time enabler for the one that came with the codec, and back.
///
///     switched on:   active -> backup,  copy of version enabler -> active
///     switched off:  active deleted,    backup -> active
///
/// Final Cut Pro's own file is only ever moved, so it always exists whole as the active or the backup enabler. The
/// key "fcpRTEnableSwap" is written after a success only.
class EnablerSwitch {
public:
    EnablerSwitch(Files& files, PropertyLists& propertyLists, Alerts& alerts, Log& log, SettingsStore& store)
        : files_(files), propertyLists_(propertyLists), alerts_(alerts), log_(log), store_(store) {}

    /// Carries out what a check box in this state asks for (anything but off is on), and stores the state's truth once
    /// that succeeded. Returns nothing then; otherwise the state that the check box has to show instead. Without a
    /// Final Cut Pro of a version that there is an enabler for, an alert says so, and that is off, whichever way was
    /// wanted. A file operation that fails is logged, and it is the opposite.
    std::optional<long> turn(long state);

private:
    std::optional<std::string> findVersionEnabler();
    bool switchOn(const std::string& versionEnabler);
    bool switchOff();

    Files& files_;
    PropertyLists& propertyLists_;
    Alerts& alerts_;
    Log& log_;
    SettingsStore& store_;
};

}  // namespace vantrel

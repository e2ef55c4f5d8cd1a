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
inline constexpr char application[] = "/Applications/Final Cut Pro.app";

/// Its version record, a property list.
inline constexpr char versionRecord[] = "/Applications/Final Cut Pro.app/Contents/version.plist";

/// The enabler that Final Cut Pro reads.
inline constexpr char active[] =
    "/Applications/Final Cut Pro.app/Contents/Resources/Non-Localized Settings/FXScripts/Enablers/"
    "RT Software Enabler.txt";

/// Where Final Cut Pro's own enabler waits while ours is active.
inline constexpr char backup[] =
    "/Applications/Final Cut Pro.app/Contents/Resources/Non-Localized Settings/FXScripts/Enablers/"
    "RT Software EnablerA.txt";

/// The enabler that the codec's installation brings for one version of Final Cut Pro; the tag is the version without
/// its points. The folder's second capital is how the installer has always spelled it.
std::string versionEnabler(std::string_view versionTag);

}  // namespace enablerPaths

/// How it stands with Final Cut Pro's enabler.
enum class EnablerState {
    noFinalCutPro,  ///< no Final Cut Pro is installed
    unsupported,    ///< it has no version, or one that there is no enabler for
    off,            ///< Final Cut Pro's own is active
    on,             ///< ours is active, its own is saved
    broken,         ///< its own is saved, and none is active
    unknown         ///< anything else
};

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

    /// What the files are. Changes nothing.
    EnablerState state();

    /// Whether the files are as a check box in that state wants them, so that it need not be carried out: off without
    /// any Final Cut Pro as well.
    bool isTurned(bool on);

    /// Makes a broken folder one that is off, and does nothing to any other. The key stays as it is. Returns why that
    /// failed; nothing when it succeeded or there was nothing to do.
    FileFailure mend();

private:
    /// The enabler for the installed Final Cut Pro, or what is missing, as it stands and in words.
    struct VersionEnabler {
        std::string path;
        EnablerState missing = EnablerState::unknown;
        std::optional<Alert> alert;
    };
    VersionEnabler findVersionEnabler();
    bool switchOn(const std::string& versionEnabler);
    bool switchOff();

    Files& files_;
    PropertyLists& propertyLists_;
    Alerts& alerts_;
    Log& log_;
    SettingsStore& store_;
};

}  // namespace vantrel

#pragma once

#include <string_view>

#include "platform/Log.h"
#include "platform/Notifications.h"

namespace vantrel {

/// The notification, and the text that stands for who posts it.
inline constexpr char stereoStatusChanged[] = "StereoStatusMenuViewChanged";
inline constexpr char stereoStatusSender[] = "com.vantrel.PreferencePane";

/// Tells the other processes of the user that "ShowStereoStatusMenu" has changed, and logs that it does. The
/// notification carries no value: whoever shows the menu reads the key when it hears of the change.
void postStereoStatusChange(Notifications& notifications, Log& log);

}  // namespace vantrel

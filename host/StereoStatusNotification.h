#pragma once

#include "platform/Log.h"
#include "platform/Notifications.h"

namespace vantrel {

/// Tells the other processes of the user that "ShowStereoStatusMenu" has changed, and logs that it does. The
/// notification carries no value: whoever shows the menu reads the key when it hears of the change.
void postStereoStatusChange(Notifications& notifications, Log& log);

}  // namespace vantrel

#pragma once

#include "platform/StoreInspection.h"
#include "platform/Watch.h"
#include "system/SystemServices.h"

namespace vantrel {

/// What a program without a window needs beside that.
struct CommandServices {
    Services services;
    StoreInspection& inspection;
    Watch& watch;
};

/// The services of the system that this build is for, as `systemServices`. For a program that lives as long as one
/// command.
CommandServices commandServices(Alerts& alerts, Log& log);

}  // namespace vantrel

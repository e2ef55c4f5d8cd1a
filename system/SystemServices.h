#pragma once

#include "overrides/OverrideMetadata.h"
#include "platform/Alerts.h"
#include "platform/Files.h"
#include "platform/Log.h"
#include "platform/Notifications.h"
#include "platform/Preferences.h"
#include "platform/Processors.h"
#include "platform/PropertyLists.h"

namespace vantrel {

/// What a program with the settings needs of the system.
struct Services {
    Preferences& preferences;
    OverrideMetadata& overrides;
    Processors& processors;
    Files& files;
    PropertyLists& propertyLists;
    Alerts& alerts;
    Log& log;
    Notifications& notifications;
};

/// The services of the system that this build is for, which live as long as the process. Alerts and log are the
/// program's own and have to live as long; one program asks once.
Services systemServices(Alerts& alerts, Log& log);

}  // namespace vantrel

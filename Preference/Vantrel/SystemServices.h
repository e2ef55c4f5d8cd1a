#pragma once

#include "Preference/Vantrel/VantrelPref.h"

namespace vantrel {

/// The services of the system that this build is for, which live as long as the process.
const Services& systemServices();

}  // namespace vantrel

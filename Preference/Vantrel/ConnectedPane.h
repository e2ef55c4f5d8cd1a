#pragma once

#import "Preference/Vantrel/PrincipalClass.h"

namespace vantrel {

/// The logic of a new pane, connected to `owner`'s instance variables and to the system. It is never torn down, as
/// the pane isn't.
VantrelPref* connectedPane(::VantrelPref* owner);

}  // namespace vantrel

#include "Preference/Vantrel/VantrelPref.h"

namespace vantrel {

/// The value is stored before it is announced: who reads it on receipt finds the new one.
void VantrelPref::stereoModeStatusViewChange(const CheckBox& sender) {
    updateFlag(sender, keys::showStereoStatus);
    postStereoStatusChange(services_.notifications, services_.log);
}

}  // namespace vantrel

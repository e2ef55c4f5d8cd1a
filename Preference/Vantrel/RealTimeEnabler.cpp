#include "Preference/Vantrel/VantrelPref.h"

namespace vantrel {

/// The check box shows what the key says; whether the swap is in force on disk is not looked up.
void VantrelPref::setUpRealTimeEnabler() {
    setUpLazily(variables_.fcpRTEnable, keys::fcpRTEnable);
}

void VantrelPref::fcpRTEnableCheckBox(CheckBox& sender) {
    enablerSwitch_.clicked(sender);
}

}  // namespace vantrel

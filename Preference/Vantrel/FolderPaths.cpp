#include "Preference/Vantrel/VantrelPref.h"

namespace vantrel {

/// Says that some field was edited; which one, only the fields themselves tell.
void VantrelPref::controlTextDidChange() {
    luts_.textDidChange();
    override_.textDidChange();
}

void VantrelPref::LUTsOKUpdate() {
    luts_.confirm(store_);
}

void VantrelPref::LUTSUndoUpdate() {
    luts_.undo();
}

void VantrelPref::overrideOKUpdate() {
    override_.confirm(store_);
}

void VantrelPref::overrideUndoUpdate() {
    override_.undo();
}

}  // namespace vantrel

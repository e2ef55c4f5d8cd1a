#include "Preference/Vantrel/VantrelPref.h"

namespace vantrel {

bool VantrelPref::setUpGammaCorrection() {
    const bool wroteQT = store_.initIntPrefCheckForKey(variables_.fmtQTGamma, keys::qtGamma.name);
    const bool wroteFCP = store_.initIntPrefCheckForKey(variables_.fmtFCPGamma, keys::fcpGamma.name);
    return wroteQT || wroteFCP;
}

void VantrelPref::setUpSourceSettings() {
    setUpLazily(variables_.cs5SourceSettings, keys::cs5SourceSettings);
}

void VantrelPref::updateFlag(const CheckBox& sender, const SettingsKey& key) {
    store_.updateBoolPrefForKey(truthOf(sender.state()), key.name);
}

/// A matrix without a selection stores -1.
void VantrelPref::updateRow(const RadioMatrix& matrix, const SettingsKey& key) {
    store_.updateIntPrefForKey(static_cast<std::int32_t>(matrix.selectedRow()), key.name);
}

void VantrelPref::fmtRGB8BitCheckBox(const CheckBox& sender) {
    updateFlag(sender, keys::rgb8);
}

void VantrelPref::fmtRGB16BitCheckBox(const CheckBox& sender) {
    updateFlag(sender, keys::rgb16);
}

void VantrelPref::fmtRGB32BitCheckBox(const CheckBox& sender) {
    updateFlag(sender, keys::rgb32);
}

void VantrelPref::fmtYUV8BitCheckBox(const CheckBox& sender) {
    updateFlag(sender, keys::yuv8);
}

void VantrelPref::fmtYUV16BitCheckBox(const CheckBox& sender) {
    updateFlag(sender, keys::yuv16);
}

void VantrelPref::fmtYUV32BitCheckBox(const CheckBox& sender) {
    updateFlag(sender, keys::yuv32);
}

void VantrelPref::fmtYUV8BitACheckBox(const CheckBox& sender) {
    updateFlag(sender, keys::yuv8Alpha);
}

void VantrelPref::fmtDualStream3DCheckBox(const CheckBox& sender) {
    updateFlag(sender, keys::dualStream3D);
}

void VantrelPref::fmtFCPLetterboxCheckBox(const CheckBox& sender) {
    updateFlag(sender, keys::fcpLetterbox);
}

void VantrelPref::cs5SourceSettingsCheck(const CheckBox& sender) {
    updateFlag(sender, keys::cs5SourceSettings);
}

/// The radio actions ask the outlet, not the sender, which may be a cell of the matrix.
void VantrelPref::fmtFCPGammaRadioButton() {
    updateRow(variables_.fmtFCPGamma, keys::fcpGamma);
}

void VantrelPref::fmtQTGammaRadioButton() {
    updateRow(variables_.fmtQTGamma, keys::qtGamma);
}

}  // namespace vantrel

#include "Preference/Vantrel/VantrelPref.h"

namespace vantrel {

VantrelPref::VantrelPref(const InstanceVariables& variables, const Services& services)
    : variables_(variables),
      services_(services),
      store_(services.preferences, variables.appID),
      luts_({variables.LUTsPath, variables.LUTsOK, variables.LUTsUndo, variables.LUTsPathString, keys::lutsPath}),
      override_({variables.overridePath, variables.overrideOK, variables.overrideUndo, variables.overridePathString,
                 keys::overridePath}),
      enablerSwitch_(services.files, services.propertyLists, services.alerts, services.log, store_) {}

void VantrelPref::initWithBundle(Bundle& bundle) {
    variables_.versionString.clear();
    variables_.appID.set(codecApplicationID);
    luts_.takeDefault(bundle);
    override_.takeDefault(bundle);
    if (const auto version = bundle.infoString("CFBundleShortVersionString")) {
        variables_.versionNumber.setStringValue(*version);
        variables_.versionString.set(*version);
    }
}

void VantrelPref::mainViewDidLoad() {
    setUpVersion();
    const auto overrides = services_.metadataDictionaryClass.initFromOverride();
    setUpChromaFilter(overrides.get());
    const bool encoderLimitWasMissing = setUpEncodeThreads();
    setUpDecodeThreads(overrides.get());
    setUpColorProcessing(encoderLimitWasMissing);
    setUpFlags();
    luts_.setUp(store_);
    override_.setUp(store_);
    setUpDemosaic();
    setUpRealTimeEnabler();
    setUpSourceSettings();
}

void VantrelPref::setUpVersion() {
    if (const auto version = variables_.versionString.value()) variables_.versionNumber.setStringValue(*version);
}

/// The flags of several groups are set up together, so that all their defaults cost one synchronise.
void VantrelPref::setUpFlags() {
    const struct {
        CheckBox& control;
        const SettingsKey& key;
    } flags[] = {
        {variables_.fmtYUV8Bit, keys::yuv8},
        {variables_.fmtYUV8BitA, keys::yuv8Alpha},
        {variables_.fmtYUV16Bit, keys::yuv16},
        {variables_.fmtYUV32Bit, keys::yuv32},
        {variables_.fmtRGB8Bit, keys::rgb8},
        {variables_.fmtRGB16Bit, keys::rgb16},
        {variables_.fmtRGB32Bit, keys::rgb32},
        {variables_.fmtFCPLetterbox, keys::fcpLetterbox},
        {variables_.showStereoStatus, keys::showStereoStatus},
    };
    bool wrote = false;
    for (const auto& flag : flags) wrote |= store_.initPrefCheckForKey(flag.control, flag.key.name);
    if (wrote) store_.synchronize();
}

/// Shows and enables a flag whose default is written without a synchronise of its own.
void VantrelPref::setUpLazily(CheckBox& control, const SettingsKey& key) {
    const auto stored = store_.flagForKey(key.name);
    const bool shown = stored.value_or(std::get<bool>(key.setUpDefault));
    control.setState(shown ? onState : offState);
    if (!stored) store_.setValueForKey(shown, key.name);
    control.setEnabled(true);
}

}  // namespace vantrel

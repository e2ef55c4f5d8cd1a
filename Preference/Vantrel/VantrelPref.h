#pragma once

#include "Preference/Vantrel/FolderPath.h"
#include "Preference/Vantrel/InstanceVariables.h"
#include "host/EnablerSwitch.h"
#include "host/StereoStatusNotification.h"
#include "overrides/MetadataDictionary.h"
#include "platform/Bundle.h"
#include "platform/Processors.h"
#include "settings/ColorProcessingPath.h"
#include "settings/KeyTable.h"
#include "settings/SettingsStore.h"

namespace vantrel {

/// What the pane needs of the system.
struct Services {
    Preferences& preferences;
    MetadataDictionaryClass& metadataDictionaryClass;
    Processors& processors;
    Files& files;
    PropertyLists& propertyLists;
    Alerts& alerts;
    Log& log;
    Notifications& notifications;
};

/// The settings pane: puts each control into the state of its key once, when the view has loaded, and writes a key
/// each time its control changes. The stored settings are its only model.
///
/// Everything is called on the host's main thread, and nothing reports an error. Each group of controls has a source
/// file of its own; VantrelPref.cpp has the lifecycle and the order in which the groups are set up.
class VantrelPref {
public:
    VantrelPref(const InstanceVariables& variables, const Services& services);

    /// Takes application ID, default folders and version from the pane's bundle. The outlets are not yet connected.
    void initWithBundle(Bundle& bundle);

    /// Puts every control into its initial state and repairs the keys that are missing or mistyped. Called once,
    /// with all outlets connected.
    void mainViewDidLoad();

    /// The operations on the settings, which the pane's Objective-C class offers as its own.
    SettingsStore& store() { return store_; }

    // Pixel formats and host applications
    void fmtRGB8BitCheckBox(const CheckBox& sender);
    void fmtRGB16BitCheckBox(const CheckBox& sender);
    void fmtRGB32BitCheckBox(const CheckBox& sender);
    void fmtYUV8BitCheckBox(const CheckBox& sender);
    void fmtYUV16BitCheckBox(const CheckBox& sender);
    void fmtYUV32BitCheckBox(const CheckBox& sender);
    void fmtYUV8BitACheckBox(const CheckBox& sender);
    void fmtDualStream3DCheckBox(const CheckBox& sender);
    void fmtFCPLetterboxCheckBox(const CheckBox& sender);
    void cs5SourceSettingsCheck(const CheckBox& sender);
    void fmtFCPGammaRadioButton();
    void fmtQTGammaRadioButton();

    // Colour processing
    void colorMatrixCheckBox(const CheckBox& sender);
    void gammaCheckBox(const CheckBox& sender);
    void lookCheckBox(const CheckBox& sender);
    void whiteBalanceCheckBox(const CheckBox& sender);
    void precisionDemosaicSelect(const PopUpButton& sender);
    void presentationDemosaicSelect(const PopUpButton& sender);

    // Decoding and threads
    void encodeThreadLimitChange(const PopUpButton& sender);
    void decodeThreadLimitChange(const PopUpButton& sender);
    void filter422To444Button(const CheckBox& sender);

    // Folder paths
    void controlTextDidChange();
    void LUTsOKUpdate();
    void LUTSUndoUpdate();
    void overrideOKUpdate();
    void overrideUndoUpdate();

    // Real-time enabler
    void fcpRTEnableCheckBox(CheckBox& sender);

    // Stereo status
    void stereoModeStatusViewChange(const CheckBox& sender);

private:
    void setUpVersion();
    void setUpChromaFilter(MetadataDictionary* overrides);
    bool setUpEncodeThreads();
    void setUpDecodeThreads(MetadataDictionary* overrides);
    void setUpColorProcessing(bool encoderLimitWasMissing);
    bool setUpGammaCorrection();
    void setUpFlags();
    void setUpDemosaic();
    void setUpRealTimeEnabler();
    void setUpSourceSettings();
    void setUpLazily(CheckBox& control, const SettingsKey& key);

    void updateFlag(const CheckBox& sender, const SettingsKey& key);
    void updateRow(const RadioMatrix& matrix, const SettingsKey& key);
    void updateStage(const CheckBox& sender, const SettingsKey& key, std::int32_t bit);
    void updateDemosaic(const PopUpButton& sender, const SettingsKey& key, colorProcessingPath::DemosaicField field);

    InstanceVariables variables_;
    Services services_;
    SettingsStore store_;
    FolderPath luts_;
    FolderPath override_;
    EnablerSwitch enablerSwitch_;
};

}  // namespace vantrel

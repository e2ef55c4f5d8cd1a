#pragma once

#include <span>

#include "Preference/Vantrel/FolderPath.h"
#include "host/EnablerSwitch.h"
#include "platform/Bundle.h"
#include "platform/Controls.h"
#include "settings/KeyTable.h"
#include "settings/SettingsStore.h"
#include "system/SystemServices.h"

namespace vantrel {

/// The settings pane: puts each control into the state of its key once, when the view has loaded, and writes a key
/// each time its control changes. The stored settings are its only model.
///
/// Everything is called on the host's main thread, and nothing reports an error.
class VantrelPref {
public:
    /// `table` has the keys whose controls are set up, in their order.
    VantrelPref(Outlets& outlets, const Services& services, std::span<const SettingsKey> table = keyTable);

    /// Takes application ID, default folders and version from the pane's bundle. The outlets are not yet connected.
    void initWithBundle(Bundle& bundle);

    /// Puts every control into its initial state and repairs the keys that are missing or mistyped. Called once,
    /// with all outlets connected.
    void mainViewDidLoad();

    /// The operations on the settings, which the pane's Objective-C class offers as its own.
    SettingsStore& store() { return store_; }

    /// Puts a check box into the state of any flag; one that is absent or mistyped shows on, and true is written.
    /// Returns whether it wrote. Never synchronises.
    bool setUpFlag(CheckBox& control, std::string_view key);

    /// Selects the row that any integer names; row 0, and 0 is written, where it is absent or mistyped or the matrix
    /// has no such row. Returns whether it wrote. Never synchronises.
    bool setUpRow(RadioMatrix& control, std::string_view key);

    /// The user clicked the check box of a flag.
    void clicked(const CheckBox& sender, const SettingsKey& key);

    /// The user chose an item of the menu of an index.
    void chosen(const PopUpButton& sender, const SettingsKey& key);

    /// The user chose a row of the radio matrix of an index. The matrix itself is asked, for the sender may be a cell;
    /// one without a selection stores -1.
    void rowChosen(const SettingsKey& key);

    void stereoStatusClicked(const CheckBox& sender);
    void realTimeEnablerClicked(CheckBox& sender);
    void chromaFilterClicked(const CheckBox& sender);
    void decodeThreadsChosen(const PopUpButton& sender);

    /// Some folder's field was edited; which one, only the fields themselves tell.
    void textDidChange();

    FolderPath& luts() { return luts_; }
    FolderPath& overrides() { return overrides_; }

private:
    Reading setUp(const SettingsKey& key, const AddedBits& stages = nullptr);
    Reading setUp(CheckBox& control, const SettingsKey& key, const AddedBits& stages = nullptr);
    Reading setUp(RadioMatrix& control, const SettingsKey& key);
    Reading setUp(PopUpButton& control, const SettingsKey& key);
    bool setUpGroup(Group group);
    void setUpColorProcessing(bool encoderLimitWasAbsent);
    void showVersion();
    void showChromaFilter(LoadedOverrides* loaded);
    void showDecodeThreads(LoadedOverrides* loaded);
    void fillThreadMenus();

    Outlets& outlets_;
    Services services_;
    std::span<const SettingsKey> table_;
    /// As the thread menus offer them: 1 to 32.
    std::int32_t cores_ = 1;
    SettingsStore store_;
    FolderPath luts_;
    FolderPath overrides_;
    EnablerSwitch enablerSwitch_;
};

}  // namespace vantrel

#include "Preference/Vantrel/VantrelPref.h"

#include <utility>

#include "host/StereoStatusNotification.h"

namespace vantrel {

VantrelPref::VantrelPref(Outlets& outlets, const Services& services, std::span<const SettingsKey> table)
    : outlets_(outlets),
      services_(services),
      table_(table),
      store_(services.preferences),
      luts_({outlets.textField("_LUTsPath"), outlets.pushButton("_LUTsOK"), outlets.pushButton("_LUTsUndo"),
             outlets.string("_LUTsPathString"), key("LUTsPath")}),
      overrides_({outlets.textField("_overridePath"), outlets.pushButton("_overrideOK"),
                  outlets.pushButton("_overrideUndo"), outlets.string("_overridePathString"), key("OverridePath")}),
      enablerSwitch_(services.files, services.propertyLists, services.alerts, services.log, store_) {}

void VantrelPref::initWithBundle(Bundle& bundle) {
    auto& versionString = outlets_.string("_versionString");
    versionString.clear();
    outlets_.string("appID").set(codecApplicationID);
    luts_.takeDefault(bundle);
    overrides_.takeDefault(bundle);
    if (const auto version = bundle.infoString("CFBundleShortVersionString")) {
        versionString.set(*version);
        showVersion();
    }
}

void VantrelPref::mainViewDidLoad() {
    const PreferencesSequence sequence(services_.preferences);
    showVersion();
    const auto overrides = services_.overrides.load();
    showChromaFilter(overrides.get());
    fillThreadMenus();
    const bool encoderLimitWasAbsent = setUpGroup(Group::encoder);
    showDecodeThreads(overrides.get());
    setUpColorProcessing(encoderLimitWasAbsent);
    setUpGroup(Group::flags);
    setUpGroup(Group::folders);
    setUpGroup(Group::demosaic);
    setUpGroup(Group::hosts);
}

void VantrelPref::showVersion() {
    const auto version = outlets_.string("_versionString").value();
    if (version) outlets_.textField("_versionNumber").setStringValue(*version);
}

/// Repairs all keys of a group, whichever of them are absent, and synchronises once for all. Returns whether any was.
bool VantrelPref::setUpGroup(Group group) {
    bool synchronizes = false;
    bool wasAbsent = false;
    for (const auto& key : table_) {
        if (key.group != group) continue;
        const Reading reading = setUp(key);
        synchronizes |= reading.synchronizes;
        wasAbsent |= reading.isAbsent;
    }
    if (synchronizes) store_.synchronize();
    return wasAbsent;
}

/// Repairs a key of the table and puts it into its control.
Reading VantrelPref::setUp(const SettingsKey& key, const AddedBits& stages) {
    switch (key.kind) {
        case Kind::flag:
            return setUp(outlets_.checkBox(key.outlet), key, stages);
        case Kind::row:
            return setUp(outlets_.radioMatrix(key.outlet), key);
        case Kind::item:
        case Kind::limit:
            return setUp(outlets_.popUpButton(key.outlet), key);
        case Kind::text:
            return (key.name == luts_.key().name ? luts_ : overrides_).setUp(store_, key);
        case Kind::bits:
            return store_.repair(key);
    }
    return {};
}

Reading VantrelPref::setUp(CheckBox& control, const SettingsKey& key, const AddedBits& stages) {
    Reading reading = store_.repair(key, {}, stages);
    if (const auto* flag = reading.flag()) control.setState(*flag ? onState : offState);
    if (key.group == Group::hosts) control.setEnabled(true);
    return reading;
}

Reading VantrelPref::setUp(RadioMatrix& control, const SettingsKey& key) {
    Reading reading = store_.repair(key, {.choices = static_cast<std::int32_t>(control.numberOfRows())});
    const auto* row = reading.index();
    if (row && reading.isAbsent) {
        control.setStateAtRow(onState, *row, 0);
    } else if (row) {
        control.selectCellAtRow(*row, 0);
    }
    return reading;
}

Reading VantrelPref::setUp(PopUpButton& control, const SettingsKey& key) {
    Reading reading = store_.repair(key, {.choices = cores_});
    // A lowered limit is synchronised before it is shown.
    if (std::exchange(reading.synchronizes, false)) store_.synchronize();
    if (const auto* index = reading.index()) control.selectItemAtIndex(*index);
    return reading;
}

bool VantrelPref::setUpFlag(CheckBox& control, std::string_view name) {
    const SettingsKey key{name, Kind::flag, true, Repair::written, Group::untouched, ""};
    return setUp(control, key).repair.has_value();
}

bool VantrelPref::setUpRow(RadioMatrix& control, std::string_view name) {
    const SettingsKey key{name, Kind::row, 0L, Repair::written, Group::untouched, ""};
    return setUp(control, key).repair.has_value();
}

/// One write of `ColorProcessingPath` and one synchronise serve the stages and the gamma corrections together. The
/// write is also asked for by a missing encoder limit, but only when `ColorProcessingPath` is missing too: a readable
/// value takes that back. A missing one alone is no reason to write.
void VantrelPref::setUpColorProcessing(bool encoderLimitWasAbsent) {
    bool wrote = false;
    bool synchronizes = false;
    // Bit 0 belongs to the check boxes' actions alone.
    const auto stages = std::make_shared<long>(0);
    for (const auto& key : table_) {
        if (key.group != Group::color) continue;
        const Reading reading = setUp(key, stages);
        if (key.repair == Repair::ifAsked) wrote = synchronizes = encoderLimitWasAbsent && reading.isAbsent;
        if (!reading.repair) continue;
        wrote = true;
        synchronizes |= reading.synchronizes;
    }
    if (wrote) store_.addToPath(stages);
    if (synchronizes) store_.synchronize();
}

void VantrelPref::clicked(const CheckBox& sender, const SettingsKey& key) {
    store_.change(key, truthOf(sender.state()));
}

void VantrelPref::chosen(const PopUpButton& sender, const SettingsKey& key) {
    store_.change(key, sender.indexOfSelectedItem());
}

void VantrelPref::rowChosen(const SettingsKey& key) {
    store_.change(key, outlets_.radioMatrix(key.outlet).selectedRow());
}

/// The value is stored before it is announced: who reads it on receipt finds the new one.
void VantrelPref::stereoStatusClicked(const CheckBox& sender) {
    clicked(sender, key("ShowStereoStatusMenu"));
    postStereoStatusChange(services_.notifications, services_.log);
}

void VantrelPref::realTimeEnablerClicked(CheckBox& sender) {
    if (const auto shown = enablerSwitch_.turn(sender.state())) sender.setState(*shown);
}

void VantrelPref::textDidChange() {
    luts_.textDidChange();
    overrides_.textDidChange();
}

}  // namespace vantrel

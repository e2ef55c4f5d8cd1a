#pragma once

#include "Preference/Vantrel/VantrelPref.h"
#include "platform/memory/MemoryControls.h"
#include "platform/memory/MemoryFiles.h"
#include "platform/memory/MemoryPreferences.h"
#include "platform/memory/MemorySystem.h"
#include "tests/overrides/MemoryOverrides.h"

namespace vantrel::memory {

/// A whole pane on the in-memory platform.
struct MemoryPane {
    explicit MemoryPane(std::span<const SettingsKey> table = keyTable) : pane(outlets, services, table) {}
    MemoryPane(const MemoryPane&) = delete;
    MemoryPane& operator=(const MemoryPane&) = delete;

    Journal journal;
    MemoryOutlets outlets{journal};
    MemoryBundle bundle;
    MemoryPreferences preferences{journal};
    MemoryOverrides overrides{journal};
    MemoryProcessors processors;
    MemoryFiles files{journal};
    MemoryPropertyLists propertyLists{journal};
    MemoryAlerts alerts{journal};
    MemoryLog log{journal};
    MemoryNotifications notifications{journal};
    Services services{preferences, overrides, processors, files, propertyLists, alerts, log, notifications};
    VantrelPref pane;

    MemoryCheckBox& box(std::string_view name) { return outlets.checkBox(name); }
    MemoryRadioMatrix& matrix(std::string_view name) { return outlets.radioMatrix(name); }
    MemoryPopUpButton& menu(std::string_view name) { return outlets.popUpButton(name); }
    MemoryTextField& field(std::string_view name) { return outlets.textField(name); }
    MemoryPushButton& button(std::string_view name) { return outlets.pushButton(name); }
    std::optional<std::string>& kept(std::string_view name) { return outlets.string(name).text; }

    /// The user clicks the box of a flag until it shows `state`, or chooses an item or a row.
    void click(const SettingsKey& key, long state) {
        box(key.outlet).shown = state;
        pane.clicked(box(key.outlet), key);
    }
    void choose(const SettingsKey& key, long index) {
        menu(key.outlet).selected = index;
        pane.chosen(menu(key.outlet), key);
    }
    void chooseRow(const SettingsKey& key, long row) {
        matrix(key.outlet).selected = row;
        pane.rowChosen(key);
    }

    /// What reads find in the codec's domain. A test fills it before the set-up or looks into it after an action.
    MemoryPreferences::Domain& domain() { return preferences.domain("com.vantrel.codec"); }

    /// Creates and sets up the pane as the host does.
    void load() {
        pane.initWithBundle(bundle);
        pane.mainViewDidLoad();
    }
};

}  // namespace vantrel::memory

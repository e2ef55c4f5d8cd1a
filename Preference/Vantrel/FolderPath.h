#pragma once

#include "platform/Bundle.h"
#include "platform/Controls.h"
#include "settings/KeyTable.h"
#include "settings/SettingsStore.h"

namespace vantrel {

/// A folder that the user types: a field, an OK button that writes its text, and an Undo button that puts back the
/// committed text, which is the text of the last OK or, before it, the stored one. Any text will do; nothing is looked
/// up on disk.
class FolderPath {
public:
    struct Members {
        TextField& field;
        PushButton& ok;
        PushButton& undo;
        OwnedString& committed;
        const SettingsKey& key;
    };

    explicit FolderPath(const Members& members) : members_(members) {}

    /// Makes the bundle's localised default the committed text.
    void takeDefault(Bundle& bundle);

    /// Commits the stored text, or the default where no text is stored, repairing the key as its row says, and shows
    /// it. The buttons keep the state of the interface file.
    Reading setUp(SettingsStore& store, const SettingsKey& row);

    /// Enables both buttons if the field is the one being edited; what it holds makes no difference.
    void textDidChange();

    /// Commits, writes and synchronises the field's text, also an empty or unchanged one, and disables the buttons.
    void confirm(SettingsStore& store);

    /// Shows the committed text again and disables the buttons; nothing is written.
    void undo();

    const SettingsKey& key() const { return members_.key; }

private:
    void disableButtons();

    Members members_;
};

}  // namespace vantrel

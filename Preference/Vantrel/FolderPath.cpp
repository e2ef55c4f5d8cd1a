#include "Preference/Vantrel/FolderPath.h"

namespace vantrel {

void FolderPath::takeDefault(Bundle& bundle) {
    if (const auto* text = std::get_if<LocalizedText>(&members_.key.setUpDefault)) {
        members_.committed.set(bundle.localizedStringForKey(text->key, text->fallback));
    }
}

Reading FolderPath::setUp(SettingsStore& store, const SettingsKey& row) {
    Reading reading = store.repair(row, {.defaultText = members_.committed.value().value_or("")});
    if (reading.text() && !reading.isAbsent) members_.committed.set(*reading.text());
    members_.field.setStringValue(members_.committed.value().value_or(""));
    return reading;
}

void FolderPath::textDidChange() {
    if (!members_.field.hasCurrentEditor()) return;
    members_.ok.setEnabled(true);
    members_.undo.setEnabled(true);
}

void FolderPath::confirm(SettingsStore& store) {
    const std::string text = members_.field.stringValue();
    members_.committed.set(text);
    store.change(members_.key, text);
    disableButtons();
}

void FolderPath::undo() {
    members_.field.setStringValue(members_.committed.value().value_or(""));
    disableButtons();
}

void FolderPath::disableButtons() {
    members_.ok.setEnabled(false);
    members_.undo.setEnabled(false);
}

}  // namespace vantrel

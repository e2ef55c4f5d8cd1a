#include "Preference/Vantrel/FolderPath.h"

namespace vantrel {

void FolderPath::takeDefault(Bundle& bundle) {
    const auto& text = std::get<LocalizedText>(members_.key.setUpDefault);
    members_.committed.set(bundle.localizedStringForKey(text.key, text.fallback));
}

void FolderPath::setUp(SettingsStore& store) {
    if (const auto stored = store.textForKey(members_.key.name)) {
        members_.committed.set(*stored);
    } else {
        store.setValueForKey(members_.committed.value().value_or(""), members_.key.name);
    }
    members_.field.setStringValue(members_.committed.value().value_or(""));
}

void FolderPath::textDidChange() {
    if (!members_.field.hasCurrentEditor()) return;
    members_.ok.setEnabled(true);
    members_.undo.setEnabled(true);
}

void FolderPath::confirm(SettingsStore& store) {
    const std::string text = members_.field.stringValue();
    members_.committed.set(text);
    store.setValueForKey(text, members_.key.name);
    store.synchronize();
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

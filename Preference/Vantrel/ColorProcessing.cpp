#include <algorithm>

#include "Preference/Vantrel/VantrelPref.h"

namespace vantrel {

/// One write of `ColorProcessingPath` and one synchronise serve the stages and the gamma corrections together. The
/// write is also asked for by a missing encoder limit, but only when `ColorProcessingPath` is missing too: a readable
/// value takes that back. A missing one alone is no reason to write.
void VantrelPref::setUpColorProcessing(bool encoderLimitWasMissing) {
    const auto& pathKey = keys::colorProcessingPath;
    const auto stored = store_.integerForKey(pathKey.name);
    long path = stored.value_or(std::get<long>(pathKey.setUpDefault));
    bool writeNeeded = encoderLimitWasMissing && !stored;

    const struct {
        CheckBox& control;
        const SettingsKey& key;
        std::int32_t bit;
    } stages[] = {
        {variables_.whiteBalance, keys::whiteBalance, colorProcessingPath::whiteBalanceBit},
        {variables_.colorMatrix, keys::colorMatrix, colorProcessingPath::colorMatrixBit},
        {variables_.look, keys::look, colorProcessingPath::lookBit},
        {variables_.gamma, keys::gamma, colorProcessingPath::gammaBit},
    };
    for (const auto& stage : stages) {
        if (store_.initPrefCheckForKey(stage.control, stage.key.name)) {
            // Bit 0 belongs to the check boxes' actions alone.
            path |= colorProcessingPath::maskOfBit(stage.bit);
            writeNeeded = true;
        }
    }

    writeNeeded |= setUpGammaCorrection();
    if (writeNeeded) {
        store_.setValueForKey(path, pathKey.name);
        store_.synchronize();
    }
}

/// A stored index is shown as it is, also where the menu has no such item; a missing one shows the first item.
void VantrelPref::setUpDemosaic() {
    const auto select = [this](PopUpButton& control, const SettingsKey& key) {
        control.selectItemAtIndex(store_.integerForKey(key.name).value_or(std::get<long>(key.setUpDefault)));
    };
    select(variables_.presentationDemosaic, keys::presentationDemosaic);
    select(variables_.renderDemosaic, keys::renderDemosaic);
}

void VantrelPref::updateStage(const CheckBox& sender, const SettingsKey& key, std::int32_t bit) {
    store_.updateBoolPrefForKeyForBit(truthOf(sender.state()), key.name, bit);
}

void VantrelPref::updateDemosaic(const PopUpButton& sender, const SettingsKey& key,
                                 colorProcessingPath::DemosaicField field) {
    const auto index = std::max(static_cast<std::int32_t>(sender.indexOfSelectedItem()), 0);
    const std::uint32_t method = static_cast<std::uint32_t>(index) & 0xF;
    store_.setValueForKey(static_cast<long>(method), key.name);

    const auto& pathKey = keys::colorProcessingPath.name;
    store_.setValueForKey(colorProcessingPath::withDemosaic(store_.integerForKey(pathKey), field, method), pathKey);
    store_.synchronize();
}

void VantrelPref::colorMatrixCheckBox(const CheckBox& sender) {
    updateStage(sender, keys::colorMatrix, colorProcessingPath::colorMatrixBit);
}

void VantrelPref::gammaCheckBox(const CheckBox& sender) {
    updateStage(sender, keys::gamma, colorProcessingPath::gammaBit);
}

void VantrelPref::lookCheckBox(const CheckBox& sender) {
    updateStage(sender, keys::look, colorProcessingPath::lookBit);
}

void VantrelPref::whiteBalanceCheckBox(const CheckBox& sender) {
    updateStage(sender, keys::whiteBalance, colorProcessingPath::whiteBalanceBit);
}

void VantrelPref::precisionDemosaicSelect(const PopUpButton& sender) {
    updateDemosaic(sender, keys::renderDemosaic, colorProcessingPath::renderDemosaic);
}

void VantrelPref::presentationDemosaicSelect(const PopUpButton& sender) {
    updateDemosaic(sender, keys::presentationDemosaic, colorProcessingPath::presentationDemosaic);
}

}  // namespace vantrel

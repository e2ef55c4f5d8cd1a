#include <algorithm>
#include <string>

#include "Preference/Vantrel/VantrelPref.h"

namespace vantrel {

namespace {

/// The pop-ups offer 1 to 32 threads, whatever the machine has.
constexpr std::int32_t mostThreads = 32;

}  // namespace

void VantrelPref::setUpChromaFilter(MetadataDictionary* overrides) {
    if (!overrides) return;
    if (const auto state = overrides->metadata()->objectForKey(overrideKeys::chromaFilter)) {
        variables_.filter422To444.setState(*state);
    }
}

/// Fills both thread pop-ups and selects the encoder's limit. Returns whether the limit was missing, which the colour
/// set-up takes as a request to write (see setUpColorProcessing).
bool VantrelPref::setUpEncodeThreads() {
    const std::int32_t cores = std::clamp(services_.processors.physicalCPUCount(), 1, mostThreads);

    variables_.encodeThreads.removeAllItems();
    variables_.decodeThreads.removeAllItems();
    variables_.decodeThreads.addItemWithTitle("All");
    for (std::int32_t threads = 1; threads <= cores; ++threads) {
        const std::string title = std::to_string(threads);
        variables_.encodeThreads.addItemWithTitle(title);
        variables_.decodeThreads.addItemWithTitle(title);
    }

    const auto& key = keys::encodeThreads;
    const auto stored = store_.integerForKey(key.name);
    long limit = stored.value_or(std::get<long>(key.setUpDefault));
    if (limit >= cores) {
        limit = cores - 1;
        store_.setValueForKey(limit, key.name);
        store_.synchronize();
    }
    variables_.encodeThreads.selectItemAtIndex(limit);
    return !stored;
}

void VantrelPref::setUpDecodeThreads(MetadataDictionary* overrides) {
    variables_.decodeThreads.selectItemAtIndex(0);
    if (!overrides) return;
    if (const auto index = overrides->metadata()->objectForKey(overrideKeys::decodeThreads)) {
        variables_.decodeThreads.selectItemAtIndex(*index);
    }
}

void VantrelPref::encodeThreadLimitChange(const PopUpButton& sender) {
    const auto index = std::max(static_cast<std::int32_t>(sender.indexOfSelectedItem()), 0);
    store_.updateIntPrefForKey(index & (mostThreads - 1), keys::encodeThreads.name);
}

/// The decoder's limit goes through the instance, the chroma filter through its dictionary: two ways into the record
/// that every library behind it has to offer.
void VantrelPref::decodeThreadLimitChange(const PopUpButton& sender) {
    const auto overrides = services_.metadataDictionaryClass.initFromOverride();
    if (!overrides) return;
    overrides->addObjectWithKey(static_cast<std::int32_t>(sender.indexOfSelectedItem()), overrideKeys::decodeThreads);
    overrides->writeToOverride();
}

void VantrelPref::filter422To444Button(const CheckBox& sender) {
    const auto overrides = services_.metadataDictionaryClass.initFromOverride();
    if (!overrides) return;
    auto metadata = overrides->metadata();
    metadata->setObjectForKey(static_cast<std::int32_t>(sender.state()), overrideKeys::chromaFilter);
    overrides->setMetadata(std::move(metadata));
    overrides->writeToOverride();
}

}  // namespace vantrel

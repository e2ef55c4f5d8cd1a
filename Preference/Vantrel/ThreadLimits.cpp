#include <string>

#include "Preference/Vantrel/VantrelPref.h"

namespace vantrel {

void VantrelPref::showChromaFilter(LoadedOverrides* loaded) {
    if (!loaded) return;
    if (const auto state = loaded->number(overrideKeys::chromaFilter)) {
        outlets_.checkBox(overrideKeys::chromaFilter.outlet).setState(*state);
    }
}

void VantrelPref::fillThreadMenus() {
    cores_ = threadsOffered(services_.processors.physicalCPUCount());
    auto& encode = outlets_.popUpButton(key("MaxEncodeThreads").outlet);
    auto& decode = outlets_.popUpButton(overrideKeys::decodeThreads.outlet);
    encode.removeAllItems();
    decode.removeAllItems();
    decode.addItemWithTitle("All");
    for (std::int32_t threads = 1; threads <= cores_; ++threads) {
        const std::string title = std::to_string(threads);
        encode.addItemWithTitle(title);
        decode.addItemWithTitle(title);
    }
}

void VantrelPref::showDecodeThreads(LoadedOverrides* loaded) {
    auto& decode = outlets_.popUpButton(overrideKeys::decodeThreads.outlet);
    decode.selectItemAtIndex(0);
    if (!loaded) return;
    if (const auto index = loaded->number(overrideKeys::decodeThreads)) decode.selectItemAtIndex(*index);
}

void VantrelPref::chromaFilterClicked(const CheckBox& sender) {
    services_.overrides.write(overrideKeys::chromaFilter, static_cast<std::int32_t>(sender.state()));
}

void VantrelPref::decodeThreadsChosen(const PopUpButton& sender) {
    services_.overrides.write(overrideKeys::decodeThreads, static_cast<std::int32_t>(sender.indexOfSelectedItem()));
}

}  // namespace vantrel

#include "host/EnablerSwitch.h"

#include <algorithm>

#include "platform/Controls.h"
#include "settings/KeyTable.h"

namespace vantrel {

namespace {

/// Final Cut Pro's versions that have an enabler read "7.0.3".
constexpr std::size_t versionLength = 5;

const std::string active{enablerPaths::active};
const std::string backup{enablerPaths::backup};

/// The length of a UTF-8 text in UTF-16 code units: one for each character, two for one that takes four bytes.
std::size_t utf16Length(std::string_view text) {
    std::size_t units = 0;
    for (const char byte : text) {
        const auto value = static_cast<unsigned char>(byte);
        const bool continues = (value & 0xC0) == 0x80;
        if (!continues) units += value >= 0xF0 ? 2 : 1;
    }
    return units;
}

std::string withoutPoints(std::string version) {
    std::erase(version, '.');
    return version;
}

Alert unsupportedVersion(const std::string& found) {
    return {"Could not find supported version of FCP", found};
}

}  // namespace

std::string enablerPaths::versionEnabler(std::string_view versionTag) {
    return "/Library/Application Support/Vantrel/PLugins/RT Software Enabler" + std::string(versionTag) + ".txt";
}

std::optional<long> EnablerSwitch::turn(long state) {
    const auto versionEnabler = findVersionEnabler();
    if (!versionEnabler) return offState;
    const bool on = state != offState;
    if (!(on ? switchOn(*versionEnabler) : switchOff())) return on ? offState : onState;
    store_.change(key("fcpRTEnableSwap"), truthOf(state));
    return std::nullopt;
}

/// The enabler for the installed Final Cut Pro, or nothing after an alert that says what is missing.
std::optional<std::string> EnablerSwitch::findVersionEnabler() {
    const auto record = propertyLists_.dictionaryWithContentsOfFile(std::string(enablerPaths::versionRecord));
    if (!record) {
        alerts_.runModal({"Could not find any FCP installation", std::nullopt});
        return std::nullopt;
    }
    const auto version = record->find("CFBundleVersion");
    if (version == record->end()) {
        alerts_.runModal(unsupportedVersion("No version number in application"));
        return std::nullopt;
    }
    if (utf16Length(version->second) == versionLength) {
        auto enabler = enablerPaths::versionEnabler(withoutPoints(version->second));
        if (files_.fileExistsAtPath(enabler)) return enabler;
    }
    alerts_.runModal(unsupportedVersion("Found version " + version->second));
    return std::nullopt;
}

bool EnablerSwitch::switchOn(const std::string& versionEnabler) {
    if (const auto failure = files_.moveItemAtPath(active, backup)) {
        log_.log("Failed " + *failure);
        return false;
    }
    log_.log("Install enabler " + versionEnabler);
    if (const auto failure = files_.copyItemAtPath(versionEnabler, active)) {
        log_.log("Failed to replace RT file " + *failure);
        files_.moveItemAtPath(backup, active);
        return false;
    }
    return true;
}

/// Counts as done once ours is deleted, whatever becomes of the move back.
bool EnablerSwitch::switchOff() {
    log_.log("Turn off enabler");
    if (!files_.fileExistsAtPath(backup)) {
        log_.log("Saved RT Enabler file missing");
        return false;
    }
    if (const auto failure = files_.removeItemAtPath(active)) {
        log_.log("Cannot delete RT File " + *failure);
        return false;
    }
    files_.moveItemAtPath(backup, active);
    return true;
}

}  // namespace vantrel

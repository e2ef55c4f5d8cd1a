#include "host/EnablerSwitch.h"

#include <algorithm>
#include <utility>

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

}  // namespace

std::string enablerPaths::versionEnabler(std::string_view versionTag) {
    return "/Library/Application Support/Vantrel/PLugins/RT Software Enabler" + std::string(versionTag) + ".txt";
}

std::optional<long> EnablerSwitch::turn(long state) {
    const auto found = findVersionEnabler();
    if (found.alert) {
        alerts_.runModal(*found.alert);
        return offState;
    }
    const bool on = state != offState;
    if (!(on ? switchOn(found.path) : switchOff())) return on ? offState : onState;
    store_.change(key("fcpRTEnableSwap"), truthOf(state));
    return std::nullopt;
}

EnablerState EnablerSwitch::state() {
    const auto found = findVersionEnabler();
    if (found.alert) return found.missing;
    const bool isActive = files_.fileExistsAtPath(active);
    const bool isSaved = files_.fileExistsAtPath(backup);
    if (!isActive) return isSaved ? EnablerState::broken : EnablerState::unknown;
    // Ours without its own beside it, or a second one of its own, which an update may have brought, is neither.
    if (files_.contentsEqualAtPath(active, found.path) != isSaved) return EnablerState::unknown;
    return isSaved ? EnablerState::on : EnablerState::off;
}

bool EnablerSwitch::isTurned(bool on) {
    const auto now = state();
    return on ? now == EnablerState::on : now == EnablerState::off || now == EnablerState::noFinalCutPro;
}

FileFailure EnablerSwitch::mend() {
    return state() == EnablerState::broken ? files_.moveItemAtPath(backup, active) : std::nullopt;
}

EnablerSwitch::VersionEnabler EnablerSwitch::findVersionEnabler() {
    const auto record = propertyLists_.dictionaryWithContentsOfFile(std::string(enablerPaths::versionRecord));
    if (!record) {
        return {{}, EnablerState::noFinalCutPro, Alert{"Could not find any FCP installation", std::nullopt}};
    }
    const auto entry = record->find("CFBundleVersion");
    const auto* version = entry == record->end() ? nullptr : std::get_if<std::string>(&entry->second);
    if (version && utf16Length(*version) == versionLength) {
        auto enabler = enablerPaths::versionEnabler(withoutPoints(*version));
        if (files_.fileExistsAtPath(enabler)) return {std::move(enabler), {}, std::nullopt};
    }
    const std::string details = version ? "Found version " + *version : "No version number in application";
    return {{}, EnablerState::unsupported, Alert{"Could not find supported version of FCP", details}};
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

#include "platform/gnustep/GNUstepPreferences.h"

#include <utility>

namespace vantrel::gnustep {

GNUstepPreferences::GNUstepPreferences(std::string folder, Log& log, posix::SystemCalls& calls)
    : folder_(std::move(folder)), log_(log), calls_(calls) {}

PreferenceValue GNUstepPreferences::copyAppValue(std::string_view key, std::string_view applicationID) {
    return orGlobal(key, domain(applicationID).value(key));
}

PreferenceValue GNUstepPreferences::orGlobal(std::string_view key, PreferenceValue value) {
    return std::holds_alternative<Absent>(value) ? domain("NSGlobalDomain").value(key) : value;
}

void GNUstepPreferences::setAppValue(std::string_view key, const NewPreferenceValue& value,
                                     std::string_view applicationID) {
    domain(applicationID).setValue(key, value);
}

PreferenceValue GNUstepPreferences::updateAppValue(std::string_view key, const PreferenceChange& change,
                                                   std::string_view applicationID) {
    PreferenceValue stored = copyAppValue(key, applicationID);
    if (change(stored)) {
        domain(applicationID).update(key, [this, change, name = std::string(key)](const PreferenceValue& value) {
            return change(orGlobal(name, value));
        });
    }
    return stored;
}

bool GNUstepPreferences::synchronize(std::string_view applicationID) {
    return domain(applicationID).synchronize();
}

DomainFile& GNUstepPreferences::domain(std::string_view name) {
    const auto found = domains_.find(name);
    if (found != domains_.end()) return found->second;
    return domains_.try_emplace(std::string(name), calls_, log_, folder_, name).first->second;
}

}  // namespace vantrel::gnustep

#include "platform/gnustep/GNUstepPreferences.h"

#include <utility>

namespace vantrel::gnustep {

GNUstepPreferences::GNUstepPreferences(std::string folder, Log& log, posix::SystemCalls& calls)
    : folder_(std::move(folder)), log_(log), calls_(calls) {}

PreferenceValue GNUstepPreferences::copyAppValue(std::string_view key, std::string_view applicationID) {
    auto value = domain(applicationID).value(key);
    return std::holds_alternative<Absent>(value) ? domain("NSGlobalDomain").value(key) : value;
}

void GNUstepPreferences::setAppValue(std::string_view key, const NewPreferenceValue& value,
                                     std::string_view applicationID) {
    domain(applicationID).setValue(key, value);
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

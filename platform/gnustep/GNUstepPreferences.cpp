#include "platform/gnustep/GNUstepPreferences.h"

#include <utility>

namespace vantrel::gnustep {
namespace {

/// Seconds that a sequence waits for locks in all. Beside that, a damaged file takes a quarter of one when it is found
/// and when it is replaced: nobody who clicks or opens the pane waits for more than two.
constexpr double longestWait = 1.5;

}  // namespace

GNUstepPreferences::GNUstepPreferences(std::string folder, Log& log, posix::SystemCalls& calls)
    : folder_(std::move(folder)), log_(log), calls_(calls), lock_(calls, folder_) {}

PreferenceValue GNUstepPreferences::copyAppValue(std::string_view key, std::string_view applicationID) {
    return orGlobal(key, domain(applicationID).value(key, sequence()));
}

PreferenceValue GNUstepPreferences::orGlobal(std::string_view key, PreferenceValue value) {
    if (std::holds_alternative<Absent>(value)) return domain("NSGlobalDomain").value(key, sequence_);
    return value;
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
    const auto number = sequence();
    if (!patience_) patience_.emplace(calls_, longestWait);
    return domain(applicationID).synchronize(number, *patience_);
}

unsigned long GNUstepPreferences::sequence() {
    if (isInSequence_) return sequence_;
    patience_.reset();
    return ++sequence_;
}

void GNUstepPreferences::beginSequence() {
    sequence();
    isInSequence_ = true;
}

void GNUstepPreferences::endSequence() {
    isInSequence_ = false;
}

DomainFile& GNUstepPreferences::domain(std::string_view name) {
    const auto found = domains_.find(name);
    if (found != domains_.end()) return found->second;
    return domains_.try_emplace(std::string(name), calls_, log_, lock_, folder_, name).first->second;
}

}  // namespace vantrel::gnustep

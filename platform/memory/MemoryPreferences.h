#pragma once

#include <map>
#include <set>
#include <string>

#include "platform/Preferences.h"
#include "platform/memory/Journal.h"

namespace vantrel::memory {

/// How a value reads in the journal: `true`, `46`, `"text"`.
inline std::string describe(const NewPreferenceValue& value) {
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    if (const auto* number = std::get_if<long>(&value)) return std::to_string(*number);
    return '"' + std::get<std::string>(value) + '"';
}

/// How a value reads that some process stored: as above, or `absent`, `unreadable number`, `other type`.
inline std::string describeStored(const PreferenceValue& value) {
    if (const auto* flag = std::get_if<bool>(&value)) return describe(*flag);
    if (const auto* text = std::get_if<std::string>(&value)) return describe(*text);
    if (const auto* number = std::get_if<Number>(&value)) {
        return number->longValue ? describe(*number->longValue) : "unreadable number";
    }
    return std::holds_alternative<Absent>(value) ? "absent" : "other type";
}

/// Preferences in memory. Records "read KEY", "write KEY = VALUE" and "synchronize".
class MemoryPreferences : public Preferences {
public:
    using Domain = std::map<std::string, PreferenceValue, std::less<>>;

    explicit MemoryPreferences(Journal& journal) : journal_(journal) {}

    PreferenceValue copyAppValue(std::string_view key, std::string_view applicationID) override {
        journal_.record("read " + std::string(key));
        const auto& domain = domains_[std::string(applicationID)];
        const auto found = domain.find(key);
        return found == domain.end() ? Absent{} : found->second;
    }

    void setAppValue(std::string_view key, const NewPreferenceValue& value, std::string_view applicationID) override {
        journal_.record("write " + std::string(key) + " = " + describe(value));
        domains_[std::string(applicationID)].insert_or_assign(std::string(key), asStored(value));
    }

    PreferenceValue updateAppValue(std::string_view key, const PreferenceChange& change,
                                   std::string_view applicationID) override {
        PreferenceValue stored = copyAppValue(key, applicationID);
        if (const auto value = change(stored)) setAppValue(key, *value, applicationID);
        return stored;
    }

    bool synchronize(std::string_view applicationID) override {
        journal_.record("synchronize");
        if (synchronizes) synchronized_[std::string(applicationID)] = domains_[std::string(applicationID)];
        return synchronizes;
    }

    /// What a read in this process finds.
    Domain& domain(const std::string& applicationID) { return domains_[applicationID]; }

    /// What other processes find: the domain as it was last synchronised.
    const Domain& synchronizedDomain(const std::string& applicationID) { return synchronized_[applicationID]; }

    /// The applications that anything was read from, written to or synchronised for.
    std::set<std::string> applications() const {
        std::set<std::string> found;
        for (const auto& [application, domain] : domains_) found.insert(application);
        for (const auto& [application, domain] : synchronized_) found.insert(application);
        return found;
    }

    /// Whether synchronising works; where it doesn't, other processes keep finding what they found before.
    bool synchronizes = true;

private:
    Journal& journal_;
    std::map<std::string, Domain> domains_;
    std::map<std::string, Domain> synchronized_;
};

}  // namespace vantrel::memory

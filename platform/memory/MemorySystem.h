#pragma once

#include <map>
#include <string>

#include "platform/Alerts.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/Notifications.h"
#include "platform/Processors.h"
#include "platform/memory/Journal.h"

namespace vantrel::memory {

/// Records "alert MESSAGE" or "alert MESSAGE (INFORMATIVE)" and is dismissed at once.
class MemoryAlerts : public Alerts {
public:
    explicit MemoryAlerts(Journal& journal) : journal_(journal) {}

    void runModal(const Alert& alert) override {
        journal_.record("alert " + alert.messageText +
                        (alert.informativeText ? " (" + *alert.informativeText + ")" : std::string()));
    }

private:
    Journal& journal_;
};

/// Records "log LINE".
class MemoryLog : public Log {
public:
    explicit MemoryLog(Journal& journal) : journal_(journal) {}

    void log(std::string_view line) override { journal_.record("log " + std::string(line)); }

private:
    Journal& journal_;
};

/// Records "post NAME from OBJECT", with " at once" behind it where delivery is immediate.
class MemoryNotifications : public Notifications {
public:
    explicit MemoryNotifications(Journal& journal) : journal_(journal) {}

    void postNotificationName(std::string_view name, std::string_view object, bool deliverImmediately) override {
        journal_.record("post " + std::string(name) + " from " + std::string(object) +
                        (deliverImmediately ? " at once" : ""));
    }

private:
    Journal& journal_;
};

/// A machine with as many cores as it is told.
class MemoryProcessors : public Processors {
public:
    std::int32_t physicalCPUCount() override { return cores; }

    std::int32_t cores = 8;
};

/// A bundle with the texts it is given.
class MemoryBundle : public Bundle {
public:
    std::string localizedStringForKey(std::string_view key, std::string_view value) override {
        const auto found = strings.find(key);
        return std::string(found == strings.end() ? value : found->second);
    }

    std::optional<std::string> infoString(std::string_view key) override {
        const auto found = info.find(key);
        return found == info.end() ? std::nullopt : std::optional(found->second);
    }

    std::map<std::string, std::string, std::less<>> strings;
    std::map<std::string, std::string, std::less<>> info;
};

}  // namespace vantrel::memory

#include <filesystem>
#include <fstream>
#include <optional>
#include <utility>

#include "bench/peers/Peer.h"
#include "platform/Log.h"
#include "platform/gnustep/GNUstepPreferences.h"
#include "settings/KeyTable.h"

// Our own store, as the pane uses it: the settings are read in one sequence, a click is one of its own.

namespace vantrel::bench {
namespace {

class NoLog : public Log {
public:
    void log(std::string_view) override {}
};

class Vantrel : public Peer {
public:
    explicit Vantrel(const std::string& folder)
        : folder_(folder), preferences_(folder, log_), sequence_(std::in_place, preferences_) {}

    void fill(const std::vector<Setting>& all) override {
        std::filesystem::create_directories(folder_);
        std::ofstream(folder_ + '/' + std::string(codecApplicationID) + ".plist") << propertyListOf(all);
    }

    void refresh() override { sequence_.emplace(preferences_); }

    Value value(std::size_t index) override {
        const auto value = preferences_.copyAppValue(settings[index].name, codecApplicationID);
        if (const auto* flag = std::get_if<bool>(&value)) return *flag;
        if (const auto* text = std::get_if<std::string>(&value)) return *text;
        return std::get<Number>(value).longValue.value();
    }

    void change(std::size_t index, bool flag) override {
        sequence_.reset();
        preferences_.setAppValue(settings[index].name, flag, codecApplicationID);
        require(preferences_.synchronize(codecApplicationID), "synchronize");
    }

private:
    NoLog log_;
    std::string folder_;
    gnustep::GNUstepPreferences preferences_;
    std::optional<PreferencesSequence> sequence_;
};

}  // namespace

Peer* open(const std::string& folder) {
    return new Vantrel(folder + "/Defaults");
}

}  // namespace vantrel::bench

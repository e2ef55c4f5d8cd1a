#include <array>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <iostream>

#include "command/Commands.h"
#include "host/StereoStatusNotification.h"

namespace vantrel {
namespace {

/// "2024-02-29T23:59:59.042Z".
std::string universalTime() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    const auto seconds = static_cast<std::time_t>(milliseconds / 1000);
    struct tm parts {};
    gmtime_r(&seconds, &parts);
    std::array<char, sizeof "2024-02-29T23:59:59."> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S.", &parts);
    const std::string thousandths = std::to_string(1000 + milliseconds % 1000);
    return text.data() + thousandths.substr(1) + 'Z';
}

std::vector<Standing> standings(Context& context) {
    const PreferencesSequence sequence(context.system.services.preferences);
    std::vector<Standing> all;
    for (const auto& setting : context.store.settings()) all.push_back(context.store.standing(setting));
    return all;
}

}  // namespace

Status watch(Context& context, const Arguments& arguments) {
    std::vector<Standing> known;
    const auto tell = [&](const Node::Members& members, const std::string& line) {
        const std::string time = universalTime();
        if (arguments.json) {
            Node::Members all{{"time", {time}}};
            all.insert(all.end(), members.begin(), members.end());
            std::cout << toJSON({all}, true) << '\n';
        } else {
            std::cout << time << ' ' << line << '\n';
        }
        // Nobody reads any more.
        if (!std::cout.flush()) std::exit(static_cast<int>(Status::failed));
    };
    const auto changed = [&] {
        auto now = standings(context);
        for (std::size_t index = 0; index < known.size(); ++index) {
            const Setting& setting = context.store.settings()[index];
            const std::string name(setting.name());
            const std::string before = shownText(setting, known[index]);
            const std::string after = shownText(setting, now[index]);
            if (before == after) continue;
            std::string line = name;
            line.append(": ").append(before).append(" -> ").append(after);
            tell({{"key", {name}},
                  {"before", storedNode(known[index].stored)},
                  {"after", storedNode(now[index].stored)}},
                 line);
        }
        known = std::move(now);
    };
    const auto posted = [&] {
        tell({{"notification", {std::string(stereoStatusChanged)}}}, std::string(stereoStatusChanged));
    };
    context.system.watch.run({std::string(stereoStatusChanged), std::string(stereoStatusSender), changed, posted});
    return Status::done;
}

}  // namespace vantrel

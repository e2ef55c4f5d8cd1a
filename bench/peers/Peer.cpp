#include "bench/peers/Peer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <sstream>

// A program that uses one store of settings, as it is told, and measures itself:
//
//     peer FOLDER VERB...
//
// Without verbs it takes them from the standard input, a line each. The verbs, and what is told for each in a line:
//
//     fill FOREIGN      stores all settings, and others beside them
//     read              reads all settings, after a look at what others have stored unless it is the first verb: the
//                       nanoseconds, and what the first flag is
//     click INDEX       changes a flag: the nanoseconds, and what it is now
//     clicks INDEX N    the same over and over: the nanoseconds of each

namespace vantrel::bench {
namespace {

Setting madeUp(std::size_t index) {
    const std::string number = std::to_string(index);
    const std::string name = "setting-" + std::string(2 - number.size(), '0') + number;
    if (index < 17) return {name, true};
    if (index < 24) return {name, static_cast<long>(index)};
    return {name, "/Library/Application Support/Folder " + number};
}

std::vector<Setting> madeUp() {
    std::vector<Setting> all;
    while (all.size() < 26) all.push_back(madeUp(all.size()));
    return all;
}

std::string elementOf(const Value& value) {
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "<true/>" : "<false/>";
    if (const auto* number = std::get_if<long>(&value)) return "<integer>" + std::to_string(*number) + "</integer>";
    return "<string>" + std::get<std::string>(value) + "</string>";
}

long long nanoseconds(const std::function<void()>& work) {
    timespec start{};
    timespec end{};
    clock_gettime(CLOCK_MONOTONIC, &start);
    work();
    clock_gettime(CLOCK_MONOTONIC, &end);
    return (end.tv_sec - start.tv_sec) * 1'000'000'000LL + end.tv_nsec - start.tv_nsec;
}

class Session {
public:
    explicit Session(std::string folder) : folder_(std::move(folder)) {}

    void obey(const std::string& line) {
        std::istringstream words(line);
        std::string verb;
        std::size_t number = 0;
        words >> verb >> number;
        if (verb == "fill") {
            opened().fill(settingsAnd(static_cast<int>(number)));
            std::cout << "filled";
        } else if (verb == "read") {
            bool flag = false;
            std::cout << nanoseconds([&] { flag = readAll(); }) << ' ' << flag;
        } else if (verb == "click") {
            std::cout << click(number);
            std::cout << ' ' << flags_[number];
        } else if (verb == "clicks") {
            int count = 0;
            words >> count;
            while (count-- > 0) std::cout << click(number) << ' ';
        } else {
            require(false, "an unknown verb");
        }
        std::cout << std::endl;
    }

private:
    Peer& opened() {
        if (!peer_) peer_.reset(open(folder_));
        return *peer_;
    }

    /// Reads every setting, makes sure of it, and tells the first.
    bool readAll() {
        if (peer_) peer_->refresh();
        Peer& peer = opened();
        for (std::size_t index = 0; index < settings.size(); ++index) {
            const Value value = peer.value(index);
            require(value.index() == settings[index].value.index(), "another type than was stored");
            require(std::holds_alternative<bool>(value) || value == settings[index].value, "another value");
            if (index == 0) first_ = std::get<bool>(value);
        }
        return first_;
    }

    long long click(std::size_t index) {
        const auto shown = flags_.find(index);
        const bool flag = shown == flags_.end() ? std::get<bool>(opened().value(index)) : shown->second;
        flags_[index] = !flag;
        return nanoseconds([&] { peer_->change(index, !flag); });
    }

    std::string folder_;
    std::unique_ptr<Peer> peer_;
    bool first_ = false;
    /// What the flags that are clicked here show.
    std::map<std::size_t, bool> flags_;
};

}  // namespace

const std::vector<Setting> settings = madeUp();

std::vector<Setting> settingsAnd(int foreign) {
    auto all = settings;
    for (int index = 0; index < foreign; ++index) {
        all.push_back({"another-programs-" + std::to_string(index), "value " + std::to_string(index)});
    }
    return all;
}

std::string propertyListOf(std::vector<Setting> all) {
    std::sort(all.begin(), all.end(), [](const Setting& one, const Setting& other) { return one.name < other.name; });
    std::string list =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//GNUstep//DTD plist 0.9//EN\" \"http://www.gnustep.org/plist-0_9.xml\">\n"
        "<plist version=\"0.9\">\n<dict>\n";
    for (const Setting& setting : all)
        list += "\t<key>" + setting.name + "</key>\n\t" + elementOf(setting.value) + "\n";
    return list + "</dict>\n</plist>\n";
}

void require(bool isTrue, const char* what) {
    if (isTrue) return;
    std::perror(what);
    std::exit(EXIT_FAILURE);
}

}  // namespace vantrel::bench

int main(int argc, char** argv) {
    using namespace vantrel::bench;
    require(argc > 1, "usage: peer FOLDER VERB...");
    Session session(argv[1]);
    for (int index = 2; index < argc; ++index) session.obey(argv[index]);
    if (argc > 2) return EXIT_SUCCESS;
    for (std::string line; std::getline(std::cin, line);) session.obey(line);
}

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "platform/Log.h"
#include "platform/gnustep/GNUstepPreferences.h"
#include "settings/KeyTable.h"

// What the settings store on Linux costs, as a ratio to the least that the system itself needs for the same. Both are
// measured in turns, so that whatever else the machine does meets both alike.

namespace vantrel::gnustep {
namespace {

constexpr std::string_view appID = codecApplicationID;

class NoLog : public Log {
public:
    void log(std::string_view) override {}
};

void require(bool isTrue, const char* what) {
    if (isTrue) return;
    std::perror(what);
    std::exit(EXIT_FAILURE);
}

double microseconds(const std::function<void()>& action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(), values.begin() + static_cast<long>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

/// Runs both in turns and prints the ratio of their medians.
void compare(const char* name, int rounds, const std::function<void()>& ours, const std::function<void()>& floor) {
    constexpr int warmUp = 20;
    std::vector<double> oursTook;
    std::vector<double> floorTook;
    for (int round = 0; round < warmUp + rounds; ++round) {
        const double first = microseconds(round % 2 == 0 ? ours : floor);
        const double second = microseconds(round % 2 == 0 ? floor : ours);
        if (round < warmUp) continue;
        oursTook.push_back(round % 2 == 0 ? first : second);
        floorTook.push_back(round % 2 == 0 ? second : first);
    }
    std::printf("%-44s %5.2f times the floor (medians of %d: %.1f against %.1f microseconds)\n", name,
                median(oursTook) / median(floorTook), rounds, median(oursTook), median(floorTook));
}

std::string contentsOf(const std::string& path) {
    std::ostringstream contents;
    contents << std::ifstream(path, std::ios::binary).rdbuf();
    return contents.str();
}

/// The least that makes a file's new content lasting.
void replaceDurably(const std::string& folder, const std::string& bytes) {
    const std::string temporary = folder + "/floor.new";
    const std::string file = folder + "/floor";
    const int descriptor = open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    require(descriptor >= 0, "open");
    require(write(descriptor, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "write");
    require(fsync(descriptor) == 0, "fsync");
    close(descriptor);
    require(rename(temporary.c_str(), file.c_str()) == 0, "rename");
    const int folderDescriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    require(folderDescriptor >= 0 && fsync(folderDescriptor) == 0, "fsync of the folder");
    close(folderDescriptor);
}

void run(const std::string& folder) {
    NoLog log;
    GNUstepPreferences preferences(folder, log);
    // A domain as the pane leaves it behind, with a value of each key's type.
    for (const auto& key : keyTable) {
        if (key.kind == Kind::flag) {
            preferences.setAppValue(key.name, true, appID);
        } else if (key.kind == Kind::text) {
            preferences.setAppValue(key.name, std::string("/Library/Application Support/Vantrel/Folder"), appID);
        } else {
            preferences.setAppValue(key.name, 7L, appID);
        }
    }
    require(preferences.synchronize(appID), "synchronize");
    const std::string file = folder + "/com.vantrel.codec.plist";
    const std::string bytes = contentsOf(file);

    bool flag = true;
    compare(
        "one flag changed and durable", 600,
        [&] {
            flag = !flag;
            preferences.setAppValue("FormatRGB8", flag, appID);
            require(preferences.synchronize(appID), "synchronize");
        },
        [&] { replaceDurably(folder, bytes); });

    constexpr int reads = 1000;
    usleep(50'000);  // until the file's times are old enough to be relied on
    compare(
        "a read when nothing changed", 200,
        [&] {
            for (int count = 0; count < reads; ++count) preferences.copyAppValue("FormatRGB8", appID);
        },
        [&] {
            struct stat status {};
            for (int count = 0; count < reads; ++count) require(stat(file.c_str(), &status) == 0, "stat");
        });
}

}  // namespace
}  // namespace vantrel::gnustep

/// Works in a folder of its own below the one it is started in, which should be on a disk.
int main() {
    std::string folder = (std::filesystem::current_path() / "bench-XXXXXX").string();
    vantrel::gnustep::require(mkdtemp(folder.data()) != nullptr, "mkdtemp");
    vantrel::gnustep::run(folder);
    std::filesystem::remove_all(folder);
}

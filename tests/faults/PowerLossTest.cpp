// The power is cut after every call of a click, and the disk keeps of what wasn't flushed whatever it likes: what a
// click had finished must be there, and what was there before must not be lost.
#include <gmock/gmock.h>

#include <filesystem>
#include <iostream>
#include <string>

#include "host/EnablerSwitch.h"
#include "platform/gnustep/GNUstepPreferences.h"
#include "platform/gnustep/GNUstepPropertyLists.h"
#include "platform/memory/MemoryControls.h"
#include "platform/memory/MemoryPreferences.h"
#include "platform/memory/MemorySystem.h"
#include "platform/posix/PosixFiles.h"
#include "tests/host/PrivateMachine.h"
#include "tests/platform/posix/DiskWithPowerCuts.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel {
namespace {

namespace fs = std::filesystem;
using posix::DiskWithPowerCuts;
using testing::AnyOf;
using testing::Contains;
using testing::Pair;

/// What is in a file after a power cut; "nothing" where there is none.
std::string contentOf(const DiskWithPowerCuts::Contents& left, const std::string& path) {
    const auto found = left.find(path);
    return found == left.end() ? "nothing" : found->second;
}

// The settings

constexpr std::string_view appID = "com.vantrel.codec";

struct PowerLossOfTheStore : testing::Test {
    /// Clicks once more, while the power may be cut: one of `before` is found, or what the click makes of it, and that
    /// alone once the click has ended.
    void click(DiskWithPowerCuts& disk, gnustep::GNUstepPreferences& preferences, long value) {
        seen.clear();
        const std::string before = fs::exists(folder / name) ? folder.read(name) : "nothing";
        disk.before = [&](const std::string&) { see(disk); };
        preferences.setAppValue("look", value, appID);
        ASSERT_TRUE(preferences.synchronize(appID));
        const std::string after = folder.read(name);
        EXPECT_THAT(seen, testing::Each(AnyOf(before, after)));
        EXPECT_THAT(seen, Contains(before));
        for (const auto& left : disk.afterACut()) EXPECT_EQ(contentOf(left, name), after);
    }

    void see(const DiskWithPowerCuts& disk) {
        for (const auto& left : disk.afterACut()) seen.insert(contentOf(left, name));
    }

    const std::string name = "com.vantrel.codec.plist";
    posix::TemporaryFolder folder;
    memory::Journal journal;
    memory::MemoryLog log{journal};
    std::set<std::string> seen;
};

TEST_F(PowerLossOfTheStore, AClickIsThereOrNotAndThereForGoodOnceItHasEnded) {
    DiskWithPowerCuts disk(folder.path);
    gnustep::GNUstepPreferences preferences(folder.path, log, disk);
    for (const long value : {1, 2, 3}) click(disk, preferences, value);
}

TEST_F(PowerLossOfTheStore, AClickOfAnotherProcessOnTheSameFileIsThereTheSame) {
    DiskWithPowerCuts disk(folder.path);
    gnustep::GNUstepPreferences ours(folder.path, log, disk);
    gnustep::GNUstepPreferences theirs(folder.path, log, disk);
    click(disk, ours, 1);
    click(disk, theirs, 2);
    click(disk, ours, 3);
}

TEST_F(PowerLossOfTheStore, ADamagedFileIsThereUnderOneNameOrTheOther) {
    const std::string damage = "<plist><dict>";
    folder.write(name, damage);
    DiskWithPowerCuts disk(folder.path);
    gnustep::GNUstepPreferences preferences(folder.path, log, disk);
    disk.before = [&](const std::string&) {
        for (const auto& left : disk.afterACut()) EXPECT_THAT(left, Contains(Pair(testing::_, damage)));
    };
    preferences.setAppValue("look", true, appID);
    EXPECT_TRUE(preferences.synchronize(appID));
    disk.before("");
}

// Final Cut Pro's folder

const std::string enablers = fs::path(enablerPaths::active).parent_path();
const std::string active{enablerPaths::active};
const std::string backup{enablerPaths::backup};
const std::string theirs = "Final Cut Pro's own";
const std::string ours = "for 7.0.3";

struct PowerLossOfTheEnabler : testing::Test {
    PowerLossOfTheEnabler() {
        fs::remove_all(enablerPaths::application);
        fs::create_directories(enablers);
        fs::create_directories(fs::path(enablerPaths::versionEnabler("703")).parent_path());
        write(std::string(enablerPaths::versionRecord),
              "<plist><dict><key>CFBundleVersion</key><string>7.0.3</string></dict></plist>");
        write(enablerPaths::versionEnabler("703"), ours);
        write(active, theirs);
    }

    static void write(const std::string& path, const std::string& contents) {
        std::ofstream stream(path, std::ios::binary);
        stream << contents;
        if (!stream.flush()) throw std::runtime_error("can't write " + path);
    }

    /// "off", "on" or "broken", which keep Final Cut Pro's own; anything else loses it.
    static std::string stateOf(const DiskWithPowerCuts::Contents& left) {
        const auto now = contentOf(left, fs::path(active).filename());
        const auto saved = contentOf(left, fs::path(backup).filename());
        if (now == theirs && saved == "nothing") return "off";
        if (now == ours && saved == theirs) return "on";
        if (now == "nothing" && saved == theirs) return "broken";
        return now + " and " + saved;
    }

    /// Clicks while the power may be cut; only the state `wanted` is found once the click has ended, and the key is
    /// stored only then.
    void click(bool on, const std::string& wanted) {
        DiskWithPowerCuts disk(enablers);
        posix::PosixFiles files(disk, std::string(enablerPaths::application));
        gnustep::GNUstepPropertyLists propertyLists(disk);
        EnablerSwitch enablerSwitch(files, propertyLists, alerts, log, store);
        disk.before = [&](const std::string&) {
            for (const auto& left : disk.afterACut()) EXPECT_THAT(stateOf(left), AnyOf("off", "on", "broken"));
        };
        EXPECT_EQ(enablerSwitch.turn(on ? onState : offState), std::nullopt);
        for (const auto& left : disk.afterACut()) EXPECT_EQ(stateOf(left), wanted);
    }

    memory::Journal journal;
    memory::MemoryAlerts alerts{journal};
    memory::MemoryLog log{journal};
    memory::MemoryPreferences preferences{journal};
    SettingsStore store{preferences};
};

TEST_F(PowerLossOfTheEnabler, FinalCutProsOwnIsNeverLostAndASwapIsForGoodOnceItHasEnded) {
    for (int round = 0; round < 2; ++round) {
        click(true, "on");
        click(false, "off");
    }
}

}  // namespace
}  // namespace vantrel

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    if (!GTEST_FLAG_GET(list_tests)) {
        try {
            vantrel::PrivateMachine::enter();
        } catch (const std::exception& error) {
            std::cerr << error.what() << '\n';
            return EXIT_FAILURE;
        }
    }
    return RUN_ALL_TESTS();
}

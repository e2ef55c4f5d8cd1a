#include <gmock/gmock.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#import "tests/bundle/Host.h"
#include "tests/host/PrivateMachine.h"

namespace vantrel::host {
namespace {

namespace fs = std::filesystem;

const std::string contents = "/Applications/Final Cut Pro.app/Contents";
const std::string enablers = contents + "/Resources/Non-Localized Settings/FXScripts/Enablers";

const std::string plugIns = "/Library/Application Support/Vantrel/PLugins";

/// The files that a click can change.
const std::vector<std::string> &files() {
    static const std::vector<std::string> all{home() + "/Defaults/com.vantrel.codec.plist",
                                              home() + "/Library/ApplicationSupport/Vantrel/OverrideMetadata.plist",
                                              enablers + "/RT Software Enabler.txt",
                                              enablers + "/RT Software EnablerA.txt"};
    return all;
}

/// What is in each of them; no entry for one that is missing.
std::map<std::string, std::string> bytes() {
    std::map<std::string, std::string> found;
    for (const auto &file : files()) {
        if (!fs::exists(file)) continue;
        std::ostringstream content;
        content << std::ifstream(file, std::ios::binary).rdbuf();
        found[file] = content.str();
    }
    return found;
}

void writeBytes(const std::map<std::string, std::string> &wanted) {
    for (const auto &file : files()) fs::remove(file);
    for (const auto &[file, content] : wanted) {
        fs::create_directories(fs::path(file).parent_path());
        std::ofstream(file, std::ios::binary) << content;
        chmod(file.c_str(), 0600);
    }
}

/// A choice in the pane, and what the command is told for the same.
struct Choice {
    /// Whether the pane's flags show on before it.
    bool flags;
    std::string name;
    std::string value;
    std::function<void(const Pane &pane)> make;
};

std::ostream &operator<<(std::ostream &out, const Choice &choice) {
    return out << choice.name << ' ' << choice.value;
}

Choice click(bool flags, const std::string &name, const std::string &value, const char *outlet) {
    return {flags, name, value, [outlet](const Pane &pane) { pane.click(outlet); }};
}

Choice choose(const std::string &name, const std::string &value, const char *outlet, NSInteger index) {
    return {true, name, value, [=](const Pane &pane) { pane.choose(outlet, index); }};
}

Choice type(const std::string &name, const std::string &value, const char *field, const char *ok) {
    return {true, name, value, [=](const Pane &pane) {
                pane.type(field, [NSString stringWithUTF8String:value.c_str()]);
                pane.click(ok);
            }};
}

/// All keys with flags of one value, and what other programs keep beside them.
NSDictionary *domain(bool flags) {
    NSMutableDictionary *domain = [NSMutableDictionary dictionary];
    for (const char *flag : {"colorMatrix", "whiteBalance", "look", "gamma", "FormatYUV8", "FormatYUV8A", "FormatYUV16",
                             "FormatYUV32", "FormatRGB8", "FormatRGB16", "FormatRGB32", "FormatDualStream3D",
                             "FCPForceLetterBox", "PProCS5HasMovieSetup", "ShowStereoStatusMenu", "fcpRTEnableSwap"}) {
        [domain setObject:[NSNumber numberWithBool:flags] forKey:[NSString stringWithUTF8String:flag]];
    }
    for (const char *number : {"QTGammaCorrection", "FCPGammaCorrection", "8bitDebayer"}) {
        [domain setObject:[NSNumber numberWithInt:0] forKey:[NSString stringWithUTF8String:number]];
    }
    // No item is selected, so that every choice is another one, whatever the machine's number of cores.
    [domain setObject:[NSNumber numberWithInt:-1] forKey:@"MaxEncodeThreads"];
    [domain setObject:[NSNumber numberWithInt:flags ? 0x1500003F : 0x15000010] forKey:@"ColorProcessingPath"];
    [domain setObject:@"/luts" forKey:@"LUTsPath"];
    [domain setObject:@"/overrides" forKey:@"OverridePath"];
    [domain setObject:[NSArray arrayWithObjects:@"theirs", [NSNumber numberWithInt:1], nil] forKey:@"another's"];
    return domain;
}

struct TheCommand : testing::TestWithParam<Choice> {
    TheCommand() {
        emptyHome();
        const bool flags = GetParam().flags;
        writeDomainFile(domain(flags));
        auto start = bytes();
        start[files()[1]] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>THEM</key>"
                            "<string>theirs</string><key>CLSF</key><integer>" +
                            std::to_string(flags) + "</integer></dict></plist>\n";
        start[files()[2]] = flags ? "ours" : "own";
        if (flags) start[files()[3]] = "own";
        writeBytes(start);
        fs::create_directories(plugIns);
        std::ofstream(plugIns + "/RT Software Enabler703.txt") << "ours";
        std::ofstream(contents + "/version.plist")
            << "<plist version=\"1.0\"><dict><key>CFBundleVersion</key><string>7.0.3</string></dict></plist>";
    }

    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    ~TheCommand() override {
        [pool release];
        fs::remove_all("/Applications/Final Cut Pro.app");
        fs::remove_all("/Library/Application Support");
    }
};

TEST_P(TheCommand, StoresByteForByteWhatAClickStores) {
    const auto &choice = GetParam();
    const auto start = bytes();
    {
        const Pane pane;
        ASSERT_EQ(bytes(), start) << "the set-up wrote";
        choice.make(pane);
    }
    const auto clicked = bytes();
    EXPECT_NE(clicked, start);

    writeBytes(start);
    const std::string command =
        std::string("'" COMMAND_PATH "' set ") + choice.name + " '" + choice.value + "' >/dev/null 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    EXPECT_EQ(bytes(), clicked);
}

std::vector<Choice> choices() {
    std::vector<Choice> all;
    for (const auto &[name, outlet] :
         std::initializer_list<std::pair<const char *, const char *>>{{"FormatRGB8", "fmtRGB8Bit"},
                                                                      {"FormatRGB16", "fmtRGB16Bit"},
                                                                      {"FormatRGB32", "fmtRGB32Bit"},
                                                                      {"FormatYUV8", "fmtYUV8Bit"},
                                                                      {"FormatYUV16", "fmtYUV16Bit"},
                                                                      {"FormatYUV32", "fmtYUV32Bit"},
                                                                      {"FormatYUV8A", "fmtYUV8BitA"},
                                                                      {"FCPForceLetterBox", "fmtFCPLetterbox"},
                                                                      {"PProCS5HasMovieSetup", "cs5SourceSettings"},
                                                                      {"ShowStereoStatusMenu", "_showStereoStatus"}}) {
        all.push_back(click(true, name, "off", outlet));
    }
    // The set-up doesn't read this one: its box is off at first.
    all.push_back(click(false, "FormatDualStream3D", "on", "fmtDualStream3D"));
    // More than a flag hangs on these.
    for (const auto &[name, outlet] :
         std::initializer_list<std::pair<const char *, const char *>>{{"whiteBalance", "whiteBalance"},
                                                                      {"colorMatrix", "colorMatrix"},
                                                                      {"look", "look"},
                                                                      {"gamma", "gamma"},
                                                                      {"fcpRTEnableSwap", "fcpRTEnable"},
                                                                      {"CLSF", "filter422To444"}}) {
        all.push_back(click(true, name, "off", outlet));
        all.push_back(click(false, name, "on", outlet));
    }
    all.push_back(choose("QTGammaCorrection", "1", "fmtQTGamma", 1));
    all.push_back(choose("FCPGammaCorrection", "Corrected for display", "fmtFCPGamma", 1));
    all.push_back(choose("8bitDebayer", "3", "presentationDemosaic", 3));
    all.push_back(choose("RenderDebayer", "Bilinear", "renderDemosaic", 2));
    all.push_back(choose("MaxEncodeThreads", "1", "encodeThreads", 0));
    all.push_back(choose("CPUM", "1", "decodeThreads", 1));
    all.push_back(choose("CPUM", "all", "decodeThreads", 0));
    all.push_back(type("LUTsPath", "/Volumes/L & <U> 漢", "_LUTsPath", "_LUTsOK"));
    all.push_back(type("OverridePath", "[a,b]", "_overridePath", "_overrideOK"));
    return all;
}

INSTANTIATE_TEST_SUITE_P(ForEveryControl, TheCommand, testing::ValuesIn(choices()),
                         [](const auto &test) { return test.param.name + "_" + std::to_string(test.index); });

/// The command `watch`, as long as this lives.
class Watching {
   public:
    Watching() {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe(ends.data()), 0);
        process_ = fork();
        if (process_ == 0) {
            dup2(ends[1], STDOUT_FILENO);
            execl(COMMAND_PATH, "vantrelctl", "watch", nullptr);
            _exit(127);
        }
        close(ends[1]);
        output_ = ends[0];
    }
    Watching(const Watching &) = delete;
    Watching &operator=(const Watching &) = delete;
    ~Watching() {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
        close(output_);
    }

    /// What has been printed by the time that a tenth of a second has passed in silence.
    std::string said() const {
        std::string text;
        std::array<char, 4096> buffer{};
        pollfd output{output_, POLLIN, 0};
        while (poll(&output, 1, 100) > 0) {
            const ssize_t got = read(output_, buffer.data(), buffer.size());
            if (got <= 0) break;
            text.append(buffer.data(), static_cast<std::size_t>(got));
        }
        return text;
    }

   private:
    pid_t process_ = 0;
    int output_ = -1;
};

TEST(TheWatchingCommand, TellsOfEachClickInAPane) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    emptyHome();
    writeDomainFile(domain(true));
    const Pane pane;
    const Watching watching;
    // It takes a while until it watches.
    std::string said;
    for (int tries = 0; tries < 200 && said.empty(); ++tries) {
        pane.click("fmtRGB8Bit");
        said = watching.said();
    }
    EXPECT_THAT(said, testing::HasSubstr(" FormatRGB8: "));
    pane.click("_showStereoStatus");
    pane.choose("decodeThreads", 1);
    said.clear();
    for (int tries = 0; tries < 200 && said.find("CPUM") == std::string::npos; ++tries) said += watching.said();
    EXPECT_THAT(said, testing::HasSubstr("Z ShowStereoStatusMenu: on -> off\n"));
    EXPECT_THAT(said, testing::HasSubstr("Z StereoStatusMenuViewChanged\n"));
    EXPECT_THAT(said, testing::HasSubstr("Z CPUM: missing -> 1\n"));
    [pool release];
}

}  // namespace
}  // namespace vantrel::host

int main(int argc, char **argv) {
    // Its Final Cut Pro is none of the machine's.
    vantrel::PrivateMachine::enter();
    return vantrel::host::runTests(argc, argv);
}

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/gnustep/DefaultsLock.h"
#include "platform/gnustep/GNUstepPreferences.h"
#include "platform/gnustep/PropertyList.h"
#include "platform/memory/Journal.h"
#include "platform/memory/MemorySystem.h"
#include "platform/posix/Patience.h"
#include "platform/posix/SystemCalls.h"
#include "tests/platform/gnustep/CodecDomain.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::gnustep {
namespace {

using testing::HasSubstr;
using testing::SizeIs;

/// The platform's own tool `defaults`, as a process of its own, and the store, on the same defaults folder.
struct DefaultsToolTest : testing::Test {
    DefaultsToolTest() { EXPECT_EQ(std::system(("'" GNUSTEP_HOME "' " + home.path).c_str()), 0); }

    /// Starts `defaults` with `arguments`.
    pid_t start(const std::vector<std::string>& arguments, int output = -1) {
        const pid_t child = fork();
        if (child != 0) return child;
        setenv("GNUSTEP_CONFIG_FILE", (home / "GNUstep.conf").c_str(), 1);
        if (output >= 0) dup2(output, STDOUT_FILENO);
        std::vector<char*> words{const_cast<char*>("defaults")};
        for (const auto& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
        words.push_back(nullptr);
        execvp("defaults", words.data());
        _exit(127);
    }

    static bool succeeds(pid_t child) {
        int status = -1;
        return waitpid(child, &status, 0) == child && status == 0;
    }

    void toolWrites(const std::string& key, const std::string& value) {
        EXPECT_TRUE(succeeds(start({"write", std::string(appID), key, value})));
    }

    /// What `defaults read` says of `key`, without the domain and the key in front of it.
    std::string toolReads(const std::string& key) {
        std::array<int, 2> ends{};
        EXPECT_EQ(pipe(ends.data()), 0);
        const pid_t child = start({"read", std::string(appID), key}, ends[1]);
        close(ends[1]);
        std::string text;
        std::array<char, 256> buffer{};
        for (ssize_t got = 0; (got = read(ends[0], buffer.data(), buffer.size())) > 0;) {
            text.append(buffer.data(), static_cast<std::size_t>(got));
        }
        close(ends[0]);
        EXPECT_TRUE(succeeds(child));
        const std::string before = std::string(appID) + ' ' + key + ' ';
        EXPECT_TRUE(text.starts_with(before) && text.ends_with('\n')) << text;
        return text.size() > before.size() ? text.substr(before.size(), text.size() - before.size() - 1) : "";
    }

    void write(std::string_view key, const NewPreferenceValue& value) {
        preferences.setAppValue(key, value, appID);
        EXPECT_TRUE(preferences.synchronize(appID));
    }

    std::string text(std::string_view key) {
        const auto value = preferences.copyAppValue(key, appID);
        const auto* found = std::get_if<std::string>(&value);
        return found ? *found : "no text";
    }

    posix::TemporaryFolder home;
    memory::Journal journal;
    memory::MemoryLog log{journal};
    GNUstepPreferences preferences{home / "Defaults", log};
};

TEST_F(DefaultsToolTest, ItReadsWhatTheStoreWrote) {
    write("flag", true);
    write("off", false);
    write("number", -46L);
    write("text", std::string("/Library/LUTs"));
    EXPECT_EQ(toolReads("flag"), "1");
    EXPECT_EQ(toolReads("off"), "0");
    EXPECT_EQ(toolReads("number"), "-46");
    EXPECT_EQ(toolReads("text"), "/Library/LUTs");
}

TEST_F(DefaultsToolTest, ItReadsEveryTextAsItWasTyped) {
    write("emoji", std::string("/a/😀"));
    write("escape", std::string("C:\\U0041"));
    write("markup", std::string("<&>"));
    write("control", std::string("a\x01"
                                 "b"));
    EXPECT_EQ(toolReads("emoji"), "/a/😀");
    EXPECT_EQ(toolReads("escape"), "C:\\U0041");
    EXPECT_EQ(toolReads("markup"), "<&>");
    EXPECT_EQ(toolReads("control"),
              "a\x01"
              "b");
}

TEST_F(DefaultsToolTest, TheStoreReadsWhatItWrote) {
    toolWrites("text", "/Library/LUTs");
    toolWrites("number", "<*I46>");
    toolWrites("flag", "<*BY>");
    toolWrites("list", "(a, b)");
    EXPECT_EQ(text("text"), "/Library/LUTs");
    const auto number = preferences.copyAppValue("number", appID);
    ASSERT_TRUE(std::holds_alternative<Number>(number));
    EXPECT_EQ(std::get<Number>(number).longValue, 46);
    const auto flag = preferences.copyAppValue("flag", appID);
    ASSERT_TRUE(std::holds_alternative<bool>(flag));
    EXPECT_TRUE(std::get<bool>(flag));
    EXPECT_TRUE(std::holds_alternative<OtherType>(preferences.copyAppValue("list", appID)));
}

TEST_F(DefaultsToolTest, ItAndTheStoreReadAFileInTheOldTextStyleAlike) {
    home.makeFolder("Defaults");
    home.write("Defaults/com.vantrel.codec.plist",
               "/* settings */ { plain = /Library/LUTs; // one\n"
               R"("a key" = b; quoted = "a\"b\"\\\101\U00e9é\q"; number = 46; yes = <*BY>; no = <*BN>; )"
               "integer = <*I-46>; real = <*R2.0>; list = (a, <00ff>,); last = c }");
    for (const auto* key : {"plain", "quoted", "number", "last"}) EXPECT_EQ(text(key), toolReads(key)) << key;
    EXPECT_EQ(text("quoted"), "a\"b\"\\Aééq");
    EXPECT_EQ(text("a key"), "b");
    const auto read = [&](std::string_view key) { return preferences.copyAppValue(key, appID); };
    EXPECT_EQ(std::get<bool>(read("yes")), toolReads("yes") == "1");
    EXPECT_EQ(std::get<bool>(read("no")), toolReads("no") == "1");
    EXPECT_EQ(std::get<Number>(read("integer")).longValue, std::stol(toolReads("integer")));
    EXPECT_EQ(std::get<Number>(read("real")).longValue, std::stol(toolReads("real")));

    write("ours", true);
    EXPECT_EQ(toolReads("quoted"), text("quoted"));
    EXPECT_EQ(toolReads("no"), "0");
    EXPECT_EQ(toolReads("integer"), "-46");
    EXPECT_THAT(toolReads("list"), testing::AllOf(HasSubstr("a"), HasSubstr("00ff")));
}

TEST_F(DefaultsToolTest, ItAndTheStoreReadAFileWithZerosBehindTheListAlike) {
    write("path", std::string("/ü"));
    const auto file = "Defaults/com.vantrel.codec.plist";
    home.write(file, home.read(file) + std::string(3, '\0') + " \n" + std::string(1, '\0'));
    EXPECT_EQ(toolReads("path"), "/ü");
    EXPECT_EQ(text("path"), "/ü");
    write("more", true);
    EXPECT_EQ(toolReads("path"), "/ü");
    EXPECT_EQ(home.read(file).find('\0'), std::string::npos);
}

TEST_F(DefaultsToolTest, ATextSurvivesThatItWritesAnotherKey) {
    write("path", std::string("/ü/😀/<&>"));
    toolWrites("other", "x");
    EXPECT_EQ(text("path"), "/ü/😀/<&>");
    // Left to itself, it loses the character that it took apart.
    write("more", true);
    EXPECT_EQ(toolReads("path"), "/ü/😀/<&>");
    toolWrites("other", "y");
    EXPECT_EQ(text("path"), "/ü/😀/<&>");
}

TEST_F(DefaultsToolTest, ItsKeysAndTheStoresStayWhenBothWriteInTurn) {
    toolWrites("theirs", "1");
    write("ours", true);
    toolWrites("theirs", "2");
    write("ours", false);
    EXPECT_EQ(text("theirs"), "2");
    EXPECT_EQ(toolReads("theirs"), "2");
    EXPECT_EQ(toolReads("ours"), "0");
}

TEST_F(DefaultsToolTest, ItWaitsForTheStoresLockThoughThatStoodAsideForAnHour) {
    using Clock = std::chrono::steady_clock;
    const auto begin = Clock::now();
    toolWrites("theirs", "1");
    const auto itsTime = Clock::now() - begin;
    const auto aside = home / "Defaults/.lck/.Vantrel-free";
    std::filesystem::create_directory(aside);
    std::filesystem::last_write_time(aside, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    DefaultsLock lock(posix::SystemCalls::real(), home / "Defaults");
    posix::Patience patience(posix::SystemCalls::real(), 1);
    ASSERT_EQ(lock.take(patience), 0);
    ASSERT_FALSE(std::filesystem::exists(aside));

    const pid_t tool = start({"write", std::string(appID), "theirs", "2"});
    std::this_thread::sleep_for(5 * itsTime);
    EXPECT_EQ(waitpid(tool, nullptr, WNOHANG), 0);
    lock.release();
    EXPECT_TRUE(succeeds(tool));
    EXPECT_EQ(text("theirs"), "2");
}

TEST_F(DefaultsToolTest, NoKeyIsLostWhenBothWriteAtTheSameTime) {
    constexpr long leastWrites = 12;
    constexpr std::size_t toolsAtATime = 6;
    // They also meet one another. However fast they are, as many are started as the store needs for its own writes.
    std::vector<pid_t> tools;
    long theirs = 0;
    long ours = 0;
    while (theirs < leastWrites || ours < leastWrites) {
        tools.push_back(start({"write", std::string(appID), "theirs" + std::to_string(theirs), "x"}));
        ++theirs;
        if (tools.size() < toolsAtATime) continue;
        bool isRunning = true;
        while (isRunning) {
            write("ours" + std::to_string(ours), ours);
            ++ours;
            usleep(1000);
            int status = 0;
            isRunning = waitpid(tools.front(), &status, WNOHANG) == 0;
            EXPECT_TRUE(isRunning || status == 0);
        }
        tools.erase(tools.begin());
    }
    for (const auto tool : tools) EXPECT_TRUE(succeeds(tool));

    const auto list = PropertyList::parse(home.read("Defaults/com.vantrel.codec.plist"));
    ASSERT_TRUE(list);
    EXPECT_THAT(list->keys(), SizeIs(static_cast<std::size_t>(theirs + ours)));
}

}  // namespace
}  // namespace vantrel::gnustep

#include <gmock/gmock.h>

#include <iostream>
#include <sstream>

#include "command/Commands.h"
#include "platform/memory/MemoryFiles.h"
#include "platform/memory/MemoryPreferences.h"
#include "platform/memory/MemorySystem.h"
#include "tests/overrides/MemoryOverrides.h"

namespace vantrel {
namespace {

using memory::Journal;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Preferences that another process changes whenever it can: it switches the look off and on, each time in one write.
class RestlessPreferences : public memory::MemoryPreferences {
public:
    explicit RestlessPreferences(Journal& journal) : MemoryPreferences(journal) { turn(); }

    PreferenceValue copyAppValue(std::string_view key, std::string_view applicationID) override {
        PreferenceValue value = MemoryPreferences::copyAppValue(key, applicationID);
        if (!isInSequence_) turn();
        return value;
    }

private:
    void beginSequence() override { isInSequence_ = true; }

    void endSequence() override {
        isInSequence_ = false;
        turn();
    }

    void turn() {
        isOn_ = !isOn_;
        domain("com.vantrel.codec") = {{"look", isOn_}, {"ColorProcessingPath", Number{isOn_ ? 0xF : 0x7}}};
    }

    bool isInSequence_ = false;
    bool isOn_ = false;
};

class NoFindings : public StoreInspection {
public:
    std::vector<StoreFinding> findings(const std::vector<std::string>&) override { return {}; }
};

/// Tells of two changes.
class TwoLooks : public Watch {
public:
    void run(const Reactions& reactions) override {
        reactions.changed();
        reactions.changed();
    }
};

/// Each command sees one state of the settings, whatever other processes do meanwhile.
struct Commands : testing::Test {
    Commands() : cout_(std::cout.rdbuf(output_.rdbuf())) {}
    ~Commands() override { std::cout.rdbuf(cout_); }

    std::string outputOf(Status (*command)(Context&, const Arguments&), const Arguments& arguments) {
        command(context_, arguments);
        return output_.str();
    }

    Journal journal;

private:
    RestlessPreferences preferences_{journal};
    memory::MemoryOverrides overrides_{journal};
    memory::MemoryProcessors processors_;
    memory::MemoryFiles files_{journal};
    memory::MemoryPropertyLists propertyLists_{journal};
    memory::MemoryAlerts alerts_{journal};
    memory::MemoryLog log_{journal};
    memory::MemoryNotifications notifications_{journal};
    NoFindings inspection_;
    TwoLooks watch_;
    Context context_{
        CommandServices{{preferences_, overrides_, processors_, files_, propertyLists_, alerts_, log_, notifications_},
                        inspection_,
                        watch_}};
    std::ostringstream output_;
    std::streambuf* cout_;
};

TEST_F(Commands, ListShowsOneState) {
    const std::string list = outputOf(vantrel::list, {});
    EXPECT_THAT(list, testing::ContainsRegex("\n  look  *on "));
    EXPECT_THAT(list, testing::ContainsRegex("\n  ColorProcessingPath  *15 "));
}

TEST_F(Commands, ExportWritesOneState) {
    Arguments asJSON;
    asJSON.format = "json";
    const std::string profile = outputOf(exportProfile, asJSON);
    EXPECT_THAT(profile, HasSubstr("\"look\": true"));
    EXPECT_THAT(profile, HasSubstr("\"ColorProcessingPath\": 15"));
    EXPECT_THAT(journal.linesStarting("log "), IsEmpty());
}

TEST_F(Commands, DoctorExaminesOneState) {
    EXPECT_THAT(outputOf(doctor, {}), Not(HasSubstr("look")));
}

TEST_F(Commands, SetStartsFromOneState) {
    Arguments lookOn;
    lookOn.words = {"look", "on"};
    EXPECT_EQ(outputOf(set, lookOn), "look: on (unchanged)\n");
}

TEST_F(Commands, WatchComparesOneStateWithTheNext) {
    const std::string told = outputOf(watch, {});
    EXPECT_THAT(told, HasSubstr("look: on -> off"));
    EXPECT_THAT(told, HasSubstr("ColorProcessingPath: 15 -> 7"));
}

}  // namespace
}  // namespace vantrel

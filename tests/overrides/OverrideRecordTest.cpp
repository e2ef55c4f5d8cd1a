#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "overrides/OverrideRecord.h"
#include "tests/platform/posix/FaultySystemCalls.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel {
namespace {

using posix::FaultySystemCalls;
using posix::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr const char* recordName = "Vantrel/OverrideMetadata.plist";

std::string listOf(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>" + entries +
           "</dict>\n</plist>\n";
}

/// A user's application support folder, and the record class on it.
class OverrideRecordOnDisk : public testing::Test {
protected:
    void writeRecord(const std::string& contents) {
        folder.makeFolder("Vantrel");
        folder.write(recordName, contents);
    }

    std::string record() const { return folder.read(recordName); }

    std::optional<std::int32_t> stored(const char* key) {
        const auto list = gnustep::PropertyList::parse(record());
        return list ? list->intValue(key) : std::nullopt;
    }

    /// One write through `addObjectWithKey`. False when there was no instance or the write failed.
    bool add(std::int32_t value, const char* key) {
        const auto overrides = overridesClass.initFromOverride();
        if (!overrides) return false;
        overrides->addObjectWithKey(value, key);
        return overrides->writeToOverride();
    }

    /// One write through the metadata.
    bool edit(std::int32_t value, const char* key) {
        const auto overrides = overridesClass.initFromOverride();
        if (!overrides) return false;
        auto metadata = overrides->metadata();
        metadata->setObjectForKey(value, key);
        overrides->setMetadata(std::move(metadata));
        return overrides->writeToOverride();
    }

    TemporaryFolder folder;
    FaultySystemCalls calls;
    OverrideRecordClass overridesClass{folder.path, calls};
};

TEST_F(OverrideRecordOnDisk, WithoutARecordThereIsAnInstanceWithEmptyMetadata) {
    const auto overrides = overridesClass.initFromOverride();
    ASSERT_TRUE(overrides);
    EXPECT_EQ(overrides->metadata()->objectForKey("CLSF"), std::nullopt);
    EXPECT_EQ(overrides->metadata()->objectForKey("CPUM"), std::nullopt);
}

TEST_F(OverrideRecordOnDisk, LoadingMakesNoFile) {
    overridesClass.initFromOverride();
    EXPECT_TRUE(folder.names().empty());
}

TEST_F(OverrideRecordOnDisk, TheFirstWriteMakesTheRecordForItsUserAlone) {
    EXPECT_TRUE(add(3, "CPUM"));
    EXPECT_EQ(stored("CPUM"), 3);
    struct stat status;
    ASSERT_EQ(::stat((folder / recordName).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600U);
}

TEST_F(OverrideRecordOnDisk, TheFoldersAboveItAreMadeWhenTheyAreMissing) {
    OverrideRecordClass elsewhere{folder / "Library/ApplicationSupport", calls};
    const auto overrides = elsewhere.initFromOverride();
    ASSERT_TRUE(overrides);
    overrides->addObjectWithKey(1, "CLSF");
    EXPECT_TRUE(overrides->writeToOverride());
    EXPECT_THAT(folder.read("Library/ApplicationSupport/Vantrel/OverrideMetadata.plist"), HasSubstr("CLSF"));
}

TEST_F(OverrideRecordOnDisk, BothWaysOfWritingStoreTheSame) {
    EXPECT_TRUE(add(7, "CPUM"));
    const auto added = record();
    EXPECT_TRUE(edit(7, "CPUM"));
    EXPECT_EQ(record(), added);
}

TEST_F(OverrideRecordOnDisk, AnInstanceThatIsDroppedUnwrittenLeavesTheRecordAlone) {
    writeRecord(listOf("<key>CPUM</key><integer>2</integer>"));
    const auto before = record();
    overridesClass.initFromOverride()->addObjectWithKey(5, "CPUM");
    EXPECT_EQ(record(), before);
}

TEST_F(OverrideRecordOnDisk, MetadataThatIsNotHandedBackIsNotWritten) {
    writeRecord(listOf("<key>CPUM</key><integer>2</integer>"));
    const auto overrides = overridesClass.initFromOverride();
    overrides->metadata()->setObjectForKey(5, "CPUM");
    EXPECT_TRUE(overrides->writeToOverride());
    EXPECT_EQ(stored("CPUM"), 2);
}

TEST_F(OverrideRecordOnDisk, EntriesOfEveryTypeUnderOtherKeysSurviveAnyNumberOfWrites) {
    const std::string others =
        "<key>array</key><array><integer>1</integer><string>two</string></array>"
        "<key>data</key><data>AAEC</data>"
        "<key>date</key><date>2100-11-21T00:00:00Z</date>"
        "<key>dictionary</key><dict><key>CLSF</key><integer>9</integer></dict>"
        "<key>false</key><false/>"
        "<key>real</key><real>0.10000000000000001</real>"
        "<key>text</key><string>&lt;&amp;&#13; \xE6\xBC\xA2</string>"
        "<key>unsigned</key><integer>18446744073709551615</integer>";
    writeRecord(listOf(others + "<key>CLSF</key><integer>0</integer>"));
    const auto before = gnustep::PropertyList::parse(record());
    for (std::int32_t round = 0; round < 3; ++round) {
        EXPECT_TRUE(edit(round % 2, "CLSF"));
        EXPECT_TRUE(add(round, "CPUM"));
    }
    const auto after = gnustep::PropertyList::parse(record());
    ASSERT_TRUE(before && after);
    for (const auto& key : before->keys()) {
        if (key == "CLSF") continue;
        EXPECT_TRUE(after->hasSameEntry(key, *before)) << key;
    }
    EXPECT_EQ(after->intValue("CLSF"), 0);
    EXPECT_EQ(after->intValue("CPUM"), 2);
}

TEST_F(OverrideRecordOnDisk, AnEntryThatIsNoNumberIsNoneAndIsReplacedByAWrite) {
    writeRecord(listOf("<key>CPUM</key><array/>"));
    EXPECT_EQ(overridesClass.initFromOverride()->metadata()->objectForKey("CPUM"), std::nullopt);
    EXPECT_TRUE(add(4, "CPUM"));
    EXPECT_EQ(stored("CPUM"), 4);
}

TEST_F(OverrideRecordOnDisk, NumbersAreSigned32Bit) {
    EXPECT_TRUE(add(-2147483647 - 1, "CPUM"));
    EXPECT_EQ(overridesClass.initFromOverride()->metadata()->objectForKey("CPUM"), -2147483647 - 1);
    EXPECT_TRUE(edit(2147483647, "CLSF"));
    EXPECT_EQ(overridesClass.initFromOverride()->metadata()->objectForKey("CLSF"), 2147483647);
}

TEST_F(OverrideRecordOnDisk, AnotherProcessLosesNothingButTheKeyThatIsWritten) {
    EXPECT_TRUE(add(1, "CPUM"));
    const pid_t other = fork();
    if (other == 0) _exit(edit(1, "CLSF") && add(9, "CPUM") && add(77, "ELSE") ? 0 : 1);
    int status = 0;
    ASSERT_EQ(waitpid(other, &status, 0), other);
    ASSERT_EQ(status, 0);

    EXPECT_TRUE(add(2, "CPUM"));
    EXPECT_EQ(stored("CLSF"), 1);
    EXPECT_EQ(stored("ELSE"), 77);
    EXPECT_EQ(stored("CPUM"), 2);
}

TEST_F(OverrideRecordOnDisk, ARecordBehindALinkIsReplacedWhereItIs) {
    folder.makeFolder("Vantrel");
    folder.write("elsewhere.plist", listOf(""));
    std::filesystem::create_symlink("../elsewhere.plist", folder / recordName);
    EXPECT_TRUE(add(1, "CLSF"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder / recordName));
    EXPECT_THAT(folder.read("elsewhere.plist"), HasSubstr("CLSF"));
}

struct Unusable {
    const char* name;
    std::string contents;

    friend void PrintTo(const Unusable& record, std::ostream* out) { *out << record.name; }
};

class UnusableRecord : public OverrideRecordOnDisk, public testing::WithParamInterface<Unusable> {};

TEST_P(UnusableRecord, GivesNothingAndIsNeverOverwritten) {
    writeRecord(GetParam().contents);
    EXPECT_EQ(overridesClass.initFromOverride(), nullptr);
    EXPECT_FALSE(add(1, "CLSF"));
    EXPECT_FALSE(edit(1, "CLSF"));
    EXPECT_EQ(record(), GetParam().contents);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "Vantrel"), {}), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Each, UnusableRecord,
    testing::Values(Unusable{"Empty", ""}, Unusable{"Garbage", "not a list"},
                    Unusable{"CutShort", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>CLSF</key>"},
                    Unusable{"AnArrayAtTheTop", "<?xml version=\"1.0\"?><plist version=\"1.0\"><array/></plist>"},
                    Unusable{"CutShortBinary", "bplist00"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_F(OverrideRecordOnDisk, ARecordThatCantBeOpenedGivesNothing) {
    writeRecord(listOf(""));
    calls.failEvery("open", EACCES);
    EXPECT_EQ(overridesClass.initFromOverride(), nullptr);
}

TEST_F(OverrideRecordOnDisk, ARecordThatCantBeLookedForGivesNothing) {
    writeRecord(listOf(""));
    calls.failEvery("open", EACCES);
    calls.failEvery("lstat", EACCES);
    calls.failEvery("stat", EACCES);
    EXPECT_EQ(overridesClass.initFromOverride(), nullptr);
}

TEST_F(OverrideRecordOnDisk, WhateverCallFailsTheOldRecordOrTheNewOneIsWholeAndNothingElseIsLeft) {
    writeRecord(listOf("<key>CPUM</key><integer>1</integer>"));
    const auto old = record();
    ASSERT_TRUE(add(2, "CPUM"));
    const auto updated = record();
    const auto usual = calls.made();

    for (std::size_t index = 0; index < usual.size(); ++index) {
        writeRecord(old);
        int call = 0;
        FaultySystemCalls faulty;
        faulty.before = [&](const std::string&) {
            if (static_cast<std::size_t>(call++) == index) faulty.fail(usual[index], ENOSPC);
        };
        const auto overrides = OverrideRecordClass(folder.path, faulty).initFromOverride();
        if (overrides) {
            overrides->addObjectWithKey(2, "CPUM");
            overrides->writeToOverride();
        }
        EXPECT_TRUE(record() == old || record() == updated) << usual[index];
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder / "Vantrel"), {}), 1) << usual[index];
    }
}

}  // namespace
}  // namespace vantrel

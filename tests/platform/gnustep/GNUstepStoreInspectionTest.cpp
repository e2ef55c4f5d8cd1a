#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "platform/gnustep/GNUstepStoreInspection.h"
#include "tests/platform/posix/FaultySystemCalls.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::gnustep {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Problem = StoreFinding::Problem;

const std::string list = "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict/></plist>";

/// System calls that tell of files of another user.
class OthersFiles : public posix::FaultySystemCalls {
public:
    int stat(const char* path, struct stat* status) override {
        const int result = FaultySystemCalls::stat(path, status);
        status->st_uid = geteuid() + 1;
        return result;
    }
};

struct GNUstepStoreInspectionTest : testing::Test {
    GNUstepStoreInspectionTest() {
        folder.makeFolder("Defaults");
        folder.makeFolder("Record");
    }

    void write(const std::string& name, const std::string& content, mode_t mode = 0600) const {
        folder.write(name, content);
        chmod((folder / name).c_str(), mode);
    }

    /// What is found: the problem and the path below the folder.
    std::vector<std::pair<Problem, std::string>> found(posix::SystemCalls& calls = posix::SystemCalls::real(),
                                                       const std::vector<std::string>& otherFolders = {}) const {
        GNUstepStoreInspection inspection({folder / "Defaults", "domain", folder / "Record/record.plist", 1000}, calls);
        std::vector<std::pair<Problem, std::string>> findings;
        for (const auto& finding : inspection.findings(otherFolders)) {
            findings.emplace_back(finding.problem, finding.path.substr(folder.path.size() + 1));
        }
        return findings;
    }

    const std::string domain = "Defaults/domain.plist";
    const std::string record = "Record/record.plist";
    posix::TemporaryFolder folder;
};

using Found = std::pair<Problem, std::string>;

TEST_F(GNUstepStoreInspectionTest, FindsNothingWhereNothingIs) {
    EXPECT_THAT(found(), IsEmpty());
    std::filesystem::remove_all(folder / "Defaults");
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(GNUstepStoreInspectionTest, FindsNothingWrongWithSoundFilesOfOnesOwn) {
    write(domain, list);
    write(record, list);
    write("Defaults/other.plist", "garbage", 0666);
    EXPECT_THAT(found(), IsEmpty());
}

TEST_F(GNUstepStoreInspectionTest, FindsWhatIsNoPropertyList) {
    write(domain, "garbage");
    folder.makeFolder(record);
    chmod((folder / record).c_str(), 0700);
    EXPECT_THAT(found(), ElementsAre(Found(Problem::damaged, domain), Found(Problem::damaged, record)));
}

TEST_F(GNUstepStoreInspectionTest, FindsWhatIsTooLongToBeRead) {
    const std::string whole = "<plist><dict></dict></plist>";
    write(domain, whole + std::string(16 * 1024 * 1024, ' '));
    write(record, whole + std::string(1000 - whole.size(), ' '));
    EXPECT_THAT(found(), ElementsAre(Found(Problem::tooLong, domain)));
    write(domain, whole + std::string(1000, ' '));
    write(record, whole + std::string(1001 - whole.size(), ' '));
    EXPECT_THAT(found(), ElementsAre(Found(Problem::tooLong, record)));
}

TEST_F(GNUstepStoreInspectionTest, FindsWhatIsTooLongOnceItIsXML) {
    std::string text = "{";
    for (int number = 0; number < 100; ++number) text += 'k' + std::to_string(number) + "=1;";
    write(domain, text + '}');
    write(record, text + '}');
    EXPECT_THAT(found(), ElementsAre(Found(Problem::tooLong, record)));
}

TEST_F(GNUstepStoreInspectionTest, FindsLinksToTheRecordAndItsFolderButNotToTheDomain) {
    write("list", list);
    std::filesystem::create_symlink(folder / "list", folder / domain);
    std::filesystem::create_symlink(folder / "list", folder / record);
    EXPECT_THAT(found(), ElementsAre(Found(Problem::notFollowed, record)));
    std::filesystem::rename(folder / "Record", folder / "Elsewhere");
    std::filesystem::create_directory_symlink(folder / "Elsewhere", folder / "Record");
    EXPECT_THAT(found(), ElementsAre(Found(Problem::notFollowed, "Record")));
}

TEST_F(GNUstepStoreInspectionTest, FindsFilesInThePlaceOfFolders) {
    std::filesystem::remove(folder / "Record");
    write("Record", list);
    EXPECT_THAT(found(), ElementsAre(Found(Problem::damaged, "Record")));
    GNUstepStoreInspection below({folder / "Record/Deep/Defaults", "domain", folder / "Record/record.plist", 1000});
    EXPECT_EQ(below.findings({}).front().path, folder / "Record");
}

TEST_F(GNUstepStoreInspectionTest, FindsADomainOfAllProgramsThatCantBeReadWhoeverMayReadIt) {
    write("Defaults/NSGlobalDomain.plist", list, 0644);
    EXPECT_THAT(found(), IsEmpty());
    write("Defaults/NSGlobalDomain.plist", "garbage", 0644);
    EXPECT_THAT(found(), ElementsAre(Found(Problem::damaged, "Defaults/NSGlobalDomain.plist")));
}

TEST_F(GNUstepStoreInspectionTest, FindsNothingWrongWithAnEmptyRecordButWithAnEmptyDomain) {
    write(domain, "");
    write(record, "");
    EXPECT_THAT(found(), ElementsAre(Found(Problem::damaged, domain)));
}

TEST_F(GNUstepStoreInspectionTest, FindsWhatMayNotBeRead) {
    write(domain, list);
    posix::FaultySystemCalls calls;
    calls.fail("open", EACCES);
    EXPECT_THAT(found(calls), ElementsAre(Found(Problem::unreadable, domain)));
    calls.fail("stat", EACCES);
    EXPECT_THAT(found(calls), ElementsAre(Found(Problem::unreadable, "Defaults")));
}

TEST_F(GNUstepStoreInspectionTest, FindsWhatBelongsToAnotherUser) {
    write(domain, list);
    OthersFiles calls;
    EXPECT_THAT(found(calls), ElementsAre(Found(Problem::foreign, domain)));
}

TEST_F(GNUstepStoreInspectionTest, FindsWhatOthersMayReadOrWrite) {
    for (const mode_t mode : {0640, 0604, 0620, 0602}) {
        write(domain, list, mode);
        EXPECT_THAT(found(), ElementsAre(Found(Problem::readableByOthers, domain))) << mode;
    }
}

TEST_F(GNUstepStoreInspectionTest, FindsFilesSetAsideInTheirOrder) {
    write(domain + ".unreadable-20240229T235959Z-2", "garbage");
    write(domain + ".unreadable-20240229T235959Z", "garbage");
    write("Defaults/other.plist.unreadable-20240229T235959Z", "garbage");
    EXPECT_THAT(found(), ElementsAre(Found(Problem::setAside, domain + ".unreadable-20240229T235959Z"),
                                     Found(Problem::setAside, domain + ".unreadable-20240229T235959Z-2")));
}

TEST_F(GNUstepStoreInspectionTest, FindsUnfinishedFilesOfDeadProcessesInEachFolder) {
    folder.makeFolder("Enablers");
    for (const std::string inside : {"Defaults", "Record", "Enablers"})
        write(inside + "/.Vantrel-unfinished-a1B2c3", "");
    EXPECT_THAT(found(posix::SystemCalls::real(), {folder / "Enablers"}),
                ElementsAre(Found(Problem::unfinished, "Defaults/.Vantrel-unfinished-a1B2c3"),
                            Found(Problem::unfinished, "Record/.Vantrel-unfinished-a1B2c3"),
                            Found(Problem::unfinished, "Enablers/.Vantrel-unfinished-a1B2c3")));
    EXPECT_TRUE(std::filesystem::exists(folder / "Defaults/.Vantrel-unfinished-a1B2c3"));
}

TEST_F(GNUstepStoreInspectionTest, FindsALockThatIsOlderThanTwentySeconds) {
    const std::string lock = "Defaults/.lck/.GNUstepDefaults.lck";
    folder.makeFolder(lock);
    EXPECT_THAT(found(), IsEmpty());
    const auto now = std::filesystem::file_time_type::clock::now();
    std::filesystem::last_write_time(folder / lock, now - std::chrono::seconds(21));
    EXPECT_THAT(found(), ElementsAre(Found(Problem::abandonedLock, lock)));
}

}  // namespace
}  // namespace vantrel::gnustep

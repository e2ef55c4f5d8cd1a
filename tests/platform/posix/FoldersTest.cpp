#include <gmock/gmock.h>
#include <sys/stat.h>

#include "platform/posix/Folders.h"
#include "tests/platform/posix/FaultySystemCalls.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::posix {
namespace {

using testing::ElementsAre;

struct FoldersTest : testing::Test {
    TemporaryFolder folder;
    FaultySystemCalls calls;
};

TEST_F(FoldersTest, AreMadeWithThoseAboveThemForTheirUserAlone) {
    EXPECT_EQ(makeFolders(calls, folder / "one/two"), 0);
    for (const char* name : {"one", "one/two"}) {
        struct stat status {};
        ASSERT_EQ(stat((folder / name).c_str(), &status), 0) << name;
        EXPECT_EQ(status.st_mode, S_IFDIR | 0700U) << name;
    }
}

TEST_F(FoldersTest, OnesThatAreThereAreLeftAlone) {
    EXPECT_EQ(makeFolders(calls, folder.path), 0);
    EXPECT_THAT(calls.made(), ElementsAre("mkdir"));
}

TEST_F(FoldersTest, EachIsFlushedInTheOneAboveBeforeAnotherIsMadeInIt) {
    ASSERT_EQ(makeFolders(calls, folder / "one/two"), 0);
    EXPECT_THAT(calls.made(),
                ElementsAre("mkdir", "mkdir", "open", "fsync", "close", "mkdir", "open", "fsync", "close"));
}

TEST_F(FoldersTest, OneThatCantBeFlushedIsAFailure) {
    calls.fail("fsync", EIO);
    EXPECT_EQ(makeFolders(calls, folder / "one"), -1);
    EXPECT_EQ(errno, EIO);
}

TEST_F(FoldersTest, AFileSystemWithNothingToFlushIsNoFailure) {
    calls.fail("fsync", EINVAL);
    EXPECT_EQ(makeFolders(calls, folder / "one"), 0);
}

TEST_F(FoldersTest, InsideAFileThereIsNone) {
    folder.write("file", "");
    EXPECT_EQ(makeFolders(calls, folder / "file/one/two"), -1);
    EXPECT_EQ(errno, ENOTDIR);
}

TEST(FolderOf, IsWhatStandsBeforeTheLastName) {
    EXPECT_EQ(folderOf("/one/two"), "/one");
    EXPECT_EQ(folderOf("/one"), "/");
    EXPECT_EQ(folderOf("one/two"), "one");
    EXPECT_EQ(folderOf("one"), ".");
}

}  // namespace
}  // namespace vantrel::posix

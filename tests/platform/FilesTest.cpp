// What every system's files do, in the same situations.
#include "tests/platform/FilesTest.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel {
namespace {

using posix::TemporaryFolder;
using testing::IsEmpty;
using testing::Not;
using testing::Optional;
using testing::UnorderedElementsAre;

struct stat statusOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status;
}

bool isLink(const std::string& path) {
    return S_ISLNK(statusOf(path).st_mode);
}

/// A folder that holds the file "own" and nothing else.
struct FilesTest : testing::Test {
    FilesTest() { folder.write("own", "its content"); }

    void makeLink(const std::string& leadsTo, const std::string& name) {
        ASSERT_EQ(symlink(leadsTo.c_str(), (folder / name).c_str()), 0);
    }

    FileFailure move(const std::string& from, const std::string& to) {
        return files.moveItemAtPath(folder / from, folder / to);
    }

    FileFailure copy(const std::string& from, const std::string& to) {
        return files.copyItemAtPath(folder / from, folder / to);
    }

    FileFailure remove(const std::string& name) { return files.removeItemAtPath(folder / name); }

    Files& files = filesUnderTest();
    TemporaryFolder folder;
};

// What exists

using FilesExistence = FilesTest;

TEST_F(FilesExistence, AFileExists) {
    EXPECT_TRUE(files.fileExistsAtPath(folder / "own"));
}

TEST_F(FilesExistence, AFolderExists) {
    EXPECT_TRUE(files.fileExistsAtPath(folder.path));
}

TEST_F(FilesExistence, ALinkToAFileExists) {
    makeLink("own", "link");
    EXPECT_TRUE(files.fileExistsAtPath(folder / "link"));
}

TEST_F(FilesExistence, ALinkThatLeadsNowhereDoesNotExist) {
    makeLink("missing", "link");
    EXPECT_FALSE(files.fileExistsAtPath(folder / "link"));
}

TEST_F(FilesExistence, AMissingFileDoesNotExist) {
    EXPECT_FALSE(files.fileExistsAtPath(folder / "missing"));
}

TEST_F(FilesExistence, APathThatGoesOnBehindAZeroDoesNotExist) {
    EXPECT_FALSE(files.fileExistsAtPath((folder / "own") + std::string(1, '\0') + "703.txt"));
}

TEST_F(FilesExistence, APathOfAnyBytesIsLookedAt) {
    for (const std::string name : {"\xFF", "own\xC3", "\xED\xA0\x80", "\xC0\xAE"}) {
        EXPECT_FALSE(files.fileExistsAtPath(folder / name));
    }
    folder.write("d\xC3\xA9j\xC3\xA0 \xE6\xBC\xA2 \xF0\x9F\x8E\xAC", "");
    EXPECT_TRUE(files.fileExistsAtPath(folder / "d\xC3\xA9j\xC3\xA0 \xE6\xBC\xA2 \xF0\x9F\x8E\xAC"));
}

// Comparing

using FilesComparison = FilesTest;

TEST_F(FilesComparison, FilesOfOneContentAreEqual) {
    folder.write("copy", "its content");
    makeLink("copy", "link");
    EXPECT_TRUE(files.contentsEqualAtPath(folder / "own", folder / "copy"));
    EXPECT_TRUE(files.contentsEqualAtPath(folder / "own", folder / "link"));
}

TEST_F(FilesComparison, FilesThatDifferAtTheirEndAreNot) {
    folder.write("longer", "its content\n");
    folder.write("other", "its contenT");
    EXPECT_FALSE(files.contentsEqualAtPath(folder / "own", folder / "longer"));
    EXPECT_FALSE(files.contentsEqualAtPath(folder / "own", folder / "other"));
}

TEST_F(FilesComparison, WhatCantBeReadEqualsNothing) {
    EXPECT_FALSE(files.contentsEqualAtPath(folder / "missing", folder / "missing"));
    EXPECT_FALSE(files.contentsEqualAtPath(folder.path, folder.path));
    EXPECT_FALSE(files.contentsEqualAtPath(folder / "own", folder / "missing"));
}

// Moving

using FilesMove = FilesTest;

TEST_F(FilesMove, RenamesTheVeryFile) {
    const auto number = statusOf(folder / "own").st_ino;
    EXPECT_EQ(move("own", "saved"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("saved"));
    EXPECT_EQ(statusOf(folder / "saved").st_ino, number);
}

TEST_F(FilesMove, TakesALinkAndNotWhatItLeadsTo) {
    makeLink("own", "link");
    EXPECT_EQ(move("link", "saved"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "saved"));
    EXPECT_TRUE(isLink(folder / "saved"));
}

TEST_F(FilesMove, OfAMissingFileFails) {
    EXPECT_NE(move("missing", "saved"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

TEST_F(FilesMove, ToAMissingFolderFails) {
    EXPECT_NE(move("own", "none/saved"), std::nullopt);
    EXPECT_EQ(folder.read("own"), "its content");
}

TEST_F(FilesMove, NeverOverwritesAFile) {
    folder.write("saved", "precious");
    EXPECT_NE(move("own", "saved"), std::nullopt);
    EXPECT_EQ(folder.read("own"), "its content");
    EXPECT_EQ(folder.read("saved"), "precious");
}

TEST_F(FilesMove, NeverOverwritesAnEmptyFolder) {
    folder.makeFolder("saved");
    folder.makeFolder("other");
    EXPECT_NE(move("other", "saved"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "saved", "other"));
}

TEST_F(FilesMove, NeverOverwritesALinkThatLeadsNowhere) {
    makeLink("missing", "saved");
    EXPECT_NE(move("own", "saved"), std::nullopt);
    EXPECT_TRUE(isLink(folder / "saved"));
    EXPECT_EQ(folder.read("own"), "its content");
}

TEST_F(FilesMove, ToItselfFailsAndKeepsTheFile) {
    EXPECT_NE(move("own", "own"), std::nullopt);
    EXPECT_EQ(folder.read("own"), "its content");
}

// Copying

using FilesCopy = FilesTest;

TEST_F(FilesCopy, HasTheContentAndLeavesTheOriginal) {
    EXPECT_EQ(copy("own", "copy"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "copy"));
    EXPECT_EQ(folder.read("copy"), "its content");
    EXPECT_EQ(folder.read("own"), "its content");
    EXPECT_NE(statusOf(folder / "copy").st_ino, statusOf(folder / "own").st_ino);
}

TEST_F(FilesCopy, OfAnEmptyFileIsEmpty) {
    folder.write("own", "");
    EXPECT_EQ(copy("own", "copy"), std::nullopt);
    EXPECT_EQ(folder.read("copy"), "");
}

TEST_F(FilesCopy, OfALargeFileIsWhole) {
    std::string contents;
    for (int number = 0; contents.size() < 1'000'000; ++number) contents += std::to_string(number) + '\0';
    folder.write("own", contents);
    EXPECT_EQ(copy("own", "copy"), std::nullopt);
    EXPECT_EQ(folder.read("copy"), contents);
}

class FilesCopyMode : public FilesTest, public testing::WithParamInterface<mode_t> {};

TEST_P(FilesCopyMode, IsThatOfTheOriginalWhateverTheMask) {
    const mode_t mask = umask(077);
    ASSERT_EQ(chmod((folder / "own").c_str(), GetParam()), 0);
    EXPECT_EQ(copy("own", "copy"), std::nullopt);
    EXPECT_EQ(statusOf(folder / "copy").st_mode & 07777, GetParam());
    umask(mask);
}

INSTANTIATE_TEST_SUITE_P(Modes, FilesCopyMode, testing::Values(0400, 0444, 0600, 0644, 0666, 0755, 0777));

TEST_F(FilesCopy, DoesNotRunAsItsOwner) {
    ASSERT_EQ(chmod((folder / "own").c_str(), 06755), 0);
    EXPECT_EQ(copy("own", "copy"), std::nullopt);
    EXPECT_EQ(statusOf(folder / "copy").st_mode & 07777, 0755U);
}

TEST_F(FilesCopy, OfALinkIsACopyOfWhatItLeadsTo) {
    folder.makeFolder("other");
    folder.write("other/theirs", "from elsewhere");
    makeLink("other/theirs", "link");
    makeLink("link", "link to the link");
    EXPECT_EQ(copy("link to the link", "copy"), std::nullopt);
    EXPECT_FALSE(isLink(folder / "copy"));
    EXPECT_EQ(folder.read("copy"), "from elsewhere");
}

TEST_F(FilesCopy, OfALinkThatLeadsNowhereFails) {
    makeLink("missing", "link");
    EXPECT_NE(copy("link", "copy"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "link"));
}

TEST_F(FilesCopy, MayHaveTheLongestOfNames) {
    const std::string name(255, 'n');
    EXPECT_EQ(copy("own", name), std::nullopt);
    EXPECT_EQ(folder.read(name), "its content");
}

TEST_F(FilesCopy, OfAMissingFileFails) {
    EXPECT_NE(copy("missing", "copy"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

TEST_F(FilesCopy, ToAMissingFolderFails) {
    EXPECT_NE(copy("own", "none/copy"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

TEST_F(FilesCopy, NeverOverwritesAFile) {
    folder.write("copy", "precious");
    EXPECT_NE(copy("own", "copy"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "copy"));
    EXPECT_EQ(folder.read("copy"), "precious");
}

TEST_F(FilesCopy, NeverOverwritesALinkThatLeadsNowhere) {
    makeLink("missing", "copy");
    EXPECT_NE(copy("own", "copy"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "copy"));
    EXPECT_TRUE(isLink(folder / "copy"));
}

TEST_F(FilesCopy, ToItselfFailsAndKeepsTheFile) {
    EXPECT_NE(copy("own", "own"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
    EXPECT_EQ(folder.read("own"), "its content");
}

TEST_F(FilesCopy, OfAFolderFails) {
    folder.makeFolder("other");
    EXPECT_NE(copy("other", "copy"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "other"));
}

TEST_F(FilesCopy, OfAPipeFailsInsteadOfWaiting) {
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_NE(copy("pipe", "copy"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "pipe"));
}

// Deleting

using FilesRemoval = FilesTest;

TEST_F(FilesRemoval, TakesTheFileAway) {
    EXPECT_EQ(remove("own"), std::nullopt);
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(FilesRemoval, TakesALinkAndNotWhatItLeadsTo) {
    folder.makeFolder("other");
    makeLink("own", "link");
    makeLink("other", "link to the folder");
    makeLink("missing", "link to nowhere");
    EXPECT_EQ(remove("link"), std::nullopt);
    EXPECT_EQ(remove("link to the folder"), std::nullopt);
    EXPECT_EQ(remove("link to nowhere"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "other"));
}

TEST_F(FilesRemoval, OfAMissingFileFails) {
    EXPECT_NE(remove("missing"), std::nullopt);
}

TEST_F(FilesRemoval, OfAFolderFailsEmptyOrFull) {
    folder.makeFolder("empty");
    folder.makeFolder("full");
    folder.write("full/precious", "its content");
    EXPECT_NE(remove("empty"), std::nullopt);
    EXPECT_NE(remove("full"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "empty", "full"));
    EXPECT_EQ(folder.read("full/precious"), "its content");
}

// What fails, whatever is asked

TEST_F(FilesTest, ANameTooLongFailsInEveryOperation) {
    const std::string tooLong(256, 'n');
    EXPECT_FALSE(files.fileExistsAtPath(folder / tooLong));
    EXPECT_NE(move("own", tooLong), std::nullopt);
    EXPECT_NE(copy("own", tooLong), std::nullopt);
    EXPECT_NE(remove(tooLong), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

TEST_F(FilesTest, AFailureSaysSomething) {
    folder.makeFolder("other");
    folder.write("saved", "precious");
    const FileFailure failures[] = {move("missing", "elsewhere"),
                                    move("own", "saved"),
                                    copy("missing", "elsewhere"),
                                    copy("own", "saved"),
                                    copy("other", "copy"),
                                    remove("missing"),
                                    remove("other")};
    for (const auto& failure : failures) {
        EXPECT_THAT(failure, Optional(Not(IsEmpty())));
    }
}

}  // namespace
}  // namespace vantrel

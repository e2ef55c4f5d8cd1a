#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "platform/posix/PosixFiles.h"
#include "tests/platform/FilesTest.h"
#include "tests/platform/posix/FaultySystemCalls.h"
#include "tests/platform/posix/Processes.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel {

Files& filesUnderTest() {
    static posix::PosixFiles files;
    return files;
}

}  // namespace vantrel

namespace vantrel::posix {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::Optional;
using testing::StartsWith;
using testing::UnorderedElementsAre;

/// A folder that holds the file "own" and nothing else, and files whose system calls can be made to fail.
struct PosixFilesTest : testing::Test {
    PosixFilesTest() { folder.write("own", "its content"); }

    void makeLink(const std::string& leadsTo, const std::string& name) {
        ASSERT_EQ(symlink(leadsTo.c_str(), (folder / name).c_str()), 0);
    }

    /// What `files` says of "own" when it couldn't be `what`, "moved" or "copied", to somewhere in the folder.
    std::string couldNotBe(const std::string& what, const std::string& why) const {
        return "“own” couldn’t be " + what + " to “" + folder.name() + "” because " + why;
    }

    TemporaryFolder folder;
    FaultySystemCalls calls;
    PosixFiles files{calls};
};

// What exists

using PosixFilesExistence = PosixFilesTest;

TEST_F(PosixFilesExistence, WhatMayNotBeLookedAtDoesNotExist) {
    calls.fail("stat", EACCES);
    EXPECT_FALSE(files.fileExistsAtPath(folder / "own"));
}

// Moving

using PosixFilesMove = PosixFilesTest;

TEST_F(PosixFilesMove, IsOneSystemCallThatIsWrittenThrough) {
    EXPECT_EQ(files.moveItemAtPath(folder / "own", folder / "saved"), std::nullopt);
    EXPECT_THAT(calls.made(), ElementsAre("renameNoReplace", "open", "fsync", "close"));
}

TEST_F(PosixFilesMove, BetweenTwoFoldersIsWrittenThroughInBoth) {
    folder.makeFolder("other");
    EXPECT_EQ(files.moveItemAtPath(folder / "own", folder / "other/own"), std::nullopt);
    EXPECT_EQ(calls.count("fsync"), 2);
}

TEST_F(PosixFilesMove, ThatCantBeWrittenThroughIsTakenBack) {
    folder.makeFolder("other");
    for (const int nth : {1, 2}) {
        calls.failNth("fsync", nth, EIO);
        EXPECT_THAT(files.moveItemAtPath(folder / "own", folder / "other/own"),
                    Optional("“own” couldn’t be moved to “other” because the disk reports an error here: " +
                             (folder / "other")));
        EXPECT_EQ(folder.read("own"), "its content");
    }
}

TEST_F(PosixFilesMove, InAFolderThatCantBeReadIsDoneAllTheSame) {
    calls.failEvery("open", EACCES);
    EXPECT_EQ(files.moveItemAtPath(folder / "own", folder / "saved"), std::nullopt);
}

/// Not in the table of all systems: GNUstep's NSFileManager, on which macOS's files are tested, misses such a link.
TEST_F(PosixFilesMove, TakesALinkThatLeadsNowhere) {
    makeLink("missing", "link");
    EXPECT_EQ(files.moveItemAtPath(folder / "link", folder / "saved"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "saved"));
}

TEST_F(PosixFilesMove, OfAMissingFileFailsAndNamesTheFile) {
    EXPECT_THAT(files.moveItemAtPath(folder / "missing", folder / "saved"),
                Optional("“missing” couldn’t be moved to “" + folder.name() +
                         "” because this doesn’t exist: " + (folder / "missing")));
}

TEST_F(PosixFilesMove, ToAMissingFolderFailsAndNamesTheFolder) {
    EXPECT_THAT(files.moveItemAtPath(folder / "own", folder / "none/saved"),
                Optional("“own” couldn’t be moved to “none” because this doesn’t exist: " + (folder / "none")));
    EXPECT_EQ(folder.read("own"), "its content");
}

TEST_F(PosixFilesMove, NeverOverwritesAFile) {
    folder.write("saved", "precious");
    EXPECT_THAT(files.moveItemAtPath(folder / "own", folder / "saved"),
                Optional(couldNotBe("moved", "this already exists: " + (folder / "saved"))));
    EXPECT_EQ(folder.read("own"), "its content");
    EXPECT_EQ(folder.read("saved"), "precious");
}

TEST_F(PosixFilesMove, NeverOverwritesAnEmptyFolder) {
    folder.makeFolder("saved");
    folder.makeFolder("other");
    EXPECT_THAT(files.moveItemAtPath(folder / "other", folder / "saved"),
                Optional(EndsWith("because this already exists: " + (folder / "saved"))));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "saved", "other"));
}

TEST_F(PosixFilesMove, NeverOverwritesALinkThatLeadsNowhere) {
    makeLink("missing", "saved");
    EXPECT_THAT(files.moveItemAtPath(folder / "own", folder / "saved"),
                Optional(couldNotBe("moved", "this already exists: " + (folder / "saved"))));
    EXPECT_EQ(folder.read("own"), "its content");
}

TEST_F(PosixFilesMove, ToItselfFailsAndKeepsTheFile) {
    EXPECT_THAT(files.moveItemAtPath(folder / "own", folder / "own"), Optional(EndsWith(folder / "own")));
    EXPECT_EQ(folder.read("own"), "its content");
}

TEST_F(PosixFilesMove, DoesNotOverwriteWhatAppearsAtTheLastMoment) {
    calls.before = [&](const std::string&) { folder.write("saved", "precious"); };
    EXPECT_THAT(files.moveItemAtPath(folder / "own", folder / "saved"), Optional(EndsWith(folder / "saved")));
    EXPECT_EQ(folder.read("own"), "its content");
    EXPECT_EQ(folder.read("saved"), "precious");
}

TEST_F(PosixFilesMove, WithoutPermissionNamesTheFolder) {
    calls.fail("renameNoReplace", EACCES);
    EXPECT_THAT(files.moveItemAtPath(folder / "own", folder / "saved"),
                Optional(couldNotBe("moved", "permission is denied here: " + folder.path)));
}

TEST_F(PosixFilesMove, BetweenTwoFoldersWithoutPermissionNamesBoth) {
    calls.fail("renameNoReplace", EACCES);
    EXPECT_THAT(files.moveItemAtPath(folder / "own", "/elsewhere/saved"),
                Optional("“own” couldn’t be moved to “elsewhere” because permission is denied here: " + folder.path +
                         " or /elsewhere"));
}

// Copying

using PosixFilesCopy = PosixFilesTest;

TEST_F(PosixFilesCopy, IsWholeWhenTheSystemMovesAFewBytesAtATime) {
    calls.mostBytesAtOnce = 3;
    EXPECT_EQ(files.copyItemAtPath(folder / "own", folder / "copy"), std::nullopt);
    EXPECT_EQ(folder.read("copy"), "its content");
}

TEST_F(PosixFilesCopy, IsWholeWhenSignalsInterruptIt) {
    calls.mostBytesAtOnce = 3;
    calls.failNth("read", 2, EINTR);
    calls.failNth("write", 1, EINTR);
    calls.failNth("write", 3, EINTR);
    EXPECT_EQ(files.copyItemAtPath(folder / "own", folder / "copy"), std::nullopt);
    EXPECT_EQ(folder.read("copy"), "its content");
}

TEST_F(PosixFilesCopy, OfAMissingFileFailsAndNamesTheFile) {
    EXPECT_THAT(files.copyItemAtPath(folder / "missing", folder / "copy"),
                Optional("“missing” couldn’t be copied to “" + folder.name() +
                         "” because this doesn’t exist: " + (folder / "missing")));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

TEST_F(PosixFilesCopy, ToAMissingFolderFailsAndNamesTheFolder) {
    EXPECT_THAT(files.copyItemAtPath(folder / "own", folder / "none/copy"),
                Optional("“own” couldn’t be copied to “none” because this doesn’t exist: " + (folder / "none")));
}

TEST_F(PosixFilesCopy, NeverOverwritesAFile) {
    folder.write("copy", "precious");
    EXPECT_THAT(files.copyItemAtPath(folder / "own", folder / "copy"),
                Optional(couldNotBe("copied", "this already exists: " + (folder / "copy"))));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "copy"));
    EXPECT_EQ(folder.read("copy"), "precious");
}

TEST_F(PosixFilesCopy, NeverOverwritesALinkThatLeadsNowhere) {
    makeLink("missing", "copy");
    EXPECT_THAT(files.copyItemAtPath(folder / "own", folder / "copy"),
                Optional(couldNotBe("copied", "this already exists: " + (folder / "copy"))));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "copy"));
}

TEST_F(PosixFilesCopy, ToItselfFailsAndKeepsTheFile) {
    EXPECT_THAT(files.copyItemAtPath(folder / "own", folder / "own"), Optional(EndsWith(folder / "own")));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
    EXPECT_EQ(folder.read("own"), "its content");
}

TEST_F(PosixFilesCopy, OfAFolderFailsAndSaysSo) {
    folder.makeFolder("other");
    EXPECT_THAT(files.copyItemAtPath(folder / "other", folder / "copy"),
                Optional(EndsWith("because this is a folder: " + (folder / "other"))));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "other"));
}

TEST_F(PosixFilesCopy, OfAPipeFailsInsteadOfWaiting) {
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THAT(files.copyItemAtPath(folder / "pipe", folder / "copy"),
                Optional(EndsWith("because this is no ordinary file: " + (folder / "pipe"))));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "pipe"));
}

TEST_F(PosixFilesCopy, IsSeenUnderItsNameOnlyOnceItIsWholeAndOnTheDisk) {
    calls.after = [&](const std::string& name) {
        EXPECT_EQ(folder.names().contains("copy"), calls.count("renameNoReplace") == 1) << "after " << name;
    };
    EXPECT_EQ(files.copyItemAtPath(folder / "own", folder / "copy"), std::nullopt);
    EXPECT_THAT(calls.made(),
                ElementsAre("open", "fstat", "listFolder", "mkostemp", "flock", "fstat", "read", "write", "read",
                            "fchmod", "fsync", "renameNoReplace", "open", "fsync", "close", "close", "close"));
}

TEST_F(PosixFilesCopy, TheNextOneRemovesWhatAKilledOneLeft) {
    EXPECT_TRUE(killedBeforeCall(
        9, [&](SystemCalls& killing) { PosixFiles(killing).copyItemAtPath(folder / "own", folder / "copy"); }));
    EXPECT_EQ(folder.names().size(), 2U);
    EXPECT_EQ(files.copyItemAtPath(folder / "own", folder / "copy"), std::nullopt);
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "copy"));
}

TEST_F(PosixFilesCopy, IsHiddenUntilItIsWhole) {
    calls.before = [&](const std::string& name) {
        if (name != "fchmod") return;
        auto names = folder.names();
        names.erase("own");
        EXPECT_THAT(names, ElementsAre(StartsWith(".Vantrel-")));
    };
    EXPECT_EQ(files.copyItemAtPath(folder / "own", folder / "copy"), std::nullopt);
}

TEST_F(PosixFilesCopy, ThatCantBeWrittenThroughIsTakenBack) {
    calls.failNth("fsync", 2, EIO);
    EXPECT_THAT(files.copyItemAtPath(folder / "own", folder / "copy"),
                Optional(couldNotBe("copied", "the disk reports an error here: " + folder.path)));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

/// Every system call of a copy that can make it fail, in order, and whose path is then told.
struct CopyFailure {
    const char* call;
    const char* where;

    friend std::ostream& operator<<(std::ostream& out, const CopyFailure& failure) { return out << failure.call; }
};

class PosixFilesFailingCopy : public PosixFilesTest, public testing::WithParamInterface<CopyFailure> {};

TEST_P(PosixFilesFailingCopy, SaysWhereAndLeavesNothing) {
    const std::string where = GetParam().where;
    calls.fail(GetParam().call, EIO);
    EXPECT_THAT(files.copyItemAtPath(folder / "own", folder / "copy"),
                Optional(couldNotBe("copied", "the disk reports an error here: " +
                                                  (where == "folder" ? folder.path : folder / where))));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
    EXPECT_EQ(folder.read("own"), "its content");
}

INSTANTIATE_TEST_SUITE_P(Calls, PosixFilesFailingCopy,
                         testing::Values(CopyFailure{"open", "own"}, CopyFailure{"fstat", "own"},
                                         CopyFailure{"mkostemp", "folder"}, CopyFailure{"read", "own"},
                                         CopyFailure{"write", "copy"}, CopyFailure{"fchmod", "copy"},
                                         CopyFailure{"fsync", "copy"}, CopyFailure{"renameNoReplace", "copy"}),
                         [](const auto& test) { return std::string(test.param.call); });

TEST_F(PosixFilesCopy, OnAFullDiskHalfWayLeavesNothing) {
    calls.mostBytesAtOnce = 3;
    calls.failNth("write", 3, ENOSPC);
    EXPECT_THAT(files.copyItemAtPath(folder / "own", folder / "copy"),
                Optional(couldNotBe("copied", "the disk is full here: " + (folder / "copy"))));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

TEST_F(PosixFilesCopy, ClosesWhatItOpensHoweverItEnds) {
    for (const std::string call : {"none", "fstat", "mkostemp", "read", "write", "fchmod", "fsync", "close"}) {
        FaultySystemCalls counted;
        counted.fail(call, EIO);
        PosixFiles(counted).copyItemAtPath(folder / "own", folder / "copy");
        const int opened = counted.count("open") + counted.count("mkostemp") - (call == "mkostemp" ? 1 : 0);
        EXPECT_EQ(counted.count("close"), opened) << call;
        unlink((folder / "copy").c_str());
    }
}

// Deleting

using PosixFilesRemoval = PosixFilesTest;

TEST_F(PosixFilesRemoval, OfAMissingFileFailsAndNamesIt) {
    EXPECT_THAT(files.removeItemAtPath(folder / "missing"),
                Optional("“missing” couldn’t be removed because this doesn’t exist: " + (folder / "missing")));
}

TEST_F(PosixFilesRemoval, OfAFolderFailsAndSaysSo) {
    folder.makeFolder("other");
    EXPECT_THAT(files.removeItemAtPath(folder / "other"),
                Optional("“other” couldn’t be removed because this is a folder: " + (folder / "other")));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "other"));
}

TEST_F(PosixFilesRemoval, WithoutPermissionSaysSo) {
    calls.fail("unlink", EACCES);
    EXPECT_THAT(files.removeItemAtPath(folder / "own"),
                Optional("“own” couldn’t be removed because permission is denied here: " + (folder / "own")));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

TEST_F(PosixFilesRemoval, IsWrittenThroughIfThatCanBe) {
    EXPECT_EQ(files.removeItemAtPath(folder / "own"), std::nullopt);
    EXPECT_THAT(calls.made(), ElementsAre("unlink", "open", "fsync", "close"));
    folder.write("own", "its content");
    calls.fail("fsync", EIO);
    EXPECT_EQ(files.removeItemAtPath(folder / "own"), std::nullopt);
}

// Links on the way

/// Below "app" no link is followed; "app/linked" leads to "elsewhere".
struct PosixFilesLinks : PosixFilesTest {
    PosixFilesLinks() {
        folder.makeFolder("app/folder");
        folder.makeFolder("elsewhere/folder");
        folder.write("elsewhere/folder/file", "precious");
        makeLink("../elsewhere", "app/linked");
    }

    static std::string because(const std::string& path) {
        return "because a link leads here that can’t be followed: " + path;
    }

    PosixFiles bounded{calls, folder / "app"};
};

TEST_F(PosixFilesLinks, AreNotFollowedBelowTheFolder) {
    const auto theirs = folder / "app/linked/folder/file";
    const auto why = because(folder / "app/linked");
    EXPECT_THAT(bounded.moveItemAtPath(theirs, folder / "app/folder/file"), Optional(EndsWith(why)));
    EXPECT_THAT(bounded.moveItemAtPath(folder / "own", folder / "app/linked/own"), Optional(EndsWith(why)));
    EXPECT_THAT(bounded.copyItemAtPath(folder / "own", folder / "app/linked/folder/own"), Optional(EndsWith(why)));
    EXPECT_THAT(bounded.removeItemAtPath(theirs), Optional(EndsWith(why)));
    EXPECT_EQ(folder.read("elsewhere/folder/file"), "precious");
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own", "app", "elsewhere"));
    EXPECT_FALSE(files.fileExistsAtPath(folder / "elsewhere/own"));
}

TEST_F(PosixFilesLinks, AreFollowedToTheFolderItselfAndOutsideIt) {
    makeLink("app", "link");
    PosixFiles behindLink(calls, folder / "link");
    EXPECT_EQ(behindLink.copyItemAtPath(folder / "own", folder / "link/folder/own"), std::nullopt);
    EXPECT_EQ(folder.read("app/folder/own"), "its content");
    makeLink("elsewhere", "other");
    EXPECT_EQ(bounded.copyItemAtPath(folder / "other/folder/file", folder / "app/file"), std::nullopt);
    EXPECT_EQ(bounded.removeItemAtPath(folder / "other/folder/file"), std::nullopt);
}

TEST_F(PosixFilesLinks, AreMovedAndRemovedThemselves) {
    EXPECT_EQ(bounded.moveItemAtPath(folder / "app/linked", folder / "app/saved"), std::nullopt);
    EXPECT_EQ(bounded.removeItemAtPath(folder / "app/saved"), std::nullopt);
    EXPECT_EQ(folder.read("elsewhere/folder/file"), "precious");
}

// The reasons

struct Reason {
    int error;
    const char* text;

    friend std::ostream& operator<<(std::ostream& out, const Reason& reason) { return out << reason.text; }
};

class PosixFilesReason : public PosixFilesTest, public testing::WithParamInterface<Reason> {};

TEST_P(PosixFilesReason, IsToldInWords) {
    calls.fail("renameNoReplace", GetParam().error);
    const auto failure = files.moveItemAtPath(folder / "own", folder / "saved");
    EXPECT_THAT(failure, Optional(StartsWith(couldNotBe("moved", std::string(GetParam().text) + ": /"))));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

INSTANTIATE_TEST_SUITE_P(
    Errors, PosixFilesReason,
    testing::Values(Reason{EACCES, "permission is denied here"}, Reason{EBUSY, "this is in use"},
                    Reason{EDQUOT, "your share of the disk is used up here"}, Reason{EEXIST, "this already exists"},
                    Reason{EINVAL, "the disk here can’t rename without the risk of overwriting"},
                    Reason{EIO, "the disk reports an error here"},
                    Reason{ELOOP, "a link leads here that can’t be followed"},
                    Reason{ENAMETOOLONG, "this path or a name in it is too long"},
                    Reason{ENOSPC, "the disk is full here"},
                    Reason{ENOSYS, "the system can’t rename without the risk of overwriting this"},
                    Reason{ENOTDIR, "a part of this path is no folder"},
                    Reason{EPERM, "the system doesn’t permit it here"}, Reason{EROFS, "the disk here can only be read"},
                    Reason{EXDEV, "this is on another disk"}, Reason{EPROTO, "the system reports error 71 here"}));

TEST_F(PosixFilesTest, ANameTooLongFailsInEveryOperation) {
    const std::string tooLong = folder / std::string(256, 'n');
    EXPECT_FALSE(files.fileExistsAtPath(tooLong));
    EXPECT_THAT(files.moveItemAtPath(folder / "own", tooLong), Optional(EndsWith(tooLong)));
    EXPECT_THAT(files.copyItemAtPath(folder / "own", tooLong), Optional(EndsWith(tooLong)));
    EXPECT_THAT(files.removeItemAtPath(tooLong), Optional(EndsWith(tooLong)));
    EXPECT_THAT(folder.names(), UnorderedElementsAre("own"));
}

}  // namespace
}  // namespace vantrel::posix

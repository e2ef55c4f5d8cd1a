#import "platform/apple/AppleFiles.h"

#import <Foundation/Foundation.h>
#include <gmock/gmock.h>

#include <map>
#include <string>

#include "platform/memory/MemoryPreferences.h"
#include "tests/platform/FilesTest.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel {

Files &filesUnderTest() {
    // Nothing here runs long enough for the pool to be emptied.
    [[maybe_unused]] static NSAutoreleasePool *const pool = [NSAutoreleasePool new];
    static apple::AppleFiles files;
    return files;
}

}  // namespace vantrel

namespace vantrel::apple {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::Optional;
using testing::Pair;

struct AppleFilesTest : testing::Test {
    Files &files = filesUnderTest();
    posix::TemporaryFolder folder;
};

TEST_F(AppleFilesTest, WhatIsRefusedIsToldWithItsPath) {
    folder.write("own", "its content");
    folder.write("saved", "precious");
    folder.makeFolder("other");
    EXPECT_THAT(files.moveItemAtPath(folder / "own", folder / "saved"), Optional(EndsWith(": " + (folder / "saved"))));
    EXPECT_THAT(files.copyItemAtPath(folder / "other", folder / "copy"), Optional(EndsWith(": " + (folder / "other"))));
    EXPECT_THAT(files.removeItemAtPath(folder / "other"), Optional(EndsWith(": " + (folder / "other"))));
}

// Property lists

struct ApplePropertyListsTest : AppleFilesTest {
    static std::string list(const std::string &top) {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\">" + top + "</plist>";
    }

    /// Writes the list and reads it back.
    std::optional<PropertyListEntries> entriesOf(const std::string &top) {
        folder.write("list", list(top));
        return lists.dictionaryWithContentsOfFile(folder / "list");
    }

    ApplePropertyLists lists;
};

TEST_F(ApplePropertyListsTest, ListsEachEntryWithItsType) {
    const auto entries = entriesOf("<dict><key>array</key><array><string>in it</string></array>"
                                   "<key>flag</key><true/>"
                                   "<key>number</key><integer>703</integer>"
                                   "<key>real</key><real>0.5</real>"
                                   "<key>inner</key><dict><key>text</key><string>in it</string></dict>"
                                   "<key>text</key><string>\u00e9 &amp; \u65e5\u672c</string>"
                                   "<key>empty</key><string></string></dict>");
    ASSERT_TRUE(entries);
    std::map<std::string, std::string> described;
    for (const auto &[key, value] : *entries) described[key] = memory::describeStored(value);
    EXPECT_THAT(described, ElementsAre(Pair("array", "other type"), Pair("empty", "\"\""), Pair("flag", "true"),
                                       Pair("inner", "other type"), Pair("number", "703"),
                                       Pair("real", "unreadable number"), Pair("text", "\"\u00e9 & \u65e5\u672c\"")));
}

TEST_F(ApplePropertyListsTest, MayBeEmpty) {
    EXPECT_THAT(entriesOf("<dict></dict>"), Optional(IsEmpty()));
}

TEST_F(ApplePropertyListsTest, IsNoneWithoutADictionaryAtTheTop) {
    EXPECT_EQ(entriesOf("<array><string>7.0.3</string></array>"), std::nullopt);
}

TEST_F(ApplePropertyListsTest, IsNoneInAMissingFile) {
    EXPECT_EQ(lists.dictionaryWithContentsOfFile(folder / "missing"), std::nullopt);
}

TEST_F(ApplePropertyListsTest, IsReadFromItsBytesAsFromAFile) {
    const auto entries = lists.dictionaryWithData(list("<dict><key>flag</key><false/></dict>"));
    ASSERT_TRUE(entries && entries->contains("flag"));
    EXPECT_EQ(memory::describeStored(entries->at("flag")), "false");
    EXPECT_EQ(lists.dictionaryWithData(list("<array><false/></array>")), std::nullopt);
    EXPECT_EQ(lists.dictionaryWithData("garbage"), std::nullopt);
    EXPECT_EQ(lists.dictionaryWithData(""), std::nullopt);
}

TEST_F(ApplePropertyListsTest, MakesXMLThatNoReaderOfItTakesOtherwise) {
    EXPECT_EQ(lists.xmlText("]]>\r\n"), "]]&gt;&#13;\n");
}

TEST_F(ApplePropertyListsTest, ReadsAnyTextThatItHasMadeXML) {
    for (const std::string text :
         {"", "a & b", "<string>", "]]>", "&amp;", "one\r\ntwo\rthree\n", "\u00e9 \u65e5\u672c"}) {
        const auto entries =
            lists.dictionaryWithData(list("<dict><key>text</key><string>" + lists.xmlText(text) + "</string></dict>"));
        ASSERT_TRUE(entries && entries->contains("text")) << text;
        EXPECT_EQ(memory::describeStored(entries->at("text")), '"' + text + '"');
    }
}

}  // namespace
}  // namespace vantrel::apple

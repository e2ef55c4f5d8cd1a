#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <string>

#include "platform/gnustep/GNUstepPropertyLists.h"
#include "platform/memory/MemoryPreferences.h"
#include "tests/platform/posix/FaultySystemCalls.h"
#include "tests/platform/posix/TemporaryFolder.h"

namespace vantrel::gnustep {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using testing::Pair;
using testing::VariantWith;

struct GNUstepPropertyListsTest : testing::Test {
    posix::TemporaryFolder folder;
    posix::FaultySystemCalls calls;
    GNUstepPropertyLists lists{calls};
};

std::string xmlList(const std::string& top) {
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
)" + top + "\n</plist>\n";
}

const std::string versionDictionary = "<dict><key>CFBundleVersion</key><string>7.0.3</string></dict>";

/// The dictionary of `versionDictionary` as a binary list: a head, the dictionary with one reference to each of its two
/// texts, those, a table of where the three start, and 32 bytes that tell the sizes.
const std::string binaryVersionList = std::string("bplist00") + "\xD1\x01\x02" + "\x5F\x10\x0F" + "CFBundleVersion" +
                                      "\x55" + "7.0.3" + "\x08\x0B\x1D" +
                                      std::string(
                                          "\0\0\0\0\0\0\x01\x01"
                                          "\0\0\0\0\0\0\0\x03"
                                          "\0\0\0\0\0\0\0\0"
                                          "\0\0\0\0\0\0\0\x23",
                                          32);

TEST_F(GNUstepPropertyListsTest, IsReadFromAnXMLList) {
    folder.write("list", xmlList(versionDictionary));
    EXPECT_THAT(lists.dictionaryWithContentsOfFile(folder / "list"),
                Optional(ElementsAre(Pair("CFBundleVersion", VariantWith<std::string>("7.0.3")))));
}

TEST_F(GNUstepPropertyListsTest, IsReadFromABinaryList) {
    folder.write("list", binaryVersionList);
    EXPECT_THAT(lists.dictionaryWithContentsOfFile(folder / "list"),
                Optional(ElementsAre(Pair("CFBundleVersion", VariantWith<std::string>("7.0.3")))));
}

TEST_F(GNUstepPropertyListsTest, IsReadThroughALink) {
    folder.write("list", binaryVersionList);
    ASSERT_EQ(symlink("list", (folder / "link").c_str()), 0);
    EXPECT_THAT(lists.dictionaryWithContentsOfFile(folder / "link"),
                Optional(ElementsAre(Pair("CFBundleVersion", VariantWith<std::string>("7.0.3")))));
}

TEST_F(GNUstepPropertyListsTest, ListsEachEntryWithItsType) {
    folder.write("list", xmlList("<dict><key>array</key><array><string>in it</string></array>"
                                 "<key>flag</key><true/>"
                                 "<key>number</key><integer>703</integer>"
                                 "<key>real</key><real>7.03</real>"
                                 "<key>data</key><data>NzAz</data>"
                                 "<key>date</key><date>2009-11-18T00:00:00Z</date>"
                                 "<key>inner</key><dict><key>text</key><string>in it</string></dict>"
                                 "<key>text</key><string>é &amp; 日本</string>"
                                 "<key>empty</key><string></string></dict>"));
    const auto entries = lists.dictionaryWithContentsOfFile(folder / "list");
    ASSERT_TRUE(entries);
    std::map<std::string, std::string> described;
    for (const auto& [key, value] : *entries) described[key] = memory::describeStored(value);
    EXPECT_THAT(described,
                ElementsAre(Pair("array", "other type"), Pair("data", "other type"), Pair("date", "other type"),
                            Pair("empty", "\"\""), Pair("flag", "true"), Pair("inner", "other type"),
                            Pair("number", "703"), Pair("real", "unreadable number"), Pair("text", "\"é & 日本\"")));
}

TEST_F(GNUstepPropertyListsTest, AreReadFromBytesAsFromAFile) {
    EXPECT_THAT(lists.dictionaryWithData(xmlList(versionDictionary)),
                Optional(ElementsAre(Pair("CFBundleVersion", VariantWith<std::string>("7.0.3")))));
    EXPECT_EQ(lists.dictionaryWithData("garbage"), std::nullopt);
    EXPECT_EQ(lists.dictionaryWithData(xmlList(versionDictionary) + std::string(16 * 1024 * 1024, ' ')), std::nullopt);
}

TEST_F(GNUstepPropertyListsTest, ReadATextAgainAsItWas) {
    for (const std::string text : {"", "/a b", "<&>\"", "a\rb\n", "a\001b", "C:\\U0041", "日本😀"}) {
        const auto entries =
            lists.dictionaryWithData(xmlList("<dict><key>k</key><string>" + lists.xmlText(text) + "</string></dict>"));
        EXPECT_THAT(entries, Optional(ElementsAre(Pair("k", VariantWith<std::string>(text)))));
    }
}

TEST_F(GNUstepPropertyListsTest, MayBeEmpty) {
    folder.write("list", xmlList("<dict/>"));
    EXPECT_THAT(lists.dictionaryWithContentsOfFile(folder / "list"), Optional(IsEmpty()));
}

TEST_F(GNUstepPropertyListsTest, IsNotSoughtBeyondFourMebibytes) {
    folder.write("list", "");
    std::filesystem::resize_file(folder / "list", 64 * 1024 * 1024);
    calls.mostBytesAtOnce = 4096;
    EXPECT_EQ(lists.dictionaryWithContentsOfFile(folder / "list"), std::nullopt);
    EXPECT_EQ(calls.count("read"), 4 * 1024 * 1024 / 4096 + 1);
}

class NoPropertyList : public GNUstepPropertyListsTest, public testing::WithParamInterface<std::string> {};

TEST_P(NoPropertyList, GivesNothing) {
    folder.write("list", GetParam());
    EXPECT_EQ(lists.dictionaryWithContentsOfFile(folder / "list"), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Contents, NoPropertyList,
                         testing::Values("", "garbage", std::string(4096, '\0'),
                                         xmlList("<array><string>7.0.3</string></array>"),
                                         xmlList("<string>7.0.3</string>"), xmlList(""), "bplist00",
                                         xmlList(versionDictionary).substr(0, 200), binaryVersionList.substr(0, 60)));

TEST_F(GNUstepPropertyListsTest, IsNoneInAMissingFile) {
    EXPECT_EQ(lists.dictionaryWithContentsOfFile(folder / "missing"), std::nullopt);
}

TEST_F(GNUstepPropertyListsTest, IsNoneInAFolder) {
    EXPECT_EQ(lists.dictionaryWithContentsOfFile(folder.path), std::nullopt);
}

TEST_F(GNUstepPropertyListsTest, IsNoneInAPipeWhichIsNotWaitedFor) {
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(lists.dictionaryWithContentsOfFile(folder / "pipe"), std::nullopt);
}

TEST_F(GNUstepPropertyListsTest, IsNoneInAFileThatCannotBeRead) {
    folder.write("list", xmlList(versionDictionary));
    for (const std::string call : {"open", "fstat", "read"}) {
        calls.fail(call, EACCES);
        EXPECT_EQ(lists.dictionaryWithContentsOfFile(folder / "list"), std::nullopt) << call;
    }
    EXPECT_NE(lists.dictionaryWithContentsOfFile(folder / "list"), std::nullopt);
}

TEST_F(GNUstepPropertyListsTest, IsNoneInAFileWhoseReadFailsHalfWay) {
    folder.write("list", xmlList(versionDictionary));
    calls.mostBytesAtOnce = 100;
    calls.failNth("read", 2, EIO);
    EXPECT_EQ(lists.dictionaryWithContentsOfFile(folder / "list"), std::nullopt);
}

TEST_F(GNUstepPropertyListsTest, IsReadUpToFourMebibytesAndNoFurther) {
    const std::string list = xmlList(versionDictionary);
    constexpr std::size_t largest = 4 * 1024 * 1024;
    folder.write("list", list + std::string(largest - list.size(), ' '));
    EXPECT_THAT(lists.dictionaryWithContentsOfFile(folder / "list"),
                Optional(ElementsAre(Pair("CFBundleVersion", VariantWith<std::string>("7.0.3")))));
    folder.write("list", list + std::string(largest - list.size() + 1, ' '));
    EXPECT_EQ(lists.dictionaryWithContentsOfFile(folder / "list"), std::nullopt);
}

}  // namespace
}  // namespace vantrel::gnustep

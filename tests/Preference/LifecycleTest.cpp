#include <gmock/gmock.h>

#include "tests/Preference/ValidDomain.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;

// initWithBundle

TEST(Lifecycle, ThePaneWorksOnTheCodecsDomain) {
    MemoryPane it;
    it.pane.initWithBundle(it.bundle);
    EXPECT_EQ(it.kept("appID"), "com.vantrel.codec");
}

TEST(Lifecycle, NoOtherDomainIsEverTouched) {
    MemoryPane it;
    it.load();
    it.click(key("look"), offState);
    it.pane.luts().confirm(it.pane.store());
    EXPECT_THAT(it.preferences.applications(), ElementsAre("com.vantrel.codec"));
}

TEST(Lifecycle, TheDefaultFoldersAreTheBundlesTexts) {
    MemoryPane it;
    it.bundle.strings = {{"KVRXLutsPath", "/Bibliothèque/LUT"}, {"KVRXOverridePath", "/Bibliothèque/Réglages"}};
    it.pane.initWithBundle(it.bundle);
    EXPECT_EQ(it.kept("_LUTsPathString"), "/Bibliothèque/LUT");
    EXPECT_EQ(it.kept("_overridePathString"), "/Bibliothèque/Réglages");
}

TEST(Lifecycle, WithoutTextsInTheBundleTheDefaultFoldersAreAPath) {
    MemoryPane it;
    it.pane.initWithBundle(it.bundle);
    EXPECT_EQ(it.kept("_LUTsPathString"), "a path");
    EXPECT_EQ(it.kept("_overridePathString"), "a path");
}

TEST(Lifecycle, AnEmptyTextInTheBundleIsADefaultFolderToo) {
    MemoryPane it;
    it.bundle.strings = {{"KVRXLutsPath", ""}};
    it.pane.initWithBundle(it.bundle);
    EXPECT_EQ(it.kept("_LUTsPathString"), "");
    EXPECT_EQ(it.kept("_overridePathString"), "a path");
}

TEST(Lifecycle, TheVersionIsKept) {
    MemoryPane it;
    it.bundle.info = {{"CFBundleShortVersionString", "1.2.3"}, {"CFBundleVersion", "99"}};
    it.pane.initWithBundle(it.bundle);
    EXPECT_EQ(it.kept("_versionString"), "1.2.3");
}

TEST(Lifecycle, WithoutAVersionInTheBundleThereIsNone) {
    MemoryPane it;
    it.kept("_versionString") = "left over";
    it.bundle.info = {{"CFBundleVersion", "99"}};
    it.pane.initWithBundle(it.bundle);
    EXPECT_EQ(it.kept("_versionString"), std::nullopt);
}

TEST(Lifecycle, CreatingThePaneReadsAndWritesNoSetting) {
    ValidPane it;
    it.bundle.info = {{"CFBundleShortVersionString", "1.2.3"}};
    it.pane.initWithBundle(it.bundle);
    EXPECT_THAT(it.journal.lines(), ElementsAre("_versionNumber setStringValue \"1.2.3\""));
}

// mainViewDidLoad

TEST(Lifecycle, TheVersionIsShownBeforeAnythingElse) {
    MemoryPane it;
    it.bundle.info["CFBundleShortVersionString"] = "1.2.3";
    it.pane.initWithBundle(it.bundle);
    it.journal.clear();
    it.field("_versionNumber").text = "of the interface file";
    it.pane.mainViewDidLoad();
    EXPECT_EQ(it.field("_versionNumber").text, "1.2.3");
    EXPECT_EQ(it.journal.lines().front(), "_versionNumber setStringValue \"1.2.3\"");
}

TEST(Lifecycle, WithoutAVersionItsFieldKeepsTheInterfaceFilesText) {
    MemoryPane it;
    it.field("_versionNumber").text = "of the interface file";
    it.load();
    EXPECT_EQ(it.field("_versionNumber").text, "of the interface file");
    EXPECT_THAT(it.journal.linesStarting("_versionNumber"), ElementsAre());
}

TEST(Lifecycle, WithoutTextsInTheBundleBothFoldersAreWrittenAsAPath) {
    MemoryPane it;
    it.load();
    auto stored = contents(it.domain());
    EXPECT_EQ(stored["LUTsPath"], "\"a path\"");
    EXPECT_EQ(stored["OverridePath"], "\"a path\"");
}

TEST(Lifecycle, TheOverrideStoreIsOpenedOnceAndNotKept) {
    MemoryPane it;
    it.load();
    EXPECT_THAT(it.journal.linesStarting("overrides load"), testing::SizeIs(1));
    EXPECT_THAT(it.journal.linesStarting("overrides write"), ElementsAre());
    EXPECT_EQ(it.overrides.loaded, 0);
}

TEST(Lifecycle, TheSetUpIsSilent) {
    MemoryPane it;
    it.load();
    for (const auto* kind : {"alert", "log", "post", "exists", "dictionary", "move", "copy", "remove"}) {
        EXPECT_THAT(it.journal.linesStarting(kind), ElementsAre()) << kind;
    }
}

TEST(Lifecycle, WhatWasChangedElsewhereIsFoundByTheNextAction) {
    MemoryPane it;
    it.load();
    it.domain()["ColorProcessingPath"] = Number{0x500000};
    it.click(key("look"), onState);
    EXPECT_EQ(contents(it.domain())["ColorProcessingPath"], std::to_string(0x500009));
}

}  // namespace
}  // namespace vantrel::memory

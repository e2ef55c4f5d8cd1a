#include <gmock/gmock.h>

#include "tests/Preference/ValidDomain.h"
#include "tests/Rules.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Folder : Rule {
    std::string key;
    std::string field;
    std::string ok;
    std::string undo;
    std::string committed;
    FolderPath& (VantrelPref::*of)();
    std::string storedText;
    std::string defaultText;
};

const Folder luts{{"LUTs"},          "LUTsPath",         "_LUTsPath",    "_LUTsOK",      "_LUTsUndo",
                  "_LUTsPathString", &VantrelPref::luts, "/stored/luts", "/default/luts"};

const Folder overrides{{"Overrides"},           "OverridePath",      "_overridePath",
                       "_overrideOK",           "_overrideUndo",     "_overridePathString",
                       &VantrelPref::overrides, "/stored/overrides", "/default/overrides"};

/// A pane with both folders, of which the parameter is the one that the user works on.
struct FolderPaths : testing::TestWithParam<Folder> {
    const Folder& folder = GetParam();
    const Folder& other = GetParam().key == luts.key ? overrides : luts;
    ValidPane it;

    MemoryTextField& field() { return it.field(folder.field); }
    MemoryPushButton& ok() { return it.button(folder.ok); }
    MemoryPushButton& undo() { return it.button(folder.undo); }
    std::optional<std::string>& committed() { return it.kept(folder.committed); }

    /// What another process finds.
    std::string synchronised(const Folder& which) {
        return contents(it.preferences.synchronizedDomain("com.vantrel.codec"))[which.key];
    }

    void load() {
        it.load();
        it.journal.clear();
    }
    /// The user types into the field until it holds `text`.
    void type(const std::string& text) {
        field().text = text;
        field().editing = true;
        it.pane.textDidChange();
    }
    void pressOK() { (it.pane.*folder.of)().confirm(it.pane.store()); }
    void pressUndo() { (it.pane.*folder.of)().undo(); }
};

INSTANTIATE_TEST_SUITE_P(FolderPaths, FolderPaths, testing::Values(luts, overrides), ByRule());

/// Texts that a careless check, format or conversion would change.
const std::vector<std::string>& anyTexts() {
    static const std::vector<std::string> texts{
        "",
        " ",
        "/with/a/separator/behind/",
        "no separator",
        "%@ %s %d %n",
        "\"quoted\" \\ & <string>markup</string> ]]>",
        "two\nlines\tand a tab",
        "/Bücher/映像/صور/תמונות/😀",
        "e\u0301 is not \u00E9",
        std::string(5000, 'x'),
    };
    return texts;
}

// At set-up

TEST_P(FolderPaths, AStoredTextIsShownAndCommittedAndNothingIsWritten) {
    for (const auto& text : anyTexts()) {
        it.domain()[folder.key] = text;
        load();
        EXPECT_EQ(field().text, text);
        EXPECT_EQ(committed(), text);
        EXPECT_EQ(contents(it.domain())[folder.key], '"' + text + '"');
    }
}

TEST_P(FolderPaths, WhatIsNoTextIsReplacedByTheDefaultWithoutASynchronise) {
    for (const auto& fault : faultsOfAText) {
        SCOPED_TRACE(fault.name);
        put(it.domain(), folder.key, fault);
        it.journal.clear();
        it.load();
        EXPECT_EQ(field().text, folder.defaultText);
        EXPECT_EQ(committed(), folder.defaultText);
        EXPECT_THAT(it.journal.preferenceChanges(),
                    ElementsAre("write " + folder.key + " = \"" + folder.defaultText + '"'));
        EXPECT_EQ(synchronised(folder), "");
    }
}

TEST_P(FolderPaths, TheDefaultBecomesLastingWithTheNextActionOfAnyControl) {
    it.domain().erase(folder.key);
    load();
    it.chooseRow(::vantrel::key("QTGammaCorrection"), 1);
    EXPECT_EQ(synchronised(folder), '"' + folder.defaultText + '"');
}

TEST_P(FolderPaths, TheButtonsKeepTheInterfaceFilesState) {
    for (const bool enabled : {true, false}) {
        ok().enabled = enabled;
        undo().enabled = enabled;
        load();
        EXPECT_EQ(ok().enabled, enabled);
        EXPECT_EQ(undo().enabled, enabled);
    }
}

// Editing

TEST_P(FolderPaths, AnEditEnablesOKAndThenUndoOfItsFieldAlone) {
    load();
    type("/new");
    EXPECT_THAT(it.journal.lines(), ElementsAre(folder.ok + " enable", folder.undo + " enable"));
    EXPECT_FALSE(it.button(other.ok).enabled);
    EXPECT_FALSE(it.button(other.undo).enabled);
}

TEST_P(FolderPaths, AnEditWritesAndCommitsNothing) {
    load();
    type("/new");
    EXPECT_EQ(contents(it.domain())[folder.key], '"' + folder.storedText + '"');
    EXPECT_EQ(committed(), folder.storedText);
}

TEST_P(FolderPaths, AnEditBackToTheCommittedTextEnablesTheButtonsAllTheSame) {
    load();
    type(folder.storedText);
    EXPECT_TRUE(ok().enabled);
    EXPECT_TRUE(undo().enabled);
}

TEST_P(FolderPaths, AnEditOfAnyTextEnablesTheButtons) {
    for (const auto& text : anyTexts()) {
        load();
        ok().enabled = undo().enabled = false;
        type(text);
        EXPECT_TRUE(ok().enabled);
        EXPECT_TRUE(undo().enabled);
    }
}

TEST_P(FolderPaths, AChangeWithoutAFieldEditorEnablesNothing) {
    load();
    field().text = "/new";
    it.pane.textDidChange();
    EXPECT_THAT(it.journal.lines(), IsEmpty());
}

/// Not something that a window does, but the two fields are asked independently.
TEST(FolderPathsOfBoth, AreEnabledInOrderWhereBothHaveAFieldEditor) {
    MemoryPane it;
    it.field("_LUTsPath").editing = true;
    it.field("_overridePath").editing = true;
    it.pane.textDidChange();
    EXPECT_THAT(it.journal.lines(),
                ElementsAre("_LUTsOK enable", "_LUTsUndo enable", "_overrideOK enable", "_overrideUndo enable"));
}

// OK

TEST_P(FolderPaths, OKWritesSynchronisesAndDisablesOKAndThenUndo) {
    load();
    type("/new");
    it.journal.clear();
    pressOK();
    EXPECT_THAT(it.journal.lines(), ElementsAre("write " + folder.key + " = \"/new\"", "synchronize",
                                                folder.ok + " disable", folder.undo + " disable"));
    EXPECT_EQ(committed(), "/new");
    EXPECT_EQ(synchronised(folder), "\"/new\"");
    EXPECT_EQ(field().text, "/new");
}

TEST_P(FolderPaths, OKWritesAnyTextAsItIs) {
    load();
    for (const auto& text : anyTexts()) {
        type(text);
        pressOK();
        EXPECT_EQ(std::get<std::string>(it.domain()[folder.key]), text);
        EXPECT_EQ(committed(), text);
    }
}

TEST_P(FolderPaths, OKWritesAnUnchangedTextToo) {
    load();
    pressOK();
    EXPECT_THAT(it.journal.preferenceChanges(),
                ElementsAre("write " + folder.key + " = \"" + folder.storedText + '"', "synchronize"));
}

TEST_P(FolderPaths, OKLeavesTheOtherFolderAlone) {
    load();
    it.field(other.field).text = "/being typed";
    it.button(other.ok).enabled = true;
    it.button(other.undo).enabled = true;
    type("/new");
    pressOK();
    EXPECT_EQ(contents(it.domain())[other.key], '"' + other.storedText + '"');
    EXPECT_EQ(it.kept(other.committed), other.storedText);
    EXPECT_TRUE(it.button(other.ok).enabled);
    EXPECT_TRUE(it.button(other.undo).enabled);
}

TEST_P(FolderPaths, OKDisablesTheButtonsEvenWhereTheSynchroniseFails) {
    load();
    it.preferences.synchronizes = false;
    type("/new");
    pressOK();
    EXPECT_FALSE(ok().enabled);
    EXPECT_FALSE(undo().enabled);
    EXPECT_EQ(committed(), "/new");
}

// Undo

TEST_P(FolderPaths, UndoShowsTheStoredTextAndDisablesOKAndThenUndo) {
    load();
    type("/new");
    it.journal.clear();
    pressUndo();
    EXPECT_THAT(it.journal.lines(), ElementsAre(folder.field + " setStringValue \"" + folder.storedText + '"',
                                                folder.ok + " disable", folder.undo + " disable"));
    EXPECT_EQ(committed(), folder.storedText);
}

TEST_P(FolderPaths, UndoShowsTheDefaultWhereNoTextWasStored) {
    it.domain().erase(folder.key);
    load();
    type("/new");
    pressUndo();
    EXPECT_EQ(field().text, folder.defaultText);
}

TEST_P(FolderPaths, UndoShowsTheTextOfTheLastOKWhateverCameAfterIt) {
    load();
    type("/first");
    pressOK();
    type("/second");
    it.domain()[folder.key] = std::string("/from elsewhere");
    pressUndo();
    EXPECT_EQ(field().text, "/first");
}

TEST_P(FolderPaths, UndoShowsAnEmptyCommittedText) {
    load();
    type("");
    pressOK();
    type("/new");
    pressUndo();
    EXPECT_EQ(field().text, "");
}

TEST_P(FolderPaths, UndoOfOneFolderAfterOKOfTheOtherPutsBackItsOwnText) {
    load();
    it.field(other.field).text = "/of the other";
    (it.pane.*other.of)().confirm(it.pane.store());
    type("/new");
    pressUndo();
    EXPECT_EQ(field().text, folder.storedText);
    EXPECT_EQ(it.field(other.field).text, "/of the other");
    EXPECT_EQ(it.kept(other.committed), "/of the other");
}

TEST_P(FolderPaths, AfterOKOrUndoTheNextEditEnablesTheButtonsAgain) {
    load();
    for (const auto press : {&FolderPaths::pressOK, &FolderPaths::pressUndo}) {
        type("/new");
        (this->*press)();
        EXPECT_FALSE(ok().enabled);
        EXPECT_FALSE(undo().enabled);
        type("/newer");
        EXPECT_TRUE(ok().enabled);
        EXPECT_TRUE(undo().enabled);
    }
}

}  // namespace
}  // namespace vantrel::memory

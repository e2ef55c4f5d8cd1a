#include <gmock/gmock.h>

#include "tests/Preference/ValidDomain.h"
#include "tests/Rules.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;

// Check boxes

struct FlagBox : Rule {
    SettingsKey key;

    std::string name() const { return std::string(key.name); }
};

struct PixelFormatCheckBox : testing::TestWithParam<FlagBox> {};

TEST_P(PixelFormatCheckBox, WritesItsOwnKeyAndSynchronises) {
    for (const auto& [state, written] : {std::pair{onState, "true"}, std::pair{offState, "false"}}) {
        ValidPane it;
        it.load();
        it.journal.clear();
        it.click(GetParam().key, state);
        EXPECT_THAT(it.journal.lines(), ElementsAre("write " + GetParam().name() + " = " + written, "synchronize"));
        EXPECT_EQ(contents(it.preferences.synchronizedDomain("com.vantrel.codec"))[GetParam().name()], written);
    }
}

/// The platform's mixed state is -1. No check box shows the others, but the rule covers them.
TEST_P(PixelFormatCheckBox, StoresTheTruthOfItsStatesLowestByte) {
    for (const auto& [state, written] :
         {std::pair{mixedState, "true"}, std::pair{2L, "true"}, std::pair{128L, "true"}, std::pair{255L, "true"},
          std::pair{256L, "false"}, std::pair{257L, "true"}, std::pair{-256L, "false"}}) {
        MemoryPane it;
        it.load();
        it.click(GetParam().key, state);
        EXPECT_EQ(contents(it.domain())[GetParam().name()], written) << state;
    }
}

TEST_P(PixelFormatCheckBox, AsksTheSender) {
    MemoryPane it;
    it.load();
    MemoryCheckBox sender{it.journal, "sender"};
    sender.shown = onState;
    it.box(GetParam().key.outlet).shown = offState;
    it.pane.clicked(sender, GetParam().key);
    EXPECT_EQ(contents(it.domain())[GetParam().name()], "true");
}

INSTANTIATE_TEST_SUITE_P(PixelFormats, PixelFormatCheckBox,
                         testing::Values(FlagBox{{"RGB8"}, key("FormatRGB8")}, FlagBox{{"RGB16"}, key("FormatRGB16")},
                                         FlagBox{{"RGB32"}, key("FormatRGB32")}, FlagBox{{"YUV8"}, key("FormatYUV8")},
                                         FlagBox{{"YUV16"}, key("FormatYUV16")}, FlagBox{{"YUV32"}, key("FormatYUV32")},
                                         FlagBox{{"YUV8WithAlpha"}, key("FormatYUV8A")},
                                         FlagBox{{"Letterbox"}, key("FCPForceLetterBox")},
                                         FlagBox{{"SourceSettings"}, key("PProCS5HasMovieSetup")},
                                         FlagBox{{"DualStream"}, key("FormatDualStream3D")}),
                         ByRule());

TEST(PixelFormats, EachCheckBoxShowsItsOwnKey) {
    const std::pair<const char*, const char*> boxes[] = {
        {"FormatRGB8", "fmtRGB8Bit"},
        {"FormatRGB16", "fmtRGB16Bit"},
        {"FormatRGB32", "fmtRGB32Bit"},
        {"FormatYUV8", "fmtYUV8Bit"},
        {"FormatYUV16", "fmtYUV16Bit"},
        {"FormatYUV32", "fmtYUV32Bit"},
        {"FormatYUV8A", "fmtYUV8BitA"},
        {"FCPForceLetterBox", "fmtFCPLetterbox"},
        {"PProCS5HasMovieSetup", "cs5SourceSettings"},
    };
    for (const auto& [key, outlet] : boxes) {
        ValidPane it;
        it.domain()[key] = true;
        it.load();
        for (const auto& [otherKey, other] : boxes) {
            EXPECT_EQ(it.box(other).shown, other == outlet ? onState : offState) << otherKey << " when " << key;
        }
    }
}

TEST(PixelFormats, DualStreamKeepsTheInterfaceFilesStateAndNoKeyUntilTheFirstClick) {
    for (const long state : {onState, offState}) {
        MemoryPane it;
        it.box("fmtDualStream3D").shown = state;
        it.load();
        EXPECT_EQ(it.box("fmtDualStream3D").shown, state);
        EXPECT_FALSE(it.domain().contains("FormatDualStream3D"));

        it.click(key("FormatDualStream3D"), state);
        EXPECT_EQ(contents(it.domain())["FormatDualStream3D"], state == onState ? "true" : "false");
    }
}

// Gamma corrections

struct GammaMatrix : Rule {
    SettingsKey key;

    std::string name() const { return std::string(key.name); }
    std::string outlet() const { return std::string(key.outlet); }
};

struct GammaRadioButton : testing::TestWithParam<GammaMatrix> {};

TEST_P(GammaRadioButton, StoresTheRowOfItsOwnMatrixAndSynchronises) {
    for (const long row : {0L, 1L, 7L}) {
        ValidPane it;
        it.load();
        it.journal.clear();
        it.chooseRow(GetParam().key, row);
        EXPECT_THAT(it.journal.lines(),
                    ElementsAre("write " + GetParam().name() + " = " + std::to_string(row), "synchronize"));
    }
}

TEST_P(GammaRadioButton, StoresMinusOneWithoutASelection) {
    MemoryPane it;
    it.load();
    it.chooseRow(GetParam().key, -1);
    EXPECT_EQ(contents(it.domain())[GetParam().name()], "-1");
}

TEST_P(GammaRadioButton, StoresTheLow32BitsOfTheRow) {
    MemoryPane it;
    it.load();
    it.chooseRow(GetParam().key, static_cast<long>(0x1FFFFFFFELL));
    EXPECT_EQ(contents(it.domain())[GetParam().name()], "-2");
}

TEST_P(GammaRadioButton, ShowsItsOwnKey) {
    ValidPane it;
    it.matrix("fmtQTGamma").rows = 4;
    it.matrix("fmtFCPGamma").rows = 4;
    it.domain()[GetParam().name()] = Number{3};
    it.load();
    for (const std::string outlet : {"fmtQTGamma", "fmtFCPGamma"}) {
        EXPECT_EQ(it.matrix(outlet).selected, outlet == GetParam().outlet() ? 3 : 1);
    }
}

TEST_P(GammaRadioButton, CountsTheRowsOfItsOwnMatrix) {
    ValidPane it;
    it.matrix("fmtQTGamma").rows = 9;
    it.matrix("fmtFCPGamma").rows = 9;
    it.matrix(GetParam().outlet()).rows = 2;
    it.domain()[GetParam().name()] = Number{2};
    it.load();
    EXPECT_EQ(contents(it.domain())[GetParam().name()], "0");
    EXPECT_THAT(it.journal.linesStarting(GetParam().outlet()),
                ElementsAre(GetParam().outlet() + " selectCellAtRow 0 column 0"));
}

INSTANTIATE_TEST_SUITE_P(PixelFormats, GammaRadioButton,
                         testing::Values(GammaMatrix{{"FinalCutPro"}, key("FCPGammaCorrection")},
                                         GammaMatrix{{"QuickTime"}, key("QTGammaCorrection")}),
                         ByRule());

}  // namespace
}  // namespace vantrel::memory

#include <gmock/gmock.h>

#include "tests/Preference/ValidDomain.h"
#include "tests/Rules.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;

// Check boxes

struct FlagBox : Rule {
    std::string key;
    MemoryCheckBox MemoryPane::*outlet;
    void (VantrelPref::*action)(const CheckBox&);
};

struct PixelFormatCheckBox : testing::TestWithParam<FlagBox> {};

TEST_P(PixelFormatCheckBox, WritesItsOwnKeyAndSynchronises) {
    for (const auto& [state, written] : {std::pair{onState, "true"}, std::pair{offState, "false"}}) {
        ValidPane it;
        it.load();
        it.journal.clear();
        (it.*GetParam().outlet).shown = state;
        (it.pane.*GetParam().action)(it.*GetParam().outlet);
        EXPECT_THAT(it.journal.lines(), ElementsAre("write " + GetParam().key + " = " + written, "synchronize"));
        EXPECT_EQ(contents(it.preferences.synchronizedDomain("com.vantrel.codec"))[GetParam().key], written);
    }
}

/// The platform's mixed state is -1. No check box shows the others, but the rule covers them.
TEST_P(PixelFormatCheckBox, StoresTheTruthOfItsStatesLowestByte) {
    for (const auto& [state, written] :
         {std::pair{mixedState, "true"}, std::pair{2L, "true"}, std::pair{128L, "true"}, std::pair{255L, "true"},
          std::pair{256L, "false"}, std::pair{257L, "true"}, std::pair{-256L, "false"}}) {
        MemoryPane it;
        it.load();
        (it.*GetParam().outlet).shown = state;
        (it.pane.*GetParam().action)(it.*GetParam().outlet);
        EXPECT_EQ(contents(it.domain())[GetParam().key], written) << state;
    }
}

TEST_P(PixelFormatCheckBox, AsksTheSender) {
    MemoryPane it;
    it.load();
    MemoryCheckBox sender{it.journal, "sender"};
    sender.shown = onState;
    (it.*GetParam().outlet).shown = offState;
    (it.pane.*GetParam().action)(sender);
    EXPECT_EQ(contents(it.domain())[GetParam().key], "true");
}

INSTANTIATE_TEST_SUITE_P(
    PixelFormats, PixelFormatCheckBox,
    testing::Values(
        FlagBox{{"RGB8"}, "FormatRGB8", &MemoryPane::fmtRGB8Bit, &VantrelPref::fmtRGB8BitCheckBox},
        FlagBox{{"RGB16"}, "FormatRGB16", &MemoryPane::fmtRGB16Bit, &VantrelPref::fmtRGB16BitCheckBox},
        FlagBox{{"RGB32"}, "FormatRGB32", &MemoryPane::fmtRGB32Bit, &VantrelPref::fmtRGB32BitCheckBox},
        FlagBox{{"YUV8"}, "FormatYUV8", &MemoryPane::fmtYUV8Bit, &VantrelPref::fmtYUV8BitCheckBox},
        FlagBox{{"YUV16"}, "FormatYUV16", &MemoryPane::fmtYUV16Bit, &VantrelPref::fmtYUV16BitCheckBox},
        FlagBox{{"YUV32"}, "FormatYUV32", &MemoryPane::fmtYUV32Bit, &VantrelPref::fmtYUV32BitCheckBox},
        FlagBox{{"YUV8WithAlpha"}, "FormatYUV8A", &MemoryPane::fmtYUV8BitA, &VantrelPref::fmtYUV8BitACheckBox},
        FlagBox{
            {"Letterbox"}, "FCPForceLetterBox", &MemoryPane::fmtFCPLetterbox, &VantrelPref::fmtFCPLetterboxCheckBox},
        FlagBox{{"SourceSettings"},
                "PProCS5HasMovieSetup",
                &MemoryPane::cs5SourceSettings,
                &VantrelPref::cs5SourceSettingsCheck},
        FlagBox{
            {"DualStream"}, "FormatDualStream3D", &MemoryPane::fmtDualStream3D, &VantrelPref::fmtDualStream3DCheckBox}),
    ByRule());

TEST(PixelFormats, EachCheckBoxShowsItsOwnKey) {
    const std::pair<const char*, MemoryCheckBox MemoryPane::*> boxes[] = {
        {"FormatRGB8", &MemoryPane::fmtRGB8Bit},
        {"FormatRGB16", &MemoryPane::fmtRGB16Bit},
        {"FormatRGB32", &MemoryPane::fmtRGB32Bit},
        {"FormatYUV8", &MemoryPane::fmtYUV8Bit},
        {"FormatYUV16", &MemoryPane::fmtYUV16Bit},
        {"FormatYUV32", &MemoryPane::fmtYUV32Bit},
        {"FormatYUV8A", &MemoryPane::fmtYUV8BitA},
        {"FCPForceLetterBox", &MemoryPane::fmtFCPLetterbox},
        {"PProCS5HasMovieSetup", &MemoryPane::cs5SourceSettings},
    };
    for (const auto& [key, outlet] : boxes) {
        ValidPane it;
        it.domain()[key] = true;
        it.load();
        for (const auto& [otherKey, other] : boxes) {
            EXPECT_EQ((it.*other).shown, other == outlet ? onState : offState) << otherKey << " when " << key;
        }
    }
}

TEST(PixelFormats, DualStreamKeepsTheInterfaceFilesStateAndNoKeyUntilTheFirstClick) {
    for (const long state : {onState, offState}) {
        MemoryPane it;
        it.fmtDualStream3D.shown = state;
        it.load();
        EXPECT_EQ(it.fmtDualStream3D.shown, state);
        EXPECT_FALSE(it.domain().contains("FormatDualStream3D"));

        it.pane.fmtDualStream3DCheckBox(it.fmtDualStream3D);
        EXPECT_EQ(contents(it.domain())["FormatDualStream3D"], state == onState ? "true" : "false");
    }
}

// Gamma corrections

struct GammaMatrix : Rule {
    std::string key;
    std::string outletName;
    MemoryRadioMatrix MemoryPane::*outlet;
    void (VantrelPref::*action)();
};

struct GammaRadioButton : testing::TestWithParam<GammaMatrix> {};

TEST_P(GammaRadioButton, StoresTheRowOfItsOwnMatrixAndSynchronises) {
    for (const long row : {0L, 1L, 7L}) {
        ValidPane it;
        it.load();
        it.journal.clear();
        (it.*GetParam().outlet).selected = row;
        (it.pane.*GetParam().action)();
        EXPECT_THAT(it.journal.lines(),
                    ElementsAre("write " + GetParam().key + " = " + std::to_string(row), "synchronize"));
    }
}

TEST_P(GammaRadioButton, StoresMinusOneWithoutASelection) {
    MemoryPane it;
    it.load();
    (it.*GetParam().outlet).selected = -1;
    (it.pane.*GetParam().action)();
    EXPECT_EQ(contents(it.domain())[GetParam().key], "-1");
}

TEST_P(GammaRadioButton, StoresTheLow32BitsOfTheRow) {
    MemoryPane it;
    it.load();
    (it.*GetParam().outlet).selected = static_cast<long>(0x1FFFFFFFELL);
    (it.pane.*GetParam().action)();
    EXPECT_EQ(contents(it.domain())[GetParam().key], "-2");
}

TEST_P(GammaRadioButton, ShowsItsOwnKey) {
    ValidPane it;
    it.fmtQTGamma.rows = 4;
    it.fmtFCPGamma.rows = 4;
    it.domain()[GetParam().key] = Number{3};
    it.load();
    for (auto outlet : {&MemoryPane::fmtQTGamma, &MemoryPane::fmtFCPGamma}) {
        EXPECT_EQ((it.*outlet).selected, outlet == GetParam().outlet ? 3 : 1);
    }
}

TEST_P(GammaRadioButton, CountsTheRowsOfItsOwnMatrix) {
    ValidPane it;
    it.fmtQTGamma.rows = 9;
    it.fmtFCPGamma.rows = 9;
    (it.*GetParam().outlet).rows = 2;
    it.domain()[GetParam().key] = Number{2};
    it.load();
    EXPECT_EQ(contents(it.domain())[GetParam().key], "0");
    EXPECT_THAT(it.journal.linesStarting(GetParam().outletName),
                ElementsAre(GetParam().outletName + " selectCellAtRow 0 column 0"));
}

INSTANTIATE_TEST_SUITE_P(PixelFormats, GammaRadioButton,
                         testing::Values(GammaMatrix{{"FinalCutPro"},
                                                     "FCPGammaCorrection",
                                                     "fmtFCPGamma",
                                                     &MemoryPane::fmtFCPGamma,
                                                     &VantrelPref::fmtFCPGammaRadioButton},
                                         GammaMatrix{{"QuickTime"},
                                                     "QTGammaCorrection",
                                                     "fmtQTGamma",
                                                     &MemoryPane::fmtQTGamma,
                                                     &VantrelPref::fmtQTGammaRadioButton}),
                         ByRule());

}  // namespace
}  // namespace vantrel::memory

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "settings/KeyTable.h"
#include "tests/settings/KeysInWords.h"

namespace vantrel {
namespace {

std::string describe(Repair repair) {
    switch (repair) {
        case Repair::written:
            return "written";
        case Repair::writtenLazily:
            return "written lazily";
        case Repair::ifLowered:
            return "written if lowered";
        case Repair::ifAsked:
            return "written if asked";
        case Repair::none:
            return "not written";
    }
    return "?";
}

std::string describe(Kind kind) {
    constexpr const char* words[] = {"flag", "row", "item", "limit", "bits", "text"};
    return words[static_cast<std::size_t>(kind)];
}

std::string describe(const colorProcessingPath::Part& part) {
    if (const auto* stage = std::get_if<colorProcessingPath::Stage>(&part)) {
        return ", bit " + std::to_string(stage->bit);
    }
    const auto* field = std::get_if<colorProcessingPath::DemosaicField>(&part);
    return field ? ", bits from " + std::to_string(field->shift) : "";
}

TEST(KeyTable, NamesEveryKeyInTheOrderOfTheSetUp) {
    std::vector<std::string> rows;
    for (const auto& key : keyTable) {
        rows.push_back(std::string(key.name) + ": " + describe(key.kind) + ", " + describe(key.setUpDefault) + ", " +
                       describe(key.repair) + ", " + std::string(key.outlet) + describe(key.path));
    }
    EXPECT_THAT(rows, testing::ElementsAre(
                          "MaxEncodeThreads: limit, 7, written if lowered, encodeThreads",                      //
                          "ColorProcessingPath: bits, 0, written if asked, ",                                   //
                          "whiteBalance: flag, true, written, whiteBalance, bit 2",                             //
                          "colorMatrix: flag, true, written, colorMatrix, bit 1",                               //
                          "look: flag, true, written, look, bit 3",                                             //
                          "gamma: flag, true, written, gamma, bit 5",                                           //
                          "QTGammaCorrection: row, 0, written, fmtQTGamma",                                     //
                          "FCPGammaCorrection: row, 0, written, fmtFCPGamma",                                   //
                          "FormatYUV8: flag, true, written, fmtYUV8Bit",                                        //
                          "FormatYUV8A: flag, true, written, fmtYUV8BitA",                                      //
                          "FormatYUV16: flag, true, written, fmtYUV16Bit",                                      //
                          "FormatYUV32: flag, true, written, fmtYUV32Bit",                                      //
                          "FormatRGB8: flag, true, written, fmtRGB8Bit",                                        //
                          "FormatRGB16: flag, true, written, fmtRGB16Bit",                                      //
                          "FormatRGB32: flag, true, written, fmtRGB32Bit",                                      //
                          "FCPForceLetterBox: flag, true, written, fmtFCPLetterbox",                            //
                          "ShowStereoStatusMenu: flag, true, written, _showStereoStatus",                       //
                          "LUTsPath: text, KVRXLutsPath or \"a path\", written lazily, _LUTsPath",              //
                          "OverridePath: text, KVRXOverridePath or \"a path\", written lazily, _overridePath",  //
                          "8bitDebayer: item, 0, not written, presentationDemosaic, bits from 16",              //
                          "RenderDebayer: item, 0, not written, renderDemosaic, bits from 20",                  //
                          "fcpRTEnableSwap: flag, false, written lazily, fcpRTEnable",                          //
                          "PProCS5HasMovieSetup: flag, true, written lazily, cs5SourceSettings",                //
                          "FormatDualStream3D: flag, never read, not written, fmtDualStream3D"));
}

TEST(KeyTable, BelongsToTheCodecsDomain) {
    EXPECT_STREQ(codecApplicationID, "com.vantrel.codec");
}

}  // namespace
}  // namespace vantrel

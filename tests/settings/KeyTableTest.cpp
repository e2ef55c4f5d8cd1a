#include <gmock/gmock.h>

#include <set>
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

TEST(KeyTable, NamesEveryKeyWithItsEncodingDefaultRepairAndOutlet) {
    std::vector<std::string> rows;
    for (const auto& key : keyTable) {
        rows.push_back(std::string(key.name) + ": " + describe(key.encoding) + ", " + describe(key.setUpDefault) +
                       ", " + describe(key.repair) + ", " + std::string(key.outlet));
    }
    EXPECT_THAT(rows, testing::UnorderedElementsAre(
                          "colorMatrix: flag, true, written, colorMatrix",                          //
                          "whiteBalance: flag, true, written, whiteBalance",                        //
                          "look: flag, true, written, look",                                        //
                          "gamma: flag, true, written, gamma",                                      //
                          "ColorProcessingPath: integer, 0, written if asked, ",                    //
                          "8bitDebayer: integer, 0, not written, presentationDemosaic",             //
                          "RenderDebayer: integer, 0, not written, renderDemosaic",                 //
                          "QTGammaCorrection: integer, 0, written, fmtQTGamma",                     //
                          "FCPGammaCorrection: integer, 0, written, fmtFCPGamma",                   //
                          "FormatYUV8: flag, true, written, fmtYUV8Bit",                            //
                          "FormatYUV8A: flag, true, written, fmtYUV8BitA",                          //
                          "FormatYUV16: flag, true, written, fmtYUV16Bit",                          //
                          "FormatYUV32: flag, true, written, fmtYUV32Bit",                          //
                          "FormatRGB8: flag, true, written, fmtRGB8Bit",                            //
                          "FormatRGB16: flag, true, written, fmtRGB16Bit",                          //
                          "FormatRGB32: flag, true, written, fmtRGB32Bit",                          //
                          "FCPForceLetterBox: flag, true, written, fmtFCPLetterbox",                //
                          "FormatDualStream3D: flag, never read, not written, fmtDualStream3D",     //
                          "PProCS5HasMovieSetup: flag, true, written lazily, cs5SourceSettings",    //
                          "MaxEncodeThreads: integer, 7, written if lowered, encodeThreads",        //
                          "ShowStereoStatusMenu: flag, true, written, _showStereoStatus",           //
                          "fcpRTEnableSwap: flag, false, written lazily, fcpRTEnable",              //
                          "LUTsPath: text, KVRXLutsPath or \"a path\", written lazily, _LUTsPath",  //
                          "OverridePath: text, KVRXOverridePath or \"a path\", written lazily, _overridePath"));
}

TEST(KeyTable, BelongsToTheCodecsDomain) {
    EXPECT_EQ(codecApplicationID, "com.vantrel.codec");
}

}  // namespace
}  // namespace vantrel

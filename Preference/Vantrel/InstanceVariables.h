#pragma once

#include "platform/Controls.h"

namespace vantrel {

/// What the pane object holds: the outlets that the interface file connects, and the texts that it keeps. The order
/// is that of the Objective-C class's instance variables, which carry the same names.
struct InstanceVariables {
    CheckBox& colorMatrix;
    CheckBox& gamma;
    CheckBox& look;
    CheckBox& whiteBalance;
    CheckBox& filter422To444;
    CheckBox& fmtRGB8Bit;
    CheckBox& fmtRGB16Bit;
    CheckBox& fmtRGB32Bit;
    CheckBox& fmtYUV8Bit;
    CheckBox& fmtYUV16Bit;
    CheckBox& fmtYUV32Bit;
    CheckBox& fmtYUV8BitA;
    CheckBox& fmtDualStream3D;
    RadioMatrix& fmtFCPGamma;
    RadioMatrix& fmtQTGamma;
    CheckBox& fmtFCPLetterbox;
    CheckBox& fcpRTEnable;
    CheckBox& cs5SourceSettings;
    PopUpButton& encodeThreads;
    PopUpButton& decodeThreads;
    PopUpButton& presentationDemosaic;
    PopUpButton& renderDemosaic;
    TextField& LUTsPath;
    TextField& overridePath;
    PushButton& LUTsOK;
    PushButton& LUTsUndo;
    PushButton& overrideOK;
    PushButton& overrideUndo;
    CheckBox& showStereoStatus;
    TextField& versionNumber;
    OwnedString& versionString;
    OwnedString& appID;
    OwnedString& LUTsPathString;
    OwnedString& overridePathString;
};

}  // namespace vantrel

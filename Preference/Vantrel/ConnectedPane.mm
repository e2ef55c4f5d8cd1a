#import "Preference/Vantrel/ConnectedPane.h"

#include "Preference/Vantrel/SystemServices.h"
#import "platform/cocoa/CocoaControls.h"

namespace vantrel {

namespace {

struct ConnectedPane {
    ::VantrelPref *owner;

    cocoa::CocoaCheckBox colorMatrix{owner->colorMatrix};
    cocoa::CocoaCheckBox gamma{owner->gamma};
    cocoa::CocoaCheckBox look{owner->look};
    cocoa::CocoaCheckBox whiteBalance{owner->whiteBalance};
    cocoa::CocoaCheckBox filter422To444{owner->filter422To444};
    cocoa::CocoaCheckBox fmtRGB8Bit{owner->fmtRGB8Bit};
    cocoa::CocoaCheckBox fmtRGB16Bit{owner->fmtRGB16Bit};
    cocoa::CocoaCheckBox fmtRGB32Bit{owner->fmtRGB32Bit};
    cocoa::CocoaCheckBox fmtYUV8Bit{owner->fmtYUV8Bit};
    cocoa::CocoaCheckBox fmtYUV16Bit{owner->fmtYUV16Bit};
    cocoa::CocoaCheckBox fmtYUV32Bit{owner->fmtYUV32Bit};
    cocoa::CocoaCheckBox fmtYUV8BitA{owner->fmtYUV8BitA};
    cocoa::CocoaCheckBox fmtDualStream3D{owner->fmtDualStream3D};
    cocoa::CocoaRadioMatrix fmtFCPGamma{owner->fmtFCPGamma};
    cocoa::CocoaRadioMatrix fmtQTGamma{owner->fmtQTGamma};
    cocoa::CocoaCheckBox fmtFCPLetterbox{owner->fmtFCPLetterbox};
    cocoa::CocoaCheckBox fcpRTEnable{owner->fcpRTEnable};
    cocoa::CocoaCheckBox cs5SourceSettings{owner->cs5SourceSettings};
    cocoa::CocoaPopUpButton encodeThreads{owner->encodeThreads};
    cocoa::CocoaPopUpButton decodeThreads{owner->decodeThreads};
    cocoa::CocoaPopUpButton presentationDemosaic{owner->presentationDemosaic};
    cocoa::CocoaPopUpButton renderDemosaic{owner->renderDemosaic};
    cocoa::CocoaTextField LUTsPath{owner->_LUTsPath};
    cocoa::CocoaTextField overridePath{owner->_overridePath};
    cocoa::CocoaPushButton LUTsOK{owner->_LUTsOK};
    cocoa::CocoaPushButton LUTsUndo{owner->_LUTsUndo};
    cocoa::CocoaPushButton overrideOK{owner->_overrideOK};
    cocoa::CocoaPushButton overrideUndo{owner->_overrideUndo};
    cocoa::CocoaCheckBox showStereoStatus{owner->_showStereoStatus};
    cocoa::CocoaTextField versionNumber{owner->_versionNumber};
    cocoa::CocoaString versionString{owner->_versionString};
    cocoa::CocoaString appID{owner->appID};
    cocoa::CocoaString LUTsPathString{owner->_LUTsPathString};
    cocoa::CocoaString overridePathString{owner->_overridePathString};

    VantrelPref pane{InstanceVariables{
                         .colorMatrix = colorMatrix,
                         .gamma = gamma,
                         .look = look,
                         .whiteBalance = whiteBalance,
                         .filter422To444 = filter422To444,
                         .fmtRGB8Bit = fmtRGB8Bit,
                         .fmtRGB16Bit = fmtRGB16Bit,
                         .fmtRGB32Bit = fmtRGB32Bit,
                         .fmtYUV8Bit = fmtYUV8Bit,
                         .fmtYUV16Bit = fmtYUV16Bit,
                         .fmtYUV32Bit = fmtYUV32Bit,
                         .fmtYUV8BitA = fmtYUV8BitA,
                         .fmtDualStream3D = fmtDualStream3D,
                         .fmtFCPGamma = fmtFCPGamma,
                         .fmtQTGamma = fmtQTGamma,
                         .fmtFCPLetterbox = fmtFCPLetterbox,
                         .fcpRTEnable = fcpRTEnable,
                         .cs5SourceSettings = cs5SourceSettings,
                         .encodeThreads = encodeThreads,
                         .decodeThreads = decodeThreads,
                         .presentationDemosaic = presentationDemosaic,
                         .renderDemosaic = renderDemosaic,
                         .LUTsPath = LUTsPath,
                         .overridePath = overridePath,
                         .LUTsOK = LUTsOK,
                         .LUTsUndo = LUTsUndo,
                         .overrideOK = overrideOK,
                         .overrideUndo = overrideUndo,
                         .showStereoStatus = showStereoStatus,
                         .versionNumber = versionNumber,
                         .versionString = versionString,
                         .appID = appID,
                         .LUTsPathString = LUTsPathString,
                         .overridePathString = overridePathString,
                     },
                     systemServices()};
};

}  // namespace

VantrelPref *connectedPane(::VantrelPref *owner) {
    return &(new ConnectedPane{owner})->pane;
}

}  // namespace vantrel

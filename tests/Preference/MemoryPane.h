#pragma once

#include "Preference/Vantrel/VantrelPref.h"
#include "overrides/MemoryMetadataDictionary.h"
#include "platform/memory/MemoryControls.h"
#include "platform/memory/MemoryFiles.h"
#include "platform/memory/MemoryPreferences.h"
#include "platform/memory/MemorySystem.h"

namespace vantrel::memory {

/// A whole pane on the in-memory platform, its outlets connected.
struct MemoryPane {
    Journal journal;

    MemoryCheckBox colorMatrix{journal, "colorMatrix"};
    MemoryCheckBox gamma{journal, "gamma"};
    MemoryCheckBox look{journal, "look"};
    MemoryCheckBox whiteBalance{journal, "whiteBalance"};
    MemoryCheckBox filter422To444{journal, "filter422To444"};
    MemoryCheckBox fmtRGB8Bit{journal, "fmtRGB8Bit"};
    MemoryCheckBox fmtRGB16Bit{journal, "fmtRGB16Bit"};
    MemoryCheckBox fmtRGB32Bit{journal, "fmtRGB32Bit"};
    MemoryCheckBox fmtYUV8Bit{journal, "fmtYUV8Bit"};
    MemoryCheckBox fmtYUV16Bit{journal, "fmtYUV16Bit"};
    MemoryCheckBox fmtYUV32Bit{journal, "fmtYUV32Bit"};
    MemoryCheckBox fmtYUV8BitA{journal, "fmtYUV8BitA"};
    MemoryCheckBox fmtDualStream3D{journal, "fmtDualStream3D"};
    MemoryRadioMatrix fmtFCPGamma{journal, "fmtFCPGamma"};
    MemoryRadioMatrix fmtQTGamma{journal, "fmtQTGamma"};
    MemoryCheckBox fmtFCPLetterbox{journal, "fmtFCPLetterbox"};
    MemoryCheckBox fcpRTEnable{journal, "fcpRTEnable"};
    MemoryCheckBox cs5SourceSettings{journal, "cs5SourceSettings"};
    MemoryPopUpButton encodeThreads{journal, "encodeThreads"};
    MemoryPopUpButton decodeThreads{journal, "decodeThreads"};
    MemoryPopUpButton presentationDemosaic{journal, "presentationDemosaic"};
    MemoryPopUpButton renderDemosaic{journal, "renderDemosaic"};
    MemoryTextField LUTsPath{journal, "LUTsPath"};
    MemoryTextField overridePath{journal, "overridePath"};
    MemoryPushButton LUTsOK{journal, "LUTsOK"};
    MemoryPushButton LUTsUndo{journal, "LUTsUndo"};
    MemoryPushButton overrideOK{journal, "overrideOK"};
    MemoryPushButton overrideUndo{journal, "overrideUndo"};
    MemoryCheckBox showStereoStatus{journal, "showStereoStatus"};
    MemoryTextField versionNumber{journal, "versionNumber"};
    MemoryString versionString;
    MemoryString appID;
    MemoryString LUTsPathString;
    MemoryString overridePathString;

    MemoryBundle bundle;
    MemoryPreferences preferences{journal};
    MemoryMetadataDictionaryClass overrides{journal};
    MemoryProcessors processors;
    MemoryFiles files{journal};
    MemoryPropertyLists propertyLists{journal};
    MemoryAlerts alerts{journal};
    MemoryLog log{journal};
    MemoryNotifications notifications{journal};

    VantrelPref pane{InstanceVariables{colorMatrix,
                                       gamma,
                                       look,
                                       whiteBalance,
                                       filter422To444,
                                       fmtRGB8Bit,
                                       fmtRGB16Bit,
                                       fmtRGB32Bit,
                                       fmtYUV8Bit,
                                       fmtYUV16Bit,
                                       fmtYUV32Bit,
                                       fmtYUV8BitA,
                                       fmtDualStream3D,
                                       fmtFCPGamma,
                                       fmtQTGamma,
                                       fmtFCPLetterbox,
                                       fcpRTEnable,
                                       cs5SourceSettings,
                                       encodeThreads,
                                       decodeThreads,
                                       presentationDemosaic,
                                       renderDemosaic,
                                       LUTsPath,
                                       overridePath,
                                       LUTsOK,
                                       LUTsUndo,
                                       overrideOK,
                                       overrideUndo,
                                       showStereoStatus,
                                       versionNumber,
                                       versionString,
                                       appID,
                                       LUTsPathString,
                                       overridePathString},
                     Services{preferences, overrides, processors, files, propertyLists, alerts, log, notifications}};

    /// What reads find in the codec's domain. A test fills it before the set-up or looks into it after an action.
    MemoryPreferences::Domain& domain() { return preferences.domain("com.vantrel.codec"); }

    /// Creates and sets up the pane as the host does.
    void load() {
        pane.initWithBundle(bundle);
        pane.mainViewDidLoad();
    }
};

}  // namespace vantrel::memory

#pragma once

#import <AppKit/AppKit.h>
#import <PreferencePanes/PreferencePanes.h>

namespace vantrel {
class VantrelPref;
}

/// The bundle's principal class: the outlets, the actions, and the operations on the settings, each handed to the
/// pane's logic, vantrel::VantrelPref. The interface file connects outlets and actions by these names.
__attribute__((visibility("default")))
@interface VantrelPref : NSPreferencePane {
    IBOutlet NSButton *colorMatrix;
    IBOutlet NSButton *gamma;
    IBOutlet NSButton *look;
    IBOutlet NSButton *whiteBalance;
    IBOutlet NSButton *filter422To444;
    IBOutlet NSButton *fmtRGB8Bit;
    IBOutlet NSButton *fmtRGB16Bit;
    IBOutlet NSButton *fmtRGB32Bit;
    IBOutlet NSButton *fmtYUV8Bit;
    IBOutlet NSButton *fmtYUV16Bit;
    IBOutlet NSButton *fmtYUV32Bit;
    IBOutlet NSButton *fmtYUV8BitA;
    IBOutlet NSButton *fmtDualStream3D;
    IBOutlet NSMatrix *fmtFCPGamma;
    IBOutlet NSMatrix *fmtQTGamma;
    IBOutlet NSButton *fmtFCPLetterbox;
    IBOutlet NSButton *fcpRTEnable;
    IBOutlet NSButton *cs5SourceSettings;
    IBOutlet NSPopUpButton *encodeThreads;
    IBOutlet NSPopUpButton *decodeThreads;
    IBOutlet NSPopUpButton *presentationDemosaic;
    IBOutlet NSPopUpButton *renderDemosaic;
    // The interface file knows them by these names.
    IBOutlet NSTextField *_LUTsPath;
    IBOutlet NSTextField *_overridePath;
    IBOutlet NSButton *_LUTsOK;
    IBOutlet NSButton *_LUTsUndo;
    IBOutlet NSButton *_overrideOK;
    IBOutlet NSButton *_overrideUndo;
    IBOutlet NSButton *_showStereoStatus;
    IBOutlet NSTextField *_versionNumber;
    NSString *_versionString;
    NSString *appID;
    NSString *_LUTsPathString;
    NSString *_overridePathString;

   @private
    vantrel::VantrelPref *_pane;
}

// The codec's settings. The types are the platform's: a control, a key, a flag, a row or bit number.
- (BOOL)initPrefCheck:(NSButton *)control forKey:(NSString *)key;
- (BOOL)initIntPrefCheck:(NSMatrix *)control forKey:(NSString *)key;
- (void)updateBoolPref:(BOOL)value forKey:(NSString *)key;
- (void)updateIntPref:(int)value forKey:(NSString *)key;
- (void)updateBoolPref:(BOOL)value forKey:(NSString *)key forBit:(int)bit;
- (void)setProcPathBit:(int)bit;
- (void)clearProcPathBit:(int)bit;

// Pixel formats and host applications
- (IBAction)fmtRGB8BitCheckBox:(NSButton *)sender;
- (IBAction)fmtRGB16BitCheckBox:(NSButton *)sender;
- (IBAction)fmtRGB32BitCheckBox:(NSButton *)sender;
- (IBAction)fmtYUV8BitCheckBox:(NSButton *)sender;
- (IBAction)fmtYUV16BitCheckBox:(NSButton *)sender;
- (IBAction)fmtYUV32BitCheckBox:(NSButton *)sender;
- (IBAction)fmtYUV8BitACheckBox:(NSButton *)sender;
- (IBAction)fmtDualStream3DCheckBox:(NSButton *)sender;
- (IBAction)fmtFCPLetterboxCheckBox:(NSButton *)sender;
- (IBAction)cs5SourceSettingsCheck:(NSButton *)sender;
- (IBAction)fmtFCPGammaRadioButton:(NSMatrix *)sender;
- (IBAction)fmtQTGammaRadioButton:(NSMatrix *)sender;

// Colour processing
- (IBAction)colorMatrixCheckBox:(NSButton *)sender;
- (IBAction)gammaCheckBox:(NSButton *)sender;
- (IBAction)lookCheckBox:(NSButton *)sender;
- (IBAction)whiteBalanceCheckBox:(NSButton *)sender;
- (IBAction)precisionDemosaicSelect:(NSPopUpButton *)sender;
- (IBAction)presentationDemosaicSelect:(NSPopUpButton *)sender;

// Decoding and threads
- (IBAction)encodeThreadLimitChange:(NSPopUpButton *)sender;
- (IBAction)decodeThreadLimitChange:(NSPopUpButton *)sender;
- (IBAction)filter422To444Button:(NSButton *)sender;

// Folder paths
- (void)controlTextDidChange:(NSNotification *)notification;
- (IBAction)LUTsOKUpdate:(NSButton *)sender;
- (IBAction)LUTSUndoUpdate:(NSButton *)sender;
- (IBAction)overrideOKUpdate:(NSButton *)sender;
- (IBAction)overrideUndoUpdate:(NSButton *)sender;

// Real-time enabler
- (IBAction)fcpRTEnableCheckBox:(NSButton *)sender;

// Stereo status
- (IBAction)stereoModeStatusViewChange:(NSButton *)sender;

@end

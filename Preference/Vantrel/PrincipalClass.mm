#import "Preference/Vantrel/PrincipalClass.h"

#import "Preference/Vantrel/ConnectedPane.h"
#import "platform/cocoa/CocoaControls.h"
#import "platform/cocoa/CocoaSystem.h"
#import "platform/cocoa/CocoaText.h"

// An action has a sender, whether it looks at it or not.
#pragma GCC diagnostic ignored "-Wunused-parameter"

using vantrel::cocoa::CocoaCheckBox;
using vantrel::cocoa::CocoaPopUpButton;
using vantrel::cocoa::CocoaRadioMatrix;
using vantrel::cocoa::toUTF8;

@implementation VantrelPref

- (id)initWithBundle:(NSBundle *)bundle {
    if (!(self = [super initWithBundle:bundle])) return nil;
    _pane = vantrel::connectedPane(self);
    vantrel::cocoa::CocoaBundle paneBundle(bundle);
    _pane->initWithBundle(paneBundle);
    return self;
}

- (void)mainViewDidLoad {
    _pane->mainViewDidLoad();
}

// The codec's settings

- (BOOL)initPrefCheck:(NSButton *)control forKey:(NSString *)key {
    CocoaCheckBox checkBox(control);
    return _pane->store().initPrefCheckForKey(checkBox, toUTF8(key));
}

- (BOOL)initIntPrefCheck:(NSMatrix *)control forKey:(NSString *)key {
    CocoaRadioMatrix matrix(control);
    return _pane->store().initIntPrefCheckForKey(matrix, toUTF8(key));
}

- (void)updateBoolPref:(BOOL)value forKey:(NSString *)key {
    _pane->store().updateBoolPrefForKey(value, toUTF8(key));
}

- (void)updateIntPref:(int)value forKey:(NSString *)key {
    _pane->store().updateIntPrefForKey(value, toUTF8(key));
}

- (void)updateBoolPref:(BOOL)value forKey:(NSString *)key forBit:(int)bit {
    _pane->store().updateBoolPrefForKeyForBit(value, toUTF8(key), bit);
}

- (void)setProcPathBit:(int)bit {
    _pane->store().setProcPathBit(bit);
}

- (void)clearProcPathBit:(int)bit {
    _pane->store().clearProcPathBit(bit);
}

// Pixel formats and host applications

- (IBAction)fmtRGB8BitCheckBox:(NSButton *)sender {
    _pane->fmtRGB8BitCheckBox(CocoaCheckBox(sender));
}

- (IBAction)fmtRGB16BitCheckBox:(NSButton *)sender {
    _pane->fmtRGB16BitCheckBox(CocoaCheckBox(sender));
}

- (IBAction)fmtRGB32BitCheckBox:(NSButton *)sender {
    _pane->fmtRGB32BitCheckBox(CocoaCheckBox(sender));
}

- (IBAction)fmtYUV8BitCheckBox:(NSButton *)sender {
    _pane->fmtYUV8BitCheckBox(CocoaCheckBox(sender));
}

- (IBAction)fmtYUV16BitCheckBox:(NSButton *)sender {
    _pane->fmtYUV16BitCheckBox(CocoaCheckBox(sender));
}

- (IBAction)fmtYUV32BitCheckBox:(NSButton *)sender {
    _pane->fmtYUV32BitCheckBox(CocoaCheckBox(sender));
}

- (IBAction)fmtYUV8BitACheckBox:(NSButton *)sender {
    _pane->fmtYUV8BitACheckBox(CocoaCheckBox(sender));
}

- (IBAction)fmtDualStream3DCheckBox:(NSButton *)sender {
    _pane->fmtDualStream3DCheckBox(CocoaCheckBox(sender));
}

- (IBAction)fmtFCPLetterboxCheckBox:(NSButton *)sender {
    _pane->fmtFCPLetterboxCheckBox(CocoaCheckBox(sender));
}

- (IBAction)cs5SourceSettingsCheck:(NSButton *)sender {
    _pane->cs5SourceSettingsCheck(CocoaCheckBox(sender));
}

- (IBAction)fmtFCPGammaRadioButton:(NSMatrix *)sender {
    _pane->fmtFCPGammaRadioButton();
}

- (IBAction)fmtQTGammaRadioButton:(NSMatrix *)sender {
    _pane->fmtQTGammaRadioButton();
}

// Colour processing

- (IBAction)colorMatrixCheckBox:(NSButton *)sender {
    _pane->colorMatrixCheckBox(CocoaCheckBox(sender));
}

- (IBAction)gammaCheckBox:(NSButton *)sender {
    _pane->gammaCheckBox(CocoaCheckBox(sender));
}

- (IBAction)lookCheckBox:(NSButton *)sender {
    _pane->lookCheckBox(CocoaCheckBox(sender));
}

- (IBAction)whiteBalanceCheckBox:(NSButton *)sender {
    _pane->whiteBalanceCheckBox(CocoaCheckBox(sender));
}

- (IBAction)precisionDemosaicSelect:(NSPopUpButton *)sender {
    _pane->precisionDemosaicSelect(CocoaPopUpButton(sender));
}

- (IBAction)presentationDemosaicSelect:(NSPopUpButton *)sender {
    _pane->presentationDemosaicSelect(CocoaPopUpButton(sender));
}

// Decoding and threads

- (IBAction)encodeThreadLimitChange:(NSPopUpButton *)sender {
    _pane->encodeThreadLimitChange(CocoaPopUpButton(sender));
}

- (IBAction)decodeThreadLimitChange:(NSPopUpButton *)sender {
    _pane->decodeThreadLimitChange(CocoaPopUpButton(sender));
}

- (IBAction)filter422To444Button:(NSButton *)sender {
    _pane->filter422To444Button(CocoaCheckBox(sender));
}

// Folder paths

- (void)controlTextDidChange:(NSNotification *)notification {
    _pane->controlTextDidChange();
}

- (IBAction)LUTsOKUpdate:(NSButton *)sender {
    _pane->LUTsOKUpdate();
}

- (IBAction)LUTSUndoUpdate:(NSButton *)sender {
    _pane->LUTSUndoUpdate();
}

- (IBAction)overrideOKUpdate:(NSButton *)sender {
    _pane->overrideOKUpdate();
}

- (IBAction)overrideUndoUpdate:(NSButton *)sender {
    _pane->overrideUndoUpdate();
}

// Real-time enabler

- (IBAction)fcpRTEnableCheckBox:(NSButton *)sender {
    CocoaCheckBox checkBox(sender);
    _pane->fcpRTEnableCheckBox(checkBox);
}

// Stereo status

- (IBAction)stereoModeStatusViewChange:(NSButton *)sender {
    _pane->stereoModeStatusViewChange(CocoaCheckBox(sender));
}

@end

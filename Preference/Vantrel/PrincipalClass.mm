#import "Preference/Vantrel/PrincipalClass.h"

#include "Preference/Vantrel/VantrelPref.h"
#import "platform/cocoa/CocoaAlerts.h"
#import "platform/cocoa/CocoaOutlets.h"
#import "platform/cocoa/CocoaSystem.h"
#import "platform/cocoa/CocoaText.h"

// An action has a sender, whether it looks at it or not.
#pragma GCC diagnostic ignored "-Wunused-parameter"

using vantrel::key;
using vantrel::cocoa::CocoaCheckBox;
using vantrel::cocoa::CocoaPopUpButton;
using vantrel::cocoa::CocoaRadioMatrix;
using vantrel::cocoa::toUTF8;

/// What serves every pane of the process.
static const vantrel::Services &services() {
    static vantrel::cocoa::CocoaAlerts alerts;
    static vantrel::cocoa::CocoaLog log;
    static const vantrel::Services services = vantrel::systemServices(alerts, log);
    return services;
}

/// The pane's logic with its way to the outlets. It is never torn down, as the pane isn't.
struct ConnectedPane {
    explicit ConnectedPane(id owner) : outlets(owner) {}

    vantrel::cocoa::CocoaOutlets outlets;
    vantrel::VantrelPref pane{outlets, services()};
};

@implementation VantrelPref

- (id)initWithBundle:(NSBundle *)bundle {
    if (!(self = [super initWithBundle:bundle])) return nil;
    _pane = &(new ConnectedPane(self))->pane;
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
    return _pane->setUpFlag(checkBox, toUTF8(key));
}

- (BOOL)initIntPrefCheck:(NSMatrix *)control forKey:(NSString *)key {
    CocoaRadioMatrix matrix(control);
    return _pane->setUpRow(matrix, toUTF8(key));
}

- (void)updateBoolPref:(BOOL)value forKey:(NSString *)key {
    _pane->store().setFlag(toUTF8(key), value);
}

- (void)updateIntPref:(int)value forKey:(NSString *)key {
    _pane->store().setInteger(toUTF8(key), value);
}

- (void)updateBoolPref:(BOOL)value forKey:(NSString *)key forBit:(int)bit {
    _pane->store().setFlagAndBit(toUTF8(key), value, bit);
}

- (void)setProcPathBit:(int)bit {
    _pane->store().setPathBit(bit);
}

- (void)clearProcPathBit:(int)bit {
    _pane->store().clearPathBit(bit);
}

// Pixel formats and host applications

- (IBAction)fmtRGB8BitCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("FormatRGB8"));
}

- (IBAction)fmtRGB16BitCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("FormatRGB16"));
}

- (IBAction)fmtRGB32BitCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("FormatRGB32"));
}

- (IBAction)fmtYUV8BitCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("FormatYUV8"));
}

- (IBAction)fmtYUV16BitCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("FormatYUV16"));
}

- (IBAction)fmtYUV32BitCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("FormatYUV32"));
}

- (IBAction)fmtYUV8BitACheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("FormatYUV8A"));
}

- (IBAction)fmtDualStream3DCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("FormatDualStream3D"));
}

- (IBAction)fmtFCPLetterboxCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("FCPForceLetterBox"));
}

- (IBAction)cs5SourceSettingsCheck:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("PProCS5HasMovieSetup"));
}

- (IBAction)fmtFCPGammaRadioButton:(NSMatrix *)sender {
    _pane->rowChosen(key("FCPGammaCorrection"));
}

- (IBAction)fmtQTGammaRadioButton:(NSMatrix *)sender {
    _pane->rowChosen(key("QTGammaCorrection"));
}

// Colour processing

- (IBAction)colorMatrixCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("colorMatrix"));
}

- (IBAction)gammaCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("gamma"));
}

- (IBAction)lookCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("look"));
}

- (IBAction)whiteBalanceCheckBox:(NSButton *)sender {
    _pane->clicked(CocoaCheckBox(sender), key("whiteBalance"));
}

- (IBAction)precisionDemosaicSelect:(NSPopUpButton *)sender {
    _pane->chosen(CocoaPopUpButton(sender), key("RenderDebayer"));
}

- (IBAction)presentationDemosaicSelect:(NSPopUpButton *)sender {
    _pane->chosen(CocoaPopUpButton(sender), key("8bitDebayer"));
}

// Decoding and threads

- (IBAction)encodeThreadLimitChange:(NSPopUpButton *)sender {
    _pane->chosen(CocoaPopUpButton(sender), key("MaxEncodeThreads"));
}

- (IBAction)decodeThreadLimitChange:(NSPopUpButton *)sender {
    _pane->decodeThreadsChosen(CocoaPopUpButton(sender));
}

- (IBAction)filter422To444Button:(NSButton *)sender {
    _pane->chromaFilterClicked(CocoaCheckBox(sender));
}

// Folder paths

- (void)controlTextDidChange:(NSNotification *)notification {
    _pane->textDidChange();
}

- (IBAction)LUTsOKUpdate:(NSButton *)sender {
    _pane->luts().confirm(_pane->store());
}

- (IBAction)LUTSUndoUpdate:(NSButton *)sender {
    _pane->luts().undo();
}

- (IBAction)overrideOKUpdate:(NSButton *)sender {
    _pane->overrides().confirm(_pane->store());
}

- (IBAction)overrideUndoUpdate:(NSButton *)sender {
    _pane->overrides().undo();
}

// Real-time enabler

- (IBAction)fcpRTEnableCheckBox:(NSButton *)sender {
    CocoaCheckBox checkBox(sender);
    _pane->realTimeEnablerClicked(checkBox);
}

// Stereo status

- (IBAction)stereoModeStatusViewChange:(NSButton *)sender {
    _pane->stereoStatusClicked(CocoaCheckBox(sender));
}

@end

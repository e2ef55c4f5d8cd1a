#include <gmock/gmock.h>
#import <objc/runtime.h>

#include <filesystem>

#import "tests/bundle/Host.h"
#include "tests/host/PrivateMachine.h"

namespace vantrel::host {
namespace {

using testing::IsSupersetOf;
using testing::Pair;
using testing::UnorderedElementsAre;

using Entries = std::vector<std::pair<std::string, std::string>>;

class Bundle : public testing::Test {
   protected:
    Bundle() { emptyHome(); }

    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    ~Bundle() override { [pool release]; }
};

/// A domain in which nothing needs repair, whatever the machine's number of cores.
NSMutableDictionary *completeDomain() {
    NSMutableDictionary *domain = [NSMutableDictionary dictionary];
    for (const char *flag : {"colorMatrix", "whiteBalance", "look", "gamma", "FormatYUV8", "FormatYUV8A", "FormatYUV16",
                             "FormatYUV32", "FormatRGB8", "FormatRGB16", "FormatRGB32", "FCPForceLetterBox",
                             "PProCS5HasMovieSetup", "ShowStereoStatusMenu", "fcpRTEnableSwap"}) {
        [domain setObject:[NSNumber numberWithBool:YES] forKey:[NSString stringWithUTF8String:flag]];
    }
    for (const char *number : {"ColorProcessingPath", "QTGammaCorrection", "FCPGammaCorrection", "MaxEncodeThreads"}) {
        [domain setObject:[NSNumber numberWithInt:0] forKey:[NSString stringWithUTF8String:number]];
    }
    [domain setObject:@"/luts" forKey:@"LUTsPath"];
    [domain setObject:@"/overrides" forKey:@"OverridePath"];
    return domain;
}

std::string text(id object) {
    return [[object description] UTF8String];
}

TEST_F(Bundle, ThePrincipalClassIsAPreferencePane) {
    Class principal = principalClass();
    EXPECT_EQ(text(NSStringFromClass(principal)), "VantrelPref");
    EXPECT_TRUE([principal isSubclassOfClass:[NSPreferencePane class]]);
}

TEST_F(Bundle, APaneWithoutABundleIsNone) {
    Class principal = principalClass();
    EXPECT_EQ([[principal alloc] initWithBundle:nil], nil);
}

TEST_F(Bundle, ThePaneKeepsApplicationIDVersionAndCommittedFolders) {
    writeDomainFile(completeDomain());
    const Pane pane;
    EXPECT_EQ(text(pane.variable("appID")), "com.vantrel.codec");
    EXPECT_EQ(text(pane.variable("_versionString")), BUNDLE_VERSION);
    EXPECT_EQ(text(pane.variable("_LUTsPathString")), "/luts");
    EXPECT_EQ(text(pane.variable("_overridePathString")), "/overrides");
    EXPECT_EQ(text([pane.variable("_versionNumber") stringValue]), BUNDLE_VERSION);
}

TEST_F(Bundle, TheInstanceVariablesStandInTheOrderThatOtherBuildsHaveThem) {
    const char *const names[] = {"colorMatrix",
                                 "gamma",
                                 "look",
                                 "whiteBalance",
                                 "filter422To444",
                                 "fmtRGB8Bit",
                                 "fmtRGB16Bit",
                                 "fmtRGB32Bit",
                                 "fmtYUV8Bit",
                                 "fmtYUV16Bit",
                                 "fmtYUV32Bit",
                                 "fmtYUV8BitA",
                                 "fmtDualStream3D",
                                 "fmtFCPGamma",
                                 "fmtQTGamma",
                                 "fmtFCPLetterbox",
                                 "fcpRTEnable",
                                 "cs5SourceSettings",
                                 "encodeThreads",
                                 "decodeThreads",
                                 "presentationDemosaic",
                                 "renderDemosaic",
                                 "_LUTsPath",
                                 "_overridePath",
                                 "_LUTsOK",
                                 "_LUTsUndo",
                                 "_overrideOK",
                                 "_overrideUndo",
                                 "_showStereoStatus",
                                 "_versionNumber",
                                 "_versionString",
                                 "appID",
                                 "_LUTsPathString",
                                 "_overridePathString"};
    Class principal = principalClass();
    ptrdiff_t previous = 0;
    for (const char *name : names) {
        Ivar variable = class_getInstanceVariable(principal, name);
        ASSERT_TRUE(variable) << name;
        EXPECT_GT(ivar_getOffset(variable), previous) << name;
        previous = ivar_getOffset(variable);
    }
}

struct Connection {
    const char *outlet;
    const char *controlClass;
    const char *action;
};

class EveryControl : public Bundle, public testing::WithParamInterface<Connection> {};

TEST_P(EveryControl, IsConnectedToItsOutletAndSendsItsActionToThePane) {
    const Pane pane;
    id control = pane.variable(GetParam().outlet);
    EXPECT_TRUE([control isKindOfClass:objc_getClass(GetParam().controlClass)]);
    EXPECT_EQ([control target], pane.object());
    EXPECT_STREQ(sel_getName([control action]), GetParam().action);
    EXPECT_TRUE([pane.object() respondsToSelector:sel_registerName(GetParam().action)]);
}

INSTANTIATE_TEST_SUITE_P(
    ByName, EveryControl,
    testing::Values(Connection{"colorMatrix", "NSButton", "colorMatrixCheckBox:"},
                    Connection{"gamma", "NSButton", "gammaCheckBox:"}, Connection{"look", "NSButton", "lookCheckBox:"},
                    Connection{"whiteBalance", "NSButton", "whiteBalanceCheckBox:"},
                    Connection{"filter422To444", "NSButton", "filter422To444Button:"},
                    Connection{"fmtRGB8Bit", "NSButton", "fmtRGB8BitCheckBox:"},
                    Connection{"fmtRGB16Bit", "NSButton", "fmtRGB16BitCheckBox:"},
                    Connection{"fmtRGB32Bit", "NSButton", "fmtRGB32BitCheckBox:"},
                    Connection{"fmtYUV8Bit", "NSButton", "fmtYUV8BitCheckBox:"},
                    Connection{"fmtYUV16Bit", "NSButton", "fmtYUV16BitCheckBox:"},
                    Connection{"fmtYUV32Bit", "NSButton", "fmtYUV32BitCheckBox:"},
                    Connection{"fmtYUV8BitA", "NSButton", "fmtYUV8BitACheckBox:"},
                    Connection{"fmtDualStream3D", "NSButton", "fmtDualStream3DCheckBox:"},
                    Connection{"fmtFCPGamma", "NSMatrix", "fmtFCPGammaRadioButton:"},
                    Connection{"fmtQTGamma", "NSMatrix", "fmtQTGammaRadioButton:"},
                    Connection{"fmtFCPLetterbox", "NSButton", "fmtFCPLetterboxCheckBox:"},
                    Connection{"fcpRTEnable", "NSButton", "fcpRTEnableCheckBox:"},
                    Connection{"cs5SourceSettings", "NSButton", "cs5SourceSettingsCheck:"},
                    Connection{"encodeThreads", "NSPopUpButton", "encodeThreadLimitChange:"},
                    Connection{"decodeThreads", "NSPopUpButton", "decodeThreadLimitChange:"},
                    Connection{"presentationDemosaic", "NSPopUpButton", "presentationDemosaicSelect:"},
                    Connection{"renderDemosaic", "NSPopUpButton", "precisionDemosaicSelect:"},
                    Connection{"_LUTsOK", "NSButton", "LUTsOKUpdate:"},
                    Connection{"_LUTsUndo", "NSButton", "LUTSUndoUpdate:"},
                    Connection{"_overrideOK", "NSButton", "overrideOKUpdate:"},
                    Connection{"_overrideUndo", "NSButton", "overrideUndoUpdate:"},
                    Connection{"_showStereoStatus", "NSButton", "stereoModeStatusViewChange:"}),
    [](const auto &test) { return std::string(test.param.outlet); });

TEST_F(Bundle, BothFoldersAreEditableFieldsWhoseDelegateIsThePane) {
    const Pane pane;
    for (const char *outlet : {"_LUTsPath", "_overridePath"}) {
        EXPECT_TRUE([pane.variable(outlet) isKindOfClass:[NSTextField class]]) << outlet;
        EXPECT_TRUE([pane.variable(outlet) isEditable]) << outlet;
        EXPECT_EQ([pane.variable(outlet) delegate], pane.object()) << outlet;
    }
}

TEST_F(Bundle, TheFolderButtonsStartDisabledAndEverythingElseEnabled) {
    const Pane pane;
    for (const char *outlet : {"_LUTsOK", "_LUTsUndo", "_overrideOK", "_overrideUndo"}) {
        EXPECT_FALSE([pane.variable(outlet) isEnabled]) << outlet;
    }
    for (const char *outlet : {"fmtRGB8Bit", "fcpRTEnable", "cs5SourceSettings", "encodeThreads", "_LUTsPath"}) {
        EXPECT_TRUE([pane.variable(outlet) isEnabled]) << outlet;
    }
}

TEST_F(Bundle, TheViewIsAsWideAsTheHostsBox) {
    const Pane pane;
    EXPECT_EQ([[pane.object() mainView] bounds].size.width, 570);
    EXPECT_LE([[pane.object() mainView] bounds].size.height, 620);
}

TEST_F(Bundle, OpeningOnACompleteDomainWritesNothing) {
    writeDomainFile(completeDomain());
    const auto before = domainFile();
    const Pane pane;
    EXPECT_EQ(domainFile(), before);
}

TEST_F(Bundle, OpeningOnAnEmptyDomainSynchronisesAllButTheLastGroups) {
    const Pane pane;
    auto synchronised = domainFile();
    synchronised.erase("MaxEncodeThreads");  // there or not, by the number of cores
    EXPECT_THAT(
        synchronised,
        UnorderedElementsAre(Pair("whiteBalance", "bool 1"), Pair("colorMatrix", "bool 1"), Pair("look", "bool 1"),
                             Pair("gamma", "bool 1"), Pair("ColorProcessingPath", "number 46"),
                             Pair("QTGammaCorrection", "number 0"), Pair("FCPGammaCorrection", "number 0"),
                             Pair("FormatYUV8", "bool 1"), Pair("FormatYUV8A", "bool 1"), Pair("FormatYUV16", "bool 1"),
                             Pair("FormatYUV32", "bool 1"), Pair("FormatRGB8", "bool 1"), Pair("FormatRGB16", "bool 1"),
                             Pair("FormatRGB32", "bool 1"), Pair("FCPForceLetterBox", "bool 1"),
                             Pair("ShowStereoStatusMenu", "bool 1")));

    pane.click("fmtRGB8Bit");
    EXPECT_THAT(domainFile(),
                IsSupersetOf(Entries{
                    {"FormatRGB8", "bool 0"}, {"fcpRTEnableSwap", "bool 0"}, {"PProCS5HasMovieSetup", "bool 1"}}));
    EXPECT_TRUE(domainFile().contains("LUTsPath"));
    EXPECT_TRUE(domainFile().contains("OverridePath"));
    EXPECT_FALSE(domainFile().contains("FormatDualStream3D"));
}

struct Flag {
    const char *outlet;
    const char *key;
};

class EveryFlag : public Bundle, public testing::WithParamInterface<Flag> {};

TEST_P(EveryFlag, IsOnDiskAloneAsSoonAsItsCheckBoxIsClicked) {
    writeDomainFile(completeDomain());
    const Pane pane;
    auto expected = domainFile();
    [pane.variable(GetParam().outlet) setState:NSOnState];
    for (const char *value : {"bool 0", "bool 1"}) {
        pane.click(GetParam().outlet);
        expected[GetParam().key] = value;
        auto stored = domainFile();
        stored["ColorProcessingPath"] = expected["ColorProcessingPath"];  // which a stage changes
        EXPECT_EQ(stored, expected);
    }
}

INSTANTIATE_TEST_SUITE_P(
    ByName, EveryFlag,
    testing::Values(Flag{"fmtRGB8Bit", "FormatRGB8"}, Flag{"fmtRGB16Bit", "FormatRGB16"},
                    Flag{"fmtRGB32Bit", "FormatRGB32"}, Flag{"fmtYUV8Bit", "FormatYUV8"},
                    Flag{"fmtYUV16Bit", "FormatYUV16"}, Flag{"fmtYUV32Bit", "FormatYUV32"},
                    Flag{"fmtYUV8BitA", "FormatYUV8A"}, Flag{"fmtDualStream3D", "FormatDualStream3D"},
                    Flag{"fmtFCPLetterbox", "FCPForceLetterBox"}, Flag{"cs5SourceSettings", "PProCS5HasMovieSetup"},
                    Flag{"colorMatrix", "colorMatrix"}, Flag{"whiteBalance", "whiteBalance"}, Flag{"look", "look"},
                    Flag{"gamma", "gamma"}, Flag{"_showStereoStatus", "ShowStereoStatusMenu"}),
    [](const auto &test) { return std::string(test.param.outlet); });

TEST_F(Bundle, AStageSwitchedOnAddsItsBitAndBitZero) {
    NSMutableDictionary *domain = completeDomain();
    [domain setObject:[NSNumber numberWithInt:0x300000] forKey:@"ColorProcessingPath"];
    [domain setObject:[NSNumber numberWithBool:NO] forKey:@"gamma"];
    writeDomainFile(domain);
    const Pane pane;
    pane.click("gamma");
    EXPECT_EQ(domainFile()["ColorProcessingPath"], "number " + std::to_string(0x300021));
    pane.click("gamma");
    EXPECT_EQ(domainFile()["ColorProcessingPath"], "number " + std::to_string(0x300001));
}

TEST_F(Bundle, AChosenRowOrItemIsStoredByItsIndexUnderItsOwnKey) {
    NSMutableDictionary *domain = completeDomain();
    [domain setObject:[NSNumber numberWithInt:0x2F] forKey:@"ColorProcessingPath"];
    writeDomainFile(domain);
    const Pane pane;
    auto expected = domainFile();
    const struct {
        const char *outlet;
        NSInteger index;
        Entries stored;
    } choices[] = {
        {"fmtFCPGamma", 1, {{"FCPGammaCorrection", "number 1"}}},
        {"fmtQTGamma", 1, {{"QTGammaCorrection", "number 1"}}},
        {"fmtFCPGamma", 0, {{"FCPGammaCorrection", "number 0"}}},
        {"renderDemosaic", 2, {{"RenderDebayer", "number 2"}, {"ColorProcessingPath", "number 2097199"}}},
        {"presentationDemosaic", 1, {{"8bitDebayer", "number 1"}, {"ColorProcessingPath", "number 2162735"}}},
        {"encodeThreads", 0, {{"MaxEncodeThreads", "number 0"}}},
    };
    for (const auto &choice : choices) {
        pane.choose(choice.outlet, choice.index);
        for (const auto &[key, value] : choice.stored) expected[key] = value;
        EXPECT_EQ(domainFile(), expected) << choice.outlet;
    }
}

TEST_F(Bundle, BothDemosaicMenusOfferTheSameSixteenOrFewerMethods) {
    const Pane pane;
    NSArray *titles = [pane.variable("renderDemosaic") itemTitles];
    EXPECT_TRUE([titles isEqual:[pane.variable("presentationDemosaic") itemTitles]]);
    EXPECT_GE([titles count], 2U);
    EXPECT_LE([titles count], 16U);
}

TEST_F(Bundle, IndicesOutsideTheRealMenusSelectNothingAndStopNothing) {
    NSMutableDictionary *domain = completeDomain();
    [domain setObject:[NSNumber numberWithInt:99] forKey:@"RenderDebayer"];
    [domain setObject:[NSNumber numberWithInt:-5] forKey:@"8bitDebayer"];
    [domain setObject:[NSNumber numberWithInt:-3] forKey:@"MaxEncodeThreads"];
    [domain setObject:[NSNumber numberWithBool:NO] forKey:@"PProCS5HasMovieSetup"];
    writeDomainFile(domain);
    const auto before = domainFile();
    const Pane pane;
    for (const char *outlet : {"renderDemosaic", "presentationDemosaic", "encodeThreads"}) {
        EXPECT_EQ([pane.variable(outlet) indexOfSelectedItem], -1) << outlet;
    }
    EXPECT_EQ([pane.variable("cs5SourceSettings") state], NSOffState);
    EXPECT_EQ(domainFile(), before);
}

TEST_F(Bundle, TheThreadMenusAreFilledFromTheNumberOfCores) {
    const Pane pane;
    const NSInteger cores = [pane.variable("encodeThreads") numberOfItems];
    EXPECT_GE(cores, 1);
    EXPECT_EQ([pane.variable("decodeThreads") numberOfItems], cores + 1);
    EXPECT_EQ(text([pane.variable("encodeThreads") itemTitleAtIndex:0]), "1");
    EXPECT_EQ(text([pane.variable("decodeThreads") itemTitleAtIndex:0]), "All");
    EXPECT_EQ(text([pane.variable("decodeThreads") itemTitleAtIndex:1]), "1");
}

TEST_F(Bundle, DecodeLimitAndChromaFilterAreInTheOverrideRecord) {
    writeDomainFile(completeDomain());
    const Pane pane;
    [pane.variable("filter422To444") setState:NSOffState];
    pane.click("filter422To444");
    pane.choose("decodeThreads", 1);
    EXPECT_THAT(overrideRecord(), UnorderedElementsAre(Pair("CLSF", "number 1"), Pair("CPUM", "number 1")));
    EXPECT_FALSE(domainFile().contains("CPUM"));

    const Pane next;
    EXPECT_EQ([next.variable("filter422To444") state], NSOnState);
    EXPECT_EQ([next.variable("decodeThreads") indexOfSelectedItem], 1);
}

/// A folder with its field and buttons, and those of the other, which must not notice.
struct Folder {
    const char *key;
    const char *field;
    const char *ok;
    const char *undo;
    const char *committed;
    const char *otherKey;
    const char *otherOK;
    const char *otherUndo;
};

class EveryFolder : public Bundle, public testing::WithParamInterface<Folder> {
   protected:
    EveryFolder() { writeDomainFile(completeDomain()); }
};

TEST_P(EveryFolder, HasItsButtonsEnabledByTypingAndItsTextStoredByOK) {
    const Pane pane;
    const std::string before = domainFile()[GetParam().key];
    const std::string others = domainFile()[GetParam().otherKey];
    pane.type(GetParam().field, @"/Volumes/LUTs & <Looks> \u6f22");
    EXPECT_TRUE([pane.variable(GetParam().ok) isEnabled]);
    EXPECT_TRUE([pane.variable(GetParam().undo) isEnabled]);
    EXPECT_FALSE([pane.variable(GetParam().otherOK) isEnabled]);
    EXPECT_FALSE([pane.variable(GetParam().otherUndo) isEnabled]);
    EXPECT_EQ(domainFile()[GetParam().key], before);

    pane.click(GetParam().ok);
    EXPECT_EQ(domainFile()[GetParam().key], "string /Volumes/LUTs & <Looks> \u6f22");
    EXPECT_EQ(domainFile()[GetParam().otherKey], others);
    EXPECT_EQ(text(pane.variable(GetParam().committed)), "/Volumes/LUTs & <Looks> \u6f22");
    EXPECT_FALSE([pane.variable(GetParam().ok) isEnabled]);
    EXPECT_FALSE([pane.variable(GetParam().undo) isEnabled]);
}

TEST_P(EveryFolder, ShowsItsCommittedTextAgainAfterUndoAndWritesNothing) {
    const Pane pane;
    const std::string before = text([pane.variable(GetParam().field) stringValue]);
    const auto stored = domainFile();
    pane.type(GetParam().field, @"/elsewhere");
    pane.click(GetParam().undo);
    EXPECT_EQ(text([pane.variable(GetParam().field) stringValue]), before);
    EXPECT_EQ(domainFile(), stored);
    EXPECT_FALSE([pane.variable(GetParam().ok) isEnabled]);
    EXPECT_FALSE([pane.variable(GetParam().undo) isEnabled]);
}

INSTANTIATE_TEST_SUITE_P(ByName, EveryFolder,
                         testing::Values(Folder{"LUTsPath", "_LUTsPath", "_LUTsOK", "_LUTsUndo", "_LUTsPathString",
                                                "OverridePath", "_overrideOK", "_overrideUndo"},
                                         Folder{"OverridePath", "_overridePath", "_overrideOK", "_overrideUndo",
                                                "_overridePathString", "LUTsPath", "_LUTsOK", "_LUTsUndo"}),
                         [](const auto &test) { return std::string(test.param.key); });

TEST_F(Bundle, AFolderMayBeAnyText) {
    writeDomainFile(completeDomain());
    const Pane pane;
    NSString *const texts[] = {@"", [@"" stringByPaddingToLength:5000 withString:@"/folder" startingAtIndex:0],
                               @"\U0001F3AC \u05e9\u05dc\u05d5\u05dd \u0627\u0644\u0623\u0644\u0648\u0627\u0646",
                               @"\\U0041 &amp; ]]> \"'"};
    for (NSString *folder : texts) {
        pane.type("_overridePath", folder);
        pane.click("_overrideOK");
        EXPECT_EQ(domainFile()["OverridePath"], "string " + text(folder));

        const Pane next;
        EXPECT_EQ(text([next.variable("_overridePath") stringValue]), text(folder));
    }
}

TEST_F(Bundle, AFolderWithHalfASurrogatePairIsShownAndKept) {
    const unichar units[] = {'/', 'l', 0xD83C, 0xDFAC, '!'};
    NSString *const whole = [NSString stringWithCharacters:units length:5];
    for (NSString *half : {[whole substringToIndex:3], [whole substringFromIndex:3]}) {
        NSMutableDictionary *domain = completeDomain();
        [domain setObject:half forKey:@"LUTsPath"];
        writeDomainFile(domain);
        const Pane pane;
        EXPECT_TRUE([[pane.variable("_LUTsPath") stringValue] isEqual:half]);
        EXPECT_TRUE([pane.variable("_LUTsPathString") isEqual:half]);

        pane.type("_overridePath", half);
        pane.click("_overrideOK");
        const Pane next;
        EXPECT_TRUE([[next.variable("_LUTsPath") stringValue] isEqual:half]);
        EXPECT_TRUE([[next.variable("_overridePath") stringValue] isEqual:half]);
    }
}

TEST_F(Bundle, FontsThatAreAlreadyPreferredComeBeforeTheJapaneseOnes) {
    writeDomainFile(completeDomain());
    const Pane pane;
    NSArray *const preferred = [[[NSFont preferredFontNames] retain] autorelease];
    [NSFont setPreferredFontNames:[NSArray arrayWithObject:@"Another"]];
    [NSClassFromString(@"VantrelPaneView") initialize];
    EXPECT_EQ([[NSFont preferredFontNames] indexOfObject:@"Another"], 0U);
    EXPECT_TRUE([[NSFont preferredFontNames] containsObject:@"IPAexGothic"]);
    [NSFont setPreferredFontNames:preferred];
}

TEST_F(Bundle, TheOperationsOnTheSettingsAnswerToTheirSelectors) {
    writeDomainFile(completeDomain());
    const Pane pane;
    id<StoreOperations> store = (id<StoreOperations>)pane.object();

    [store updateBoolPref:NO forKey:@"FormatRGB8"];
    EXPECT_EQ(domainFile()["FormatRGB8"], "bool 0");
    [store updateIntPref:-1 forKey:@"QTGammaCorrection"];
    EXPECT_EQ(domainFile()["QTGammaCorrection"], "number -1");
    [store updateBoolPref:YES forKey:@"look" forBit:3];
    EXPECT_EQ(domainFile()["ColorProcessingPath"], "number 9");
    [store setProcPathBit:5];
    EXPECT_EQ(domainFile()["ColorProcessingPath"], "number 41");
    [store clearProcPathBit:3];
    EXPECT_EQ(domainFile()["ColorProcessingPath"], "number 33");

    NSButton *box = pane.variable("fmtRGB8Bit");
    EXPECT_FALSE([store initPrefCheck:box forKey:@"FormatRGB8"]);
    EXPECT_EQ([box state], NSOffState);
    EXPECT_TRUE([store initPrefCheck:box forKey:@"no such key"]);
    EXPECT_EQ([box state], NSOnState);
    NSMatrix *matrix = pane.variable("fmtQTGamma");
    EXPECT_TRUE([store initIntPrefCheck:matrix forKey:@"QTGammaCorrection"]);
    EXPECT_EQ([matrix selectedRow], 0);
}

TEST_F(Bundle, AMissingGammaRowSwitchesTheFirstRowOnInTheRealMatrix) {
    NSMutableDictionary *domain = completeDomain();
    [domain removeObjectForKey:@"QTGammaCorrection"];
    [domain setObject:[NSNumber numberWithInt:1] forKey:@"FCPGammaCorrection"];
    writeDomainFile(domain);
    const Pane pane;
    EXPECT_EQ([pane.variable("fmtQTGamma") selectedRow], 0);
    EXPECT_EQ([pane.variable("fmtFCPGamma") selectedRow], 1);
}

// What the platform is told

/// A method of the platform, replaced for a while.
class Replaced {
   public:
    template <typename Function>
    Replaced(const char *className, const char *selector, Function *by)
        : method_(class_getInstanceMethod(objc_getClass(className), sel_registerName(selector))),
          original_(method_setImplementation(method_, reinterpret_cast<IMP>(reinterpret_cast<void *>(by)))) {}
    ~Replaced() { method_setImplementation(method_, original_); }
    Replaced(const Replaced &) = delete;
    Replaced &operator=(const Replaced &) = delete;

   private:
    Method method_;
    IMP original_;
};

std::vector<std::string> heard;

NSInteger runNothing(NSAlert *alert, SEL) {
    heard.push_back(text([alert messageText]) + " / " + text([alert informativeText]));
    return 0;
}

void hear(id, SEL, NSString *name, NSString *object, NSDictionary *userInfo, BOOL atOnce) {
    // The application posts notifications of its own.
    if (![name hasPrefix:@"Stereo"]) return;
    heard.push_back(text(name) + " from " + text(object) + (userInfo ? " with information" : "") +
                    (atOnce ? " at once" : ""));
}

void raise(id, SEL, NSString *name, NSString *, NSDictionary *, BOOL) {
    if (![name hasPrefix:@"Stereo"]) return;
    [NSException raise:NSInternalInconsistencyException format:@"no daemon"];
}

// What each control shows

/// Every check box that shows a flag of the domain, with its key.
const Flag shownFlags[] = {{"fmtRGB8Bit", "FormatRGB8"},
                           {"fmtRGB16Bit", "FormatRGB16"},
                           {"fmtRGB32Bit", "FormatRGB32"},
                           {"fmtYUV8Bit", "FormatYUV8"},
                           {"fmtYUV16Bit", "FormatYUV16"},
                           {"fmtYUV32Bit", "FormatYUV32"},
                           {"fmtYUV8BitA", "FormatYUV8A"},
                           {"fmtFCPLetterbox", "FCPForceLetterBox"},
                           {"fcpRTEnable", "fcpRTEnableSwap"},
                           {"cs5SourceSettings", "PProCS5HasMovieSetup"},
                           {"colorMatrix", "colorMatrix"},
                           {"whiteBalance", "whiteBalance"},
                           {"look", "look"},
                           {"gamma", "gamma"},
                           {"_showStereoStatus", "ShowStereoStatusMenu"}};

TEST_F(Bundle, EachCheckBoxShowsItsOwnFlagAndNoOther) {
    writeDomainFile(completeDomain());
    const Pane pane;
    for (const auto &shown : shownFlags) {
        NSMutableDictionary *domain = completeDomain();
        [domain setObject:[NSNumber numberWithBool:NO] forKey:[NSString stringWithUTF8String:shown.key]];
        writeDomainFile(domain);
        [pane.object() mainViewDidLoad];
        for (const auto &flag : shownFlags) {
            EXPECT_EQ([pane.variable(flag.outlet) state], flag.key == shown.key ? NSOffState : NSOnState)
                << flag.outlet << " when " << shown.key << " is false";
        }
    }
}

TEST_F(Bundle, EachMatrixMenuAndFieldShowsItsOwnKey) {
    NSMutableDictionary *domain = completeDomain();
    [domain setObject:[NSNumber numberWithInt:1] forKey:@"QTGammaCorrection"];
    [domain setObject:[NSNumber numberWithInt:1] forKey:@"8bitDebayer"];
    [domain setObject:[NSNumber numberWithInt:2] forKey:@"RenderDebayer"];
    writeDomainFile(domain);
    const Pane pane;
    EXPECT_EQ([pane.variable("fmtQTGamma") selectedRow], 1);
    EXPECT_EQ([pane.variable("fmtFCPGamma") selectedRow], 0);
    EXPECT_EQ([pane.variable("presentationDemosaic") indexOfSelectedItem], 1);
    EXPECT_EQ([pane.variable("renderDemosaic") indexOfSelectedItem], 2);
    EXPECT_EQ([pane.variable("encodeThreads") indexOfSelectedItem], 0);
    EXPECT_EQ(text([pane.variable("_LUTsPath") stringValue]), "/luts");
    EXPECT_EQ(text([pane.variable("_overridePath") stringValue]), "/overrides");
}

TEST_F(Bundle, ASecondSetUpShowsWhatIsStoredByThen) {
    writeDomainFile(completeDomain());
    const Pane pane;
    NSMutableDictionary *domain = completeDomain();
    [domain setObject:[NSNumber numberWithInt:1] forKey:@"FCPGammaCorrection"];
    [domain setObject:@"/elsewhere" forKey:@"LUTsPath"];
    writeDomainFile(domain);
    [pane.object() mainViewDidLoad];
    EXPECT_EQ([pane.variable("fmtFCPGamma") selectedRow], 1);
    EXPECT_EQ(text([pane.variable("_LUTsPath") stringValue]), "/elsewhere");
    EXPECT_EQ(text([pane.variable("_LUTsPathString") description]), "/elsewhere");

    [domain removeObjectForKey:@"FCPGammaCorrection"];
    writeDomainFile(domain);
    [pane.object() mainViewDidLoad];
    EXPECT_EQ([pane.variable("fmtFCPGamma") selectedRow], 0);
    EXPECT_EQ(domainFile()["FCPGammaCorrection"], "number 0");
}

TEST_F(Bundle, TheSetUpEnablesTheTwoHostFlagsAndNothingElse) {
    const Pane pane;
    for (const char *outlet : {"fcpRTEnable", "cs5SourceSettings", "fmtRGB8Bit", "fmtFCPLetterbox"}) {
        [pane.variable(outlet) setEnabled:NO];
    }
    [pane.object() mainViewDidLoad];
    EXPECT_TRUE([pane.variable("fcpRTEnable") isEnabled]);
    EXPECT_TRUE([pane.variable("cs5SourceSettings") isEnabled]);
    EXPECT_FALSE([pane.variable("fmtRGB8Bit") isEnabled]);
    EXPECT_FALSE([pane.variable("fmtFCPLetterbox") isEnabled]);
}

TEST_F(Bundle, ARowIsOneThatTheMatrixHas) {
    NSMutableDictionary *domain = completeDomain();
    const Pane pane;
    const NSInteger rows = [pane.variable("fmtQTGamma") numberOfRows];
    [domain setObject:[NSNumber numberWithInteger:rows] forKey:@"QTGammaCorrection"];
    [domain setObject:[NSNumber numberWithInteger:rows - 1] forKey:@"FCPGammaCorrection"];
    writeDomainFile(domain);
    [pane.object() mainViewDidLoad];
    EXPECT_EQ([pane.variable("fmtQTGamma") selectedRow], 0);
    EXPECT_EQ(domainFile()["QTGammaCorrection"], "number 0");
    EXPECT_EQ([pane.variable("fmtFCPGamma") selectedRow], rows - 1);
    EXPECT_EQ(domainFile()["FCPGammaCorrection"], "number " + std::to_string(rows - 1));
}

TEST_F(Bundle, TheMixedStateIsStoredAsOnAndTheFiltersAsItIs) {
    const Pane pane;
    pane.set("fmtRGB8Bit", NSMixedState);
    EXPECT_EQ(domainFile()["FormatRGB8"], "bool 1");
    pane.set("look", NSMixedState);
    EXPECT_EQ(domainFile()["look"], "bool 1");
    pane.set("filter422To444", NSMixedState);
    EXPECT_EQ(overrideRecord()["CLSF"], "number -1");
}

TEST_F(Bundle, AnyByteButZeroIsTrue) {
    const Pane pane;
    id<StoreOperations> store = (id<StoreOperations>)pane.object();
    for (const signed char value : {2, -1, -128, 127}) {
        [store updateBoolPref:NO forKey:@"FormatRGB8"];
        [store updateBoolPref:static_cast<BOOL>(value) forKey:@"FormatRGB8"];
        EXPECT_EQ(domainFile()["FormatRGB8"], "bool 1") << int{value};
    }
}

TEST_F(Bundle, TheChecksOfASetUpTellWhetherTheyWrote) {
    writeDomainFile(completeDomain());
    const Pane pane;
    id<StoreOperations> store = (id<StoreOperations>)pane.object();
    EXPECT_FALSE([store initPrefCheck:pane.variable("fmtRGB8Bit") forKey:@"FormatRGB8"]);
    EXPECT_TRUE([store initPrefCheck:pane.variable("fmtRGB8Bit") forKey:@"no such flag"]);
    EXPECT_FALSE([store initIntPrefCheck:pane.variable("fmtQTGamma") forKey:@"QTGammaCorrection"]);
    EXPECT_TRUE([store initIntPrefCheck:pane.variable("fmtQTGamma") forKey:@"no such row"]);
    EXPECT_FALSE(domainFile().contains("no such flag"));
    [store updateBoolPref:YES forKey:@"FormatRGB8"];
    EXPECT_EQ(domainFile()["no such flag"], "bool 1");
    EXPECT_EQ(domainFile()["no such row"], "number 0");
}

// What may be missing

TEST_F(Bundle, OutletsAndSendersMayBeNil) {
    const Replaced runModal("NSAlert", "runModal", runNothing);
    writeDomainFile(completeDomain());
    NSPreferencePane *pane = [[principalClass() alloc] initWithBundle:bundle()];
    [pane mainViewDidLoad];
    unsigned int count = 0;
    Method *methods = class_copyMethodList(principalClass(), &count);
    int actions = 0;
    for (unsigned int i = 0; i < count; ++i) {
        const std::string name = sel_getName(method_getName(methods[i]));
        if (std::count(name.begin(), name.end(), ':') != 1 || name.starts_with("init") || name.ends_with("Bit:"))
            continue;
        [pane performSelector:method_getName(methods[i]) withObject:nil];
        ++actions;
    }
    free(methods);
    EXPECT_EQ(actions, 28);
    EXPECT_EQ(domainFile()["FormatRGB8"], "bool 0");
    EXPECT_EQ(domainFile()["LUTsPath"], "string ");
}

/// A bundle with nothing in it but its identifier.
NSBundle *bareBundle() {
    NSString *path = [NSString stringWithUTF8String:(home() + "/Bare.prefPane").c_str()];
    [[NSFileManager defaultManager] createDirectoryAtPath:[path stringByAppendingPathComponent:@"Resources"]
                              withIntermediateDirectories:YES
                                               attributes:nil
                                                    error:nullptr];
    writeList([NSDictionary dictionaryWithObject:@"bare" forKey:@"CFBundleIdentifier"],
              [path stringByAppendingPathComponent:@"Resources/Info-gnustep.plist"]);
    return [NSBundle bundleWithPath:path];
}

TEST_F(Bundle, ABundleWithoutVersionAndTextsShowsNoVersionAndAPath) {
    NSPreferencePane *pane = [[principalClass() alloc] initWithBundle:bareBundle()];
    ASSERT_TRUE(pane);
    const auto variable = [&](const char *name) {
        return object_getIvar(pane, class_getInstanceVariable(principalClass(), name));
    };
    EXPECT_EQ(variable("_versionString"), nil);
    EXPECT_EQ(text(variable("_LUTsPathString")), "a path");
    EXPECT_EQ(text(variable("_overridePathString")), "a path");
    [pane mainViewDidLoad];
    [(id<StoreOperations>)pane updateBoolPref:YES forKey:@"look"];
    EXPECT_EQ(domainFile()["LUTsPath"], "string a path");
    EXPECT_EQ(domainFile()["OverridePath"], "string a path");
}

// What the pane tells others

void writeVersion(NSString *version) {
    NSString *folder = @"/Applications/Final Cut Pro.app/Contents";
    [[NSFileManager defaultManager] createDirectoryAtPath:folder
                              withIntermediateDirectories:YES
                                               attributes:nil
                                                    error:nullptr];
    writeList([NSDictionary dictionaryWithObject:version forKey:@"CFBundleVersion"],
              [folder stringByAppendingPathComponent:@"version.plist"]);
}

TEST_F(Bundle, AnAlertHasItsMessageAndWhatThereIsMoreToSay) {
    heard.clear();
    const Replaced runModal("NSAlert", "runModal", runNothing);
    const Pane pane;
    pane.set("fcpRTEnable", NSOnState);
    EXPECT_EQ([pane.variable("fcpRTEnable") state], NSOffState);
    writeVersion(@"10.0.1");
    pane.set("fcpRTEnable", NSOnState);
    std::filesystem::remove_all("/Applications/Final Cut Pro.app");
    EXPECT_THAT(heard, testing::ElementsAre("Could not find any FCP installation / ",
                                            "Could not find supported version of FCP / Found version 10.0.1"));
}

TEST_F(Bundle, AStereoClickIsPostedAtOnceWithoutInformation) {
    heard.clear();
    const Replaced post("NSDistributedNotificationCenter",
                        "postNotificationName:object:userInfo:deliverImmediately:", hear);
    const Pane pane;
    EXPECT_THAT(heard, testing::IsEmpty());
    pane.click("_showStereoStatus");
    EXPECT_THAT(heard, testing::ElementsAre("StereoStatusMenuViewChanged from com.vantrel.PreferencePane at once"));
}

TEST_F(Bundle, ANotificationDaemonThatCantBeHadCostsNoException) {
    const Replaced post("NSDistributedNotificationCenter",
                        "postNotificationName:object:userInfo:deliverImmediately:", raise);
    const Pane pane;
    EXPECT_NO_THROW(pane.click("_showStereoStatus"));
    EXPECT_EQ(domainFile()["ShowStereoStatusMenu"], "bool 0");
}

}  // namespace
}  // namespace vantrel::host

int main(int argc, char **argv) {
    // Its Final Cut Pro and its maker's library are none of the machine's.
    vantrel::PrivateMachine::enter();
    if (const char *library = std::getenv("VANTREL_MAKERS_LIBRARY")) vantrel::host::installMakersLibrary(library);
    return vantrel::host::runTests(argc, argv);
}

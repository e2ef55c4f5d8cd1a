#include <gmock/gmock.h>

#include "tests/Preference/ValidDomain.h"
#include "tests/Rules.h"

namespace vantrel::memory {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

using Lines = std::vector<std::string>;

// A valid domain

TEST(SetUpOrder, AValidDomainIsShownInThisOrderAndLeftAlone) {
    ValidPane it;
    it.bundle.info = {{"CFBundleShortVersionString", "1.2.3"}};
    it.overrides.record = {{"CLSF", 1}, {"CPUM", 2}};
    it.pane.initWithBundle(it.bundle);
    it.journal.clear();
    it.pane.mainViewDidLoad();

    EXPECT_THAT(it.journal.lines(), ElementsAreArray(Lines{
                                        "_versionNumber setStringValue \"1.2.3\"",
                                        // The overrides, for the first time
                                        "overrides load",
                                        "overrides read CLSF",
                                        "filter422To444 setState 1",
                                        // Thread limits
                                        "encodeThreads removeAllItems",
                                        "decodeThreads removeAllItems",
                                        "decodeThreads addItem All",
                                        "encodeThreads addItem 1",
                                        "decodeThreads addItem 1",
                                        "encodeThreads addItem 2",
                                        "decodeThreads addItem 2",
                                        "encodeThreads addItem 3",
                                        "decodeThreads addItem 3",
                                        "read MaxEncodeThreads",
                                        "encodeThreads selectItem 1",
                                        "decodeThreads selectItem 0",
                                        "overrides read CPUM",
                                        "decodeThreads selectItem 2",
                                        // Colour processing and gamma correction
                                        "read ColorProcessingPath",
                                        "read whiteBalance",
                                        "whiteBalance setState 0",
                                        "read colorMatrix",
                                        "colorMatrix setState 0",
                                        "read look",
                                        "look setState 0",
                                        "read gamma",
                                        "gamma setState 0",
                                        "read QTGammaCorrection",
                                        "fmtQTGamma selectCellAtRow 1 column 0",
                                        "read FCPGammaCorrection",
                                        "fmtFCPGamma selectCellAtRow 1 column 0",
                                        // Pixel formats, letterbox and stereo status
                                        "read FormatYUV8",
                                        "fmtYUV8Bit setState 0",
                                        "read FormatYUV8A",
                                        "fmtYUV8BitA setState 0",
                                        "read FormatYUV16",
                                        "fmtYUV16Bit setState 0",
                                        "read FormatYUV32",
                                        "fmtYUV32Bit setState 0",
                                        "read FormatRGB8",
                                        "fmtRGB8Bit setState 0",
                                        "read FormatRGB16",
                                        "fmtRGB16Bit setState 0",
                                        "read FormatRGB32",
                                        "fmtRGB32Bit setState 0",
                                        "read FCPForceLetterBox",
                                        "fmtFCPLetterbox setState 0",
                                        "read ShowStereoStatusMenu",
                                        "_showStereoStatus setState 0",
                                        // Folders
                                        "read LUTsPath",
                                        "_LUTsPath setStringValue \"/stored/luts\"",
                                        "read OverridePath",
                                        "_overridePath setStringValue \"/stored/overrides\"",
                                        // Demosaic methods
                                        "read 8bitDebayer",
                                        "presentationDemosaic selectItem 2",
                                        "read RenderDebayer",
                                        "renderDemosaic selectItem 3",
                                        // Host applications
                                        "read fcpRTEnableSwap",
                                        "fcpRTEnable setState 1",
                                        "fcpRTEnable enable",
                                        "read PProCS5HasMovieSetup",
                                        "cs5SourceSettings setState 0",
                                        "cs5SourceSettings enable",
                                    }));
}

TEST(SetUpOrder, AValidDomainOfDefaultsIsLeftAloneToo) {
    MemoryPane it;
    it.load();
    const auto repaired = it.domain();

    MemoryPane again;
    again.domain() = repaired;
    again.load();
    EXPECT_THAT(again.journal.preferenceChanges(), IsEmpty());
}

TEST(SetUpOrder, TheSetUpLeavesTheseControlsToTheInterfaceFile) {
    MemoryPane it;
    it.box("fmtDualStream3D").shown = mixedState;
    it.load();
    for (const auto* name : {"fmtDualStream3D", "_LUTsOK", "_LUTsUndo", "_overrideOK", "_overrideUndo"}) {
        EXPECT_THAT(it.journal.linesStarting(name), IsEmpty()) << name;
    }
    EXPECT_THAT(it.journal.linesStarting("read FormatDualStream3D"), IsEmpty());
}

TEST(SetUpOrder, NothingIsDisabledAndTwoCheckBoxesAreEnabled) {
    MemoryPane it;
    it.box("fcpRTEnable").enabled = false;
    it.box("cs5SourceSettings").enabled = false;
    it.load();
    EXPECT_TRUE(it.box("fcpRTEnable").enabled);
    EXPECT_TRUE(it.box("cs5SourceSettings").enabled);

    Lines enabling;
    for (const auto& line : it.journal.lines()) {
        if (line.ends_with(" enable") || line.ends_with(" disable")) enabling.push_back(line);
    }
    EXPECT_THAT(enabling, ElementsAre("fcpRTEnable enable", "cs5SourceSettings enable"));
}

// An empty domain

/// A machine of four cores, where the encoder's default limit is lowered; default folders as the bundle names them.
struct EmptyDomain : testing::Test {
    EmptyDomain() {
        it.processors.cores = 4;
        it.bundle.strings = {{"KVRXLutsPath", "/default/luts"}, {"KVRXOverridePath", "/default/overrides"}};
        it.load();
    }

    MemoryPane it;
};

TEST_F(EmptyDomain, IsRepairedInThisOrderWithOneSynchroniseForEachGroup) {
    EXPECT_THAT(it.journal.preferenceChanges(), ElementsAreArray(Lines{
                                                    "write MaxEncodeThreads = 3",
                                                    "synchronize",
                                                    "write whiteBalance = true",
                                                    "write colorMatrix = true",
                                                    "write look = true",
                                                    "write gamma = true",
                                                    "write QTGammaCorrection = 0",
                                                    "write FCPGammaCorrection = 0",
                                                    pathWritten(0x2E),
                                                    "synchronize",
                                                    "write FormatYUV8 = true",
                                                    "write FormatYUV8A = true",
                                                    "write FormatYUV16 = true",
                                                    "write FormatYUV32 = true",
                                                    "write FormatRGB8 = true",
                                                    "write FormatRGB16 = true",
                                                    "write FormatRGB32 = true",
                                                    "write FCPForceLetterBox = true",
                                                    "write ShowStereoStatusMenu = true",
                                                    "synchronize",
                                                    "write LUTsPath = \"/default/luts\"",
                                                    "write OverridePath = \"/default/overrides\"",
                                                    "write fcpRTEnableSwap = false",
                                                    "write PProCS5HasMovieSetup = true",
                                                }));
}

TEST_F(EmptyDomain, HoldsTheseDefaultsAfterwards) {
    EXPECT_THAT(contents(it.domain()), ElementsAre(Pair("ColorProcessingPath", std::to_string(0x2E)),  //
                                                   Pair("FCPForceLetterBox", "true"),                  //
                                                   Pair("FCPGammaCorrection", "0"),                    //
                                                   Pair("FormatRGB16", "true"),                        //
                                                   Pair("FormatRGB32", "true"),                        //
                                                   Pair("FormatRGB8", "true"),                         //
                                                   Pair("FormatYUV16", "true"),                        //
                                                   Pair("FormatYUV32", "true"),                        //
                                                   Pair("FormatYUV8", "true"),                         //
                                                   Pair("FormatYUV8A", "true"),                        //
                                                   Pair("LUTsPath", "\"/default/luts\""),              //
                                                   Pair("MaxEncodeThreads", "3"),                      //
                                                   Pair("OverridePath", "\"/default/overrides\""),     //
                                                   Pair("PProCS5HasMovieSetup", "true"),               //
                                                   Pair("QTGammaCorrection", "0"),                     //
                                                   Pair("ShowStereoStatusMenu", "true"),               //
                                                   Pair("colorMatrix", "true"),                        //
                                                   Pair("fcpRTEnableSwap", "false"),                   //
                                                   Pair("gamma", "true"),                              //
                                                   Pair("look", "true"),                               //
                                                   Pair("whiteBalance", "true")));
}

TEST_F(EmptyDomain, KeepsItsFoldersAndHostFlagsToThisProcessUntilTheNextSynchronise) {
    auto expected = contents(it.domain());
    for (const auto* key : {"LUTsPath", "OverridePath", "fcpRTEnableSwap", "PProCS5HasMovieSetup"}) {
        EXPECT_EQ(expected.erase(key), 1u) << key;
    }
    EXPECT_EQ(contents(it.preferences.synchronizedDomain("com.vantrel.codec")), expected);

    it.click(key("FormatRGB8"), offState);
    EXPECT_EQ(contents(it.preferences.synchronizedDomain("com.vantrel.codec")), contents(it.domain()));
}

TEST_F(EmptyDomain, ShowsItsDefaults) {
    for (const auto* box :
         {&it.box("colorMatrix"), &it.box("gamma"), &it.box("look"), &it.box("whiteBalance"), &it.box("fmtRGB8Bit"),
          &it.box("fmtRGB16Bit"), &it.box("fmtRGB32Bit"), &it.box("fmtYUV8Bit"), &it.box("fmtYUV16Bit"),
          &it.box("fmtYUV32Bit"), &it.box("fmtYUV8BitA"), &it.box("fmtFCPLetterbox"), &it.box("cs5SourceSettings"),
          &it.box("_showStereoStatus")}) {
        EXPECT_EQ(box->shown, onState);
    }
    EXPECT_EQ(it.box("fcpRTEnable").shown, offState);
    EXPECT_EQ(it.matrix("fmtQTGamma").selected, 0);
    EXPECT_EQ(it.matrix("fmtFCPGamma").selected, 0);
    EXPECT_EQ(it.menu("encodeThreads").selected, 3);
    EXPECT_EQ(it.menu("decodeThreads").selected, 0);
    EXPECT_EQ(it.menu("presentationDemosaic").selected, 0);
    EXPECT_EQ(it.menu("renderDemosaic").selected, 0);
    EXPECT_EQ(it.field("_LUTsPath").text, "/default/luts");
    EXPECT_EQ(it.field("_overridePath").text, "/default/overrides");
}

TEST_F(EmptyDomain, RepairedOnceNeedsNoRepairAgain) {
    MemoryPane again;
    again.processors.cores = 4;
    again.domain() = it.domain();
    again.load();
    EXPECT_THAT(again.journal.preferenceChanges(), IsEmpty());
}

TEST(SetUpOrder, OnEightCoresAnEmptyDomainCostsOneSynchroniseLess) {
    MemoryPane it;
    it.processors.cores = 8;
    it.load();
    EXPECT_THAT(it.journal.linesStarting("synchronize"), SizeIs(2));
    EXPECT_THAT(contents(it.domain()), testing::Not(Contains(testing::Key("MaxEncodeThreads"))));
}

TEST(SetUpOrder, FailedSynchronisesChangeNothing) {
    MemoryPane working;
    working.load();
    MemoryPane failing;
    failing.preferences.synchronizes = false;
    failing.load();
    EXPECT_EQ(failing.journal.lines(), working.journal.lines());
}

// One fault in an otherwise valid domain

/// In the journal of a valid domain, one line that a fault replaces by others.
struct Edit {
    std::string line;
    Lines by;
};

struct FaultyKey : Rule {
    std::string key;
    std::vector<Fault> faults;
    std::vector<Edit> edits;
};

struct SetUpOfOneFault : testing::TestWithParam<FaultyKey> {};

TEST_P(SetUpOfOneFault, DiffersFromAValidSetUpInTheseLinesAlone) {
    ValidPane valid;
    valid.load();
    Lines expected = valid.journal.lines();
    for (const auto& edit : GetParam().edits) {
        ASSERT_THAT(expected, Contains(edit.line).Times(1));
        const auto at = std::find(expected.begin(), expected.end(), edit.line);
        expected.insert(expected.erase(at), edit.by.begin(), edit.by.end());
    }
    for (const auto& fault : GetParam().faults) {
        SCOPED_TRACE(GetParam().key + ": " + fault.name);
        ValidPane it;
        put(it.domain(), GetParam().key, fault);
        it.load();
        EXPECT_THAT(it.journal.lines(), ElementsAreArray(expected));
    }
}

const std::vector<Fault> anUnreadableNumber{{"an unreadable number", unreadableNumber}};

std::vector<Fault> noReadableNumber() {
    auto faults = faultsOfAnInteger;
    faults.insert(faults.end(), anUnreadableNumber.begin(), anUnreadableNumber.end());
    return faults;
}

const std::string pathRead = "read ColorProcessingPath";
const std::string lastGammaLine = "fmtFCPGamma selectCellAtRow 1 column 0";
const std::string lastFlagLine = "_showStereoStatus setState 0";

/// A stage is switched on, and its bit is written with the rest of the path at the end of the group.
FaultyKey stage(const std::string& key, long mask) {
    return {{key},
            key,
            faultsOfAFlag,
            {{key + " setState 0", {"write " + key + " = true", key + " setState 1"}},
             {lastGammaLine, {lastGammaLine, pathRead, pathWritten(0x300000 | mask), "synchronize"}}}};
}

/// A flag is switched on and synchronised at the end of its group.
FaultyKey flag(const std::string& key, const std::string& outlet) {
    return {{key},
            key,
            faultsOfAFlag,
            {{outlet + " setState 0", {"write " + key + " = true", outlet + " setState 1"}},
             {lastFlagLine, {lastFlagLine, "synchronize"}}}};
}

FaultyKey folder(const std::string& key, const std::string& outlet, const std::string& name) {
    return {{key},
            key,
            faultsOfAText,
            {{outlet + " setStringValue \"/stored/" + name + '"',
              {"write " + key + " = \"/default/" + name + '"', outlet + " setStringValue \"/default/" + name + '"'}}}};
}

/// The unchanged path is written along, for the sake of the synchronise.
FaultyKey qtGamma(const std::string& rule, const std::vector<Fault>& faults, const Lines& repair) {
    return {{rule},
            "QTGammaCorrection",
            faults,
            {{"fmtQTGamma selectCellAtRow 1 column 0", repair},
             {lastGammaLine, {lastGammaLine, pathRead, pathWritten(0x300000), "synchronize"}}}};
}

FaultyKey fcpGamma(const std::string& rule, const std::vector<Fault>& faults, Lines repair) {
    repair.push_back(pathRead);
    repair.push_back(pathWritten(0x300000));
    repair.emplace_back("synchronize");
    return {{rule}, "FCPGammaCorrection", faults, {{lastGammaLine, repair}}};
}

const std::vector<Fault> noSuchRow{{"-1", Number{-1}}, {"2", Number{2}}, {"5", Number{5}}};

INSTANTIATE_TEST_SUITE_P(
    SetUpOrder, SetUpOfOneFault,
    testing::Values(
        FaultyKey{{"MaxEncodeThreads"},
                  "MaxEncodeThreads",
                  noReadableNumber(),
                  {{"encodeThreads selectItem 1",
                    {"write MaxEncodeThreads = 2", "synchronize", "encodeThreads selectItem 2"}}}},
        FaultyKey{{"ColorProcessingPathStaysAsItIs"}, "ColorProcessingPath", noReadableNumber(), {}},
        stage("whiteBalance", 0x4),                      //
        stage("colorMatrix", 0x2),                       //
        stage("look", 0x8),                              //
        stage("gamma", 0x20),                            //
        qtGamma("QTGammaCorrection", faultsOfAnInteger,  //
                {"write QTGammaCorrection = 0", "fmtQTGamma setState 1 atRow 0 column 0"}),
        qtGamma("QTGammaCorrectionOutOfRange", noSuchRow,
                {"write QTGammaCorrection = 0", "fmtQTGamma selectCellAtRow 0 column 0"}),
        FaultyKey{{"QTGammaCorrectionUnreadable"},
                  "QTGammaCorrection",
                  anUnreadableNumber,
                  {{"fmtQTGamma selectCellAtRow 1 column 0", {}}}},
        fcpGamma("FCPGammaCorrection", faultsOfAnInteger,
                 {"write FCPGammaCorrection = 0", "fmtFCPGamma setState 1 atRow 0 column 0"}),
        fcpGamma("FCPGammaCorrectionOutOfRange", noSuchRow,
                 {"write FCPGammaCorrection = 0", "fmtFCPGamma selectCellAtRow 0 column 0"}),
        FaultyKey{{"FCPGammaCorrectionUnreadable"}, "FCPGammaCorrection", anUnreadableNumber, {{lastGammaLine, {}}}},
        flag("FormatYUV8", "fmtYUV8Bit"),              //
        flag("FormatYUV8A", "fmtYUV8BitA"),            //
        flag("FormatYUV16", "fmtYUV16Bit"),            //
        flag("FormatYUV32", "fmtYUV32Bit"),            //
        flag("FormatRGB8", "fmtRGB8Bit"),              //
        flag("FormatRGB16", "fmtRGB16Bit"),            //
        flag("FormatRGB32", "fmtRGB32Bit"),            //
        flag("FCPForceLetterBox", "fmtFCPLetterbox"),  //
        FaultyKey{
            {"ShowStereoStatusMenu"},
            "ShowStereoStatusMenu",
            faultsOfAFlag,
            {{lastFlagLine, {"write ShowStereoStatusMenu = true", "_showStereoStatus setState 1", "synchronize"}}}},
        folder("LUTsPath", "_LUTsPath", "luts"), folder("OverridePath", "_overridePath", "overrides"),
        FaultyKey{{"PresentationDemosaicIsShownOnly"},
                  "8bitDebayer",
                  noReadableNumber(),
                  {{"presentationDemosaic selectItem 2", {"presentationDemosaic selectItem 0"}}}},
        FaultyKey{{"RenderDemosaicIsShownOnly"},
                  "RenderDebayer",
                  noReadableNumber(),
                  {{"renderDemosaic selectItem 3", {"renderDemosaic selectItem 0"}}}},
        FaultyKey{{"RealTimeEnablerIsOffAndNotSynchronised"},
                  "fcpRTEnableSwap",
                  faultsOfAFlag,
                  {{"fcpRTEnable setState 1", {"write fcpRTEnableSwap = false", "fcpRTEnable setState 0"}}}},
        FaultyKey{
            {"SourceSettingsAreNotSynchronised"},
            "PProCS5HasMovieSetup",
            faultsOfAFlag,
            {{"cs5SourceSettings setState 0", {"write PProCS5HasMovieSetup = true", "cs5SourceSettings setState 1"}}}},
        FaultyKey{{"DualStreamIsNeverRead"}, "FormatDualStream3D", faultsOfAFlag, {}}),
    ByRule());

// The table decides

/// The key table with one row altered.
struct AlteredTable {
    template <typename Alter>
    AlteredTable(std::string_view name, Alter alter) : rows(std::begin(keyTable), std::end(keyTable)) {
        alter(*std::find_if(rows.begin(), rows.end(), [&](const SettingsKey& row) { return row.name == name; }));
    }

    std::vector<SettingsKey> rows;
};

/// What an empty domain holds after the set-up, and which of it other processes see.
std::pair<std::string, std::string> setUpWith(const AlteredTable& table, const std::string& name) {
    MemoryPane it(table.rows);
    it.load();
    return {contents(it.domain())[name], contents(it.preferences.synchronizedDomain("com.vantrel.codec"))[name]};
}

TEST(SetUpOrder, AnotherDefaultIsShownAndWritten) {
    const AlteredTable table("FormatRGB8", [](SettingsKey& row) { row.setUpDefault = false; });
    MemoryPane it(table.rows);
    it.box("fmtRGB8Bit").shown = onState;
    it.load();
    EXPECT_EQ(it.box("fmtRGB8Bit").shown, offState);
    EXPECT_EQ(contents(it.domain())["FormatRGB8"], "false");
    EXPECT_EQ(contents(it.domain())["FormatRGB16"], "true");
}

TEST(SetUpOrder, AnotherDefaultOfAStageLeavesItsBitOut) {
    const AlteredTable table("look", [](SettingsKey& row) { row.setUpDefault = false; });
    EXPECT_EQ(setUpWith(table, "ColorProcessingPath").first, std::to_string(0x26));
}

TEST(SetUpOrder, AnotherRepairIsSynchronisedLaterOrNotWrittenAtAll) {
    using Pair = std::pair<std::string, std::string>;
    const AlteredTable lazy("LUTsPath", [](SettingsKey& row) { row.repair = Repair::written; });
    EXPECT_EQ(setUpWith(lazy, "LUTsPath"), Pair("\"a path\"", "\"a path\""));
    EXPECT_EQ(setUpWith(lazy, "fcpRTEnableSwap"), Pair("false", ""));

    const AlteredTable none("fcpRTEnableSwap", [](SettingsKey& row) { row.repair = Repair::none; });
    EXPECT_EQ(setUpWith(none, "fcpRTEnableSwap"), Pair("", ""));

    const AlteredTable unasked("ColorProcessingPath", [](SettingsKey& row) { row.repair = Repair::none; });
    ValidPane missing(unasked.rows);
    missing.domain().erase("MaxEncodeThreads");
    missing.domain().erase("ColorProcessingPath");
    missing.load();
    EXPECT_FALSE(missing.domain().contains("ColorProcessingPath"));
}

TEST(SetUpOrder, AnotherGroupIsSetUpThere) {
    const AlteredTable table("PProCS5HasMovieSetup", [](SettingsKey& row) {
        row.repair = Repair::written;
        row.group = Group::flags;
    });
    MemoryPane it(table.rows);
    it.load();
    EXPECT_EQ(contents(it.preferences.synchronizedDomain("com.vantrel.codec"))["PProCS5HasMovieSetup"], "true");
    EXPECT_THAT(it.journal.linesStarting("cs5SourceSettings enable"), IsEmpty());
}

TEST(SetUpOrder, AnotherKindIsReadAsSuch) {
    const AlteredTable table("8bitDebayer", [](SettingsKey& row) {
        row.kind = Kind::flag;
        row.setUpDefault = true;
        row.outlet = "fmtDualStream3D";
    });
    ValidPane it(table.rows);
    it.domain()["8bitDebayer"] = true;
    it.load();
    EXPECT_EQ(it.box("fmtDualStream3D").shown, onState);
}

TEST(SetUpOrder, AnotherOutletShowsTheKey) {
    const AlteredTable table("FormatRGB8", [](SettingsKey& row) { row.outlet = "fmtDualStream3D"; });
    ValidPane it(table.rows);
    it.domain()["FormatRGB8"] = true;
    it.load();
    EXPECT_EQ(it.box("fmtDualStream3D").shown, onState);
}

// The write of ColorProcessingPath

/// The write serves three groups. It happens when a stage flag or a gamma row was repaired, and also when both the
/// encoder limit and the path itself were missing, but not for a missing path alone.
TEST(SetUpOrder, ThePathIsWrittenOnceWhenAStageOrAGammaRowOrTheLimitWithThePathWasMissing) {
    const std::vector<Fault> integers{
        {"missing", Absent{}}, {"mistyped", true}, {"unreadable", unreadableNumber}, {"readable", Number{0x300011}}};
    const std::vector<Fault> rows{{"missing", Absent{}},
                                  {"mistyped", std::string("1")},
                                  {"unreadable", unreadableNumber},
                                  {"out of range", Number{2}},
                                  {"valid", Number{1}}};
    const std::pair<std::string, long> stages[] = {
        {"whiteBalance", 0x4}, {"colorMatrix", 0x2}, {"look", 0x8}, {"gamma", 0x20}};
    const auto isReadable = [](const Fault& fault) { return fault.name == "readable"; };
    const auto isRepaired = [](const Fault& fault) { return fault.name != "unreadable" && fault.name != "valid"; };

    for (const auto& limit : integers) {
        for (const auto& path : integers) {
            for (const unsigned missingStages : {0u, 1u, 2u, 4u, 8u, 15u}) {
                for (const auto& qt : rows) {
                    for (const auto& fcp : rows) {
                        SCOPED_TRACE("MaxEncodeThreads " + limit.name + ", ColorProcessingPath " + path.name +
                                     ", missing stages " + std::to_string(missingStages) + ", QTGammaCorrection " +
                                     qt.name + ", FCPGammaCorrection " + fcp.name);
                        ValidPane it;
                        // So many that only a readable limit could be lowered, which the test below has.
                        it.processors.cores = 12;
                        put(it.domain(), "MaxEncodeThreads", isReadable(limit) ? Fault{"", Number{1}} : limit);
                        put(it.domain(), "ColorProcessingPath", path);
                        put(it.domain(), "QTGammaCorrection", qt);
                        put(it.domain(), "FCPGammaCorrection", fcp);

                        Lines expected;
                        long value = isReadable(path) ? 0x300011 : 0;
                        for (unsigned i = 0; i < 4; ++i) {
                            if (!(missingStages & (1u << i))) continue;
                            const auto& [key, mask] = stages[i];
                            it.domain().erase(key);
                            expected.push_back("write " + key + " = true");
                            value |= mask;
                        }
                        if (isRepaired(qt)) expected.emplace_back("write QTGammaCorrection = 0");
                        if (isRepaired(fcp)) expected.emplace_back("write FCPGammaCorrection = 0");
                        if (!expected.empty() || (!isReadable(limit) && !isReadable(path))) {
                            expected.push_back(pathWritten(value));
                            expected.emplace_back("synchronize");
                        }

                        it.load();
                        ASSERT_EQ(it.journal.preferenceChanges(), expected);
                    }
                }
            }
        }
    }
}

/// What the limit's own repair writes has no say in whether the path is written; that it was missing has.
TEST(SetUpOrder, ALoweredLimitAsksForThePathOnlyWhereItWasMissing) {
    ValidPane stored;
    stored.domain()["MaxEncodeThreads"] = Number{3};
    stored.domain().erase("ColorProcessingPath");
    stored.load();
    EXPECT_THAT(stored.journal.preferenceChanges(), ElementsAre("write MaxEncodeThreads = 2", "synchronize"));

    ValidPane missing;
    missing.domain().erase("MaxEncodeThreads");
    missing.domain().erase("ColorProcessingPath");
    missing.load();
    EXPECT_THAT(missing.journal.preferenceChanges(),
                ElementsAre("write MaxEncodeThreads = 2", "synchronize", pathWritten(0), "synchronize"));
}

// No short circuit

TEST(SetUpOrder, EveryMissingFlagOfAGroupIsRepairedWhicheverComesFirst) {
    const std::vector<std::string> flags{"FormatYUV8",  "FormatYUV8A",       "FormatYUV16",
                                         "FormatYUV32", "FormatRGB8",        "FormatRGB16",
                                         "FormatRGB32", "FCPForceLetterBox", "ShowStereoStatusMenu"};
    for (unsigned missing = 1; missing < 512; ++missing) {
        ValidPane it;
        Lines expected;
        for (unsigned i = 0; i < flags.size(); ++i) {
            if (!(missing & (1u << i))) continue;
            it.domain().erase(flags[i]);
            expected.push_back("write " + flags[i] + " = true");
        }
        expected.emplace_back("synchronize");
        it.load();
        ASSERT_EQ(it.journal.preferenceChanges(), expected) << missing;
    }
}

}  // namespace
}  // namespace vantrel::memory

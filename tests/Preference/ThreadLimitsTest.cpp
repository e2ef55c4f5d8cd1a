#include <gmock/gmock.h>

#include "tests/Preference/ValidDomain.h"
#include "tests/Rules.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Pair;

using Lines = std::vector<std::string>;

// The items

struct Cores : Rule {
    std::int32_t counted;
    int offered;
};

struct ThreadItems : testing::TestWithParam<Cores> {};

TEST_P(ThreadItems, AreOneForEachCore) {
    MemoryPane it;
    it.processors.cores = GetParam().counted;
    it.menu("encodeThreads").items = {"of the", "interface file"};
    it.menu("decodeThreads").items = {"of the", "interface file"};
    it.load();

    Lines titles;
    for (int threads = 1; threads <= GetParam().offered; ++threads) titles.push_back(std::to_string(threads));
    EXPECT_THAT(it.menu("encodeThreads").items, ElementsAreArray(titles));
    titles.insert(titles.begin(), "All");
    EXPECT_THAT(it.menu("decodeThreads").items, ElementsAreArray(titles));
}

INSTANTIATE_TEST_SUITE_P(ThreadLimits, ThreadItems,
                         testing::Values(Cores{{"NegativeCountsAsOne"}, -1, 1},   //
                                         Cores{{"UntoldCountsAsOne"}, 0, 1},      //
                                         Cores{{"One"}, 1, 1},                    //
                                         Cores{{"Two"}, 2, 2},                    //
                                         Cores{{"Four"}, 4, 4},                   //
                                         Cores{{"Eight"}, 8, 8},                  //
                                         Cores{{"Twelve"}, 12, 12},               //
                                         Cores{{"ThirtyOne"}, 31, 31},            //
                                         Cores{{"ThirtyTwo"}, 32, 32},            //
                                         Cores{{"ThirtyThreeStopAt32"}, 33, 32},  //
                                         Cores{{"FortyStopAt32"}, 40, 32}),       //
                         ByRule());

// The encoder's limit at set-up

struct Limit : Rule {
    std::int32_t cores;
    PreferenceValue stored;
    long selected;
    /// What is written and synchronised; nothing where the stored value stays.
    std::optional<long> written;
};

struct EncodeLimit : testing::TestWithParam<Limit> {};

TEST_P(EncodeLimit, IsSelectedAfterItWasRepaired) {
    ValidPane it;
    it.processors.cores = GetParam().cores;
    put(it.domain(), "MaxEncodeThreads", {"", GetParam().stored});
    it.load();

    Lines changes;
    if (GetParam().written) {
        changes = {"write MaxEncodeThreads = " + std::to_string(*GetParam().written), "synchronize"};
        EXPECT_EQ(contents(it.preferences.synchronizedDomain("com.vantrel.codec"))["MaxEncodeThreads"],
                  std::to_string(*GetParam().written));
    } else {
        EXPECT_EQ(contents(it.domain()).contains("MaxEncodeThreads"),
                  !std::holds_alternative<Absent>(GetParam().stored));
    }
    EXPECT_THAT(it.journal.preferenceChanges(), ElementsAreArray(changes));
    EXPECT_THAT(it.journal.linesStarting("encodeThreads selectItem"),
                ElementsAre("encodeThreads selectItem " + std::to_string(GetParam().selected)));
}

constexpr std::nullopt_t kept = std::nullopt;
constexpr bool is64Bit = sizeof(long) == 8;

INSTANTIATE_TEST_SUITE_P(
    ThreadLimits, EncodeLimit,
    testing::Values(
        Limit{{"MissingOnAnUntoldNumberOfCoresIsWrittenAs0"}, 0, Absent{}, 0, 0},                            //
        Limit{{"MissingOnOneCoreIsWrittenAs0"}, 1, Absent{}, 0, 0},                                          //
        Limit{{"MissingOnTwoCoresIsWrittenAs1"}, 2, Absent{}, 1, 1},                                         //
        Limit{{"MissingOnFourCoresIsWrittenAs3"}, 4, Absent{}, 3, 3},                                        //
        Limit{{"MissingOnSevenCoresIsWrittenAs6"}, 7, Absent{}, 6, 6},                                       //
        Limit{{"MissingOnEightCoresIs7AndStaysMissing"}, 8, Absent{}, 7, kept},                              //
        Limit{{"MissingOnTwelveCoresIs7AndStaysMissing"}, 12, Absent{}, 7, kept},                            //
        Limit{{"MissingOnFortyCoresIs7AndStaysMissing"}, 40, Absent{}, 7, kept},                             //
        Limit{{"MistypedOnFourCoresIsReplacedBy3"}, 4, std::string("2"), 3, 3},                              //
        Limit{{"MistypedOnTwelveCoresIs7AndStaysMistyped"}, 12, std::string("2"), 7, kept},                  //
        Limit{{"AFlagOnFourCoresIsReplacedBy3"}, 4, true, 3, 3},                                             //
        Limit{{"UnreadableOnFourCoresIsReplacedBy3"}, 4, unreadableNumber, 3, 3},                            //
        Limit{{"UnreadableOnTwelveCoresIs7AndStaysUnreadable"}, 12, unreadableNumber, 7, kept},              //
        Limit{{"OneOnAnUntoldNumberOfCoresIsRewrittenAs0"}, 0, Number{1}, 0, 0},                             //
        Limit{{"ZeroOnAnUntoldNumberOfCoresStays"}, -1, Number{0}, 0, kept},                                 //
        Limit{{"EightOnEightCoresIsRewrittenAs7"}, 8, Number{8}, 7, 7},                                      //
        Limit{{"SevenOnEightCoresStays"}, 8, Number{7}, 7, kept},                                            //
        Limit{{"ThirtyOneOnFortyCoresStays"}, 40, Number{31}, 31, kept},                                     //
        Limit{{"ThirtyTwoOnFortyCoresIsRewrittenAs31"}, 40, Number{32}, 31, 31},                             //
        Limit{{"NegativeStaysAndSelectsNothing"}, 4, Number{-1}, -1, kept},                                  //
        Limit{{"VeryNegativeStaysAndSelectsNothing"}, 4, Number{-2147483647L - 1}, -2147483647L - 1, kept},  //
        Limit{{"Past32BitsIsLoweredLikeAnyOther"}, 4, storedInteger(0x100000001), 3, 3},                     //
        Limit{{"NegativePast32BitsCountsAsAWholeLong"},
              4,
              storedInteger(-0x100000001),
              is64Bit ? static_cast<long>(-0x100000001LL) : 3,
              is64Bit ? std::optional<long>() : 3}),
    ByRule());

TEST(ThreadLimits, TheLoweredLimitIsSynchronisedBeforeItIsSelected) {
    ValidPane it;
    it.domain()["MaxEncodeThreads"] = Number{9};
    it.load();
    const auto& lines = it.journal.lines();
    const auto read = std::find(lines.begin(), lines.end(), "read MaxEncodeThreads");
    EXPECT_THAT(Lines(read, read + 5), ElementsAre("read MaxEncodeThreads", "write MaxEncodeThreads = 2", "synchronize",
                                                   "encodeThreads selectItem 2", "decodeThreads selectItem 0"));
}

// The encoder's limit

TEST(ThreadLimits, TheEncodersLimitIsTheLowFiveBitsOfItsIndex) {
    for (const auto& [index, stored] :
         {std::pair{0L, 0L}, std::pair{15L, 15L}, std::pair{31L, 31L}, std::pair{32L, 0L}, std::pair{33L, 1L},
          std::pair{-1L, 0L}, std::pair{-5L, 0L}, std::pair{static_cast<long>(0x80000003LL), 0L}}) {
        ValidPane it;
        it.load();
        it.journal.clear();
        it.choose(key("MaxEncodeThreads"), index);
        EXPECT_THAT(it.journal.lines(),
                    ElementsAre("write MaxEncodeThreads = " + std::to_string(stored), "synchronize"));
    }
}

TEST(ThreadLimits, TheActionsAskTheSender) {
    ValidPane it;
    it.load();
    MemoryPopUpButton popUp{it.journal, "sender"};
    popUp.selected = 2;
    MemoryCheckBox box{it.journal, "sender"};
    box.shown = onState;
    it.pane.chosen(popUp, key("MaxEncodeThreads"));
    it.pane.decodeThreadsChosen(popUp);
    it.pane.chromaFilterClicked(box);
    EXPECT_EQ(contents(it.domain())["MaxEncodeThreads"], "2");
    EXPECT_THAT(it.overrides.record, ElementsAre(Pair("CLSF", 1), Pair("CPUM", 2)));
}

// The overrides at set-up

TEST(ThreadLimits, TheOverridesAreShownUnchecked) {
    for (const std::int32_t value : {0, 1, 2, 3, 99, -1, -7, 0x7FFFFFFF}) {
        ValidPane it;
        it.overrides.record = {{"CLSF", value}, {"CPUM", value}};
        it.load();
        EXPECT_THAT(it.journal.linesStarting("filter422To444"),
                    ElementsAre("filter422To444 setState " + std::to_string(value)));
        EXPECT_THAT(it.journal.linesStarting("decodeThreads selectItem"),
                    ElementsAre("decodeThreads selectItem 0", "decodeThreads selectItem " + std::to_string(value)));
    }
}

TEST(ThreadLimits, WithoutOverridesTheFilterKeepsItsStateAndTheDecoderHasNoLimit) {
    ValidPane it;
    it.box("filter422To444").shown = mixedState;
    it.overrides.record = {{"GAIN", 4}};
    it.load();
    EXPECT_EQ(it.box("filter422To444").shown, mixedState);
    EXPECT_THAT(it.journal.linesStarting("filter422To444"), IsEmpty());
    EXPECT_THAT(it.journal.linesStarting("decodeThreads selectItem"), ElementsAre("decodeThreads selectItem 0"));
}

TEST(ThreadLimits, EachOverrideIsShownWithoutTheOther) {
    ValidPane filterOnly;
    filterOnly.overrides.record = {{"CLSF", 1}};
    filterOnly.load();
    EXPECT_EQ(filterOnly.box("filter422To444").shown, onState);
    EXPECT_EQ(filterOnly.menu("decodeThreads").selected, 0);

    ValidPane limitOnly;
    limitOnly.overrides.record = {{"CPUM", 2}};
    limitOnly.load();
    EXPECT_EQ(limitOnly.box("filter422To444").shown, offState);
    EXPECT_EQ(limitOnly.menu("decodeThreads").selected, 2);
}

TEST(ThreadLimits, OverridesThatCantBeOpenedAreLikeNone) {
    ValidPane it;
    it.overrides.record = {{"CLSF", 1}, {"CPUM", 2}};
    it.overrides.canBeOpened = false;
    it.box("filter422To444").shown = mixedState;
    it.load();
    EXPECT_EQ(it.box("filter422To444").shown, mixedState);
    EXPECT_EQ(it.menu("decodeThreads").selected, 0);
    EXPECT_THAT(it.journal.linesStarting("overrides"), ElementsAre("overrides load"));
    EXPECT_THAT(it.journal.linesStarting("log"), IsEmpty());
    EXPECT_THAT(it.journal.linesStarting("alert"), IsEmpty());
}

// The overrides

/// A loaded pane whose override record has an entry of somebody else's.
struct OverrideActions : testing::Test {
    OverrideActions() {
        it.overrides.record = {{"GAIN", -4}};
        it.load();
        it.journal.clear();
    }

    ValidPane it;
};

TEST_F(OverrideActions, EachWritesItsNumberAndNothingElse) {
    it.menu("decodeThreads").selected = 3;
    it.pane.decodeThreadsChosen(it.menu("decodeThreads"));
    it.box("filter422To444").shown = onState;
    it.pane.chromaFilterClicked(it.box("filter422To444"));
    EXPECT_THAT(it.journal.lines(), ElementsAre("overrides write CPUM = 3", "overrides write CLSF = 1"));
    EXPECT_THAT(it.overrides.record, ElementsAre(Pair("CLSF", 1), Pair("CPUM", 3), Pair("GAIN", -4)));
}

TEST_F(OverrideActions, TheDecodersLimitIsStoredUnclamped) {
    for (const auto& [index, stored] : {std::pair{0L, 0}, std::pair{2L, 2}, std::pair{99L, 99}, std::pair{-1L, -1},
                                        std::pair{static_cast<long>(0x1FFFFFFFELL), -2}}) {
        it.menu("decodeThreads").selected = index;
        it.pane.decodeThreadsChosen(it.menu("decodeThreads"));
        EXPECT_EQ(it.overrides.record["CPUM"], stored);
    }
}

TEST_F(OverrideActions, TheFiltersStateIsStoredAsItIs) {
    for (const auto& [state, stored] : {std::pair{onState, 1}, std::pair{offState, 0}, std::pair{mixedState, -1},
                                        std::pair{256L, 256}, std::pair{static_cast<long>(0x1FFFFFFFELL), -2}}) {
        it.box("filter422To444").shown = state;
        it.pane.chromaFilterClicked(it.box("filter422To444"));
        EXPECT_EQ(it.overrides.record["CLSF"], stored);
    }
}

TEST_F(OverrideActions, WhereTheRecordCantBeWrittenTheControlsKeepWhatTheUserChose) {
    it.overrides.canBeOpened = false;
    it.menu("decodeThreads").selected = 2;
    it.box("filter422To444").shown = onState;
    it.pane.decodeThreadsChosen(it.menu("decodeThreads"));
    it.pane.chromaFilterClicked(it.box("filter422To444"));
    EXPECT_THAT(it.journal.lines(), ElementsAre("overrides write CPUM = 2", "overrides write CLSF = 1"));
    EXPECT_THAT(it.overrides.record, ElementsAre(Pair("GAIN", -4)));
    EXPECT_EQ(it.menu("decodeThreads").selected, 2);
    EXPECT_EQ(it.box("filter422To444").shown, onState);
}

}  // namespace
}  // namespace vantrel::memory

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <map>

#include "platform/apple/ApplePreferences.h"
#include "tests/Rules.h"
#include "tests/platform/apple/CoreFoundationObjects.h"

namespace vantrel::apple {
namespace {

using testing::ElementsAre;

constexpr std::string_view codec = "com.vantrel.codec";

/// The system's preferences: what is stored, and each call in words.
struct System {
    std::map<std::u16string, CFTypeRef> codecsDomain;
    std::vector<std::u16string> calls;
    bool synchronizes = true;
};

System* systemInUse = nullptr;

const std::u16string& unitsOf(CFStringRef string) {
    return std::get<std::u16string>(contentOf(string));
}

}  // namespace
}  // namespace vantrel::apple

extern "C" {

using vantrel::apple::systemInUse;
using vantrel::apple::unitsOf;

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID) {
    systemInUse->calls.push_back(u"copy " + unitsOf(key) + u" of " + unitsOf(applicationID));
    const auto found = systemInUse->codecsDomain.find(unitsOf(key));
    return found == systemInUse->codecsDomain.end() ? nullptr : CFRetain(found->second);
}

void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID) {
    systemInUse->calls.push_back(u"set " + unitsOf(key) + u" of " + unitsOf(applicationID));
    if (const auto found = systemInUse->codecsDomain.find(unitsOf(key)); found != systemInUse->codecsDomain.end()) {
        CFRelease(found->second);
        systemInUse->codecsDomain.erase(found);
    }
    if (value) systemInUse->codecsDomain.emplace(unitsOf(key), CFRetain(value));
}

Boolean CFPreferencesSynchronize(CFStringRef applicationID, CFStringRef user, CFStringRef host) {
    systemInUse->calls.push_back(u"synchronize " + unitsOf(applicationID) + u" for " + unitsOf(user) + u" on " +
                                 unitsOf(host));
    return systemInUse->synchronizes;
}
}

namespace vantrel::apple {
namespace {

/// Preferences over a system of the test's own, which, at the end, has the one reference to each value that it stores.
struct ApplePreferencesTest : testing::Test {
    ApplePreferencesTest() { systemInUse = &system; }

    ~ApplePreferencesTest() override {
        for (const auto& [key, value] : system.codecsDomain) CFRelease(value);
        EXPECT_EQ(references(), referencesBefore);
        EXPECT_EQ(usesAfterRelease(), 0);
    }

    void store(const std::u16string& key, Content content) {
        system.codecsDomain.emplace(key, makeObject(std::move(content)));
    }

    PreferenceValue read(std::string_view key) { return preferences.copyAppValue(key, codec); }

    /// What is stored under the key; ends the test when there is nothing.
    const Content& stored(const std::u16string& key) { return contentOf(system.codecsDomain.at(key)); }

    int referencesBefore = references();
    System system;
    ApplePreferences preferences;
};

// Reading

TEST_F(ApplePreferencesTest, AMissingKeyIsAbsent) {
    EXPECT_TRUE(std::holds_alternative<Absent>(read("look")));
}

TEST_F(ApplePreferencesTest, ABooleanIsAFlag) {
    store(u"look", true);
    store(u"gamma", false);
    EXPECT_EQ(std::get<bool>(read("look")), true);
    EXPECT_EQ(std::get<bool>(read("gamma")), false);
}

TEST_F(ApplePreferencesTest, DataIsOfAnotherType) {
    store(u"look", Stranger{});
    EXPECT_TRUE(std::holds_alternative<OtherType>(read("look")));
}

TEST_F(ApplePreferencesTest, LooksUpTheValueOfTheApplication) {
    read("look");
    EXPECT_THAT(system.calls, ElementsAre(u"copy look of com.vantrel.codec"));
}

/// A stored number, and what it reads as.
struct StoredNumber : Rule {
    Content content;
    std::optional<long> longValue;
};

class EachNumber : public ApplePreferencesTest, public testing::WithParamInterface<StoredNumber> {};

TEST_P(EachNumber, ReadsAsItsRuleSays) {
    store(u"MaxEncodeThreads", GetParam().content);
    EXPECT_EQ(std::get<Number>(read("MaxEncodeThreads")).longValue, GetParam().longValue);
}

/// Where `long` has 32 bits, what needs more doesn't fit.
constexpr std::optional<long> ifItFits(std::int64_t value) {
    return static_cast<long>(value) == value ? std::optional(static_cast<long>(value)) : std::nullopt;
}

constexpr std::int64_t int64Max = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t int64Min = std::numeric_limits<std::int64_t>::min();
constexpr std::uint64_t twoTo63 = std::uint64_t{1} << 63;

INSTANTIATE_TEST_SUITE_P(
    ByRule, EachNumber,
    testing::Values(StoredNumber{{"AnInteger"}, std::int64_t{7}, 7}, StoredNumber{{"Zero"}, std::int64_t{0}, 0},
                    StoredNumber{{"ANegativeInteger"}, std::int64_t{-1}, -1},
                    StoredNumber{{"The32BitMaximum"}, std::int64_t{0x7FFFFFFF}, 0x7FFFFFFF},
                    StoredNumber{{"OneMoreThanThe32BitMaximum"}, std::int64_t{0x80000000}, ifItFits(0x80000000)},
                    StoredNumber{{"AllOf32Bits"}, std::int64_t{0xFFFFFFFF}, ifItFits(0xFFFFFFFF)},
                    StoredNumber{{"The64BitMaximum"}, int64Max, ifItFits(int64Max)},
                    StoredNumber{{"The64BitMinimum"}, int64Min, ifItFits(int64Min)},
                    StoredNumber{{"OneMoreThanThe64BitMaximumIsUnreadable"}, LargeInteger{twoTo63}, std::nullopt},
                    StoredNumber{{"TwoTo63AndSevenIsUnreadable"}, LargeInteger{twoTo63 + 7}, std::nullopt},
                    StoredNumber{{"AllOf64BitsIsUnreadable"},
                                 LargeInteger{std::numeric_limits<std::uint64_t>::max()},
                                 std::nullopt},
                    StoredNumber{{"AWholeReal"}, 1.0, 1}, StoredNumber{{"ANegativeZero"}, -0.0, 0},
                    StoredNumber{{"AFractionIsUnreadable"}, 1.5, std::nullopt},
                    StoredNumber{{"ARealOfTwoTo63IsUnreadable"}, static_cast<double>(twoTo63), std::nullopt},
                    StoredNumber{{"InfinityIsUnreadable"}, std::numeric_limits<double>::infinity(), std::nullopt},
                    StoredNumber{{"NotANumberIsUnreadable"}, std::numeric_limits<double>::quiet_NaN(), std::nullopt}),
    ByRule());

// Writing

TEST_F(ApplePreferencesTest, AFlagIsStoredAsTheConstantOfItsValue) {
    preferences.setAppValue("look", true, codec);
    preferences.setAppValue("gamma", false, codec);
    EXPECT_EQ(system.codecsDomain.at(u"look"), kCFBooleanTrue);
    EXPECT_EQ(system.codecsDomain.at(u"gamma"), kCFBooleanFalse);
}

TEST_F(ApplePreferencesTest, AnIntegerIsStoredWithItsSign) {
    preferences.setAppValue("QTGammaCorrection", -1L, codec);
    EXPECT_EQ(stored(u"QTGammaCorrection"), Content(std::int64_t{-1}));
}

TEST_F(ApplePreferencesTest, AWriteReplacesAValueOfAnyType) {
    store(u"look", Stranger{});
    preferences.setAppValue("look", 7L, codec);
    EXPECT_EQ(stored(u"look"), Content(std::int64_t{7}));
}

TEST_F(ApplePreferencesTest, AWriteIsOneCallForTheApplication) {
    preferences.setAppValue("look", true, codec);
    EXPECT_THAT(system.calls, ElementsAre(u"set look of com.vantrel.codec"));
}

// Changing

TEST_F(ApplePreferencesTest, AChangeStoresWhatItMakesOfTheStoredValueAndReturnsThat) {
    store(u"MaxEncodeThreads", std::int64_t{3});
    const auto oneMore = [](const PreferenceValue& stored) { return *std::get<Number>(stored).longValue + 1; };
    const PreferenceValue found = preferences.updateAppValue("MaxEncodeThreads", oneMore, codec);
    EXPECT_EQ(std::get<Number>(found).longValue, 3);
    EXPECT_EQ(stored(u"MaxEncodeThreads"), Content(std::int64_t{4}));
    EXPECT_THAT(system.calls, ElementsAre(u"copy MaxEncodeThreads of com.vantrel.codec",
                                          u"set MaxEncodeThreads of com.vantrel.codec"));
}

TEST_F(ApplePreferencesTest, AChangeThatMakesNothingOfTheStoredValueLeavesIt) {
    const auto nothing = [](const PreferenceValue&) { return std::nullopt; };
    EXPECT_TRUE(std::holds_alternative<Absent>(preferences.updateAppValue("look", nothing, codec)));
    EXPECT_THAT(system.calls, ElementsAre(u"copy look of com.vantrel.codec"));
}

// Texts

class EachText : public ApplePreferencesTest, public testing::WithParamInterface<std::u16string> {};

TEST_P(EachText, ComesBackUnitForUnit) {
    store(u"LUTsPath", GetParam());
    preferences.setAppValue("OverridePath", std::get<std::string>(read("LUTsPath")), codec);
    EXPECT_EQ(stored(u"OverridePath"), Content(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Texts, EachText,
                         testing::Values(u"", u"/Volumes/LUTs", u"\u00e9 \u6f22 \U0001F3AC", u"\xD800",
                                         u"/half \xDC00 a pair \xD83C", u"\xDC00\xD800", std::u16string(1, u'\0')));

TEST_F(ApplePreferencesTest, ATextIsReadAsUTF8) {
    store(u"LUTsPath", u"/Volumes/\u6f22");
    EXPECT_EQ(std::get<std::string>(read("LUTsPath")), "/Volumes/\xE6\xBC\xA2");
}

TEST_F(ApplePreferencesTest, BytesThatAreNoUTF8AreStoredAsReplacementCharactersAndDeleteNothing) {
    store(u"LUTsPath", u"/luts");
    preferences.setAppValue("LUTsPath", "/l\xFFts", codec);
    EXPECT_EQ(stored(u"LUTsPath"), Content(u"/l\uFFFDts"));
}

TEST_F(ApplePreferencesTest, AKeyOrApplicationThatIsNoUTF8IsAKeyOrApplicationLikeAnyOther) {
    preferences.setAppValue("\xFF", 1L, "\xFE");
    EXPECT_EQ(std::get<Number>(preferences.copyAppValue("\xFF", "\xFE")).longValue, 1);
    EXPECT_TRUE(preferences.synchronize("\xFE"));
}

// Synchronising

TEST_F(ApplePreferencesTest, ASynchroniseIsForTheCurrentUserOnAnyHost) {
    preferences.synchronize(codec);
    EXPECT_THAT(system.calls, ElementsAre(u"synchronize com.vantrel.codec for current user on any host"));
}

TEST_F(ApplePreferencesTest, ASynchroniseReturnsWhatTheSystemSays) {
    EXPECT_TRUE(preferences.synchronize(codec));
    system.synchronizes = false;
    EXPECT_FALSE(preferences.synchronize(codec));
}

}  // namespace
}  // namespace vantrel::apple

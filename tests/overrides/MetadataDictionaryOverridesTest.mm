#import "overrides/MetadataDictionaryOverrides.h"

#include <gmock/gmock.h>
#import <objc/runtime.h>

#import "overrides/InstalledMetadataDictionary.h"
#import "overrides/KVRXMetadataDictionary/MetadataDictionary.h"
#include "platform/memory/MemoryPreferences.h"
#import "tests/overrides/RecordingDictionary.h"

namespace vantrel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The way to a class of the tests' own, which records what it is sent.
class MetadataDictionaryOverridesTest : public testing::Test {
   protected:
    MetadataDictionaryOverridesTest() { recorded::forget(); }
    ~MetadataDictionaryOverridesTest() override { [pool release]; }

    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    MetadataDictionaryOverrides overrides{[RecordingDictionary class]};
};

TEST_F(MetadataDictionaryOverridesTest, EachReadAsksTheLoadedInstanceForItsMetadataAgain) {
    recorded::set(@"CPUM", [NSNumber numberWithInt:2]);
    const auto loaded = overrides.load();
    EXPECT_EQ(loaded->number(overrideKeys::chromaFilter), std::nullopt);
    EXPECT_EQ(loaded->number(overrideKeys::decodeThreads), 2);
    EXPECT_THAT(recorded::calls(), ElementsAre("alloc", "initFromOverride", "metadata", "metadata"));
}

struct Value {
    id object;
    std::optional<std::int32_t> number;
};

TEST_F(MetadataDictionaryOverridesTest, ANumberIsWhatIntValueMakesOfIt) {
    const Value values[] = {
        {[NSNumber numberWithInt:-2147483647 - 1], -2147483647 - 1},
        {[NSNumber numberWithBool:YES], 1},
        {[NSNumber numberWithDouble:2.9], 2},
        {[NSNumber numberWithUnsignedLongLong:4294967297ULL], 1},
        {@"12", 12},
        {@" -3 threads", -3},
        {@"text", 0},
        {[NSArray array], std::nullopt},
        {[NSData data], std::nullopt},
    };
    for (const auto &value : values) {
        recorded::set(@"CPUM", value.object);
        EXPECT_EQ(overrides.load()->number(overrideKeys::decodeThreads), value.number)
            << [[value.object description] UTF8String];
    }
}

TEST_F(MetadataDictionaryOverridesTest, WhatIsStoredKeepsItsType) {
    const std::pair<id, std::string> values[] = {
        {[NSNumber numberWithInt:2], "2"}, {@"12", "\"12\""}, {[NSArray array], "other type"}};
    for (const auto &[object, described] : values) {
        recorded::set(@"CPUM", object);
        EXPECT_EQ(memory::describeStored(overrides.load()->stored(overrideKeys::decodeThreads)), described);
    }
    EXPECT_EQ(memory::describeStored(overrides.load()->stored(overrideKeys::chromaFilter)), "absent");
}

TEST_F(MetadataDictionaryOverridesTest, ANumberThatGoesThroughTheDictionaryIsHandedBackInIt) {
    recorded::set(@"CPUM", [NSNumber numberWithInt:2]);
    EXPECT_TRUE(overrides.write({"CLSF", OverrideWay::throughDictionary, ""}, -1));
    EXPECT_THAT(recorded::calls(), ElementsAre("alloc", "initFromOverride", "metadata", "setMetadata: CLSF=-1 CPUM=2",
                                               "writeToOverride: 0"));
}

TEST_F(MetadataDictionaryOverridesTest, ANumberThatGoesThroughTheInstanceIsAddedToIt) {
    EXPECT_TRUE(overrides.write({"CPUM", OverrideWay::throughInstance, ""}, 3));
    EXPECT_THAT(recorded::calls(),
                ElementsAre("alloc", "initFromOverride", "addObject:withKey: 3 CPUM", "writeToOverride: 0"));
}

TEST_F(MetadataDictionaryOverridesTest, TheKeysOfThePaneGoTheirOwnWays) {
    EXPECT_EQ(overrideKeys::chromaFilter.way, OverrideWay::throughDictionary);
    EXPECT_EQ(overrideKeys::decodeThreads.way, OverrideWay::throughInstance);
}

TEST_F(MetadataDictionaryOverridesTest, AnInstanceIsNeverReleased) {
    EXPECT_TRUE(overrides.load());
    overrides.write(overrideKeys::decodeThreads, 1);
    overrides.write(overrideKeys::chromaFilter, 1);
    EXPECT_EQ(recorded::released(), 0);
}

TEST_F(MetadataDictionaryOverridesTest, WithoutAnInstanceNothingElseIsSent) {
    recorded::refuse();
    EXPECT_EQ(overrides.load(), nullptr);
    EXPECT_FALSE(overrides.write(overrideKeys::chromaFilter, 1));
    EXPECT_FALSE(overrides.write(overrideKeys::decodeThreads, 1));
    EXPECT_THAT(recorded::calls(),
                ElementsAre("alloc", "initFromOverride", "alloc", "initFromOverride", "alloc", "initFromOverride"));
}

TEST_F(MetadataDictionaryOverridesTest, AFailedWriteIsTold) {
    recorded::failWrites();
    EXPECT_FALSE(overrides.write(overrideKeys::decodeThreads, 1));
}

/// A class that answers what RecordingDictionary does, but for one selector.
Class classWithout(const std::string &missing) {
    Class made = objc_allocateClassPair([NSObject class], ("Without " + missing).c_str(), 0);
    for (const char *name :
         {"initFromOverride", "metadata", "setMetadata:", "addObject:withKey:", "writeToOverride:"}) {
        Method method = class_getInstanceMethod([RecordingDictionary class], sel_registerName(name));
        if (name == missing) continue;
        class_addMethod(made, method_getName(method), method_getImplementation(method), method_getTypeEncoding(method));
    }
    objc_registerClassPair(made);
    return made;
}

TEST_F(MetadataDictionaryOverridesTest, WithoutAClassThatAnswersAllFiveSelectorsThereIsNoRecord) {
    for (Class unfit :
         {Class(Nil), [NSObject class], classWithout("initFromOverride"), classWithout("metadata"),
          classWithout("setMetadata:"), classWithout("addObject:withKey:"), classWithout("writeToOverride:")}) {
        MetadataDictionaryOverrides none(unfit);
        EXPECT_EQ(none.load(), nullptr) << class_getName(unfit);
        EXPECT_FALSE(none.write(overrideKeys::chromaFilter, 1)) << class_getName(unfit);
    }
    EXPECT_THAT(recorded::calls(), IsEmpty());
}

TEST_F(MetadataDictionaryOverridesTest, TheLibrarysClassServes) {
    EXPECT_NE(MetadataDictionaryOverrides([MetadataDictionary class]).load(), nullptr);
}

TEST_F(MetadataDictionaryOverridesTest, AClassThatTheProcessHasIsTheInstalledOne) {
    EXPECT_EQ(installedMetadataDictionary(), [MetadataDictionary class]);
}

}  // namespace
}  // namespace vantrel

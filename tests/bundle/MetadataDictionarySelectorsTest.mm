#include <dlfcn.h>
#include <gmock/gmock.h>

#import "tests/bundle/Host.h"
#import "tests/overrides/RecordingDictionary.h"

/// The host brings a class of this name, so the bundle is to send its selectors to that one.
@interface MetadataDictionary : RecordingDictionary
@end

@implementation MetadataDictionary
@end

namespace vantrel::host {
namespace {

using testing::ElementsAre;

class MetadataDictionarySelectors : public testing::Test {
   protected:
    MetadataDictionarySelectors() {
        emptyHome();
        recorded::forget();
    }
    ~MetadataDictionarySelectors() override { [pool release]; }

    NSAutoreleasePool *pool = [NSAutoreleasePool new];
};

NSNumber *number(int value) {
    return [NSNumber numberWithInt:value];
}

TEST_F(MetadataDictionarySelectors, TheSetUpLoadsOnceAndAsksForTheMetadataTwice) {
    const Pane pane;
    EXPECT_THAT(recorded::calls(), ElementsAre("alloc", "initFromOverride", "metadata", "metadata"));
    EXPECT_EQ(recorded::released(), 0);
}

TEST_F(MetadataDictionarySelectors, TheChromaFilterIsInTheFirstAnswerAndTheDecodeLimitInTheSecond) {
    recorded::changeCopies([](NSMutableDictionary *copy, int nth) {
        [copy setObject:number(nth == 1 ? NSOnState : NSOffState) forKey:@"CLSF"];
        [copy setObject:number(nth == 2 ? 1 : 0) forKey:@"CPUM"];
    });
    const Pane pane;
    EXPECT_EQ([pane.variable("filter422To444") state], NSOnState);
    EXPECT_EQ([pane.variable("decodeThreads") indexOfSelectedItem], 1);
}

TEST_F(MetadataDictionarySelectors, ANumberThatAnotherProgramStoredAsTextIsShown) {
    recorded::set(@"CLSF", @"1");
    recorded::set(@"CPUM", @"1");
    const Pane pane;
    EXPECT_EQ([pane.variable("filter422To444") state], NSOnState);
    EXPECT_EQ([pane.variable("decodeThreads") indexOfSelectedItem], 1);
}

TEST_F(MetadataDictionarySelectors, AClickOnTheChromaFilterHandsTheChangedDictionaryBack) {
    const Pane pane;
    recorded::calls();
    recorded::set(@"GAIN", number(4));
    pane.set("filter422To444", NSOnState);
    EXPECT_THAT(recorded::calls(), ElementsAre("alloc", "initFromOverride", "metadata", "setMetadata: CLSF=1 GAIN=4",
                                               "writeToOverride: 0"));
    pane.set("filter422To444", NSMixedState);
    EXPECT_THAT(recorded::calls(), ElementsAre("alloc", "initFromOverride", "metadata", "setMetadata: CLSF=-1 GAIN=4",
                                               "writeToOverride: 0"));
    EXPECT_EQ(recorded::released(), 0);
}

TEST_F(MetadataDictionarySelectors, AChoiceOfDecoderThreadsIsAddedThroughTheInstance) {
    const Pane pane;
    recorded::calls();
    pane.choose("decodeThreads", 1);
    EXPECT_THAT(recorded::calls(),
                ElementsAre("alloc", "initFromOverride", "addObject:withKey: 1 CPUM", "writeToOverride: 0"));
    pane.choose("decodeThreads", 0);
    EXPECT_THAT(recorded::calls(),
                ElementsAre("alloc", "initFromOverride", "addObject:withKey: 0 CPUM", "writeToOverride: 0"));
    EXPECT_EQ(recorded::released(), 0);
}

TEST_F(MetadataDictionarySelectors, WithoutAnInstanceNothingElseIsSentAndTheControlsKeepTheirState) {
    recorded::set(@"CLSF", number(NSOnState));
    recorded::set(@"CPUM", number(1));
    recorded::refuse();
    const Pane pane;
    EXPECT_THAT(recorded::calls(), ElementsAre("alloc", "initFromOverride"));
    EXPECT_EQ([pane.variable("filter422To444") state], NSOffState);
    EXPECT_EQ([pane.variable("decodeThreads") indexOfSelectedItem], 0);

    pane.set("filter422To444", NSOnState);
    pane.choose("decodeThreads", 1);
    EXPECT_THAT(recorded::calls(), ElementsAre("alloc", "initFromOverride", "alloc", "initFromOverride"));
    EXPECT_EQ([pane.variable("filter422To444") state], NSOnState);
    EXPECT_EQ([pane.variable("decodeThreads") indexOfSelectedItem], 1);
}

TEST_F(MetadataDictionarySelectors, TheBundlesOwnLibraryIsNotLoaded) {
    const Pane pane;
    EXPECT_EQ(dlopen("libKVRXMetadataDictionary.so.1", RTLD_LAZY | RTLD_NOLOAD), nullptr);
}

}  // namespace
}  // namespace vantrel::host

int main(int argc, char **argv) {
    return vantrel::host::runTests(argc, argv);
}

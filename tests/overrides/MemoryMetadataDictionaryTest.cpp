#include <gmock/gmock.h>

#include "overrides/MemoryMetadataDictionary.h"

namespace vantrel::memory {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

/// The twin must be at least as strict as the store that it stands in for, or the pane's tests prove nothing.
struct MemoryMetadataDictionaryTest : testing::Test {
    Journal journal;
    MemoryMetadataDictionaryClass overrides{journal};
};

TEST_F(MemoryMetadataDictionaryTest, ARecordThatCantBeOpenedGivesNoInstance) {
    overrides.canBeOpened = false;
    EXPECT_EQ(overrides.initFromOverride(), nullptr);
}

TEST_F(MemoryMetadataDictionaryTest, AnInstanceHoldsWhatTheRecordHeldWhenItWasMade) {
    overrides.record = {{"CPUM", 2}};
    const auto instance = overrides.initFromOverride();
    overrides.record = {{"CPUM", 5}};
    EXPECT_EQ(instance->metadata()->objectForKey("CPUM"), 2);
    EXPECT_EQ(overrides.initFromOverride()->metadata()->objectForKey("CPUM"), 5);
}

TEST_F(MemoryMetadataDictionaryTest, AKeyWithoutAnEntryHasNothing) {
    EXPECT_EQ(overrides.initFromOverride()->metadata()->objectForKey("CLSF"), std::nullopt);
}

TEST_F(MemoryMetadataDictionaryTest, AChangeOfTheDictionaryCountsOnceItIsHandedBackAndWritten) {
    const auto instance = overrides.initFromOverride();
    auto metadata = instance->metadata();
    metadata->setObjectForKey(1, "CLSF");
    instance->writeToOverride();
    EXPECT_THAT(overrides.record, IsEmpty());

    instance->setMetadata(std::move(metadata));
    EXPECT_THAT(overrides.record, IsEmpty());

    EXPECT_TRUE(instance->writeToOverride());
    EXPECT_THAT(overrides.record, ElementsAre(Pair("CLSF", 1)));
}

TEST_F(MemoryMetadataDictionaryTest, BothWaysToStoreHaveTheSameEffect) {
    overrides.record = {{"CLSF", 0}, {"GAIN", -7}};
    const auto added = overrides.initFromOverride();
    added->addObjectWithKey(1, "CLSF");
    added->writeToOverride();
    const auto afterAdding = overrides.record;

    overrides.record = {{"CLSF", 0}, {"GAIN", -7}};
    const auto edited = overrides.initFromOverride();
    auto metadata = edited->metadata();
    metadata->setObjectForKey(1, "CLSF");
    edited->setMetadata(std::move(metadata));
    edited->writeToOverride();

    EXPECT_EQ(overrides.record, afterAdding);
    EXPECT_THAT(overrides.record, ElementsAre(Pair("CLSF", 1), Pair("GAIN", -7)));
}

TEST_F(MemoryMetadataDictionaryTest, DroppingAnInstanceLeavesTheRecordAlone) {
    overrides.initFromOverride()->addObjectWithKey(1, "CLSF");
    EXPECT_THAT(overrides.record, IsEmpty());
    EXPECT_EQ(overrides.liveInstances, 0);
}

TEST_F(MemoryMetadataDictionaryTest, AFailedWriteLeavesTheRecordAsItWas) {
    overrides.record = {{"CPUM", 2}};
    overrides.canBeWritten = false;
    const auto instance = overrides.initFromOverride();
    instance->addObjectWithKey(3, "CPUM");
    EXPECT_FALSE(instance->writeToOverride());
    EXPECT_THAT(overrides.record, ElementsAre(Pair("CPUM", 2)));
}

}  // namespace
}  // namespace vantrel::memory

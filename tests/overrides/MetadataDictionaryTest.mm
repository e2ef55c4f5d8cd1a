#import "overrides/KVRXMetadataDictionary/MetadataDictionary.h"

#include <gmock/gmock.h>

#include <filesystem>

#import "overrides/CocoaMetadataDictionary.h"
#include "overrides/OverrideRecord.h"
#import "platform/cocoa/CocoaFolders.h"
#import "platform/cocoa/CocoaText.h"

// Not in our own namespace, where MetadataDictionary is the interface that the pane knows.
namespace {

namespace cocoa = vantrel::cocoa;
using cocoa::CocoaMetadataDictionaryClass;
using vantrel::OverrideRecordClass;

/// The library's class, on an empty application support folder of this program's own.
class LibraryClass : public testing::Test {
   protected:
    LibraryClass() {
        std::filesystem::remove_all(cocoa::applicationSupportFolder());
        std::filesystem::create_directories(folder);
    }
    ~LibraryClass() override { [pool release]; }

    void writeRecord(NSDictionary *entries) {
        NSData *xml = [NSPropertyListSerialization dataFromPropertyList:entries
                                                                 format:NSPropertyListXMLFormat_v1_0
                                                       errorDescription:nullptr];
        [xml writeToFile:cocoa::toNSString(path) atomically:YES];
    }

    NSDictionary *record() { return [NSDictionary dictionaryWithContentsOfFile:cocoa::toNSString(path)]; }

    MetadataDictionary *fresh() { return [[[MetadataDictionary alloc] initFromOverride] autorelease]; }

    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    const std::string folder = cocoa::applicationSupportFolder() + "/Vantrel";
    const std::string path = folder + "/OverrideMetadata.plist";
};

TEST_F(LibraryClass, AnswersTheFiveSelectors) {
    EXPECT_TRUE(CocoaMetadataDictionaryClass::serves([MetadataDictionary class]));
}

TEST_F(LibraryClass, AClassThatLacksThemOrNoneAtAllDoesNotServe) {
    EXPECT_FALSE(CocoaMetadataDictionaryClass::serves([NSObject class]));
    EXPECT_FALSE(CocoaMetadataDictionaryClass::serves(Nil));
}

TEST_F(LibraryClass, WithoutARecordTheMetadataIsEmptyAndNotNil) {
    EXPECT_TRUE([[fresh() metadata] isEqual:[NSDictionary dictionary]]);
}

TEST_F(LibraryClass, ARecordThatCantBeReadGivesNoInstance) {
    [@"garbage" writeToFile:cocoa::toNSString(path) atomically:YES encoding:NSUTF8StringEncoding error:nullptr];
    EXPECT_EQ([[MetadataDictionary alloc] initFromOverride], nil);
}

TEST_F(LibraryClass, WhatIsAddedIsInTheMetadataAtOnceAndInTheRecordAfterTheWrite) {
    MetadataDictionary *overrides = fresh();
    [overrides addObject:[NSNumber numberWithInt:3] withKey:@"CPUM"];
    EXPECT_EQ([[[overrides metadata] objectForKey:@"CPUM"] intValue], 3);
    EXPECT_EQ(record(), nil);
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_EQ([[record() objectForKey:@"CPUM"] intValue], 3);
}

TEST_F(LibraryClass, ACopyOfTheMetadataCountsOnceItIsHandedBack) {
    writeRecord([NSDictionary dictionaryWithObject:[NSNumber numberWithInt:1] forKey:@"CLSF"]);
    MetadataDictionary *overrides = fresh();
    NSMutableDictionary *copy = [[[overrides metadata] mutableCopy] autorelease];
    [copy setObject:[NSNumber numberWithInt:0] forKey:@"CLSF"];
    EXPECT_EQ([[[overrides metadata] objectForKey:@"CLSF"] intValue], 1);
    [overrides setMetadata:copy];
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_EQ([[record() objectForKey:@"CLSF"] intValue], 0);
}

TEST_F(LibraryClass, AnEntryThatIsTakenOutIsGoneFromTheRecord) {
    writeRecord([NSDictionary dictionaryWithObjectsAndKeys:@"kept", @"KEEP", @"gone", @"GONE", nil]);
    MetadataDictionary *overrides = fresh();
    [[overrides metadata] removeObjectForKey:@"GONE"];
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_TRUE([record() isEqual:[NSDictionary dictionaryWithObject:@"kept" forKey:@"KEEP"]]);
}

TEST_F(LibraryClass, NoMetadataAtAllIsTakenAsEmpty) {
    writeRecord([NSDictionary dictionaryWithObject:@"gone" forKey:@"GONE"]);
    MetadataDictionary *overrides = fresh();
    [overrides setMetadata:nil];
    EXPECT_TRUE([[overrides metadata] isEqual:[NSDictionary dictionary]]);
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_TRUE([record() isEqual:[NSDictionary dictionary]]);
}

TEST_F(LibraryClass, EntriesThatWereNotReplacedKeepEveryDigit) {
    NSString *xml = @"<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>"
                     "<key>REAL</key><real>0.12345678901234568</real>"
                     "<key>UNSI</key><integer>18446744073709551615</integer></dict></plist>";
    [xml writeToFile:cocoa::toNSString(path) atomically:YES encoding:NSUTF8StringEncoding error:nullptr];
    MetadataDictionary *overrides = fresh();
    [overrides addObject:[NSNumber numberWithInt:1] withKey:@"CLSF"];
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    NSString *written = [NSString stringWithContentsOfFile:cocoa::toNSString(path)];
    EXPECT_TRUE([written rangeOfString:@"0.12345678901234568"].length > 0);
    EXPECT_TRUE([written rangeOfString:@"18446744073709551615"].length > 0);
}

TEST_F(LibraryClass, AValueThatNoPropertyListCanHoldFailsAndLeavesTheRecord) {
    NSDictionary *before = [NSDictionary dictionaryWithObject:[NSNumber numberWithInt:1] forKey:@"CLSF"];
    writeRecord(before);
    MetadataDictionary *overrides = fresh();
    [overrides addObject:[[NSObject new] autorelease] withKey:@"CPUM"];
    EXPECT_FALSE([overrides writeToOverride:nullptr]);
    EXPECT_TRUE([record() isEqual:before]);
}

TEST_F(LibraryClass, OnlyTheNullArgumentMeansTheRecord) {
    MetadataDictionary *overrides = fresh();
    int somethingElse = 0;
    EXPECT_FALSE([overrides writeToOverride:&somethingElse]);
    EXPECT_EQ(record(), nil);
}

TEST_F(LibraryClass, ServesThePaneThroughBothItsWaysOfWriting) {
    writeRecord([NSDictionary dictionaryWithObject:@"kept" forKey:@"KEEP"]);
    CocoaMetadataDictionaryClass overridesClass([MetadataDictionary class]);

    auto overrides = overridesClass.initFromOverride();
    overrides->addObjectWithKey(-5, "CPUM");
    EXPECT_TRUE(overrides->writeToOverride());

    overrides = overridesClass.initFromOverride();
    EXPECT_EQ(overrides->metadata()->objectForKey("CPUM"), -5);
    EXPECT_EQ(overrides->metadata()->objectForKey("CLSF"), std::nullopt);
    auto metadata = overrides->metadata();
    metadata->setObjectForKey(1, "CLSF");
    overrides->setMetadata(std::move(metadata));
    EXPECT_TRUE(overrides->writeToOverride());

    EXPECT_EQ([[record() objectForKey:@"CPUM"] intValue], -5);
    EXPECT_EQ([[record() objectForKey:@"CLSF"] intValue], 1);
    EXPECT_TRUE([[record() objectForKey:@"KEEP"] isEqual:@"kept"]);
}

TEST_F(LibraryClass, SharesTheRecordWithThePane) {
    OverrideRecordClass pane(cocoa::applicationSupportFolder());
    const auto overrides = pane.initFromOverride();
    overrides->addObjectWithKey(4, "CPUM");
    EXPECT_TRUE(overrides->writeToOverride());
    EXPECT_EQ([[[fresh() metadata] objectForKey:@"CPUM"] intValue], 4);
}

TEST_F(LibraryClass, GivesThePaneNoInstanceWhenTheRecordCantBeRead) {
    [@"garbage" writeToFile:cocoa::toNSString(path) atomically:YES encoding:NSUTF8StringEncoding error:nullptr];
    EXPECT_EQ(CocoaMetadataDictionaryClass([MetadataDictionary class]).initFromOverride(), nullptr);
}

}  // namespace

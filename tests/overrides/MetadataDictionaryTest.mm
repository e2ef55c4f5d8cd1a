#import "overrides/KVRXMetadataDictionary/MetadataDictionary.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <stdexcept>

#import "platform/cocoa/CocoaFolders.h"
#import "platform/cocoa/CocoaText.h"
#include "tests/platform/posix/Processes.h"

namespace {

namespace cocoa = vantrel::cocoa;

NSNumber *number(int value) {
    return [NSNumber numberWithInt:value];
}

/// The library's class, on an empty application support folder of this program's own.
class MetadataDictionaryTest : public testing::Test {
   protected:
    MetadataDictionaryTest() {
        if (!folder.starts_with(HOME_PATH)) throw std::runtime_error("this isn't the test's own home: " + folder);
        std::filesystem::remove_all(cocoa::applicationSupportFolder());
        std::filesystem::create_directories(folder);
    }
    ~MetadataDictionaryTest() override { [pool release]; }

    void writeFile(const std::string &text) {
        [[NSData dataWithBytes:text.data() length:text.size()] writeToFile:cocoa::toNSString(path) atomically:NO];
    }

    void writeRecord(NSDictionary *entries) {
        NSData *xml = [NSPropertyListSerialization dataFromPropertyList:entries
                                                                 format:NSPropertyListXMLFormat_v1_0
                                                       errorDescription:nullptr];
        [xml writeToFile:cocoa::toNSString(path) atomically:YES];
    }

    NSDictionary *record() { return [NSDictionary dictionaryWithContentsOfFile:cocoa::toNSString(path)]; }

    int stored(NSString *key) { return [[record() objectForKey:key] intValue]; }

    MetadataDictionary *fresh() { return [[[MetadataDictionary alloc] initFromOverride] autorelease]; }

    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    const std::string folder = cocoa::applicationSupportFolder() + "/Vantrel";
    const std::string path = folder + "/OverrideMetadata.plist";
};

TEST_F(MetadataDictionaryTest, WithoutARecordTheMetadataIsEmptyAndNotNil) {
    EXPECT_TRUE([[fresh() metadata] isEqual:[NSDictionary dictionary]]);
}

TEST_F(MetadataDictionaryTest, ARecordThatCantBeReadGivesNoInstance) {
    writeFile("garbage");
    EXPECT_EQ([[MetadataDictionary alloc] initFromOverride], nil);
}

TEST_F(MetadataDictionaryTest, TheMetadataHasEveryEntryOfTheRecord) {
    NSDictionary *entries = [NSDictionary
        dictionaryWithObjectsAndKeys:number(-3), @"GAIN", @"text", @"NAME", [NSArray arrayWithObject:@"item"], @"LIST",
                                     [NSData dataWithBytes:"data" length:4], @"DATA", nil];
    writeRecord(entries);
    EXPECT_TRUE([[fresh() metadata] isEqual:entries]);
}

TEST_F(MetadataDictionaryTest, WhatIsAddedIsInTheMetadataAtOnceAndInTheRecordAfterTheWrite) {
    MetadataDictionary *overrides = fresh();
    [overrides addObject:number(3) withKey:@"CPUM"];
    EXPECT_EQ([[[overrides metadata] objectForKey:@"CPUM"] intValue], 3);
    EXPECT_EQ(record(), nil);
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_EQ(stored(@"CPUM"), 3);
}

TEST_F(MetadataDictionaryTest, EveryKindOfValueThatIsAddedIsInTheRecordAfterTheWrite) {
    NSDictionary *values = [NSDictionary
        dictionaryWithObjectsAndKeys:@"text", @"NAME", number(-3), @"GAIN", [NSData dataWithBytes:"data" length:4],
                                     @"DATA", [NSDate dateWithTimeIntervalSince1970:1], @"DATE",
                                     [NSArray arrayWithObject:@"item"], @"LIST",
                                     [NSDictionary dictionaryWithObject:@"value" forKey:@"key"], @"DICT", nil];
    MetadataDictionary *overrides = fresh();
    for (NSUInteger index = 0; index < [values count]; ++index) {
        NSString *key = [[values allKeys] objectAtIndex:index];
        [overrides addObject:[values objectForKey:key] withKey:key];
    }
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_TRUE([record() isEqual:values]);
}

TEST_F(MetadataDictionaryTest, WhatIsChangedInThePlaceIsInTheRecordAfterTheWrite) {
    writeRecord([NSDictionary dictionaryWithObject:number(1) forKey:@"CLSF"]);
    MetadataDictionary *overrides = fresh();
    [[overrides metadata] setObject:number(0) forKey:@"CLSF"];
    EXPECT_EQ(stored(@"CLSF"), 1);
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_EQ(stored(@"CLSF"), 0);
}

TEST_F(MetadataDictionaryTest, ACopyOfTheMetadataCountsOnceItIsHandedBack) {
    writeRecord([NSDictionary dictionaryWithObject:number(1) forKey:@"CLSF"]);
    MetadataDictionary *overrides = fresh();
    NSMutableDictionary *copy = [[[overrides metadata] mutableCopy] autorelease];
    [copy setObject:number(0) forKey:@"CLSF"];
    EXPECT_EQ([[[overrides metadata] objectForKey:@"CLSF"] intValue], 1);
    [overrides setMetadata:copy];
    EXPECT_EQ([[[overrides metadata] objectForKey:@"CLSF"] intValue], 0);
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_EQ(stored(@"CLSF"), 0);
}

TEST_F(MetadataDictionaryTest, WithoutAWriteNothingIsStored) {
    writeRecord([NSDictionary dictionaryWithObject:number(1) forKey:@"CLSF"]);
    MetadataDictionary *overrides = [[MetadataDictionary alloc] initFromOverride];
    [overrides addObject:number(0) withKey:@"CLSF"];
    [overrides release];
    EXPECT_EQ(stored(@"CLSF"), 1);
}

TEST_F(MetadataDictionaryTest, AnEntryThatIsTakenOutIsGoneFromTheRecord) {
    writeRecord([NSDictionary dictionaryWithObjectsAndKeys:@"kept", @"KEEP", @"gone", @"GONE", nil]);
    MetadataDictionary *overrides = fresh();
    [[overrides metadata] removeObjectForKey:@"GONE"];
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_TRUE([record() isEqual:[NSDictionary dictionaryWithObject:@"kept" forKey:@"KEEP"]]);
}

TEST_F(MetadataDictionaryTest, AnEntryThatIsMissingInWhatIsHandedBackIsGoneFromTheRecord) {
    writeRecord([NSDictionary dictionaryWithObjectsAndKeys:@"kept", @"KEEP", @"gone", @"GONE", nil]);
    MetadataDictionary *overrides = fresh();
    [overrides setMetadata:[NSMutableDictionary dictionaryWithObject:@"kept" forKey:@"KEEP"]];
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_TRUE([record() isEqual:[NSDictionary dictionaryWithObject:@"kept" forKey:@"KEEP"]]);
}

TEST_F(MetadataDictionaryTest, NoMetadataAtAllIsTakenAsEmpty) {
    writeRecord([NSDictionary dictionaryWithObject:@"gone" forKey:@"GONE"]);
    MetadataDictionary *overrides = fresh();
    [overrides setMetadata:nil];
    EXPECT_TRUE([[overrides metadata] isEqual:[NSDictionary dictionary]]);
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_TRUE([record() isEqual:[NSDictionary dictionary]]);
}

TEST_F(MetadataDictionaryTest, BothWaysToStoreLeaveTheSameRecord) {
    MetadataDictionary *added = fresh();
    [added addObject:number(7) withKey:@"CPUM"];
    EXPECT_TRUE([added writeToOverride:nullptr]);
    NSData *afterAdding = [NSData dataWithContentsOfFile:cocoa::toNSString(path)];

    std::filesystem::remove(path);
    MetadataDictionary *edited = fresh();
    NSMutableDictionary *metadata = [edited metadata];
    [metadata setObject:number(7) forKey:@"CPUM"];
    [edited setMetadata:metadata];
    EXPECT_TRUE([edited writeToOverride:nullptr]);
    EXPECT_TRUE([[NSData dataWithContentsOfFile:cocoa::toNSString(path)] isEqual:afterAdding]);
}

TEST_F(MetadataDictionaryTest, EntriesThatWereNotReplacedAreWrittenAsTheyWereRead) {
    writeFile("<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>"
              "<key>REAL</key><real>0.12345678901234568</real>"
              "<key>HALF</key><string>\\Ud800 is half a pair</string>"
              "<key>UNSI</key><integer>18446744073709551615</integer></dict></plist>");
    MetadataDictionary *overrides = fresh();
    [overrides addObject:number(1) withKey:@"CLSF"];
    [overrides setMetadata:[[[overrides metadata] mutableCopy] autorelease]];
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    NSString *written = [NSString stringWithContentsOfFile:cocoa::toNSString(path)];
    EXPECT_TRUE([written rangeOfString:@"<real>0.12345678901234568</real>"].length > 0);
    EXPECT_TRUE([written rangeOfString:@"<integer>18446744073709551615</integer>"].length > 0);
}

TEST_F(MetadataDictionaryTest, AnEntryThatNoObjectCanBeMadeOfIsNotSeenAndStays) {
    for (const std::string none :
         {"<string>half a pair: \\Ud800</string>", "<date>tomorrow</date>", "<date></date>", "<date/>",
          "<date>2024-01-01</date>", "<date>2024-00-10T00:00:00Z</date>", "<date>2024-10-00T00:00:00Z</date>",
          "<date>99999-01-01T00:00:00Z</date>", "<date> 2024-01-01T00:00:00Z</date>",
          "<array><date>2024-01-01T00:00:00Z</date><dict><key>a</key><date>1</date></dict></array>"}) {
        SCOPED_TRACE(none);
        writeFile("<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict><key>NONE</key>" + none +
                  "<key>DATE</key><date>2024-02-29T23:59:59Z</date></dict></plist>");
        MetadataDictionary *overrides = fresh();
        EXPECT_EQ([[overrides metadata] count], 1U);
        EXPECT_TRUE([[[overrides metadata] objectForKey:@"DATE"] isKindOfClass:[NSDate class]]);
        [overrides setMetadata:nil];
        [overrides addObject:number(1) withKey:@"CLSF"];
        EXPECT_TRUE([overrides writeToOverride:nullptr]);
        NSString *written = [NSString stringWithContentsOfFile:cocoa::toNSString(path)];
        EXPECT_TRUE([written rangeOfString:cocoa::toNSString(none)].length > 0);
        EXPECT_TRUE([written rangeOfString:@"CLSF"].length > 0);
        EXPECT_EQ([written rangeOfString:@"DATE"].length, 0U);
    }
}

TEST_F(MetadataDictionaryTest, WhatOthersStoredSinceTheLoadStays) {
    writeRecord([NSDictionary dictionaryWithObjectsAndKeys:number(1), @"CLSF", number(500), @"GAIN", nil]);
    MetadataDictionary *slow = fresh();
    MetadataDictionary *quick = fresh();
    [quick addObject:number(0) withKey:@"CLSF"];
    [quick addObject:number(600) withKey:@"GAIN"];
    EXPECT_TRUE([quick writeToOverride:nullptr]);

    // What is handed back with the values that were loaded changes nothing.
    [slow setMetadata:[NSMutableDictionary dictionaryWithObjectsAndKeys:number(1), @"CLSF", number(500), @"GAIN",
                                                                        number(2), @"CPUM", nil]];
    EXPECT_TRUE([slow writeToOverride:nullptr]);
    EXPECT_EQ(stored(@"CLSF"), 0);
    EXPECT_EQ(stored(@"GAIN"), 600);
    EXPECT_EQ(stored(@"CPUM"), 2);
}

TEST_F(MetadataDictionaryTest, AnotherTypeIsAChangeThoughFoundationCallsItEqual) {
    writeRecord([NSDictionary dictionaryWithObject:[NSNumber numberWithBool:YES] forKey:@"CLSF"]);
    MetadataDictionary *overrides = fresh();
    [overrides addObject:number(1) withKey:@"CLSF"];
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_STREQ([[record() objectForKey:@"CLSF"] objCType], [number(1) objCType]);
}

TEST_F(MetadataDictionaryTest, ASecondWriteChangesOnlyWhatWasChangedSinceTheFirst) {
    MetadataDictionary *overrides = fresh();
    [overrides addObject:number(1) withKey:@"CLSF"];
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    MetadataDictionary *other = fresh();
    [other addObject:number(0) withKey:@"CLSF"];
    EXPECT_TRUE([other writeToOverride:nullptr]);

    [overrides addObject:number(2) withKey:@"CPUM"];
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_EQ(stored(@"CLSF"), 0);
    EXPECT_EQ(stored(@"CPUM"), 2);
}

TEST_F(MetadataDictionaryTest, WhatAFailedWriteDidntStoreTheNextOneDoes) {
    MetadataDictionary *overrides = fresh();
    [overrides addObject:number(1) withKey:@"CLSF"];
    std::filesystem::create_directories(path);
    EXPECT_FALSE([overrides writeToOverride:nullptr]);
    std::filesystem::remove(path);
    EXPECT_TRUE([overrides writeToOverride:nullptr]);
    EXPECT_EQ(stored(@"CLSF"), 1);
}

TEST_F(MetadataDictionaryTest, AValueThatNoPropertyListCanHoldFailsAndLeavesTheRecord) {
    NSDictionary *before = [NSDictionary dictionaryWithObject:number(1) forKey:@"CLSF"];
    writeRecord(before);
    NSObject *none = [[NSObject new] autorelease];
    const id values[] = {none, [NSArray arrayWithObject:none],
                         [NSDictionary dictionaryWithObject:none forKey:@"inside"],
                         [NSDictionary dictionaryWithObject:@"inside" forKey:number(1)]};
    for (id value : values) {
        MetadataDictionary *overrides = fresh();
        [overrides addObject:value withKey:@"CPUM"];
        EXPECT_FALSE([overrides writeToOverride:nullptr]);
        EXPECT_TRUE([record() isEqual:before]);
    }
    MetadataDictionary *overrides = fresh();
    [[overrides metadata] setObject:@"text" forKey:number(1)];
    EXPECT_FALSE([overrides writeToOverride:nullptr]);
    EXPECT_TRUE([record() isEqual:before]);
}

TEST_F(MetadataDictionaryTest, OnlyTheNullArgumentMeansTheRecord) {
    MetadataDictionary *overrides = fresh();
    int somethingElse = 0;
    EXPECT_FALSE([overrides writeToOverride:&somethingElse]);
    EXPECT_EQ(record(), nil);
}

TEST_F(MetadataDictionaryTest, ProcessesThatEachStoreThreeHundredNumbersLoseNone) {
    std::vector<pid_t> processes;
    for (const char *name : {"one", "two"}) {
        processes.push_back(vantrel::posix::startProcess([&] {
            for (int count = 0; count < 300; ++count) {
                MetadataDictionary *overrides = fresh();
                [overrides addObject:number(count) withKey:[NSString stringWithFormat:@"%s %d", name, count]];
                if (![overrides writeToOverride:nullptr]) return false;
            }
            return true;
        }));
    }
    for (const pid_t process : processes) EXPECT_EQ(vantrel::posix::endOf(process), 0);
    EXPECT_EQ([record() count], 600U);
}

}  // namespace

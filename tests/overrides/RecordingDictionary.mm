#import "tests/overrides/RecordingDictionary.h"

#include <utility>

namespace {

std::vector<std::string> noted;
int releases = 0;
bool isRefused = false;
bool writesFail = false;
NSMutableDictionary *record = nil;
int copies = 0;
std::function<void(NSMutableDictionary *, int)> changeCopy;

std::string textOf(id object) {
    return [[object description] UTF8String];
}

std::string textOfEntries(NSDictionary *entries) {
    std::string text;
    NSEnumerator *keys = [[[entries allKeys] sortedArrayUsingSelector:@selector(compare:)] objectEnumerator];
    while (id key = [keys nextObject]) text += " " + textOf(key) + "=" + textOf([entries objectForKey:key]);
    return text;
}

}  // namespace

namespace vantrel::recorded {

void forget() {
    noted.clear();
    releases = 0;
    isRefused = writesFail = false;
    copies = 0;
    changeCopy = nullptr;
    [record release];
    record = [NSMutableDictionary new];
}

std::vector<std::string> calls() {
    return std::exchange(noted, {});
}

int released() {
    return releases;
}

void set(NSString *key, id object) {
    [record setObject:object forKey:key];
}

id entry(NSString *key) {
    return [record objectForKey:key];
}

void changeCopies(std::function<void(NSMutableDictionary *, int)> change) {
    changeCopy = std::move(change);
}

void refuse() {
    isRefused = true;
}

void failWrites() {
    writesFail = true;
}

}  // namespace vantrel::recorded

@implementation RecordingDictionary

+ (id)alloc {
    noted.push_back("alloc");
    return [super alloc];
}

- (id)initFromOverride {
    noted.push_back("initFromOverride");
    if (isRefused || !(self = [super init])) return nil;
    _metadata = [record mutableCopy];
    return self;
}

- (oneway void)release {
    ++releases;
    [super release];
}

- (id)autorelease {
    ++releases;
    return [super autorelease];
}

- (NSMutableDictionary *)metadata {
    noted.push_back("metadata");
    NSMutableDictionary *copy = [[_metadata mutableCopy] autorelease];
    ++copies;
    if (changeCopy) changeCopy(copy, copies);
    return copy;
}

- (void)setMetadata:(NSMutableDictionary *)metadata {
    noted.push_back("setMetadata:" + textOfEntries(metadata));
    [_metadata release];
    _metadata = [metadata mutableCopy];
}

- (void)addObject:(id)object withKey:(NSString *)key {
    noted.push_back("addObject:withKey: " + textOf(object) + " " + textOf(key));
    [_metadata setObject:object forKey:key];
}

- (BOOL)writeToOverride:(void *)argument {
    noted.push_back(argument ? "writeToOverride: something" : "writeToOverride: 0");
    if (writesFail) return NO;
    [record setDictionary:_metadata];
    return YES;
}

@end

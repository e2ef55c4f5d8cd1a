#import "overrides/KVRXMetadataDictionary/MetadataDictionary.h"

#include "overrides/KVRXMetadataDictionary/Exceptions.h"
#include "overrides/KVRXMetadataDictionary/OverrideRecord.h"
#import "platform/cocoa/CocoaFolders.h"
#import "platform/cocoa/CocoaSystem.h"
#import "platform/cocoa/CocoaText.h"

using vantrel::OverrideRecord;
using vantrel::gnustep::PropertyList;
using vantrel::gnustep::PropertyListChanges;

namespace {

OverrideRecord &record() {
    static vantrel::cocoa::CocoaLog log;
    static OverrideRecord record(vantrel::cocoa::applicationSupportFolder(), log);
    return record;
}

/// The entries as Foundation's objects; nil when it raises an exception over them. Containers can't be changed in
/// place: an entry changes by being replaced.
NSDictionary *toObjects(const PropertyList &list) {
    const std::string &xml = list.bytes();
    NSDictionary *objects = nil;
    vantrel::withoutExceptions([&] {
        objects = [NSPropertyListSerialization propertyListFromData:[NSData dataWithBytes:xml.data() length:xml.size()]
                                                   mutabilityOption:NSPropertyListImmutable
                                                             format:nullptr
                                                   errorDescription:nullptr];
    });
    return objects;
}

/// The same, without those that Foundation has no object for. GNUstep raises an exception over a date that is none, or
/// over a text that ends with half a surrogate pair.
NSDictionary *toDictionary(const PropertyList &list) {
    if (NSDictionary *all = toObjects(list)) return all;
    NSMutableDictionary *some = [NSMutableDictionary dictionary];
    for (const auto &key : list.keys()) {
        NSAutoreleasePool *pool = [NSAutoreleasePool new];
        PropertyListChanges entry;
        entry.copy(key, list);
        [some addEntriesFromDictionary:toObjects(*PropertyList().with(entry))];
        [pool release];
    }
    return some;
}

/// Whether `object` can be a value in a property list. Foundation should tell, but GNUstep's takes any object and
/// writes its description.
bool isPropertyListValue(id object) {
    if ([object isKindOfClass:[NSArray class]] || [object isKindOfClass:[NSDictionary class]]) {
        NSEnumerator *values = [object objectEnumerator];
        while (id value = [values nextObject]) {
            if (!isPropertyListValue(value)) return false;
        }
        return true;
    }
    return [object isKindOfClass:[NSString class]] || [object isKindOfClass:[NSNumber class]] ||
           [object isKindOfClass:[NSData class]] || [object isKindOfClass:[NSDate class]];
}

/// Nothing when a value is none of a property list's, or a key no text.
std::optional<PropertyList> toPropertyList(NSDictionary *dictionary) {
    if (!isPropertyListValue(dictionary)) return std::nullopt;
    NSData *xml = nil;
    vantrel::withoutExceptions([&] {
        xml = [NSPropertyListSerialization dataFromPropertyList:dictionary
                                                         format:NSPropertyListXMLFormat_v1_0
                                               errorDescription:nullptr];
    });
    return PropertyList::parse({static_cast<const char *>([xml bytes]), [xml length]});
}

}  // namespace

@implementation MetadataDictionary

- (id)initFromOverride {
    if (!(self = [super init])) return nil;
    const auto entries = record().read();
    if (!entries) {
        [self release];
        return nil;
    }
    _loaded = [toDictionary(*entries) retain];
    _metadata = [_loaded mutableCopy];
    return self;
}

- (void)dealloc {
    [_loaded release];
    [_metadata release];
    [super dealloc];
}

- (NSMutableDictionary *)metadata {
    return _metadata;
}

- (void)setMetadata:(NSMutableDictionary *)metadata {
    [metadata retain];
    [_metadata release];
    _metadata = metadata ? metadata : [NSMutableDictionary new];
}

- (void)addObject:(id)object withKey:(NSString *)key {
    [_metadata setObject:object forKey:key];
}

- (BOOL)writeToOverride:(void *)argument {
    if (argument) return NO;

    // An entry that is still the very object that was loaded isn't looked at: Foundation may not be able to write it.
    NSMutableDictionary *before = [NSMutableDictionary dictionary];
    NSMutableDictionary *after = [NSMutableDictionary dictionary];
    NSEnumerator *keys = [[[_loaded allKeys] arrayByAddingObjectsFromArray:[_metadata allKeys]] objectEnumerator];
    while (id key = [keys nextObject]) {
        id loaded = [_loaded objectForKey:key];
        id object = [_metadata objectForKey:key];
        if (loaded == object) continue;
        if (loaded) [before setObject:loaded forKey:key];
        if (object) [after setObject:object forKey:key];
    }
    const auto from = toPropertyList(before);
    const auto to = toPropertyList(after);
    if (!from || !to || !record().change(*from, *to)) return NO;
    [_loaded release];
    _loaded = [_metadata copy];
    return YES;
}

@end

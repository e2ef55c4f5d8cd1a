#import "overrides/KVRXMetadataDictionary/MetadataDictionary.h"

#include "overrides/KVRXMetadataDictionary/OverrideRecord.h"
#import "platform/cocoa/CocoaFolders.h"
#import "platform/cocoa/CocoaText.h"

using vantrel::OverrideRecord;
using vantrel::gnustep::PropertyList;

namespace {

/// The entries as Foundation's objects. Containers can't be changed in place: an entry changes by being replaced.
NSDictionary *toDictionary(const PropertyList &list) {
    const std::string xml = list.toXML();
    return [NSPropertyListSerialization propertyListFromData:[NSData dataWithBytes:xml.data() length:xml.size()]
                                            mutabilityOption:NSPropertyListImmutable
                                                      format:nullptr
                                            errorDescription:nullptr];
}

/// Whether `object` can stand in a property list. Foundation should tell, but GNUstep's takes any object and writes
/// its description.
bool isPropertyListValue(id object) {
    if ([object isKindOfClass:[NSArray class]]) {
        NSEnumerator *items = [object objectEnumerator];
        while (id item = [items nextObject]) {
            if (!isPropertyListValue(item)) return false;
        }
        return true;
    }
    if ([object isKindOfClass:[NSDictionary class]]) {
        return isPropertyListValue([object allKeys]) && isPropertyListValue([object allValues]);
    }
    return [object isKindOfClass:[NSString class]] || [object isKindOfClass:[NSNumber class]] ||
           [object isKindOfClass:[NSData class]] || [object isKindOfClass:[NSDate class]];
}

/// Nothing when a value is none of a property list's.
std::optional<PropertyList> toPropertyList(NSDictionary *dictionary) {
    if (!isPropertyListValue(dictionary)) return std::nullopt;
    NSData *xml = [NSPropertyListSerialization dataFromPropertyList:dictionary
                                                             format:NSPropertyListXMLFormat_v1_0
                                                   errorDescription:nullptr];
    return PropertyList::parse({static_cast<const char *>([xml bytes]), [xml length]});
}

}  // namespace

@implementation MetadataDictionary

- (id)initFromOverride {
    if (!(self = [super init])) return nil;
    auto record = OverrideRecord::load(vantrel::cocoa::applicationSupportFolder());
    if (!record) {
        [self release];
        return nil;
    }
    _record = new OverrideRecord(std::move(*record));
    _loaded = [toDictionary(static_cast<OverrideRecord *>(_record)->entries()) retain];
    _metadata = [_loaded mutableCopy];
    return self;
}

- (void)dealloc {
    delete static_cast<OverrideRecord *>(_record);
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

/// Foundation's own way there and back would cost other programs' values digits, so only what was replaced takes it.
- (BOOL)writeToOverride:(void *)record {
    if (record) return NO;
    PropertyList &entries = static_cast<OverrideRecord *>(_record)->entries();
    NSMutableDictionary *replaced = [NSMutableDictionary dictionary];
    NSEnumerator *keys = [_metadata keyEnumerator];
    while (NSString *key = [keys nextObject]) {
        id object = [_metadata objectForKey:key];
        if (object != [_loaded objectForKey:key]) [replaced setObject:object forKey:key];
    }
    const auto changes = toPropertyList(replaced);
    if (!changes) return NO;
    for (const auto &key : entries.keys()) {
        if (![_metadata objectForKey:vantrel::cocoa::toNSString(key)]) entries.remove(key);
    }
    for (const auto &key : changes->keys()) entries.copyEntry(key, *changes);
    return static_cast<OverrideRecord *>(_record)->write();
}

@end

#import "overrides/KVRXMetadataDictionary/MetadataDictionary.h"

#include <regex>

#include "overrides/KVRXMetadataDictionary/OverrideRecord.h"
#import "platform/cocoa/CocoaFolders.h"
#import "platform/cocoa/CocoaSystem.h"
#import "platform/cocoa/CocoaText.h"

using vantrel::OverrideRecord;
using vantrel::gnustep::PropertyList;

namespace {

OverrideRecord &record() {
    static vantrel::cocoa::CocoaLog log;
    static OverrideRecord record(vantrel::cocoa::applicationSupportFolder(), log);
    return record;
}

/// Whether Foundation has an object for an entry in XML. GNUstep's raises an exception over a date that is none.
bool hasObject(const std::string &xml) {
    static const std::regex date(
        "<date>[0-9]{4}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])T([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9]Z</date>");
    for (auto at = xml.find("<date"); at != std::string::npos; at = xml.find("<date", at + 1)) {
        const auto from = xml.begin() + static_cast<std::ptrdiff_t>(at);
        if (!std::regex_search(from, xml.end(), date, std::regex_constants::match_continuous)) return false;
    }
    return true;
}

/// The entries as Foundation's objects, but for those that have none. Containers can't be changed in place: an entry
/// changes by being replaced.
NSDictionary *toDictionary(const PropertyList &list) {
    PropertyList seen;
    for (const auto &key : list.keys()) {
        PropertyList entry;
        entry.copyEntry(key, list);
        if (hasObject(entry.toXML())) seen.copyEntry(key, list);
    }
    const std::string xml = seen.toXML();
    return [NSPropertyListSerialization propertyListFromData:[NSData dataWithBytes:xml.data() length:xml.size()]
                                            mutabilityOption:NSPropertyListImmutable
                                                      format:nullptr
                                            errorDescription:nullptr];
}

bool isText(id object) {
    return [object isKindOfClass:[NSString class]];
}

bool areAll(NSArray *objects, bool (*isFit)(id)) {
    NSEnumerator *enumerator = [objects objectEnumerator];
    while (id object = [enumerator nextObject]) {
        if (!isFit(object)) return false;
    }
    return true;
}

/// Whether `object` can stand in a property list. Foundation should tell, but GNUstep's writes the description of an
/// object that can't, and raises an exception over a key that can't.
bool isPropertyListValue(id object) {
    if ([object isKindOfClass:[NSArray class]]) return areAll(object, isPropertyListValue);
    if ([object isKindOfClass:[NSDictionary class]]) {
        return areAll([object allKeys], isText) && areAll([object allValues], isPropertyListValue);
    }
    return isText(object) || [object isKindOfClass:[NSNumber class]] || [object isKindOfClass:[NSData class]] ||
           [object isKindOfClass:[NSDate class]];
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

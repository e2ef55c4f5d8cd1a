#pragma once

#import <Foundation/Foundation.h>

#include <functional>
#include <string>
#include <vector>

/// A MetadataDictionary of the tests' own, on a record in memory, which hands out copies of its metadata only and
/// notes what it is sent.
@interface RecordingDictionary : NSObject {
   @private
    NSMutableDictionary *_metadata;
}
- (id)initFromOverride;
- (NSMutableDictionary *)metadata;
- (void)setMetadata:(NSMutableDictionary *)metadata;
- (void)addObject:(id)object withKey:(NSString *)key;
- (BOOL)writeToOverride:(void *)record;
@end

namespace vantrel::recorded {

/// Starts over: no calls, an empty record that can be opened and written.
void forget();

/// What was sent to the class and its instances since the last look: "alloc", "initFromOverride", "metadata",
/// "setMetadata: CLSF=1 CPUM=2", "addObject:withKey: 3 CPUM", "writeToOverride: 0".
std::vector<std::string> calls();

/// How often an instance was released or autoreleased.
int released();

/// Puts an entry into the record, or asks for one.
void set(NSString *key, id object);
id entry(NSString *key);

/// Changes each copy of the metadata that is handed out from now on; told the how manieth it is, from 1.
void changeCopies(std::function<void(NSMutableDictionary *copy, int nth)> change);

/// From now on the record can't be opened: there are no instances.
void refuse();

/// From now on every write fails.
void failWrites();

}  // namespace vantrel::recorded

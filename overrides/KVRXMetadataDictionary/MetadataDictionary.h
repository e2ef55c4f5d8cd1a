/// The codec's override metadata, for the codec's programs: numbers under four-character keys, in a record that they
/// and the settings pane share. Link with KVRXMetadataDictionary.
#import <Foundation/Foundation.h>

/// The override metadata as it was loaded from the record, and the way back. Make one for a sequence of calls and let
/// it go; the record changes only through `writeToOverride:`. Not for use from several threads at once.
@interface MetadataDictionary : NSObject {
   @private
    NSDictionary *_loaded;
    NSMutableDictionary *_metadata;
}

/// Loads the current user's record. An empty dictionary when there is none yet; nil when there is one that can't be
/// read, so that it is never overwritten.
- (id)initFromOverride;

/// The instance's metadata, key to value; never nil. An entry that no object can be made of, a date that is none for
/// one, isn't seen and stays in the record. What is changed in it, in place or in a copy that is handed to
/// `setMetadata:`, lasts from `writeToOverride:` on.
- (NSMutableDictionary *)metadata;

/// Makes `metadata` the instance's own; its keys are strings, its values any of a property list's. nil is taken as
/// empty.
- (void)setMetadata:(NSMutableDictionary *)metadata;

/// Stores `object` under `key`, replacing any entry.
- (void)addObject:(id)object withKey:(NSString *)key;

/// Puts into the record, durably, what is other than it was when it was loaded or last written: entries that were
/// added, replaced by others, or taken away. Everything else in the record stays as it is by now, letter for letter.
/// Returns NO, with the record as it was, when it can't be read or written any more or would grow too large, when a
/// value is none of a property list's, or when `record` isn't null, which alone has a meaning: the record that was
/// loaded.
- (BOOL)writeToOverride:(void *)record;

@end

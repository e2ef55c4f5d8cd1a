#import <Foundation/Foundation.h>

/// In a library that this one isn't linked with.
extern "C" BOOL writeMetadata(void *record);

/// All that the pane asks for, until it writes.
@interface MetadataDictionary : NSObject
@end

@implementation MetadataDictionary

- (id)initFromOverride {
    return [super init];
}

- (NSMutableDictionary *)metadata {
    return [NSMutableDictionary dictionary];
}

- (void)setMetadata:(NSMutableDictionary *)metadata {
}

- (void)addObject:(id)object withKey:(NSString *)key {
}

- (BOOL)writeToOverride:(void *)record {
    return writeMetadata(record);
}

@end

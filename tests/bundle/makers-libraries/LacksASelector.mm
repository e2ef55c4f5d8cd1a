#import <Foundation/Foundation.h>

/// All that the pane asks for but `writeToOverride:`.
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

@end

#import <Foundation/Foundation.h>

@interface MetadataRecord : NSObject
@end

@implementation MetadataRecord
@end

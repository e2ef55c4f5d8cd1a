#pragma once

#import <Foundation/Foundation.h>

#include "overrides/MetadataDictionary.h"

/// What the pane asks of an Objective-C class MetadataDictionary, whoever made it.
@protocol MetadataDictionaryMethods
- (id)initFromOverride;
- (NSMutableDictionary *)metadata;
- (void)setMetadata:(NSMutableDictionary *)metadata;
- (void)addObject:(id)object withKey:(NSString *)key;
/// Only ever called with a null argument, which means the record that was loaded.
- (BOOL)writeToOverride:(void *)record;
@end

namespace vantrel::cocoa {

/// The override metadata through an Objective-C class of the name. Instances are sent no release: the record changes
/// through `writeToOverride:` alone, and what else a library does when an instance goes is its own affair.
class CocoaMetadataDictionaryClass : public MetadataDictionaryClass {
   public:
    /// Whether instances of the class answer all five selectors of the protocol.
    static bool serves(Class metadataDictionary);

    explicit CocoaMetadataDictionaryClass(Class metadataDictionary) : class_(metadataDictionary) {}

    std::unique_ptr<MetadataDictionary> initFromOverride() override;

   private:
    Class class_;
};

}  // namespace vantrel::cocoa

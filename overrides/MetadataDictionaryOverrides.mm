#import "overrides/MetadataDictionaryOverrides.h"

#import "platform/cocoa/CocoaText.h"

using vantrel::cocoa::toNSString;

/// What is asked of the class.
@protocol MetadataDictionaryMethods
- (id)initFromOverride;
- (NSMutableDictionary *)metadata;
- (void)setMetadata:(NSMutableDictionary *)metadata;
- (void)addObject:(id)object withKey:(NSString *)key;
/// Only ever called with a null argument, which means the record that was loaded.
- (BOOL)writeToOverride:(void *)record;
@end

namespace vantrel {
namespace {

using Instance = id<MetadataDictionaryMethods>;

bool serves(Class metadataDictionary) {
    return [metadataDictionary instancesRespondToSelector:@selector(initFromOverride)] &&
           [metadataDictionary instancesRespondToSelector:@selector(metadata)] &&
           [metadataDictionary instancesRespondToSelector:@selector(setMetadata:)] &&
           [metadataDictionary instancesRespondToSelector:@selector(addObject:withKey:)] &&
           [metadataDictionary instancesRespondToSelector:@selector(writeToOverride:)];
}

class LoadedInstance : public LoadedOverrides {
   public:
    explicit LoadedInstance(Instance instance) : instance_(instance) {}

    std::optional<std::int32_t> number(const OverrideKey &key) override {
        id object = [[instance_ metadata] objectForKey:toNSString(key.name)];
        if (![object respondsToSelector:@selector(intValue)]) return std::nullopt;
        return [object intValue];
    }

    PreferenceValue stored(const OverrideKey &key) override {
        id object = [[instance_ metadata] objectForKey:toNSString(key.name)];
        if (!object) return Absent{};
        if ([object isKindOfClass:[NSNumber class]]) return Number{[object intValue]};
        return [object isKindOfClass:[NSString class]] ? PreferenceValue(cocoa::toUTF8(object)) : OtherType{};
    }

   private:
    Instance instance_;
};

}  // namespace

MetadataDictionaryOverrides::MetadataDictionaryOverrides(Class metadataDictionary)
    : class_(serves(metadataDictionary) ? metadataDictionary : Nil) {}

std::unique_ptr<LoadedOverrides> MetadataDictionaryOverrides::load() {
    Instance instance = [[class_ alloc] initFromOverride];
    if (!instance) return nullptr;
    return std::make_unique<LoadedInstance>(instance);
}

bool MetadataDictionaryOverrides::write(const OverrideKey &key, std::int32_t number) {
    Instance instance = [[class_ alloc] initFromOverride];
    if (!instance) return false;
    NSNumber *value = [NSNumber numberWithInt:number];
    if (key.way == OverrideWay::throughInstance) {
        [instance addObject:value withKey:toNSString(key.name)];
    } else {
        NSMutableDictionary *metadata = [instance metadata];
        [metadata setObject:value forKey:toNSString(key.name)];
        [instance setMetadata:metadata];
    }
    // NOLINTNEXTLINE(clang-analyzer-osx.cocoa.RetainCount): it is sent no release.
    return [instance writeToOverride:nullptr];
}

}  // namespace vantrel

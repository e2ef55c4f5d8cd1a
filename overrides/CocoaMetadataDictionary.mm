#import "overrides/CocoaMetadataDictionary.h"

#import "platform/cocoa/CocoaText.h"

namespace vantrel::cocoa {

namespace {

class CocoaMetadata : public Metadata {
   public:
    explicit CocoaMetadata(NSMutableDictionary *entries) : entries_([entries retain]) {}
    ~CocoaMetadata() override { [entries_ release]; }
    CocoaMetadata(const CocoaMetadata &) = delete;
    CocoaMetadata &operator=(const CocoaMetadata &) = delete;

    std::optional<std::int32_t> objectForKey(std::string_view key) const override {
        id object = [entries_ objectForKey:toNSString(key)];
        if (![object respondsToSelector:@selector(intValue)]) return std::nullopt;
        return [object intValue];
    }

    void setObjectForKey(std::int32_t value, std::string_view key) override {
        [entries_ setObject:[NSNumber numberWithInt:value] forKey:toNSString(key)];
    }

    NSMutableDictionary *entries() const { return entries_; }

   private:
    NSMutableDictionary *entries_;
};

class CocoaMetadataDictionary : public MetadataDictionary {
   public:
    explicit CocoaMetadataDictionary(id<MetadataDictionaryMethods> instance) : instance_(instance) {}

    std::unique_ptr<Metadata> metadata() override { return std::make_unique<CocoaMetadata>([instance_ metadata]); }

    void setMetadata(std::unique_ptr<Metadata> metadata) override {
        [instance_ setMetadata:static_cast<const CocoaMetadata &>(*metadata).entries()];
    }

    void addObjectWithKey(std::int32_t value, std::string_view key) override {
        [instance_ addObject:[NSNumber numberWithInt:value] withKey:toNSString(key)];
    }

    bool writeToOverride() override { return [instance_ writeToOverride:nullptr]; }

   private:
    id<MetadataDictionaryMethods> instance_;
};

}  // namespace

bool CocoaMetadataDictionaryClass::serves(Class metadataDictionary) {
    return [metadataDictionary instancesRespondToSelector:@selector(initFromOverride)] &&
           [metadataDictionary instancesRespondToSelector:@selector(metadata)] &&
           [metadataDictionary instancesRespondToSelector:@selector(setMetadata:)] &&
           [metadataDictionary instancesRespondToSelector:@selector(addObject:withKey:)] &&
           [metadataDictionary instancesRespondToSelector:@selector(writeToOverride:)];
}

std::unique_ptr<MetadataDictionary> CocoaMetadataDictionaryClass::initFromOverride() {
    id<MetadataDictionaryMethods> instance = [[class_ alloc] initFromOverride];
    if (!instance) return nullptr;
    return std::make_unique<CocoaMetadataDictionary>(instance);
}

}  // namespace vantrel::cocoa

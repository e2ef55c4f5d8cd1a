#pragma once

#import <Foundation/Foundation.h>

#include "overrides/OverrideMetadata.h"

namespace vantrel {

/// The override metadata through an Objective-C class MetadataDictionary, whoever made it. Instances are sent no
/// release: the record changes through `writeToOverride:` alone, and what else a library does when an instance goes is
/// its own affair.
class MetadataDictionaryOverrides : public OverrideMetadata {
public:
    /// With Nil, and with a class whose instances don't answer all five selectors, no record can be opened.
    explicit MetadataDictionaryOverrides(Class metadataDictionary);

    std::unique_ptr<LoadedOverrides> load() override;
    bool write(const OverrideKey& key, std::int32_t number) override;

private:
    Class class_;
};

}  // namespace vantrel

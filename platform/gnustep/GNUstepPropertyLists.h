#pragma once

#include "platform/PropertyLists.h"
#include "platform/posix/SystemCalls.h"

namespace vantrel::gnustep {

/// Property lists of up to 4 MiB in every form that `PropertyList` reads.
class GNUstepPropertyLists : public PropertyLists {
public:
    explicit GNUstepPropertyLists(posix::SystemCalls& calls = posix::SystemCalls::real()) : calls_(calls) {}

    std::optional<PropertyListEntries> dictionaryWithContentsOfFile(const std::string& path) override;
    std::optional<PropertyListEntries> dictionaryWithData(std::string_view bytes) override;
    std::string xmlText(std::string_view text) override;

private:
    posix::SystemCalls& calls_;
};

}  // namespace vantrel::gnustep

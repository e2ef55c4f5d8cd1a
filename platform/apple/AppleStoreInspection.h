#pragma once

#include "platform/StoreInspection.h"

namespace vantrel::apple {

/// The settings' file in the user's Library/Preferences. The system keeps it through a process of its own, so there is
/// nothing to find but whose it is, who may read it, and whether it is a property list.
class AppleStoreInspection : public StoreInspection {
public:
    /// `domain` is the preferences domain's name, which its file has.
    explicit AppleStoreInspection(std::string domain) : domain_(std::move(domain)) {}

    std::vector<StoreFinding> findings(const std::vector<std::string>& otherFolders) override;

private:
    std::string domain_;
};

}  // namespace vantrel::apple

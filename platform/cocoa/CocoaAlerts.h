#pragma once

#include "platform/Alerts.h"

namespace vantrel::cocoa {

class CocoaAlerts : public Alerts {
public:
    void runModal(const Alert& alert) override;
};

}  // namespace vantrel::cocoa

#pragma once

#include "platform/Log.h"
#include "platform/Watch.h"

namespace vantrel::cocoa {

/// How a system tells of changes.
struct ChangeEvents {
    /// Can be read when something has changed. Negative on a system that tells nothing: each second may bring a change.
    int descriptor = -1;
    /// Called before each look at what has changed; reads the descriptor empty.
    std::function<void()> acknowledge = [] {};
};

/// A run loop with the distributed notifications and the system's events.
class CocoaWatch : public Watch {
public:
    /// `begin` makes the system tell. Where notifications can't be had, `log` is told so.
    CocoaWatch(std::function<ChangeEvents()> begin, Log& log) : begin_(std::move(begin)), log_(log) {}

    void run(const Reactions& reactions) override;

private:
    std::function<ChangeEvents()> begin_;
    Log& log_;
};

}  // namespace vantrel::cocoa

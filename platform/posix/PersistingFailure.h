#pragma once

#include <string>

#include "platform/Log.h"

namespace vantrel::posix {

/// Tells the log of a failure when it comes and when its reason changes, and once that it is over: not each time that
/// somebody meets it.
class PersistingFailure {
public:
    explicit PersistingFailure(Log& log) : log_(log) {}

    /// It failed, for the reason that `sentence` tells.
    void met(const std::string& sentence) {
        if (sentence != told_) log_.log(sentence);
        told_ = sentence;
    }

    /// It works; `sentence` is logged if it didn't the last time.
    void isOver(const std::string& sentence) {
        if (!told_.empty()) log_.log(sentence);
        told_.clear();
    }

private:
    Log& log_;
    std::string told_;
};

}  // namespace vantrel::posix

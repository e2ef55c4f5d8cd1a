#pragma once

#include <string_view>

namespace vantrel {

/// The system log.
class Log {
public:
    virtual ~Log() = default;

    /// Writes one line; `line` carries no line end.
    virtual void log(std::string_view line) = 0;
};

}  // namespace vantrel

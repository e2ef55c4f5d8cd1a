#pragma once

#include <string_view>

namespace vantrel {

/// The system log.
class Log {
public:
    /// Writes one line; `line` carries no line end.
    virtual void log(std::string_view line) = 0;

protected:
    ~Log() = default;
};

}  // namespace vantrel

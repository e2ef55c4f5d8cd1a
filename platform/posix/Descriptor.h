#pragma once

#include <cerrno>

#include "platform/posix/SystemCalls.h"

namespace vantrel::posix {

/// An open file, closed at the end of its scope, where `errno` stays as it is; or none, after an `open` that failed.
class Descriptor {
public:
    Descriptor(SystemCalls& calls, int number) : calls_(calls), number_(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        const int error = errno;
        close();
        errno = error;
    }

    bool isOpen() const { return number_ >= 0; }
    int number() const { return number_; }

    /// Closes now, for whoever wants to hear of a late failure: -1 and `errno` then. The file is closed either way.
    int close() {
        const int closing = number_;
        number_ = -1;
        return closing >= 0 ? calls_.close(closing) : 0;
    }

private:
    SystemCalls& calls_;
    int number_;
};

}  // namespace vantrel::posix

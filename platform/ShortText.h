#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace vantrel {

/// A text of at most 23 bytes that stands where it is declared. A table of these is plain data, without addresses that
/// the loader would have to fill in. A longer text is an error of compilation.
class ShortText {
public:
    template <std::size_t size>
    constexpr ShortText(const char (&text)[size]) {
        static_assert(size <= sizeof bytes_);
        std::copy_n(text, size, bytes_);
    }

    constexpr operator std::string_view() const { return bytes_; }
    constexpr bool operator==(const ShortText&) const = default;
    constexpr bool empty() const { return bytes_[0] == '\0'; }

private:
    char bytes_[24] = {};
};

}  // namespace vantrel

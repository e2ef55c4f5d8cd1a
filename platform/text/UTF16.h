#pragma once

#include <string>
#include <string_view>

namespace vantrel::text {

/// The platforms keep texts as UTF-16, these sources as UTF-8. UTF-16 can hold half of a surrogate pair, UTF-8 can't:
/// here such a half stands as the three bytes that UTF-8's own rule makes of its number. So every text of the platform
/// has one form here, and comes back unit for unit.

/// Bytes that are no UTF-8, and no such half, become U+FFFD, one for each.
std::u16string toUTF16(std::string_view text);

std::string fromUTF16(std::u16string_view units);

}  // namespace vantrel::text

#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantrel::gnustep {

/// Whether `bytes` starts like a binary property list.
bool isBinaryPropertyList(std::string_view bytes);

/// A binary property list as an XML one, in the spelling of `PropertyListText.h`. Nothing when it is damaged, is nested
/// more deeply than `deepestNesting` or comes to too much once shared objects are written out, or holds something
/// that XML couldn't give back: a text with a NUL or half a surrogate pair, a date before the year 1 or after 9999.
/// A date's fraction of a second is lost, for XML property lists know none.
std::optional<std::string> xmlFromBinaryPropertyList(std::string_view bytes);

}  // namespace vantrel::gnustep

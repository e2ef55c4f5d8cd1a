#pragma once

#include <string>
#include <string_view>

namespace vantrel::gnustep {

/// Whether `bytes` starts like a binary property list.
bool isBinaryPropertyList(std::string_view bytes);

/// A binary property list as an XML one, with all digits. Empty when it is damaged, is nested more deeply than
/// `deepestNesting` or comes to more than the largest property list once shared objects are written out, or holds
/// something that XML lists don't: a text with half a surrogate pair, an integer past 64 bits, a date before the year 0
/// or after 9999. A date's fraction of a second is lost, for they know none.
std::string xmlFromBinaryPropertyList(std::string_view bytes);

}  // namespace vantrel::gnustep

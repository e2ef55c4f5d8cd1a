#pragma once

#include <cstddef>
#include <string_view>

#include "platform/PropertyList.h"

namespace vantrel::posix {

/// libplist trusts what it reads: it follows any nesting by recursion, writes a shared object out as often as it is
/// referred to, and makes something of what it can't read. So every list is looked over before libplist sees it. What
/// is refused here is damaged, out of bounds, or would not come back from libplist as it went in.

/// How many containers may stand inside the one at the top, one in the other.
inline constexpr std::size_t deepestNesting = 128;

/// What an object costs to write beside its content, in bytes: its tags and the white space before them.
inline constexpr std::size_t objectCost = 64;
inline constexpr std::size_t mostObjects = largestPropertyList / objectCost;

/// `xml` has no byte order mark. Names of tags, and the references in texts, are left to libplist.
bool isSoundXMLPropertyList(std::string_view xml);

/// Whether `bytes` starts like a binary property list.
bool isBinaryPropertyList(std::string_view bytes);

/// Not sound are also a text with a NUL or half a surrogate pair, and a date before the year 1 or after 9999, which XML
/// couldn't give back.
bool isSoundBinaryPropertyList(std::string_view bytes);

}  // namespace vantrel::posix

#pragma once

#include <string>
#include <string_view>

namespace vantrel::gnustep {

inline constexpr const char* byteOrderMark = "\xEF\xBB\xBF";

/// The encoding that `xml` starts with or declares; empty when that is UTF-8.
std::string encodingOf(std::string_view xml);

/// `xml` in UTF-8 and declared so. Empty when it isn't in that encoding, or is longer than the largest property list.
std::string inUTF8(std::string_view xml, const std::string& encoding);

}  // namespace vantrel::gnustep

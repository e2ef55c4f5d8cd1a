#pragma once

#include <string>
#include <string_view>

namespace vantrel::gnustep {

/// The domain that the tests read and write, and its file in the defaults folder.
inline constexpr std::string_view appID = "com.vantrel.codec";
inline const std::string fileName = "com.vantrel.codec.plist";

}  // namespace vantrel::gnustep

#pragma once

#include <string>
#include <string_view>

namespace vantrel::gnustep {

/// XML can't hold every character, so GNUstep writes those it can't as `\U` and four hexadecimal digits, one for each
/// UTF-16 unit, and reads that back in every text and key; the functions here do the same.

/// `text`, which is as platform/text/UTF16.h says, with escapes for what XML can't hold, and for the backslash of a
/// `\U0041` that is meant as it stands. Bytes that are no text become U+FFFD.
std::string withEscapes(std::string_view text);

/// `text` as the content of a `<string>` or `<key>`: with escapes, and with references where XML wants them. A carriage
/// return becomes one too, because XML readers take a bare one for a line feed.
std::string xmlFromText(std::string_view text);

/// The reverse of `withEscapes`. Surrogate pairs are read too.
std::string withEscapesRead(std::string_view text);

/// `text` with the escapes of each surrogate pair, and no others, not even half of one, read: GNUstep 1.28 writes such
/// pairs, but loses them when it reads them back.
std::string withPairsRead(std::string_view text);

/// `text` without the white space at its ends.
std::string_view trimmed(std::string_view text);

}  // namespace vantrel::gnustep

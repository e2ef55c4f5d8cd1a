#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel::posix {

/// How texts stand in an XML property list. XML can't hold every character, so GNUstep writes those it can't as
/// `\U` and four hexadecimal digits, one for each UTF-16 unit, and reads that back; the functions here do the same.

/// Whether `bytes` is UTF-8 without a NUL.
bool isText(std::string_view bytes);

/// `text`, UTF-8, as the content of a `<string>` or `<key>`. A carriage return becomes a character reference, because
/// an XML reader may take a bare one for a line feed; a `\U0041` that is meant as it stands gets its backslash escaped.
/// Bytes that aren't UTF-8 become U+FFFD.
std::string xmlFromText(std::string_view text);

/// The reverse of `xmlFromText`, for whatever any writer left between two tags: resolves references, unwraps
/// CDATA sections, drops comments, reads the escapes. An escape that is half of a surrogate pair stays as it is.
/// Nothing when the content holds a tag, an unknown reference, or something that doesn't end.
std::optional<std::string> textFromXML(std::string_view content);

/// `xml` with its text escapes that form a surrogate pair replaced by the character: GNUstep 1.28 writes such pairs,
/// but loses them when it reads them back.
std::string withPlainSurrogatePairs(std::string_view xml);

/// Makes what `xmlFromText` makes of texts out of XML whose texts know no escapes and hold their control characters
/// bare.
std::string withEscapes(std::string_view xml);

}  // namespace vantrel::posix

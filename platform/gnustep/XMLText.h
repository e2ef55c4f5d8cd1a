#pragma once

#include <string>
#include <string_view>

namespace vantrel::gnustep {

/// Whether XML can hold it.
bool isXMLCharacter(char32_t character);

/// XML can't hold every character, so GNUstep writes those it can't as `\U` and four hexadecimal digits, one for each
/// UTF-16 unit, and reads that back in every text and key; the functions here do the same.

/// Appends `piece`, but makes `xml` no longer than the largest property list and one byte, which tells that it is too
/// large. So do the other functions that append.
void append(std::string& xml, std::string_view piece);

/// Appends `text`, which is as platform/text/UTF16.h says, to `xml` as the content of a `<string>` or `<key>`: with
/// escapes for what XML can't hold and for the backslash of a `\U0041` that is meant as it stands, and with references
/// where XML wants them. A carriage return becomes one too, because XML readers take a bare one for a line feed. Bytes
/// that are no text become U+FFFD.
void appendText(std::string& xml, std::string_view text);

/// `text` with all escapes read, those of surrogate pairs and of halves of them too.
std::string withEscapesRead(std::string_view text);

/// `text` with the escapes of each surrogate pair, and no others, not even half of one, read: GNUstep 1.28 writes such
/// pairs, but loses them when it reads them back.
std::string withPairsRead(std::string_view text);

/// Appends an element and a line break; `content` is XML.
void appendElement(std::string& xml, std::string_view name, std::string_view content);

/// The same with `text` as the content.
void appendTextElement(std::string& xml, std::string_view name, std::string_view text);

/// What stands before and behind the dictionary of a list that is made here.
inline constexpr char listStart[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
inline constexpr char listEnd[] = "</plist>\n";

/// `data` in base64.
std::string base64(std::string_view data);

/// `text` without the white space at its ends.
std::string_view trimmed(std::string_view text);

}  // namespace vantrel::gnustep

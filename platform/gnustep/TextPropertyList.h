#pragma once

#include <string>
#include <string_view>

namespace vantrel::gnustep {

/// Whether `bytes` starts like a property list in the old text style: `{ key = value; }`.
bool isTextPropertyList(std::string_view bytes);

/// A property list in the old text style, with the types that GNUstep adds to it (`<*I15>`), as an XML one: the list
/// that GNUstep's own reader makes of it. Empty when it is damaged, isn't UTF-8, is nested more deeply than
/// `deepestNesting` or comes to more than the largest property list.
///
/// That reader isn't used. It ends the process on deep nesting and on long numbers, takes 15 bytes of memory for one of
/// the list, raises exceptions that no Objective-C++ of g++ can catch, and reads numbers as the locale has them.
std::string xmlFromTextPropertyList(const std::string& text);

}  // namespace vantrel::gnustep

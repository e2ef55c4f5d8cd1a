#pragma once

#include <libxml/xmlstring.h>

namespace vantrel::gnustep {

/// libxml2 holds UTF-8 in characters of its own type, without a sign.

inline const xmlChar* xmlCharacters(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

inline const char* plainCharacters(const xmlChar* text) {
    return reinterpret_cast<const char*>(text);
}

}  // namespace vantrel::gnustep

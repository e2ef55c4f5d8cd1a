#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/gnustep/PropertyList.h"

namespace vantrel::gnustep {

/// Ends the process, and so tells the fuzzer that this input breaks a promise.
inline void require(bool holds, const char* promise) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", promise);
    std::abort();
}

/// That both lists have the same entries, but for the one under `except`.
inline void requireSameEntries(const PropertyList& one, const PropertyList& other, std::string_view except = "\xFF") {
    for (const auto* list : {&one, &other}) {
        for (const auto& key : list->keys()) {
            require(key == except || one.element(key) == other.element(key), "all other entries stay as they are");
        }
    }
}

}  // namespace vantrel::gnustep

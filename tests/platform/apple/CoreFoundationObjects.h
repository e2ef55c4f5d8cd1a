#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <string>
#include <variant>

namespace vantrel::apple {

/// The objects of a CoreFoundation of the tests' own, behind the declarations that our sources are compiled with. What
/// they answer is what Apple's published sources answer. Every object stays where it is for good, so that a reference
/// that is used or released once too often is seen.

/// An integer from 2^63 to 2^64-1, which CoreFoundation keeps in 128 bits.
struct LargeInteger {
    std::uint64_t value;

    bool operator==(const LargeInteger&) const = default;
};

/// Data, for one: an object of a type that our sources don't know.
struct Stranger {
    bool operator==(const Stranger&) const = default;
};

using Content = std::variant<bool, std::int64_t, LargeInteger, double, std::u16string, Stranger>;

/// A new object, whose one reference is the caller's.
CFTypeRef makeObject(Content content);

const Content& contentOf(CFTypeRef object);

/// The references to all objects that were made and not released.
int references();

/// How often an object was used or released that nobody had a reference to any more.
int usesAfterRelease();

}  // namespace vantrel::apple

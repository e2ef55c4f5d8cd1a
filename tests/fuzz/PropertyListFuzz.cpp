#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/gnustep/PropertyList.h"

/// Whatever the bytes are: reading them ends, and a list once read comes out of its own file as it was.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using vantrel::PropertyList;
    const auto list = PropertyList::parse({reinterpret_cast<const char*>(data), size});
    if (!list) return 0;

    const auto again = PropertyList::parse(list->toXML());
    if (!again || again->keys() != list->keys()) std::abort();
    for (const auto& key : list->keys()) {
        if (list->value(key).index() != again->value(key).index()) std::abort();
        if (list->intValue(key) != again->intValue(key)) std::abort();
    }
    if (again->toXML() != list->toXML()) std::abort();
    return 0;
}

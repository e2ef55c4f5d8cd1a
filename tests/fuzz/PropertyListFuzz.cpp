#include <cstddef>
#include <cstdint>

#include "tests/fuzz/Fuzzing.h"

using namespace vantrel::gnustep;

namespace {

PropertyList readAgain(const PropertyList& list) {
    auto again = PropertyList::parse(list.bytes());
    require(again.has_value(), "what was read or changed can be read again");
    require(again->bytes() == list.bytes(), "an XML list is its bytes");
    requireSameEntries(*again, list);
    return std::move(*again);
}

void change(const PropertyList& list, std::string_view key, const vantrel::NewPreferenceValue& value) {
    PropertyListChanges setting;
    setting.set(key, value);
    const auto set = list.with(setting);
    if (!set) return;
    const auto update = list.updateFor(setting).value();
    std::string announced;
    for (const auto piece : list.bytesAfter(update)) announced += piece;
    require(announced == set->bytes(), "what is written is what the list becomes");
    require(set->holds(key, value), "what is set is there");
    requireSameEntries(list, *set, key);
    readAgain(*set);

    PropertyListChanges removal;
    removal.remove(key);
    const auto removed = set->with(removal);
    require(removed && removed->element(key).empty(), "what is removed is gone");
    requireSameEntries(list, *removed, key);
    readAgain(*removed);
}

}  // namespace

/// Whatever the bytes are: reading them ends, what was read comes out of its own bytes as it was, and a change changes
/// one entry and no other.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const auto list = PropertyList::parse(bytes);
    if (!list) return 0;
    readAgain(*list);
    const auto keys = list->keys();
    for (const auto& key : keys) list->value(key);
    change(*list, "FormatRGB8", true);
    if (!keys.empty()) change(*list, keys[size % keys.size()], static_cast<long>(size));
    auto key = bytes.substr(size / 2);
    for (auto& byte : key) byte = static_cast<char>(byte & 0x7F);
    change(*list, key, bytes);
    return 0;
}

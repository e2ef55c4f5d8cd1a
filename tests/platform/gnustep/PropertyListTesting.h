#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/gnustep/PropertyList.h"

namespace vantrel::gnustep {

/// A list whose dictionary holds `entries`, as XML.
inline std::string listOf(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n<dict>\n" +
           entries + "</dict>\n</plist>\n";
}

/// The list that is in `bytes`, which must be one.
inline PropertyList parsed(const std::string& bytes) {
    auto list = PropertyList::parse(bytes);
    EXPECT_TRUE(list) << bytes.substr(0, 1000);
    return list.value_or(PropertyList());
}

/// The list that holds `element` under "key".
inline PropertyList listWith(const std::string& element) {
    return parsed(listOf("<key>key</key>" + element));
}

inline bool isParsed(const std::string& bytes) {
    return PropertyList::parse(bytes).has_value();
}

/// What a read of `key` finds, in words: "absent", "true", "number 5", "unreadable number", "text \"x\"", "other".
inline std::string readOf(const PropertyList& list, std::string_view key = "key") {
    const auto value = list.value(key);
    if (std::holds_alternative<Absent>(value)) return "absent";
    if (const auto* flag = std::get_if<bool>(&value)) return *flag ? "true" : "false";
    if (const auto* text = std::get_if<std::string>(&value)) return "text \"" + *text + '"';
    if (const auto* number = std::get_if<Number>(&value)) {
        return number->longValue ? "number " + std::to_string(*number->longValue) : "unreadable number";
    }
    return "other";
}

inline std::string readOf(const std::string& element) {
    return readOf(listWith(element));
}

}  // namespace vantrel::gnustep

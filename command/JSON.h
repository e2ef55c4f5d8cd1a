#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/PropertyLists.h"

namespace vantrel {

struct Member;

/// A value of a JSON text or of a property list, with the members of its objects in the order in which they are
/// written.
struct Node {
    using List = std::vector<Node>;
    using Members = std::vector<Member>;

    std::variant<std::nullptr_t, bool, long, double, std::string, List, Members> value;
};

struct Member {
    std::string name;
    Node node;
};

/// `node` as JSON: on several lines, indented, or on one.
std::string toJSON(const Node& node, bool isOnOneLine = false);

/// The entries of the object that `json` is. Throws a Problem, without the name of what was read, when it is none, or
/// when a name stands twice in it.
PropertyListEntries entriesFromJSON(std::string_view json);

/// Whether JSON can hold `text`: whether it is sound UTF-8.
bool isUTF8(const std::string& text);

}  // namespace vantrel

#include "command/JSON.h"

#include <cmath>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>

#include "command/Problem.h"
#include "command/Text.h"

namespace vantrel {
namespace {

using JSON = nlohmann::ordered_json;

JSON jsonOf(const Node& node) {
    if (const auto* flag = std::get_if<bool>(&node.value)) return *flag;
    if (const auto* integer = std::get_if<long>(&node.value)) return *integer;
    if (const auto* real = std::get_if<double>(&node.value)) return *real;
    if (const auto* text = std::get_if<std::string>(&node.value)) return *text;
    if (const auto* list = std::get_if<Node::List>(&node.value)) {
        JSON array = JSON::array();
        for (const auto& element : *list) array.push_back(jsonOf(element));
        return array;
    }
    if (const auto* members = std::get_if<Node::Members>(&node.value)) {
        JSON object = JSON::object();
        for (const auto& [name, member] : *members) object[name] = jsonOf(member);
        return object;
    }
    return nullptr;
}

template <typename Wide>
Number numberFrom(Wide wide) {
    const long value = static_cast<long>(wide);
    const bool isSame = static_cast<Wide>(value) == wide && (value < 0) == (wide < Wide{});
    return {isSame ? std::optional(value) : std::nullopt};
}

Number numberFrom(double real) {
    // Both ends are powers of two, which a double holds as they are.
    constexpr double most = -static_cast<double>(std::numeric_limits<long>::min());
    const bool fits = std::trunc(real) == real && real >= -most && real < most;
    return {fits ? std::optional(static_cast<long>(real)) : std::nullopt};
}

PreferenceValue valueFrom(const JSON& json) {
    if (json.is_boolean()) return json.get<bool>();
    if (json.is_number_unsigned()) return numberFrom(json.get<std::uint64_t>());
    if (json.is_number_integer()) return numberFrom(json.get<std::int64_t>());
    if (json.is_number_float()) return numberFrom(json.get<double>());
    if (json.is_string()) return json.get<std::string>();
    return OtherType{};
}

}  // namespace

std::string toJSON(const Node& node, bool isOnOneLine) {
    return jsonOf(node).dump(isOnOneLine ? -1 : 2, ' ', false, JSON::error_handler_t::replace);
}

PropertyListEntries entriesFromJSON(std::string_view json) {
    std::set<std::string> names;
    std::string twice;
    const auto notice = [&](int depth, JSON::parse_event_t event, JSON& parsed) {
        const bool isName = event == JSON::parse_event_t::key && depth == 1;
        if (isName && !names.insert(parsed.get<std::string>()).second) twice = parsed.get<std::string>();
        return true;
    };
    JSON object;
    try {
        object = JSON::parse(json, notice);
    } catch (const JSON::parse_error& error) {
        throw Problem::misuse("is no JSON from byte " + std::to_string(error.byte) + " on");
    }
    if (!object.is_object()) throw Problem::misuse("has no object at its top");
    if (!twice.empty()) throw Problem::misuse("names " + onOneLine(twice) + " twice");
    PropertyListEntries entries;
    for (const auto& [name, value] : object.items()) entries.emplace(name, valueFrom(value));
    return entries;
}

bool isUTF8(const std::string& text) {
    try {
        return !JSON(text).dump().empty();
    } catch (const JSON::type_error&) {
        return false;
    }
}

}  // namespace vantrel

#include <algorithm>
#include <array>
#include <iostream>

#include "command/Commands.h"
#include "command/Text.h"

namespace vantrel {
namespace {

constexpr std::size_t width = 80;
constexpr std::size_t gap = 2;

/// A line of the table: name, value, state and title.
using Row = std::array<std::string, 4>;
constexpr std::size_t valueColumn = 1;
constexpr std::size_t stateColumn = 2;

Row rowOf(const Setting& setting, const Standing& standing) {
    return {std::string(setting.name()), onOneLine(setting.shown(standing.value)),
            std::string(describe(standing.state)), std::string(setting.title())};
}

std::string_view styleOf(std::string_view state) {
    if (state == describe(State::stored)) return "";
    return state == describe(State::missing) ? yellow : red;
}

/// A group as a table of its own. Of a value too long for a line its end is told.
void print(std::string_view group, const std::vector<Row>& rows, bool isColorful) {
    std::array<std::size_t, 4> widths{};
    for (const auto& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], columns(row[column]));
        }
    }
    std::size_t others = gap * widths.size() - widths[valueColumn];
    for (const auto column : widths) others += column;
    widths[valueColumn] = std::min(widths[valueColumn], width - others);

    std::cout << styled(isColorful ? bold : "", group) << '\n';
    for (const auto& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            const std::string_view style = isColorful && column == stateColumn ? styleOf(row[column]) : "";
            const bool isLast = column + 1 == row.size();
            const std::string cell = isLast ? row[column] : inColumns(row[column], widths[column]);
            std::cout << std::string(gap, ' ') << styled(style, cell);
        }
        std::cout << '\n';
    }
}

Node nodeOf(const Setting& setting, const Standing& standing) {
    return {Node::Members{{"key", {std::string(setting.name())}},
                          {"title", {std::string(setting.title())}},
                          {"group", {std::string(setting.group())}},
                          {"value", setting.shownNode(standing.value)},
                          {"stored", storedNode(standing.stored)},
                          {"type", {std::string(setting.type())}},
                          {"default", setting.shownNode(setting.setUpDefault())},
                          {"state", {std::string(describe(standing.state))}}}};
}

}  // namespace

Status list(Context& context, const Arguments& arguments) {
    warnOfHiddenSettings(context);
    Node::List nodes;
    std::string_view group;
    std::vector<Row> rows;
    const auto finishGroup = [&] {
        if (!rows.empty()) print(group, rows, context.isColorful);
        rows.clear();
    };
    const PreferencesSequence sequence(context.system.services.preferences);
    for (const auto& setting : context.store.settings()) {
        const Standing standing = context.store.standing(setting);
        if (arguments.json) {
            nodes.push_back(nodeOf(setting, standing));
            continue;
        }
        if (setting.group() != group) {
            finishGroup();
            group = setting.group();
        }
        rows.push_back(rowOf(setting, standing));
    }
    finishGroup();
    if (arguments.json) std::cout << toJSON({nodes}) << '\n';
    return Status::done;
}

}  // namespace vantrel

#include "command/Commands.h"

#include <algorithm>
#include <iterator>

#include "command/Text.h"

namespace vantrel {
namespace {

constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

// clang-format off
constexpr Command table[] = {
    {"list",       "",                          0, 0,         "json",       "lists every setting: name, value, state and title", list},
    {"get",        "NAME",                      1, 1,         "stored",     "prints the value that the pane would show", get},
    {"set",        "NAME VALUE [NAME VALUE…]",  2, anyNumber, "",           "stores values, as clicks in the pane would", set},
    {"reset",      "[NAME…]",                   0, anyNumber, "",           "sets to the default; without a NAME, all but the enabler", reset},
    {"apply",      "FILE",                      1, 1,         "check json", "makes a profile true; - is standard input", apply},
    {"export",     "",                          0, 0,         "format",     "prints the stored settings as a profile", exportProfile},
    {"doctor",     "",                          0, 0,         "json",       "finds what is wrong, and says what mends it", doctor},
    {"enabler",    "status|on|off|mend",        1, 1,         "",           "tells of, swaps or mends Final Cut Pro's real-time enabler", enabler},
    {"watch",      "",                          0, 0,         "json",       "prints each change of a setting, until interrupted", watch},
    {"completion", "bash|zsh|fish",             1, 1,         "",           "prints a completion script for a shell", completion},
};

constexpr Option optionTable[] = {
    {"check",  "",                        "write nothing, say the same; status 2 for a difference"},
    {"format", "plist|json|mobileconfig", "a property list, JSON, or a configuration profile for Macs"},
    {"json",   "",                        "print JSON"},
    {"stored", "",                        "the stored value as it is; status 1 where there is none"},
};
// clang-format on

}  // namespace

const std::span<const Command> commands = table;

const Option& optionNamed(std::string_view name) {
    return *std::find_if(std::begin(optionTable), std::end(optionTable),
                         [name](const Option& option) { return option.name == name; });
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> words;
    while (!text.empty()) {
        const auto end = text.find(separator);
        words.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return words;
}

std::vector<std::string> hiddenSettings(StoreInspection& inspection, std::string_view consequence) {
    std::vector<std::string> lines;
    for (const auto& finding : inspection.findings({})) {
        if (finding.hidesSettings())
            lines.push_back(onOneLine(finding.path).append(": can't be read, so ").append(consequence));
    }
    return lines;
}

void warnOfHiddenSettings(Context& context) {
    for (const auto& line : hiddenSettings(context.system.inspection, "its settings count as missing")) {
        context.system.services.log.log(line);
    }
}

}  // namespace vantrel

#include "command/Help.h"

#include "command/Text.h"

namespace vantrel {
namespace {

constexpr std::size_t firstColumn = 14;

std::string row(std::string_view name, std::string_view summary) {
    return "  " + inColumns(name, firstColumn) + std::string(summary) + '\n';
}

/// "--check", "--format plist|json|mobileconfig".
std::string spelled(const Option& option) {
    return "--" + std::string(option.name) + (option.values.empty() ? "" : ' ' + std::string(option.values));
}

}  // namespace

std::string usageOf(const Command& command) {
    std::string usage = "vantrelctl " + std::string(command.name);
    if (!command.words.empty()) usage += ' ' + std::string(command.words);
    for (const auto name : split(command.options, ' ')) usage += " [" + spelled(optionNamed(name)) + ']';
    return usage;
}

std::string help() {
    std::string text =
        "Usage: vantrelctl COMMAND …\n\nThe settings of the Vantrel codec, without a window.\n\nCommands:\n";
    for (const auto& command : commands) text += row(command.name, command.summary);
    return text + "\nOptions:\n" + row("-h, --help", "this text, or that of a command") +
           row("--version", "the version") +
           "\nA NAME is a setting's; vantrelctl list has them all. A VALUE is what the pane\n"
           "shows: on or off, a number of threads or all, a menu's item or its index from 0,\n"
           "any text for a folder. Status: 0 done, 1 could not be done, 2 a difference or a\n"
           "finding, 64 wrongly used.\n";
}

std::string helpOf(const Command& command) {
    std::string text =
        "Usage: " + usageOf(command) + "\n\n" + std::string(command.name) + ": " + std::string(command.summary) + "\n";
    if (!command.options.empty()) text += "\nOptions:\n";
    for (const auto name : split(command.options, ' ')) {
        text += row("--" + std::string(name), optionNamed(name).summary);
    }
    return text;
}

}  // namespace vantrel

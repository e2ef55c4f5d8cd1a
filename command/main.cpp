#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "command/Commands.h"
#include "command/Help.h"
#include "command/Text.h"

namespace vantrel {
namespace {

/// Standard error, for what is a line of the log or an alert elsewhere, and for why a command fails.
class ErrorOutput : public Log, public Alerts {
public:
    void log(std::string_view line) override { std::cerr << "vantrelctl: " << onOneLine(line) << '\n'; }

    void runModal(const Alert& alert) override {
        log(alert.messageText + (alert.informativeText ? ": " + *alert.informativeText : ""));
    }

    void tell(const Problem& problem) {
        for (const auto line : split(problem.lines, '\n')) log(line);
    }
};

bool isColorWelcome() {
    const char* refusal = std::getenv("NO_COLOR");
    return isatty(STDOUT_FILENO) != 0 && (!refusal || !*refusal);
}

const Command& commandNamed(std::string_view name) {
    std::vector<std::string> names;
    for (const auto& command : commands) {
        if (command.name == name) return command;
        names.emplace_back(command.name);
    }
    throw Problem::misuse("no command " + onOneLine(name) + "; did you mean " + nearest(name, names) + "?");
}

/// A word that looks like an option and is none. Negative numbers are words, and "-" is standard input.
bool isOption(std::string_view word) {
    return word.size() > 1 && word.front() == '-' && (word[1] < '0' || word[1] > '9');
}

void checkWords(const Command& command, const std::vector<std::string>& words) {
    const std::string usage = "; it is used so: " + usageOf(command);
    if (words.size() < command.fewestWords) {
        throw Problem::misuse(std::string(command.name) + ": something is missing" + usage);
    }
    if (words.size() > command.mostWords) {
        throw Problem::misuse(std::string(command.name) + ": " + onOneLine(words[command.mostWords]) + " is too much" +
                              usage);
    }
    const auto choices = split(command.words, '|');
    if (choices.size() > 1 && std::find(choices.begin(), choices.end(), words.front()) == choices.end()) {
        throw Problem::misuse(std::string(command.name) + ": no " + onOneLine(words.front()) + usage);
    }
}

struct Parsed {
    const Command* command = nullptr;
    Arguments arguments;
    bool wantsHelp = false;
    bool wantsVersion = false;
};

Parsed parse(std::vector<std::string> line) {
    Parsed parsed;
    // No subcommand of the library's: it would take a word that is the command's own name for the command once more.
    CLI::App app;
    app.set_help_flag();
    app.add_flag("-h,--help", parsed.wantsHelp);
    if (line.empty() || isOption(line.front())) {
        app.add_flag("--version", parsed.wantsVersion);
    } else {
        parsed.command = &commandNamed(line.front());
        line.erase(line.begin());
        auto& arguments = parsed.arguments;
        // It would take a text like "[a,b]" for a list of two as well.
        app.allow_extras();
        for (const auto name : split(parsed.command->options, ' ')) {
            if (name == "check") app.add_flag("--check", arguments.check);
            if (name == "json") app.add_flag("--json", arguments.json);
            if (name == "stored") app.add_flag("--stored", arguments.stored);
            if (name == "format") {
                const auto formats = split(optionNamed("format").values, '|');
                arguments.format = formats.front();
                app.add_option("--format", arguments.format)
                    ->check(CLI::IsMember(std::vector<std::string>(formats.begin(), formats.end())));
            }
        }
    }
    // What stands behind "--" is nobody's option.
    const auto separator = std::find(line.begin(), line.end(), "--");
    std::vector<std::string> words;
    if (separator != line.end()) words.assign(separator + 1, line.end());
    line.erase(separator, line.end());
    try {
        std::reverse(line.begin(), line.end());
        app.parse(line);
    } catch (const CLI::ParseError& error) {
        throw Problem::misuse(std::string(error.what()) + "; see vantrelctl --help");
    }
    if (!parsed.command || parsed.wantsHelp) return parsed;
    for (const auto& word : app.remaining()) {
        if (!isOption(word)) continue;
        throw Problem::misuse(
            std::string(parsed.command->name) + ": no option " + onOneLine(word) +
            "; a word that begins with a dash stands behind --; it is used so: " + usageOf(*parsed.command));
    }
    parsed.arguments.words = app.remaining();
    parsed.arguments.words.insert(parsed.arguments.words.end(), words.begin(), words.end());
    checkWords(*parsed.command, parsed.arguments.words);
    return parsed;
}

Status run(const std::vector<std::string>& line, ErrorOutput& errors) {
    // GNUstep ends the process at words that it can't read.
    const auto unreadable = std::find_if_not(line.begin(), line.end(), isUTF8);
    if (unreadable != line.end()) {
        throw Problem::misuse("word " + std::to_string(unreadable - line.begin() + 1) + ": it is not in UTF-8");
    }
    const Parsed parsed = parse(line);
    if (parsed.wantsVersion) {
        std::cout << "vantrelctl " VERSION "\n";
        return Status::done;
    }
    if (parsed.wantsHelp) {
        std::cout << (parsed.command ? helpOf(*parsed.command) : help());
        return Status::done;
    }
    if (!parsed.command) throw Problem::misuse("a command is missing; see vantrelctl --help");
    Context context{commandServices(errors, errors)};
    context.isColorful = isColorWelcome();
    return parsed.command->run(context, parsed.arguments);
}

}  // namespace
}  // namespace vantrel

int main(int count, char** arguments) {
    using vantrel::Problem;
    vantrel::ErrorOutput errors;
    vantrel::Status status{};
    try {
        status = vantrel::run({arguments + 1, arguments + count}, errors);
        if (!std::cout.flush()) throw Problem::failure("standard output: it can't be written");
    } catch (const Problem& problem) {
        errors.tell(problem);
        status = problem.status;
    } catch (const std::exception& exception) {
        errors.log(exception.what());
        status = vantrel::Status::failed;
    }
    return static_cast<int>(status);
}

#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "command/Problem.h"
#include "command/Store.h"
#include "system/CommandServices.h"

namespace vantrel {

/// What a command works with.
struct Context {
    CommandServices system;
    Store store{system.services};
    /// Whether colours are welcome on standard output.
    bool isColorful = false;
};

/// What stands behind a command's name on the command line.
struct Arguments {
    std::vector<std::string> words;
    bool stored = false;
    bool check = false;
    bool json = false;
    std::string format;
};

/// An option, a line of the help.
struct Option {
    std::string_view name;
    /// Its values, with bars between them, the one that counts when it is left out first; none for a switch.
    std::string_view values;
    std::string_view summary;
};

/// A command, a line of the help: what the command line, its help and the completions know of it.
struct Command {
    std::string_view name;
    /// What follows: NAME, VALUE or FILE, or words with bars between them; in brackets what may be left out.
    std::string_view words;
    std::size_t fewestWords;
    std::size_t mostWords;
    /// The names of its options, with a blank between them.
    std::string_view options;
    std::string_view summary;
    Status (*run)(Context& context, const Arguments& arguments);
};

extern const std::span<const Command> commands;
const Option& optionNamed(std::string_view name);

/// The words of a text with `separator` between them.
std::vector<std::string_view> split(std::string_view text, char separator);

/// Makes the changes that are needed and tells a line for each, and for each that isn't needed. Throws as
/// `Store::make`, after the lines of those that were made until then.
void makeAndTell(Store& store, std::vector<Change>& changes);

/// A line for each file that keeps stored settings from being seen, with what comes of that.
std::vector<std::string> hiddenSettings(StoreInspection& inspection, std::string_view consequence);

/// Logs these lines: to the commands that read, hidden settings are missing ones.
void warnOfHiddenSettings(Context& context);

/// Each command has a file of its name.
Status list(Context& context, const Arguments& arguments);
Status get(Context& context, const Arguments& arguments);
Status set(Context& context, const Arguments& arguments);
Status reset(Context& context, const Arguments& arguments);
Status apply(Context& context, const Arguments& arguments);
Status exportProfile(Context& context, const Arguments& arguments);
Status doctor(Context& context, const Arguments& arguments);
Status enabler(Context& context, const Arguments& arguments);
Status watch(Context& context, const Arguments& arguments);
Status completion(Context& context, const Arguments& arguments);

}  // namespace vantrel

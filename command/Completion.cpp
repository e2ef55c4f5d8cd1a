#include <iostream>
#include <iterator>
#include <map>

#include "command/Commands.h"
#include "command/Text.h"
#include "settings/Reading.h"

namespace vantrel {
namespace {

using Words = std::vector<std::string>;

/// The names of the settings that have the same values, by those. Texts have none.
std::map<Words, Words> namesByValues(const std::vector<Setting>& settings) {
    std::map<Words, Words> names;
    for (const auto& setting : settings) {
        if (auto values = setting.words(); !values.empty()) names[values].emplace_back(setting.name());
    }
    return names;
}

Words namesOf(const std::vector<Setting>& settings) {
    Words names;
    for (const auto& setting : settings) names.emplace_back(setting.name());
    return names;
}

Words strings(const std::vector<std::string_view>& views) {
    return {views.begin(), views.end()};
}

Words namesOfCommands() {
    Words names;
    for (const auto& command : commands) names.emplace_back(command.name);
    return names;
}

Words optionsOf(const Command& command) {
    Words spelled;
    for (const auto name : split(command.options, ' ')) spelled.push_back("--" + std::string(name));
    spelled.emplace_back("--help");
    return spelled;
}

bool takesNames(const Command& command) {
    return command.words.find("NAME") != std::string_view::npos;
}

bool takesPairs(const Command& command) {
    return command.words.find("VALUE") != std::string_view::npos;
}

/// The words that a command chooses from, if it does.
Words choicesOf(const Command& command) {
    const auto choices = strings(split(command.words, '|'));
    return choices.size() > 1 ? choices : Words();
}

std::string quoted(const Words& words, std::string_view separator = " ") {
    std::string text;
    for (const auto& word : words) text += (text.empty() ? "" : std::string(separator)) + shellWord(word);
    return text;
}

/// bash and zsh read the same lines here.
void tellValues(const std::vector<Setting>& settings) {
    std::cout << "_vantrelctl_values() {\n    case $1 in\n";
    for (const auto& [values, names] : namesByValues(settings)) {
        std::cout << "        " << quoted(names, " | ") << ") candidates=(" << quoted(values) << ") ;;\n";
    }
    std::cout << "        *) candidates=() ;;\n    esac\n}\n\n";
}

/// Likewise; `position` is that of the word to complete, from 1 for the first behind the command.
void tellCommands(const std::vector<Setting>& settings) {
    std::cout << "    elif [[ $before == --format ]]; then\n"
                 "        candidates=("
              << quoted(strings(split(optionNamed("format").values, '|')))
              << ")\n"
                 "    elif [[ $word == -* ]]; then\n"
                 "        case $command in\n";
    for (const auto& command : commands) {
        std::cout << "            " << command.name << ") candidates=(" << quoted(optionsOf(command)) << ") ;;\n";
    }
    std::cout << "        esac\n"
                 "    else\n"
                 "        case $command in\n";
    for (const auto& command : commands) {
        const auto choices = choicesOf(command);
        if (!choices.empty()) {
            std::cout << "            " << command.name << ") ((position > 1)) || candidates=(" << quoted(choices)
                      << ") ;;\n";
        } else if (takesNames(command)) {
            std::cout << "            " << command.name << ")\n";
            if (command.mostWords == 1) std::cout << "                ((position > 1)) ||\n    ";
            std::cout << "                candidates=(" << quoted(namesOf(settings)) << ")\n";
            if (takesPairs(command)) {
                std::cout << "                ((position % 2)) || _vantrelctl_values \"$before\"\n";
            }
            std::cout << "                ;;\n";
        }
    }
    std::cout << "        esac\n    fi\n";
}

void tellBash(const std::vector<Setting>& settings) {
    std::cout << "# Completion of vantrelctl for bash.\n\n";
    tellValues(settings);
    std::cout << R"(_vantrelctl() {
    local command=${COMP_WORDS[1]} before=${COMP_WORDS[COMP_CWORD - 1]} position=$((COMP_CWORD - 1))
    local word=${COMP_WORDS[COMP_CWORD]} candidate candidates=()
    word=${word//[\\\"\']/}
    COMPREPLY=()
    if ((position == 0)); then
        candidates=()"
              << quoted(namesOfCommands()) << R"( --help --version)
)";
    tellCommands(settings);
    std::cout << R"(    if [[ $command == apply && $position -gt 0 && $word != -* ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
    fi
    for candidate in "${candidates[@]}"; do
        [[ ${candidate,,} != "${word,,}"* ]] || COMPREPLY+=("$candidate")
    done
}

complete -o filenames -F _vantrelctl vantrelctl
)";
}

void tellZsh(const std::vector<Setting>& settings) {
    std::cout << "#compdef vantrelctl\n# Completion of vantrelctl for zsh.\n\n";
    tellValues(settings);
    std::cout << R"(_vantrelctl() {
    local command=${words[2]} before=${(Q)words[CURRENT - 1]} word=${words[CURRENT]} position=$((CURRENT - 2))
    local -a candidates
    if ((position == 0)); then
        candidates=()"
              << quoted(namesOfCommands()) << R"( --help --version)
)";
    tellCommands(settings);
    std::cout << R"(    if [[ $command == apply && $position -gt 0 && $word != -* ]]; then
        _files
        return
    fi
    compadd -M 'm:{a-zA-Z}={A-Za-z}' -- "${candidates[@]}"
}

if [[ ${funcstack[1]} == _vantrelctl ]]; then
    _vantrelctl "$@"
else
    compdef _vantrelctl vantrelctl
fi
)";
}

/// fish quotes as other shells do, but for the quote itself, which stands in no word here.
void tellFish(const std::vector<Setting>& settings) {
    std::cout << "# Completion of vantrelctl for fish.\n\n"
                 "function __vantrelctl_candidates\n"
                 "    set -l words (commandline -opc)\n"
                 "    switch $words[2]\n";
    for (const auto& command : commands) {
        const auto choices = choicesOf(command);
        if (choices.empty() && !takesNames(command)) continue;
        const auto candidates = choices.empty() ? namesOf(settings) : choices;
        std::cout << "        case " << command.name << '\n';
        if (takesPairs(command)) {
            std::cout << "            if test (math (count $words) % 2) -eq 1\n"
                         "                switch (string lower -- $words[-1])\n";
            for (const auto& [values, names] : namesByValues(settings)) {
                std::cout << "                    case (string lower " << quoted(names) << ")\n"
                          << "                        printf '%s\\n' " << quoted(values) << '\n';
            }
            std::cout << "                end\n                return\n            end\n";
        }
        if (command.mostWords == 1) std::cout << "            test (count $words) -eq 2; or return\n";
        std::cout << "            printf '%s\\n' " << quoted(candidates) << '\n';
    }
    std::cout << "    end\nend\n\n"
                 "complete -c vantrelctl -f -a '(__vantrelctl_candidates)'\n"
                 "complete -c vantrelctl -n '__fish_seen_subcommand_from apply' -F\n"
                 "complete -c vantrelctl -l help -s h -d 'how it is used'\n"
                 "complete -c vantrelctl -n __fish_use_subcommand -l version -d 'the version'\n";
    for (const auto& command : commands) {
        std::cout << "complete -c vantrelctl -n __fish_use_subcommand -a " << command.name << " -d "
                  << shellWord(command.summary) << '\n';
        for (const auto name : split(command.options, ' ')) {
            const auto& option = optionNamed(name);
            std::cout << "complete -c vantrelctl -n '__fish_seen_subcommand_from " << command.name << "' -l " << name
                      << " -d " << shellWord(option.summary);
            if (!option.values.empty()) std::cout << " -x -a " << shellWord(quoted(strings(split(option.values, '|'))));
            std::cout << '\n';
        }
    }
}

}  // namespace

/// The scripts are the same on every machine: they offer as many threads as any menu does.
Status completion(Context&, const Arguments& arguments) {
    const std::string& shell = arguments.words.front();
    const auto settings = allSettings(mostThreads);
    if (shell == "bash") tellBash(settings);
    if (shell == "zsh") tellZsh(settings);
    if (shell == "fish") tellFish(settings);
    return Status::done;
}

}  // namespace vantrel

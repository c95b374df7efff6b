#pragma once

// What manual pages and completions ask of a command line: those of its options and commands that users see.

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace command_line {

inline std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

// Return the options, and the arguments (what is given by its place), in the order of --help.
inline std::vector<const CLI::Option*> optionsOf(const CLI::App& app) {
    return app.get_options(
        [](const CLI::Option* option) { return option->nonpositional() && !option->get_group().empty(); });
}
inline std::vector<const CLI::Option*> argumentsOf(const CLI::App& app) {
    return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

// Returns an option's names with their hyphens, the short ones first.
inline std::vector<std::string> namesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) {
        names.push_back('-' + name);
    }
    for (const std::string& name : option.get_lnames()) {
        names.push_back("--" + name);
    }
    return names;
}

inline bool takesValue(const CLI::Option& option) {
    return option.get_items_expected_max() > 0;
}
inline bool takesMany(const CLI::Option& option) {
    return option.get_items_expected_max() > 1;
}

// Returns what --help calls an option's value, without what the value is checked for.
inline std::string valueName(const CLI::Option& option) {
    const std::string name = option.get_type_name();
    return name.substr(0, name.find(':'));
}

} // namespace command_line

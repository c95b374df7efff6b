#pragma once

// The commands of the prompt: lines that begin with ":" or "?".

#include "host/console/host.h"
#include "host/console/prompt_output.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace host {

class PromptCommands {
  public:
    PromptCommands(Host& host, const PromptOutput& out) : host_(host), out_(out) {}

    enum class Argument : uint8_t { none, name, word, calculation, file, script };

    // True for a line that is a command and no calculation.
    static bool isCommand(std::string_view line);

    // What the argument of a line's command is, and where it begins. Nothing while the command's name is typed,
    // for an unknown command, and for lines without a command.
    struct ArgumentAt {
        size_t begin;
        Argument kind;
    };
    static std::optional<ArgumentAt> argumentOf(std::string_view line);

    // Returns the names of all commands.
    static std::vector<std::string> names();

    // Runs a command and prints what it has to say, mistakes as well. Returns false for the one that leaves.
    bool run(const std::string& line);

    // Prints what is watched with its value now.
    void showWatched();

  private:
    using Action = void (PromptCommands::*)(const std::string&);
    struct Row {
        std::string_view name;
        Argument argument;
        bool isOptional;
        std::string_view description;
        Action action;
    };
    static std::span<const Row> rows();
    // The command that a line begins with: its name, which may be shortened, and where the rest begins.
    struct Words {
        std::string name;
        size_t rest;
    };
    static Words wordsOf(std::string_view line);
    static const Row* find(std::string_view name);

    void help(const std::string& name);
    void functions(const std::string& word);
    void watch(const std::string& calculation);
    void unwatch(const std::string& calculation);
    void load(const std::string& file);
    void runScript(const std::string& script);
    void time(const std::string& calculation);
    void type(const std::string& calculation);
    void variables(const std::string& none);

    void showHelp();
    Value evaluate(const std::string& calculation);

    Host& host_;
    const PromptOutput& out_;
    std::vector<std::string> watched_;
};

} // namespace host

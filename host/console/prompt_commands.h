#pragma once

// The commands of the prompt: lines that begin with ":" or "?".

#include "host/console/host.h"

#include <iosfwd>
#include <string>
#include <vector>

namespace host {

class PromptCommands {
  public:
    PromptCommands(Host& host, std::ostream& out) : host_(host), out_(out) {}

    // True for a line that is a command and no calculation.
    static bool isCommand(const std::string& line);

    // Runs a command and prints what it has to say, mistakes as well. Returns false for the one that leaves.
    bool run(const std::string& line);

    // Prints what is watched with its value now.
    void showWatched();

  private:
    using Action = void (PromptCommands::*)(const std::string&);
    struct Row {
        const char* name;
        const char* argument;
        const char* description;
        Action action;
    };
    static const std::vector<Row>& rows();

    void help(const std::string& name);
    void functions(const std::string& word);
    void watch(const std::string& calculation);
    void unwatch(const std::string& calculation);
    void load(const std::string& file);
    void runScript(const std::string& script);
    void time(const std::string& calculation);
    void type(const std::string& calculation);
    void variables(const std::string& none);

    Value evaluate(const std::string& calculation);

    Host& host_;
    std::ostream& out_;
    std::vector<std::string> watched_;
};

} // namespace host

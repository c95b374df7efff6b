#include "host/console/prompt_commands.h"

#include "host/calc/parser.h"
#include "host/console/commands.h"
#include "host/console/function_list.h"
#include "host/console/input_reader.h"
#include "host/console/show.h"
#include "host/editor/sheets.h"
#include "host/values/text.h"

#include <algorithm>
#include <chrono>
#include <iomanip>
#include <map>
#include <ostream>
#include <sstream>

namespace host {

namespace {

std::string trimmed(const std::string& text) {
    const size_t begin = text.find_first_not_of(" \t");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \t") - begin + 1);
}

const char* typeName(ValueType type) {
    switch (type) {
    case ValueType::text:
        return "text";
    case ValueType::number:
        return "number";
    case ValueType::date:
        return "date";
    case ValueType::time:
        return "time";
    case ValueType::timestamp:
        return "timestamp";
    case ValueType::container:
        return "container";
    default:
        return "nothing";
    }
}

} // namespace

const std::vector<PromptCommands::Row>& PromptCommands::rows() {
    static const std::vector<Row> kRows = {
        {"help", "[NAME]", "these commands, or what is known of a function, a Get name, a step",
         &PromptCommands::help},
        {"functions", "[WORD]", "the plug-in's functions, or all with a word in name or description",
         &PromptCommands::functions},
        {"variables", "", "all variables and their values", &PromptCommands::variables},
        {"watch", "CALCULATION", "evaluates it after each input", &PromptCommands::watch},
        {"unwatch", "[CALCULATION]", "watches it no more, or nothing any more", &PromptCommands::unwatch},
        {"time", "CALCULATION", "how long it takes", &PromptCommands::time},
        {"type", "CALCULATION", "the type of its result", &PromptCommands::type},
        {"load", "FILE", "evaluates the calculations of a file, one a line", &PromptCommands::load},
        {"run", "SCRIPT", "runs a script of the folder, or a file", &PromptCommands::runScript},
        {"quit", "", "leaves", nullptr},
    };
    return kRows;
}

bool PromptCommands::isCommand(const std::string& line) {
    const std::string text = trimmed(line);
    return text.starts_with(':') || text.starts_with('?') || text == "help" || text.starts_with("help ") ||
           text == "functions" || text == "quit" || text == "exit";
}

bool PromptCommands::run(const std::string& line) {
    std::string text = trimmed(line);
    if (text.starts_with('?')) {
        text = "help " + text.substr(1);
    } else if (text.starts_with(':')) {
        text = trimmed(text.substr(1));
    }
    const size_t end = std::min(text.find_first_of(" \t"), text.size());
    const std::string name = text == "exit" ? "quit" : text.empty() ? "help" : text.substr(0, end);
    const Row* chosen = nullptr;
    int matching = 0;
    for (const Row& row : rows()) {
        const bool isWhole = name == row.name;
        if (isWhole || std::string_view(row.name).starts_with(name)) {
            chosen = matching == 0 || isWhole ? &row : chosen;
            matching = isWhole ? 1 : matching + 1;
        }
        if (isWhole) {
            break;
        }
    }
    if (matching != 1) {
        out_ << "there is no command :" << name << "; :help lists them" << std::endl;
        return true;
    }
    if (chosen->action == nullptr) {
        return false;
    }
    const std::string argument = trimmed(text.substr(end));
    if (argument.empty() && chosen->argument[0] != '\0' && chosen->argument[0] != '[') {
        out_ << "expected " << chosen->argument << " after :" << chosen->name << std::endl;
        return true;
    }
    try {
        (this->*chosen->action)(argument);
    } catch (const CalcError& error) {
        out_ << error.report() << std::endl;
    } catch (const FileError& error) {
        out_ << error.what() << std::endl;
    }
    return true;
}

Value PromptCommands::evaluate(const std::string& calculation) {
    return host_.session().evaluate(fromUtf8(calculation));
}

void PromptCommands::help(const std::string& name) {
    if (name.empty()) {
        out_ << "Type a calculation, for instance: Let ( x = 2 ; x * 21 )\n"
                "A line that is not complete goes on in the next one; Ctrl-C drops it, and stops a "
                "calculation.\n"
                "Tab completes names. Commands may be shortened:\n";
        for (const Row& row : rows()) {
            const std::string usage = std::string(":") + row.name + " " + row.argument;
            out_ << "  " << std::left << std::setw(24) << usage << row.description << '\n';
        }
        out_ << "?NAME is :help NAME." << std::endl;
        return;
    }
    const std::optional<Sheet> sheet = findSheet(name, {host_.session().functions(), host_.stepRegistry()});
    if (!sheet) {
        out_ << "there is no function called " << name << std::endl;
        return;
    }
    for (const std::string& prototype : sheet->prototypes) {
        out_ << prototype << '\n';
    }
    out_ << (sheet->description.empty() ? "" : "    " + sheet->description + "\n")
         << (sheet->category.empty() ? "" : "    Category: " + sheet->category + "\n") << std::flush;
}

void PromptCommands::functions(const std::string& word) {
    FunctionQuery query;
    query.word = word;
    listFunctions(host_, query);
}

void PromptCommands::watch(const std::string& calculation) {
    evaluate(calculation); // a mistake is told now, and nothing watched
    watched_.push_back(calculation);
}

void PromptCommands::unwatch(const std::string& calculation) {
    std::erase_if(watched_,
                  [&](const std::string& one) { return calculation.empty() || one == calculation; });
}

void PromptCommands::showWatched() {
    for (const std::string& calculation : watched_) {
        out_ << calculation << " \u2192 ";
        try {
            out_ << oneLine(evaluate(calculation)) << std::endl;
        } catch (const CalcError& error) {
            out_ << error.what() << std::endl;
        }
    }
}

void PromptCommands::load(const std::string& file) {
    InputReader reader(host_.session().functions(), file);
    std::istringstream lines(toUtf8(readSource(file)->text()));
    for (std::string line; std::getline(lines, line);) {
        if (const auto calculation = reader.addLine(line)) {
            out_ << severalLines(host_.session().evaluate(*calculation)) << std::endl;
        }
    }
    reader.finish();
}

void PromptCommands::runScript(const std::string& script) {
    host::runScript(host_, script, "", true);
}

void PromptCommands::time(const std::string& calculation) {
    const auto start = std::chrono::steady_clock::now();
    const Value result = evaluate(calculation);
    const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
    out_ << severalLines(result) << '\n'
         << std::fixed << std::setprecision(3) << taken.count() << " ms" << std::endl;
}

void PromptCommands::type(const std::string& calculation) {
    out_ << typeName(evaluate(calculation).type()) << std::endl;
}

void PromptCommands::variables(const std::string& /*none*/) {
    const std::map<std::u16string, Value> all = host_.session().variables();
    for (const auto& [name, value] : all) {
        out_ << toUtf8(name) << " = " << oneLine(value) << '\n';
    }
    out_ << (all.empty() ? "there are no variables\n" : "") << std::flush;
}

} // namespace host

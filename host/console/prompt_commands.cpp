#include "host/console/prompt_commands.h"

#include "host/calc/suggest.h"
#include "host/console/commands.h"
#include "host/console/function_list.h"
#include "host/console/input_reader.h"
#include "host/console/line_editor.h"
#include "host/console/show.h"
#include "host/editor/sheets.h"
#include "host/values/text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <iomanip>
#include <map>
#include <sstream>

namespace host {

namespace {

constexpr std::string_view kBlanks = " \t\n";

std::string trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(kBlanks);
    const size_t end = text.find_last_not_of(kBlanks) + 1;
    return begin == std::string_view::npos ? "" : std::string(text.substr(begin, end - begin));
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

// Returns what an argument is called in the list of commands.
std::string_view argumentName(PromptCommands::Argument argument) {
    switch (argument) {
    case PromptCommands::Argument::name:
        return "NAME";
    case PromptCommands::Argument::word:
        return "WORD";
    case PromptCommands::Argument::calculation:
        return "CALCULATION";
    case PromptCommands::Argument::file:
        return "FILE";
    case PromptCommands::Argument::script:
        return "SCRIPT";
    case PromptCommands::Argument::none:
        break;
    }
    return "";
}

// The parts of a calculation and of results, in the words of the list of colours.
struct ColourRow {
    std::string_view colour;
    std::string_view attribute;
    std::string_view parts;
};
std::span<const ColourRow> colours() {
    static const std::array kColours = {
        ColourRow{"green", attributeOf(TextRole::text), "texts"},
        ColourRow{"cyan", attributeOf(TextRole::number), "numbers and constants"},
        ColourRow{"yellow", attributeOf(ValueType::date), "results that are dates, times or time stamps"},
        ColourRow{"magenta", attributeOf(TextRole::variable), "variables"},
        ColourRow{"blue", attributeOf(TextRole::function), "functions, names in Get ( )"},
        ColourRow{"bold", attributeOf(TextRole::keyword), "and, or, xor, not; commands"},
        ColourRow{"grey", attributeOf(TextRole::comment), "comments"},
        ColourRow{"red", attributeOf(TextRole::unknown), "functions that nobody knows; errors"},
    };
    return kColours;
}

} // namespace

std::span<const PromptCommands::Row> PromptCommands::rows() {
    static constexpr std::array kRows = {
        Row{"help", Argument::name, true, "this list, or about a function, Get name or step",
            &PromptCommands::help},
        Row{"functions", Argument::word, true, "the plug-in's functions, or all that a word is about",
            &PromptCommands::functions},
        Row{"variables", Argument::none, true, "all variables and their values", &PromptCommands::variables},
        Row{"watch", Argument::calculation, false, "evaluates it after each input", &PromptCommands::watch},
        Row{"unwatch", Argument::calculation, true, "watches it no more, or nothing any more",
            &PromptCommands::unwatch},
        Row{"time", Argument::calculation, false, "how long it takes", &PromptCommands::time},
        Row{"type", Argument::calculation, false, "the type of its result", &PromptCommands::type},
        Row{"load", Argument::file, false, "evaluates the calculations of a file, one a line",
            &PromptCommands::load},
        Row{"run", Argument::script, false, "runs a script of the folder, or a file",
            &PromptCommands::runScript},
        Row{"quit", Argument::none, true, "leaves", nullptr},
    };
    return kRows;
}

std::vector<std::string> PromptCommands::names() {
    std::vector<std::string> result;
    for (const Row& row : rows()) {
        result.emplace_back(row.name);
    }
    return result;
}

bool PromptCommands::isCommand(std::string_view line) {
    const std::string text = trimmed(line);
    return text.starts_with(':') || text.starts_with('?') || text == "help" || text.starts_with("help ") ||
           text == "functions" || text == "quit" || text == "exit";
}

PromptCommands::Words PromptCommands::wordsOf(std::string_view line) {
    size_t begin = std::min(line.find_first_not_of(kBlanks), line.size());
    if (begin < line.size() && line[begin] == '?') {
        return {"help", begin + 1};
    }
    if (begin < line.size() && line[begin] == ':') {
        begin = std::min(line.find_first_not_of(kBlanks, begin + 1), line.size());
    }
    const size_t end = std::min(line.find_first_of(kBlanks, begin), line.size());
    const std::string name(line.substr(begin, end - begin));
    return {name == "exit" ? "quit" : name.empty() ? "help" : name, end};
}

const PromptCommands::Row* PromptCommands::find(std::string_view name) {
    const Row* found = nullptr;
    for (const Row& row : rows()) {
        if (row.name == name) {
            return &row;
        }
        if (row.name.starts_with(name)) {
            if (found != nullptr) {
                return nullptr; // it may be either
            }
            found = &row;
        }
    }
    return found;
}

std::optional<PromptCommands::ArgumentAt> PromptCommands::argumentOf(std::string_view line) {
    if (!isCommand(line)) {
        return std::nullopt;
    }
    const Words words = wordsOf(line);
    const Row* const row = find(words.name);
    const size_t begin = std::min(line.find_first_not_of(kBlanks, words.rest), line.size());
    const bool isSeparate = begin > words.rest || line[words.rest == 0 ? 0 : words.rest - 1] == '?';
    return row == nullptr || !isSeparate ? std::nullopt : std::optional(ArgumentAt{begin, row->argument});
}

bool PromptCommands::run(const std::string& line) {
    const Words words = wordsOf(line);
    const Row* const row = find(words.name);
    if (row == nullptr) {
        Suggestion nearest(fromUtf8(words.name));
        for (const Row& known : rows()) {
            nearest.consider(fromUtf8(std::string(known.name)));
        }
        const std::string best =
            nearest.best().empty() ? "" : "; did you mean :" + toUtf8(nearest.best()) + "?";
        out_.error("there is no command :" + words.name + best + (best.empty() ? ";" : "") +
                   " :help lists them");
        return true;
    }
    if (row->action == nullptr) {
        return false;
    }
    const std::string argument = trimmed(std::string_view(line).substr(words.rest));
    if (argument.empty() && !row->isOptional) {
        out_.error("expected " + std::string(argumentName(row->argument)) +
                   " after :" + std::string(row->name));
        return true;
    }
    try {
        (this->*row->action)(argument);
    } catch (const CalcError& error) {
        out_.error(error);
    } catch (const FileError& error) {
        out_.error(std::string(error.what()));
    }
    return true;
}

Value PromptCommands::evaluate(const std::string& calculation) {
    return host_.session().evaluate(fromUtf8(calculation));
}

void PromptCommands::help(const std::string& name) {
    if (name.empty()) {
        showHelp();
        return;
    }
    const Vocabulary known{host_.session().functions(), host_.stepRegistry()};
    const std::optional<Sheet> sheet = findSheet(name, known);
    if (!sheet) {
        Suggestion nearest(fromUtf8(name));
        for (const Sheet& one : allSheets(known)) {
            nearest.consider(fromUtf8(one.name));
        }
        out_.error("there is no function called " + name + nearest.question());
        return;
    }
    for (const std::string& prototype : sheet->prototypes) {
        out_.line(out_.palette().paint(prototype, Palette::kStrong));
    }
    if (!sheet->description.empty()) {
        out_.line("    " + sheet->description);
    }
    if (!sheet->category.empty()) {
        out_.line("    Category: " + sheet->category);
    }
}

// The tables are those of docs/host.md; a test compares.
void PromptCommands::showHelp() {
    const auto show = [&](const std::string& name, std::string_view attribute, std::string_view description) {
        const std::string padding(std::max<size_t>(24, name.size() + 1) - name.size(), ' ');
        out_.line("  " + out_.palette().paint(name, attribute) + padding + std::string(description));
    };
    out_.line("Type a calculation, for instance: Let ( x = 2 ; x * 21 )\n\n"
              "Commands, which may be shortened; ?NAME is :help NAME");
    for (const Row& row : rows()) {
        const std::string argument(argumentName(row.argument));
        show(":" + std::string(row.name) +
                 (argument.empty() ? ""
                  : row.isOptional ? " [" + argument + "]"
                                   : " " + argument),
             Palette::kStrong, row.description);
    }
    out_.line("\nKeys");
    for (const Key& key : keyTable()) {
        show(std::string(key.name), Palette::kStrong, key.description);
    }
    if (out_.palette().isOn) {
        out_.line("\nColours");
        for (const ColourRow& row : colours()) {
            show(std::string(row.colour), row.attribute, row.parts);
        }
    }
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
        const std::string head = calculation + " \u2192 ";
        try {
            out_.line(head + out_.painted(evaluate(calculation)));
        } catch (const CalcError& error) {
            out_.line(head + out_.palette().paint(error.what(), Palette::kError));
        }
    }
}

void PromptCommands::load(const std::string& file) {
    InputReader reader(host_.session().functions(), file);
    std::istringstream lines(toUtf8(readSource(file)->text()));
    for (std::string line; std::getline(lines, line);) {
        if (const auto calculation = reader.addLine(line)) {
            out_.result(host_.session().evaluate(*calculation));
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
    out_.result(result);
    std::ostringstream text;
    text << std::fixed << std::setprecision(3) << taken.count() << " ms";
    out_.line(text.str());
}

void PromptCommands::type(const std::string& calculation) {
    out_.line(typeName(evaluate(calculation).type()));
}

void PromptCommands::variables(const std::string& /*none*/) {
    const std::map<std::u16string, Value> all = host_.session().variables();
    for (const auto& [name, value] : all) {
        out_.line(out_.palette().paint(toUtf8(name), attributeOf(TextRole::variable)) + " = " +
                  out_.painted(value));
    }
    if (all.empty()) {
        out_.line("there are no variables");
    }
}

} // namespace host

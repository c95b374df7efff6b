#include "host/console/function_list.h"

#include "host/calc/builtins.h"
#include "host/calc/external_function.h"
#include "host/calc/functions/groups.h"
#include "host/console/show.h"
#include "host/script/own_steps.h"
#include "host/values/text.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>
#include <nlohmann/json.hpp>
#include <numeric>
#include <vector>

namespace host {

namespace {

// What comes of a call: a value that is computed, the value of a host without a database, or an error.
enum class Answer : uint8_t { computed, absent, refused };

// The word for an Answer in JSON.
constexpr std::array<const char*, 3> kAnswerWords = {"computed", "absent", "refused"};

// A row of the list: a function, a step, or a name in Get ( ).
struct Row {
    std::string kind; // function, step, get
    std::string name;
    std::string prototype;
    std::string description;
    std::string category; // for functions and steps of a plug-in, its identifier
    std::string range;    // of arguments
    nlohmann::ordered_json more;
    Answer answer = Answer::computed;
};

std::string rangeText(int minArguments, int maxArguments) {
    if (maxArguments == ExternalFunction::kAnyNumber) {
        return std::to_string(minArguments) + "+";
    }
    return minArguments == maxArguments ? std::to_string(minArguments)
                                        : std::to_string(minArguments) + "-" + std::to_string(maxArguments);
}

nlohmann::ordered_json counts(int minArguments, int maxArguments) {
    const bool isLimited = maxArguments != ExternalFunction::kAnyNumber;
    return {{"minArguments", minArguments},
            {"maxArguments", isLimited ? nlohmann::ordered_json(maxArguments) : nlohmann::ordered_json()}};
}

Row rowOf(const RegisteredInfo& item, const char* kind, const std::u16string& prototype,
          nlohmann::ordered_json more) {
    more.update({{"description", toUtf8(item.description)},
                 {"plugin", toUtf8(item.plugin)},
                 {"id", item.id},
                 {"flags", item.flags}});
    return {kind, toUtf8(item.name), toUtf8(prototype), oneLine(Value::text(item.description)), {},
            {},   std::move(more),   Answer::computed};
}

std::vector<Row> pluginRows(const Host& host) {
    std::vector<Row> rows;
    for (const FunctionInfo& function : host.functions()) {
        rows.push_back(rowOf(function, "function", function.prototype,
                             counts(function.minArguments, function.maxArguments)));
        rows.back().range = rangeText(function.minArguments, function.maxArguments);
    }
    for (const StepInfo& step : host.steps()) {
        rows.push_back(rowOf(step, "step", step.prototype, nlohmann::ordered_json::object()));
        rows.back().range = "step";
    }
    return rows;
}

const char* wordOf(Answer answer) {
    return kAnswerWords[static_cast<size_t>(answer)];
}

Row rowOf(const Builtin& builtin) {
    const std::string description(builtin.description);
    const std::string category(builtin.category);
    auto more = counts(builtin.minArguments(), builtin.maxArguments());
    const Answer answer = builtin.form == BuiltinForm::placeholder ? Answer::absent
                          : builtin.form == BuiltinForm::refused   ? Answer::refused
                                                                   : Answer::computed;
    more.update({{"description", description}, {"category", category}, {"answer", wordOf(answer)}});
    return {"function",
            toUtf8(builtin.name()),
            toUtf8(builtin.prototype),
            description,
            category,
            rangeText(builtin.minArguments(), builtin.maxArguments()),
            more,
            answer};
}

Row rowOf(const GetRow& get) {
    const std::string prototype = "Get ( " + toUtf8(get.name) + " )";
    const std::string description(get.description);
    const Answer answer = get.isAbsent ? Answer::absent : Answer::computed;
    return {"get",
            toUtf8(get.name),
            prototype,
            description,
            "Get",
            "",
            {{"description", description}, {"category", "Get"}, {"answer", wordOf(answer)}},
            answer};
}

// Returns the rows of the language, by category and name.
std::vector<Row> languageRows() {
    std::vector<Row> rows;
    std::string_view category;
    for (const FunctionGroup& group : functionGroups()) {
        if (group.category == category) {
            continue;
        }
        category = group.category;
        for (const Builtin& builtin : builtins()) {
            if (builtin.category == category) {
                rows.push_back(rowOf(builtin));
            }
        }
    }
    for (const GetRow& get : getRows()) {
        rows.push_back(rowOf(get));
    }
    return rows;
}

// Returns the script steps of the language that do something here, by category.
std::vector<Row> ownStepRows() {
    std::vector<Row> rows;
    for (const OwnStep& step : ownSteps()) {
        if (step.isSupported()) {
            const std::string description(step.row.description);
            const std::string category = "Script steps: " + std::string(step.category);
            rows.push_back({"step",
                            toUtf8(step.name()),
                            toUtf8(step.row.prototype),
                            description,
                            category,
                            "step",
                            {{"description", description}, {"category", category}},
                            Answer::computed});
        }
    }
    return rows;
}

bool contains(const std::string& text, const std::u16string& foldedWord) {
    return foldCase(fromUtf8(text)).find(foldedWord) != std::u16string::npos;
}

// Prints the rows with a heading for each category. Descriptions of the language's functions are printed only
// when [withDescriptions].
void printTable(const std::vector<Row>& rows, bool withDescriptions) {
    std::string category;
    for (const Row& row : rows) {
        if (row.category != category) {
            category = row.category;
            std::cout << (&row == &rows.front() ? "" : "\n") << category << '\n';
        }
        std::cout << std::left << std::setw(5) << row.range << row.prototype << '\n';
        if (!row.description.empty() && (withDescriptions || row.category.empty())) {
            std::cout << std::setw(9) << "" << row.description << '\n';
        }
    }
}

void printJson(const std::vector<Row>& rows) {
    auto list = nlohmann::ordered_json::array();
    for (const Row& row : rows) {
        nlohmann::ordered_json object = {
            {"name", row.name}, {"kind", row.kind}, {"prototype", row.prototype}};
        object.update(row.more);
        list.push_back(std::move(object));
    }
    std::cout << list.dump(2) << '\n';
}

// How many rows of a category have each Answer.
struct Count {
    std::string category;
    std::array<size_t, kAnswerWords.size()> answers{};
};

std::vector<Count> countsOf(const std::vector<Row>& rows) {
    std::vector<Count> counts;
    for (const Row& row : rows) {
        const std::string category = row.category.empty() ? "Plug-in" : row.category;
        if (counts.empty() || counts.back().category != category) {
            counts.push_back({category});
        }
        ++counts.back().answers[static_cast<size_t>(row.answer)];
    }
    return counts;
}

size_t sum(const Count& count) {
    return std::accumulate(count.answers.begin(), count.answers.end(), size_t{0});
}

void printCountTable(std::vector<Count> counts) {
    constexpr int kNameWidth = 30;
    constexpr int kNumberWidth = 10;
    Count all{"All"};
    for (const Count& count : counts) {
        for (size_t i = 0; i < all.answers.size(); ++i) {
            all.answers[i] += count.answers[i];
        }
    }
    counts.push_back(all);
    const auto cell = [](const auto& content) {
        std::cout << std::right << std::setw(kNumberWidth) << content;
    };
    std::cout << std::left << std::setw(kNameWidth) << "";
    for (const char* word : kAnswerWords) {
        cell(word);
    }
    cell("all");
    for (const Count& count : counts) {
        std::cout << '\n' << std::left << std::setw(kNameWidth) << count.category;
        for (const size_t number : count.answers) {
            cell(number);
        }
        cell(sum(count));
    }
    std::cout << '\n';
}

void printCountJson(const std::vector<Count>& counts) {
    auto list = nlohmann::ordered_json::array();
    for (const Count& count : counts) {
        nlohmann::ordered_json object = {{"category", count.category}};
        for (size_t i = 0; i < count.answers.size(); ++i) {
            object[kAnswerWords[i]] = count.answers[i];
        }
        object["all"] = sum(count);
        list.push_back(std::move(object));
    }
    std::cout << list.dump(2) << '\n';
}

} // namespace

std::vector<FunctionName> functionNames(const Host& host) {
    std::vector<FunctionName> names;
    for (std::vector<Row> rows : {pluginRows(host), languageRows()}) {
        for (Row& row : rows) {
            names.push_back({std::move(row.name), std::move(row.prototype)});
        }
    }
    return names;
}

ExitCode listFunctions(const Host& host, const FunctionQuery& query) {
    std::vector<Row> rows = pluginRows(host);
    if (query.all || !query.word.empty()) {
        std::vector<Row> language = languageRows();
        std::move(language.begin(), language.end(), std::back_inserter(rows));
        std::vector<Row> steps = ownStepRows();
        std::move(steps.begin(), steps.end(), std::back_inserter(rows));
    }
    if (!query.word.empty()) {
        const std::u16string word = foldCase(fromUtf8(query.word));
        std::erase_if(rows, [&](const Row& row) {
            return !contains(row.name, word) && !contains(row.description, word);
        });
        if (rows.empty()) {
            std::cerr << "fmhost: no function has \"" << query.word
                      << "\" in its name or description; fmhost functions --all lists them" << std::endl;
            return ExitCode::failure;
        }
    }
    if (query.counted) {
        query.asJson ? printCountJson(countsOf(rows)) : printCountTable(countsOf(rows));
    } else {
        query.asJson ? printJson(rows) : printTable(rows, !query.word.empty());
    }
    return ExitCode::ok;
}

} // namespace host

#include "bench/host/language.h"

#include "host/calc/parser.h"
#include "host/calc/session.h"
#include "host/script/script_runner.h"
#include "host/values/text.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <unistd.h>
#include <vector>

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kRuns = 5;
constexpr size_t kTurns = 1'000'000;
constexpr size_t kNodesInATurn = 6; // of kCounting: two chains of two operands each
constexpr size_t kPlaces = 10'000;
constexpr size_t kRecords = 100'000; // of some hundred bytes: 10 MB

double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// A work: what is done before each run without being measured, and what is measured; it returns its result.
struct Work {
    std::string name;
    std::function<void()> prepare;
    std::function<std::string()> run;
};

// Runs each of some works in turn, which must all come to the same result, and keeps the median of each.
void measure(const std::vector<Work>& works, Figures& figures) {
    std::vector<std::vector<double>> times(works.size());
    std::string result;
    for (int turn = 0; turn < kRuns; ++turn) {
        for (size_t i = 0; i < works.size(); ++i) {
            works[i].prepare();
            const double start = processorTime();
            const std::string own = works[i].run();
            times[i].push_back(processorTime() - start);
            if (turn == 0 && i == 0) {
                result = own;
            } else if (own != result) {
                throw std::runtime_error(works[i].name + " comes to another result");
            }
        }
    }
    for (size_t i = 0; i < works.size(); ++i) {
        std::sort(times[i].begin(), times[i].end());
        figures[works[i].name] = times[i][times[i].size() / 2];
    }
}

constexpr const char* kCounting = "SetRecursion ( While ( i = 0 ; i < 1000000 ; i = i + 1 ; i ) ; 2000000 )";
constexpr const char* kList =
    "SetRecursion ( While ( [ i = 0 ; l = \"\" ] ; i < 100000 ; [ l = List ( l ; i ) ; i = i + 1 ] ; "
    "ValueCount ( l ) ) ; 200000 )";
constexpr const char* kJson =
    "While ( [ i = 0 ; n = 0 ] ; i < 10000 ; [ n = n + JSONGetElement ( $json ; \"[\" & i & \"].id\" ) ; "
    "$json = JSONSetElement ( $json ; \"[\" & i & \"].name\" ; \"name \" & i ; JSONString ) ; i = i + 1 ] ; "
    "n & \" \" & Length ( $json ) )";
constexpr const char* kSubstitute = "Length ( Substitute ( $text ; \"name\" ; \"a name\" ) )";
constexpr const char* kLoop = "Set Variable [ $i ; Value: 0 ]\n"
                              "Loop\n"
                              "  Exit Loop If [ $i = 1000000 ]\n"
                              "  Set Variable [ $i ; Value: $i + 1 ]\n"
                              "End Loop\n"
                              "Exit Script [ Text Result: $i ]\n";

std::string documentText() {
    std::string text = "[";
    for (size_t i = 0; i < kRecords; ++i) {
        text +=
            (i == 0 ? "" : ",") + std::string("{\"id\":") + std::to_string(i) +
            R"(,"name":"somebody","note":"a text of some fifty letters, as records have","tags":[1,2,3]})";
    }
    return text + "]";
}

std::string changedJson(const std::string& text) {
    auto document = nlohmann::json::parse(text);
    size_t sum = 0;
    for (size_t i = 0; i < kPlaces; ++i) {
        auto& record = document.at(i);
        sum += record.at("id").get<size_t>();
        record["name"] = "name " + std::to_string(i);
    }
    return std::to_string(sum) + " " + std::to_string(document.dump().size());
}

std::string substituted(const std::string& text) {
    constexpr std::string_view kWanted = "name";
    std::string result;
    size_t from = 0;
    for (size_t at = text.find(kWanted); at != std::string::npos; at = text.find(kWanted, from)) {
        result.append(text, from, at - from).append("a name");
        from = at + kWanted.size();
    }
    result.append(text, from);
    return std::to_string(result.size());
}

// A folder with one script.
class ScriptFolder {
  public:
    ScriptFolder() {
        std::string pattern = fs::temp_directory_path() / "velocard-bench-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder can be made");
        }
        folder_ = pattern;
        std::ofstream(script()) << kLoop;
    }
    ~ScriptFolder() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    ScriptFolder(const ScriptFolder&) = delete;
    ScriptFolder& operator=(const ScriptFolder&) = delete;
    const fs::path& folder() const { return folder_; }
    fs::path script() const { return folder_ / "Loop.fmscript"; }

  private:
    fs::path folder_;
};

} // namespace

Figures measureLanguage() {
    const auto nothing = [] {};
    host::Session session;
    const auto calculation = [&session](const char* text) {
        return
            [&session, parsed = std::make_shared<host::Calculation>(host::parseCalculation(
                           std::make_shared<host::Source>("", host::fromUtf8(text)), session.functions()))] {
                return host::toUtf8(session.evaluate(*parsed).asText());
            };
    };
    Figures figures;
    measure({{"language/loop", nothing, calculation(kCounting)}}, figures);
    figures["language/node"] = figures["language/loop"] / static_cast<double>(kTurns * kNodesInATurn);
    measure({{"language/list", nothing, calculation(kList)}}, figures);

    const ScriptFolder folder;
    host::StepRegistry steps;
    host::ScriptLibrary library(folder.folder(), session.functions(), steps);
    host::ScriptListener listener;
    host::ScriptRunner runner(session, library, listener);
    measure({{"language/script loop", nothing,
              [&] { return host::toUtf8(runner.run(folder.script(), {}).asText()); }}},
            figures);

    const std::string document = documentText();
    const host::Value text = host::Value::text(host::fromUtf8(document));
    // Each run begins with a text that has not been read as JSON.
    measure({{"baseline/json", nothing, [&] { return changedJson(document); }},
             {"language/json", [&] { session.setVariable(u"$json", host::Value::text(text.storedText())); },
              calculation(kJson)}},
            figures);
    session.setVariable(u"$text", text);
    measure({{"baseline/substitute", nothing, [&] { return substituted(document); }},
             {"language/substitute", nothing, calculation(kSubstitute)}},
            figures);
    return figures;
}

} // namespace bench

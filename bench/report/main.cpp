// The command line: runs each measurement in a process of its own and prints the table.

#include "bench/host/language.h"
#include "bench/report/figures.h"
#include "bench/report/table.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace bench;
namespace fs = std::filesystem;

constexpr std::size_t kSizes[] = {1'000, 10'000, 100'000, 1'000'000};
constexpr int kOpenings = 5;

// Runs [work] in a process of its own and returns its figures. Throws its exception's text as
// std::runtime_error.
Figures apart(const std::function<Figures()>& work) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe can be made");
    }
    std::cout.flush();
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("no process can be started");
    }
    if (child == 0) {
        close(ends[0]);
        FILE* out = fdopen(ends[1], "w");
        try {
            for (const auto& [name, value] : work()) {
                std::fprintf(out, "%.17g\t%s\n", value, name.c_str());
            }
            std::fprintf(out, "0\tdone\n");
        } catch (const std::exception& error) {
            std::cerr << "bench: " << error.what() << std::endl;
        }
        std::fclose(out);
        _exit(0);
    }
    close(ends[1]);
    Figures figures;
    FILE* in = fdopen(ends[0], "r");
    double value = 0;
    std::array<char, 128> name{};
    while (std::fscanf(in, "%lf\t%127[^\n]\n", &value, name.data()) == 2) {
        figures[name.data()] = value;
    }
    std::fclose(in);
    waitpid(child, nullptr, 0);
    if (figures.erase("done") == 0) {
        throw std::runtime_error("a measurement failed");
    }
    return figures;
}

void progress(const Place& place, const char* what) {
    std::cerr << place.people << " people: " << what << std::endl;
}

// What is measured: the folder with the programs and libraries, and what is in the names of the works.
struct Measured {
    fs::path built;
    std::string only;
};

// Whether the works of `addressbook` are measured.
bool takesTool(const std::string& only) {
    return only.empty() || only.find("tool") != std::string::npos;
}

Figures measure(const Place& place, const Measured& measured) {
    const auto& [built, only] = measured;
    if (takesTool(only)) {
        progress(place, "measuring addressbook");
    }
    Figures figures = takesTool(only)
                          ? apart([&] { return measureTool(place, built / "bin" / "addressbook"); })
                          : Figures();
    if (takesTool(only) && !only.empty()) {
        return figures;
    }
    const fs::path whole = place.folder / "whole with everybody"; // marks the books as complete
    if (!fs::exists(whole)) {
        progress(place, "making the books");
        fs::remove_all(place.folder);
        apart([&] {
            makeBooks(place);
            return Figures();
        });
        fs::create_directory(whole);
    }
    progress(place, "measuring");
    figures.merge(apart([&] { return measureWork(place, built / "lib" / "Velocard", only); }));
    if (!only.empty()) {
        return figures;
    }
    figures.merge(apart([&] { return measureWalkMemory(place); }));
    std::vector<Figures> openings;
    for (int i = 0; i < kOpenings; ++i) {
        openings.push_back(apart([&] { return measureOpening(place); }));
    }
    std::sort(openings.begin(), openings.end(), [](const Figures& a, const Figures& b) {
        return a.at(std::string(figure::kOpenTime)) < b.at(std::string(figure::kOpenTime));
    });
    figures.merge(openings[openings.size() / 2]);
    return figures;
}

bool takesLanguageAlone(const std::string& only) {
    return only == "language";
}

// The folder for the books: one that the user named, which stays, else a temporary one.
class Books {
  public:
    explicit Books(std::string named) : stays_(!named.empty()), folder_(std::move(named)) {
        if (stays_) {
            fs::create_directories(folder_);
            return;
        }
        std::string pattern = fs::temp_directory_path() / "velocard-bench-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("no temporary folder can be made");
        }
        folder_ = pattern;
    }
    ~Books() {
        std::error_code ignored;
        if (!stays_) {
            fs::remove_all(folder_, ignored);
        }
    }
    Books(const Books&) = delete;
    Books& operator=(const Books&) = delete;
    const fs::path& folder() const { return folder_; }

  private:
    bool stays_;
    fs::path folder_;
};

int run(std::size_t least, std::size_t people, const std::string& named, const std::string& only,
        const std::string& json) {
    const Books books(named);
    for (const char* variable :
         {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "GNUSTEP_USER_DEFAULTS_DIR"}) {
        setenv(variable, books.folder().c_str(), 1);
    }
    const fs::path program = fs::read_symlink("/proc/self/exe");
    const Measured measured{program.parent_path().parent_path(), only};
    std::map<std::size_t, Figures> figures;
    for (const std::size_t size : kSizes) {
        if (size >= least && size <= people && !takesLanguageAlone(only)) {
            figures[size] = measure({books.folder() / std::to_string(size), size}, measured);
        }
    }
    if (only.empty() || takesLanguageAlone(only)) { // the same for every book: with the smallest one
        std::cerr << "measuring the language" << std::endl;
        figures[figures.empty() ? least : figures.begin()->first].merge(apart(measureLanguage));
    }
    std::cout << table(figures);
    if (!json.empty()) {
        std::ofstream(json) << tableAsJson(figures);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app("Measures the address book against a hand-written program on SQLite.", "bench");
    std::size_t people = 100'000;
    std::size_t least = 1'000;
    std::string books;
    std::string only;
    std::string json;
    app.add_option("--people", people, "The largest book [100000]; the smaller ones are measured too")
        ->check(CLI::Range(std::size_t{1'000}, std::size_t{1'000'000}));
    app.add_option("--from", least, "The smallest book [1000]");
    app.add_option("--books", books,
                   "Where the books are made, and kept for the next time [a temporary folder]");
    app.add_option(
        "--only", only,
        "Measure only the works whose names contain this, as \"suffix\"; \"tool\": those of addressbook, "
        "\"language\": those of calculations without a plug-in");
    app.add_option("--json", json, "A file into which the table is written as JSON too, for the charts");
    app.footer(
        "Exit status: 0 when everything was measured, whatever the verdicts; 1 when something failed.");
    CLI11_PARSE(app, argc, argv);
    try {
        return run(least, people, books, only, json);
    } catch (const std::exception& error) {
        std::cerr << "bench: " << error.what() << std::endl;
        return 1;
    }
}

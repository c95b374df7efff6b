// Measures the program `addressbook`: reading vCards into a new book, and writing, trying and checking them.

#include "bench/report/figures.h"

#include "bench/baseline/baseline_book.h"
#include "bench/baseline/card_lines.h"
#include "bench/framework/framework_book.h"
#include "bench/generate/card_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kPeopleInASave = 50'000;

// What a process has used: processor time in seconds, and its peak resident memory in bytes.
struct Usage {
    double seconds = 0;
    double memory = 0;
};

// Runs [work], which returns whether it was done, in a process of its own.
Usage usageOf(const std::string& name, const std::function<bool()>& work) {
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("no process can be started");
    }
    if (child == 0) {
        try {
            _exit(work() ? 0 : 1);
        } catch (const std::exception& error) {
            std::cerr << "bench: " << error.what() << std::endl;
            _exit(1);
        }
    }
    int status = 0;
    rusage usage{};
    while (wait4(child, &status, 0, &usage) < 0) {
        if (errno != EINTR) {
            throw std::runtime_error("a process cannot be waited for");
        }
    }
    if (status != 0) {
        throw std::runtime_error(name + " failed");
    }
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime), static_cast<double>(usage.ru_maxrss) * 1024};
}

// The program, which works on the book in a folder.
class Tool {
  public:
    Tool(fs::path program, fs::path book) : program_(std::move(program)), book_(std::move(book)) {}

    // Runs the program with arguments; what it prints is dropped, but for mistakes.
    Usage run(std::vector<std::string> arguments) const {
        return usageOf("addressbook " + arguments.front(), [&] {
            arguments.insert(arguments.begin(), {program_.string(), "--book", book_.string()});
            std::vector<char*> words;
            for (std::string& argument : arguments) {
                words.push_back(argument.data());
            }
            words.push_back(nullptr);
            const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
            dup2(nothing, STDOUT_FILENO);
            dup2(nothing, STDERR_FILENO);
            execv(program_.c_str(), words.data());
            return false;
        });
    }

  private:
    fs::path program_, book_;
};

void addFromCards(const fs::path& folder, const fs::path& cards) {
    BaselineBook book(folder);
    CardLines lines(cards);
    for (std::optional<Person> ahead = lines.next(); ahead;) {
        std::size_t left = kPeopleInASave;
        book.add([&]() -> std::optional<Person> {
            if (left == 0) {
                return std::nullopt;
            }
            --left;
            return std::exchange(ahead, ahead ? lines.next() : std::nullopt);
        });
    }
}

// Gathers what several runs used, by the name of a work.
class Samples {
  public:
    void add(const std::string& name, const Usage& usage) { usages_[name].push_back(usage); }
    // Returns the medians of time and memory.
    Figures figures() {
        Figures figures;
        for (auto& [name, usages] : usages_) {
            const auto median = [&runs = usages](double Usage::* part) {
                std::sort(runs.begin(), runs.end(),
                          [&](const Usage& a, const Usage& b) { return a.*part < b.*part; });
                return runs[runs.size() / 2].*part;
            };
            figures[name] = median(&Usage::seconds);
            figures[name + ", memory"] = median(&Usage::memory);
        }
        return figures;
    }

  private:
    std::map<std::string, std::vector<Usage>> usages_;
};

} // namespace

Figures measureTool(const Place& place, const fs::path& program) {
    const fs::path folder = place.folder / "tool";
    const fs::path cards = folder / "people.vcf";
    const fs::path book = folder / "book";
    const fs::path copy = folder / "copy.vcf";
    const Tool tool(program, book);
    Samples samples;
    for (int turn = place.people > 100'000 ? 1 : 3; turn > 0; --turn) {
        fs::remove_all(folder);
        fs::create_directories(book);
        writeCardFile(cards, place.people);
        samples.add("baseline/import", usageOf("the baseline's import", [&] {
                        addFromCards(folder, cards);
                        return true;
                    }));
        samples.add("tool/dry run", tool.run({"import", "--dry-run", cards}));
        samples.add("tool/import", tool.run({"import", cards}));
        samples.add("tool/import again", tool.run({"import", cards}));
        samples.add("tool/check", tool.run({"check"}));
        samples.add("tool/export", tool.run({"export", copy}));
    }
    if (BaselineBook(folder).walk() != FrameworkBook(book).walkedBytes()) {
        throw std::runtime_error("the baseline and the address book have not imported the same");
    }
    fs::remove_all(folder);
    return samples.figures();
}

} // namespace bench

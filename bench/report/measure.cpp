#include "bench/report/figures.h"

#include "bench/baseline/baseline_book.h"
#include "bench/framework/framework_book.h"
#include "bench/generate/people.h"
#include "bench/generate/store_book.h"
#include "bench/host/calculations.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <ctime>
#include <fstream>
#include <functional>
#include <optional>
#include <stdexcept>
#include <vector>

namespace bench {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr int kRepetitions = 5;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// Keeps the median of the repetitions of each benchmark.
class Medians : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred) {
                throw std::runtime_error(run.benchmark_name() + ": " + run.error_message);
            }
            if (run.run_type == Run::RT_Iteration) {
                times_[run.run_name.function_name].push_back(
                    (run.run_name.time_type.empty() ? run.cpu_accumulated_time : run.real_accumulated_time) /
                    static_cast<double>(run.iterations));
            }
        }
    }
    Figures figures() {
        Figures figures;
        for (auto& [name, times] : times_) {
            std::sort(times.begin(), times.end());
            figures[name] = times[times.size() / 2];
        }
        return figures;
    }

  private:
    std::map<std::string, std::vector<double>> times_;
};

// Measures [work] in processor time, which is the time that it takes on a machine with nothing else to do; or
// in wall-clock time where it waits for the disk. Repetitions of different benchmarks take turns, so that
// what the rest of the machine does to caches is shared by all of them.
enum class Waits { no, forDisk };
void repeat(const std::string& name, std::function<void()> work, Waits waits = Waits::no) {
    auto* const registered =
        benchmark::RegisterBenchmark(name.c_str(), [work = std::move(work)](benchmark::State& state) {
            for ([[maybe_unused]] auto turn : state) {
                work();
            }
        })->Repetitions(kRepetitions);
    if (waits == Waits::forDisk) {
        registered->UseRealTime();
    }
}

// Returns how many times a book is walked: a very large one takes long, and its times vary little.
int walksOf(const Place& place) {
    return place.people > 100'000 ? 1 : kRepetitions;
}

// Like repeat(), for work that needs a preparation each time, which is not measured. Runs once a repetition.
template <typename Prepare, typename Work>
void repeatPrepared(const std::string& name, int repetitions, Waits waits, Prepare prepare, Work work) {
    benchmark::RegisterBenchmark(name.c_str(),
                                 [waits, prepare, work](benchmark::State& state) {
                                     for ([[maybe_unused]] auto turn : state) {
                                         auto ready = prepare();
                                         const auto start = Clock::now();
                                         const double processorStart = processorTime();
                                         work(*ready);
                                         state.SetIterationTime(waits == Waits::forDisk
                                                                    ? secondsSince(start)
                                                                    : processorTime() - processorStart);
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(1)
        ->Repetitions(repetitions);
}

struct NamedSearch {
    Search search;
    const char* name;
};
constexpr NamedSearch kSearches[] = {{Search::lastEqual, "exact last name"},
                                     {Search::lastContains, "part of a name"},
                                     {Search::phoneContains, "part of a phone"},
                                     {Search::noteContains, "part of a note"},
                                     {Search::lastPrefix, "prefix"},
                                     {Search::lastSuffix, "suffix"},
                                     {Search::cityEqual, "city"},
                                     {Search::mobilePrefix, "label"},
                                     {Search::compound, "compound"}};

[[noreturn]] void differ(const std::string& what) {
    throw std::runtime_error("the baseline and the address book do not answer the same: " + what);
}

// Throws unless both find the same people in the same order, as the figures would else compare different
// work.
void compareHits(BaselineBook& baseline, FrameworkBook& book) {
    for (const auto& [search, name] : kSearches) {
        std::vector<std::string> uids;
        for (const std::int64_t id : baseline.search(search)) {
            uids.push_back(personUid(static_cast<std::size_t>(id - 1)));
        }
        if (uids != book.found(search)) {
            differ(name);
        }
    }
}

void compareWalks(BaselineBook& baseline, FrameworkBook& book, Calculations& host) {
    const std::size_t bytes = baseline.walk();
    if (bytes != book.walkedBytes()) {
        differ("the walk");
    }
    host.searchEverybody();
    if (bytes != host.walk(true)) {
        differ("the walk of a script");
    }
}

// The list of the names of all people, of the group that holds them.
constexpr const char* kListOfNames = R"(KORU_GetListOfValues ( "group" ; "members" ; "name" ))";

void compareLists(BaselineBook& baseline, Calculations& host) {
    host.evaluate("KORU_Open ( \"" + groupUid(kEverybody) + "\" )");
    if (host.evaluate(kListOfNames) != baseline.namesOfEverybody()) {
        differ("the list of names");
    }
}

// Returns unique ids of people from all over the book in turn.
class Turns {
  public:
    explicit Turns(std::size_t people) {
        for (std::size_t i = 0; i < 4096; ++i) {
            uids_.push_back(personUid(i * 7919 % people));
        }
    }
    const std::string& next() { return uids_[++turn_ % uids_.size()]; }

  private:
    std::vector<std::string> uids_;
    std::size_t turn_ = 0;
};

// An empty temporary folder for a book.
class Scratch {
  public:
    explicit Scratch(const fs::path& folder) : folder_(folder / "scratch") {
        fs::remove_all(folder_);
        fs::create_directories(folder_);
    }
    ~Scratch() {
        std::error_code ignored;
        fs::remove_all(folder_, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;
    const fs::path& folder() const { return folder_; }

  private:
    fs::path folder_;
};

template <typename Book>
struct ScratchBook {
    explicit ScratchBook(const fs::path& folder) : scratch(folder), book(scratch.folder()) {}
    Scratch scratch;
    Book book;
};

// The number of the person that calculations read, and the properties read.
constexpr std::size_t kHeld = 17;
struct NamedRead {
    FrameworkBook::Read read;
    const char* name;
    const char* calculation;
};
constexpr NamedRead kReads[] = {
    {FrameworkBook::Read::text, "text", "KORU_GetValueForProperty ( \"firstname\" )"},
    {FrameworkBook::Read::date, "date", "KORU_GetValueForProperty ( \"birthday\" )"},
    {FrameworkBook::Read::phone, "phone", "KORU_GetValueForUID ( \"phone\" ; $held )"},
    {FrameworkBook::Read::phoneLabel, "phone label", "KORU_GetLabelForUID ( \"phone\" ; $held )"}};

// The search for the ending of last names, in a book that was not asked to index endings.
constexpr std::string_view kUnindexed = "suffix, without asking";

void registerUnindexed(BaselineBook& baseline, FrameworkBook& book) {
    repeat("baseline/" + std::string(kUnindexed),
           [&] { benchmark::DoNotOptimize(baseline.search(Search::lastSuffix)); });
    repeat("framework/" + std::string(kUnindexed),
           [&] { benchmark::DoNotOptimize(book.search(Search::lastSuffix)); });
}

void registerBooks(const Place& place, BaselineBook& baseline, FrameworkBook& book, Turns& turns) {
    for (const auto& [search, name] : kSearches) {
        repeat(std::string("baseline/") + name,
               [&baseline, sought = search] { benchmark::DoNotOptimize(baseline.search(sought)); });
        repeat(std::string("framework/") + name,
               [&book, sought = search] { benchmark::DoNotOptimize(book.search(sought)); });
    }
    repeat("baseline/by id", [&] { benchmark::DoNotOptimize(baseline.lastName(turns.next())); });
    repeat("framework/by id", [&] { book.readLastName(turns.next()); });

    const int walks = walksOf(place);
    repeatPrepared(
        "baseline/walk", walks, Waits::no, [&place] { return std::make_unique<BaselineBook>(place.folder); },
        [](BaselineBook& fresh) { benchmark::DoNotOptimize(fresh.walk()); });
    repeatPrepared(
        "framework/walk", walks, Waits::no,
        [&place] { return std::make_unique<FrameworkBook>(place.folder); },
        [](FrameworkBook& fresh) { benchmark::DoNotOptimize(fresh.walk()); });

    repeat(
        "baseline/save one",
        [&, count = std::size_t{0}]() mutable {
            ++count;
            baseline.changeJob(static_cast<std::int64_t>(count * 7919 % place.people + 1),
                               "Job " + std::to_string(count));
        },
        Waits::forDisk);
    repeat(
        "framework/save one",
        [&, count = 0]() mutable { book.changeJob(turns.next(), "Job " + std::to_string(++count)); },
        Waits::forDisk);

    // A single save of a million objects is not a use case.
    if (place.people > 100'000) {
        return;
    }
    const int repetitions = place.people < 100'000 ? 3 : 1;
    repeatPrepared(
        "baseline/add all", repetitions, Waits::forDisk,
        [&place] { return std::make_unique<ScratchBook<BaselineBook>>(place.folder); },
        [&place](ScratchBook<BaselineBook>& fresh) { fresh.book.add(0, place.people); });
    repeatPrepared(
        "framework/add all", repetitions, Waits::forDisk,
        [&place] { return std::make_unique<ScratchBook<FrameworkBook>>(place.folder); },
        [&place](ScratchBook<FrameworkBook>& fresh) {
            fresh.book.add(place.people);
            fresh.book.save();
        });
}

void registerCalculations(Calculations& host, FrameworkBook& book) {
    int number = 0;
    const auto calculation = [&](const std::string& name, const char* text) {
        host.prepare(++number, text);
        repeat(name, [&host, number] { host.run(number); });
    };
    calculation("host/nothing", Calculations::kEmptyCall);
    calculation("host/version", "KORU_Version");
    calculation("host/last error", "KORU_GetLastError");

    book.hold(personUid(kHeld));
    host.evaluate("KORU_Open ( \"" + personUid(kHeld) + "\" )");
    host.evaluate("Let ( $held = \"" + book.firstPhone() + "\" ; 1 )");
    for (const auto& [read, name, text] : kReads) {
        repeat(std::string("framework/read ") + name, [&book, what = read] { book.read(what); });
        calculation(std::string("host/read ") + name, text);
    }
}

// Returns the median time of [work], each time after [prepare].
template <typename Prepare, typename Work>
double medianTime(int repetitions, Prepare prepare, Work work) {
    std::vector<double> times;
    for (int i = 0; i < repetitions; ++i) {
        prepare();
        const double start = processorTime();
        work();
        times.push_back(processorTime() - start);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// Measures the calculations that make other records the plug-in's current ones: after everything else.
Figures measureLongCalculations(Calculations& host, BaselineBook& baseline, const Place& place,
                                const std::string& only) {
    Figures figures;
    const int repetitions = walksOf(place);
    if (figure::kHostWalk.find(only) != std::string_view::npos) {
        figures[std::string(figure::kHostWalk)] =
            medianTime(repetitions, [&] { host.searchEverybody(); }, [&] { host.walk(false); });
    }
    if (figure::kHostList.find(only) != std::string_view::npos) {
        const auto open = [&] { host.evaluate("KORU_Open ( \"" + groupUid(kEverybody) + "\" )"); };
        figures[std::string(figure::kHostList)] =
            medianTime(repetitions, open, [&] { host.evaluate(kListOfNames); });
        figures[std::string(figure::kBaselineList)] =
            medianTime(repetitions, [] {}, [&] { benchmark::DoNotOptimize(baseline.namesOfEverybody()); });
    }
    return figures;
}

// Returns the value of a line in /proc/self/status, in bytes.
double memory(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (double kilobytes = 0; word == name + ":" && status >> kilobytes) {
            return kilobytes * 1024;
        }
    }
    throw std::runtime_error("the system does not tell the memory in use");
}

} // namespace

void makeBooks(const Place& place) {
    fs::create_directories(place.folder);
    makeStoreBook(place.folder, place.people);
    BaselineBook baseline(place.folder);
    constexpr std::size_t kPeopleInASave = 50'000;
    for (std::size_t first = 0; first < place.people; first += kPeopleInASave) {
        baseline.add(first, std::min(place.people, first + kPeopleInASave));
    }
    baseline.addGroups(place.people);
}

Figures measureWork(const Place& place, const fs::path& plugin, const std::string& only) {
    BaselineBook baseline(place.folder);
    FrameworkBook book(place.folder);
    Calculations host(plugin);
    indexEndings(place.folder, false);
    compareHits(baseline, book);
    if (only.empty()) {
        compareWalks(baseline, book, host);
        compareLists(baseline, host);
    }
    Turns turns(place.people);

    std::string name = "bench";
    std::string interleaved = "--benchmark_enable_random_interleaving=true";
    std::string least = "--benchmark_min_time=0.1";
    std::string filter = "--benchmark_filter=" + (only.empty() ? "." : only);
    std::vector<char*> arguments{name.data(), interleaved.data(), least.data(), filter.data(), nullptr};
    int count = 4;
    benchmark::Initialize(&count, arguments.data());
    Medians medians;
    if (kUnindexed.find(only) != std::string_view::npos) {
        registerUnindexed(baseline, book);
        benchmark::RunSpecifiedBenchmarks(&medians);
        benchmark::ClearRegisteredBenchmarks();
    }
    indexEndings(place.folder, true); // the baseline has the last names backwards as well
    compareHits(baseline, book);
    registerBooks(place, baseline, book, turns);
    registerCalculations(host, book);
    benchmark::RunSpecifiedBenchmarks(&medians);
    Figures figures = medians.figures();
    figures.merge(measureLongCalculations(host, baseline, place, only));
    return figures;
}

Figures measureOpening(const Place& place) {
    const auto start = Clock::now();
    FrameworkBook book(place.folder);
    if (book.search(Search::lastEqual) == 0 && place.people >= 10'000) {
        throw std::runtime_error("the first search finds nobody");
    }
    return {{std::string(figure::kOpenTime), secondsSince(start)},
            {std::string(figure::kOpenMemory), memory("VmRSS")}};
}

Figures measureWalkMemory(const Place& place) {
    FrameworkBook book(place.folder);
    if (book.walk() != 5 * place.people) {
        throw std::runtime_error("the walk does not see everybody");
    }
    return {{std::string(figure::kWalkMemory), memory("VmHWM")}};
}

} // namespace bench

#include "bench/report/table.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <span>

namespace bench {
namespace {

// The quantity that a target limits.
enum class Kind {
    ratio,  // measured / reference
    excess, // measured - reference, in seconds
    calls,  // measured - reference, in empty calls of the plug-in
    time,   // measured, in seconds
    memory  // measured, in bytes
};

constexpr double kMicro = 1e-6;
constexpr double kMega = 1e6;
constexpr std::size_t kHundredThousand = 100'000;
constexpr std::size_t kMillion = 1'000'000;

// One line of the table.
struct Row {
    const char*
        level; // F: framework; C: calculation in the host; L: the language; T: the program addressbook
    const char* work;
    const char* measured;
    const char* reference; // none for time and memory
    Kind kind;
    double limit;
    std::size_t people = 0; // the size of book to which the target applies; 0: every size
};

// The time of a function of the plug-in that only answers a word: what a call costs.
constexpr const char* kEmptyCall = "host/version";

constexpr const char* kOpen = "framework/open and search";

constexpr Row kRows[] = {
    {"F", "open the book, first exact search", kOpen, nullptr, Kind::time, 20e-3, kMillion},
    {"F", "the same: memory resident", "framework/open and search, memory", nullptr, Kind::memory, 40 * kMega,
     kMillion},
    {"F", "exact last name, 0.1% hits", "framework/exact last name", "baseline/exact last name", Kind::ratio,
     1.5},
    {"F", "part of a name, ignoring case, 2.8%", "framework/part of a name", "baseline/part of a name",
     Kind::ratio, 3},
    {"F", "part of a phone, 0.2%", "framework/part of a phone", "baseline/part of a phone", Kind::ratio, 3},
    {"F", "part of a note, 0.2%", "framework/part of a note", "baseline/part of a note", Kind::ratio, 3},
    {"F", "prefix ignoring case, 2.5%", "framework/prefix", "baseline/prefix", Kind::ratio, 3},
    {"F", "suffix ignoring case, 2.8%", "framework/suffix", "baseline/suffix", Kind::ratio, 3},
    {"F", "suffix, its index not asked for", "framework/suffix, without asking",
     "baseline/suffix, without asking", Kind::ratio, 3},
    {"F", "address city, 2%", "framework/city", "baseline/city", Kind::ratio, 3},
    {"F", "prefix of mobile phones, 0.1%", "framework/label", "baseline/label", Kind::ratio, 3},
    {"F", "compound of four", "framework/compound", "baseline/compound", Kind::ratio, 3},
    {"F", "walk: 3 properties, all phones, cold", "framework/walk", "baseline/walk", Kind::ratio, 4},
    {"F", "person by id, one property", "framework/by id", "baseline/by id", Kind::ratio, 3},
    {"F", "change one property, save durably", "framework/save one", "baseline/save one", Kind::ratio, 1.5},
    {"F", "add all people, one save", "framework/add all", "baseline/add all", Kind::ratio, 2},
    {"F", "walk: most memory resident", "framework/walk, memory", nullptr, Kind::memory, 150 * kMega,
     kMillion},
    {"C", "version, above an empty function", "host/version", "host/nothing", Kind::excess, 1 * kMicro},
    {"C", "last error, above an empty function", "host/last error", "host/nothing", Kind::excess, 1 * kMicro},
    {"C", "read a text, above F, in empty calls", "host/read text", "framework/read text", Kind::calls, 1.5},
    {"C", "read a date, above F, in empty calls", "host/read date", "framework/read date", Kind::calls, 1.5},
    {"C", "read a phone by id, above F, in empty calls", "host/read phone", "framework/read phone",
     Kind::calls, 1.5},
    {"C", "read a phone's label, above F, in calls", "host/read phone label", "framework/read phone label",
     Kind::calls, 1.5},
    {"C", "walk: next, 3 properties, phones; to F's", "host/walk", "framework/walk", Kind::ratio, 4},
    {"C", "list of the names of all people", "host/list of values", "baseline/list of values", Kind::ratio,
     2},
    {"L", "a loop of a million turns, While", "language/loop", nullptr, Kind::time, 1.2},
    {"L", "the same: a node of plain arithmetic", "language/node", nullptr, Kind::time, 200e-9},
    {"L", "a loop of a million turns, a script", "language/script loop", nullptr, Kind::time, 2},
    {"L", "a list built of 100,000 values", "language/list", nullptr, Kind::time, 0.2},
    {"L", "10 MB of JSON read, changed in 10,000 places", "language/json", "baseline/json", Kind::ratio, 3},
    {"L", "substitution in 10 MB", "language/substitute", "baseline/substitute", Kind::ratio, 3},
    {"T", "import vCards into a new book", "tool/import", "baseline/import", Kind::ratio, 2.5},
    {"T", "the same: time", "tool/import", nullptr, Kind::time, 7, kHundredThousand},
    {"T", "the same: memory", "tool/import, memory", nullptr, Kind::memory, 100 * kMega},
    {"T", "the same: a dry run", "tool/dry run", nullptr, Kind::time, 3, kHundredThousand},
    {"T", "the same: again, where nothing changes", "tool/import again", nullptr, Kind::time, 7,
     kHundredThousand},
    {"T", "export all as vCards", "tool/export", nullptr, Kind::time, 2, kHundredThousand},
    {"T", "the same: memory", "tool/export, memory", nullptr, Kind::memory, 100 * kMega},
    {"T", "check", "tool/check", nullptr, Kind::time, 4, kHundredThousand},
};

[[gnu::format(printf, 1, 2)]] std::string format(const char* pattern, ...) {
    char text[64];
    va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(text, sizeof text, pattern, arguments);
    va_end(arguments);
    return text;
}

std::string duration(double seconds) {
    if (seconds < 1e-3) {
        return format("%.3g us", seconds / kMicro);
    }
    return seconds < 1 ? format("%.3g ms", seconds * 1e3) : format("%.3g s", seconds);
}

std::string megabytes(double bytes) {
    return format("%.0f MB", bytes / kMega);
}

// Returns the quantity that a row's target limits; none when it was not measured.
std::optional<double> figureOf(const Row& row, const Figures& figures) {
    const auto measured = figures.find(row.measured);
    if (measured == figures.end()) {
        return std::nullopt;
    }
    if (row.reference == nullptr) {
        return measured->second;
    }
    const auto reference = figures.find(row.reference);
    if (reference == figures.end()) {
        return std::nullopt;
    }
    const double excess = measured->second - reference->second;
    switch (row.kind) {
    case Kind::ratio:
        return measured->second / reference->second;
    case Kind::calls: {
        const auto call = figures.find(kEmptyCall);
        return call == figures.end() ? std::nullopt : std::optional(excess / call->second);
    }
    case Kind::excess:
    case Kind::time:
    case Kind::memory:
        break;
    }
    return excess;
}

std::string target(const Row& row) {
    switch (row.kind) {
    case Kind::ratio:
    case Kind::calls:
        return format("%.3gx", row.limit);
    case Kind::excess:
        return "+" + duration(row.limit);
    case Kind::time:
        return duration(row.limit);
    case Kind::memory:
        return megabytes(row.limit);
    }
    return {};
}

std::string cell(const Row& row, const Figures& figures) {
    const auto figure = figureOf(row, figures);
    if (!figure) {
        return "-";
    }
    switch (row.kind) {
    case Kind::ratio:
        return format("%.2fx", *figure) + " " + duration(figures.at(row.measured));
    case Kind::calls:
        return format("%.2fx", *figure) + " " +
               duration(figures.at(row.measured) - figures.at(row.reference));
    case Kind::excess:
        return format("%+.2f us", *figure / kMicro);
    case Kind::time:
        return duration(*figure);
    case Kind::memory:
        return megabytes(*figure);
    }
    return {};
}

std::string verdict(const Row& row, const std::map<std::size_t, Figures>& all) {
    bool judged = false;
    std::string missed;
    for (const auto& [people, figures] : all) {
        if (row.people == 0 || row.people == people) {
            if (const auto figure = figureOf(row, figures)) {
                judged = true;
                if (*figure > row.limit) {
                    missed += (missed.empty() ? "" : ", ") + std::to_string(people);
                }
            }
        }
    }
    if (!judged) {
        return "needs PEOPLE=" + std::to_string(row.people);
    }
    return missed.empty() ? "met" : "missed at " + missed;
}

// Returns [text] padded to [width] characters, aligned to the left or to the right.
std::string padded(const std::string& text, std::size_t width, bool right = false) {
    const std::string blanks(width - std::min(width, text.size()), ' ');
    return right ? blanks + text : text + blanks;
}

} // namespace

std::string table(const std::map<std::size_t, Figures>& figures) {
    constexpr std::size_t kWork = 44, kTarget = 9, kCell = 16;
    std::string text = padded("", 3) + padded("work", kWork) + padded("target", kTarget, true);
    for (const auto& [people, one] : figures) {
        text += padded(std::to_string(people) + " people", kCell + 2, true);
    }
    text += "   verdict\n";
    for (const Row& row : kRows) {
        if (std::none_of(figures.begin(), figures.end(),
                         [&](const auto& one) { return figureOf(row, one.second).has_value(); })) {
            continue;
        }
        text += padded(row.level, 3) + padded(row.work, kWork) + padded(target(row), kTarget, true);
        for (const auto& [people, one] : figures) {
            text += padded(cell(row, one), kCell + 2, true);
        }
        text += "   " + verdict(row, figures) + "\n";
    }
    return text;
}

std::string tableAsJson(const std::map<std::size_t, Figures>& figures) {
    constexpr std::array kKinds{"ratio", "excess", "calls", "time", "memory"};
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (const Row& row : kRows) {
        nlohmann::ordered_json one{{"level", row.level},
                                   {"work", row.work},
                                   {"kind", kKinds[static_cast<std::size_t>(row.kind)]},
                                   {"limit", row.limit}};
        for (const auto& [people, figured] : figures) {
            const std::string size = std::to_string(people);
            if (const auto figure = figureOf(row, figured)) {
                one["measured"][size] = figured.at(row.measured);
                one["figure"][size] = *figure;
                if (row.reference != nullptr) {
                    one["reference"][size] = figured.at(row.reference);
                }
            }
        }
        if (one.contains("figure")) {
            rows.push_back(std::move(one));
        }
    }
    return rows.dump(1) + "\n";
}

} // namespace bench

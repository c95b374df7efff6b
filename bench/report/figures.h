#pragma once

#include <cstddef>
#include <filesystem>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>

namespace bench {

// The measured figures, by name: seconds, or bytes when the name ends in "memory".
using Figures = std::map<std::string, double>;

// Names that more than one source uses.
namespace figure {
inline constexpr std::string_view kOpenTime = "framework/open and search";
inline constexpr std::string_view kOpenMemory = "framework/open and search, memory";
inline constexpr std::string_view kHostWalk = "host/walk";
inline constexpr std::string_view kHostList = "host/list of values";
inline constexpr std::string_view kBaselineList = "baseline/list of values";
inline constexpr std::string_view kWalkMemory = "framework/walk, memory";
} // namespace figure

// The folder with the address book and the baseline's database of one size.
struct Place {
    std::filesystem::path folder;
    std::size_t people = 0;
};

// The program runs each of the following functions in a process of its own, so that none is affected by
// another's memory. They throw std::exception when something cannot be measured, and when the results of the
// baseline and of the address book differ.

// Makes both books.
void makeBooks(const Place& place);

// Measures, by Google Benchmark, the repeated work of the baseline, of the framework and of calculations, as
// far as its name contains [only]. [plugin] is the plug-in's library.
Figures measureWork(const Place& place, const std::filesystem::path& plugin, const std::string& only);

// Measures the time from opening the book to the first result of an exact search, and the resident memory
// then.
Figures measureOpening(const Place& place);

// Measures the peak resident memory of a process that walks through all people once.
Figures measureWalkMemory(const Place& place);

// Measures, in processor time and memory of a process for each, what the program [program] does with vCards of
// all people, and the baseline's reading of the same file.
Figures measureTool(const Place& place, const std::filesystem::path& program);

} // namespace bench

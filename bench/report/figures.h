#pragma once

#include <cstddef>
#include <filesystem>
#include <iosfwd>
#include <map>
#include <string>
#include <string_view>

namespace bench {

// What was measured, by name: seconds, or bytes where the name says memory.
using Figures = std::map<std::string, double>;

// Names that more than one source uses.
namespace figure {
inline constexpr std::string_view kOpenTime = "framework/open and search";
inline constexpr std::string_view kOpenMemory = "framework/open and search, memory";
inline constexpr std::string_view kHostWalk = "host/walk"; // a person
inline constexpr std::string_view kWalkMemory = "framework/walk, memory";
} // namespace figure

// A book of one size: the address book and the baseline's database are in one folder.
struct Place {
    std::filesystem::path folder;
    std::size_t people = 0;
};

// Each of these runs in a process of its own, so that none inherits another's memory. They throw
// std::exception when something cannot be measured, and when the baseline and the address book do not answer
// the same.

// Makes both books.
void makeBooks(const Place& place);

// Everything that Google Benchmark repeats: each work of the baseline, of the framework, of calculations.
// [plugin] is the plug-in's library. Of the works, only those whose names contain [only].
Figures measureWork(const Place& place, const std::filesystem::path& plugin, const std::string& only);

// From nothing to the first answer of an exact search, and the memory resident then.
Figures measureOpening(const Place& place);

// The most memory that was resident in a process that walked everybody once.
Figures measureWalkMemory(const Place& place);

} // namespace bench

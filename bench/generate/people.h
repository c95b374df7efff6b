#pragma once

// The people that every book of the benchmark holds: one source for the address book and for the baseline. A
// person follows from the seed and the person's place alone, so that no book has to be in memory to be made.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

inline constexpr std::uint64_t kSeed = 20'260'101;
inline constexpr std::size_t kGroups = 100;
inline constexpr std::size_t kPictureBytes = 12 * 1024;

struct LabelledText {
    std::string label; // as the framework stores it
    std::string value;
};

struct Address {
    std::string label, street, city, zip, country, countryCode;
};

struct Person {
    std::string uid; // "<UUID>:ABPerson"
    std::string first, last, organization, jobTitle, note;
    std::vector<LabelledText> phones; // two
    LabelledText email;
    Address address;
    double birthday = 0;               // seconds since 2001-01-01 00:00:00 UTC
    std::vector<std::uint8_t> picture; // of 5% of the people; else empty
};

// The person at a place, counted from 0. Last names are drawn from 1,000, each equally likely.
Person person(std::size_t place);
std::string personUid(std::size_t place);

// Group [group] of a book of [people]: half of the people are in one group each.
std::string groupName(std::size_t group);
std::string groupUid(std::size_t group);
std::vector<std::size_t> membersOf(std::size_t group, std::size_t people);

// What the searches look for; the shares are of the people who are found.
namespace wanted {
inline constexpr std::string_view kLast = "Lindström";      // exactly: 0.1%
inline constexpr std::string_view kLastPart = "STRÖM";      // anywhere, ignoring case: 2.8%
inline constexpr std::string_view kPhonePart = " 471 ";     // 0.2%
inline constexpr std::string_view kNotePart = "garden pia"; // 0.2%
inline constexpr std::string_view kLastPrefix = "ÅNG";      // 2.5%
inline constexpr std::string_view kLastSuffix = "DÓTTIR";   // 2.8%
inline constexpr std::string_view kCity = "Zürich";         // 2%
inline constexpr std::string_view kMobilePrefix = "+41 79"; // among mobile phones: 0.1%
inline constexpr std::string_view kNoteWord = "PIANO";      // in the compound search
inline constexpr std::string_view kMailPart = "EXAMPLE.ORG";
} // namespace wanted

// The searches that are measured; a compound has kLastPrefix, kCity, kNoteWord and kMailPart, all of them.
enum class Search {
    lastEqual,
    lastContains,
    phoneContains,
    noteContains,
    lastPrefix,
    lastSuffix,
    cityEqual,
    mobilePrefix,
    compound
};

} // namespace bench

#pragma once

// The people of the benchmark, the same for the address book and the baseline. A person depends only on the
// seed and the person's number, so that books can be made without keeping them in memory.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

inline constexpr std::uint64_t kSeed = 20'260'101;
inline constexpr std::size_t kGroups = 100;
inline constexpr std::size_t kEverybody = kGroups; // the number of one more group, of all people
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
    std::vector<LabelledText> phones; // always two
    LabelledText email;
    Address address;
    double birthday = 0;               // noon of the day, in seconds since 2001-01-01 00:00:00 on any clock
    std::vector<std::uint8_t> picture; // for 5% of the people, else empty
};

// Return the person with a number, counted from 0, and its unique id. There are 1,000 last names, equally
// likely.
Person person(std::size_t place);
std::string personUid(std::size_t place);

// Return name, unique id and members (numbers of people) of group [group] in a book of [people]. Half of the
// people are in one group each, and all are in the group kEverybody.
std::string groupName(std::size_t group);
std::string groupUid(std::size_t group);
std::vector<std::size_t> membersOf(std::size_t group, std::size_t people);

// The values that the searches look for, with the share of the people who are found.
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

// The searches that are measured. The compound one requires all of kLastPrefix, kCity, kNoteWord and
// kMailPart.
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

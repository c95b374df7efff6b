#pragma once

// The parts of a property line besides its label and value: whether the entry is the primary one, and the
// parameters and the group, which are preserved until the card is written.

#include "frameworks/AddressBook/vcard/card_lines.h"
#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/rules.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

// The TYPE word of a preferred entry.
inline constexpr std::string_view kPreferred = "pref";
inline constexpr int kNotPreferred = std::numeric_limits<int>::max();

// What is preserved of one line.
struct Addition {
    std::string_view property;      // the address book's property
    std::size_t entry = 0;          // index of the entry, when the property is a list
    int preference = kNotPreferred; // 1 is the most preferred
    std::string group;
    std::string source;        // the vCard property's name in upper case
    std::vector<Param> params; // the parameters that no property holds
    std::string asRead;        // the value as read, when it would be written differently; else empty
};

// Returns the label of an entry: [groupLabel] if there is one, else that of the TYPE words, else that of
// [rule]. Puts the line's preference, and all parameters that are not part of the label, into [addition].
std::string takeLabel(const ContentLine& line, const Rule& rule, const std::optional<std::string>& groupLabel,
                      Addition& addition);

// Like takeLabel(), for a relation.
std::string takeRelation(const ContentLine& line, const Rule& rule,
                         const std::optional<std::string>& groupLabel, Addition& addition);

// Sets each list's primary entry: the first of those with the best preference. The others keep their
// preference as a parameter.
void setPrimaries(std::vector<Addition>& additions, Card& card);

// Removes "pref" and PREF=1 from parameters; with [any], also PREF=n.
void dropPreference(std::vector<Param>& params, bool any);

// Returns the parameters of a stored line: those of a line that was read, and last the form in which it was read.
std::string storedParams(const std::vector<Param>& params, const std::string& asRead);
// Takes that form out of a stored line's parameters; empty when it is none. A line may have a parameter of the same name.
std::string takeAsRead(std::vector<Param>& params);

// Returns the additions as stored lines, in the order in which their lines are written. [groups] are the
// groups, in upper case, that unknown lines have.
std::vector<std::string> additionLines(const std::vector<Addition>& additions, const Card& card,
                                       const std::set<std::string>& groups, GroupNames& groupNames);

} // namespace addressbook::vcard

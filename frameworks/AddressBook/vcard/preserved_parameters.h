#pragma once

// What a property line says besides its label and value: which entry is the primary one, and the parameters
// and group that have to come back with the line when the card is written.

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

struct Addition {
    std::string_view property;      // of the address book
    std::size_t entry = 0;          // of the property, when it is a list
    int preference = kNotPreferred; // 1 is the most preferred
    std::string group;
    std::string source;        // the vCard property's name in upper case
    std::vector<Param> params; // that no property holds
    std::string asRead;        // the value as it was read, when it will be written otherwise; else empty
};

// The label of an entry: [groupLabel] if there is one, else what the TYPE words say, else that of [rule]. The
// line's preference and all parameters that the label does not say go to [addition].
std::string takeLabel(const ContentLine& line, const Rule& rule, const std::optional<std::string>& groupLabel,
                      Addition& addition);

// The label of a relation, likewise.
std::string takeRelation(const ContentLine& line, const Rule& rule,
                         const std::optional<std::string>& groupLabel, Addition& addition);

// Marks each list's primary entry: the first of those with the best preference. The others keep theirs as a
// parameter.
void setPrimaries(std::vector<Addition>& additions, Card& card);

// Takes "pref" and PREF=1 out of parameters, and PREF=n when it is to be [any].
void dropPreference(std::vector<Param>& params, bool any);

// The additions as stored lines, each with the line that it belongs to, in the order in which those are
// written. [groups] are those, in upper case, that unknown lines belong to.
std::vector<std::string> additionLines(const std::vector<Addition>& additions, const Card& card,
                                       const std::set<std::string>& groups, GroupNames& groupNames);

} // namespace addressbook::vcard

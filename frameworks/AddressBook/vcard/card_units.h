#pragma once

// A card in units, by which two cards are compared: what one property, one entry of a list, one member or one
// unknown line is written as.

#include "frameworks/AddressBook/vcard/card_lines.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

struct Unit {
    std::string_view property;   // as in Origin; kUnknownLines for an unknown line
    std::size_t entry = 0;       // as in Origin
    std::string text;            // what is written, without groups: equal for equal contents
    std::vector<CardLine> lines; // prepared for writing; none for categories and unknown lines
    std::string stored;          // the line itself, of an unknown line
};

// Returns the units of a card in the order in which they are written. The UID is none of them: it says which card it
// is, not what it says.
std::vector<Unit> unitsOf(const Card& card, WrittenVersion version);

// Whether two cards say the same. The order of unknown lines does not count.
bool saySame(const std::vector<Unit>& left, const std::vector<Unit>& right);

// Returns for each of the units [now] the index of the equal one in [before], or kNew. No unit of [before] is given
// twice.
inline constexpr std::size_t kNew = static_cast<std::size_t>(-1);
std::vector<std::size_t> matchUnits(const std::vector<Unit>& before, const std::vector<Unit>& now);

} // namespace addressbook::vcard

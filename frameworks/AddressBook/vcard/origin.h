#pragma once

// Where each line of a card's text went when it was read.

#include <cstddef>
#include <string>
#include <string_view>

namespace addressbook::vcard {

// Stand for the members of a group and the categories of a person where a property is named.
inline constexpr std::string_view kMemberUnit = "MEMBER";
inline constexpr std::string_view kCategoriesUnit = "CATEGORIES";

enum class Went {
    nowhere, // the address book has that itself, or it could not be read
    value,   // into the entry of a property; into that of no name: FN
    label,   // it is a label or a country code of the entry in the same group
    unknown, // it is one of the card's unknown lines
};

struct Origin {
    std::size_t line = 0; // the number of its first line in the text, from 1
    std::string group;    // as written; may be empty
    std::string name;     // as written
    Went went = Went::nowhere;
    std::string_view property = {};
    std::size_t entry = 0; // index of the entry, the member or the unknown line, where there are several
};

} // namespace addressbook::vcard

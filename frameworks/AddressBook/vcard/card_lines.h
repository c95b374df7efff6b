#pragma once

// The property lines that say what the address book knows of a card, before unknown lines join them.

#include "frameworks/AddressBook/vcard/vcard.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

// One property line to be written.
struct CardLine {
    std::string name;
    std::string params;        // each with its ';' before
    std::string value;         // escaped
    std::string_view property; // of the address book
    std::size_t entry = 0;     // of the property, when it is a list
    std::string label;         // goes into an X-ABLabel of the same group; may be empty
    std::string country;       // goes into an X-ABADR of the same group; may be empty
    std::string group;         // asked for by unknown lines that belong to this one; may be empty
};

// The lines of [card] in their order, without BEGIN, VERSION, UID, unknown lines and END.
std::vector<CardLine> cardLines(const Card& card);

// A stored line that begins with this character is no line of its own: it has the parameters that no property
// holds (and the group of unknown lines) of the line with the same name and value.
inline constexpr char kAddition = '+';

// What an addition repeats of the line it belongs to, to find it again: the value, but nothing of a picture.
std::string_view matchedValue(const CardLine& line);

// Gives the groups of a card the names item1, item2 and so on, in the order in which they are asked for.
class GroupNames {
  public:
    // The new name of [group]; the same for the same group in any letter case, empty for none.
    std::string renamed(const std::string& group);
    // A name for a group that had none.
    std::string fresh();

  private:
    std::map<std::string, std::string> names_;
    int last_ = 0;
};

} // namespace addressbook::vcard

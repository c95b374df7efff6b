#pragma once

// The property lines that say what the address book knows of a card, before unknown lines join them.

#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/rules.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

// One property line to be written, as version 3.0 has it.
struct CardLine {
    const Rule* rule = nullptr; // none: a line of a group's card
    std::string name;
    std::vector<std::string_view> types; // that say the label
    std::string params;                  // others, each with its ';' before
    std::string value;                   // escaped
    std::string_view property;           // of the address book
    std::size_t entry = 0;               // of the property, when it is a list
    bool preferred = false;              // the primary entry, and not only for being the first
    std::optional<std::string> label;    // goes into an X-ABLabel of the same group
    std::string country;                 // goes into an X-ABADR of the same group; may be empty
    std::vector<Param> extra;            // that no property holds
    std::string group;                   // asked for by unknown lines that belong to this one; may be empty
};

// The lines of [card] in their order, without BEGIN, VERSION, UID, CATEGORIES, unknown lines and END.
// [pictures] may be false where their data is of no interest: it stays out of their lines.
std::vector<CardLine> cardLines(const Card& card, bool pictures = true);

// A stored line that begins with this character is no line of its own: it has what no property holds of the
// line with the same name and value, which are those of version 3.0: parameters, the group of unknown lines
// and in kAsRead the value in the form in which it was read.
inline constexpr char kAddition = '+';
inline constexpr std::string_view kAsRead = "AS-READ";

// What an addition repeats of the line it belongs to, to find it again: the value, but nothing of a picture.
std::string_view matchedValue(const CardLine& line);

// The name that [card]'s names make.
std::string shownName(const Card& card);

// The address of a name at a messaging service: "skype:ida".
std::string messagingUri(std::string_view service, std::string_view user);

// Gives the groups of a card the names item1, item2 and so on, in the order in which they are asked for;
// groups that programs named otherwise keep their names.
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

#pragma once

// The property lines for the values of a card, before its unknown lines are added.

#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/rules.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

// One property line to be written, in the form of version 3.0.
struct CardLine {
    const Rule* rule = nullptr; // none: a line of a group's card
    std::string name;
    std::vector<std::string_view> types; // the TYPE words for the label
    std::string params;                  // other parameters, each preceded by ';'
    std::string value;                   // escaped
    std::string_view property;           // the address book's property
    std::size_t entry = 0;               // index of the entry, when the property is a list
    bool preferred = false;              // the primary entry, and not only for being the first
    std::optional<std::string> label;    // goes into an X-ABLabel of the same group
    std::optional<std::string> ownLabel; // does so where its group has an unknown one, too
    std::string country;                 // goes into an X-ABADR of the same group; may be empty
    std::vector<Param> extra;            // parameters that no property holds
    std::string group;                   // the group of unknown lines that belong to this one; may be empty
};

// Returns the lines of [card] in order, without BEGIN, VERSION, UID, CATEGORIES, unknown lines and END.
// Without [pictures], their data is left out of their lines.
std::vector<CardLine> cardLines(const Card& card, bool pictures = true);

// A stored line that begins with this character is an addition to the line with the same name and value (in
// the form of version 3.0). It has what no property holds: parameters, the group of unknown lines, and in
// kAsRead, which is the last, the value in the form in which it was read.
inline constexpr char kAddition = '+';
inline constexpr std::string_view kAsRead = "AS-READ";

// Returns the value by which an addition is matched with its line; empty for a picture.
std::string_view matchedValue(const CardLine& line);

// Returns the name to show, made of [card]'s names.
std::string shownName(const Card& card);

// Whether a messaging service is named by the scheme of its addresses alone, as "matrix" is.
bool isNamedByScheme(std::string_view service);

// Returns the URI of a user of a messaging service: "skype:ida".
std::string messagingUri(std::string_view service, std::string_view user);

// Names the groups of a card item1, item2 and so on, in the order of the calls. Groups with names of another
// form keep them.
class GroupNames {
  public:
    // Returns the new name of [group], which does not depend on its letter case; empty for no group.
    std::string renamed(const std::string& group);
    // Returns a name for a new group.
    std::string fresh();
    // Never gives [name] to a new group.
    void take(const std::string& name);
    // Makes [name] the new name of [group].
    void rename(const std::string& group, const std::string& name);

  private:
    std::map<std::string, std::string> names_;
    std::set<std::string> taken_; // in upper case
    int last_ = 0;
};

} // namespace addressbook::vcard

#pragma once

// Writing the lines of a card one by one: for a whole card (write.cpp), and into the text of one (edit_card.cpp).

#include "frameworks/AddressBook/vcard/card_lines.h"
#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/vcard.h"
#include "frameworks/AddressBook/vcard/version4.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

// How a stored line of a member that is not in the address book begins.
inline constexpr std::string_view kMember = "X-ADDRESSBOOKSERVER-MEMBER:";

// Whether [stored] is the line of such a member: a group's, as a person has none.
bool isMemberLine(const Card& card, std::string_view stored);

// Returns the lines that are kept in a kUnknownLines, additions among them.
std::vector<std::string> storedLines(const Value& value);

// Returns the kUnknownLines of a card; no value when it has none.
const Value& unknownLinesOf(const Card& card);

// Returns the parts of a stored line.
std::optional<ContentLine> parseStored(std::string text);

// Returns the lines for the values of a card and for its members, with what was kept of the lines that they were
// read from.
std::vector<CardLine> linesWithAdditions(const Card& card);

// Returns the stored lines of a card that are no addition and no member.
std::vector<std::string> linesOfNoProperty(const Card& card);

// Returns the line of a card's categories, empty when it has none; and that of a record's unique id.
std::string categoriesLine(const Card& card);
std::string uidLine(std::string_view uid, WrittenVersion version);

// Writes lines in the form of a version, folded.
class LineWriter {
  public:
    explicit LineWriter(WrittenVersion version) : version_(version) {}

    // Makes the lines of a card what they are in this version and card.
    void prepare(std::vector<CardLine>& lines);
    // Returns a prepared line without its group.
    std::string text(const CardLine& line) const;

    // Adds a prepared line, with its label and country.
    void add(const CardLine& line);
    // Adds a line that no property holds.
    void addStored(const std::string& stored);
    // Adds a line as it is.
    void append(std::string_view line, const std::string& group = {});

    // Returns what was added since the last call.
    std::string take();

    GroupNames& groups() { return groups_; }

  private:
    void prepare(CardLine& line);
    bool isTakenByLast(const ContentLine& line) const;

    WrittenVersion version_;
    std::string out_;
    std::size_t last_ = 0; // where in out_ the last line begins
    GroupNames groups_;
    std::map<std::string, std::optional<std::string>> firstInGroup_; // the label of a group's first line
    std::map<std::string_view, bool> preferred_; // property -> a preferred entry is written
    OnlyLines onlyLines_;                        // of version 4.0
};

} // namespace addressbook::vcard

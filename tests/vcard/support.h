#pragma once

// What the tests of vCards share: reading a text, and values as one line of text to compare with.

#include "frameworks/AddressBook/vcard/vcard.h"

#include <string>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

struct ReadResult {
    std::vector<Card> cards;
    std::vector<Problem> problems;
};

ReadResult readAll(std::string_view data);

// The one card of [data]; fails the test when there is not exactly one, or a problem.
Card readOne(std::string_view data);

// A card made of these lines, each ended by CRLF, with BEGIN, the version and END around them.
std::string cardText(const std::vector<std::string>& lines, const std::string& version = "3.0");

// A value as text: "a", 1, 1980-03-22, 3 bytes, {Key=value}, [Label:value Label*:value], where * marks the
// primary entry.
std::string describe(const Value& value);

// The property of the card, described; "-" when it is not set.
std::string describe(const Card& card, std::string_view property);

// The card's unknown lines.
std::vector<std::string> unknownLines(const Card& card);

// The lines of a written card, unfolded, without BEGIN, VERSION and END.
std::vector<std::string> linesOf(const std::string& written);

// Whether two cards say the same, identifiers of entries aside.
bool sameContents(Card left, Card right);

} // namespace addressbook::vcard

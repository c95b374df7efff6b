#pragma once

// Support for the tests of vCards: reading a text, and values as a line of text.

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

// Returns the only card in [data]; fails the test when there is not exactly one, or when there is a problem.
Card readOne(std::string_view data);

// Returns a card with these lines, each ended by CRLF, and with BEGIN, VERSION and END.
std::string cardText(const std::vector<std::string>& lines, const std::string& version = "3.0");

// Returns a value as text: "a", 1, 1980-03-22, 3 bytes, {Key=value}, [Label:value Label*:value], where *
// marks the primary entry.
std::string describe(const Value& value);

// Returns a property of the card as text; "-" when it is not set.
std::string describe(const Card& card, std::string_view property);

// Returns the card's unknown lines.
std::vector<std::string> unknownLines(const Card& card);

// The lines of a written card, unfolded, without BEGIN, VERSION and END.
std::vector<std::string> linesOf(const std::string& written);

// Whether two cards have the same contents, apart from the identifiers of entries.
bool sameContents(Card left, Card right);

} // namespace addressbook::vcard

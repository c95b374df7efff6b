#pragma once

// The differences between versions 4.0 and 3.0. The address book keeps lines in the form of 3.0.

#include "frameworks/AddressBook/vcard/card_lines.h"
#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace addressbook::vcard {

// The names of the lines in a card of which version 4.0 allows no second.
using OnlyLines = std::set<std::string, std::less<>>;

// Notes that no line may be an ANNIVERSARY, when one of the card's is there twice: the other one would have another name,
// and be read as what other programs write, a copy of the first.
void keepRepeatedDays(const std::vector<CardLine>& lines, OnlyLines& written);

// Converts a line of a value to version 4.0. [written] are those of the card so far.
void toVersion4(CardLine& line, OnlyLines& written);

// A line as the value of another (X-ODD-LINE), where readers would refuse it or take it for something else. Makes it one,
// and takes it out again where it is of a kind that is put into one in that version: END:VCARD stays inside, and BDAY in 3.0.
bool isOddLine(const ContentLine& line);
void toOddLine(ContentLine& line);
void fromOddLine(ContentLine& line, WrittenVersion version);

// Convert a line that no property holds to version 4.0, and back.
void toVersion4(ContentLine& line, OnlyLines& written);
void fromVersion4(ContentLine& line);

} // namespace addressbook::vcard

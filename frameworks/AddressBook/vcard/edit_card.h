#pragma once

// Changing a card's text where its contents changed, for servers that others write to as well: what this address book
// does not understand, or has not changed, is for them as it was.

#include "frameworks/AddressBook/vcard/vcard.h"

#include <string>
#include <string_view>

namespace addressbook::vcard {

// Returns [text], which is one card, with the contents of [card]. Only the lines of what differs from what the text
// reads as are changed; all others stay byte for byte, folding, order and parameters, REV and PRODID among them. The
// text keeps its version; one of version 2.1 is written anew in 3.0 when anything differs, and so is a text that is no
// card. The text's UID stays; it gets that of [card] when it has none.
//
// The result reads as [card], but where no text can: a second TITLE is an unknown line, and becomes the title when the
// first is removed. Whoever keeps records in step takes what the result reads as, or would write it for ever.
std::string editCard(std::string_view text, const Card& card);

// Whether two cards say the same but for the UID: whether editCard() would leave the one's text as it is for the other.
// The identifiers of entries, the order of members and categories, and what is no vCard's, do not count.
bool sayTheSame(const Card& left, const Card& right);

} // namespace addressbook::vcard

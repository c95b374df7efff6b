#pragma once

// The table of vCard properties and the address book's properties, by which cards are read and written.

#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/vcard/labels.h"

#include <span>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

// The form of a vCard property's value.
enum class Shape {
    name,           // N: last, first, middle, title, suffix
    phoneticName,   // SOUND;X-IRMC-N: last and first, phonetically
    organization,   // ORG: organization and department
    text,           // one text
    texts,          // a list of texts with labels
    telephones,     // a list of texts whose labels TYPE words can say
    links,          // a list of texts, without "mailto:"
    uris,           // a list of URIs, which are not escaped
    addresses,      // ADR
    day,            // one date
    days,           // a list of dates
    messaging,      // IMPP: five services have a property each, all others share one
    messagingNames, // a name at a service, which the row's label column names
    profiles,       // X-SOCIALPROFILE
    relations,      // RELATED of version 4.0
    picture,        // PHOTO
    company,        // X-ABShowAs
    nameOrder,      // X-ABOrder
    addressBookUid, // X-ABUID
    uid,            // UID
    kind,           // KIND
    member,         // MEMBER of a group
    categories,     // CATEGORIES
    label,          // X-ABLabel of an entry in the same group
    country,        // X-ABADR: the country code of the address in the same group
    fullName,       // FN
    derived         // ignored: the address book has or makes this itself
};

// A row of the table.
struct Rule {
    std::string_view name; // upper case
    Shape shape;
    std::string_view property; // the address book's property; empty when the shape implies it
    std::string_view label;    // the label of an entry without one
    Use use = Use::written;
    std::string_view spelling = {}; // as written, when that is not upper case
};

// Returns the label of an entry whose line has none; it is not written.
std::string_view defaultLabel(const Rule& rule);

// Returns the TYPE words for [label]; none for the default label, and when it can only be written as
// X-ABLabel.
std::vector<std::string_view> writtenTypes(const Rule& rule, std::string_view label);

// Returns the kind of entries that decides the meaning of TYPE words.
Entries entriesOf(const Rule& rule);

// Returns the table, in the order in which a card is written.
std::span<const Rule> rules();

// Returns the row of a vCard property; null when there is none. [upperName] is its name in upper case.
const Rule* ruleFor(std::string_view upperName);

// A messaging service: its name in X-SERVICE-TYPE, the scheme of its URIs, and its property in the address
// book (empty: the one that all other services share).
struct MessagingService {
    std::string_view name, scheme, property;
};
std::span<const MessagingService> messagingServices();

} // namespace addressbook::vcard

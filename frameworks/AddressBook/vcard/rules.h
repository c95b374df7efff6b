#pragma once

// Which vCard property holds which property of the address book: the one table from which cards are read and
// written.

#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/vcard/labels.h"

#include <span>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

// How a vCard property holds its value.
enum class Shape {
    name,           // N: last, first, middle, title, suffix
    phoneticName,   // SOUND;X-IRMC-N: last and first, phonetically
    organization,   // ORG: organization and department
    text,           // one text
    texts,          // a list of texts with labels
    telephones,     // a list of texts whose labels TYPE words can say
    links,          // a list of texts from which "mailto:" is taken away
    uris,           // a list of addresses, which are not escaped
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
    derived         // says nothing that the address book does not know or make itself
};

struct Rule {
    std::string_view name; // upper case
    Shape shape;
    std::string_view property; // of the address book; empty when the shape knows
    std::string_view label;    // of an entry that names none
    Use use = Use::written;
    std::string_view spelling = {}; // as written, when that is not upper case
};

// The label of an entry whose line says nothing about it: it is written as nothing.
std::string_view defaultLabel(const Rule& rule);

// The TYPE words by which [label] is written; none when only X-ABLabel can say it, and for the default label.
std::vector<std::string_view> writtenTypes(const Rule& rule, std::string_view label);

// What TYPE words of such lines can say.
Entries entriesOf(const Rule& rule);

// The table, in the order in which a card is written.
std::span<const Rule> rules();

// The row of a property; null when there is none. [upperName] is the name in upper case.
const Rule* ruleFor(std::string_view upperName);

// A messaging service: its name in X-SERVICE-TYPE, the scheme of its addresses, the property that holds its
// names (empty: the one that all others share).
struct MessagingService {
    std::string_view name, scheme, property;
};
std::span<const MessagingService> messagingServices();

} // namespace addressbook::vcard

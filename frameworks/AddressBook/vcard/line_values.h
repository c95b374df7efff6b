#pragma once

// The values of single property lines. Functions named "take" remove from the line the parameters that they
// understand; the caller has to preserve the others.

#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/rules.h"

#include "frameworks/AddressBook/values/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace addressbook::vcard {

// Returns "scheme" of "scheme:rest" if it looks like one, else empty text.
std::string_view schemeOf(std::string_view uri);

// Returns one text, without "tel:" or "mailto:" where the rule says so; no value when it is blank.
Value takeText(const Rule& rule, ContentLine& line);

// Returns the date, without the year when a parameter says that it is omitted.
std::optional<FloatingDate> takeDay(ContentLine& line);

// Returns the base64 text of a picture: declared as such, in a data URI, or undeclared and no URI. Nothing
// when the line is the URI of a picture elsewhere.
std::optional<std::string> pictureData(const ContentLine& line);

// Whether a line that should have a day on purpose has less, or text: a year, a month, a time, VALUE=text.
bool saysLessThanADay(const ContentLine& line);

// Returns the fields of an address that are not empty. Post-office box and extended address become lines of
// the street.
Dictionary addressFields(const ContentLine& line);

// Whether a property is that of one messaging service.
bool isMessaging(std::string_view property);

// Returns the value for a user of a messaging service, and sets [property] to the property that has it.
Value messagingValue(std::string_view service, std::string user, std::string_view& property);
// Like messagingValue(), for a line. Also sets [asRead] to the URI when it differs from the one that will be
// written.
Value takeMessaging(ContentLine& line, std::string_view& property, std::string& asRead);

// Returns a profile of a social service.
Value takeProfile(ContentLine& line);

} // namespace addressbook::vcard

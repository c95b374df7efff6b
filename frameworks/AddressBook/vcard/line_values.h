#pragma once

// The values that single property lines hold. A function named "take" removes the parameters that it
// understands from the line; what is left of them has to be kept otherwise.

#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/rules.h"

#include "frameworks/AddressBook/values/value.h"

#include <optional>
#include <string>
#include <string_view>

namespace addressbook::vcard {

// "scheme" of "scheme:rest" when it looks like one, else empty.
std::string_view schemeOf(std::string_view uri);

// One text, without "tel:" or "mailto:" where the rule says so; no value when it is blank.
Value takeText(const Rule& rule, ContentLine& line);

// The date, its year left out when a parameter says so.
std::optional<Date> takeDay(ContentLine& line);

// The base64 text of a picture: declared as such, in a data URI, or undeclared and no address. Nothing when
// the line only says where the picture is.
std::optional<std::string> pictureData(const ContentLine& line);

// Whether a property that should hold a day holds what is less than a day or text on purpose: a year, a
// month, a time, VALUE=text.
bool saysLessThanADay(const ContentLine& line);

// The fields of an address that have a text; post-office box and extended address are lines of the street.
Dictionary addressFields(const ContentLine& line);

// Whether a property of the address book holds names at one messaging service.
bool isMessaging(std::string_view property);

// A name at a messaging service; [property] becomes the property of the address book that holds it.
Value messagingValue(std::string_view service, std::string user, std::string_view& property);
// Also sets [asRead] to the address when it is not the one that will be written for the name.
Value takeMessaging(ContentLine& line, std::string_view& property, std::string& asRead);

// A profile at a social service.
Value takeProfile(ContentLine& line);

} // namespace addressbook::vcard

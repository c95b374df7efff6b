#pragma once

// The parts of a name that a card gives only as a whole (FN without N).

#include <string>
#include <string_view>

namespace addressbook::vcard {

struct NameParts {
    std::string title, first, last, suffix;
};

// Returns the parts of a full name: in "Dr. Ida Maria von der Heide" a title, first names, and as the family
// name the last word with the particles before it. A comma follows the family name ("Berg, Ida"), unless a
// suffix follows the comma ("Ida Berg, PhD"). A single word is a first name, or after a title a family name.
NameParts splitFullName(std::string_view name);

} // namespace addressbook::vcard

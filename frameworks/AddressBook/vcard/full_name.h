#pragma once

// The parts of a name that a card gives only as a whole (FN without N).

#include <string>
#include <string_view>

namespace addressbook::vcard {

struct NameParts {
    std::string title, first, last, suffix;
};

// Takes a full name apart: "Dr. Ida Maria von der Heide" has a title, the last word is the family name, with
// the particles before it. A comma follows the family name ("Berg, Ida") unless a suffix follows the comma
// ("Ida Berg, PhD"). A single word is a first name, behind a title a family name.
NameParts splitFullName(std::string_view name);

} // namespace addressbook::vcard

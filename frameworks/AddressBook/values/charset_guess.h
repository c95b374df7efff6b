#pragma once

// Guesses the character set of text that names none and is no Unicode: older programs wrote that of their
// system.

#include <string>
#include <string_view>

namespace addressbook {

// Returns the name of the most likely character set of text that is ASCII in part. Where none is likely, as in
// a name or two, it is "windows-1252", which has all of ISO-8859-1. Lines in ASCII alone are not looked at.
std::string likelyCharset(std::string_view text);

} // namespace addressbook

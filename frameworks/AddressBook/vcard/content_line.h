#pragma once

// The third layer: one property line taken apart into group, name, parameters and decoded text, and put
// together again.

#include "frameworks/AddressBook/vcard/unfold.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::vcard {

// A parameter. Those that version 2.1 writes without a name have the name they have in 3.0.
struct Param {
    std::string name; // upper case
    std::vector<std::string> values;
};

struct ContentLine {
    std::string group;         // as written; may be empty
    std::string name;          // as written
    std::string key;           // the name in upper case
    std::vector<Param> params; // without CHARSET and the transfer encoding
    std::string value;         // UTF-8, still escaped; with Transfer::base64 the base64 text
    Transfer transfer = Transfer::none;
    std::size_t number = 0; // of the line in the file

    // The first value of the parameter [upperName]; empty when there is none.
    std::string_view param(std::string_view upperName) const;
    // The text with backslashes taken away.
    std::string text() const;
    // The text's components, each with backslashes and surrounding white space taken away, at most [most].
    std::vector<std::string> components(std::size_t most) const;
};

// Whether [name] is one that the standards allow. Programs write others as well: with blanks, dots, slashes.
bool isPlainName(std::string_view name);

// Takes [line] apart; nothing when it is no property line.
std::optional<ContentLine> parseContentLine(const PropertyLine& line);

// Parameters as version 3.0 writes them, each with its ';' before.
std::string renderParams(const std::vector<Param>& params);

// The value as version 3.0 writes it.
std::string renderValue(const ContentLine& line);

// The whole line as version 3.0 writes it, unfolded.
std::string render(const ContentLine& line);

// The start of a line in quotes, for a message.
std::string excerpt(std::string_view line);

// Appends [line] to [out], folded at 75 bytes but inside no character, with its line end.
void appendFolded(std::string& out, std::string_view line);

} // namespace addressbook::vcard

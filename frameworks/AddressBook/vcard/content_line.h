#pragma once

// The third layer: parsing a property line into group, name, parameters and decoded value, and writing it.

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
    std::string value;         // UTF-8, still escaped; with Transfer::base64 the base64 text, if it is any
    Transfer transfer = Transfer::none;
    std::size_t number = 0; // of the line in the file
    bool raw = false; // value is not UTF-8 yet, but bytes in a character set that the line does not name

    // Returns the first value of the parameter [upperName]; empty when there is none.
    std::string_view param(std::string_view upperName) const;
    // Returns the value as text, unescaped.
    std::string text() const;
    // Returns the value's components, unescaped and without surrounding white space, at most [most].
    std::vector<std::string> components(std::size_t most) const;
};

// Whether the standards allow [name]. Programs write others as well, with blanks, dots and slashes.
bool isPlainName(std::string_view name);

// Returns the parts of [line]; nothing when it is no property line. [charset] is that of lines that name none;
// when it is empty, what they have beyond ASCII stays raw.
std::optional<ContentLine> parseContentLine(const PropertyLine& line, const std::string& charset = {});

// Whether the text ends with a backslash that is not itself escaped.
bool endsWithBackslash(std::string_view text);

// Whether a line's property is one whose text programs break into lines without folding them.
bool takesLooseLines(const ContentLine& line);

// Whether readers take a [line] behind [before] for more of its text, which may have a colon in it.
bool isTakenBy(const ContentLine& before, const ContentLine& line);

// Returns parameters in the form of version 3.0, each preceded by ';'.
std::string renderParams(const std::vector<Param>& params);

// Returns the value in the form of version 3.0.
std::string renderValue(const ContentLine& line);

// Returns the whole line in the form of version 3.0, unfolded.
std::string render(const ContentLine& line);

// Returns the start of a line in quotes, for a message.
std::string excerpt(std::string_view line);

// Appends [line] to [out] with a line end, folded at 75 bytes without splitting a character.
void appendFolded(std::string& out, std::string_view line);

} // namespace addressbook::vcard

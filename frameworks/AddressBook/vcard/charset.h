#pragma once

// The character set of text that names none and is no UTF-8: older programs wrote that of their system.

#include <iosfwd>
#include <string>
#include <string_view>

namespace addressbook::vcard {

// Whether a character set of this name can be read.
bool isKnownCharset(const std::string& name);

// Collects lines of a file that are no UTF-8, and guesses what they are.
class CharsetSample {
  public:
    // Adds the value of a line, if it is no UTF-8 and there are not enough of them yet.
    void add(std::string_view line);
    bool empty() const { return bytes_.empty(); }
    // Returns the name of the most likely character set, as likelyCharset() does.
    std::string guess() const;

  private:
    std::string bytes_;
};

// Guesses from all lines of [input], which it reads to the end; empty when all is UTF-8 or UTF-16.
std::string guessCharset(std::istream& input);

} // namespace addressbook::vcard

#pragma once

// The second layer of reading: joins lines of the file to property lines: folds, the soft line breaks of
// quoted-printable values, and blocks of base64 data.

#include "frameworks/AddressBook/vcard/text_source.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace addressbook::vcard {

// The most bytes before the ':' of a property line; no real card has as many.
inline constexpr std::size_t kMaxHeader = std::size_t{64} * 1024;

// The transfer encoding of a value, as declared by its parameters.
enum class Transfer { none, quotedPrintable, base64 };

// One property line, joined; never blank.
struct PropertyLine {
    std::string text;
    std::size_t number = 0;   // of its first line in the file, from 1
    bool utf8 = false;        // see TextLine
    bool tooLong = false;     // kMaxCardBytes or more; text has only the start
    bool ended = true;        // see TextLine
    bool continued = false;   // begins with white space, but there is no line before to continue
    std::size_t physical = 0; // the number of lines of the file
};

// Returns the position of the ':' that ends the name and the parameters; npos when there is none.
std::size_t headerEnd(std::string_view line);

// Returns the encoding that the parameters in [header] (up to the ':') declare.
Transfer declaredTransfer(std::string_view header);

// Whether [line] is "BEGIN:VCARD", or "END:VCARD", in any letter case.
bool isBegin(std::string_view line);
bool isEnd(std::string_view line);

// Reads property lines. Not thread-safe.
class LineReader {
  public:
    explicit LineReader(TextSource source) : source_(std::move(source)) {}

    // Reads the next line that is not blank into [line]; returns false at the end.
    bool next(PropertyLine& line);

    // See TextSource.
    std::string_view ahead() const { return source_.ahead(); }
    std::size_t bytesRead() const { return source_.bytesRead(); }
    // Returns the number of the last line of the file that was read.
    std::size_t lastLine() const { return last_; }

  private:
    bool joins(Transfer transfer) const;
    bool peek();

    TextSource source_;
    TextLine ahead_; // a line that was read, but is not part of a property line yet
    bool hasAhead_ = false;
    bool version21_ = false;
    std::size_t last_ = 0;
};

} // namespace addressbook::vcard

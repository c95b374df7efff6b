#pragma once

// The second layer of reading: lines of the file into whole property lines, with the folds, the soft line
// breaks of quoted-printable values and the blocks of base64 data joined.

#include "frameworks/AddressBook/vcard/text_source.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace addressbook::vcard {

// What precedes the ':' of a property line is not longer than this in any real card.
inline constexpr std::size_t kMaxHeader = std::size_t{64} * 1024;

// How a property's value is encoded, as its parameters say.
enum class Transfer { none, quotedPrintable, base64 };

// One property line, joined; never blank.
struct PropertyLine {
    std::string text;
    std::size_t number = 0;   // of its first line in the file, from 1
    bool utf8 = false;        // see TextLine
    bool tooLong = false;     // kMaxCardBytes or more; text holds its start
    bool ended = true;        // see TextLine
    bool continued = false;   // begins with white space, with no line before that it could continue
    std::size_t physical = 0; // lines of the file it is made of
};

// Where the ':' is that ends the name and the parameters, in quotes or not; npos when there is none.
std::size_t headerEnd(std::string_view line);

// The encoding that the parameters in [header] (up to the ':') declare.
Transfer declaredTransfer(std::string_view header);

// Whether [line] is "BEGIN:VCARD", or "END:VCARD", in any letter case.
bool isBegin(std::string_view line);
bool isEnd(std::string_view line);

class LineReader {
  public:
    explicit LineReader(TextSource source) : source_(std::move(source)) {}

    // Reads the next line that is not blank into [line]; false at the end.
    bool next(PropertyLine& line);

    std::size_t bytesRead() const { return source_.bytesRead(); }
    // The number of the last line of the file that was read.
    std::size_t lastLine() const { return last_; }

  private:
    bool joins(Transfer transfer) const;
    bool peek();

    TextSource source_;
    TextLine ahead_; // read, but not yet part of a property line
    bool hasAhead_ = false;
    bool version21_ = false;
    std::size_t last_ = 0;
};

} // namespace addressbook::vcard

#pragma once

// The first layer of reading: splits bytes into lines. A file may mix CRLF, LF, lone CR and CR CR LF, and its
// cards may be in UTF-16 or 8-bit text in turn, as some programs encode each card separately.

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace addressbook::vcard {

// One line of the file without its line end.
struct TextLine {
    std::string text;
    std::size_t number = 0; // from 1
    bool utf8 = false;      // text is UTF-8, converted from UTF-16; otherwise the bytes of the file
    bool tooLong = false;   // kMaxCardBytes or more; text has only the start
    bool ended = true;      // ended by a line end, not by the end of the file
};

// Reads lines from a stream or from memory. Not thread-safe.
class TextSource {
  public:
    // [input] and the bytes of [data] must outlive the source.
    explicit TextSource(std::istream& input) : input_(&input) {}
    explicit TextSource(std::string_view data) : window_(data) {}

    // Reads the next line into [line]; returns false at the end.
    bool next(TextLine& line);

    // Returns what is read of the file behind the last line, as it stands in the file.
    std::string_view ahead() const { return window_; }

    // Returns the number of bytes consumed.
    std::size_t bytesRead() const { return consumed_; }

  private:
    enum class Encoding { bytes, utf16LittleEndian, utf16BigEndian };

    bool have(std::size_t count);
    void consume(std::size_t count);
    bool startsUtf16(bool bigEndian) const;
    void sniff();
    void readBytes(TextLine& line);
    void readUtf16(TextLine& line);
    char16_t unit(std::size_t index) const;

    std::istream* input_ = nullptr;
    std::string buffer_;
    std::string_view window_; // the bytes that were read and not yet consumed
    std::size_t consumed_ = 0;
    std::size_t lines_ = 0;
    Encoding encoding_ = Encoding::bytes;
};

} // namespace addressbook::vcard

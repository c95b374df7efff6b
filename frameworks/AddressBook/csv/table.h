#pragma once

// Rows of CSV, read and written as RFC 4180 says; reading takes any line ends, separators and character sets.

#include "frameworks/AddressBook/csv/decoder.h"

#include <cstddef>
#include <deque>
#include <istream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace addressbook::csv {

// A row larger than this is refused: a quote is missing somewhere.
inline constexpr std::size_t kMaxRowBytes = std::size_t{32} * 1024 * 1024;

struct Row {
    std::size_t line = 0; // where it begins in the file, from 1
    std::vector<std::string> cells;
};

// What is wrong with a whole file; what() says in which line.
class TableError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

class TableReader {
  public:
    // [input] must live as long as the reader. [charset] as Decoder takes it; [separator] 0: the one of comma,
    // semicolon, tab and bar that the first line has most of, or the one that a line "sep=;" before it names.
    TableReader(std::istream& input, const std::string& charset = "", char separator = 0);
    ~TableReader();
    TableReader(const TableReader&) = delete;
    TableReader& operator=(const TableReader&) = delete;

    // Returns the next row that is not empty; null at the end. Throws TableError.
    const Row* next();

    std::size_t bytesRead() const { return bytes_; }
    const std::string& guessedCharset() const { return decoder_.guessed(); }

  private:
    struct Parser;
    bool fill();
    std::string_view nextLine();
    void parse(std::string_view line);

    std::istream& input_;
    Decoder decoder_;
    char separator_;
    std::unique_ptr<Parser> parser_;
    std::string text_;      // decoded and not yet parsed
    std::size_t at_ = 0;    // what of it is parsed
    bool ended_ = false;    // all bytes are decoded
    bool finished_ = false; // and parsed
    std::size_t bytes_ = 0, line_ = 0;
    std::deque<Row> rows_;
    Row row_;
};

// Returns a row with its line end.
std::string line(const std::vector<std::string>& cells);

} // namespace addressbook::csv

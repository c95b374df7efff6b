#include "frameworks/AddressBook/csv/table.h"

#include <csv.h>

#include <algorithm>
#include <array>

namespace addressbook::csv {
namespace {

constexpr std::size_t kChunk = std::size_t{64} * 1024;
constexpr std::array kSeparators{',', ';', '\t', '|'};

// The separator of which the first line has most outside of quotes.
char guessSeparator(std::string_view line) {
    std::array<std::size_t, kSeparators.size()> counts{};
    bool quoted = false;
    for (const char c : line) {
        quoted = quoted != (c == '"');
        const auto* found = std::find(kSeparators.begin(), kSeparators.end(), c);
        if (!quoted && found != kSeparators.end()) {
            ++counts[static_cast<std::size_t>(found - kSeparators.begin())];
        }
    }
    return kSeparators[static_cast<std::size_t>(std::max_element(counts.begin(), counts.end()) -
                                                counts.begin())];
}

} // namespace

struct TableReader::Parser {
    Parser(std::deque<Row>& rows, char separator) : rows_(rows) {
        // Spaces belong to the cells.
        csv_init(&state_, 0);
        csv_set_space_func(&state_, [](unsigned char) { return 0; });
        csv_set_delim(&state_, static_cast<unsigned char>(separator));
    }
    ~Parser() { csv_free(&state_); }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    // [line] is its number.
    void parse(std::string_view text, std::size_t line) {
        line_ = line;
        if (open_.line == 0) {
            open_.line = line;
        }
        if (csv_parse(&state_, text.data(), text.size(), takeCell, takeRow, this) != text.size()) {
            throw TableError("line " + std::to_string(open_.line) + ": out of memory");
        }
        bytes_ += text.size();
        if (bytes_ > kMaxRowBytes) {
            throw TableError("line " + std::to_string(open_.line) +
                             ": this row does not end; is a closing quotation mark missing?");
        }
        if (open_.cells.empty() && state_.entry_pos == 0 && state_.quoted == 0) {
            open_.line = 0; // nothing of a row in this line
        }
    }
    void finish() {
        constexpr int kInsideOfCell = 2; // libcsv's state
        if (state_.quoted != 0 && state_.pstate == kInsideOfCell) {
            throw TableError("line " + std::to_string(open_.line) +
                             ": a quotation mark is opened here and never closed");
        }
        csv_fini(&state_, takeCell, takeRow, this);
    }

  private:
    static void takeCell(void* text, std::size_t size, void* self) {
        static_cast<Parser*>(self)->open_.cells.emplace_back(static_cast<const char*>(text), size);
    }
    static void takeRow(int, void* self) {
        auto& parser = *static_cast<Parser*>(self);
        parser.bytes_ = 0;
        parser.rows_.push_back(std::move(parser.open_));
        parser.open_ = {parser.line_, {}};
    }

    std::deque<Row>& rows_;
    csv_parser state_{};
    Row open_;
    std::size_t line_ = 0, bytes_ = 0; // of the row that is open
};

TableReader::TableReader(std::istream& input, const std::string& charset, char separator)
    : input_(input), decoder_(charset), separator_(separator) {}

TableReader::~TableReader() = default;

// Decodes more; false when there is no more.
bool TableReader::fill() {
    if (ended_) {
        return false;
    }
    std::string bytes(kChunk, '\0');
    input_.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(input_.gcount()));
    ended_ = !input_;
    bytes_ += bytes.size();
    text_.erase(0, at_);
    at_ = 0;
    text_ += decoder_.decode(bytes, ended_);
    return true;
}

// The next line with its end; empty when there is none.
std::string_view TableReader::nextLine() {
    std::size_t searched = at_;
    for (;;) {
        const std::size_t end = text_.find_first_of("\r\n", searched);
        // A carriage return may have its line feed in the next piece.
        if (end != std::string::npos && (text_[end] == '\n' || end + 1 < text_.size())) {
            const std::size_t length = end + (text_.compare(end, 2, "\r\n") == 0 ? 2 : 1) - at_;
            const std::string_view line(text_.data() + at_, length);
            at_ += length;
            return line;
        }
        const std::size_t known = text_.size() - at_;
        if (known > kMaxRowBytes) {
            throw TableError("line " + std::to_string(line_ + 1) + ": this line does not end");
        }
        if (!fill()) {
            const std::string_view line(text_.data() + at_, text_.size() - at_);
            at_ = text_.size();
            return line;
        }
        searched = known == 0 ? 0 : known - 1;
    }
}

void TableReader::parse(std::string_view line) {
    if (!parser_) {
        std::string_view first = line;
        while (first.ends_with('\n') || first.ends_with('\r')) {
            first.remove_suffix(1);
        }
        if (first.empty()) {
            return;
        }
        if (first.size() == 5 && first.starts_with("sep=")) {
            separator_ = separator_ == 0 ? first[4] : separator_;
            return;
        }
        parser_ = std::make_unique<Parser>(rows_, separator_ == 0 ? guessSeparator(first) : separator_);
    }
    parser_->parse(line, line_);
}

const Row* TableReader::next() {
    while (rows_.empty() && !finished_) {
        const std::string_view line = nextLine();
        if (line.empty()) {
            finished_ = true;
            if (parser_) {
                parser_->finish();
            }
        } else {
            ++line_;
            parse(line);
        }
    }
    if (rows_.empty()) {
        return nullptr;
    }
    row_ = std::move(rows_.front());
    rows_.pop_front();
    return &row_;
}

std::string line(const std::vector<std::string>& cells) {
    std::string text;
    for (const std::string& cell : cells) {
        text += text.empty() && &cell == &cells.front() ? "" : ",";
        const bool plain = cell.find_first_of(",\"\r\n") == std::string::npos && !cell.starts_with(' ') &&
                           !cell.ends_with(' ');
        if (plain) {
            text += cell;
            continue;
        }
        std::string quoted(csv_write(nullptr, 0, cell.data(), cell.size()), '\0');
        csv_write(quoted.data(), quoted.size(), cell.data(), cell.size());
        text += quoted;
    }
    return text + "\r\n";
}

} // namespace addressbook::csv

// The reader: finds the cards in a file and keeps going after a bad one.

#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/read_card.h"
#include "frameworks/AddressBook/vcard/unfold.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <utility>

namespace addressbook::vcard {

namespace {

// An excerpt of a line for a message.
std::string excerpt(std::string_view text) {
    constexpr std::size_t kMost = 40;
    std::string plain;
    for (const char byte : text.substr(0, kMost)) {
        plain += byte >= ' ' && byte < 0x7F ? byte : '?';
    }
    return '"' + plain + (text.size() > kMost ? "...\"" : "\"");
}

bool isBinary(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

// Whether the text ends with a backslash that escapes nothing.
bool endsWithBackslash(std::string_view text) {
    const std::size_t last = text.find_last_not_of('\\');
    return (text.size() - (last == std::string_view::npos ? 0 : last + 1)) % 2 == 1;
}

// Properties whose text programs break into lines without folding them.
bool takesLooseLines(const ContentLine& line) {
    if (line.transfer == Transfer::base64) {
        return false;
    }
    return line.key == "NOTE" || line.key == "LABEL" || endsWithBackslash(line.value);
}

} // namespace

struct Reader::Impl {
    explicit Impl(TextSource source) : lines(std::move(source)) {}

    std::optional<std::variant<Card, Problem>> next();
    std::optional<Problem> skipToBegin();
    std::variant<Card, Problem> readBody();
    void take(PropertyLine& line);
    bool readNested(ContentLine& agent);

    LineReader lines;
    PropertyLine current;
    bool atBegin = false; // current is a BEGIN:VCARD that no card has taken yet
    std::size_t number = 0;

    // The card being read.
    std::vector<ContentLine> content;
    std::vector<Problem> skipped;
    std::size_t size = 0;
    std::size_t begin = 0; // its first line
    std::optional<Problem> problem;
};

// Goes to the next BEGIN:VCARD. What stands before it and is no card is one problem.
std::optional<Problem> Reader::Impl::skipToBegin() {
    std::optional<Problem> stray;
    while (!atBegin && lines.next(current)) {
        if (isBegin(current.text)) {
            atBegin = true;
        } else if (!stray && !current.text.starts_with('#')) {
            stray = Problem{++number, current.number, {}};
            if (isEnd(current.text)) {
                stray->reason = "END:VCARD without BEGIN:VCARD";
            } else if (isBinary(current.text)) {
                stray->reason = "binary data, no vCard";
            } else {
                stray->reason = "no vCard begins here: " + excerpt(current.text);
            }
        }
    }
    return stray;
}

std::optional<std::variant<Card, Problem>> Reader::Impl::next() {
    if (auto stray = skipToBegin()) {
        return *std::move(stray);
    }
    if (!atBegin) {
        return std::nullopt;
    }
    atBegin = false;
    ++number;
    begin = current.number;
    content.clear();
    skipped.clear();
    problem.reset();
    size = 0;
    return readBody();
}

// Everything after BEGIN:VCARD, to the END:VCARD that belongs to it.
std::variant<Card, Problem> Reader::Impl::readBody() {
    while (lines.next(current)) {
        if (isEnd(current.text)) {
            if (problem) {
                return *std::move(problem);
            }
            auto card = readCard(std::move(content), number, begin);
            if (auto* read = std::get_if<Card>(&card)) {
                read->skipped.insert(read->skipped.begin(), skipped.begin(), skipped.end());
            }
            return card;
        }
        if (isBegin(current.text)) {
            ContentLine* last = content.empty() ? nullptr : &content.back();
            if (last && last->key == "AGENT" && trim(last->value).empty() && !problem) {
                if (readNested(*last)) {
                    continue;
                }
                break;
            }
            atBegin = true;
            if (problem) {
                return *std::move(problem);
            }
            return Problem{number, begin,
                           "no END:VCARD before the BEGIN:VCARD in line " + std::to_string(current.number)};
        }
        if (!problem) {
            take(current);
        }
    }
    if (problem) {
        return *std::move(problem);
    }
    return Problem{number, begin, "the file ends before the card's END:VCARD"};
}

// One property line into the content, or what is wrong with it.
void Reader::Impl::take(PropertyLine& line) {
    size += line.text.size();
    std::string reason;
    if (line.tooLong || size > kMaxCardBytes) {
        reason = "the card is larger than " + std::to_string(kMaxCardBytes / 1024 / 1024) + " MB";
    } else if (content.size() >= kMaxCardLines) {
        reason = "the card has more than " + std::to_string(kMaxCardLines) + " properties";
    } else if (isBinary(line.text)) {
        reason = "binary data inside the card";
    }
    if (!reason.empty()) {
        problem = Problem{number, line.number, std::move(reason)};
        content.clear();
        return;
    }
    auto parsed = line.continued ? std::nullopt : parseContentLine(line);
    if (!parsed) {
        if (line.text.starts_with('#')) {
            return;
        }
        if (content.empty() || !takesLooseLines(content.back())) {
            skipped.push_back({number, line.number, "no property: " + excerpt(line.text)});
            return;
        }
        std::string& value = content.back().value;
        if (endsWithBackslash(value)) {
            value.pop_back();
        }
        value += "\\n" + (line.utf8 ? line.text : toUtf8(line.text, {}));
        return;
    }
    if (parsed->key == "BEGIN" || parsed->key == "END") {
        problem = Problem{number, line.number, "wrong nesting: " + excerpt(line.text) + " inside the card"};
        content.clear();
        return;
    }
    content.push_back(*std::move(parsed));
    ContentLine& last = content.back();
    if (last.key == "AGENT" && isBegin(last.value) && !readNested(last)) {
        problem = Problem{number, begin, "the file ends before the card's END:VCARD"};
    }
}

// The lines of a card inside the card become the value of its AGENT property; false when the file ends first.
bool Reader::Impl::readNested(ContentLine& agent) {
    agent.value = "BEGIN:VCARD";
    int depth = 1;
    while (depth > 0) {
        if (!lines.next(current)) {
            return false;
        }
        depth += isBegin(current.text) ? 1 : isEnd(current.text) ? -1 : 0;
        size += current.text.size();
        if (current.tooLong || size > kMaxCardBytes || isBinary(current.text)) {
            problem = Problem{number, current.number, "the card inside the card is too large or binary"};
            size = 0;
            agent.value.clear();
        }
        if (!problem) {
            agent.value += "\\n" + escape(current.utf8 ? current.text : toUtf8(current.text, {}));
        }
    }
    return true;
}

Reader::Reader(std::istream& input) : impl_(std::make_unique<Impl>(TextSource(input))) {}
Reader::Reader(std::string_view data) : impl_(std::make_unique<Impl>(TextSource(data))) {}
Reader::~Reader() = default;
Reader::Reader(Reader&&) noexcept = default;
Reader& Reader::operator=(Reader&&) noexcept = default;

std::optional<std::variant<Card, Problem>> Reader::next() {
    return impl_->next();
}

std::size_t Reader::bytesRead() const {
    return impl_->lines.bytesRead();
}

} // namespace addressbook::vcard

// The reader: finds the cards in a file, and continues after a bad one.

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/charset.h"
#include "frameworks/AddressBook/vcard/content_line.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/origin.h"
#include "frameworks/AddressBook/vcard/read_card.h"
#include "frameworks/AddressBook/vcard/unfold.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <algorithm>
#include <utility>

namespace addressbook::vcard {

namespace {

bool isBinary(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

} // namespace

struct Reader::Impl {
    Impl(TextSource source, Charset given) : lines(std::move(source)), charset(std::move(given)) {}

    std::optional<std::variant<Card, Problem>> next();
    std::optional<Problem> skipToBegin();
    std::variant<Card, Problem> readBody();
    std::variant<Card, Problem> finish(const std::string& unended);
    void take(PropertyLine& line);
    void takeParsed(PropertyLine& line);
    bool readNested(ContentLine& agent);
    void leaveOut(const PropertyLine& line, const std::string& reason);
    void decode();
    std::string guess() const;

    LineReader lines;
    Charset charset;
    std::string guessed; // what cards were read in by guess
    PropertyLine current;
    bool atBegin = false; // current is a BEGIN:VCARD that no card has taken yet
    std::size_t number = 0;

    // The card being read.
    std::vector<ContentLine> content;
    std::vector<Problem> skipped;
    std::size_t size = 0;
    std::size_t begin = 0; // its first line
    bool full = false;     // it exceeds the limits, so that its rest is skipped
    std::vector<Origin>* origins = nullptr;
    std::string component; // the name of a component, such as VEVENT, while it is skipped
};

// Skips to the next BEGIN:VCARD. Anything before it that is no card becomes one Problem.
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
    size = 0;
    full = false;
    component.clear();
    return readBody();
}

// Reads everything after BEGIN:VCARD, up to its END:VCARD.
std::variant<Card, Problem> Reader::Impl::readBody() {
    while (lines.next(current)) {
        if (isEnd(current.text)) {
            return finish({});
        }
        if (isBegin(current.text)) {
            ContentLine* last = content.empty() ? nullptr : &content.back();
            if (last && last->key == "AGENT" && trim(last->value).empty() && !full) {
                if (readNested(*last)) {
                    continue;
                }
                break;
            }
            atBegin = true;
            return finish("no END:VCARD before the BEGIN:VCARD in line " + std::to_string(current.number));
        }
        if (!current.ended) {
            leaveOut(current, "cut off by the end of the file");
            break;
        }
        take(current);
    }
    return finish("the file ends before the card's END:VCARD");
}

// Returns the card that was read; [unended] says what is wrong with its end.
std::variant<Card, Problem> Reader::Impl::finish(const std::string& unended) {
    decode();
    auto card = readCard(content, number, begin, origins);
    content.clear();
    if (auto* read = std::get_if<Card>(&card)) {
        read->skipped.insert(read->skipped.begin(), skipped.begin(), skipped.end());
        std::stable_sort(read->skipped.begin(), read->skipped.end(),
                         [](const Problem& left, const Problem& right) { return left.line < right.line; });
        read->unended = unended;
        return card;
    }
    Problem& problem = std::get<Problem>(card);
    if (!unended.empty()) {
        problem.reason = unended;
    } else if (!skipped.empty()) {
        problem.line = skipped.front().line;
        problem.reason += "; " + skipped.front().reason;
    }
    return card;
}

// Values that name no character set are UTF-8 when all of the card's are.
void Reader::Impl::decode() {
    const auto isForeign = [](const ContentLine& line) { return line.raw && !looksLikeUtf8(line.value); };
    const bool foreign = std::any_of(content.begin(), content.end(), isForeign);
    if (foreign && charset.name.empty()) {
        charset = {guess(), true};
    }
    if (foreign) {
        guessed = charset.name;
    }
    for (ContentLine& line : content) {
        if (line.raw) {
            line.value = toUtf8(std::move(line.value), foreign ? charset.name : std::string());
        }
    }
}

// What the card and all that is read of the file behind it look like.
std::string Reader::Impl::guess() const {
    CharsetSample sample;
    for (const ContentLine& line : content) {
        if (line.raw) {
            sample.add(line.value);
        }
    }
    for (std::string_view rest = lines.ahead(); !rest.empty();) {
        const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
        sample.add(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return sample.guess();
}

void Reader::Impl::leaveOut(const PropertyLine& line, const std::string& reason) {
    skipped.push_back({number, line.number, reason + ": " + excerpt(line.text)});
}

// Adds a property line to the content, unless something is wrong with it.
void Reader::Impl::take(PropertyLine& line) {
    if (full) {
        return;
    }
    if (!component.empty()) {
        const std::size_t colon = line.text.find(':');
        if (equalsIgnoringCase(trim(line.text.substr(0, colon)), "END") && colon != std::string::npos &&
            equalsIgnoringCase(trim(line.text.substr(colon + 1)), component)) {
            component.clear();
        }
        return;
    }
    if (line.tooLong) {
        leaveOut(line, "a line of more than " + std::to_string(kMaxCardBytes / 1024 / 1024) + " MB");
        return;
    }
    size += line.text.size();
    if (size > kMaxCardBytes) {
        full = true;
        leaveOut(line, "the card is larger than " + std::to_string(kMaxCardBytes / 1024 / 1024) +
                           " MB; it ends here");
    } else if (content.size() >= kMaxCardLines) {
        full = true;
        leaveOut(line,
                 "the card has more than " + std::to_string(kMaxCardLines) + " properties; it ends here");
    } else if (isBinary(line.text)) {
        leaveOut(line, "binary data inside the card");
    } else {
        takeParsed(line);
    }
}

void Reader::Impl::takeParsed(PropertyLine& line) {
    const ContentLine* before = content.empty() ? nullptr : &content.back();
    const bool loose = before != nullptr && takesLooseLines(*before);
    auto parsed = line.continued ? std::nullopt
                                 : parseContentLine(line, charset.guessed ? std::string() : charset.name);
    if (parsed && before != nullptr && isTakenBy(*before, *parsed)) {
        parsed.reset();
    }
    if (!parsed) {
        if (line.text.starts_with('#')) {
            return;
        }
        if (!loose) {
            leaveOut(line, "no property");
            return;
        }
        std::string& value = content.back().value;
        if (endsWithBackslash(value)) {
            value.pop_back();
        }
        value += "\\n" + line.text;
        content.back().raw = content.back().raw || !(line.utf8 || isAscii(line.text));
        return;
    }
    if (parsed->key == "BEGIN" || parsed->key == "END") {
        leaveOut(line, "wrong nesting inside the card");
        component = parsed->key == "BEGIN" ? std::string(trim(parsed->value)) : std::string();
        return;
    }
    content.push_back(*std::move(parsed));
    ContentLine& last = content.back();
    if (last.key == "AGENT" && isBegin(last.value)) {
        readNested(last);
    }
}

// Reads a card inside the card, whose lines become the value of the AGENT property; returns false when the
// file ends first.
bool Reader::Impl::readNested(ContentLine& agent) {
    std::string value = "BEGIN:VCARD";
    bool whole = true;
    int depth = 1;
    while (depth > 0) {
        if (!lines.next(current)) {
            whole = false;
            break;
        }
        depth += isBegin(current.text) ? 1 : isEnd(current.text) ? -1 : 0;
        if (!full &&
            (current.tooLong || size + current.text.size() > kMaxCardBytes || isBinary(current.text))) {
            leaveOut(current, "the card inside the card is too large or binary");
            full = true;
        }
        if (!full) {
            size += current.text.size();
            value += "\\n" + escape(current.utf8 ? current.text : toUtf8(current.text, {}));
        }
    }
    if (full || !whole) {
        content.pop_back();
        full = false;
    } else {
        agent.value = std::move(value);
    }
    return whole;
}

Reader::Reader(std::istream& input, Charset charset)
    : impl_(std::make_unique<Impl>(TextSource(input), std::move(charset))) {}
Reader::Reader(std::string_view data, Charset charset)
    : impl_(std::make_unique<Impl>(TextSource(data), std::move(charset))) {}
Reader::~Reader() = default;
Reader::Reader(Reader&&) noexcept = default;
Reader& Reader::operator=(Reader&&) noexcept = default;

void Reader::noteOrigins(std::vector<Origin>& origins) {
    impl_->origins = &origins;
}

std::optional<std::variant<Card, Problem>> Reader::next() {
    return impl_->next();
}

const std::string& Reader::guessed() const {
    return impl_->guessed;
}

std::size_t Reader::bytesRead() const {
    return impl_->lines.bytesRead();
}

} // namespace addressbook::vcard

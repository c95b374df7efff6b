#include "frameworks/AddressBook/vcard/card_text.h"

#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/text_source.h"

#include <set>

namespace addressbook::vcard {

std::optional<CardText> CardText::read(std::string_view text) {
    CardText result;
    result.text_ = text;
    std::vector<Origin> origins;
    Reader reader(text);
    reader.noteOrigins(origins);
    auto first = reader.next();
    auto* card = first ? std::get_if<Card>(&*first) : nullptr;
    if (!card || !card->unended.empty()) {
        return std::nullopt;
    }
    const std::vector<Origin> ofFirst = origins;
    if (reader.next()) {
        return std::nullopt;
    }
    result.card_ = std::move(*card);
    result.cut(ofFirst);
    return result;
}

void CardText::cut(const std::vector<Origin>& origins) {
    std::vector<std::size_t> starts; // of the text's lines
    TextSource source(text_);
    TextLine line;
    for (std::size_t at = 0; source.next(line); at = source.bytesRead()) {
        starts.push_back(at);
    }
    const auto startOf = [&](std::size_t number) {
        return number <= starts.size() ? starts[number - 1] : text_.size();
    };
    const std::size_t last = text_.find_last_not_of("\r\n\t "); // of END:VCARD
    const std::size_t before = text_.find_last_of("\r\n", last);
    end_ = before == std::string_view::npos ? text_.size() : before + 1;

    std::set<std::size_t> boundaries{end_};
    for (const Origin& origin : origins) {
        pieces_.push_back({{}, origin});
        boundaries.insert(startOf(origin.line));
    }
    for (const Problem& problem : card_.skipped) { // stays where a line before it goes
        boundaries.insert(startOf(problem.line));
    }
    inserted_.resize(pieces_.size() + 1);
    for (std::size_t at = 0; at < pieces_.size(); ++at) {
        Piece& piece = pieces_[at];
        const std::size_t start = startOf(piece.origin.line);
        const auto next = boundaries.upper_bound(start);
        piece.bytes = text_.substr(start, (next == boundaries.end() ? end_ : *next) - start);
        if (piece.origin.went == Went::unknown) {
            piece.origin.property = property::kUnknownLines;
        }
        if (piece.origin.went == Went::unknown || piece.origin.went == Went::value) {
            lines_[{piece.origin.property, piece.origin.entry}].push_back(at);
        }
    }
}

std::string_view CardText::version() const {
    for (const Piece& piece : pieces_) {
        if (equalsIgnoringCase(piece.origin.name, "VERSION")) {
            return trim(piece.bytes.substr(piece.bytes.find(':') + 1));
        }
    }
    return {};
}

const std::vector<std::size_t>& CardText::linesOf(std::string_view property, std::size_t entry) const {
    static const std::vector<std::size_t> kNone;
    const auto found = lines_.find({property, entry});
    return found == lines_.end() ? kNone : found->second;
}

std::optional<std::size_t> CardText::firstLineOf(std::string_view property) const {
    const auto found = lines_.lower_bound({property, 0});
    return found != lines_.end() && found->first.first == property ? std::optional(found->second.front())
                                                                   : std::nullopt;
}

void CardText::insert(std::size_t at, std::string_view lines) {
    inserted_[at] += lines;
}

std::string CardText::join() const {
    const bool plain =
        text_.find('\r') == std::string_view::npos && text_.find('\n') != std::string_view::npos;
    std::string result;
    const auto add = [&](const std::string& lines) {
        for (const char byte : lines) {
            if (byte != '\r' || !plain) {
                result += byte;
            }
        }
    };
    std::size_t at = 0;
    for (std::size_t piece = 0; piece < pieces_.size(); ++piece) {
        const auto start = static_cast<std::size_t>(pieces_[piece].bytes.data() - text_.data());
        result += text_.substr(at, start - at);
        add(inserted_[piece]);
        if (!pieces_[piece].dropped) {
            result += pieces_[piece].bytes;
        }
        at = start + pieces_[piece].bytes.size();
    }
    result += text_.substr(at, end_ - at);
    add(inserted_.back());
    return result.append(text_.substr(end_));
}

} // namespace addressbook::vcard

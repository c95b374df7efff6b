#include "frameworks/AddressBook/vcard/unfold.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/vcard.h"

namespace addressbook::vcard {

namespace {

bool isBlankByte(char byte) {
    return byte == ' ' || byte == '\t';
}

std::string_view withoutTrailingBlanks(std::string_view text) {
    while (!text.empty() && isBlankByte(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

bool isMarker(std::string_view line, std::string_view keyword) {
    line = trim(line);
    if (line.size() > 64 || line.size() <= keyword.size() || line[keyword.size()] != ':') {
        return false;
    }
    return equalsIgnoringCase(line.substr(0, keyword.size()), keyword) &&
           equalsIgnoringCase(trim(line.substr(keyword.size() + 1)), "VCARD");
}

// Whether a line is base64 data that is not folded: it has no name and no ':'.
bool isBareBase64(std::string_view line) {
    constexpr std::string_view kAlphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/= \t";
    return !line.empty() && line.find_first_not_of(kAlphabet) == std::string_view::npos;
}

} // namespace

std::size_t headerEnd(std::string_view line) {
    line = line.substr(0, kMaxHeader);
    bool quoted = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (line[at] == '"') {
            quoted = !quoted;
        } else if (line[at] == ':' && !quoted) {
            return at;
        }
    }
    return quoted ? line.find(':') : std::string_view::npos; // version 2.1 knows no quotes
}

Transfer declaredTransfer(std::string_view header) {
    if (header.find(';') == std::string_view::npos) {
        return Transfer::none;
    }
    for (const std::string_view part : splitQuoted(header, ';')) {
        constexpr std::string_view kName = "ENCODING=";
        std::string encoding(trim(part));
        const bool named = equalsIgnoringCase(encoding.substr(0, kName.size()), kName);
        if (named) {
            encoding.erase(0, kName.size());
            std::erase(encoding, '"');
        }
        if (equalsIgnoringCase(encoding, "QUOTED-PRINTABLE")) {
            return Transfer::quotedPrintable;
        }
        // A single B without a name may also be a TYPE.
        if (equalsIgnoringCase(encoding, "BASE64") || (named && equalsIgnoringCase(encoding, "B"))) {
            return Transfer::base64;
        }
    }
    return Transfer::none;
}

bool isBegin(std::string_view line) {
    return isMarker(line, "BEGIN");
}
bool isEnd(std::string_view line) {
    return isMarker(line, "END");
}

// Reads the next line of the file into ahead_; returns false at the end.
bool LineReader::peek() {
    if (!hasAhead_) {
        hasAhead_ = source_.next(ahead_);
    }
    return hasAhead_;
}

// Whether the line ahead continues a property line with this encoding; soft line breaks apart.
bool LineReader::joins(Transfer transfer) const {
    if (ahead_.text.empty()) {
        return false;
    }
    if (isBlankByte(ahead_.text.front())) {
        return true;
    }
    return transfer == Transfer::base64 && isBareBase64(ahead_.text);
}

bool LineReader::next(PropertyLine& line) {
    do {
        if (!peek()) {
            return false;
        }
        hasAhead_ = false;
        last_ = ahead_.number;
    } while (!ahead_.tooLong && trim(ahead_.text).empty());

    std::swap(line.text, ahead_.text);
    line.number = ahead_.number;
    line.utf8 = ahead_.utf8;
    line.tooLong = ahead_.tooLong;
    line.ended = ahead_.ended;
    line.continued = !line.text.empty() && isBlankByte(line.text.front());
    line.physical = 1;

    std::size_t colon = headerEnd(line.text);
    Transfer transfer = Transfer::none;
    if (colon != std::string::npos) {
        transfer = declaredTransfer(std::string_view(line.text).substr(0, colon));
    }
    while (peek()) {
        std::string_view more = ahead_.text;
        const std::string_view trimmed = withoutTrailingBlanks(line.text);
        if (transfer == Transfer::quotedPrintable && trimmed.ends_with('=') && trimmed.size() > colon + 1) {
            line.text.resize(trimmed.size() - 1);
            if (isEnd(more) || isBegin(more)) {
                break; // a soft line break with no text after it
            }
        } else if (joins(transfer)) {
            // Version 2.1 folds at white space that belongs to the text; the others insert a character.
            if (!version21_ && isBlankByte(more.front())) {
                more.remove_prefix(1);
            }
        } else {
            break;
        }
        if (ahead_.tooLong || line.text.size() + more.size() > kMaxCardBytes) {
            line.tooLong = true;
        } else {
            line.text.append(more);
        }
        last_ = ahead_.number;
        line.ended = ahead_.ended;
        hasAhead_ = false;
        ++line.physical;
        if (colon == std::string::npos && line.text.size() < kMaxHeader &&
            more.find_first_of(":\"") != std::string_view::npos) {
            colon = headerEnd(line.text);
            if (colon != std::string::npos) {
                transfer = declaredTransfer(std::string_view(line.text).substr(0, colon));
            }
        }
    }
    if (isBegin(line.text)) {
        version21_ = false;
    } else if (line.text.size() < 32 && upperCase(line.text).starts_with("VERSION:") &&
               trim(std::string_view(line.text).substr(8)) == "2.1") {
        version21_ = true;
    }
    return true;
}

} // namespace addressbook::vcard

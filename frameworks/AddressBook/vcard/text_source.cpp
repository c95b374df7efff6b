#include "frameworks/AddressBook/vcard/text_source.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <algorithm>
#include <istream>

namespace addressbook::vcard {

namespace {
constexpr std::size_t kChunk = std::size_t{256} * 1024;

bool isLetter(char byte, char upper) {
    return byte == upper || byte == upper + ('a' - 'A');
}
} // namespace

// Returns whether there are [count] unread bytes; reads more if necessary.
bool TextSource::have(std::size_t count) {
    while (window_.size() < count) {
        if (!input_ || !*input_) {
            return false;
        }
        buffer_.erase(0, buffer_.size() - window_.size());
        const std::size_t kept = buffer_.size();
        buffer_.resize(kept + kChunk);
        input_->read(buffer_.data() + kept, kChunk);
        buffer_.resize(kept + static_cast<std::size_t>(input_->gcount()));
        window_ = buffer_;
    }
    return true;
}

void TextSource::consume(std::size_t count) {
    window_.remove_prefix(count);
    consumed_ += count;
}

char16_t TextSource::unit(std::size_t index) const {
    const auto first = static_cast<unsigned char>(window_[2 * index]);
    const auto second = static_cast<unsigned char>(window_[2 * index + 1]);
    return static_cast<char16_t>(encoding_ == Encoding::utf16BigEndian ? first << 8 | second
                                                                       : second << 8 | first);
}

// Whether the next bytes are "BE" in UTF-16: the start of a card without a byte-order mark.
bool TextSource::startsUtf16(bool bigEndian) const {
    const std::size_t low = bigEndian ? 1 : 0;
    return window_[1 - low] == 0 && window_[3 - low] == 0 && isLetter(window_[low], 'B') &&
           isLetter(window_[low + 2], 'E');
}

// Detects a change of encoding at the start of a line.
void TextSource::sniff() {
    if (have(3) && window_.starts_with("\xEF\xBB\xBF")) {
        consume(3);
        encoding_ = Encoding::bytes;
    } else if (have(2) && window_.starts_with("\xFE\xFF")) {
        consume(2);
        encoding_ = Encoding::utf16BigEndian;
    } else if (have(2) && window_.starts_with("\xFF\xFE")) {
        consume(2);
        encoding_ = Encoding::utf16LittleEndian;
    } else if (have(4)) {
        if (startsUtf16(true)) {
            encoding_ = Encoding::utf16BigEndian;
        } else if (startsUtf16(false)) {
            encoding_ = Encoding::utf16LittleEndian;
        } else if (encoding_ != Encoding::bytes && isLetter(window_[0], 'B') && isLetter(window_[1], 'E') &&
                   isLetter(window_[2], 'G') && isLetter(window_[3], 'I')) {
            encoding_ = Encoding::bytes;
        }
    }
}

bool TextSource::next(TextLine& line) {
    sniff();
    line.text.clear();
    line.tooLong = false;
    line.ended = false;
    line.utf8 = encoding_ != Encoding::bytes;
    if (!have(line.utf8 ? 2 : 1)) {
        consume(window_.size()); // half a UTF-16 unit
        return false;
    }
    line.number = ++lines_;
    if (line.utf8) {
        readUtf16(line);
    } else {
        readBytes(line);
    }
    return true;
}

void TextSource::readBytes(TextLine& line) {
    while (have(1)) {
        std::size_t length = 0;
        while (length < window_.size() && window_[length] != '\n' && window_[length] != '\r') {
            ++length;
        }
        const bool ended = length < window_.size();
        line.text.append(window_.substr(0, std::min(length, kMaxCardBytes - line.text.size())));
        line.tooLong = line.tooLong || line.text.size() == kMaxCardBytes;
        consume(length);
        if (!ended) {
            continue;
        }
        line.ended = true;
        if (have(2) && window_.starts_with("\r\n")) {
            consume(2);
        } else if (have(3) && window_.starts_with("\r\r\n")) {
            consume(3);
        } else {
            consume(1);
        }
        return;
    }
}

void TextSource::readUtf16(TextLine& line) {
    std::u16string units;
    while (have(2)) {
        const char16_t first = unit(0);
        if (first == u'\n' || first == u'\r') {
            std::size_t length = 1;
            if (first == u'\r' && have(4) && unit(1) == u'\n') {
                length = 2;
            } else if (first == u'\r' && have(6) && unit(1) == u'\r' && unit(2) == u'\n') {
                length = 3;
            }
            consume(2 * length);
            line.ended = true;
            break;
        }
        consume(2);
        if (units.size() < kMaxCardBytes / 3) {
            units.push_back(first);
        } else {
            line.tooLong = true;
        }
    }
    line.text = utf8FromUtf16(units);
}

} // namespace addressbook::vcard

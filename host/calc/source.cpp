#include "host/calc/source.h"

#include "host/values/text.h"

#include <algorithm>
#include <unicode/utf16.h>

namespace host {

namespace {

// The most characters of a line that an excerpt shows on each side of the place.
constexpr size_t kExcerptReach = 60;

bool isLineEnd(char16_t c) {
    return c == u'\r' || c == u'\n';
}

size_t characters(std::u16string_view text) {
    size_t count = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        count += U16_IS_TRAIL(text[i]) && i > 0 && U16_IS_LEAD(text[i - 1]) ? 0 : 1;
    }
    return count;
}

} // namespace

Place Source::place(size_t offset) const {
    offset = std::min(offset, text_.size());
    uint32_t line = firstLine_;
    size_t start = 0;
    for (size_t i = 0; i < offset; ++i) {
        if (!isLineEnd(text_[i])) {
            continue;
        }
        if (text_[i] == u'\r' && i + 1 < text_.size() && text_[i + 1] == u'\n') {
            if (i + 1 == offset) {
                break; // between the two characters of one line end
            }
            ++i;
        }
        ++line;
        start = i + 1;
    }
    return {line, static_cast<uint32_t>(characters(text().substr(start, offset - start)) + 1)};
}

std::string Source::excerpt(size_t offset) const {
    offset = std::min(offset, text_.size());
    size_t begin = offset;
    while (begin > 0 && !isLineEnd(text_[begin - 1]) && offset - begin < kExcerptReach) {
        --begin;
    }
    size_t end = offset;
    while (end < text_.size() && !isLineEnd(text_[end]) && end - offset < kExcerptReach) {
        ++end;
    }
    if (begin > 0 && U16_IS_TRAIL(text_[begin])) {
        ++begin;
    }
    if (end < text_.size() && U16_IS_TRAIL(text_[end])) {
        --end;
    }
    const bool cutBefore = begin > 0 && !isLineEnd(text_[begin - 1]);
    const bool cutAfter = end < text_.size() && !isLineEnd(text_[end]);

    std::string result = "    ";
    std::string pointer = "    ";
    if (cutBefore) {
        result += "\u2026";
        pointer += ' ';
    }
    result += toUtf8(text().substr(begin, end - begin));
    if (cutAfter) {
        result += "\u2026";
    }
    for (size_t i = begin; i < offset; ++i) {
        if (!(U16_IS_TRAIL(text_[i]) && i > begin)) {
            pointer += text_[i] == u'\t' ? '\t' : ' ';
        }
    }
    return result + "\n" + pointer + "^";
}

} // namespace host

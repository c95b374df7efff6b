#include "host/calc/characters.h"

#include <algorithm>
#include <unicode/utf16.h>

namespace host {

Characters::Characters(std::u16string_view text) : text_(text), count_(text.size()), simple_(true) {
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        if (U16_IS_LEAD(text[i]) && U16_IS_TRAIL(text[i + 1])) {
            simple_ = false;
            --count_;
            ++i;
        }
    }
}

size_t Characters::offsetOf(size_t character) const {
    if (character >= count_) {
        return text_.size();
    }
    if (simple_) {
        return character;
    }
    size_t offset = 0;
    U16_FWD_N(text_.data(), offset, text_.size(), character); // NOLINT(readability-container-size-empty)
    return offset;
}

size_t Characters::characterAt(size_t offset) const {
    return simple_ ? std::min(offset, text_.size()) : Characters(text_.substr(0, offset)).count();
}

std::u16string_view Characters::slice(size_t start, size_t length) const {
    if (start >= count_) {
        return {};
    }
    const size_t begin = offsetOf(start);
    const size_t end = length >= count_ - start ? text_.size() : offsetOf(start + length);
    return text_.substr(begin, end - begin);
}

} // namespace host

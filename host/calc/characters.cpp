#include "host/calc/characters.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <unicode/utf16.h>

namespace host {

namespace {

// Whether a text has halves of surrogate pairs. Looks at four units at a time, as most long texts have none.
bool hasSurrogates(std::u16string_view text) {
    constexpr uint64_t kEach = 0x0001'0001'0001'0001; // a one in each unit
    constexpr size_t kUnits = sizeof(uint64_t) / sizeof(char16_t);
    size_t at = 0;
    for (; at + kUnits <= text.size(); at += kUnits) {
        uint64_t units = 0;
        std::memcpy(&units, text.data() + at, sizeof units);
        const uint64_t differences =
            (units & kEach * 0xF800) ^ kEach * 0xD800; // 0 in the unit of a surrogate
        if (((differences - kEach) & ~differences & kEach * 0x8000) != 0) {
            return true;
        }
    }
    return std::any_of(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(),
                       [](char16_t unit) { return U16_IS_SURROGATE(unit); });
}

} // namespace

Characters::Characters(std::u16string_view text) : text_(text), count_(text.size()), simple_(true) {
    if (!hasSurrogates(text)) {
        return;
    }
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

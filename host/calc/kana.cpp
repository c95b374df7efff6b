#include "host/calc/kana.h"

namespace host {

namespace {

// The full-width forms of the half-width katakana from U+FF61 on.
constexpr char16_t kFirstHalf = u'\uFF61';
constexpr std::u16string_view kFullWidth = u"。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタ"
                                           u"チツテトナニヌネノハヒフヘホマミムメモヤユヨラリルレロワン゛゜";
// Katakana with each of the two marks (dakuten, handakuten), and without.
constexpr std::u16string_view kVoiced = u"ガギグゲゴザジズゼゾダヂヅデドバビブベボヴ";
constexpr std::u16string_view kUnvoiced = u"カキクケコサシスセソタチツテトハヒフヘホウ";
constexpr std::u16string_view kPlosive = u"パピプペポ";
constexpr std::u16string_view kUnplosive = u"ハヒフヘホ";
constexpr char16_t kHalfVoiced = u'\uFF9E';
constexpr char16_t kHalfPlosive = u'\uFF9F';

constexpr char16_t kFirstHiragana = u'ぁ';
constexpr char16_t kLastHiragana = u'ゖ';
constexpr char16_t kFirstKatakana = u'ァ';
constexpr char16_t kLastKatakana = u'ヶ';

constexpr char16_t kFirstFullRoman = u'\uFF01';
constexpr char16_t kLastFullRoman = u'\uFF5E';
constexpr char16_t kFullSpace = u'\u3000';

// Returns the character in [to] at the place that [c] has in [from]; 0 when [from] does not have it.
char16_t counterpart(char16_t c, std::u16string_view from, std::u16string_view to) {
    const size_t place = from.find(c);
    return place == std::u16string_view::npos ? u'\0' : to[place];
}

template <class Turn>
std::u16string each(std::u16string_view text, Turn turn) {
    std::u16string result(text);
    for (char16_t& c : result) {
        c = static_cast<char16_t>(turn(c));
    }
    return result;
}

} // namespace

std::u16string fullWidthKana(std::u16string_view text) {
    std::u16string result;
    for (const char16_t c : text) {
        const bool isHalf = c >= kFirstHalf && c < kFirstHalf + kFullWidth.size();
        if (!result.empty() && (c == kHalfVoiced || c == kHalfPlosive)) {
            const char16_t joined = c == kHalfVoiced ? counterpart(result.back(), kUnvoiced, kVoiced)
                                                     : counterpart(result.back(), kUnplosive, kPlosive);
            if (joined != 0) {
                result.back() = joined;
                continue;
            }
        }
        result += isHalf ? kFullWidth[c - kFirstHalf] : c;
    }
    return result;
}

std::u16string halfWidthKana(std::u16string_view text) {
    std::u16string result;
    for (const char16_t c : text) {
        char16_t mark = 0;
        char16_t base = c;
        if (const char16_t unvoiced = counterpart(c, kVoiced, kUnvoiced); unvoiced != 0) {
            mark = kHalfVoiced;
            base = unvoiced;
        } else if (const char16_t unplosive = counterpart(c, kPlosive, kUnplosive); unplosive != 0) {
            mark = kHalfPlosive;
            base = unplosive;
        }
        const size_t place = kFullWidth.find(base);
        result += place == std::u16string_view::npos ? base : static_cast<char16_t>(kFirstHalf + place);
        result += mark != 0 ? std::u16string(1, mark) : u"";
    }
    return result;
}

std::u16string hiragana(std::u16string_view text) {
    return each(fullWidthKana(text), [](char16_t c) {
        return c >= kFirstKatakana && c <= kLastKatakana ? c - kFirstKatakana + kFirstHiragana : c;
    });
}

std::u16string katakana(std::u16string_view text) {
    return each(text, [](char16_t c) {
        return c >= kFirstHiragana && c <= kLastHiragana ? c - kFirstHiragana + kFirstKatakana : c;
    });
}

std::u16string halfWidthRoman(std::u16string_view text) {
    return each(text, [](char16_t c) {
        return c == kFullSpace                               ? u' '
               : c >= kFirstFullRoman && c <= kLastFullRoman ? c - kFirstFullRoman + u'!'
                                                             : c;
    });
}

std::u16string fullWidthRoman(std::u16string_view text) {
    return each(text, [](char16_t c) {
        return c == u' ' ? kFullSpace : c >= u'!' && c <= u'~' ? c - u'!' + kFirstFullRoman : c;
    });
}

} // namespace host

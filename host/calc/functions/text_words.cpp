// Words: runs of letters and digits, with the punctuation that belongs to them (joinsWord).
#include "host/calc/functions/groups.h"
#include "host/calc/styled_text.h"
#include "host/values/text.h"

#include <algorithm>
#include <unicode/uchar.h>
#include <unicode/utf16.h>
#include <vector>

namespace host {

namespace {

// A word by its offsets in the text, half open.
struct Word {
    size_t begin;
    size_t end;
};

UChar32 characterAt(std::u16string_view text, size_t at) {
    UChar32 c = 0;
    U16_GET(text.data(), 0, at, text.size(), c);
    return c;
}

bool isPartOfWord(UChar32 c) {
    constexpr uint32_t kParts = U_GC_L_MASK | U_GC_N_MASK | U_GC_M_MASK | U_GC_SO_MASK | U_GC_CS_MASK;
    return c == '_' || (U_GET_GC_MASK(c) & kParts) != 0;
}

// Whether a character continues a word: a point or comma between digits, an apostrophe between letters.
bool joinsWord(std::u16string_view text, size_t at) {
    if (at == 0 || at + 1 >= text.size()) {
        return false;
    }
    const char16_t c = text[at];
    const UChar32 before = text[at - 1];
    const UChar32 after = characterAt(text, at + 1);
    if (c == u'.' || c == u',') {
        return u_isdigit(before) != 0 && u_isdigit(after) != 0;
    }
    return (c == u'\'' || c == u'\u2019') && isPartOfWord(before) && isPartOfWord(after);
}

std::vector<Word> wordsOf(std::u16string_view text) {
    std::vector<Word> words;
    bool inside = false;
    for (size_t at = 0; at < text.size();) {
        const size_t begin = at;
        U16_FWD_1(text.data(), at, text.size());
        if (!isPartOfWord(characterAt(text, begin)) && !(inside && joinsWord(text, begin))) {
            inside = false;
        } else if (inside) {
            words.back().end = at;
        } else {
            words.push_back({begin, at});
            inside = true;
        }
    }
    return words;
}

// Returns the text of [wanted] words from word [first] on, with everything between them.
Value slice(const StyledText& text, const std::vector<Word>& words, size_t first, size_t wanted) {
    if (first >= words.size() || wanted == 0) {
        return {};
    }
    const size_t last = first + std::min(wanted, words.size() - first) - 1;
    return text.slice(text.text().substr(words[first].begin, words[last].end - words[first].begin));
}

Value leftWords(Session& /*session*/, Arguments in) {
    const StyledText text(in[0]);
    return slice(text, wordsOf(text.text()), 0, count(in[1]));
}

Value middleWords(Session& /*session*/, Arguments in) {
    const StyledText text(in[0]);
    const int64_t start = std::max<int64_t>(integer(in[1]), 1) - 1;
    return slice(text, wordsOf(text.text()), static_cast<size_t>(start), count(in[2]));
}

Value rightWords(Session& /*session*/, Arguments in) {
    const StyledText text(in[0]);
    const std::vector<Word> words = wordsOf(text.text());
    const size_t wanted = std::min(count(in[1]), words.size());
    return slice(text, words, words.size() - wanted, wanted);
}

Value wordCount(Session& /*session*/, Arguments in) {
    return integerValue(static_cast<int64_t>(wordsOf(StyledText(in[0]).text()).size()));
}

// Returns the text with the first letter of each word in capitals and all others in lower case.
Value proper(Session& /*session*/, Arguments in) {
    const StyledText from(in[0]);
    const std::u16string_view text = from.text();
    StyledTextWriter result;
    size_t done = 0;
    for (const Word& word : wordsOf(text)) {
        size_t rest = word.begin;
        U16_FWD_1(text.data(), rest, text.size());
        result.append(from, text.substr(done, word.begin - done));
        result.appendChanged(from, text.substr(word.begin, rest - word.begin), toUpper);
        result.appendChanged(from, text.substr(rest, word.end - rest), toLower);
        done = word.end;
    }
    result.append(from, text.substr(done));
    return result.take();
}

constexpr Builtin kFunctions[] = {
    {u"LeftWords ( text ; numberOfWords )", leftWords, "Returns the first words of a text."},
    {u"MiddleWords ( text ; startingWord ; numberOfWords )", middleWords,
     "Returns words from the middle of a text."},
    {u"Proper ( text )", proper, "Returns a text with the first letter of each word large."},
    {u"RightWords ( text ; numberOfWords )", rightWords, "Returns the last words of a text."},
    {u"WordCount ( text )", wordCount, "Counts the words of a text."},
};

} // namespace

std::span<const Builtin> textWordFunctions() {
    return kFunctions;
}

} // namespace host

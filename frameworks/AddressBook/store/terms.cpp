#include "frameworks/AddressBook/store/terms.h"

#include "frameworks/AddressBook/store/interned_words.h"
#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace addressbook {
namespace {

void takeNumber(const Value& value, Term& term) {
    term.type = termType(value);
    if (const auto* whole = value.as<std::int64_t>()) {
        term.folded = *whole;
        return;
    }
    const auto* real = value.as<double>();
    if (const auto* date = value.as<Date>()) {
        real = &date->seconds;
    } else if (const auto* day = value.as<FloatingDate>()) {
        real = &day->seconds;
    }
    if (real != nullptr && !std::isnan(*real)) {
        term.folded = *real;
    }
}

// Returns the type of the term of a text, from both forms of it.
TermType textType(std::string_view normalized, std::string_view folded) {
    return normalized.size() > kTermBytes || folded.size() > kTermBytes ? TermType::cutText : TermType::text;
}

// Appends [folded] in the form that the index of texts keeps; returns whether nothing was replaced.
bool appendIndexed(std::string& out, std::string_view folded) {
    const auto isKept = [](char c) {
        return c != '\0' && c != kTextBorder && c != kReplaced && c != '\xED' && c != '\xEF';
    };
    bool unchanged = true;
    for (std::size_t i = 0; i < folded.size(); ++i) {
        const std::size_t begin = i;
        while (i < folded.size() && isKept(folded[i])) {
            ++i;
        }
        out.append(folded, begin, i - begin);
        if (i == folded.size()) {
            break;
        }
        const char c = folded[i];
        const bool surrogate =
            c == '\xED' && i + 2 < folded.size() && static_cast<unsigned char>(folded[i + 1]) >= 0xA0;
        // U+FFFD, and what the tokenizer turns into it
        const bool unknown =
            c == '\xEF' && i + 2 < folded.size() && folded[i + 1] == '\xBF' && folded[i + 2] >= '\xBD';
        if ((c == '\xED' && !surrogate) || (c == '\xEF' && !unknown)) {
            out.push_back(c);
            continue;
        }
        out.push_back(kReplaced);
        unchanged = false;
        i += surrogate || unknown ? 2 : 0;
    }
    return unchanged;
}

} // namespace

TermType termType(const Value& value) {
    struct Types {
        TermType operator()(std::monostate) const { return TermType::none; }
        TermType operator()(const std::string&) const { return TermType::text; }
        TermType operator()(std::int64_t) const { return TermType::integer; }
        TermType operator()(double) const { return TermType::real; }
        TermType operator()(const Date&) const { return TermType::date; }
        TermType operator()(const FloatingDate&) const { return TermType::floatingDate; }
        TermType operator()(const DateComponents&) const { return TermType::dateComponents; }
        TermType operator()(const Bytes&) const { return TermType::data; }
        TermType operator()(const Array&) const { return TermType::array; }
        TermType operator()(const Dictionary&) const { return TermType::dictionary; }
        TermType operator()(const MultiValue&) const { return TermType::emptyList; }
    };
    return std::visit(Types{}, static_cast<const Value::variant&>(value));
}

TrigramNeedle trigramNeedle(std::string_view folded) {
    TrigramNeedle needle;
    needle.exact = appendIndexed(needle.text, folded);
    return needle;
}

void IndexEntries::add(std::int64_t record, std::int64_t property, std::string_view value) {
    leaves_.clear();
    leavesIn(value, leaves_);
    text_.clear();
    const std::size_t first = terms_.size();
    for (const EncodedLeaf& leaf : leaves_) {
        Term& term = addTerm(record, property, leaf);
        if (const auto text = textIn(leaf.value)) {
            takeText(*text, term);
        } else {
            takeNumber(decodeValue(leaf.value), term);
        }
    }
    sortTermsFrom(first);
    if (!text_.empty()) {
        texts_.push_back({trigramRow(record, property), keep(text_)});
    }
}

void IndexEntries::addEndings(std::int64_t record, std::int64_t property, std::string_view value) {
    leaves_.clear();
    leavesIn(value, leaves_);
    const std::size_t first = terms_.size();
    for (const EncodedLeaf& leaf : leaves_) {
        if (const auto text = textIn(leaf.value)) {
            takeEnding(*text, addTerm(record, endingsOf(property), leaf));
        }
    }
    sortTermsFrom(first);
}

Term& IndexEntries::addTerm(std::int64_t record, std::int64_t property, const EncodedLeaf& leaf) {
    Term& term = terms_.emplace_back();
    term.property = property;
    term.record = record;
    term.label = word(leaf.label);
    term.key = word(leaf.key);
    return term;
}

// Sorts the terms from number [first] on and leaves each there once.
void IndexEntries::sortTermsFrom(std::size_t first) {
    if (terms_.size() - first > 1) {
        const auto begin = terms_.begin() + static_cast<std::ptrdiff_t>(first);
        std::sort(begin, terms_.end());
        terms_.erase(std::unique(begin, terms_.end()), terms_.end());
    }
}

void IndexEntries::takeText(std::string_view text, Term& term) {
    const std::string normalized = normalize(text);
    const std::string folded = foldNormalized(normalized);
    term.folded = keep(beginning(folded, kTermBytes));
    term.exact = normalized == folded ? std::get<std::string_view>(term.folded)
                                      : keep(beginning(normalized, kTermBytes));
    term.type = textType(normalized, folded);
    if (text_.empty()) {
        text_.push_back(kTextBorder);
    }
    appendIndexed(text_, folded);
    text_.push_back(kTextBorder);
}

void IndexEntries::takeEnding(std::string_view text, Term& term) {
    const std::string normalized = normalize(text);
    const std::string folded = foldNormalized(normalized);
    term.folded = keep(reversed(ending(folded, kTermBytes)));
    term.exact = normalized == folded ? std::get<std::string_view>(term.folded)
                                      : keep(reversed(ending(normalized, kTermBytes)));
    term.type = textType(normalized, folded);
}

TermWord IndexEntries::word(const std::optional<std::string_view>& text) {
    if (!text) {
        return std::int64_t{0};
    }
    if (const int code = wordCode(*text)) {
        return std::int64_t{code};
    }
    return keep(*text);
}

std::string_view IndexEntries::keep(std::string_view text) {
    if (text.empty()) {
        return "";
    }
    auto* copy = static_cast<char*>(arena_.allocate(text.size(), 1));
    std::memcpy(copy, text.data(), text.size());
    bytes_ += text.size();
    return {copy, text.size()};
}

void IndexEntries::clear() {
    terms_.clear();
    texts_.clear();
    arena_.release();
    bytes_ = 0;
}

} // namespace addressbook

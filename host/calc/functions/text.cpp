#include "host/values/text.h"
#include "host/calc/characters.h"
#include "host/calc/evaluator.h"
#include "host/calc/functions/groups.h"
#include "host/calc/styled_text.h"
#include "host/values/container_file.h"

#include <algorithm>
#include <optional>
#include <unicode/utf16.h>

namespace host {

namespace {

// Compares containers by all their streams.
Value exact(Session& /*session*/, Arguments in) {
    if (in[0].type() == ValueType::container && in[1].type() == ValueType::container) {
        return integerValue(in[0].asContainer() == in[1].asContainer() ? 1 : 0);
    }
    return integerValue(in[0].asText() == in[1].asText() ? 1 : 0);
}

// Returns the number of characters; of a container, the number of bytes of its file.
Value length(Session& /*session*/, Arguments in) {
    if (in[0].type() == ValueType::container) {
        const Container::Stream* stream = fileStream(in[0].asContainer());
        return integerValue(stream == nullptr ? 0 : static_cast<int64_t>(stream->bytes().size()));
    }
    return integerValue(static_cast<int64_t>(Characters(StyledText(in[0]).text()).count()));
}

Value left(Session& /*session*/, Arguments in) {
    const StyledText text(in[0]);
    return text.slice(Characters(text.text()).slice(0, count(in[1])));
}

Value right(Session& /*session*/, Arguments in) {
    const StyledText text(in[0]);
    const Characters characters(text.text());
    const size_t wanted = std::min(count(in[1]), characters.count());
    return text.slice(characters.slice(characters.count() - wanted, wanted));
}

// A range of characters, counted from 0. rangeFrom() makes it from arguments that count from 1; a start below
// 1 means the first character.
struct Range {
    size_t start;
    size_t length;
};
Range rangeFrom(const Value& start, const Value& length) {
    return {static_cast<size_t>(std::max<int64_t>(integer(start), 1) - 1), count(length)};
}

Value middle(Session& /*session*/, Arguments in) {
    const StyledText text(in[0]);
    const Range range = rangeFrom(in[1], in[2]);
    return text.slice(Characters(text.text()).slice(range.start, range.length));
}

Value replace(Session& /*session*/, Arguments in) {
    const StyledText text(in[0]);
    const Characters characters(text.text());
    const Range range = rangeFrom(in[1], in[2]);
    const size_t start = std::min(range.start, characters.count());
    const size_t end = start + std::min(range.length, characters.count() - start);
    StyledTextWriter result;
    result.append(text, characters.slice(0, start));
    result.append(in[3]);
    result.append(text, characters.slice(end, characters.count()));
    return result.take();
}

// Returns the position of the nth occurrence of the search text from [start] on, all counted from 1; searches
// backwards for a negative n. 0 when there is none.
Value position(Session& /*session*/, Arguments in) {
    const StyledText styled(in[0]);
    const std::u16string_view text = styled.text();
    const std::u16string wanted = in[1].asText();
    int64_t occurrence = integer(in[3]);
    const bool isForward = occurrence > 0;
    if (wanted.empty() || occurrence == 0) {
        return integerValue(0);
    }
    const Characters characters(text);
    size_t at = characters.offsetOf(static_cast<size_t>(std::max<int64_t>(integer(in[2]), 1) - 1));
    while (true) {
        at = isForward ? findIgnoringCase(text, wanted, at) : findLastIgnoringCase(text, wanted, at);
        if (at == std::u16string::npos) {
            return integerValue(0);
        }
        occurrence += isForward ? -1 : 1;
        if (occurrence == 0) {
            return integerValue(static_cast<int64_t>(characters.characterAt(at)) + 1);
        }
        if (!isForward && at == 0) {
            return integerValue(0);
        }
        at = isForward ? at + 1 : at - 1;
    }
}

Value patternCount(Session& /*session*/, Arguments in) {
    const StyledText styled(in[0]);
    const std::u16string_view text = styled.text();
    const std::u16string wanted = in[1].asText();
    int64_t found = 0;
    if (!wanted.empty()) {
        for (size_t at = findIgnoringCase(text, wanted, 0); at != std::u16string::npos;
             at = findIgnoringCase(text, wanted, at + wanted.size())) {
            ++found;
        }
    }
    return integerValue(found);
}

// Finds all places first, so that there is room for the result before it is written.
Value substituted(const Value& in, const Value& search, const Value& replacement) {
    const StyledText styled(in);
    const std::u16string_view text = styled.text();
    const std::u16string wanted = search.asText();
    std::vector<size_t> places;
    if (!wanted.empty()) {
        for (size_t at = findUnits(text, wanted, 0); at != std::u16string::npos;
             at = findUnits(text, wanted, at + wanted.size())) {
            places.push_back(at);
        }
    }
    if (places.empty()) {
        return in.type() == ValueType::text ? in : Value::text(text);
    }
    const Value with = Value::styledText(replacement.asText(), replacement.styles());
    StyledTextWriter result;
    result.reserve(text.size() - places.size() * wanted.size() + places.size() * with.storedText().size());
    size_t from = 0;
    for (const size_t at : places) {
        result.append(styled, text.substr(from, at - from));
        result.append(with);
        from = at + wanted.size();
    }
    result.append(styled, text.substr(from));
    return result.take();
}

// Letter case matters, unlike in Position. The parser has checked the form of the arguments.
Value substitute(Evaluator& evaluator, std::span<const Node> in) {
    Value text = evaluator.evaluate(in[0]);
    const auto apply = [&](const Node& wanted, const Node& replacement) {
        const Value search = evaluator.evaluate(wanted);
        text = substituted(text, search, evaluator.evaluate(replacement));
    };
    if (!std::holds_alternative<Brackets>(in[1].form)) {
        apply(in[1], in[2]);
        return text;
    }
    for (const Node& pair : in.subspan(1)) {
        const auto& items = std::get<Brackets>(pair.form).items;
        apply(items[0], items[1]);
    }
    return text;
}

Value trim(Session& /*session*/, Arguments in) {
    const StyledText styled(in[0]);
    const std::u16string_view text = styled.text();
    const size_t first = text.find_first_not_of(u' ');
    const size_t last = text.find_last_not_of(u' ');
    return first == std::u16string::npos ? Value() : styled.slice(text.substr(first, last - first + 1));
}

Value changedCase(const Value& value, std::u16string (*change)(std::u16string_view)) {
    const StyledText text(value);
    StyledTextWriter result;
    result.appendChanged(text, text.text(), change);
    return result.take();
}
Value upper(Session& /*session*/, Arguments in) {
    return changedCase(in[0], toUpper);
}
Value lower(Session& /*session*/, Arguments in) {
    return changedCase(in[0], toLower);
}

// Returns the characters of a text that are also in another one.
Value filter(Session& /*session*/, Arguments in) {
    const StyledText styled(in[0]);
    const std::u16string_view text = styled.text();
    const std::u16string allowed = in[1].asText();
    StyledTextWriter result;
    size_t at = 0;
    while (at < text.size()) {
        const size_t begin = at;
        U16_FWD_1(text.data(), at, text.size());
        const std::u16string_view character = text.substr(begin, at - begin);
        if (allowed.find(character) != std::u16string::npos) {
            result.append(styled, character);
        }
    }
    return result.take();
}

// Returns the text as a literal of the language.
Value quote(Session& /*session*/, Arguments in) {
    const StyledText text(in[0]);
    StyledTextWriter result;
    result.append(u'"');
    result.appendChanged(text, text.text(), [](std::u16string_view part) {
        std::u16string quoted;
        for (const char16_t c : part) {
            if (c == u'"' || c == u'\\' || c == u'\u00B6') {
                quoted += u'\\';
            }
            quoted += c == u'\r' ? u'\u00B6' : c;
        }
        return quoted;
    });
    result.append(u'"');
    return result.take();
}

// Codes of characters in one number: five digits each, the first character last.
constexpr int64_t kCodeStep = 100'000;

// Returns the characters whose codes a number holds. A code of 0 is no character, so that there is nothing for 0 or
// without a number; "?" for a negative one. Accepts half of a surrogate pair, of which pairs are made.
Value character(Session& /*session*/, Arguments in) {
    Number rest = in[0].asNumber().value_or(0).truncated();
    if (!in[0].isValid() || rest.sign() < 0) {
        return Value::invalid();
    }
    std::u16string result;
    for (; !rest.isZero(); rest = (rest / kCodeStep).truncated()) {
        const auto point = static_cast<UChar32>(Number::modulo(rest, kCodeStep).toInt64());
        char16_t units[2];
        int size = 0;
        U16_APPEND_UNSAFE(units, size, point);
        result.append(units, point == 0 ? 0 : static_cast<size_t>(size));
    }
    return Value::text(result);
}

// Returns the codes of all UTF-16 units in one number; empty for an empty text. A character beyond the first plane
// has two codes, as its own may be too large for five digits.
Value code(Session& /*session*/, Arguments in) {
    const std::u16string text = in[0].asText();
    if (text.empty()) {
        return {};
    }
    Number result;
    for (size_t at = text.size(); at > 0; --at) {
        result = result * kCodeStep + Number(text[at - 1]);
    }
    return Value::number(result);
}

// Adds to the last group of digits, padding it with zeros to its old length. A text without digits gets the
// number appended.
Value serialIncrement(Session& /*session*/, Arguments in) {
    constexpr std::u16string_view kDigits = u"0123456789";
    const StyledText styled(in[0]);
    const std::u16string_view text = styled.text();
    const Number increment = in[1].asNumber().value_or(0).truncated();
    const size_t last = text.find_last_of(kDigits);
    if (last == std::u16string::npos) {
        StyledTextWriter result(in[0]);
        result.append(increment.toText());
        return result.take();
    }
    const size_t before = text.find_last_not_of(kDigits, last);
    const size_t first = before == std::u16string::npos ? 0 : before + 1;
    const size_t width = last + 1 - first;
    const Number sum = Number::fromText(text.substr(first, width)) + increment;
    std::u16string digits = (sum.sign() < 0 ? Number(0) : sum).toText();
    if (digits.size() < width) {
        digits.insert(0, width - digits.size(), u'0');
    }
    StyledTextWriter result;
    result.append(styled, text.substr(0, first));
    result.appendChanged(styled, text.substr(first, 1), [&](std::u16string_view) { return digits; });
    result.append(styled, text.substr(last + 1));
    return result.take();
}

// The spaces that TrimAll leaves between two characters.
enum class Gap { none, one };

// A row for each trim type: the spaces between two Roman characters, and between a Roman one and another.
struct TrimType {
    Gap roman;
    Gap mixed;
    bool putIn; // also adds a space between a Roman character and another where there was none
};
constexpr TrimType kTrimTypes[] = {
    {Gap::one, Gap::none, false},
    {Gap::one, Gap::one, true},
    {Gap::one, Gap::one, false},
    {Gap::none, Gap::none, false},
};

bool isRoman(char16_t c) {
    return c < 0x2F00;
}

Value trimAll(Session& /*session*/, Arguments in) {
    const StyledText styled(in[0]);
    const std::u16string_view text = styled.text();
    const bool fullWidth = in[1].asBoolean();
    const int64_t wanted = integer(in[2]);
    const TrimType type = kTrimTypes[wanted >= 0 && wanted <= 3 ? wanted : 0];
    StyledTextWriter result;
    char16_t before = 0; // the last character that is no space
    bool spaces = false;
    for (size_t at = 0; at < text.size(); ++at) {
        const char16_t c = text[at];
        if (c == u' ' || (fullWidth && c == u'\u3000')) {
            spaces = true;
            continue;
        }
        if (before != 0) {
            const bool leftRoman = isRoman(before);
            const bool mixed = leftRoman != isRoman(c);
            const Gap gap = mixed ? type.mixed : leftRoman ? type.roman : Gap::none;
            if (gap == Gap::one && (spaces || (mixed && type.putIn))) {
                result.append(u' ');
            }
        }
        result.append(styled, text.substr(at, 1));
        before = c;
        spaces = false;
    }
    return result.take();
}

constexpr Builtin kFunctions[] = {
    {u"Char ( number )", character, "Returns the characters that each five digits of a number stand for."},
    {u"Code ( text )", code, "Returns the codes of a text's characters, five digits each."},
    {u"Exact ( originalText ; comparisonText )", exact,
     "Tells whether two texts are the same, letter case included."},
    {u"Filter ( textToFilter ; filterText )", filter,
     "Returns the characters of a text that also stand in another."},
    {u"Left ( text ; numberOfCharacters )", left, "Returns the first characters of a text."},
    {u"Length ( text )", length, "Counts the characters of a text."},
    {u"Lower ( text )", lower, "Returns a text in small letters."},
    {u"Middle ( text ; start ; numberOfCharacters )", middle,
     "Returns characters from the middle of a text."},
    {u"PatternCount ( text ; searchString )", patternCount, "Counts how often a text stands in another."},
    {u"Position ( text ; searchString ; start ; occurrence )", position,
     "Returns where a text stands in another; 0 when it does not."},
    {u"Quote ( text )", quote, "Returns a text in quotes, as a calculation would write it."},
    {u"Replace ( text ; start ; numberOfCharacters ; replacementText )", replace,
     "Replaces some characters of a text by another text."},
    {u"Right ( text ; numberOfCharacters )", right, "Returns the last characters of a text."},
    {u"SerialIncrement ( text ; incrementBy )", serialIncrement,
     "Adds to the last number in a text and keeps the rest."},
    {u"Substitute ( text ; searchString ; replaceString )", substitute,
     "Replaces a text wherever it stands in another; letter case counts.",
     u"Substitute ( text ; [ search1 ; replace1 ] {; ...} )"},
    {u"Trim ( text )", trim, "Removes the spaces at both ends of a text."},
    {u"TrimAll ( text ; trimSpaces ; trimType )", trimAll,
     "Removes spaces by rules for Roman characters and others."},
    {u"Upper ( text )", upper, "Returns a text in capital letters."},
};

} // namespace

std::span<const Builtin> textFunctions() {
    return kFunctions;
}

} // namespace host

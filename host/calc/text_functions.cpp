#include "host/calc/characters.h"
#include "host/calc/evaluator.h"
#include "host/calc/function_groups.h"
#include "host/values/container_file.h"
#include "host/values/text.h"

#include <algorithm>
#include <unicode/utf16.h>

namespace host {

namespace {

using Arguments = std::span<const Value>;

// Of containers every stream counts.
Value exact(Session& /*session*/, Arguments in) {
    if (in[0].type() == ValueType::container && in[1].type() == ValueType::container) {
        return integerValue(in[0].asContainer() == in[1].asContainer() ? 1 : 0);
    }
    return integerValue(in[0].asText() == in[1].asText() ? 1 : 0);
}

// Of a container the bytes of its file.
Value length(Session& /*session*/, Arguments in) {
    if (in[0].type() == ValueType::container) {
        const Container::Stream* stream = fileStream(in[0].asContainer());
        return integerValue(stream == nullptr ? 0 : static_cast<int64_t>(stream->bytes().size()));
    }
    const std::u16string text = in[0].asText();
    return integerValue(static_cast<int64_t>(Characters(text).count()));
}

Value left(Session& /*session*/, Arguments in) {
    const std::u16string text = in[0].asText();
    return Value::text(Characters(text).slice(0, count(in[1])));
}

Value right(Session& /*session*/, Arguments in) {
    const std::u16string text = in[0].asText();
    const Characters characters(text);
    const size_t wanted = std::min(count(in[1]), characters.count());
    return Value::text(characters.slice(characters.count() - wanted, wanted));
}

// The characters that [start], counted from 1, and [length] name; a start before the first takes from the
// length.
struct Range {
    size_t start;
    size_t length;
};
Range rangeFrom(const Value& startValue, const Value& lengthValue) {
    const int64_t start = integer(startValue);
    const size_t wanted = count(lengthValue);
    if (start >= 1) {
        return {static_cast<size_t>(start) - 1, wanted};
    }
    const size_t before = static_cast<size_t>(-(start + 1)) + 2; // 1 - start, without overflow
    return {0, wanted > before ? wanted - before : 0};
}

Value middle(Session& /*session*/, Arguments in) {
    const std::u16string text = in[0].asText();
    const Range range = rangeFrom(in[1], in[2]);
    return Value::text(Characters(text).slice(range.start, range.length));
}

Value replace(Session& /*session*/, Arguments in) {
    const std::u16string text = in[0].asText();
    const Characters characters(text);
    const Range range = rangeFrom(in[1], in[2]);
    const size_t start = std::min(range.start, characters.count());
    const size_t end = start + std::min(range.length, characters.count() - start);
    std::u16string result(characters.slice(0, start));
    result += in[3].asText();
    result += characters.slice(end, characters.count());
    return Value::text(result);
}

// Where the search text stands for the [occurrence]th time from [start] on, both counted from 1; backwards
// for a negative occurrence. 0 when it does not.
Value position(Session& /*session*/, Arguments in) {
    const std::u16string text = in[0].asText();
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
    const std::u16string text = in[0].asText();
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

std::u16string substituted(std::u16string_view text, std::u16string_view wanted,
                           std::u16string_view replacement) {
    std::u16string result;
    size_t from = 0;
    if (!wanted.empty()) {
        for (size_t at = text.find(wanted); at != std::u16string::npos; at = text.find(wanted, from)) {
            result += text.substr(from, at - from);
            result += replacement;
            from = at + wanted.size();
        }
    }
    result += text.substr(from);
    return result;
}

// Letter case counts here, unlike in a search. The parser has seen to the form of the arguments.
Value substitute(Evaluator& evaluator, std::span<const Node> in) {
    std::u16string text = evaluator.evaluate(in[0]).asText();
    const auto apply = [&](const Node& wanted, const Node& replacement) {
        const Value search = evaluator.evaluate(wanted);
        const Value with = evaluator.evaluate(replacement);
        text = substituted(text, search.asText(), with.asText());
    };
    if (!std::holds_alternative<Brackets>(in[1].form)) {
        apply(in[1], in[2]);
        return Value::text(text);
    }
    for (const Node& pair : in.subspan(1)) {
        const auto& items = std::get<Brackets>(pair.form).items;
        apply(items[0], items[1]);
    }
    return Value::text(text);
}

Value trim(Session& /*session*/, Arguments in) {
    const std::u16string text = in[0].asText();
    const size_t first = text.find_first_not_of(u' ');
    const size_t last = text.find_last_not_of(u' ');
    return Value::text(first == std::u16string::npos ? u"" : text.substr(first, last - first + 1));
}

Value upper(Session& /*session*/, Arguments in) {
    return Value::text(toUpper(in[0].asText()));
}
Value lower(Session& /*session*/, Arguments in) {
    return Value::text(toLower(in[0].asText()));
}

// The characters of a text that also stand in another one.
Value filter(Session& /*session*/, Arguments in) {
    const std::u16string text = in[0].asText();
    const std::u16string allowed = in[1].asText();
    std::u16string result;
    size_t at = 0;
    while (at < text.size()) {
        const size_t begin = at;
        U16_FWD_1(text.data(), at, text.size());
        const std::u16string_view character = std::u16string_view(text).substr(begin, at - begin);
        if (allowed.find(character) != std::u16string::npos) {
            result += character;
        }
    }
    return Value::text(result);
}

// The text as a literal of the language.
Value quote(Session& /*session*/, Arguments in) {
    std::u16string result = u"\"";
    for (const char16_t c : in[0].asText()) {
        if (c == u'"' || c == u'\\' || c == u'\u00B6') {
            result += u'\\';
        }
        result += c == u'\r' ? u'\u00B6' : c;
    }
    return Value::text(result + u"\"");
}

// A character holds five digits of the number, the last five the first character. Any code counts: half of a
// pair and U+0000 as well, so that a calculation can make every text. Nothing for a negative number, and for
// none.
Value character(Session& /*session*/, Arguments in) {
    constexpr int64_t kDigits = 100'000;
    std::u16string result;
    int64_t rest = in[0].asNumber() ? integer(in[0]) : -1;
    while (rest >= 0) {
        const auto point = static_cast<UChar32>(rest % kDigits);
        char16_t units[2];
        int size = 0;
        U16_APPEND_UNSAFE(units, size, point);
        result.append(units, static_cast<size_t>(size));
        rest = rest < kDigits ? -1 : rest / kDigits;
    }
    return Value::text(result);
}

// The code of the first character; nothing for an empty text.
Value code(Session& /*session*/, Arguments in) {
    const std::u16string text = in[0].asText();
    if (text.empty()) {
        return {};
    }
    UChar32 point = 0;
    U16_GET(text.data(), 0, 0, text.size(), point);
    return integerValue(point);
}

constexpr Builtin kFunctions[] = {
    {u"Char ( number )", character},
    {u"Code ( text )", code},
    {u"Exact ( text ; comparisonText )", exact},
    {u"Filter ( text ; allowedCharacters )", filter},
    {u"Left ( text ; numberOfCharacters )", left},
    {u"Length ( text )", length},
    {u"Lower ( text )", lower},
    {u"Middle ( text ; start ; numberOfCharacters )", middle},
    {u"PatternCount ( text ; searchText )", patternCount},
    {u"Position ( text ; searchText ; start ; occurrence )", position},
    {u"Quote ( text )", quote},
    {u"Replace ( text ; start ; numberOfCharacters ; replacementText )", replace},
    {u"Right ( text ; numberOfCharacters )", right},
    {u"Substitute ( text ; [ search ; replacement ] {; ... } )", substitute},
    {u"Trim ( text )", trim},
    {u"Upper ( text )", upper},
};

} // namespace

std::span<const Builtin> textFunctions() {
    return kFunctions;
}

} // namespace host

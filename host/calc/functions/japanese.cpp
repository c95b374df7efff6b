// Japanese: names of days, months and years, forms of kana, numbers in kanji.
#include "host/calc/functions/groups.h"
#include "host/calc/functions/moments.h"
#include "host/calc/kana.h"

#include <array>

namespace host {

namespace {

Value dayNameJ(Session& /*session*/, Arguments in) {
    constexpr std::u16string_view kDays = u"日月火水木金土";
    return dayPart(in, [&](const DateTime& date) {
        return Value::text(std::u16string(1, kDays[static_cast<size_t>(date.dayOfWeek() - 1)]) + u"曜日");
    });
}

Value monthNameJ(Session& /*session*/, Arguments in) {
    return dayPart(
        in, [](const DateTime& date) { return Value::text(Number(date.calendar().month).toText() + u"月"); });
}

// An era and the day on which it began.
struct Era {
    CalendarDay start;
    std::u16string_view name;
    std::u16string_view letter;
};
constexpr Era kEras[] = {
    {{2019, 5, 1}, u"令和", u"R"},  {{1989, 1, 8}, u"平成", u"H"}, {{1926, 12, 25}, u"昭和", u"S"},
    {{1912, 7, 30}, u"大正", u"T"}, {{1868, 9, 8}, u"明治", u"M"},
};

// Returns the year of the era, in one of three forms: 0 平成3, 1 (平)3, 2 H3. The first year is 元, except in
// form 2. For dates before the eras, the year of the western calendar.
Value yearName(Session& /*session*/, Arguments in) {
    const int64_t form = integer(in[1]);
    return dayPart(in, [form](const DateTime& date) {
        const int year = date.calendar().year;
        for (const Era& era : kEras) {
            if (date.day() < dayNumber(era.start.year, era.start.month, era.start.day).value_or(1)) {
                continue;
            }
            const int number = year - era.start.year + 1;
            const std::u16string digits = Number(number).toText();
            if (form == 2) {
                return Value::text(std::u16string(era.letter) + digits);
            }
            const std::u16string name =
                form == 1 ? u"(" + std::u16string(era.name.substr(0, 1)) + u")" : std::u16string(era.name);
            return Value::text(name + (number == 1 ? u"元" : digits));
        }
        return Value::text(u"西暦" + Number(year).toText());
    });
}

template <std::u16string (*turn)(std::u16string_view)>
Value turned(Session& /*session*/, Arguments in) {
    return Value::text(turn(in[0].asText()));
}

constexpr std::u16string_view kKanjiDigits = u"〇一二三四五六七八九";
constexpr std::u16string_view kOldDigits = u"〇壱弐参四伍六七八九";
constexpr std::u16string_view kFullWidthDigits = u"０１２３４５６７８９";
constexpr std::u16string_view kHalfWidthDigits = u"0123456789";

// Returns the text with each digit as a kanji.
Value kanjiNumeral(Session& /*session*/, Arguments in) {
    std::u16string text = in[0].asText();
    for (char16_t& c : text) {
        c = c >= u'0' && c <= u'9'     ? kKanjiDigits[c - u'0']
            : c >= u'０' && c <= u'９' ? kKanjiDigits[c - u'０']
                                       : c;
    }
    return Value::text(text);
}

// The characters in which numbers are written.
struct Numerals {
    std::u16string_view digits;
    std::u16string_view comma;
    std::u16string_view point;
    std::u16string_view small; // ten, hundred, thousand
    std::u16string_view large; // ten thousand and its powers
};
constexpr Numerals kNumerals[] = {
    {kHalfWidthDigits, u",", u".", u"十百千", u"万億兆京"},
    {kFullWidthDigits, u"，", u"．", u"十百千", u"万億兆京"},
    {kKanjiDigits, u"、", u"・", u"十百千", u"万億兆京"},
    {kOldDigits, u"、", u"・", u"拾百阡", u"万億兆京"},
};

std::u16string withDigits(std::u16string_view digits, const Numerals& numerals) {
    std::u16string result;
    for (const char16_t c : digits) {
        result += numerals.digits[c - u'0'];
    }
    return result;
}

std::u16string withCommas(std::u16string_view digits, const Numerals& numerals) {
    std::u16string result;
    for (size_t i = 0; i < digits.size(); ++i) {
        result += i > 0 && (digits.size() - i) % 3 == 0 ? numerals.comma : u"";
        result += numerals.digits[digits[i] - u'0'];
    }
    return result;
}

// Returns up to four digits with all units: 千二百三十四. A unit without a digit means one of it.
std::u16string withSmallUnits(std::u16string_view digits, const Numerals& numerals) {
    std::u16string result;
    for (size_t i = 0; i < digits.size(); ++i) {
        const size_t power = digits.size() - 1 - i;
        if (digits[i] == u'0') {
            continue;
        }
        if (digits[i] != u'1' || power == 0) {
            result += numerals.digits[digits[i] - u'0'];
        }
        result += power > 0 ? numerals.small.substr(power - 1, 1) : u"";
    }
    return result;
}

// Returns digits in groups of four, each followed by its unit; groups of zeros are left out.
std::u16string withLargeUnits(std::u16string_view digits, const Numerals& numerals, bool smallUnits) {
    std::u16string result;
    while (!digits.empty()) {
        const size_t groups = (digits.size() - 1) / 4;
        std::u16string_view group = digits.substr(0, digits.size() - groups * 4);
        digits.remove_prefix(group.size());
        group.remove_prefix(std::min(group.find_first_not_of(u'0'), group.size()));
        if (group.empty()) {
            continue;
        }
        result += smallUnits ? withSmallUnits(group, numerals) : withDigits(group, numerals);
        result += groups > 0 && groups <= numerals.large.size() ? numerals.large.substr(groups - 1, 1) : u"";
    }
    return result.empty() ? withDigits(u"0", numerals) : result;
}

Value numToJText(Session& /*session*/, Arguments in) {
    const auto number = in[0].asNumber();
    if (!number) {
        return in[0].isEmpty() ? Value() : Value::invalid();
    }
    const int64_t separator = integer(in[1]);
    const int64_t characters = integer(in[2]);
    const Numerals& numerals = kNumerals[characters >= 0 && characters <= 3 ? characters : 0];
    const Number whole = number->abs().truncated();
    const std::u16string digits = whole.toText();
    std::u16string text = number->sign() < 0 ? u"-" : u"";
    text += separator == 1   ? withCommas(digits, numerals)
            : separator == 2 ? withLargeUnits(digits, numerals, false)
            : separator == 3 ? withLargeUnits(digits, numerals, true)
                             : withDigits(digits, numerals);
    if (!number->isInteger()) {
        text += numerals.point;
        text += withDigits((number->abs() - whole).toText().substr(1), numerals);
    }
    return Value::text(text);
}

constexpr Builtin kFunctions[] = {
    {u"DayNameJ ( date )", dayNameJ, "Returns the Japanese name of the day of the week."},
    {u"Furigana ( text {; option } )", turned<hiragana>,
     "Returns how a text is read, in kana, as far as it is in kana."},
    {u"Hiragana ( text )", turned<hiragana>, "Turns katakana into hiragana."},
    {u"KanaHankaku ( text )", turned<halfWidthKana>, "Turns katakana into its half-width form."},
    {u"KanaZenkaku ( text )", turned<fullWidthKana>, "Turns half-width katakana into its full-width form."},
    {u"KanjiNumeral ( text )", kanjiNumeral, "Writes each digit as a Chinese character."},
    {u"Katakana ( text )", turned<katakana>, "Turns hiragana into katakana."},
    {u"MonthNameJ ( date )", monthNameJ, "Returns the Japanese name of the month."},
    {u"NumToJText ( number ; separator ; characterType )", numToJText, "Writes a number in Japanese."},
    {u"RomanHankaku ( text )", turned<halfWidthRoman>,
     "Turns full-width Roman characters into half-width ones."},
    {u"RomanZenkaku ( text )", turned<fullWidthRoman>,
     "Turns half-width Roman characters into full-width ones."},
    {u"YearName ( date ; format )", yearName, "Returns the year in the Japanese calendar."},
};

} // namespace

std::span<const Builtin> japaneseFunctions() {
    return kFunctions;
}

} // namespace host

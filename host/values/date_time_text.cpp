// Dates and times as text: writing and reading them.
#include "host/values/date_time.h"
#include "host/values/formats.h"
#include "host/values/text.h"

#include <array>
#include <utility>

namespace host {

namespace {

// Reads a text from its start. A take or read function that finds nothing leaves the text as it was.
class Reader {
  public:
    explicit Reader(std::u16string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }

    bool take(char16_t c) {
        if (!rest_.starts_with(c)) {
            return false;
        }
        rest_.remove_prefix(1);
        return true;
    }

    // Takes the next character if it is one of [characters]; else returns 0.
    char16_t takeAny(std::u16string_view characters) {
        if (rest_.empty() || characters.find(rest_.front()) == std::u16string_view::npos) {
            return 0;
        }
        const char16_t c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }

    bool skipBlanks() {
        const size_t before = rest_.size();
        while (takeAny(u" \t\u00A0\u202F") != 0) {
        }
        return rest_.size() < before;
    }

    std::u16string_view digits() {
        size_t count = 0;
        while (count < rest_.size() && rest_[count] >= u'0' && rest_[count] <= u'9') {
            ++count;
        }
        const std::u16string_view result = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return result;
    }

    // Reads a whole number of at most [digitsAtMost] digits; nothing when there is none or a longer one.
    std::optional<int64_t> number(size_t digitsAtMost) {
        const std::u16string_view before = rest_;
        const std::u16string_view found = digits();
        if (found.empty() || found.size() > digitsAtMost) {
            rest_ = before;
            return std::nullopt;
        }
        int64_t value = 0;
        for (const char16_t c : found) {
            value = value * 10 + (c - u'0');
        }
        return value;
    }

    // Reads AM or PM, or the words for them in the formats in use; returns 0 or 12, nothing for neither.
    std::optional<int> halfDay() {
        const std::u16string_view before = rest_;
        skipBlanks();
        for (const auto& [word, hours] : {std::pair<std::u16string_view, int>{formats().morning, 0},
                                          {formats().afternoon, 12},
                                          {u"AM", 0},
                                          {u"PM", 12}}) {
            if (!word.empty() && foldCase(rest_.substr(0, word.size())) == foldCase(word)) {
                rest_.remove_prefix(word.size());
                return hours;
            }
        }
        rest_ = before;
        return std::nullopt;
    }

  private:
    std::u16string_view rest_;
};

// Returns the year that is meant: one of one or two digits is within the hundred years around this one.
int64_t fullYear(int64_t year, size_t digits) {
    constexpr int kAhead = 30;
    if (digits > 2) {
        return year;
    }
    const int64_t last = DateTime::now().calendar().year + kAhead;
    const int64_t candidate = last / 100 * 100 + year;
    return candidate > last ? candidate - 100 : candidate;
}

// Reads a separator, which must be [wanted] unless that is 0; returns it, or 0 when there is none.
char16_t readSeparator(Reader& reader, DateOrder order, char16_t wanted) {
    const char16_t found = reader.takeAny(wanted == 0 ? u"/-." : std::u16string_view(&wanted, 1));
    if (found == u'.' && order != DateOrder::monthDayYear) {
        reader.skipBlanks();
    }
    return found;
}

// Reads day, month and year in the given order; returns the day's number.
std::optional<int32_t> readDay(Reader& reader, DateOrder order) {
    std::array<int64_t, 3> parts{};
    std::array<size_t, 3> digits{};
    char16_t separator = 0;
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            separator = readSeparator(reader, order, separator);
        }
        const std::u16string_view found = i > 0 && separator == 0 ? std::u16string_view() : reader.digits();
        if (found.empty() || found.size() > 4) {
            return std::nullopt;
        }
        digits[i] = found.size();
        parts[i] = Reader(found).number(4).value_or(0);
    }
    if (separator == u'.' && order != DateOrder::monthDayYear) {
        reader.take(u'.');
    }
    const size_t year = order == DateOrder::yearMonthDay ? 0 : 2;
    const size_t month = order == DateOrder::monthDayYear ? 0 : 1;
    const size_t day = 3 - year - month;
    if (digits[month] > 2 || digits[day] > 2 || digits[year] == 3) {
        return std::nullopt;
    }
    const int64_t whole = fullYear(parts[year], digits[year]);
    return isCalendarDay(whole, parts[month], parts[day]) ? dayNumber(whole, parts[month], parts[day])
                                                          : std::nullopt;
}

// Reads minutes or seconds behind a separator.
std::optional<int64_t> readSixtieth(Reader& reader) {
    const auto number = reader.number(2);
    return number && *number <= 59 ? number : std::nullopt;
}

// Reads hours, minutes and seconds, of which the last may be missing; before AM or PM the minutes, too. Returns all
// as seconds.
std::optional<Number> readSeconds(Reader& reader) {
    const bool negative = reader.take(u'-');
    const auto hour = reader.number(7);
    if (!hour) {
        return std::nullopt;
    }
    const char16_t mark = reader.take(formats().timeSeparator) ? formats().timeSeparator
                          : reader.take(u':')                  ? u':'
                                                               : u'\0';
    const auto minute = mark != 0 ? readSixtieth(reader) : std::optional<int64_t>(0);
    if (!minute) {
        return std::nullopt;
    }
    Number second;
    if (mark != 0 && reader.take(mark)) {
        const auto whole = readSixtieth(reader);
        if (!whole) {
            return std::nullopt;
        }
        second = *whole;
        if (reader.take(formats().decimalPoint) || reader.take(u'.')) {
            second = second + Number::fromText(std::u16string(u".").append(reader.digits()));
        }
    }
    int64_t hours = *hour;
    const auto half = reader.halfDay();
    if (half ? hours < 1 || negative : mark == 0) {
        return std::nullopt;
    }
    if (half && hours <= 12) {
        hours = hours % 12 + *half;
    }
    const Number seconds = Number(hours * 3600 + *minute * 60) + second;
    return negative ? -seconds : seconds;
}

// Calls [read] on a text without the blanks around it; nothing when that does not read it to its end.
template <class Read>
auto readWhole(std::u16string_view text, Read read) -> decltype(read(std::declval<Reader&>())) {
    Reader reader(text);
    reader.skipBlanks();
    auto result = read(reader);
    reader.skipBlanks();
    return reader.atEnd() ? result : std::nullopt;
}

std::u16string padded(int64_t value, size_t width) {
    std::string digits = std::to_string(value);
    if (digits.size() < width) {
        digits.insert(0, width - digits.size(), '0');
    }
    return {digits.begin(), digits.end()};
}

} // namespace

std::u16string DateTime::dateText() const {
    const Formats& form = formats();
    const CalendarDay parts = calendar();
    const size_t width = form.twoDigits ? 2 : 1;
    const std::u16string day = padded(parts.day, width);
    const std::u16string month = padded(parts.month, width);
    const std::u16string year = padded(parts.year, 4);
    const char16_t mark = form.dateSeparator;
    switch (form.dateOrder) {
    case DateOrder::dayMonthYear:
        return day + mark + month + mark + year;
    case DateOrder::yearMonthDay:
        return year + mark + month + mark + day;
    default:
        return month + mark + day + mark + year;
    }
}

namespace {

// Returns a time, which must not be negative, as hours, minutes and seconds.
std::u16string clockText(const Number& hours, const Number& seconds, size_t hourWidth) {
    const Formats& form = formats();
    const int64_t whole = seconds.toInt64();
    std::u16string text = padded(hours.toInt64(), hourWidth) + form.timeSeparator +
                          padded(whole / 60 % 60, 2) + form.timeSeparator + padded(whole % 60, 2);
    if (!seconds.isInteger()) {
        text += form.decimalPoint + (seconds - Number(whole)).toText().substr(1);
    }
    return text;
}

} // namespace

std::u16string DateTime::timeText() const {
    const Number size = seconds_.abs();
    return (seconds_.sign() < 0 ? u"-" : u"") + clockText(size.toInt64() / 3600, size, 1);
}

// The time of a time stamp lies inside its day; any other time is written as timeText() does.
std::u16string DateTime::timestampText() const {
    const Formats& form = formats();
    const int64_t hours = seconds_.toInt64() / 3600;
    if (seconds_.sign() < 0 || hours >= 24) {
        return dateText() + u" " + timeText();
    }
    if (!form.twelveHours) {
        return dateText() + u" " + clockText(hours, seconds_, form.twoDigits ? 2 : 1);
    }
    return dateText() + u" " + clockText((hours + 11) % 12 + 1, seconds_, 1) + u" " +
           (hours < 12 ? form.morning : form.afternoon);
}

std::optional<DateTime> DateTime::dateFromText(std::u16string_view text, DateOrder order) {
    const auto day = readWhole(text, [order](Reader& reader) { return readDay(reader, order); });
    return day ? std::optional(DateTime(*day)) : std::nullopt;
}

std::optional<DateTime> DateTime::timeFromText(std::u16string_view text) {
    const auto seconds = readWhole(text, readSeconds);
    return seconds ? fromSeconds(*seconds) : std::nullopt;
}

std::optional<DateTime> DateTime::timestampFromText(std::u16string_view text, DateOrder order) {
    return readWhole(text, [order](Reader& reader) -> std::optional<DateTime> {
        const auto day = readDay(reader, order);
        if (!day) {
            return std::nullopt;
        }
        if (!reader.skipBlanks() || reader.atEnd()) {
            return DateTime(*day);
        }
        const auto seconds = readSeconds(reader);
        const auto time = seconds ? fromSeconds(*seconds) : std::nullopt;
        return time ? DateTime(*day, time->seconds()).normalized() : std::nullopt;
    });
}

} // namespace host

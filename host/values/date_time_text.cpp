// How dates and times are written and read.
#include "host/values/date_time.h"

#include <utility>

namespace host {

namespace {

// Reads a text from its start, piece by piece.
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

    // One of the characters; 0 when the next is none of them.
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

    // A whole number of so many digits at most; nothing, and nothing read, when there is none or a longer
    // one.
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

    // AM or PM: 0 or 12; nothing when there is neither.
    std::optional<int> halfDay() {
        const std::u16string_view before = rest_;
        skipBlanks();
        const char16_t half = takeAny(u"aApP");
        if (half == 0 || takeAny(u"mM") == 0) {
            rest_ = before;
            return std::nullopt;
        }
        return half == u'p' || half == u'P' ? 12 : 0;
    }

  private:
    std::u16string_view rest_;
};

// A year has four digits: a shorter one could mean this century or the first.
std::optional<int64_t> readYear(Reader& reader) {
    const std::u16string_view digits = reader.digits();
    return digits.size() == 4 ? Reader(digits).number(4) : std::nullopt;
}

// A separator, the wanted one unless that is 0; answers 0 when there is none.
char16_t readSeparator(Reader& reader, DateOrder order, char16_t wanted) {
    const char16_t found = reader.takeAny(wanted == 0 ? u"/-." : std::u16string_view(&wanted, 1));
    if (found == u'.' && order != DateOrder::monthDayYear) {
        reader.skipBlanks();
    }
    return found;
}

std::optional<int32_t> readDay(Reader& reader, DateOrder order) {
    const bool yearFirst = order == DateOrder::yearMonthDay;
    const auto first = yearFirst ? readYear(reader) : reader.number(2);
    const char16_t separator = first ? readSeparator(reader, order, 0) : u'\0';
    const auto second = separator != 0 ? reader.number(2) : std::nullopt;
    if (!second || readSeparator(reader, order, separator) == 0) {
        return std::nullopt;
    }
    const auto third = yearFirst ? reader.number(2) : readYear(reader);
    if (!third) {
        return std::nullopt;
    }
    if (separator == u'.' && order != DateOrder::monthDayYear) {
        reader.take(u'.');
    }
    const int64_t year = yearFirst ? *first : *third;
    const int64_t month = order == DateOrder::monthDayYear ? *first : *second;
    const int64_t day = order == DateOrder::monthDayYear ? *second : yearFirst ? *third : *first;
    return isCalendarDay(year, month, day) ? dayNumber(year, month, day) : std::nullopt;
}

std::optional<Number> readSeconds(Reader& reader) {
    const bool negative = reader.take(u'-');
    const auto hour = reader.number(7);
    const auto minute = hour && reader.take(u':') ? reader.number(2) : std::nullopt;
    if (!minute || *minute > 59) {
        return std::nullopt;
    }
    Number second;
    if (reader.take(u':')) {
        const auto whole = reader.number(2);
        if (!whole || *whole > 59) {
            return std::nullopt;
        }
        second = *whole;
        if (reader.take(u'.')) {
            second = second + Number::fromText(std::u16string(u".").append(reader.digits()));
        }
    }
    int64_t hours = *hour;
    if (const auto half = reader.halfDay()) {
        if (hours < 1 || hours > 12 || negative) {
            return std::nullopt;
        }
        hours = hours % 12 + *half;
    }
    const Number seconds = Number(hours * 3600 + *minute * 60) + second;
    return negative ? -seconds : seconds;
}

// A text without the blanks around it, read to its end, or nothing.
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
    const CalendarDay day = calendar();
    return padded(day.month, 1) + u"/" + padded(day.day, 1) + u"/" + padded(day.year, 4);
}

std::u16string DateTime::timeText() const {
    const Number size = seconds_.abs();
    const int64_t whole = size.toInt64();
    std::u16string text = seconds_.sign() < 0 ? u"-" : u"";
    text += padded(whole / 3600, 1) + u":" + padded(whole / 60 % 60, 2) + u":" + padded(whole % 60, 2);
    if (!size.isInteger()) {
        text += (size - Number(whole)).toText();
    }
    return text;
}

std::u16string DateTime::timestampText() const {
    return dateText() + u" " + timeText();
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

// Reading order: days of the calendar, the words, tokens, then the parser. The parser walks the tokens once;
// at each token the first rule that matches takes as many tokens as it can.

#include "frameworks/Foundation/natural_date.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <vector>

namespace foundation {

namespace {

// Days

using std::chrono::days;
using std::chrono::sys_days;

std::chrono::year_month_day dayOf(const CivilTime& time) {
    return std::chrono::year(time.year) / time.month / time.day;
}

void setDay(CivilTime& time, std::chrono::year_month_day day) {
    time.year = static_cast<int>(day.year());
    time.month = static_cast<int>(static_cast<unsigned>(day.month()));
    time.day = static_cast<int>(static_cast<unsigned>(day.day()));
}

void addDays(CivilTime& time, long count) {
    setDay(time, sys_days(dayOf(time)) + days(count));
}

// Adds months to a time; where the new month has no such day, it becomes the month's last day.
void addMonths(CivilTime& time, long count) {
    const auto month = dayOf(time).year() / dayOf(time).month() + std::chrono::months(count);
    const auto last = (month / std::chrono::last).day();
    setDay(time, month / std::min(dayOf(time).day(), last));
}

void addSeconds(CivilTime& time, long count) {
    const auto moment = std::chrono::sys_seconds(sys_days(dayOf(time))) + std::chrono::hours(time.hour) +
                        std::chrono::minutes(time.minute) + std::chrono::seconds(time.second + count);
    const auto day = std::chrono::floor<days>(moment);
    const std::chrono::hh_mm_ss clock(moment - day);
    setDay(time, day);
    time.hour = static_cast<int>(clock.hours().count());
    time.minute = static_cast<int>(clock.minutes().count());
    time.second = static_cast<int>(clock.seconds().count());
}

// Words

struct Word {
    std::string_view text;
    int number;
};

template <std::size_t count>
std::optional<int> lookUp(const std::array<Word, count>& words, std::string_view text) {
    for (const auto& word : words) {
        if (word.text == text) {
            return word.number;
        }
    }
    return std::nullopt;
}

constexpr std::array<Word, 24> kMonths = {
    {{"january", 1}, {"february", 2}, {"march", 3},     {"april", 4},    {"may", 5},       {"june", 6},
     {"july", 7},    {"august", 8},   {"september", 9}, {"october", 10}, {"november", 11}, {"december", 12},
     {"jan", 1},     {"feb", 2},      {"mar", 3},       {"apr", 4},      {"jun", 6},       {"jul", 7},
     {"aug", 8},     {"sep", 9},      {"sept", 9},      {"oct", 10},     {"nov", 11},      {"dec", 12}}};

constexpr std::array<Word, 18> kWeekdays = {{{"sunday", 0},
                                             {"monday", 1},
                                             {"tuesday", 2},
                                             {"wednesday", 3},
                                             {"thursday", 4},
                                             {"friday", 5},
                                             {"saturday", 6},
                                             {"sun", 0},
                                             {"mon", 1},
                                             {"tue", 2},
                                             {"tues", 2},
                                             {"wed", 3},
                                             {"thu", 4},
                                             {"thur", 4},
                                             {"thurs", 4},
                                             {"fri", 5},
                                             {"sat", 6},
                                             {"weds", 3}}};

constexpr std::array<Word, 3> kDays = {{{"today", 0}, {"tomorrow", 1}, {"yesterday", -1}}};

constexpr std::array<Word, 14> kCounts = {{{"a", 1},
                                           {"an", 1},
                                           {"one", 1},
                                           {"two", 2},
                                           {"three", 3},
                                           {"four", 4},
                                           {"five", 5},
                                           {"six", 6},
                                           {"seven", 7},
                                           {"eight", 8},
                                           {"nine", 9},
                                           {"ten", 10},
                                           {"eleven", 11},
                                           {"twelve", 12}}};

enum Unit : int { kSecond, kMinute, kHour, kDay, kWeek, kMonth, kYear };
constexpr std::array<Word, 18> kUnits = {{{"second", kSecond},
                                          {"seconds", kSecond},
                                          {"sec", kSecond},
                                          {"secs", kSecond},
                                          {"minute", kMinute},
                                          {"minutes", kMinute},
                                          {"min", kMinute},
                                          {"mins", kMinute},
                                          {"hour", kHour},
                                          {"hours", kHour},
                                          {"day", kDay},
                                          {"days", kDay},
                                          {"week", kWeek},
                                          {"weeks", kWeek},
                                          {"month", kMonth},
                                          {"months", kMonth},
                                          {"year", kYear},
                                          {"years", kYear}}};

constexpr std::array<Word, 3> kDirections = {{{"next", 1}, {"last", -1}, {"this", 0}}};

constexpr std::array<Word, 4> kSuffixes = {{{"st", 0}, {"nd", 0}, {"rd", 0}, {"th", 0}}};

// Tokens

struct Token {
    enum class Kind { number, word, mark } kind;
    std::string text; // lower case
    int number = 0;
    bool spaced = false; // whether blanks come before it
};

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}
constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr std::size_t kMaxText = 200;

// Returns the tokens of a text; nothing when it has characters that no date has, or a number that is too
// long.
std::optional<std::vector<Token>> tokenize(std::string_view text) {
    std::vector<Token> tokens;
    bool spaced = false;
    if (text.size() > kMaxText) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t start = i;
        if (std::string_view(" \t\r\n").find(text[i]) != std::string_view::npos) {
            spaced = true;
            ++i;
            continue;
        }
        // The narrow and the usual no-break space, which systems put before AM and PM.
        if (const auto blank = text.substr(i, 3); blank == "\u202F" || blank.substr(0, 2) == "\u00A0") {
            spaced = true;
            i += blank == "\u202F" ? 3 : 2;
            continue;
        }
        Token token{Token::Kind::mark, {}, 0, spaced};
        spaced = false;
        if (isDigit(text[i])) {
            token.kind = Token::Kind::number;
            while (i < text.size() && isDigit(text[i])) {
                ++i;
            }
            if (i - start > 9) {
                return std::nullopt;
            }
            token.number = std::stoi(std::string(text.substr(start, i - start)));
        } else if (isLetter(text[i])) {
            token.kind = Token::Kind::word;
            while (i < text.size() && isLetter(text[i])) {
                ++i;
            }
        } else if (std::string_view("/.-:,+").find(text[i]) != std::string_view::npos) {
            ++i;
        } else {
            return std::nullopt;
        }
        token.text = std::string(text.substr(start, i - start));
        std::transform(token.text.begin(), token.text.end(), token.text.begin(), lower);
        tokens.push_back(std::move(token));
    }
    return tokens;
}

// The parser

class Parser {
  public:
    Parser(std::vector<Token> tokens, const CivilTime& now, bool dayFirst)
        : tokens_(std::move(tokens)), now_(now), dayFirst_(dayFirst), date_(now) {}

    std::optional<NaturalDate> run() {
        while (at_ < tokens_.size()) {
            if (skipFiller() || (!haveTime_ && (clock() || clockWord())) ||
                (haveTime_ && haveClock_ && !offset_ && zone())) {
                continue;
            }
            if (haveDate_ ||
                !(compactDate() || digitDate() || monthDate() || relative() || dayWord() || weekday())) {
                return std::nullopt;
            }
        }
        if (weekday_ && !haveDate_) {
            toWeekday(*weekday_, direction_);
            haveDate_ = true;
        }
        if ((!haveDate_ && !haveTime_) || !dayOf(date_).ok() || date_.year < 1 || date_.year > kLastYear) {
            return std::nullopt;
        }
        CivilTime time = haveExactTime_ ? date_ : clock_;
        setDay(time, dayOf(date_));
        return NaturalDate{time, offset_};
    }

  private:
    const Token* peek(std::size_t ahead = 0) const {
        return at_ + ahead < tokens_.size() ? &tokens_[at_ + ahead] : nullptr;
    }
    bool isNumber(std::size_t ahead) const { return peek(ahead) && peek(ahead)->kind == Token::Kind::number; }
    bool is(std::size_t ahead, std::string_view text) const {
        return peek(ahead) && peek(ahead)->text == text;
    }
    int number(std::size_t ahead) const { return peek(ahead)->number; }
    std::size_t digits(std::size_t ahead) const { return peek(ahead)->text.size(); }
    template <std::size_t count>
    std::optional<int> word(std::size_t ahead, const std::array<Word, count>& words) const {
        return peek(ahead) ? lookUp(words, peek(ahead)->text) : std::nullopt;
    }
    bool take(std::size_t count) {
        at_ += count;
        return true;
    }

    bool skipFiller() {
        if (is(0, ",") || is(0, "at") || is(0, "on")) {
            return at_ + 1 < tokens_.size() && take(1);
        }
        return haveDate_ && !haveTime_ && is(0, "t") && isNumber(1) && take(1);
    }

    // Reads "14:30", "14:30:15.5", "2:30 PM", "2 pm"; after a T also "143015".
    bool clock() {
        const bool afterT = at_ > 0 && tokens_[at_ - 1].text == "t";
        if (!isNumber(0)) {
            return false;
        }
        CivilTime time = now_;
        time.minute = time.second = 0;
        std::size_t used = 1;
        if (afterT && (digits(0) == 4 || digits(0) == 6) && !is(1, ":")) {
            const int packed = digits(0) == 4 ? number(0) * 100 : number(0);
            time.hour = packed / 10000;
            time.minute = packed / 100 % 100;
            time.second = packed % 100;
        } else if (is(1, ":") && isNumber(2) && digits(0) <= 2 && digits(2) == 2) {
            time.hour = number(0);
            time.minute = number(2);
            used = 3;
            if (is(3, ":") && isNumber(4) && digits(4) == 2) {
                time.second = number(4);
                used = 5;
                if (is(5, ".") && isNumber(6)) { // fractions are dropped
                    used = 7;
                }
            }
        } else if (!(is(1, "am") || is(1, "pm")) && !afterT) {
            return false;
        } else {
            time.hour = number(0);
        }
        if (is(used, "am") || is(used, "pm")) {
            if (time.hour < 1 || time.hour > 12) {
                return false;
            }
            time.hour = time.hour % 12 + (is(used, "pm") ? 12 : 0);
            ++used;
        }
        if (time.hour > 23 || time.minute > 59 || time.second > 59) {
            return false;
        }
        setClock(time);
        haveClock_ = true;
        return take(used);
    }

    bool clockWord() {
        if (!is(0, "noon") && !is(0, "midnight")) {
            return false;
        }
        CivilTime time;
        time.hour = is(0, "noon") ? 12 : 0;
        setClock(time);
        return take(1);
    }

    void setClock(const CivilTime& time) {
        clock_.hour = time.hour;
        clock_.minute = time.minute;
        clock_.second = time.second;
        haveTime_ = true;
        haveExactTime_ = false;
    }

    // Reads "Z", "UTC", "GMT", "+01:00", "-0500", "+01".
    bool zone() {
        if (is(0, "z") || is(0, "utc") || is(0, "gmt")) {
            offset_ = 0;
            return take(1);
        }
        if ((!is(0, "+") && !is(0, "-")) || !isNumber(1)) {
            return false;
        }
        int hours = number(1);
        int minutes = 0;
        std::size_t used = 2;
        if (digits(1) == 4) {
            minutes = hours % 100;
            hours /= 100;
        } else if (digits(1) != 2) {
            return false;
        } else if (is(2, ":") && isNumber(3) && digits(3) == 2) {
            minutes = number(3);
            used = 4;
        }
        if (hours > 18 || minutes > 59) {
            return false;
        }
        offset_ = (is(0, "-") ? -1 : 1) * (hours * 3600 + minutes * 60);
        return take(used);
    }

    bool setDate(int year, int month, int day) {
        date_.year = year;
        date_.month = month;
        date_.day = day;
        haveDate_ = true;
        return dayOf(date_).ok();
    }

    // Returns the year at a token, by its number of digits; nothing for one or three digits.
    std::optional<int> year(std::size_t ahead) const {
        if (digits(ahead) == 4) {
            return number(ahead);
        }
        if (digits(ahead) != 2) {
            return std::nullopt;
        }
        const int earliest = now_.year - 80;
        const int century = earliest - earliest % 100 + number(ahead);
        return century < earliest ? century + 100 : century;
    }

    // Reads "20101225".
    bool compactDate() {
        if (!isNumber(0) || digits(0) != 8) {
            return false;
        }
        return setDate(number(0) / 10000, number(0) / 100 % 100, number(0) % 100) && take(1);
    }

    // Reads "2010-12-25", "12/25/2010", "25.12.2010", "12/25". With full stops the day always comes first.
    bool digitDate() {
        if (!isNumber(0) || !isNumber(2) || !(is(1, "/") || is(1, ".") || is(1, "-"))) {
            return false;
        }
        const std::string& mark = peek(1)->text;
        const bool three = is(3, mark) && isNumber(4);
        if (digits(0) == 4) {
            return three && digits(2) <= 2 && digits(4) <= 2 && setDate(number(0), number(2), number(4)) &&
                   take(5);
        }
        if (digits(0) > 2 || digits(2) > 2 || (!three && mark == "-")) {
            return false;
        }
        const auto written = three ? year(4) : now_.year;
        if (!written) {
            return false;
        }
        int month = number(0);
        int day = number(2);
        if (mark == "." || dayFirst_) {
            std::swap(month, day);
        }
        if (month > 12 && day <= 12) { // only valid in the other order
            std::swap(month, day);
        }
        const bool closed = !three && mark == "." && is(3, ".");
        return setDate(*written, month, day) && take(three ? 5 : closed ? 4 : 3);
    }

    // Reads "25 December 2010", "December 25, 2010", "25th of Dec", "December 2010".
    bool monthDate() {
        std::size_t used = 0;
        std::optional<int> day;
        const auto takeDay = [&] {
            if (!isNumber(used) || digits(used) > 2) {
                return;
            }
            day = number(used++);
            if (peek(used) && !peek(used)->spaced && word(used, kSuffixes)) {
                ++used;
            } else if (is(used, ".")) {
                ++used;
            }
        };
        takeDay();
        if (day && (is(used, "of") || is(used, "-"))) {
            ++used;
        }
        const auto month = word(used, kMonths);
        if (!month) {
            return false;
        }
        ++used;
        if (is(used, ".") || is(used, "-")) {
            ++used;
        }
        const bool clockNext = is(used + 1, ":") || is(used + 1, "am") || is(used + 1, "pm");
        if (!day && !clockNext) {
            takeDay();
        }
        if (is(used, ",") && isNumber(used + 1) && digits(used + 1) == 4) {
            ++used;
        }
        std::optional<int> written;
        if (isNumber(used) && !is(used + 1, ":") && !is(used + 1, "am") && !is(used + 1, "pm")) {
            written = year(used);
            if (!written) {
                return false;
            }
            ++used;
        }
        if (!day && !written) {
            return false;
        }
        return setDate(written.value_or(now_.year), *month, day.value_or(1)) && take(used);
    }

    void move(int unit, long count) {
        switch (unit) {
        case kSecond:
        case kMinute:
        case kHour:
            haveTime_ = haveExactTime_ = true;
            addSeconds(date_, count * (unit == kSecond ? 1 : unit == kMinute ? 60 : 3600));
            break;
        case kDay:
            addDays(date_, count);
            break;
        case kWeek:
            addDays(date_, 7 * count);
            break;
        case kMonth:
            addMonths(date_, count);
            break;
        default:
            addMonths(date_, 12 * count);
            break;
        }
        haveDate_ = true;
    }

    // Reads "1 week ago", "in 3 days", "two hours from now", "next month".
    bool relative() {
        if (const auto direction = word(0, kDirections)) {
            if (const auto unit = word(1, kUnits); unit && *unit >= kDay) {
                move(*unit, *direction);
                return take(2);
            }
        }
        std::size_t used = is(0, "in") ? 1 : 0;
        const bool ahead = used != 0;
        long count = 0;
        if (isNumber(used)) {
            count = number(used);
        } else if (const auto spelled = word(used, kCounts)) {
            count = *spelled;
        } else {
            return false;
        }
        const auto unit = word(used + 1, kUnits);
        if (!unit || count > kMostUnits) {
            return false;
        }
        used += 2;
        if (ahead) {
            move(*unit, count);
        } else if (is(used, "ago")) {
            move(*unit, -count);
            ++used;
        } else if (is(used, "from") && (is(used + 1, "now") || is(used + 1, "today"))) {
            move(*unit, count);
            used += 2;
        } else if (is(used, "hence")) {
            move(*unit, count);
            ++used;
        } else {
            return false;
        }
        return take(used);
    }

    // Reads "today", "now", "day after tomorrow".
    bool dayWord() {
        if (is(0, "now")) {
            haveDate_ = haveTime_ = haveExactTime_ = true;
            return take(1);
        }
        std::size_t used = is(0, "the") ? 1 : 0;
        if (is(used, "day") && is(used + 1, "after") && is(used + 2, "tomorrow")) {
            addDays(date_, 2);
            used += 3;
        } else if (is(used, "day") && is(used + 1, "before") && is(used + 2, "yesterday")) {
            addDays(date_, -2);
            used += 3;
        } else if (const auto shift = word(0, kDays)) {
            addDays(date_, *shift);
            used = 1;
        } else {
            return false;
        }
        haveDate_ = true;
        return take(used);
    }

    // Reads "friday", "next friday". A weekday before a date is ignored.
    bool weekday() {
        if (weekday_) {
            return false;
        }
        const auto direction = word(0, kDirections);
        const std::size_t used = direction ? 1 : 0;
        weekday_ = word(used, kWeekdays);
        direction_ = direction.value_or(0);
        if (!weekday_) {
            return false;
        }
        take(used + 1);
        if (is(0, ".") && at_ + 1 < tokens_.size()) {
            take(1);
        }
        return true;
    }

    // Sets the date to a weekday: for "friday" and "this friday" the first from today on, for "next" the
    // first after today, for "last" the last before today.
    void toWeekday(int weekday, int direction) {
        const int today = static_cast<int>(std::chrono::weekday(sys_days(dayOf(now_))).c_encoding());
        int shift = (weekday - today + 7) % 7;
        if (direction > 0 && shift == 0) {
            shift = 7;
        }
        if (direction < 0) {
            shift -= 7;
        }
        addDays(date_, shift);
    }

    static constexpr int kLastYear = 9999;
    // The largest number of any unit; more could leave the range of the calendar.
    static constexpr long kMostUnits = 10'000;

    std::vector<Token> tokens_;
    CivilTime now_;
    bool dayFirst_;
    std::size_t at_ = 0;
    CivilTime date_;  // the date found; the current time until then
    CivilTime clock_; // the time found; noon until then
    bool haveDate_ = false;
    bool haveTime_ = false;
    bool haveClock_ = false;     // a time in digits, which a zone may follow
    bool haveExactTime_ = false; // the time is that of date_
    std::optional<int> weekday_;
    int direction_ = 0;
    std::optional<int> offset_;
};

} // namespace

std::optional<NaturalDate> parseNaturalDate(std::string_view text, const CivilTime& now, bool dayFirst) {
    auto tokens = tokenize(text);
    if (!tokens || tokens->empty()) {
        return std::nullopt;
    }
    return Parser(std::move(*tokens), now, dayFirst).run();
}

} // namespace foundation

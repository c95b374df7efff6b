#include "host/values/formats.h"

#include <algorithm>
#include <unicode/udat.h>
#include <unicode/uloc.h>
#include <unicode/unum.h>

namespace host {

namespace {

Formats& current() {
    static Formats formats;
    return formats;
}

// Unicode's data name some locales with their script: zh_CN is zh_Hans_CN.
bool isKnown(const std::string& locale) {
    char withScript[ULOC_FULLNAME_CAPACITY] = {};
    UErrorCode status = U_ZERO_ERROR;
    uloc_addLikelySubtags(locale.c_str(), withScript, ULOC_FULLNAME_CAPACITY, &status);
    const std::vector<std::string> known = knownLocales();
    return std::any_of(known.begin(), known.end(),
                       [&](const std::string& name) { return name == locale || name == withScript; });
}

// Returns a locale's pattern for the given styles of time and date.
std::u16string pattern(const std::string& locale, UDateFormatStyle time, UDateFormatStyle date) {
    UErrorCode status = U_ZERO_ERROR;
    UDateFormat* format = udat_open(time, date, locale.c_str(), nullptr, 0, nullptr, 0, &status);
    std::u16string result(100, u'\0');
    const int32_t length =
        udat_toPattern(format, 0, result.data(), static_cast<int32_t>(result.size()), &status);
    udat_close(format);
    result.resize(U_SUCCESS(status) ? static_cast<size_t>(length) : 0);
    return result;
}

std::u16string symbol(const std::string& locale, UDateFormatSymbolType type, size_t index) {
    UErrorCode status = U_ZERO_ERROR;
    UDateFormat* format = udat_open(UDAT_SHORT, UDAT_SHORT, locale.c_str(), nullptr, 0, nullptr, 0, &status);
    std::u16string result(50, u'\0');
    const int32_t length = udat_getSymbols(format, type, static_cast<int32_t>(index), result.data(),
                                           static_cast<int32_t>(result.size()), &status);
    udat_close(format);
    result.resize(U_SUCCESS(status) ? static_cast<size_t>(length) : 0);
    return result;
}

char16_t numberSymbol(const std::string& locale, UNumberFormatSymbol which) {
    UErrorCode status = U_ZERO_ERROR;
    UNumberFormat* format = unum_open(UNUM_DECIMAL, nullptr, 0, locale.c_str(), nullptr, &status);
    char16_t result[8] = {};
    unum_getSymbol(format, which, result, 8, &status);
    unum_close(format);
    return result[0];
}

// Returns the first separator in a pattern; [otherwise] when it has none.
char16_t separatorIn(const std::u16string& pattern, char16_t otherwise) {
    const auto found = std::find_if(pattern.begin(), pattern.end(), [](char16_t c) {
        return c == u'/' || c == u'.' || c == u'-' || c == u':';
    });
    return found == pattern.end() ? otherwise : *found;
}

DateOrder orderIn(const std::u16string& datePattern) {
    const size_t day = datePattern.find(u'd');
    const size_t month = datePattern.find_first_of(u"ML");
    const size_t year = datePattern.find_first_of(u"yu");
    return year < month  ? DateOrder::yearMonthDay
           : month < day ? DateOrder::monthDayYear
                         : DateOrder::dayMonthYear;
}

} // namespace

const Formats& formats() {
    return current();
}

void setFormats(Formats formats) {
    current() = std::move(formats);
}

DateOrder dateOrderOf(const std::string& locale) {
    return orderIn(pattern(locale, UDAT_NONE, UDAT_SHORT));
}

std::vector<std::string> knownLocales() {
    std::vector<std::string> names;
    const int32_t count = uloc_countAvailable();
    names.reserve(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        names.emplace_back(uloc_getAvailable(i));
    }
    return names;
}

std::optional<Formats> formatsOf(const std::string& locale) {
    if (!isKnown(locale)) {
        return std::nullopt;
    }
    const std::string calendar = locale + "@calendar=gregorian"; // also where the months in use are others
    const std::u16string date = pattern(calendar, UDAT_NONE, UDAT_SHORT);
    const std::u16string time = pattern(calendar, UDAT_MEDIUM, UDAT_NONE);
    Formats result;
    result.locale = locale;
    result.dateOrder = orderIn(date);
    result.dateSeparator = separatorIn(date, u'/');
    result.twoDigits = date.find(u"dd") != std::u16string::npos;
    result.timeSeparator = separatorIn(time, u':');
    result.twelveHours = time.find(u'a') != std::u16string::npos;
    result.morning = symbol(calendar, UDAT_AM_PMS, 0);
    result.afternoon = symbol(calendar, UDAT_AM_PMS, 1);
    for (size_t i = 0; i < result.monthNames.size(); ++i) {
        result.monthNames[i] = symbol(calendar, UDAT_STANDALONE_MONTHS, i);
    }
    for (size_t i = 0; i < result.dayNames.size(); ++i) {
        result.dayNames[i] = symbol(calendar, UDAT_STANDALONE_WEEKDAYS, i + 1); // 1 is Sunday
    }
    result.decimalPoint = numberSymbol(locale, UNUM_DECIMAL_SEPARATOR_SYMBOL);
    return result;
}

} // namespace host

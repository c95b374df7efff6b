#include "frameworks/Foundation/locale.h"
#include "frameworks/Foundation/natural_date.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <ostream>
#include <string>

namespace foundation {

void PrintTo(const CivilTime& time, std::ostream* out) {
    *out << time.year << '-' << time.month << '-' << time.day << ' ' << time.hour << ':' << time.minute << ':'
         << time.second;
}

namespace {

constexpr CivilTime kNow{2024, 2, 29, 10, 20, 30}; // a Thursday

struct Row {
    const char* text;
    CivilTime time;
};

std::optional<CivilTime> parse(std::string_view text, bool dayFirst = false) {
    const auto date = parseNaturalDate(text, kNow, dayFirst);
    return date ? std::optional(date->time) : std::nullopt;
}

constexpr CivilTime noon(int year, int month, int day) {
    return {year, month, day, 12, 0, 0};
}

TEST(NaturalDateTest, ReadsWhatPeopleWrite) {
    constexpr Row kRows[] = {
        {"2010-12-25", noon(2010, 12, 25)},
        {"2010-12-25 14:30", {2010, 12, 25, 14, 30, 0}},
        {"2010-12-25T14:30:15", {2010, 12, 25, 14, 30, 15}},
        {"2010-12-25t14:30:15.250", {2010, 12, 25, 14, 30, 15}},
        {"20101225", noon(2010, 12, 25)},
        {"20101225T143015", {2010, 12, 25, 14, 30, 15}},
        {"2010/12/25", noon(2010, 12, 25)},
        {"12/25/2010", noon(2010, 12, 25)},
        {"12/25/2010 14:30", {2010, 12, 25, 14, 30, 0}},
        {"12/25/2010 2:30:15 PM", {2010, 12, 25, 14, 30, 15}},
        {"12/25/2010 2:30\u202FPM", {2010, 12, 25, 14, 30, 0}},
        {"12-25-2010", noon(2010, 12, 25)},
        {"3/12/1970", noon(1970, 3, 12)},
        {"25/12/2010", noon(2010, 12, 25)},
        {"12/25", noon(2024, 12, 25)},
        {"12/25/10", noon(2010, 12, 25)},
        {"12/25/43", noon(2043, 12, 25)},
        {"12/25/44", noon(1944, 12, 25)},
        {"25.12.2010", noon(2010, 12, 25)},
        {"1.2.2010", noon(2010, 2, 1)},
        {"25.12.", noon(2024, 12, 25)},
        {"25 December 2010", noon(2010, 12, 25)},
        {"25. December 2010", noon(2010, 12, 25)},
        {"25 DEC 2010 at 9:05", {2010, 12, 25, 9, 5, 0}},
        {"25th of December, 2010", noon(2010, 12, 25)},
        {"December 25, 2010", noon(2010, 12, 25)},
        {"December 25, 2010 2:30 PM", {2010, 12, 25, 14, 30, 0}},
        {"Dec 25 2010 2:30 PM", {2010, 12, 25, 14, 30, 0}},
        {"Sept. 1st, 1999", noon(1999, 9, 1)},
        {"December 2010", noon(2010, 12, 1)},
        {"December 25", noon(2024, 12, 25)},
        {"25-Dec-2010", noon(2010, 12, 25)},
        {"Saturday, December 25, 2010", noon(2010, 12, 25)},
        {"Sat, 25 Dec 2010 09:00:00", {2010, 12, 25, 9, 0, 0}},
        {"2:30 pm December 25, 2010", {2010, 12, 25, 14, 30, 0}},
        {"today", noon(2024, 2, 29)},
        {" Tomorrow ", noon(2024, 3, 1)},
        {"YESTERDAY", noon(2024, 2, 28)},
        {"tomorrow at 3 pm", {2024, 3, 1, 15, 0, 0}},
        {"noon tomorrow", noon(2024, 3, 1)},
        {"midnight tomorrow", {2024, 3, 1, 0, 0, 0}},
        {"day after tomorrow", noon(2024, 3, 2)},
        {"the day before yesterday", noon(2024, 2, 27)},
        {"now", kNow},
        {"14:30", {2024, 2, 29, 14, 30, 0}},
        {"12 am", {2024, 2, 29, 0, 0, 0}},
        {"12:15 PM", {2024, 2, 29, 12, 15, 0}},
        {"friday", noon(2024, 3, 1)},
        {"thursday", noon(2024, 2, 29)},
        {"next thursday", noon(2024, 3, 7)},
        {"next friday", noon(2024, 3, 1)},
        {"last thursday", noon(2024, 2, 22)},
        {"last friday", noon(2024, 2, 23)},
        {"this wed 9:00", {2024, 3, 6, 9, 0, 0}},
        {"1 week ago", noon(2024, 2, 22)},
        {"a week ago", noon(2024, 2, 22)},
        {"in 3 days", noon(2024, 3, 3)},
        {"two months from now", noon(2024, 4, 29)},
        {"1 year ago", noon(2023, 2, 28)},
        {"next month", noon(2024, 3, 29)},
        {"last year", noon(2023, 2, 28)},
        {"next week", noon(2024, 3, 7)},
        {"11 hours ago", {2024, 2, 28, 23, 20, 30}},
        {"in 45 minutes", {2024, 2, 29, 11, 5, 30}},
        {"0001-01-01", noon(1, 1, 1)},
        {"9999-12-31", noon(9999, 12, 31)},
    };
    for (const auto& row : kRows) {
        EXPECT_EQ(parse(row.text), row.time) << row.text;
    }
}

TEST(NaturalDateTest, ReadsTheDayFirstWherePeopleWriteItFirst) {
    EXPECT_EQ(parse("3/12/1970", true), noon(1970, 12, 3));
    EXPECT_EQ(parse("3-12-1970", true), noon(1970, 12, 3));
    EXPECT_EQ(parse("12/25/2010", true), noon(2010, 12, 25)); // there is no 25th month
    EXPECT_EQ(parse("1970-03-12", true), noon(1970, 3, 12));
    EXPECT_EQ(parse("March 12, 1970", true), noon(1970, 3, 12));
}

TEST(NaturalDateTest, RefusesWhatIsNoDate) {
    constexpr const char* kTexts[] = {"",
                                      " ",
                                      "not a date",
                                      "Smith",
                                      "2010",
                                      "25",
                                      "december",
                                      "week",
                                      "next",
                                      "3 weeks",
                                      "2010-13-01",
                                      "2010-02-30",
                                      "2010-00-10",
                                      "2/30/2010",
                                      "13/13/2010",
                                      "0000-01-01",
                                      "10000-01-01",
                                      "12/25/2010x",
                                      "12/25/2010 25:00",
                                      "12/25/2010 10:60",
                                      "13:30 pm",
                                      "today tomorrow",
                                      "12/25/2010 1/1/2011",
                                      "12/25/2010,",
                                      "12/25/123",
                                      "1 week ago ago",
                                      "999999999999999999999",
                                      "100000 years ago",
                                      "9999 years ago",
                                      "2010-12-25T",
                                      "2010-12-25+01:00",
                                      "25 D\u00e9cembre 2010",
                                      "\xff\xfe"};
    for (const char* text : kTexts) {
        EXPECT_EQ(parse(text), std::nullopt) << text;
    }
    EXPECT_EQ(parse(std::string(1000, '1')), std::nullopt);
    EXPECT_EQ(parse(std::string("today\0", 6)), std::nullopt);
}

TEST(NaturalDateTest, KeepsTheZoneOfATime) {
    const auto offset = [](const char* text) {
        const auto date = parseNaturalDate(text, kNow, false);
        return date ? date->offset : std::nullopt;
    };
    EXPECT_EQ(offset("2010-12-25T14:30:00Z"), 0);
    EXPECT_EQ(offset("2010-12-25T14:30:00+01:30"), 5400);
    EXPECT_EQ(offset("2010-12-25 14:30 -0500"), -18000);
    EXPECT_EQ(offset("20101225T143000+02"), 7200);
    EXPECT_EQ(offset("December 25, 2010 2:30 PM GMT"), 0);
    EXPECT_EQ(offset("2010-12-25T14:30:00"), std::nullopt);
    EXPECT_EQ(parse("2010-12-25T14:30:00+99:00"), std::nullopt);
}

TEST(LocaleTest, KnowsWhoWritesTheDayFirst) {
    for (const char* locale : {"", "C", "POSIX", "en_US", "en_US_POSIX", "en", "ja_JP", "zh_CN", "en_PH"}) {
        EXPECT_FALSE(writesDayFirst(locale)) << locale;
    }
    for (const char* locale : {"de_DE", "en_GB", "fr_FR", "de", "es_US", "sv_SE", "pt_BR"}) {
        EXPECT_TRUE(writesDayFirst(locale)) << locale;
    }
}

TEST(LocaleTest, TakesTheStrongestVariable) {
    const auto set = [](const char* name, const char* value) { ::setenv(name, value, 1); };
    set("LC_ALL", "");
    set("LC_TIME", "de_AT.UTF-8@euro");
    set("LANG", "en_US.UTF-8");
    EXPECT_EQ(localeName("LC_TIME"), "de_AT");
    EXPECT_EQ(localeName("LC_NAME"), "en_US");
    set("LC_ALL", "ja_JP.UTF-8");
    EXPECT_EQ(localeName("LC_TIME"), "ja_JP");
    EXPECT_EQ(localeCountry(), "jp");
    EXPECT_TRUE(localeNamesLastFirst());
    set("LC_ALL", "C.UTF-8");
    EXPECT_EQ(localeCountry(), "us");
    EXPECT_FALSE(localeNamesLastFirst());
}

} // namespace
} // namespace foundation

#include "tests/host/wrapper/support.h"

namespace {

using fmx::Data;
using fmx::Locale;

// The day that a text names in a locale, "m/d/yyyy"; empty for none.
std::u16string dayIn(fmx::int32 locale, std::u16string_view text) {
    const fmx::DataUniquePtr data;
    data->SetAsText(*hostText(text), *fmx::LocaleUniquePtr(locale), Data::kDTDate);
    return data->IsValid() ? unitsOf(data->GetAsText()) : u"";
}

TEST(WrapperLocale, DatesAreReadAsTheLanguageWritesThem) {
    EXPECT_EQ(dayIn(Locale::kType_ENG, u"2/3/2024"), u"2/3/2024");
    EXPECT_EQ(dayIn(Locale::kType_System, u"2/3/2024"), u"2/3/2024");
    EXPECT_EQ(dayIn(Locale::kType_DEU, u"3.2.2024"), u"2/3/2024");
    EXPECT_EQ(dayIn(Locale::kType_DEU, u"31. 12. 2024"), u"12/31/2024");
    EXPECT_EQ(dayIn(Locale::kType_FRA, u"31/12/2024"), u"12/31/2024");
    EXPECT_EQ(dayIn(Locale::kType_NLD, u"31-12-2024"), u"12/31/2024");
    EXPECT_EQ(dayIn(Locale::kType_SPA_traditional, u"31/12/2024"), u"12/31/2024");
    EXPECT_EQ(dayIn(Locale::kType_JPN, u"2024/12/31"), u"12/31/2024");
    EXPECT_EQ(dayIn(Locale::kType_SWE, u"2024-12-31"), u"12/31/2024");
    EXPECT_EQ(dayIn(Locale::kType_HUN, u"2024. 12. 31."), u"12/31/2024");
    EXPECT_EQ(dayIn(Locale::kType_KOR, u"2024. 12. 31."), u"12/31/2024");
    EXPECT_EQ(dayIn(Locale::kType_CHI_stroke, u"2024/12/31"), u"12/31/2024");
    EXPECT_EQ(dayIn(Locale::kType_HI, u"३१/१२/२०२४"), u"12/31/2024");
    EXPECT_EQ(dayIn(Locale::kType_AR, u"\u200F٣١\u200F/١٢\u200F/٢٠٢٤"), u"12/31/2024");
    EXPECT_EQ(dayIn(Locale::kType_DEU, u"12/31/2024"), u"");
    EXPECT_EQ(dayIn(Locale::kType_ENG, u"31/12/2024"), u"");
    EXPECT_EQ(dayIn(Locale::kType_ENG, u"12. 31. 2024"), u"");
    EXPECT_EQ(dayIn(Locale::kType_SWE, u"31-12-2024"), u"");
}

TEST(WrapperLocale, EveryLocaleReadsADate) {
    int yearFirst = 0;
    int dayFirst = 0;
    for (fmx::int32 locale = Locale::kType_CAT; locale <= Locale::kType_KOR; ++locale) {
        const bool isYearFirst = dayIn(locale, u"2024/12/31") == u"12/31/2024";
        const bool isDayFirst = dayIn(locale, u"31/12/2024") == u"12/31/2024";
        const bool isMonthFirst = dayIn(locale, u"12/31/2024") == u"12/31/2024";
        EXPECT_EQ(isYearFirst + isDayFirst + isMonthFirst, 1) << locale;
        yearFirst += isYearFirst;
        dayFirst += isDayFirst;
    }
    EXPECT_GT(yearFirst, 5);
    EXPECT_GT(dayFirst, 40);
    for (const fmx::int32 locale : {0, 1, 2, 3, 4, 15, 77, 0xFFFF, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(dayIn(locale, u"12/31/2024"), u"12/31/2024") << locale;
        EXPECT_EQ(dayIn(locale, u"31/12/2024"), u"") << locale;
    }
}

TEST(WrapperLocale, DateTimesAreReadAsTheLanguageWritesThem) {
    const fmx::LocaleUniquePtr german(Locale::kType_DEU);
    const fmx::DateTimeUniquePtr moment(*hostText(u"31.12.2024 14:30"), *german);
    EXPECT_EQ(moment->GetMonth(), 12);
    EXPECT_EQ(moment->GetHour(), 14);
    constexpr std::u16string_view kText = u"3.2.2024 and more";
    const fmx::DateTimeUniquePtr day(reinterpret_cast<const fmx::uint16*>(kText.data()), 8, *german);
    EXPECT_EQ(day->GetDay(), 3);
    EXPECT_EQ(day->GetMonth(), 2);
    const fmx::DateTimeUniquePtr none(*hostText(u"12/31/2024"), *german);
    EXPECT_EQ(none->GetYear(), 1);
}

} // namespace

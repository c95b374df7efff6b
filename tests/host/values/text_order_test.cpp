#include "host/values/formats.h"
#include "host/values/text_order.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace host {
namespace {

// The formats of a locale, until the end of the block.
class InLocale {
  public:
    explicit InLocale(const char* locale) : before_(formats()) { setFormats(formatsOf(locale).value()); }
    InLocale(const InLocale&) = delete;
    InLocale& operator=(const InLocale&) = delete;
    ~InLocale() { setFormats(before_); }

  private:
    Formats before_;
};

// Returns the texts, one character each, in their order.
std::u16string sorted(std::u16string_view texts) {
    std::vector<std::u16string> values;
    for (const char16_t c : texts) {
        values.emplace_back(1, c);
    }
    std::stable_sort(values.begin(), values.end(),
                     [](const auto& left, const auto& right) { return compareTexts(left, right) < 0; });
    std::u16string result;
    for (const std::u16string& value : values) {
        result += value;
    }
    return result;
}

TEST(TextOrderTest, TextsThatDifferInLetterCaseAreEqual) {
    EXPECT_EQ(compareTexts(u"\u00C4pfel", u"\u00E4PFEL"), std::strong_ordering::equal);
    EXPECT_EQ(compareTexts(u"Stra\u00DFe", u"STRASSE"), std::strong_ordering::equal);
    EXPECT_EQ(compareTexts(u"", u""), std::strong_ordering::equal);
    EXPECT_NE(compareTexts(u"e", u"\u00E9"), std::strong_ordering::equal);
    EXPECT_NE(compareTexts(u"a", u"a\u0001"), std::strong_ordering::equal); // which no language counts
    EXPECT_NE(compareTexts(u"a", std::u16string(u"a\0", 2)), std::strong_ordering::equal);
    EXPECT_NE(compareTexts(u"\U0001F600", u"\U0001F601"), std::strong_ordering::equal);
}

TEST(TextOrderTest, OrdersByTheLanguage) {
    EXPECT_EQ(sorted(u"z\u00E9eZf1 _a"), u" _1ae\u00E9fzZ");
    EXPECT_EQ(compareTexts(u"abc", u"ABD"), std::strong_ordering::less);
    EXPECT_EQ(compareTexts(u"ab", u""), std::strong_ordering::greater);
    EXPECT_EQ(compareTexts(u"Zebra", u"\u00E9clair"), std::strong_ordering::greater);
    const InLocale swedish("sv_SE");
    EXPECT_EQ(compareTexts(u"zebra", u"\u00E4gg"), std::strong_ordering::less);
}

TEST(TextOrderTest, PlainTextsHaveTheirOwnOrderInOtherLanguages) {
    EXPECT_EQ(compareTexts(u"i", u"y"), std::strong_ordering::less);
    EXPECT_EQ(compareTexts(u"y", u"z"), std::strong_ordering::less);
    const InLocale lithuanian("lt_LT"); // y stands behind i
    EXPECT_EQ(compareTexts(u"y", u"j"), std::strong_ordering::less);
}

} // namespace
} // namespace host

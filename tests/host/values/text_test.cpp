#include "host/values/text.h"

#include <gtest/gtest.h>

namespace host {

namespace {

using namespace std::string_literals;

constexpr size_t kNone = std::u16string_view::npos;

TEST(TextTest, CrossesUtf8Unchanged) {
    const std::u16string text = u"a\0\u00E4\u20AC\U0001F600"s;
    EXPECT_EQ(toUtf8(text), "a\0\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"s);
    EXPECT_EQ(fromUtf8(toUtf8(text)), text);
    EXPECT_EQ(toUtf8(u""), "");
}

TEST(TextTest, ReplacesWhatIsMalformed) {
    const char16_t lone[] = {u'a', 0xD800, u'b', 0xDC00};
    EXPECT_EQ(toUtf8({lone, 4}), "a\xEF\xBF\xBD"
                                 "b\xEF\xBF\xBD");
    EXPECT_EQ(fromUtf8("a\xFF\xE2\x82z"), u"a\uFFFD\uFFFDz");
    EXPECT_EQ(fromUtf8("\xED\xA0\x80").find(char16_t{0xD800}), kNone); // a surrogate in UTF-8
    EXPECT_EQ(fromUtf8("\xC0\x80").find(u'\0'), kNone);                // an overlong zero
}

TEST(TextTest, FoldsAndShiftsCaseInAnyAlphabet) {
    EXPECT_EQ(toUpper(u"stra\u00DFe \u03B1"), u"STRASSE \u0391");
    EXPECT_EQ(toLower(u"\u00C4BC \u0130"), u"\u00E4bc i\u0307");
    EXPECT_EQ(foldCase(u"Stra\u00DFe"), foldCase(u"STRASSE"));
    EXPECT_EQ(toUpper(u"az{@`"), u"AZ{@`");
    EXPECT_EQ(toLower(u"AZ[@"), u"az[@");
    EXPECT_EQ(toUpper(std::u16string(1000, u'\u00DF')), std::u16string(2000, u'S')); // twice as long
}

TEST(TextTest, FindsIgnoringCase) {
    EXPECT_EQ(findIgnoringCase(u"xx\u00C4BC\u00E4bc", u"\u00E4Bc", 0), 2U);
    EXPECT_EQ(findIgnoringCase(u"xx\u00C4BC\u00E4bc", u"\u00E4Bc", 3), 5U);
    EXPECT_EQ(findIgnoringCase(u"abc", u"abcd", 0), kNone);
    EXPECT_EQ(findIgnoringCase(u"abc", u"a", 99), kNone);
    EXPECT_EQ(findIgnoringCase(u"abc", u"", 3), 3U);
    EXPECT_EQ(findLastIgnoringCase(u"aXax", u"AX", kNone), 2U);
    EXPECT_EQ(findLastIgnoringCase(u"aXax", u"AX", 1), 0U);
    EXPECT_EQ(findLastIgnoringCase(u"abc", u"z", kNone), kNone);
}

} // namespace

TEST(TextTest, FindsUnits) {
    const std::u16string text = u"aXnnam\u6E00\u006E\u0061 name \u3000name";
    for (const std::u16string_view wanted : {u"name", u"n", u"\u6E00", u"\u3000n", u"nowhere", u"a"}) {
        for (size_t from = 0; from <= text.size() + 1; ++from) {
            EXPECT_EQ(findUnits(text, wanted, from), text.find(wanted, from)) << from;
        }
    }
    EXPECT_EQ(findUnits(u"", u"a", 0), std::u16string_view::npos);
    // The lower byte of one character and the upper one of the next are no hit.
    EXPECT_EQ(findUnits(u"\u6E41\u0042", u"n", 0), std::u16string_view::npos);
}

} // namespace host

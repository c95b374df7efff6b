#include "frameworks/AddressBook/values/text.h"

#include <gtest/gtest.h>

#include <random>

namespace addressbook::test {
namespace {

TEST(TextTest, EveryUtf16TextReturnsUnchanged) {
    std::mt19937 random(7);
    static constexpr char16_t kUnits[] = {u'\0',  u'a',   0xE9,   0x7FF,  0x800,  0xD7FF, 0xD800,
                                          0xDBFF, 0xDC00, 0xDFFF, 0xE000, 0xFFFD, 0xFFFF};
    for (int round = 0; round < 5000; ++round) {
        std::u16string text;
        for (std::size_t length = random() % 8; length > 0; --length) {
            text.push_back(kUnits[random() % std::size(kUnits)]);
        }
        EXPECT_EQ(utf16FromUtf8(utf8FromUtf16(text)), text) << "round " << round;
    }
}

TEST(TextTest, LoneSurrogatesTakeThreeBytesAndPairsFour) {
    EXPECT_EQ(utf8FromUtf16(u"\xD83D\xDE00"), "\xF0\x9F\x98\x80");
    EXPECT_EQ(utf8FromUtf16(std::u16string{0xD83D}), "\xED\xA0\xBD");
    EXPECT_EQ(utf8FromUtf16(std::u16string{0xDE00, 0xD83D}), "\xED\xB8\x80\xED\xA0\xBD");
}

TEST(TextTest, WhatIsNoUtf8BecomesReplacementCharacters) {
    EXPECT_EQ(utf16FromUtf8("a\xFF"), u"a\xFFFD");
    EXPECT_EQ(utf16FromUtf8("\xC0\x80"), u"\xFFFD\xFFFD");        // too long a form
    EXPECT_EQ(utf16FromUtf8("\xE2\x82"), u"\xFFFD\xFFFD");        // cut short
    EXPECT_EQ(utf16FromUtf8("\xF4\x90\x80\x80").front(), 0xFFFD); // beyond Unicode
    std::mt19937 random(3);
    for (int round = 0; round < 5000; ++round) {
        std::string bytes;
        for (std::size_t length = random() % 12; length > 0; --length) {
            bytes.push_back(static_cast<char>(random()));
        }
        const std::string folded = fold(bytes);
        EXPECT_EQ(utf8FromUtf16(utf16FromUtf8(folded)), folded) << "round " << round;
    }
}

TEST(TextTest, CanonicallyEquivalentTextsNormalizeAlike) {
    EXPECT_EQ(normalize("e\u0301"), "\u00E9");
    EXPECT_EQ(normalize("\u212B"), normalize("A\u030A"));
    EXPECT_EQ(normalize("\uAC00"), normalize("\u1100\u1161"));
    EXPECT_EQ(normalize(std::string_view("a\0e\u0301", 5)), std::string_view("a\0\u00E9", 4));
    EXPECT_EQ(normalize("\xED\xA0\x80"), "\xED\xA0\x80");
}

// Texts of characters below U+0300 are not handed to ICU; with another one behind them they are.
TEST(TextTest, NoTwoCharactersBelowTheCombiningOnesCompose) {
    const std::string other = "\u674E";
    for (char16_t first = 0; first < 0x310; ++first) {
        std::u16string text{first, 0};
        for (char16_t second = 0; second < 0x310; ++second) {
            text[1] = second;
            const std::string pair = utf8FromUtf16(text);
            ASSERT_EQ(normalize(pair) + other, normalize(pair + other)) << int(first) << ", " << int(second);
            if (first < 0x300 && second < 0x300) {
                ASSERT_EQ(normalize(pair), pair);
            }
        }
    }
    for (const char* illFormed : {"\xC3",
                                  "\xC3"
                                  "a",
                                  "\xC1\x80", "\x80", "\xCB\xC3\xA9"}) {
        EXPECT_EQ(normalize(illFormed) + other, normalize(illFormed + other));
    }
}

TEST(TextTest, FoldingIsTheSameByTableAndByIcu) {
    const std::string other = "\u674E";
    for (char16_t code = 0; code < 0x310; ++code) {
        const std::string one = utf8FromUtf16({&code, 1});
        EXPECT_EQ(foldNormalized("\u00E9" + one) + other, foldNormalized("\u00E9" + one + other))
            << int(code);
    }
    EXPECT_EQ(foldNormalized("\u0130\u00DF\u0149"), "i\u0307ss\u02BCn");
}

TEST(TextTest, FoldingIgnoresCaseButNotAccents) {
    EXPECT_EQ(fold("Straße"), fold("STRASSE"));
    EXPECT_EQ(fold("ΌΔΟΣ"), fold("όδος"));
    EXPECT_EQ(fold("É"), fold("e\u0301"));
    EXPECT_EQ(fold("ABC xyz 09"), "abc xyz 09");
    EXPECT_NE(fold("é"), fold("e"));
}

TEST(TextTest, BeginningsEndBetweenCharacters) {
    EXPECT_EQ(beginning("aé", 2), "a");
    EXPECT_EQ(beginning("aé", 3), "aé");
    EXPECT_EQ(beginning("\u20AC", 2), "");
}

} // namespace
} // namespace addressbook::test

// A name in every encoding that programs write.

#include "tests/vcard/support.h"

#include <gtest/gtest.h>

namespace addressbook::vcard {
namespace {

// "Zoë" with a euro sign behind it, in UTF-16.
std::string utf16(std::string_view ascii, bool bigEndian, bool mark) {
    std::u16string units = mark ? u"\uFEFF" : u"";
    for (const char byte : ascii) {
        units.push_back(byte == '$' ? u'\u20AC' : byte == '%' ? u'\u00EB' : static_cast<char16_t>(byte));
    }
    std::string bytes;
    for (const char16_t unit : units) {
        const char high = static_cast<char>(unit >> 8), low = static_cast<char>(unit);
        bytes.push_back(bigEndian ? high : low);
        bytes.push_back(bigEndian ? low : high);
    }
    return bytes;
}

constexpr std::string_view kName = "Zo\xC3\xAB\xE2\x82\xAC"; // in UTF-8

TEST(CharsetsTest, Utf16WithAndWithoutMark) {
    for (const bool bigEndian : {false, true}) {
        for (const bool mark : {false, true}) {
            const Card card =
                readOne(utf16("begin:vcard\r\nversion:3.0\r\nn:Zo%$\r\nend:vcard\r\n", bigEndian, mark));
            EXPECT_EQ(describe(card, property::kLast), kName) << bigEndian << mark;
        }
    }
}

TEST(CharsetsTest, EncodingMayChangeFromCardToCard) {
    const ReadResult result = readAll("BEGIN:VCARD\r\nN:One\r\nEND:VCARD\r\n" +
                                      utf16("BEGIN:VCARD\r\nN:Zo%$\r\nEND:VCARD\r\n", true, false) +
                                      "BEGIN:VCARD\r\nN:Three\r\nEND:VCARD\r\n" +
                                      utf16("BEGIN:VCARD\r\nN:Zo%$\r\nEND:VCARD\r\n", false, true));
    EXPECT_TRUE(result.problems.empty());
    ASSERT_EQ(result.cards.size(), 4u);
    EXPECT_EQ(describe(result.cards[0], property::kLast), "One");
    EXPECT_EQ(describe(result.cards[1], property::kLast), kName);
    EXPECT_EQ(describe(result.cards[2], property::kLast), "Three");
    EXPECT_EQ(describe(result.cards[3], property::kLast), kName);
    EXPECT_EQ(result.cards[3].line, 10u);
}

TEST(CharsetsTest, LoneSurrogatesSurvive) {
    std::string bytes = utf16("BEGIN:VCARD\nN:A?\nEND:VCARD\n", true, true);
    bytes[bytes.find('?') - 1] = '\xD8'; // U+D83F
    const Card card = readOne(bytes);
    EXPECT_EQ(describe(card, property::kLast), "A\xED\xA0\xBF");
    EXPECT_TRUE(sameContents(card, readOne(write(card))));
}

struct Row {
    std::string bytes; // of the value of N
    std::string parameter;
    std::string expected;
};

TEST(CharsetsTest, PerProperty) {
    const std::vector<Row> rows{
        {std::string(kName), "", std::string(kName)},
        {std::string(kName), ";CHARSET=UTF-8", std::string(kName)},
        {"Zo\xEB\x80", "", std::string(kName)}, // windows-1252 by guess
        {"Zo\xEB", ";CHARSET=ISO-8859-1", "Zo\xC3\xAB"},
        {"Zo\xEB", ";CHARSET=windows-1252", "Zo\xC3\xAB"},
        {"\xC3\xAB", ";CHARSET=ISO-8859-1", "\xC3\x83\xC2\xAB"},
        {"Zo\xEB", ";CHARSET=NO-SUCH-CHARSET", "Zo\xC3\xAB"},
        {"\x95\x5C", ";CHARSET=SHIFT_JIS", "\xE8\xA1\xA8"}, // the second byte is that of a backslash
        {"\x95\x5C;\x95\x5C", ";CHARSET=SHIFT_JIS", "\xE8\xA1\xA8"},
        {"\xC7\xD1", ";CHARSET=EUC-KR", "\xED\x95\x9C"},
        {"Zo\xC3\xAB\xC3\xAB\xC3", "", "Zo\xC3\xAB\xC3\xAB\xEF\xBF\xBD"}, // cut inside a character
        {"Zo=EB=80", ";ENCODING=QUOTED-PRINTABLE", std::string(kName)},
        {"Zo=C3=AB", ";ENCODING=QUOTED-PRINTABLE;CHARSET=UTF-8", "Zo\xC3\xAB"},
        {"=95=5C", ";CHARSET=SHIFT_JIS;ENCODING=QUOTED-PRINTABLE", "\xE8\xA1\xA8"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(
            describe(readOne(cardText({"N" + row.parameter + ":" + row.bytes}, "2.1")), property::kLast),
            row.expected)
            << row.parameter;
    }
}

TEST(CharsetsTest, Utf8MarkIsNoText) {
    EXPECT_EQ(describe(readOne("\xEF\xBB\xBF" + cardText({"N:A"})), property::kLast), "A");
}

} // namespace
} // namespace addressbook::vcard

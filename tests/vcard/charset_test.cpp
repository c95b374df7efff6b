// A name in every encoding that programs write.

#include "tests/vcard/support.h"

#include "frameworks/AddressBook/vcard/charset.h"

#include <gtest/gtest.h>

#include <sstream>

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

// Cards that name no character set, as programs of many countries wrote them.
TEST(CharsetsTest, AreGuessedFromTheWholeFile) {
    struct Guess {
        std::string charset, last, first, bytes, note;
    };
    const std::vector<Guess> rows{
        // "We met at the fair in spring", Russian.
        {"windows-1251", "\xD0\x98\xD0\xB2\xD0\xB0\xD0\xBD\xD0\xBE\xD0\xB2",
         "\xD0\x9F\xD1\x91\xD1\x82\xD1\x80", "\xC8\xE2\xE0\xED\xEE\xE2;\xCF\xB8\xF2\xF0",
         "\xEC\xFB \xE2\xF1\xF2\xF0\xE5\xF2\xE8\xEB\xE8\xF1\xFC \xED\xE0 \xFF\xF0\xEC\xE0\xF0\xEA\xE5 "
         "\xE2\xE5\xF1\xED\xEE\xE9"},
        // "Please telephone in the morning. This is Japanese."
        {"Shift_JIS", "\xE8\xA1\xA8", "\xE5\xA4\xAA\xE9\x83\x8E", "\x95\x5C;\x91\xBE\x98\x59",
         "\x92\xA9\x82\xC9\x93\x64\x98\x62\x82\xF0\x82\xAD\x82\xBE\x82\xB3\x82\xA2\x81\x42"
         "\x82\xB1\x82\xEA\x82\xCD\x93\xFA\x96\x7B\x8C\xEA\x82\xC5\x82\xB7\x81\x42"},
        // "Beautiful that you were in Cologne at Easter", German.
        {"windows-1252", "M\xC3\xBCller", "Zo\xC3\xAB", "M\xFCller;Zo\xEB",
         "sch\xF6n, da\xDF Sie \xFC"
         "ber Ostern in K\xF6ln waren; die Gr\xFC\xDF"
         "e habe ich ausgerichtet"},
    };
    for (const Guess& row : rows) {
        const std::string text = cardText({"N:Ascii"}) + cardText({"N:" + row.bytes}) +
                                 cardText({"N:\xC3\xA9t\xC3\xA9"}) + cardText({"N:B", "NOTE:" + row.note});
        Reader reader{std::string_view(text)};
        std::vector<Card> cards;
        while (auto next = reader.next()) {
            cards.push_back(std::get<Card>(*next));
        }
        ASSERT_EQ(cards.size(), 4u);
        EXPECT_EQ(reader.guessed(), row.charset);
        EXPECT_EQ(describe(cards[1], property::kLast), row.last);
        EXPECT_EQ(describe(cards[1], property::kFirst), row.first);
        EXPECT_EQ(describe(cards[2], property::kLast), "\xC3\xA9t\xC3\xA9") << "a card in UTF-8 stays";
        std::istringstream stream(text);
        EXPECT_EQ(guessCharset(stream), row.charset);
    }
    std::istringstream ascii(cardText({"N:A", "NOTE;CHARSET=ISO-8859-1:\xEB", "X:\xC3\xA9"}));
    EXPECT_EQ(guessCharset(ascii), "");
}

TEST(CharsetsTest, GivenOnesOverrideTheGuess) {
    const std::string text = cardText({"N:\xC8\xE2\xE0\xED", "NOTE;CHARSET=ISO-8859-1:\xEB"});
    Reader reader(std::string_view(text), {"windows-1251", false});
    const Card card = std::get<Card>(reader.next().value());
    EXPECT_EQ(describe(card, property::kLast), "\xD0\x98\xD0\xB2\xD0\xB0\xD0\xBD");
    EXPECT_EQ(describe(card, property::kNote), "\xC3\xAB") << "a line that names its own keeps it";
    EXPECT_EQ(reader.guessed(), "");
}

TEST(CharsetsTest, Utf7) {
    EXPECT_EQ(describe(readOne(cardText({"N;CHARSET=UTF-7:Zo+AOs-;Ida +- Ole"}, "2.1")), property::kLast),
              "Zo\xC3\xAB");
    const std::string text = cardText({"N:Zo+AOs-", "PHOTO;ENCODING=b:/9j/+AOs"});
    Reader reader(std::string_view(text), {"UTF-7", false});
    const Card card = std::get<Card>(reader.next().value());
    EXPECT_EQ(describe(card, property::kLast), "Zo\xC3\xAB");
    EXPECT_EQ(describe(card, property::kImage), "6 bytes");
}

TEST(CharsetsTest, Utf8MarkIsNoText) {
    EXPECT_EQ(describe(readOne("\xEF\xBB\xBF" + cardText({"N:A"})), property::kLast), "A");
}

} // namespace
} // namespace addressbook::vcard

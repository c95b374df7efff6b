// The guess of a character set: a name or two in a file are Western unless the letters say otherwise.

#include "frameworks/AddressBook/values/charset_guess.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <string>
#include <vector>

namespace addressbook {
namespace {

// Converts by the C library, not by what guesses; what cannot be converted is empty.
std::string converted(std::string text, const std::string& from, const std::string& to) {
    const iconv_t converter = iconv_open(to.c_str(), from.c_str());
    std::string result(4 * text.size(), '\0');
    char *in = text.data(), *out = result.data();
    std::size_t left = text.size(), room = result.size();
    const bool done = iconv(converter, &in, &left, &out, &room) != static_cast<std::size_t>(-1);
    iconv_close(converter);
    result.resize(done ? result.size() - room : 0);
    return result;
}

// What a reader shows of [text], which was written in [charset].
std::string shown(const std::string& text, const std::string& charset) {
    const std::string bytes = converted(text, "UTF-8", charset);
    return converted(bytes, likelyCharset(bytes), "UTF-8");
}

TEST(CharsetGuessTest, OneShortNameIsWestern) {
    for (const std::string name : {"Müller",
                                   "Müller\r\n",
                                   "Jörg",
                                   "Zoë",
                                   "Åse",
                                   "Weiß",
                                   "Muñoz;José",
                                   "Añez;Íñigo",
                                   "Straße 5;Köln",
                                   "Renée",
                                   "Citroën",
                                   "Øystein",
                                   "Größe",
                                   "Crème brûlée",
                                   "Peña",
                                   "Ñandú",
                                   "Ève",
                                   "Þór",
                                   "Île",
                                   "Señor",
                                   "Zürich",
                                   "François",
                                   "Çelik",
                                   "Björk Guðmundsdóttir",
                                   "ß",
                                   "É",
                                   "Gänsefüßchen"}) {
        EXPECT_EQ(shown(name, "windows-1252"), name);
    }
}

TEST(CharsetGuessTest, OtherScriptsAreKnownByTheirLetters) {
    struct Row {
        std::string charset, text;
    };
    const std::vector<Row> rows{
        {"windows-1251", "Иванов"},
        {"windows-1251", "Иванов;Пётр 0\nмы встретились\nИванов;Пётр 1\nмы встретились"},
        {"KOI8-R", "Иванов;Иван;Иванович\nМосква, улица Ленина"},
        {"windows-1253", "Παπαδόπουλος"},
        {"windows-1250", "Kovács Ferenc Győr Széchenyi"},
        {"windows-1250", "Řehoř Novák ulice Příčná"},
        {"SHIFT_JIS", "東京都港区;やまだ たろう"}};
    for (const Row& row : rows) {
        EXPECT_EQ(shown(row.text, row.charset), row.text) << row.charset;
    }
}

TEST(CharsetGuessTest, LinesInAsciiDoNotWeigh) {
    std::string text;
    for (int line = 0; line < 200; ++line) {
        text += "Name,Given Name,E-mail 1 - Value,the quick brown fox and the lazy dog\n";
    }
    const std::string czech = text + "Řehoř Novák ulice Příčná\n";
    EXPECT_EQ(shown(czech, "windows-1250"), czech);
}

// Their sets differ in six letters: a text without these is Western, and called so.
TEST(CharsetGuessTest, TurkishIsKnownByItsOwnLetters) {
    EXPECT_EQ(likelyCharset("Ida;M\xFCller;ida@x.example;1;2;22.3.1980;K\xF6ln\n"), "windows-1252");
    EXPECT_EQ(likelyCharset("\xC8ve"), "windows-1252");
}

TEST(CharsetGuessTest, NothingIsWestern) {
    EXPECT_EQ(likelyCharset(""), "windows-1252");
    EXPECT_EQ(likelyCharset("\x81"), "windows-1252");
}

} // namespace
} // namespace addressbook

// What is written, line by line.

#include "tests/vcard/support.h"

#include <gtest/gtest.h>

namespace addressbook::vcard {
namespace {

using Lines = std::vector<std::string>;

TEST(WritingTest, APerson) {
    const Lines lines{
        "N:Be\\;rg;Ida;;Dr.;",
        "FN:Mill",
        "NICKNAME:Idi",
        "X-MAIDENNAME:Tal",
        "X-PHONETIC-FIRST-NAME:Eeda",
        "ORG:Mill;Bread",
        "TITLE:Baker",
        "EMAIL;type=INTERNET;type=HOME;type=pref:a@b.example",
        "TEL;type=CELL:1",
        "TEL;type=HOME;type=FAX;type=pref:2",
        "TEL;type=IPHONE;type=CELL:3",
        "item1.TEL:4",
        "item1.X-ABLabel:boat",
        "item2.ADR;type=WORK;type=pref:;;Lane 3\\nBack;Town;Shire;12345;Land",
        "item2.X-ABADR:dk",
        "NOTE:a\\nb\\,c\\;d\\\\e",
        "URL;type=pref:http://mill.example/?a,b;c",
        "BDAY;X-APPLE-OMIT-YEAR=1604;value=date:1604-02-29",
        "X-AIM;type=WORK;type=pref:ida",
        "IMPP;X-SERVICE-TYPE=AIM;type=WORK;type=pref:aim:ida",
        "IMPP;X-SERVICE-TYPE=Skype;type=HOME;type=pref:skype:ida",
        "X-SKYPE;type=HOME;type=pref:ida",
        "item3.X-ABDATE;value=date;type=pref:2001-02-03",
        "item3.X-ABLabel:_$!<Anniversary>!$_",
        "X-ANNIVERSARY;value=date;type=pref:2001-02-03",
        "X-EVOLUTION-ANNIVERSARY;value=date;type=pref:2001-02-03",
        "item4.X-ABRELATEDNAMES;type=pref:Ole",
        "item4.X-ABLabel:_$!<Brother>!$_",
        "X-ABShowAs:COMPANY",
        "PHOTO;ENCODING=b;TYPE=JPEG:/9j/AAE=",
        "X-OTHER;A=b:c",
        "UID:6B29A774-D124-4822-B8D0-2780EC117F60",
        "X-ABUID:6B29A774-D124-4822-B8D0-2780EC117F60:ABPerson",
    };
    EXPECT_EQ(linesOf(write(readOne(cardText(lines)))), lines);
}

TEST(WritingTest, FullNames) {
    const auto fullName = [](const Lines& lines) {
        for (const std::string& line : linesOf(write(readOne(cardText(lines))))) {
            if (line.starts_with("FN:")) {
                return line.substr(3);
            }
        }
        return std::string("none");
    };
    EXPECT_EQ(fullName({"N:Berg;Ida;Maria;Dr.;jun."}), "Dr. Ida Maria Berg jun.");
    EXPECT_EQ(fullName({"ORG:Mill"}), "Mill");
    EXPECT_EQ(fullName({"NICKNAME:Idi"}), "Idi");
    EXPECT_EQ(fullName({"EMAIL:a@b.example", "TEL:1"}), "a@b.example");
    EXPECT_EQ(fullName({"TEL:1"}), "1");
}

TEST(WritingTest, FoldsAt75BytesInsideNoCharacter) {
    for (std::size_t shift = 0; shift < 5; ++shift) {
        std::string note(200 + shift, 'a');
        for (int at = 0; at < 200; ++at) {
            note += at % 3 ? "\xE2\x82\xAC" : "\xF0\x9F\x9A\xA3";
        }
        Card card = readOne(cardText({"N:A", "NOTE:" + note}));
        const std::string text = write(card);
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = text.find("\r\n", start);
            EXPECT_LE(end - start, 75u);
            const std::size_t first = text[start] == ' ' ? start + 1 : start;
            EXPECT_NE(static_cast<unsigned char>(text[first]) & 0xC0, 0x80)
                << "a line begins inside a character";
            start = end + 2;
        }
        EXPECT_EQ(describe(readOne(text), property::kNote), note);
    }
}

TEST(WritingTest, AdditionsLeaveWithTheValueTheyBelongTo) {
    Card card = readOne(cardText({"N:A", "TEL;X-ID=7:1", "TEL;X-ID=8:2"}));
    card.values["Phone"].as<MultiValue>()->entries[0].value = std::string("3");
    const Lines lines = linesOf(write(card));
    EXPECT_EQ(lines, (Lines{"N:A;;;;", "FN:A", "TEL:3", "TEL;X-ID=8:2"}));
}

TEST(WritingTest, EmptyCardAndValuesOfOtherTypes) {
    Card card;
    EXPECT_EQ(linesOf(write(card)), (Lines{"N:;;;;", "FN:"}));
    card.values["Phone"] = std::string("not a list");
    card.values["Note"] = Date{1};
    card.values["Birthday"] = Date{1e300};
    card.values[".VCardLines"] =
        Array{std::int64_t{1}, std::string("no property"), std::string("+"), std::string()};
    card.values["Email"] = MultiValue{{Entry{"1", "x", Value()}, Entry{"2", "y", Bytes{1}}}, ""};
    EXPECT_EQ(linesOf(write(card)), (Lines{"N:;;;;", "FN:"}));
}

} // namespace
} // namespace addressbook::vcard

// CSV in and out, as users do it.

#include "tests/tools/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace addressbook {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

const std::string kTable = "First Name,Last Name,Mobile Phone,Home City,Birthday,Shoe size,Categories\r\n"
                           "Ida,Berg,99,Oslo,1980-03-22,38,Rowers;Chess\r\n"
                           "Ole,Tal,,,soon,,\r\n"
                           ",,,,,44,\r\n";

class TableTest : public testing::Test, public Sandbox {
  protected:
    std::string list(const std::string& fields) {
        std::string out = run({"list", "--fields", fields}).out, text;
        for (std::size_t start = 0; start < out.size();) { // without the ids
            const std::size_t end = out.find('\n', start);
            text += out.substr(out.find('\t', start) + 1, end - out.find('\t', start));
            start = end + 1;
        }
        return text;
    }
};

TEST_F(TableTest, IsKnownByItsContentsAndImported) {
    const Outcome outcome = run({"import", file("people.txt", kTable)});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    const std::string path = folder() / "people.txt";
    EXPECT_EQ(
        outcome.err,
        path + ": row 2, line 3: left out: Birthday: expected a date as 1980-03-22, not \"soon\"\n" + path +
            ": row 3, line 4: nothing in it is known\n" + path +
            ": columns left out: Shoe size; --map \"Column=property\" takes one in\n"
            "3 rows read: 2 added, 0 updated, 0 unchanged, 1 refused; 2 groups made from categories; 1 line "
            "left out\n");
    EXPECT_EQ(list("name,phones,addresses,birthday"), "Ida Berg\t99\tOslo\t1980-03-22\nOle Tal\t\t\t\n");
    EXPECT_THAT(run({"import", path}).err, HasSubstr("0 added, 0 updated, 2 unchanged"));
    EXPECT_THAT(run({"import", "-"}, kTable).err, HasSubstr("0 added, 0 updated, 2 unchanged"));
    EXPECT_EQ(run({"check"}).status, 0);
}

TEST_F(TableTest, DryRunShowsWhatTheFirstRowsBecome) {
    std::string table = kTable;
    for (int row = 0; row < 10; ++row) {
        table += "Row " + std::to_string(row) + ",,,,,,\r\n";
    }
    const Outcome outcome = run({"import", "--dry-run", "-"}, table);
    EXPECT_EQ(outcome.out, "standard input, line 2\n"
                           "firstname                       Ida\n"
                           "lastname                        Berg\n"
                           "phones            Mobile        99\n"
                           "addresses         Home          Oslo\n"
                           "birthday                        1980-03-22\n"
                           "in group                        Rowers\n"
                           "in group                        Chess\n"
                           "\n"
                           "standard input, line 3\n"
                           "firstname                       Ole\n"
                           "lastname                        Tal\n"
                           "\n");
    EXPECT_THAT(outcome.err, HasSubstr("(dry run, nothing saved)"));
    EXPECT_TRUE(std::filesystem::is_empty(book()));
}

TEST_F(TableTest, MapsSayWhatColumnsAre) {
    const std::string table = "Navn;Mobil;Skostr;Notat\nIda Berg;99;38;secret\n";
    const Outcome unknown = run({"import", "-"}, table);
    EXPECT_EQ(unknown.status, 1);
    EXPECT_THAT(unknown.err,
                HasSubstr("standard input: none of its columns is known: Navn, Mobil, Skostr, Notat"));
    const Outcome outcome = run({"import", "-", "--map", "Navn=name", "--map", "mobil=phones/work", "--map",
                                 "Skostr=jobtitle", "--map", "Notat="},
                                table);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "1 row read: 1 added, 0 updated, 0 unchanged, 0 refused\n");
    EXPECT_EQ(list("firstname,lastname,jobtitle,note"), "Ida\tBerg\t38\t\n");
    EXPECT_THAT(run({"list", "--json", "--fields", "phones"}).out,
                HasSubstr("\"label\":\"Work\",\"value\":\"99\""));
    const auto refused = [&](const std::string& map) {
        const Outcome wrong = run({"import", "-", "--map", map}, table);
        EXPECT_EQ(wrong.status, 2) << map;
        return wrong.err;
    };
    EXPECT_THAT(refused("Tlf=phones/home"), HasSubstr("no column is named \"Tlf\"; columns: Navn, Mobil"));
    EXPECT_THAT(refused("Mobil=fone"), HasSubstr("A person has: title, firstname"));
    EXPECT_THAT(refused("Mobil=addresses/home"), HasSubstr("say which field"));
    EXPECT_THAT(refused("Mobil"), HasSubstr("expected Column=property"));
}

TEST_F(TableTest, DatesAndCharacterSetsAreGuessedAloud) {
    const std::string table = "First Name,Birthday\nJ\xF8rgen,4/3/1980\n";
    EXPECT_EQ(
        run({"import", "-"}, table).err,
        "standard input: dates as 3/4/1980 are read with the month first; --dates dmy reads the day first\n"
        "standard input: read as windows-1252, which is a guess; --charset NAME tells it\n"
        "1 row read: 1 added, 0 updated, 0 unchanged, 0 refused\n");
    EXPECT_EQ(run({"import", "-", "--charset", "iso-8859-1", "--dates", "dmy"}, table).err,
              "1 row read: 0 added, 1 updated, 0 unchanged, 0 refused\n");
    EXPECT_EQ(list("firstname,birthday"), "Jørgen\t1980-03-04\n") << "read rightly, it is the same person";
    EXPECT_THAT(run({"import", "-", "--charset", "klingon"}, table).err,
                HasSubstr("no character set is named \"klingon\""));
}

TEST_F(TableTest, WhatIsNoneSaysSo) {
    const Outcome vcard = run({"import", "--format", "vcard", "-"}, kTable);
    EXPECT_EQ(vcard.status, 1);
    EXPECT_THAT(vcard.err,
                HasSubstr("standard input: this is CSV and has no vCard in it; --format csv reads it\n"));
    EXPECT_THAT(run({"import", "-"}, "First Name,Last Name\n").err, HasSubstr("nobody in it"));
    EXPECT_THAT(run({"import", "-"}, "First Name,Last Name\na,\"b\n").err,
                HasSubstr("standard input: line 2: a quotation mark is opened here and never closed"));
    EXPECT_THAT(run({"import", "-"}, "BEGIN:VCARD\nN:Berg;Ida\nNOTE:a,b\nEND:VCARD\n").err,
                StartsWith("1 card read: 1 added"));
}

TEST_F(TableTest, ExportComesBackElsewhere) {
    ASSERT_EQ(run({"import", "-"}, kTable).status, 1);
    const std::string cards =
        "BEGIN:VCARD\nVERSION:3.0\nN:Lie;Eva\nTEL;type=WORK,FAX:1\nTEL;type=boat:2\n"
        "ADR;type=HOME:;;Mill 1\\nFloor 2;Oslo;;0150;Norway\nNOTE:\"a\",\\nb\nBDAY:--02-29\n"
        "X-OTHER:kept\n"
        "PHOTO;ENCODING=b;TYPE=JPEG:/9j/AAE=\nEND:VCARD\n";
    ASSERT_EQ(run({"import", "-"}, cards).status, 0);
    const Outcome outcome = run({"export", "--format", "csv", "out.csv"});
    EXPECT_EQ(outcome.err, "3 people exported\n");
    EXPECT_THAT(bytesOf(folder() / "out.csv"), StartsWith("First Name,Middle Name,Last Name,"));
    EXPECT_THAT(bytesOf(folder() / "out.csv"), HasSubstr(",Chess ::: Rowers,"));
    const std::string before = run({"export"}).out;
    EXPECT_THAT(run({"import", "out.csv"}).err, HasSubstr("0 added, 0 updated, 3 unchanged"));
    EXPECT_EQ(run({"export"}).out, before); // what CSV has no place for stays
    EXPECT_THAT(before, HasSubstr("X-OTHER:kept"));
    EXPECT_EQ(run({"--book", "other", "import", "out.csv"}).status, 0);
    EXPECT_EQ(run({"--book", "other", "export", "--format", "csv"}).out, bytesOf(folder() / "out.csv"));
    EXPECT_EQ(run({"--book", "other", "list", "--fields", "id,phones,addresses,note,birthday"}).out,
              run({"list", "--fields", "id,phones,addresses,note,birthday"}).out);
    EXPECT_THAT(run({"export", "--format", "csv", "--group", "chess"}).out, Not(HasSubstr("Eva")));
}

} // namespace
} // namespace addressbook

// Who is known again when cards and rows are imported a second time: people without a unique id, people with
// two, members of groups.

#include "tests/tools/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace addressbook {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const fs::path kBooks = TOOLS_BOOKS_FOLDER;

std::string card(const std::string& lines, const std::string& version = "3.0") {
    return "BEGIN:VCARD\r\nVERSION:" + version + "\r\n" + lines + "END:VCARD\r\n";
}

std::string unfolded(std::string text) {
    for (std::size_t at = 0; (at = text.find("\r\n ", at)) != std::string::npos;) {
        text.erase(at, 3);
    }
    return text;
}

class IdentityTest : public testing::Test, public Sandbox {
  protected:
    std::string imported(const std::string& text) { return run({"import", "-"}, text).err; }
};

// Their ids were made in another way, of the card as that version wrote it.
TEST_F(IdentityTest, CardsThatAnEarlierVersionImportedAreKnown) {
    fs::create_directories(book());
    fs::copy_file(kBooks / "without_uid.db", book() / "AddressBook.db");
    fs::permissions(book() / "AddressBook.db", fs::perms::owner_read | fs::perms::owner_write);
    const std::string ids = run({"list", "--fields", "name"}).out;
    const std::string cards = kBooks / "without_uid.vcf";
    EXPECT_THAT(run({"import", cards}).err, HasSubstr("5 cards read (1 group): 0 added"));
    EXPECT_EQ(run({"list", "--fields", "name"}).out, ids);
    EXPECT_THAT(run({"groups"}).out, HasSubstr("\tCrew\t"));
    EXPECT_THAT(run({"import", cards}).err, HasSubstr("0 added, 0 updated, 5 unchanged"));
    EXPECT_THAT(run({"export"}).out, HasSubstr("\r\nIMPP:matrix:u/ida:example.org\r\n"))
        << "what this version reads better is updated";
}

// The id is made of the card's own lines: it is the same for ever, however they are read and written here.
TEST_F(IdentityTest, TheIdOfACardWithoutOneNeverChanges) {
    imported(card("N:Berg;Ida;;;\r\nTEL;TYPE=home,voice:1\r\nADR;TYPE=work:;;Elm\\, 1;;;;\r\n"
                  "item1.X-ABDATE:2001-05-06\r\nitem1.X-ABLabel:boat\r\nX-ODD:x\r\n"));
    EXPECT_EQ(run({"list", "--fields", "name"}).out,
              "D713FFB8-8C33-512B-BE2C-6420FD2C91E9:ABPerson\tIda Berg\n");
}

TEST_F(IdentityTest, OrderEncodingVersionAndProgramDoNotMatter) {
    imported(card("N:B\xC3\xA9rg;Ida\r\nTEL;HOME;VOICE:1\r\nNOTE:one\\ntwo\r\n", "2.1"));
    EXPECT_THAT(imported(card("PRODID:other\r\nREV:20260101T000000Z\r\nNOTE:one\\ntwo\r\nEMAIL:\r\n"
                              "tel;type=voice,home:1\r\nN:B\xC3\xA9rg;Ida;;;\r\n")),
                HasSubstr("0 added"));
    EXPECT_THAT(imported(card("N;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:B=E9rg;Ida\r\n"
                              "TEL;HOME;VOICE:1\r\nNOTE:one\\ntwo\r\n",
                              "2.1")),
                HasSubstr("0 added"));
    EXPECT_THAT(imported(card("N:B\xC3\xA9rg;Ida\r\nTEL;HOME;VOICE:2\r\nNOTE:one\\ntwo\r\n", "2.1")),
                HasSubstr("1 added"));
}

// An edited record is still the card's.
TEST_F(IdentityTest, WhoWasChangedIsKnown) {
    const std::string text = card("N:Berg;Ida;;;\r\nTEL:1\r\n");
    imported(text);
    const std::string list = run({"list"}).out;
    ASSERT_EQ(run({"set", list.substr(0, list.find('\t')), "phones=2", "note=new"}).status, 0);
    EXPECT_THAT(imported(text), HasSubstr("0 added, 1 updated"));
}

TEST_F(IdentityTest, RowsAreKnownWhateverTheirColumnsMean) {
    const std::string rows = file("people.csv", "Name,Mobil,Ort\nIda Berg,1,Oslo\nOle Tal,2,Bergen\n");
    EXPECT_THAT(run({"import", rows}).err, HasSubstr("2 added"));
    EXPECT_THAT(run({"import", rows, "--map", "Mobil=phones/mobile"}).err, HasSubstr("0 added, 2 updated"));
    const std::string sorted =
        file("sorted.csv", "Ort;Name;Mobil;Empty\nBergen;Ole Tal;2;\nOslo;Ida Berg;1;\n");
    EXPECT_THAT(run({"import", sorted, "--map", "Mobil=phones/mobile"}).err,
                HasSubstr("0 added, 0 updated, 2 unchanged"));
}

// Two people who say the same but for a label in one file are two; so are they the next time.
TEST_F(IdentityTest, WhoDiffersByALabelIsAnother) {
    const std::string text =
        card("N:Berg;Ida;;;\r\nTEL;TYPE=home:1\r\n") + card("N:Berg;Ida;;;\r\nTEL;TYPE=work:1\r\n");
    EXPECT_THAT(imported(text), HasSubstr("2 added"));
    EXPECT_THAT(imported(text), HasSubstr("0 added, 0 updated, 2 unchanged"));
}

// A card may have a UID beside the id that an address book gave it. Groups name it by either.
TEST_F(IdentityTest, AGroupThatComesAloneFindsPeopleByTheirUid) {
    imported(card("N:Berg;Ida;;;\r\nUID:abc-1\r\nX-ABUID:11111111-1111-4111-8111-111111111111:ABPerson\r\n") +
             card("N:Tal;Ole;;;\r\nUID:22222222-2222-4222-8222-222222222222\r\n"
                  "X-ABUID:33333333-3333-4333-8333-333333333333:ABPerson\r\n"));
    const std::string group =
        card("FN:Crew\r\nX-ADDRESSBOOKSERVER-KIND:group\r\nUID:g\r\n"
             "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:abc-1\r\n"
             "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:22222222-2222-4222-8222-222222222222\r\n");
    EXPECT_THAT(imported(group), testing::Not(HasSubstr("not in the address book")));
    EXPECT_THAT(run({"groups"}).out, HasSubstr("\tCrew\t2\t0\n"));
    EXPECT_THAT(imported(group), HasSubstr("0 added, 0 updated, 1 unchanged"));
    EXPECT_THAT(run({"groups"}).out, HasSubstr("\tCrew\t2\t0\n"));
}

TEST_F(IdentityTest, ParametersOfGroupsAndTheirMembersAreKept) {
    const std::string
        here = "X-ADDRESSBOOKSERVER-MEMBER;X-CN=Ida:urn:uuid:11111111-1111-4111-8111-111111111111\r\n",
        away = "X-ADDRESSBOOKSERVER-MEMBER;PREF=2;X-CN=\"Tal, Ole\":mailto:ole@tal.example\r\n",
        name = "FN;LANGUAGE=no:Lag\r\n";
    imported(card("N:Berg;Ida;;;\r\nUID:11111111-1111-4111-8111-111111111111\r\n") +
             card(name + "X-ADDRESSBOOKSERVER-KIND:group\r\nUID:g\r\n" + here + away));
    const auto kept = [&] {
        const std::string written = unfolded(run({"export"}).out);
        for (const std::string& line : {here, away, name}) {
            EXPECT_THAT(written, HasSubstr("\r\n" + line));
        }
        return written;
    };
    const std::string written = kept();
    EXPECT_THAT(unfolded(run({"export", "--version", "4.0"}).out),
                HasSubstr("\r\nMEMBER;PREF=2;X-CN=\"Tal, Ole\":mailto:ole@tal.example\r\n"));
    EXPECT_THAT(imported(written), HasSubstr("0 added, 0 updated, 2 unchanged"));
    // Also when the member comes.
    imported(card("N:Tal;Ole;;;\r\nUID:mailto:ole@tal.example\r\n"));
    EXPECT_THAT(run({"groups"}).out, HasSubstr("\tLag\t2\t0\n"));
    kept();
}

} // namespace
} // namespace addressbook

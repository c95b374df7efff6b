// The real program addressbook.

#include "tests/tools/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <csignal>

namespace addressbook {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;

std::string card(const std::string& lines) {
    return "BEGIN:VCARD\r\nVERSION:3.0\r\n" + lines + "END:VCARD\r\n";
}

const std::string kIda = "11111111-1111-4111-8111-111111111111:ABPerson";
const std::string kOle = "22222222-2222-4222-8222-222222222222:ABPerson";

// Two people, a card that is bad, a group of both.
const std::string kFile =
    card(
        "N:Berg;Ida;;;\r\nFN:Ida Berg\r\nORG:Mill;Bread\r\nTEL;type=CELL;type=pref:12\r\nTEL;type=boat:34\r\n"
        "NOTE:one\\ntwo\ttabbed\r\nBDAY:1980-03-22\r\nUID:11111111-1111-4111-8111-111111111111\r\n"
        "X-OTHER:kept\r\nPHOTO;ENCODING=b;TYPE=JPEG:/9j/AAE=\r\n") +
    card("UID:1\r\nPHOTO;ENCODING=b:***\r\n") +
    card("N:Tal;Ole;;;\r\nEMAIL;type=HOME:ole@tal.example\r\nUID:22222222-2222-4222-8222-222222222222\r\n") +
    card("FN:Rowers\r\nUID:33333333-3333-4333-8333-333333333333\r\nX-ADDRESSBOOKSERVER-KIND:group\r\n"
         "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:11111111-1111-4111-8111-111111111111\r\n"
         "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:22222222-2222-4222-8222-222222222222\r\n");

class ProgramTest : public testing::Test, public Sandbox {
  protected:
    void importFile() {
        const Outcome outcome = run({"import", file("people.vcf", kFile)});
        ASSERT_EQ(outcome.status, 1) << outcome.err;
    }
    std::size_t count(const std::string& command) {
        const std::string out = run({command}).out;
        return static_cast<std::size_t>(std::count(out.begin(), out.end(), '\n'));
    }
};

TEST_F(ProgramTest, ImportReportsBadCardsAndTakesTheOthers) {
    const std::string path = file("people.vcf", kFile);
    const Outcome outcome = run({"import", path});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err,
              path + ": card 2, line 17: the card has nothing in it; the picture is no base64 data: "
                     "\"PHOTO;ENCODING=b:***\"\n"
                     "4 cards read (1 group): 3 added, 0 updated, 0 unchanged, 1 refused\n");
    EXPECT_EQ(count("list"), 2u);
    EXPECT_EQ(run({"groups"}).out, "33333333-3333-4333-8333-333333333333:ABGroup\tRowers\t2\t0\n");
    EXPECT_EQ(run({"check"}).status, 0);
}

TEST_F(ProgramTest, ImportAgainChangesNothing) {
    importFile();
    const std::string before = run({"export"}).out;
    const Outcome outcome = run({"import", file("people.vcf", kFile)});
    EXPECT_THAT(outcome.err, HasSubstr("0 added, 0 updated, 3 unchanged, 1 refused"));
    EXPECT_EQ(run({"export"}).out, before);
    EXPECT_EQ(count("list"), 2u);
}

TEST_F(ProgramTest, CardsWithoutAnIdAreKnownAgain) {
    const std::string text =
        card("N:Berg;Ida\r\nCATEGORIES:Rowers,Chess\r\n") + card("N:Tal\r\n") + card("N:Tal\r\n");
    EXPECT_THAT(
        run({"import", "-"}, text).err,
        HasSubstr("3 cards read: 2 added, 0 updated, 1 unchanged, 0 refused; 2 groups made from categories"));
    EXPECT_THAT(run({"import", "-"}, text).err,
                HasSubstr("3 cards read: 0 added, 0 updated, 3 unchanged, 0 refused\n"));
    EXPECT_EQ(count("list"), 2u);
    EXPECT_EQ(count("groups"), 2u);
    EXPECT_EQ(run({"list", "--fields", "groups"}).out.find("Chess; Rowers") == std::string::npos, false);
}

TEST_F(ProgramTest, ImportUpdatesWhatTheCardHas) {
    importFile();
    const std::string text = card("N:Berg;Ida;;;\r\nTEL;type=CELL;type=pref:99\r\nTEL;type=boat:34\r\n"
                                  "UID:11111111-1111-4111-8111-111111111111\r\n");
    EXPECT_THAT(run({"import", "-"}, text).err, HasSubstr("0 added, 1 updated"));
    EXPECT_EQ(run({"list", "--fields", "phones,birthday,organization"}).out,
              kIda + "\t99; 34\t1980-03-22\tMill\n" + kOle + "\t\t\t\n");
}

TEST_F(ProgramTest, DifferentPeopleOfOneIdAreNotMerged) {
    const std::string text = card("N:Berg\r\nUID:7\r\n") + card("N:Tal\r\nUID:7\r\n");
    const Outcome outcome = run({"import", "-"}, text);
    EXPECT_EQ(outcome.err,
              "standard input: card 2, line 6: its id is that of a card before; added as another record\n"
              "2 cards read: 2 added, 0 updated, 0 unchanged, 0 refused\n");
    EXPECT_THAT(run({"import", "-"}, text).err, HasSubstr("0 added, 0 updated, 2 unchanged"));
    EXPECT_EQ(count("list"), 2u);
}

TEST_F(ProgramTest, DryRunSavesNothing) {
    const Outcome outcome = run({"import", "--dry-run", file("people.vcf", kFile)});
    EXPECT_THAT(outcome.err,
                HasSubstr("3 added, 0 updated, 0 unchanged, 1 refused (dry run, nothing saved)"));
    EXPECT_TRUE(std::filesystem::is_empty(book()));
    importFile();
    const Outcome again = run({"import", "--dry-run", file("more.vcf", card("N:New\r\n"))});
    EXPECT_THAT(again.err, HasSubstr("1 added"));
    EXPECT_EQ(count("list"), 2u);
}

// Killed at moments that are spread over the time that it takes.
TEST_F(ProgramTest, ImportThatIsKilledIsDoneOrNot) {
    std::string cards;
    for (int i = 0; i < 100; ++i) {
        cards += card("N:P" + std::to_string(i) + "\r\nCATEGORIES:All\r\n");
    }
    const std::string path = file("many.vcf", cards);
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_EQ(run({"import", path}).status, 0);
    const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
    for (int moment = 1; moment <= 4; ++moment) {
        SCOPED_TRACE(moment);
        for (const auto& entry : std::filesystem::directory_iterator(book())) {
            std::filesystem::remove_all(entry.path());
        }
        const Outcome killed = shell("timeout -s KILL " + std::to_string(time.count() * moment / 4) +
                                     " $A import '" + path + "'");
        EXPECT_THAT(killed.status, testing::AnyOf(0, 128 + SIGKILL)) << killed.err;
        if (!std::filesystem::exists(book() / "AddressBook.db")) {
            continue;
        }
        EXPECT_EQ(run({"check"}).status, 0);
        EXPECT_THAT(count("list"), testing::AnyOf(0U, 100U));
        EXPECT_EQ(count("groups"), count("list") / 100);
    }
}

TEST_F(ProgramTest, GroupsFindTheirMembersWhereverTheyCome) {
    const std::string group = file("group.vcf", card("FN:G\r\nX-ADDRESSBOOKSERVER-KIND:group\r\nUID:g\r\n"
                                                     "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:p\r\n"
                                                     "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:h\r\n"));
    EXPECT_THAT(run({"import", group}).err, HasSubstr("2 group members not in the address book"));
    // A subgroup that contains its parent would go round in a circle; that membership is left out.
    const std::string rest = file(
        "rest.vcf", card("N:P\r\nUID:p\r\n") + card("FN:H\r\nKIND:group\r\nUID:h\r\nMEMBER:urn:uuid:g\r\n"));
    EXPECT_THAT(run({"import", rest}).err, HasSubstr("; 1 member joined a group that waited\n"));
    EXPECT_THAT(run({"groups"}).out, HasSubstr("\tG\t1\t0\n"));
    EXPECT_THAT(run({"groups"}).out, HasSubstr("\tH\t0\t1\n"));
    const Outcome both = run({"import", group, rest});
    EXPECT_EQ(both.status, 0);
    EXPECT_THAT(both.err, HasSubstr("; 1 group not put into another that it contains\n"));
    EXPECT_THAT(run({"groups"}).out, HasSubstr("\tG\t1\t0\n"));
    EXPECT_EQ(run({"check"}).status, 0);
}

TEST_F(ProgramTest, ExportAndImportElsewhereIsTheSameBook) {
    importFile();
    const std::string path = folder() / "out.vcf";
    const Outcome outcome = run({"export", path});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.err, "2 people and 1 group exported\n");
    std::filesystem::create_directory(folder() / "other");
    const std::string other = folder() / "other";
    EXPECT_EQ(run({"--book", other, "import", path}).status, 0);
    EXPECT_EQ(run({"export", "--book", other, "-"}).out, bytesOf(path));
    EXPECT_THAT(bytesOf(path), HasSubstr("PHOTO;ENCODING=b;TYPE=JPEG:/9j/AAE=\r\n"));
    EXPECT_THAT(bytesOf(path), HasSubstr("X-OTHER:kept\r\n"));
    EXPECT_THAT(bytesOf(path), HasSubstr("TEL;TYPE=boat:34\r\n"));

    // By way of version 4.0 as well.
    const std::string path4 = folder() / "out4.vcf", other4 = folder() / "other4";
    EXPECT_EQ(run({"export", "--version", "4.0", path4}).status, 0);
    EXPECT_THAT(bytesOf(path4), HasSubstr("VERSION:4.0\r\n"));
    EXPECT_EQ(run({"--book", other4, "import", path4}).status, 0);
    EXPECT_EQ(run({"export", "--book", other4, "-"}).out, bytesOf(path));
    EXPECT_EQ(run({"export", "--version", "2.1", "-"}).status, 2);
}

// Each UID in a form of its own: a group's card names its members by the very UIDs of their cards.
TEST_F(ProgramTest, GroupCardsNameMembersAsTheirCardsDo) {
    const std::string kLater = "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:Not-Here-yet\r\n";
    const std::vector<std::string> uids{"abcdef01-1111-4111-8111-111111111111", "357", "urn:uuid:odd",
                                        "https://x.example/ida?a,b", "A1"};
    std::string cards, members;
    for (const std::string& uid : uids) {
        cards += card("N:P" + uid + "\r\nUID:" + uid + "\r\n");
        members += "X-ADDRESSBOOKSERVER-MEMBER:" +
                   std::string(uid.find(':') == std::string::npos ? "urn:uuid:" : "") + uid + "\r\n";
    }
    const std::string group = "FN:G\r\nX-ADDRESSBOOKSERVER-KIND:group\r\nUID:group one\r\n" + members;
    run({"import", "-"}, card(group + kLater) + cards);
    const std::string written = run({"export", "-"}).out;
    EXPECT_THAT(written, HasSubstr(members));
    EXPECT_THAT(written, HasSubstr(kLater));
    for (const std::string& uid : uids) {
        EXPECT_THAT(written, HasSubstr("\r\nUID:" + uid + "\r\n"));
    }
    const std::string written4 = run({"export", "--version", "4.0", "-"}).out;
    EXPECT_THAT(written4, HasSubstr("\r\nMEMBER:https://x.example/ida?a,b\r\n"));
    EXPECT_THAT(written4, HasSubstr("\r\nUID:https://x.example/ida?a,b\r\n"));
    EXPECT_THAT(written4, HasSubstr("\r\nMEMBER:urn:uuid:357\r\n"));
    EXPECT_THAT(written4, HasSubstr("\r\nUID;VALUE=text:357\r\n"));
    EXPECT_THAT(written4, HasSubstr("\r\nMEMBER:urn:uuid:Not-Here-yet\r\n"));
    for (const std::string& text : {written, written4}) {
        const std::string other = folder() / ("other" + std::to_string(text.size()));
        run({"--book", other, "import", "-"}, text);
        EXPECT_EQ(run({"--book", other, "export", "-"}).out, written);
    }
    run({"import", "-"}, card("N:Late\r\nUID:Not-Here-yet\r\n"));
    EXPECT_THAT(run({"groups"}).out, HasSubstr("\tG\t6\t0\n"));
    EXPECT_THAT(run({"export", "-"}).out, HasSubstr(kLater));
}

TEST_F(ProgramTest, GroupsAreWrittenAsCardsAndCategories) {
    std::string cards, categories;
    for (int i = 0; i < 1200; ++i) {
        categories += (i ? "," : "") + std::string("g") + std::to_string(i);
    }
    const std::string people = card("N:A\r\nUID:a\r\nCATEGORIES:Best\\, Friends," + categories + "\r\n") +
                               card("N:B\r\nUID:b\r\nCATEGORIES:Best\\, Friends\r\n");
    ASSERT_EQ(run({"import", "-"}, people).status, 0);
    EXPECT_EQ(count("groups"), 1201U);
    const std::string groups = run({"groups"}).out;
    for (const char* form : {"cards", "categories", "both"}) {
        SCOPED_TRACE(form);
        const std::string text = run({"export", "--groups", form, "-"}).out;
        const bool asCards = text.find(":group\r\n") != std::string::npos;
        const bool asCategories = text.find("CATEGORIES:Best\\, Friends") != std::string::npos;
        EXPECT_EQ(asCards, std::string(form) != "categories");
        EXPECT_EQ(asCategories, std::string(form) != "cards");
        const std::string other = folder() / form;
        run({"--book", other, "import", "-"}, text);
        EXPECT_EQ(run({"--book", other, "groups"}).out.size(), groups.size());
        EXPECT_THAT(run({"--book", other, "groups"}).out, HasSubstr("\tBest, Friends\t2\t0\n"));
    }
    EXPECT_EQ(run({"export", "--groups", "none", "-"}).status, 2);
}

// Two groups of one name: the categories of their members put nobody into the other one.
TEST_F(ProgramTest, CategoriesDoNotJoinAnotherGroupOfTheName) {
    const std::string kind = "X-ADDRESSBOOKSERVER-KIND:group\r\nFN:Team\r\n";
    run({"import", "-"}, card("N:A\r\nUID:a\r\n") + card("N:B\r\nUID:b\r\n") +
                             card(kind + "UID:g1\r\nX-ADDRESSBOOKSERVER-MEMBER:urn:uuid:a\r\n") +
                             card(kind + "UID:g2\r\nX-ADDRESSBOOKSERVER-MEMBER:urn:uuid:b\r\n"));
    const std::string groups = run({"groups"}).out;
    const std::string text = run({"export", "-"}).out;
    EXPECT_THAT(text, HasSubstr("CATEGORIES:Team\r\n"));
    const std::string other = folder() / "other";
    run({"--book", other, "import", "-"}, text);
    EXPECT_EQ(run({"--book", other, "groups"}).out, groups);
}

TEST_F(ProgramTest, TheGuessOfACharacterSetIsToldOnceAndOverridden) {
    std::string text;
    for (int i = 0; i < 3; ++i) {
        text += card("N:\xC8\xE2\xE0\xED\xEE\xE2;\xCF\xB8\xF2\xF0 " + std::to_string(i) +
                     "\r\nNOTE:\xEC\xFB \xE2\xF1\xF2\xF0\xE5\xF2\xE8\xEB\xE8\xF1\xFC\r\n");
    }
    const std::string path = file("russian.vcf", text);
    const Outcome outcome = run({"import", path});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.err,
                StartsWith(path + ": card 1, line 1: names no character set and is no UTF-8; read as "
                                  "windows-1251, which is a guess"));
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 2);
    const std::string ivanov = "\xD0\x98\xD0\xB2\xD0\xB0\xD0\xBD\xD0\xBE\xD0\xB2";
    EXPECT_THAT(run({"list"}).out, HasSubstr(ivanov));
    const std::string other = folder() / "other";
    EXPECT_THAT(run({"--book", other, "import", "--charset", "windows-1252", path}).err,
                testing::Not(HasSubstr("guess")));
    EXPECT_THAT(run({"--book", other, "list"}).out, HasSubstr("\xC3\x88\xC3\xA2\xC3\xA0"));
    EXPECT_EQ(run({"import", "--charset", "nonsense", path}).status, 2);
}

TEST_F(ProgramTest, ShowsTheFullNameOfTheCard) {
    run({"import", "-"}, card("N:Berg;Ida;;;\r\nFN:Ida \\, the Baker\r\nUID:a\r\n"));
    const std::string id = run({"list"}).out.substr(0, 36);
    EXPECT_THAT(run({"show", id}).out, ContainsRegex("fullname +Ida , the Baker\n"));
    EXPECT_THAT(run({"show", id, "--json"}).out, HasSubstr("\"fullname\": \"Ida , the Baker\""));
    EXPECT_THAT(run({"export", "-"}).out, HasSubstr("\r\nFN:Ida \\, the Baker\r\n"));
}

TEST_F(ProgramTest, ACardWithoutItsEndIsTakenAndNamed) {
    const Outcome outcome = run({"import", "-"}, "BEGIN:VCARD\nVERSION:3.0\nN:A\nTEL:1");
    EXPECT_THAT(outcome.err,
                HasSubstr("card 1, line 4: left out: cut off by the end of the file: \"TEL:1\"\n"));
    EXPECT_THAT(
        outcome.err,
        HasSubstr("card 1, line 1: the file ends before the card's END:VCARD; what it has was taken\n"));
    EXPECT_THAT(run({"list"}).out, HasSubstr("\tA\t\t\t\n"));
}

TEST_F(ProgramTest, ExportOfAGroup) {
    importFile();
    run({"import", "-"}, card("N:Alone\r\n"));
    EXPECT_THAT(run({"export", "--group", "rowers"}).err, HasSubstr("2 people and 1 group"));
    run({"import", "-"}, card("N:Other\r\nCATEGORIES:rowers\r\n"));
    EXPECT_THAT(run({"export", "--group", "rowers"}).err, HasSubstr("1 person and 1 group"));
    EXPECT_THAT(run({"export", "--group", "Rowers"}).err, HasSubstr("2 people and 1 group"));
    const Outcome outcome = run({"export", "--group", "Divers"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "addressbook: no group is named \"Divers\"\n");
}

TEST_F(ProgramTest, ExportReplacesItsFileOnlyWhenWhole) {
    importFile();
    const std::string path = file("out.vcf", "before");
    EXPECT_EQ(run({"export", "--group", "Divers", path}).status, 1);
    EXPECT_EQ(bytesOf(path), "before");
    EXPECT_EQ(run({"export", path}).status, 0);
    EXPECT_THAT(bytesOf(path), StartsWith("BEGIN:VCARD"));
    EXPECT_EQ(run({"export", (folder() / "none/out.vcf").string()}).status, 1);
    for (const auto& each : std::filesystem::directory_iterator(folder())) {
        EXPECT_EQ(each.path().string().find("out.vcf."), std::string::npos) << each.path();
    }
}

TEST_F(ProgramTest, ListEscapesAndQuotes) {
    importFile();
    EXPECT_EQ(run({"list", "--fields", "Name, phones,NOTE"}).out,
              kIda + "\tIda Berg\t12; 34\tone\\ntwo\\ttabbed\n" + kOle + "\tOle Tal\t\t\n");
    const auto json = nlohmann::json::parse(run({"list", "--json", "--fields", "lastname,phones,note"}).out);
    ASSERT_EQ(json.size(), 2u);
    EXPECT_EQ(json[0]["id"], kIda);
    EXPECT_EQ(json[0]["lastname"], "Berg");
    EXPECT_EQ(json[0]["phones"][1]["label"], "boat");
    EXPECT_EQ(json[0]["note"], "one\ntwo\ttabbed");
    EXPECT_TRUE(json[1]["note"].is_null());
    EXPECT_EQ(nlohmann::json::parse(run({"groups", "--json"}).out)[0]["members"], 2);
}

TEST_F(ProgramTest, WrongFieldsAreAnsweredWithTheNearest) {
    importFile();
    const Outcome outcome = run({"list", "--fields", "fistname"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(
        outcome.err,
        StartsWith("addressbook: no field is named \"fistname\"; did you mean firstname? Fields: id,"));
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1);
}

TEST_F(ProgramTest, ShowAndMe) {
    importFile();
    EXPECT_THAT(run({"show", kIda}).out, ContainsRegex("phones +Mobile +12\n +boat +34\n"));
    EXPECT_THAT(run({"show", "11111111-1111-4111-8111-111111111111"}).out, HasSubstr("in group"));
    const auto json = nlohmann::json::parse(run({"show", "--json", kIda}).out);
    EXPECT_EQ(json["birthday"], "1980-03-22");
    EXPECT_EQ(json["picture"]["bytes"], 5);
    EXPECT_EQ(run({"show", "nobody"}).status, 1);
    EXPECT_EQ(run({"show", "nobody"}).err, "addressbook: no person or group has the id nobody\n");

    EXPECT_EQ(run({"me"}).status, 1);
    EXPECT_EQ(run({"me", kOle}).status, 0);
    EXPECT_EQ(run({"me"}).out, kOle + "\tOle Tal\n");
    EXPECT_EQ(run({"me", "33333333-3333-4333-8333-333333333333"}).status, 1);
    EXPECT_EQ(run({"me", "--clear"}).status, 0);
    EXPECT_EQ(run({"me"}).status, 1);
}

TEST_F(ProgramTest, HelpOnEveryLevel) {
    for (const std::string command :
         {"import", "export", "list", "find", "show", "set", "delete", "me", "groups", "check"}) {
        const Outcome outcome = run({command, "--help"});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.out, HasSubstr("Examples:\n  addressbook " + command));
        EXPECT_THAT(run({"--help"}).out, HasSubstr("  " + command));
    }
    EXPECT_THAT(run({"--help"}).out, HasSubstr("Exit status: 0 done;"));
}

TEST_F(ProgramTest, UsageErrors) {
    for (const std::vector<std::string>& arguments : {std::vector<std::string>{"import"},
                                                      {"frobnicate"},
                                                      {"list", "--nonsense"},
                                                      {"me", "x", "--clear"}}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.err, StartsWith("addressbook: "));
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    }
}

TEST_F(ProgramTest, BooksThatCannotBeOpened) {
    file("book/AddressBook.db", std::string(5000, 'x'));
    for (const std::string command : {"list", "check", "groups", "export"}) {
        const Outcome outcome = run({command});
        EXPECT_EQ(outcome.status, 3) << command;
        EXPECT_THAT(outcome.err, StartsWith("addressbook: "));
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    }
    EXPECT_EQ(run({"import", file("a.vcf", card("N:A\r\n"))}).status, 3);
    EXPECT_EQ(bytesOf(book() / "AddressBook.db"), std::string(5000, 'x'));
    EXPECT_EQ(run({"list", "--book", (folder() / "no/such").string()}).status, 3);
}

TEST_F(ProgramTest, FilesThatCannotBeRead) {
    const Outcome outcome =
        run({"import", "no-such.vcf", file("empty.vcf", ""), file("a.vcf", card("N:A\r\n")), "."});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.err, HasSubstr("addressbook: no-such.vcf: No such file or directory\n"));
    EXPECT_THAT(outcome.err, ContainsRegex("empty.vcf: no vCard in it\n"));
    EXPECT_THAT(outcome.err, HasSubstr("addressbook: .: Is a directory\n"));
    EXPECT_THAT(outcome.err, HasSubstr("1 card read: 1 added"));
}

TEST_F(ProgramTest, ClosedOutputIsNoFailure) {
    std::string text;
    for (int at = 0; at < 20'000; ++at) {
        text += card("N:Somebody " + std::to_string(at) + "\r\n");
    }
    EXPECT_EQ(run({"import", file("many.vcf", text)}).status, 0);
    const Outcome outcome = shell("{ \"$A\" list; echo $? >&2; } | head -n 1");
    EXPECT_EQ(outcome.err, "0\n");
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1);
    EXPECT_THAT(shell("\"$A\" list >/dev/full").err, HasSubstr("addressbook: standard output: cannot write"));
}

TEST_F(ProgramTest, ProgressOnRequest) {
    const Outcome outcome = run({"import", "--progress", file("a.vcf", card("N:A\r\n"))});
    EXPECT_THAT(outcome.err, HasSubstr("a.vcf: 1 card, 100 %\n"));
    EXPECT_EQ(outcome.err.find('\r'), std::string::npos);
}

TEST_F(ProgramTest, Utf8InJsonIsAlwaysValid) {
    run({"import", "-"},
        std::string(
            "\xFE\xFF\0B\0E\0G\0I\0N\0:\0V\0C\0A\0R\0D\0\n\0N\0:\xD8\x3F\0\n\0E\0N\0D\0:\0V\0C\0A\0R\0D",
            52));
    EXPECT_EQ(count("list"), 1u);
    EXPECT_EQ(nlohmann::json::parse(run({"list", "--json"}).out).size(), 1u);
}

} // namespace
} // namespace addressbook

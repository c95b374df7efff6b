// Finding, narrowing, changing and deleting from the command line.

#include "tests/tools/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace addressbook {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::string kIda = "11111111-1111-4111-8111-111111111111:ABPerson";
const std::string kOle = "22222222-2222-4222-8222-222222222222:ABPerson";
const std::string kRowers = "33333333-3333-4333-8333-333333333333:ABGroup";

class EditTest : public testing::Test, public Sandbox {
  protected:
    void SetUp() override {
        const std::string cards =
            "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Berg;Ida;;;\r\nTEL;type=CELL:+47 555 "
            "01-33\r\nTEL;type=HOME:34\r\n"
            "ADR;type=HOME:;;Mill Lane 1;Oslo;;0150;Norway\r\nBDAY:1980-03-22\r\nNOTE:piano\r\n"
            "UID:11111111-1111-4111-8111-111111111111\r\nEND:VCARD\r\n"
            "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Tal;Ole;;;\r\nEMAIL;type=HOME:ole@tal.example\r\n"
            "UID:22222222-2222-4222-8222-222222222222\r\nEND:VCARD\r\n"
            "BEGIN:VCARD\r\nVERSION:3.0\r\nFN:Rowers of Oslo\r\nUID:33333333-3333-4333-8333-333333333333\r\n"
            "X-ADDRESSBOOKSERVER-KIND:group\r\n"
            "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:11111111-1111-4111-8111-111111111111\r\nEND:VCARD\r\n";
        ASSERT_EQ(run({"import", "-"}, cards).status, 0);
    }
    Outcome set(const std::vector<std::string>& assignments, const std::string& id = kIda) {
        std::vector<std::string> arguments{"set", id};
        arguments.insert(arguments.end(), assignments.begin(), assignments.end());
        return run(arguments);
    }
    nlohmann::json ida() { return nlohmann::json::parse(run({"show", "--json", kIda}).out); }
    std::string found(const std::vector<std::string>& words) {
        std::vector<std::string> arguments{"find", "--fields", "name"};
        arguments.insert(arguments.end(), words.begin(), words.end());
        return run(arguments).out;
    }
};

TEST_F(EditTest, FindLooksIntoAllTextForEveryWord) {
    EXPECT_EQ(found({"berg"}), kIda + "\tIda Berg\n");
    EXPECT_EQ(found({"OSLO"}), kIda + "\tIda Berg\n" + kRowers + "\tRowers of Oslo\n");
    EXPECT_EQ(found({"mill", "iano"}), kIda + "\tIda Berg\n");
    EXPECT_EQ(found({"mill", "ole"}), "");
    EXPECT_EQ(found({"tal.ex"}), kOle + "\tOle Tal\n");
    EXPECT_EQ(found({"5550133"}), kIda + "\tIda Berg\n");
    EXPECT_EQ(found({"(55) 501"}), kIda + "\tIda Berg\n");
    EXPECT_EQ(found({"55 0134"}), "");
    const Outcome nothing = run({"find", "nobody", "--json"});
    EXPECT_EQ(nothing.status, 1);
    EXPECT_EQ(nothing.out, "[]\n");
    EXPECT_EQ(nothing.err, "addressbook: nothing found\n");
    EXPECT_EQ(
        nlohmann::json::parse(run({"find", "berg", "--json", "--fields", "lastname"}).out)[0]["lastname"],
        "Berg");
}

TEST_F(EditTest, ListsAreNarrowed) {
    const std::string ida = kIda + "\tIda Berg\n", ole = kOle + "\tOle Tal\n";
    EXPECT_EQ(run({"list", "--fields", "name"}).out, ida + ole);
    EXPECT_EQ(run({"list", "--fields", "name", "--limit", "1"}).out, ida);
    EXPECT_EQ(run({"list", "--fields", "name", "--group", "rowers of oslo"}).out, ida);
    EXPECT_EQ(run({"list", "--fields", "name", "--where", "Last is \"tal\""}).out, ole);
    EXPECT_EQ(run({"list", "--group", "Rowers of Oslo", "--where", "Last is \"tal\""}).out, "");
    EXPECT_EQ(run({"groups", "--where", "GroupName contains \"rowers\""}).out,
              kRowers + "\tRowers of Oslo\t1\t0\n");
    EXPECT_EQ(run({"groups", "--where", "GroupName contains \"chess\""}).out, "");
    EXPECT_EQ(run({"list", "--group", "chess"}).status, 1);
    EXPECT_THAT(run({"list", "--where", "Lost is \"x\""}).err,
                HasSubstr("--where Lost is \"x\": column 1: expected"));
    EXPECT_EQ(run({"list", "--limit", "0"}).status, 2);
    run({"import", "-"}, "BEGIN:VCARD\nN:C\nCATEGORIES:Rowers of Oslo\nEND:VCARD\n");
    EXPECT_THAT(run({"show", kRowers, "--limit", "1"}).out, HasSubstr("and 1 more\n"));
    EXPECT_EQ(nlohmann::json::parse(run({"show", kRowers, "--limit", "1", "--json"}).out)["membersNotShown"],
              1);
    EXPECT_EQ(run({"import", "--quiet", "-"}, "BEGIN:VCARD\nEND:VCARD\n").err,
              "1 card read: 0 added, 0 updated, 0 unchanged, 1 refused\n");
}

TEST_F(EditTest, SetChangesValuesOfEveryType) {
    const Outcome outcome = set({"lastname=Bergen", "birthday=--02-29", "Note=", "flags=1"});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out + outcome.err, "");
    EXPECT_EQ(ida()["lastname"], "Bergen");
    EXPECT_EQ(ida()["birthday"], "--02-29");
    EXPECT_EQ(ida()["flags"], 1);
    EXPECT_FALSE(ida().contains("note"));
    EXPECT_EQ(set({"name=Divers"}, kRowers).status, 0);
    EXPECT_THAT(run({"groups"}).out, HasSubstr("\tDivers\t1\t0\n"));
    EXPECT_THAT(set({"lastname=Bergen"}).err, HasSubstr("nothing to change"));
    EXPECT_EQ(nlohmann::json::parse(run({"set", kIda, "suffix=Jr.", "--json"}).out)["suffix"], "Jr.");
    EXPECT_EQ(run({"check"}).status, 0);
}

TEST_F(EditTest, SetMeansEntriesByTheirLabels) {
    EXPECT_EQ(set({"phone/mobile=99", "phones/boat=7", "phones/home+=35", "emails=ida@example.org"}).status,
              0);
    const auto phones = ida()["phones"];
    ASSERT_EQ(phones.size(), 4U);
    EXPECT_EQ(phones[0]["value"], "99");
    EXPECT_EQ(phones[0]["label"], "Mobile");
    EXPECT_EQ(phones[1]["value"], "34");
    EXPECT_EQ(phones[2]["label"], "boat");
    EXPECT_EQ(phones[3]["value"], "35");
    EXPECT_EQ(ida()["emails"][0]["label"], "Home");
    EXPECT_THAT(run({"export"}).out, HasSubstr("TEL;type=CELL"));
    EXPECT_EQ(set({"phones/HOME="}).status, 0);
    EXPECT_EQ(ida()["phones"].size(), 2U);
    EXPECT_EQ(set({"phones="}).status, 0);
    EXPECT_FALSE(ida().contains("phones"));
    EXPECT_EQ(set({"addresses/home/city=Bergen", "addresses/home/state=", "addresses/work/ZIP=5003",
                   "messaging/home/service=Matrix", "messaging/home/username=ida"})
                  .status,
              0);
    EXPECT_EQ(ida()["addresses"][0]["value"]["City"], "Bergen");
    EXPECT_EQ(ida()["addresses"][0]["value"]["Street"], "Mill Lane 1");
    EXPECT_EQ(ida()["addresses"][1]["value"]["ZIP"], "5003");
    EXPECT_EQ(ida()["messaging"][0]["value"]["InstantMessageUsername"], "ida");
    EXPECT_EQ(set({"addresses/work/zip="}).status, 0);
    EXPECT_EQ(ida()["addresses"].size(), 1U);
}

TEST_F(EditTest, SetSaysWhatIsPossibleAndChangesNothing) {
    const std::string before = run({"export"}).out;
    const auto refused = [&](const std::string& assignment) {
        const Outcome outcome = set({"note=changed", assignment});
        EXPECT_EQ(outcome.status, 2) << assignment;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        return outcome.err;
    };
    EXPECT_THAT(refused("lastnam=x"), HasSubstr("did you mean lastname? A person has: title, firstname,"));
    EXPECT_THAT(refused("created=2020-01-01"), HasSubstr("no property to set is named \"created\""));
    EXPECT_THAT(refused("birthday=soon"), HasSubstr("birthday: expected a date as 2026-01-31"));
    EXPECT_THAT(refused("flags=x"), HasSubstr("flags: expected a whole number"));
    EXPECT_THAT(refused("phones=1"), HasSubstr("one of: Mobile, Home, or phones+=VALUE"));
    EXPECT_THAT(refused("lastname/home=x"), HasSubstr("no labels; write lastname=VALUE"));
    EXPECT_THAT(refused("lastname+=x"), HasSubstr("has one value"));
    EXPECT_THAT(refused("addresses/home/town=x"), HasSubstr("fields: street, city, state, zip, country"));
    EXPECT_THAT(refused("addresses/home=x"), HasSubstr("write addresses/home/FIELD=VALUE"));
    EXPECT_THAT(refused("phones/=x"), HasSubstr("a label is missing"));
    EXPECT_THAT(refused("lastname"), HasSubstr("expected PROPERTY=VALUE"));
    EXPECT_EQ(set({"lastname=x"}, "nobody").status, 1);
    EXPECT_THAT(set({"lastname=x"}, kRowers).err, HasSubstr("A group has: name"));
    EXPECT_EQ(run({"export"}).out, before);
}

TEST_F(EditTest, DeleteTakesAllOrNone) {
    EXPECT_EQ(run({"delete", kIda, "nobody"}).status, 1);
    const Outcome dry = run({"delete", "--dry-run", kIda, "--json"});
    EXPECT_EQ(dry.status, 0);
    EXPECT_EQ(nlohmann::json::parse(dry.out)[0]["name"], "Ida Berg");
    EXPECT_EQ(run({"list", "--fields", "name"}).out, kIda + "\tIda Berg\n" + kOle + "\tOle Tal\n");
    ASSERT_EQ(run({"me", kIda}).status, 0);
    const Outcome outcome = run({"delete", "11111111-1111-4111-8111-111111111111", kRowers});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, kIda + "\tIda Berg\n" + kRowers + "\tRowers of Oslo\n");
    EXPECT_EQ(outcome.err, "2 records deleted\n");
    EXPECT_EQ(run({"list", "--fields", "name"}).out, kOle + "\tOle Tal\n");
    EXPECT_EQ(run({"groups"}).out, "");
    EXPECT_EQ(run({"check"}).status, 0) << run({"check"}).out;
    EXPECT_EQ(run({"delete", kIda}).status, 1);
}

} // namespace
} // namespace addressbook

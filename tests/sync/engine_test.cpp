// What becomes of changes on both sides, and of what servers do.

#include "frameworks/AddressBook/sync/engine.h"

#include "frameworks/AddressBook/sync/links.h"
#include "tests/store/scratch.h"
#include "tests/sync/synced_book.h"
#include "tests/vcard/support.h"

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <sqlite3.h>

namespace addressbook::sync {
namespace {

using carddav::Error;
using carddav::ErrorKind;
using carddav::Write;
using test::MemoryServer;
using test::SyncedBook;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::UnorderedElementsAre;

std::string uuid(int number) {
    const std::string digits = std::to_string(number);
    return "AAAAAAAA-0000-4000-8000-" + std::string(12 - digits.size(), '0') + digits;
}
std::string person(int number) {
    return uuid(number) + ":ABPerson";
}
std::string card(int number, std::vector<std::string> lines) {
    lines.insert(lines.begin(), {"UID:" + uuid(number), "N:P" + std::to_string(number) + ";;;;",
                                 "FN:P" + std::to_string(number)});
    return vcard::cardText(lines);
}
std::string href(int number) {
    return "/book/" + uuid(number) + ".vcf";
}

class EngineTest : public addressbook::test::Scratch {
  protected:
    MemoryServer server_;
    SyncedBook book_{root() / "a", server_};

    void expectInStep() {
        EXPECT_EQ(book_.differences(), "");
        const auto again = book_.sync();
        EXPECT_THAT(book_.client().requests, ElementsAre("list"));
        EXPECT_EQ(again.fetched + again.sent + again.removedHere + again.removedThere, 0);
    }
};

TEST_F(EngineTest, CardsBecomeRecordsAndRecordsCards) {
    server_.put(href(1), card(1, {"TITLE:a", "X-ODD;P=1:kept  as it is"}));
    const std::string bo = book_.addPerson(uuid(2), {{"Last", std::string("Bo")}});
    const Summary summary = book_.sync();
    EXPECT_EQ(summary.fetched, 1);
    EXPECT_EQ(summary.sent, 1);
    EXPECT_THAT(summary.refused, IsEmpty());
    EXPECT_EQ(book_.text(person(1), "JobTitle"), "a");
    EXPECT_THAT(server_.textOf(href(2)), HasSubstr("UID:" + uuid(2)));
    expectInStep();
}

TEST_F(EngineTest, WhatIsNotModelledStaysByteForByte) {
    const std::string text = card(1, {"X-ODD;P=1:kept  as it is", "TITLE:a", "item7.X-Q;VALUE=uri:urn:x"});
    server_.put(href(1), text);
    book_.sync();
    book_.set(person(1), "JobTitle", std::string("b"));
    EXPECT_EQ(book_.sync().sent, 1);
    std::string expected = text;
    expected.replace(expected.find("TITLE:a"), 7, "TITLE:b");
    EXPECT_EQ(server_.textOf(href(1)), expected);
    expectInStep();
}

TEST_F(EngineTest, ChangesOfBothSidesComeTogether) {
    server_.put(href(1), card(1, {"TITLE:a", "NOTE:a"}));
    book_.sync();
    server_.put(href(1), card(1, {"TITLE:b", "NOTE:a"}));
    book_.set(person(1), "Note", std::string("c"));
    const Summary summary = book_.sync();
    EXPECT_EQ(summary.merged, 1);
    EXPECT_EQ(summary.conflicts, 0);
    EXPECT_EQ(book_.text(person(1), "JobTitle"), "b");
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("NOTE:c"));
    expectInStep();
}

TEST_F(EngineTest, OfTwoChangesOfOneValueTheLaterCountsAndTheOtherIsNoted) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.sync();
    server_.put(href(1), card(1, {"TITLE:b"}));
    book_.set(person(1), "JobTitle", std::string("c"));
    EXPECT_EQ(book_.sync().conflicts, 1);
    EXPECT_EQ(book_.text(person(1), "JobTitle"), "c");
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("TITLE:c"));
    const auto conflicts = book_.store().syncConflicts();
    ASSERT_THAT(conflicts, SizeIs(1));
    EXPECT_EQ(conflicts[0].uid, person(1));
    EXPECT_EQ(conflicts[0].value, Value(std::string("b")));
    EXPECT_TRUE(conflicts[0].remote);
    expectInStep();
}

TEST_F(EngineTest, WhatChangesWhileItIsSentIsMerged) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.sync();
    book_.set(person(1), "Note", std::string("n"));
    bool once = true;
    book_.client().onRequest = [&](const std::string& what) {
        if (what.starts_with("put") && std::exchange(once, false)) {
            server_.put(href(1), card(1, {"TITLE:b"}));
        }
    };
    EXPECT_EQ(book_.sync().sent, 1);
    EXPECT_EQ(book_.text(person(1), "JobTitle"), "b");
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("NOTE:n"));
    expectInStep();
}

TEST_F(EngineTest, ACardThatAlwaysChangesIsLeftForTheNextCycle) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.sync();
    book_.set(person(1), "Note", std::string("n"));
    int version = 0;
    book_.client().onRequest = [&](const std::string& what) {
        if (what.starts_with("put")) {
            server_.put(href(1), card(1, {"TITLE:" + std::to_string(++version)}));
        }
    };
    EXPECT_THAT(book_.sync().refused, SizeIs(1));
    EXPECT_LT(version, 10);
    book_.client().onRequest = nullptr;
    EXPECT_EQ(book_.sync().sent, 1);
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("NOTE:n"));
    expectInStep();
}

TEST_F(EngineTest, DeletionsGoBothWays) {
    server_.put(href(1), card(1, {}));
    server_.put(href(2), card(2, {}));
    book_.sync();
    server_.remove(href(1));
    book_.remove(person(2));
    const Summary summary = book_.sync();
    EXPECT_EQ(summary.removedHere, 1);
    EXPECT_EQ(summary.removedThere, 1);
    EXPECT_THAT(book_.uids(), IsEmpty());
    EXPECT_THAT(server_.cards, IsEmpty());
    expectInStep();
}

TEST_F(EngineTest, WhatWasChangedOnTheOtherSideIsNotDeleted) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    server_.put(href(2), card(2, {"TITLE:a"}));
    book_.sync();
    server_.remove(href(1));
    book_.set(person(1), "JobTitle", std::string("b"));
    book_.remove(person(2));
    server_.put(href(2), card(2, {"TITLE:b"}));
    book_.sync();
    EXPECT_EQ(book_.text(person(1), "JobTitle"), "b");
    EXPECT_EQ(book_.text(person(2), "JobTitle"), "b");
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("TITLE:b"));
    expectInStep();
}

TEST_F(EngineTest, ADeletedCardThatChangesMeanwhileIsKept) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.sync();
    book_.remove(person(1));
    book_.client().onRequest = [&](const std::string& what) {
        if (what.starts_with("delete")) {
            server_.put(href(1), card(1, {"TITLE:b"}));
        }
    };
    book_.sync();
    book_.client().onRequest = nullptr;
    EXPECT_EQ(book_.text(person(1), "JobTitle"), "b");
    expectInStep();
}

TEST_F(EngineTest, ALostAnswerMakesNoSecondCard) {
    const std::string bo = book_.addPerson(uuid(2), {{"Last", std::string("Bo")}});
    server_.put(href(3), card(3, {"TITLE:a"}));
    book_.sync();
    book_.addPerson(uuid(4), {{"Last", std::string("Di")}});
    book_.set(person(3), "JobTitle", std::string("b"));
    book_.client().answersAreLost = true;
    EXPECT_THROW(book_.sync(), Error);
    EXPECT_THROW(book_.sync(), Error);
    book_.client().answersAreLost = false;
    EXPECT_EQ(book_.sync().conflicts, 0);
    EXPECT_THAT(server_.cards, SizeIs(3));
    EXPECT_THAT(book_.uids(), SizeIs(3));
    expectInStep();
}

TEST_F(EngineTest, WhatWasSentBeforeTheServerFailedIsNotSentAgain) {
    for (int number = 1; number <= 3; ++number) {
        book_.addPerson(uuid(number), {{"Last", "P" + std::to_string(number)}});
    }
    int puts = 0;
    book_.client().onRequest = [&](const std::string& what) {
        if (what.starts_with("put") && ++puts == 3) {
            throw Error(ErrorKind::busy, "the server is busy");
        }
    };
    EXPECT_THROW(book_.sync(), Error);
    EXPECT_EQ(book_.sync().sent, 1);
    EXPECT_THAT(book_.client().requests, SizeIs(2)); // the listing, and one card
    expectInStep();
}

TEST_F(EngineTest, ACardThatIsThereAlreadyIsTakenForTheRecords) {
    for (const bool told : {true, false}) {
        const int number = told ? 5 : 6;
        book_.sync();
        book_.addPerson(uuid(number), {{"Last", "P" + std::to_string(number)}, {"Note", std::string("n")}});
        const std::string other = "/book/other" + std::to_string(number) + ".vcf";
        bool once = true;
        book_.client().tellsConflictingHref = told;
        book_.client().onRequest = [&](const std::string& what) {
            if (what == "answer list" && std::exchange(once, false)) {
                server_.put(other, card(number, {"TITLE:a"}));
            }
        };
        const Summary summary = book_.sync();
        EXPECT_THAT(summary.refused, SizeIs(told ? 0 : 1));
        book_.client().onRequest = nullptr;
        book_.sync(); // which is told of the card by the listing
        EXPECT_EQ(server_.textOf(href(number)), "");
        EXPECT_THAT(server_.textOf(other), HasSubstr("NOTE:n"));
        EXPECT_EQ(book_.text(person(number), "JobTitle"), "a");
        expectInStep();
    }
}

TEST_F(EngineTest, ACardWithoutUidGetsOne) {
    server_.put("/book/x.vcf", vcard::cardText({"N:A;;;;", "FN:A"}));
    const Summary summary = book_.sync();
    EXPECT_EQ(summary.fetched, 1);
    ASSERT_THAT(book_.uids(), SizeIs(1));
    const std::string uid = book_.uids()[0];
    EXPECT_THAT(server_.textOf("/book/x.vcf"), HasSubstr("UID:" + uid.substr(0, 36)));
    expectInStep();
}

TEST_F(EngineTest, AUidThatWasNotPutBackIsInTheNextCycle) {
    server_.put("/book/x.vcf", vcard::cardText({"N:A;;;;", "FN:A"}));
    book_.client().onWrite = [](const Write&) { return Error(ErrorKind::network, "no connection"); };
    book_.sync();
    book_.client().onWrite = nullptr;
    book_.sync();
    EXPECT_THAT(server_.textOf("/book/x.vcf"), HasSubstr("UID:"));
    EXPECT_THAT(book_.uids(), SizeIs(1));
    expectInStep();
}

TEST_F(EngineTest, AServerThatRewritesCardsCausesNoLoop) {
    server_.rewrite = [](const std::string& text) {
        std::string other = text;
        if (const auto at = other.find("TITLE:b"); at != std::string::npos) {
            other.replace(at, 7, "TITLE:B");
        }
        return other.replace(other.find("END:VCARD"), 0, "REV:20260101T000000Z\r\n");
    };
    book_.addPerson(uuid(1), {{"Last", std::string("A")}, {"JobTitle", std::string("b")}});
    book_.sync();
    EXPECT_EQ(book_.text(person(1), "JobTitle"), "B");
    expectInStep();
    book_.set(person(1), "Note", std::string("n"));
    book_.sync();
    expectInStep();
}

TEST_F(EngineTest, WithoutEtagsNothingIsLost) {
    server_.tellsEtags = server_.answersEtags = false;
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.addPerson(uuid(2), {{"Last", std::string("B")}});
    book_.sync();
    EXPECT_EQ(book_.differences(), "");
    book_.set(person(1), "Note", std::string("n"));
    server_.put(href(1), card(1, {"TITLE:b"}));
    book_.remove(person(2));
    book_.sync();
    book_.sync();
    EXPECT_EQ(book_.text(person(1), "JobTitle"), "b");
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("NOTE:n"));
    EXPECT_THAT(server_.cards, SizeIs(1));
    EXPECT_EQ(book_.differences(), "");
}

TEST_F(EngineTest, AForgottenTokenCostsAListing) {
    for (int number = 1; number <= 8; ++number) {
        server_.put(href(number), card(number, {}));
    }
    book_.sync();
    server_.remove(href(3));
    server_.put(href(4), card(4, {"TITLE:b"}));
    server_.forgetsTokens = true;
    const Summary summary = book_.sync();
    EXPECT_THAT(book_.client().requests, ElementsAre("list", "list", "get " + href(4)));
    EXPECT_EQ(summary.removedHere, 1);
    EXPECT_EQ(book_.text(person(4), "JobTitle"), "b");
    expectInStep();
}

TEST_F(EngineTest, ListingsInPiecesAndWithoutTokens) {
    for (const bool tokens : {true, false}) {
        server_.hasTokens = tokens;
        server_.piece = 3;
        for (int number = 10; number < 20; ++number) {
            server_.put(href(number), card(number, {tokens ? "TITLE:a" : "TITLE:b"}));
        }
        book_.sync();
        expectInStep();
        server_.remove(href(11));
        book_.sync();
        EXPECT_THAT(book_.uids(), SizeIs(9));
        expectInStep();
    }
}

TEST_F(EngineTest, ACardThatMovesStaysItsRecord) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.sync();
    book_.set(person(1), "Note", std::string("n"));
    server_.remove(href(1));
    server_.put("/book/moved.vcf", card(1, {"TITLE:a"}));
    book_.sync();
    EXPECT_THAT(server_.textOf("/book/moved.vcf"), HasSubstr("NOTE:n"));
    EXPECT_THAT(server_.cards, SizeIs(1));
    expectInStep();
}

TEST_F(EngineTest, ADoubleIsNoSecondRecordAndStandsForTheFirst) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.sync();
    server_.put("/book/double.vcf", card(1, {"TITLE:b"}));
    EXPECT_THAT(book_.sync().refused, SizeIs(1));
    EXPECT_THAT(book_.sync().refused, IsEmpty());
    EXPECT_EQ(book_.text(person(1), "JobTitle"), "a");
    server_.remove(href(1));
    book_.sync();
    book_.sync();
    EXPECT_EQ(book_.differences(), "");
    EXPECT_THAT(book_.uids(), ElementsAre(person(1)));
}

TEST_F(EngineTest, OneBadCardStopsNothing) {
    server_.put(href(1), "this is no card");
    server_.put(href(2), card(2, {"TITLE:a"}));
    Summary summary = book_.sync();
    ASSERT_THAT(summary.refused, SizeIs(1));
    EXPECT_EQ(summary.refused[0].by, Side::local);
    EXPECT_EQ(summary.refused[0].href, href(1));
    EXPECT_EQ(book_.text(person(2), "JobTitle"), "a");
    server_.forgetsTokens = true;
    summary = book_.sync();
    EXPECT_THAT(book_.client().requests, Not(Contains("get " + href(1)))); // it has not changed
    server_.put(href(2), "nor is this");
    EXPECT_THAT(book_.sync().refused, SizeIs(1));
    EXPECT_EQ(book_.text(person(2), "JobTitle"), "a");
    server_.put(href(1), card(1, {"TITLE:b"}));
    server_.put(href(2), card(2, {"TITLE:b"}));
    EXPECT_THAT(book_.sync().refused, IsEmpty());
    expectInStep();
}

TEST_F(EngineTest, WhatTheServerRefusesIsSentAgainWhenItHasChanged) {
    book_.addPerson(uuid(1), {{"Last", std::string("A")}});
    book_.addPerson(uuid(2), {{"Last", std::string("B")}});
    book_.client().onWrite = [](const Write& write) {
        return write.href == href(1) ? std::optional(Error(ErrorKind::tooLarge, "it is too large"))
                                     : std::nullopt;
    };
    const Summary summary = book_.sync();
    ASSERT_THAT(summary.refused, SizeIs(1));
    EXPECT_EQ(summary.refused[0].uid, person(1));
    EXPECT_EQ(summary.refused[0].reason, "it is too large");
    EXPECT_EQ(summary.sent, 1);
    book_.client().onWrite = nullptr;
    book_.sync();
    EXPECT_EQ(server_.textOf(href(1)), "");
}

TEST_F(EngineTest, WhatTheServerCannotTakeNowIsSentInTheNextCycle) {
    server_.put(href(2), card(2, {"TITLE:a"}));
    book_.sync();
    book_.addPerson(uuid(1), {{"Last", std::string("A")}});
    book_.set(person(2), "JobTitle", std::string("b"));
    book_.client().onWrite = [](const Write&) { return Error(ErrorKind::locked, "it is locked"); };
    EXPECT_THAT(book_.sync().refused, SizeIs(2));
    book_.client().onWrite = nullptr;
    EXPECT_EQ(book_.sync().sent, 2);
    expectInStep();
}

TEST_F(EngineTest, ARefusedChangeIsSentWithTheNext) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.sync();
    book_.set(person(1), "JobTitle", std::string("b"));
    book_.client().onWrite = [](const Write&) { return Error(ErrorKind::forbidden, "you may not"); };
    EXPECT_THAT(book_.sync().refused, SizeIs(1));
    EXPECT_THAT(book_.sync().refused, IsEmpty());
    book_.client().onWrite = nullptr;
    server_.put(href(1), card(1, {"TITLE:a", "NOTE:n"}));
    EXPECT_EQ(book_.sync().sent, 1);
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("TITLE:b"));
    expectInStep();
}

TEST_F(EngineTest, ACardThatIsToBeSentIsNotForgottenByACycleThatDies) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.sync();
    book_.set(person(1), "JobTitle", std::string("b"));
    book_.client().onWrite = [](const Write&) { return Error(ErrorKind::forbidden, "you may not"); };
    book_.sync();
    book_.client().onWrite = nullptr;
    server_.put(href(1), card(1, {"TITLE:a", "REV:20260101T000000Z"})); // which changes no record
    struct Killed {};
    book_.client().onRequest = [](const std::string& what) {
        if (what.starts_with("put")) {
            throw Killed();
        }
    };
    EXPECT_THROW(book_.sync(), Killed);
    book_.client().onRequest = nullptr;
    book_.sync();
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("TITLE:b"));
    expectInStep();
}

TEST_F(EngineTest, MassDeletionAsksFirst) {
    for (int number = 1; number <= 10; ++number) {
        server_.put(href(number), card(number, {}));
    }
    book_.sync();
    const auto cards = server_.cards;
    for (int number = 1; number <= 6; ++number) {
        server_.remove(href(number));
    }
    try {
        book_.sync();
        FAIL();
    } catch (const MassDeletion& error) {
        EXPECT_EQ(error.side(), Side::remote);
        EXPECT_EQ(error.vanishing(), 6);
        EXPECT_EQ(error.of(), 10);
    }
    EXPECT_THAT(book_.uids(), SizeIs(10));
    CycleOptions force;
    force.force = true;
    EXPECT_EQ(book_.sync(force).removedHere, 6);
    expectInStep();
}

TEST_F(EngineTest, MassDeletionHereAsksFirst) {
    for (int number = 1; number <= 10; ++number) {
        server_.put(href(number), card(number, {}));
    }
    book_.sync();
    ChangeSet changes;
    for (int number = 1; number <= 6; ++number) {
        changes.removed.push_back(person(number));
    }
    book_.save(changes);
    EXPECT_THROW(book_.sync(), MassDeletion);
    EXPECT_THAT(server_.cards, SizeIs(10));
    CycleOptions force;
    force.force = true;
    EXPECT_EQ(book_.sync(force).removedThere, 6);
    expectInStep();
}

TEST_F(EngineTest, AnEmptyListingDeletesNothing) {
    for (int number = 1; number <= 10; ++number) {
        server_.put(href(number), card(number, {}));
    }
    book_.sync();
    const auto cards = std::exchange(server_.cards, {});
    server_.forgetsTokens = true;
    EXPECT_THROW(book_.sync(), MassDeletion);
    server_.cards = cards;
    book_.sync();
    EXPECT_THAT(book_.uids(), SizeIs(10));
    expectInStep();
}

TEST_F(EngineTest, GroupsAreCardsBothWays) {
    server_.put("/book/g.vcf", vcard::cardText({"X-ADDRESSBOOKSERVER-KIND:group", "UID:" + uuid(9), "N:G",
                                                "FN:G", "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + uuid(1),
                                                "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + uuid(3)}));
    server_.put(href(1), card(1, {}));
    server_.put(href(2), card(2, {}));
    book_.sync();
    const std::string group = uuid(9) + ":ABGroup";
    EXPECT_THAT(book_.members(group), ElementsAre(person(1)));
    expectInStep();
    book_.join(group, person(2));
    book_.sync();
    const std::string text = server_.textOf("/book/g.vcf");
    EXPECT_THAT(text, HasSubstr(uuid(1)));
    EXPECT_THAT(text, HasSubstr(uuid(2)));
    EXPECT_THAT(text, HasSubstr(uuid(3))); // who has not come yet
    server_.put(href(3), card(3, {}));
    book_.sync();
    EXPECT_THAT(book_.members(group), UnorderedElementsAre(person(1), person(2), person(3)));
    expectInStep();
    const std::string own = book_.addGroup(uuid(8), "Own", {person(2)});
    book_.sync();
    EXPECT_THAT(server_.textOf(href(8)), HasSubstr("urn:uuid:" + uuid(2)));
    expectInStep();
}

TEST_F(EngineTest, AMemberThatLeavesTheServerAndComesBackIsOneAgain) {
    server_.put("/book/g.vcf", vcard::cardText({"X-ADDRESSBOOKSERVER-KIND:group", "UID:" + uuid(9), "N:G",
                                                "FN:G", "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + uuid(1)}));
    server_.put(href(1), card(1, {}));
    book_.sync();
    server_.remove(href(1));
    book_.sync();
    expectInStep();
    server_.put(href(1), card(1, {}));
    book_.sync();
    EXPECT_THAT(book_.members(uuid(9) + ":ABGroup"), ElementsAre(person(1)));
    expectInStep();
}

TEST_F(EngineTest, WhoIsDeletedLeavesTheGroupsUnlessKept) {
    server_.put("/book/g.vcf", vcard::cardText({"X-ADDRESSBOOKSERVER-KIND:group", "UID:" + uuid(9), "N:G",
                                                "FN:G", "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + uuid(1),
                                                "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + uuid(2)}));
    server_.put(href(1), card(1, {}));
    server_.put(href(2), card(2, {}));
    book_.sync();
    book_.remove(person(1));
    book_.remove(person(2));
    server_.put(href(2), card(2, {"TITLE:b"}));
    book_.sync();
    EXPECT_THAT(book_.members(uuid(9) + ":ABGroup"), ElementsAre(person(2)));
    EXPECT_THAT(server_.textOf("/book/g.vcf"), Not(HasSubstr(uuid(1))));
    EXPECT_THAT(server_.textOf("/book/g.vcf"), HasSubstr(uuid(2)));
    expectInStep();
}

TEST_F(EngineTest, CategoriesAreGroups) {
    server_.put(href(1), card(1, {"CATEGORIES:Friends,Work"}));
    server_.put(href(2), card(2, {"CATEGORIES:Friends"}));
    server_.put(href(3), card(3, {}));
    book_.sync();
    ASSERT_THAT(book_.groups("Friends"), SizeIs(1));
    const std::string friends = book_.groups("Friends")[0];
    EXPECT_THAT(book_.members(friends), UnorderedElementsAre(person(1), person(2)));
    EXPECT_THAT(server_.cards, SizeIs(3));
    expectInStep();
    book_.join(friends, person(3));
    book_.join(friends, person(1), false);
    book_.sync();
    EXPECT_THAT(server_.textOf(href(3)), HasSubstr("CATEGORIES:Friends"));
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("CATEGORIES:Work"));
    EXPECT_THAT(server_.textOf(href(2)), HasSubstr("CATEGORIES:Friends"));
    expectInStep();
    server_.put(href(2), card(2, {}));
    book_.sync();
    EXPECT_THAT(book_.members(friends), ElementsAre(person(3)));
    expectInStep();
    book_.set(friends, "GroupName", std::string("Pals"));
    book_.sync();
    EXPECT_THAT(server_.textOf(href(3)), HasSubstr("CATEGORIES:Pals"));
    expectInStep();
    book_.join(friends, person(3), false);
    book_.sync();
    EXPECT_THAT(server_.textOf(href(3)), Not(HasSubstr("CATEGORIES")));
    expectInStep();
    book_.remove(book_.groups("Work")[0]);
    book_.sync();
    EXPECT_THAT(server_.textOf(href(1)), Not(HasSubstr("CATEGORIES")));
    expectInStep();
}

TEST_F(EngineTest, ACategoryAndACardOfOneNameAreOneGroup) {
    const std::string group =
        vcard::cardText({"X-ADDRESSBOOKSERVER-KIND:group", "UID:" + uuid(9), "N:Friends", "FN:Friends",
                         "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + uuid(2)});
    server_.put(href(1), card(1, {"CATEGORIES:Friends"}));
    book_.sync();
    server_.put("/book/g.vcf", group);
    server_.put(href(2), card(2, {}));
    book_.sync();
    ASSERT_THAT(book_.groups("Friends"), ElementsAre(uuid(9) + ":ABGroup"));
    EXPECT_THAT(book_.members(uuid(9) + ":ABGroup"), UnorderedElementsAre(person(1), person(2)));
    EXPECT_THAT(server_.textOf("/book/g.vcf"), HasSubstr(uuid(1)));
    expectInStep();
    book_.join(uuid(9) + ":ABGroup", person(1), false);
    book_.sync();
    EXPECT_THAT(server_.textOf(href(1)), Not(HasSubstr("CATEGORIES")));
    EXPECT_THAT(server_.textOf("/book/g.vcf"), Not(HasSubstr(uuid(1))));
    expectInStep();
}

TEST_F(EngineTest, OtherRecordsStayLocal) {
    auto collections = book_.store().syncCollections();
    collections[0].isDefault = false;
    ChangeSet changes;
    changes.sync.collections = collections;
    book_.save(changes);
    book_.addPerson(uuid(1), {{"Last", std::string("A")}});
    book_.sync();
    EXPECT_THAT(server_.cards, IsEmpty());
    collections = book_.store().syncCollections();
    collections[0].isDefault = true;
    changes.sync.collections = collections;
    book_.save(changes);
    book_.addPerson(uuid(2), {{"Last", std::string("B")}});
    book_.set(person(1), "Last", std::string("C"));
    book_.sync();
    EXPECT_THAT(server_.cards, SizeIs(1));
    EXPECT_NE(server_.textOf(href(2)), "");
}

TEST_F(EngineTest, WhatTheLogDoesNotTellIsFoundByComparing) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    server_.put(href(2), card(2, {"TITLE:a"}));
    book_.sync();
    book_.set(person(1), "JobTitle", std::string("b"));
    book_.remove(person(2));
    book_.addPerson(uuid(3), {{"Last", std::string("New")}});
    ChangeSet changes; // after which anything may have changed
    changes.definitions.push_back({Kind::person, "shoe size", static_cast<int>(Type::integer)});
    book_.save(changes);
    const Summary summary = book_.sync();
    EXPECT_EQ(summary.sent, 2);
    EXPECT_EQ(summary.removedThere, 1);
    expectInStep();
    book_.set(person(1), "shoe size", std::int64_t{42}); // which no card holds
    server_.put(href(1), card(1, {"TITLE:c"}));
    book_.sync();
    EXPECT_EQ(book_.text(person(1), "shoe size"), "42");
    expectInStep();
}

TEST_F(EngineTest, ARecordMovesToAnotherCollection) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.sync();
    MemoryServer other;
    test::MemoryCollection client(other);
    ChangeSet changes;
    changes.sync.collections.push_back(
        {0, book_.store().syncAccounts()[0].id, "https://example.com/other/", "Other", {}, 0, false});
    const std::int64_t id = book_.store().save(changes).collections.at(0);
    changes = {};
    SyncLink link = book_.store().syncLinksOf(person(1)).at(0);
    link.leaves = true;
    changes.sync.links = {link, unsentLink(id, person(1))};
    book_.save(changes);
    server_.put(href(1), card(1, {"TITLE:b"})); // another client changes it before it has left
    book_.set(person(1), "Note", std::string("n"));
    book_.sync();
    EXPECT_THAT(server_.cards, IsEmpty());
    runCycle(book_.store(), id, client);
    EXPECT_THAT(other.textOf(href(1)), HasSubstr("TITLE:b"));
    EXPECT_THAT(other.textOf(href(1)), HasSubstr("NOTE:n"));
    EXPECT_THAT(book_.uids(), SizeIs(1));
    expectInStep();
}

TEST_F(EngineTest, ADryRunChangesNothing) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    server_.put(href(2), card(2, {}));
    book_.sync();
    server_.put(href(1), card(1, {"TITLE:b"}));
    server_.put(href(3), card(3, {}));
    book_.set(person(1), "JobTitle", std::string("c"));
    book_.remove(person(2));
    const auto cards = server_.cards.size();
    const std::int64_t change = book_.store().lastChange();
    CycleOptions dry;
    dry.dryRun = true;
    const Summary would = book_.sync(dry);
    EXPECT_EQ(book_.store().lastChange(), change);
    EXPECT_EQ(server_.cards.size(), cards);
    EXPECT_THAT(book_.client().requests, Not(Contains(HasSubstr("put"))));
    const Summary did = book_.sync();
    EXPECT_EQ(would.fetched, did.fetched);
    EXPECT_EQ(would.sent, did.sent);
    EXPECT_EQ(would.merged, did.merged);
    EXPECT_EQ(would.conflicts, did.conflicts);
    EXPECT_EQ(would.removedThere, did.removedThere);
    expectInStep();
}

TEST_F(EngineTest, WhatIsSavedMeanwhileIsNotOverwritten) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.sync();
    server_.put(href(1), card(1, {"TITLE:b"}));
    Store other(root() / "a");
    book_.client().onRequest = [&](const std::string& what) {
        if (what == "answer get " + href(1) && other.value(other.find(person(1))->row, "Note").empty()) {
            ChangeSet changes;
            changes.records.push_back({person(1), Kind::person, false, {{"Note", std::string("n")}}});
            other.save(changes);
        }
    };
    book_.sync();
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("NOTE:n"));
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("TITLE:b"));
    expectInStep();
}

// Called when a statement begins; see below.
std::function<void(const std::string&)> onStatement;

int traceStatements(unsigned, void*, void*, void* text) {
    if (onStatement) {
        onStatement(static_cast<const char*>(text));
    }
    return 0;
}

int watchStatements(sqlite3* connection, const char**, const sqlite3_api_routines*) {
    return sqlite3_trace_v2(connection, SQLITE_TRACE_STMT, traceStatements, nullptr);
}

TEST_F(EngineTest, WhatIsSavedBetweenReadingAndWritingIsNotOverwritten) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    book_.sync();
    server_.put(href(1), card(1, {"TITLE:b"}));
    Store other(root() / "a");
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(watchStatements));
    SyncedBook watched(root() / "a", server_);
    sqlite3_reset_auto_extension();
    onStatement = [&](const std::string& statement) {
        if (statement.starts_with("BEGIN IMMEDIATE")) { // the cycle has read, and is about to write
            onStatement = nullptr;
            ChangeSet changes;
            changes.records.push_back({person(1), Kind::person, false, {{"JobTitle", std::string("c")}}});
            other.save(changes);
        }
    };
    watched.sync();
    EXPECT_FALSE(onStatement);
    EXPECT_EQ(watched.text(person(1), "JobTitle"), "c");
    EXPECT_THAT(server_.textOf(href(1)), HasSubstr("TITLE:c"));
    EXPECT_THAT(watched.store().syncConflicts(), SizeIs(1));
    expectInStep();
}

TEST_F(EngineTest, WhatARepairLostComesBack) {
    server_.put(href(1), card(1, {"TITLE:a"}));
    server_.put(href(2), card(2, {"TITLE:a"}));
    book_.sync();
    book_.remove(person(1));
    auto collections = book_.store().syncCollections(); // as repair() leaves them
    collections[0].change = -1;
    collections[0].state.clear();
    ChangeSet changes;
    changes.sync.collections = collections;
    book_.save(changes);
    book_.sync();
    EXPECT_EQ(book_.text(person(1), "JobTitle"), "a");
    EXPECT_THAT(server_.cards, SizeIs(2));
    expectInStep();
}

} // namespace
} // namespace addressbook::sync

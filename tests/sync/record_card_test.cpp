// Records as cards, and cards as changes of records.

#include "frameworks/AddressBook/sync/record_card.h"

#include "frameworks/AddressBook/vcard/edit_card.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"
#include "tests/vcard/random_card.h"
#include "tests/vcard/support.h"

#include <gmock/gmock.h>

namespace addressbook::sync {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using vcard::Card;

const std::string kIda = "AAAAAAAA-0000-4000-8000-000000000001";
const std::string kBo = "AAAAAAAA-0000-4000-8000-000000000002";
const std::string kGroup = "AAAAAAAA-0000-4000-8000-000000000003:ABGroup";

class RecordCardTest : public test::Scratch {
  protected:
    SaveResult set(const std::vector<Card>& cards) {
        ChangeSet changes = test::changesAt(++time_);
        for (const Card& card : cards) {
            setRecord(store_, card.uid, card, changes);
        }
        joinWaiting(store_, changes);
        return store_.save(changes);
    }
    static Card person(const std::string& uuid) {
        Card card;
        card.uid = uuid + ":ABPerson";
        card.values["Last"] = uuid;
        return card;
    }
    static Card group(const std::vector<std::string>& members) {
        Card card;
        card.kind = Kind::group;
        card.uid = kGroup;
        card.values["GroupName"] = std::string("G");
        card.memberUids = members;
        return card;
    }
    std::vector<std::string> members() const {
        std::vector<std::string> uids;
        for (const RowId row : store_.members(store_.find(kGroup)->row)) {
            uids.push_back(store_.find(row)->uid);
        }
        return uids;
    }
    double time_ = 0;
    Store store_{folder()};
};

TEST_F(RecordCardTest, RandomCardsComeBack) {
    vcard::RandomCard maker(20260303);
    Card before = maker.card();
    set({before});
    for (int round = 0; round < 20; ++round) {
        const Card card = maker.changed(before);
        set({card});
        const auto again = cardOf(store_, card.uid);
        ASSERT_TRUE(again);
        EXPECT_TRUE(vcard::sayTheSame(card, *again));
        EXPECT_EQ(set({card}).change, 0); // nothing differs any more
        before = card;
    }
}

TEST_F(RecordCardTest, WhatNoCardHoldsStays) {
    Card card = person(kIda);
    set({card});
    test::saveRecords(store_, {test::updated(card.uid, {{"HomePage", std::string("h")}})});
    card.values["Last"] = std::string("B");
    set({card});
    EXPECT_EQ(store_.value(store_.find(card.uid)->row, "HomePage"), Value(std::string("h")));
}

TEST_F(RecordCardTest, MembersJoinAndLeave) {
    set({person(kIda), person(kBo), group({"urn:uuid:" + kIda})});
    EXPECT_THAT(members(), ElementsAre(kIda + ":ABPerson"));
    set({group({kBo})});
    EXPECT_THAT(members(), ElementsAre(kBo + ":ABPerson"));
    EXPECT_THAT(cardOf(store_, kGroup)->memberUids, ElementsAre("urn:uuid:" + kBo));
}

TEST_F(RecordCardTest, MembersThatComeLaterJoin) {
    const std::string nobody = "mailto:x@example.com";
    set({group({"urn:uuid:" + kIda, nobody, "urn:uuid:" + kBo})});
    EXPECT_THAT(members(), IsEmpty());
    EXPECT_THAT(cardOf(store_, kGroup)->memberUids,
                UnorderedElementsAre("urn:uuid:" + kIda, nobody, "urn:uuid:" + kBo));
    set({person(kBo)});
    EXPECT_THAT(members(), ElementsAre(kBo + ":ABPerson"));
    EXPECT_THAT(cardOf(store_, kGroup)->memberUids,
                UnorderedElementsAre("urn:uuid:" + kIda, nobody, "urn:uuid:" + kBo));
    set({person(kIda)});
    EXPECT_THAT(members(), UnorderedElementsAre(kIda + ":ABPerson", kBo + ":ABPerson"));
}

} // namespace
} // namespace addressbook::sync

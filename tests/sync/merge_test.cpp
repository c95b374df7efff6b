// Bringing two changes of one card together.

#include "frameworks/AddressBook/sync/merge.h"

#include "frameworks/AddressBook/vcard/edit_card.h"
#include "tests/support/rounds.h"
#include "tests/vcard/random_card.h"
#include "tests/vcard/support.h"

#include <gtest/gtest.h>

namespace addressbook::sync {
namespace {

using vcard::Card;
using vcard::cardText;
using vcard::describe;
using vcard::readOne;
using vcard::sayTheSame;
using Lines = std::vector<std::string>;

Card person(const Lines& lines) {
    Lines all{"N:A"};
    all.insert(all.end(), lines.begin(), lines.end());
    return readOne(cardText(all));
}

// Conflicts as text: "local Phone Home:1".
std::string describe(const std::vector<Conflict>& conflicts) {
    std::string text;
    for (const Conflict& each : conflicts) {
        text += (text.empty() ? "" : " | ") + std::string(each.side == Side::local ? "local " : "remote ") +
                each.property + ' ' + (each.label.empty() ? "" : each.label + ':') +
                vcard::describe(each.value);
    }
    return text;
}

// The lines of a card on both sides and before, the property looked at, and what becomes of it. The server wins.
struct Case {
    const char* name;
    Lines base, local, remote;
    std::string_view property;
    const char* merged;
    const char* conflicts;
};

const std::vector<Case>& cases() {
    static const std::vector<Case> kCases{
        {"changed here", {"TITLE:a"}, {"TITLE:b"}, {"TITLE:a"}, property::kJobTitle, "b", ""},
        {"changed there", {"TITLE:a"}, {"TITLE:a"}, {"TITLE:b"}, property::kJobTitle, "b", ""},
        {"added here", {}, {"TITLE:b"}, {}, property::kJobTitle, "b", ""},
        {"removed there", {"TITLE:a"}, {"TITLE:a"}, {}, property::kJobTitle, "-", ""},
        {"changed alike", {"TITLE:a"}, {"TITLE:b"}, {"TITLE:b"}, property::kJobTitle, "b", ""},
        {"changed apart",
         {"TITLE:a"},
         {"TITLE:b"},
         {"TITLE:c"},
         property::kJobTitle,
         "c",
         "local JobTitle b"},
        {"added apart", {}, {"TITLE:b"}, {"TITLE:c"}, property::kJobTitle, "c", "local JobTitle b"},
        {"changed here, removed there", {"TITLE:a"}, {"TITLE:b"}, {}, property::kJobTitle, "b", ""},
        {"removed here, changed there", {"TITLE:a"}, {}, {"TITLE:b"}, property::kJobTitle, "b", ""},
        {"another property", {"NOTE:n"}, {"NOTE:n", "TITLE:x"}, {"NOTE:m"}, property::kNote, "m", ""},
        {"entries of both",
         {"TEL;HOME:1"},
         {"TEL;HOME:1", "TEL;WORK:2"},
         {"TEL;HOME:1", "TEL;CELL:3"},
         property::kPhone,
         "[Home:1 Work:2 Mobile:3]",
         ""},
        {"the same entry of both",
         {"TEL;HOME:1"},
         {"TEL;HOME:1", "TEL;WORK:2"},
         {"TEL;WORK:2", "TEL;HOME:1"},
         property::kPhone,
         "[Work:2 Home:1]",
         ""},
        {"an entry less and one more",
         {"TEL;HOME:1", "TEL;WORK:2"},
         {"TEL;WORK:2"},
         {"TEL;HOME:1", "TEL;WORK:2", "TEL;CELL:3"},
         property::kPhone,
         "[Work:2 Mobile:3]",
         ""},
        {"two entries changed",
         {"TEL;HOME:1", "TEL;WORK:2"},
         {"TEL;HOME:11", "TEL;WORK:2"},
         {"TEL;HOME:1", "TEL;WORK:22"},
         property::kPhone,
         "[Home:11 Work:22]",
         ""},
        {"one entry changed apart",
         {"TEL;HOME:1", "TEL;WORK:2"},
         {"TEL;HOME:11", "TEL;WORK:2"},
         {"TEL;HOME:12", "TEL;WORK:2"},
         property::kPhone,
         "[Home:12 Work:2]",
         "local Phone _$!<Home>!$_:11"},
        {"label here, value there",
         {"TEL;HOME:1"},
         {"TEL;WORK:1"},
         {"TEL;HOME:2"},
         property::kPhone,
         "[Work:2]",
         ""},
        {"an entry changed here, removed there",
         {"TEL;HOME:1", "TEL;WORK:2"},
         {"TEL;HOME:11", "TEL;WORK:2"},
         {"TEL;WORK:2"},
         property::kPhone,
         "[Home:11 Work:2]",
         ""},
        {"all entries removed", {"TEL;HOME:1"}, {}, {"TEL;HOME:1"}, property::kPhone, "-", ""},
        {"another order there",
         {"TEL;HOME:1", "TEL;WORK:2"},
         {"TEL;HOME:1", "TEL;WORK:2"},
         {"TEL;WORK:2", "TEL;HOME:1"},
         property::kPhone,
         "[Work:2 Home:1]",
         ""},
        {"another primary here",
         {"TEL;HOME:1", "TEL;WORK:2"},
         {"TEL;HOME:1", "TEL;WORK;PREF=1:2"},
         {"TEL;HOME:1", "TEL;WORK:22"},
         property::kPhone,
         "[Home:1 Work*:22]",
         ""},
        {"equal entries",
         {"TEL;HOME:1", "TEL;HOME:1"},
         {"TEL;HOME:1"},
         {"TEL;HOME:1", "TEL;HOME:1", "TEL;HOME:1"},
         property::kPhone,
         "[Home:1 Home:1]",
         ""},
        {"unknown lines",
         {"X-A:1", "X-B:1"},
         {"X-A:1", "X-B:1", "X-C:1"},
         {"X-B:1", "X-D:1"},
         property::kUnknownLines,
         "[X-B:1 | X-D:1 | X-C:1]",
         ""},
    };
    return kCases;
}

TEST(MergeTest, LooksAtEachPropertyAndEntry) {
    for (const Case& each : cases()) {
        const Merged merged = merge(person(each.base), person(each.local), person(each.remote), Side::remote);
        ASSERT_TRUE(merged.card) << each.name;
        EXPECT_EQ(describe(*merged.card, each.property), each.merged) << each.name;
        EXPECT_EQ(describe(merged.conflicts), each.conflicts) << each.name;
    }
}

TEST(MergeTest, TheCallerSaysWhoWins) {
    const Merged merged = merge(person({"TITLE:a", "TEL:1"}), person({"TITLE:b", "TEL:2"}),
                                person({"TITLE:c", "TEL:3"}), Side::local);
    EXPECT_EQ(describe(*merged.card, property::kJobTitle), "b");
    EXPECT_EQ(describe(*merged.card, property::kPhone), "[Other:2]");
    EXPECT_EQ(describe(merged.conflicts), "remote JobTitle c | remote Phone _$!<Other>!$_:3");
}

TEST(MergeTest, EntriesKeepTheIdentifiersOfHere) {
    const Card base = person({"TEL;HOME:1", "TEL;WORK:2"}), local = person({"TEL;HOME:1", "TEL;WORK:2"});
    const Merged merged = merge(base, local, person({"TEL;HOME:11", "TEL;WORK:2"}), Side::remote);
    const auto& here = local.values.at("Phone").as<MultiValue>()->entries;
    const auto& now = merged.card->values.at("Phone").as<MultiValue>()->entries;
    ASSERT_EQ(now.size(), 2u);
    EXPECT_EQ(now[0].identifier, here[0].identifier);
    EXPECT_EQ(now[1].identifier, here[1].identifier);
}

TEST(MergeTest, MembersAndCategoriesAreSets) {
    const auto group = [](const std::vector<std::string>& members) {
        Card card;
        card.kind = Kind::group;
        card.memberUids = members;
        return card;
    };
    const Merged merged = merge(group({"urn:uuid:00000000-0000-0000-0000-00000000000A", "mailto:b"}),
                                group({"00000000-0000-0000-0000-00000000000a", "mailto:b", "mailto:c"}),
                                group({"mailto:b", "mailto:d"}), Side::remote);
    EXPECT_EQ(merged.card->memberUids, (Lines{"mailto:b", "mailto:c", "mailto:d"}));
    const Merged people = merge(person({"CATEGORIES:a,b"}), person({"CATEGORIES:b,c"}),
                                person({"CATEGORIES:b,a,d"}), Side::remote);
    EXPECT_EQ(people.card->categories, (Lines{"b", "c", "d"}));
}

TEST(MergeTest, WhatWasChangedIsNotDeleted) {
    const Card base = person({"TITLE:a"}), changed = person({"TITLE:b"});
    EXPECT_FALSE(merge(base, std::nullopt, base, Side::remote).card);
    EXPECT_FALSE(merge(base, base, std::nullopt, Side::remote).card);
    EXPECT_FALSE(merge(base, std::nullopt, std::nullopt, Side::remote).card);
    EXPECT_TRUE(sayTheSame(*merge(base, std::nullopt, changed, Side::local).card, changed));
    EXPECT_TRUE(sayTheSame(*merge(base, changed, std::nullopt, Side::remote).card, changed));
    EXPECT_TRUE(sayTheSame(*merge(std::nullopt, std::nullopt, changed, Side::local).card, changed));
}

// Whether one side's entry is nowhere in what came of it, though the other did not remove it.
bool isLost(const Entry& entry, const std::string& property, const MultiValue& base, const MultiValue& result,
            const std::vector<Conflict>& conflicts) {
    const auto same = [&](const Entry& each) {
        return each.label == entry.label && each.value == entry.value;
    };
    const auto any = [](const auto& list, const auto& is) {
        return std::any_of(list.begin(), list.end(), is);
    };
    const auto label = [&](const Entry& each) { return each.label == entry.label; };
    const auto value = [&](const Entry& each) { return each.value == entry.value; };
    return !any(result.entries, same) && !any(base.entries, same) &&
           !any(conflicts,
                [&](const Conflict& each) {
                    return each.property == property && each.label == entry.label &&
                           each.value == entry.value;
                }) &&
           !(any(result.entries, label) && any(base.entries, value)) &&
           !(any(result.entries, value) && any(base.entries, label));
}

TEST(MergeTest, RandomCardsLoseNothing) {
    vcard::RandomCard maker(20260202);
    std::size_t conflicts = 0;
    for (int round = 0; round < support::rounds(300); ++round) {
        const Card base = maker.card();
        const Card local = maker.changed(base), remote = maker.changed(base);
        ASSERT_TRUE(sayTheSame(*merge(base, local, base, Side::remote).card, local));
        ASSERT_TRUE(sayTheSame(*merge(base, base, remote, Side::local).card, remote));
        ASSERT_TRUE(sayTheSame(*merge(base, local, local, Side::local).card, local));
        const Merged merged = merge(base, local, remote, Side::remote);
        const Merged turned = merge(base, remote, local, Side::local);
        ASSERT_TRUE(sayTheSame(*merged.card, *turned.card));
        ASSERT_EQ(merged.conflicts.size(), turned.conflicts.size());
        conflicts += merged.conflicts.size();
        for (const Card* side : {&local, &remote}) {
            const Card& other = side == &local ? remote : local;
            for (const auto& [property, value] : side->values) {
                const auto valueOf = [&](const Card& card) {
                    const auto found = card.values.find(property);
                    return found == card.values.end() ? Value() : found->second;
                };
                const Value before = valueOf(base), after = valueOf(*merged.card);
                if (const auto* list = value.as<MultiValue>()) {
                    for (const Entry& entry : list->entries) {
                        EXPECT_FALSE(
                            isLost(entry, property, before.empty() ? MultiValue() : *before.as<MultiValue>(),
                                   after.empty() ? MultiValue() : *after.as<MultiValue>(), merged.conflicts))
                            << property << ' ' << vcard::describe(entry.value);
                    }
                } else if (!(value == after) && !(value == before && !(valueOf(other) == before))) {
                    EXPECT_TRUE(std::any_of(merged.conflicts.begin(), merged.conflicts.end(),
                                            [&](const Conflict& each) {
                                                return each.property == property && each.value == value;
                                            }))
                        << property;
                }
            }
        }
    }
    EXPECT_GT(conflicts, static_cast<std::size_t>(support::rounds(100)));
}

} // namespace
} // namespace addressbook::sync

// The index of endings: searches find the same with it as without it, and it is there as long as, and only where, it
// was asked for.

#include "frameworks/AddressBook/store/explain.h"
#include "frameworks/AddressBook/store/file/backup.h"
#include "frameworks/AddressBook/store/file/paths.h"
#include "tests/store/behind_the_back.h"
#include "tests/store/random_book.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace addressbook::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

void askFor(Store& store, std::vector<NamedProperty> properties) {
    ChangeSet changes;
    changes.endings = std::move(properties);
    store.save(changes);
}

void askNoMore(Store& store, std::vector<NamedProperty> properties) {
    ChangeSet changes;
    changes.removedEndings = std::move(properties);
    store.save(changes);
}

class EndingSearchTest : public Scratch, public testing::WithParamInterface<unsigned> {
  protected:
    explicit EndingSearchTest() = default;

    // Asks for the endings of some property, or takes them away where there are such.
    void change(Store& other) {
        const NamedProperty property{generator_.oneIn(4) ? Kind::group : Kind::person,
                                     generator_.pick(kTexts)};
        const auto there = other.endings();
        if (std::find(there.begin(), there.end(), property) == there.end()) {
            askFor(other, {property});
        } else if (generator_.oneIn(2)) {
            askNoMore(other, {property});
        }
    }

    Query suffix(const Values& near) {
        Condition condition = generator_.condition(near);
        condition.property = generator_.pick(kTexts);
        condition.comparison =
            generator_.oneIn(2) ? Comparison::suffixMatch : Comparison::suffixMatchCaseInsensitive;
        const auto own = near.find(condition.property);
        if (own != near.end() && !generator_.oneIn(5)) {
            condition.value = generator_.wanted({*own});
        }
        if (const auto* text = condition.value.as<std::string>(); text != nullptr && generator_.oneIn(2)) {
            condition.value = std::string(ending(*text, generator_.oneIn(4) ? 70 : 1 + generator_.below(6)));
        }
        return {condition};
    }

    static constexpr std::array<const char*, 8> kTexts{"First", "Last",    "Note",   "Phone",
                                                       "Email", "Address", "custom", "never"};
    Generator generator_{GetParam()};
};

// In two books that are saved alike, one of them with indexes of endings that another program makes and drops.
TEST_P(EndingSearchTest, FindsTheSameWithAndWithoutTheIndex) {
    Store plain(root() / "plain");
    Store store(folder());
    Store other(folder());
    Model model({&plain, &store});
    int byEnding = 0;
    std::size_t hits = 0;
    for (int save = 0; save < 4; ++save) {
        model.save(generator_, kNow - kDay * (3 - save));
        for (int i = 0; i < 900; ++i) {
            if (i % 40 == 20) {
                for (int few = 0; few < 7; ++few) {
                    model.saveFew(generator_, kNow - kDay * (3 - save) + i * 10 + few);
                }
            }
            if (i % 30 == 0) {
                change(other);
            }
            const auto& records = model.records();
            const auto& near =
                std::next(records.begin(), static_cast<std::ptrdiff_t>(generator_.below(records.size())));
            const Query query = suffix(MemoryRecord(near->second).values());
            const std::vector<RowId> expected = model.matching(query);
            const auto where = [&] {
                return "seed " + std::to_string(GetParam()) + ", save " + std::to_string(save) + ", query " +
                       std::to_string(i) + ": " + described(query);
            };
            ASSERT_EQ(plain.search(query, Date{kNow}), expected) << where();
            ASSERT_EQ(store.search(query, Date{kNow}), expected) << where();
            if (store.explain(query, Date{kNow}).path == AccessPath::ending) {
                ++byEnding;
                hits += expected.size();
            }
        }
        EXPECT_THAT(store.check(), IsEmpty());
    }
    EXPECT_GT(byEnding, 800);
    EXPECT_GT(hits, 5'000U);
    EXPECT_EQ(plain.endings(), std::vector<NamedProperty>());
}

INSTANTIATE_TEST_SUITE_P(Seeds, EndingSearchTest, testing::Values(1U, 2U, 3U));

class EndingTest : public Scratch {
  protected:
    static Query endsWith(const std::string& property, const std::string& wanted,
                          Comparison comparison = Comparison::suffixMatchCaseInsensitive) {
        return query(property, comparison, text(wanted));
    }
    // Returns what is found by the index of endings.
    static std::vector<std::string> foundByEnding(const Store& store, const Query& query) {
        EXPECT_EQ(store.explain(query, Date{0}).path, AccessPath::ending);
        return found(store, query);
    }
    const NamedProperty last_{Kind::person, "Last"};
};

TEST_F(EndingTest, LooksAtTheHitsAlone) {
    Store store(folder());
    std::vector<RecordChange> records;
    for (int i = 0; i < 100; ++i) {
        records.push_back(inserted(newUid(Kind::person), {{"Last", text(i % 4 == 0 ? "Ångström" : "Berg")}}));
    }
    records.push_back(inserted(newUid(Kind::person), {{"Last", text(std::string(70, 'x') + "Strom")}}));
    saveRecords(store, records);
    EXPECT_EQ(store.explain(endsWith("Last", "STRÖM"), Date{0}).path, AccessPath::trigram);
    askFor(store, {last_});
    const auto expectStep = [&](const Query& query, std::int64_t rows, std::int64_t read, std::int64_t hits) {
        const SearchStep step = store.explain(query, Date{0});
        EXPECT_EQ(step.path, AccessPath::ending);
        EXPECT_EQ(step.indexRows, rows);
        EXPECT_EQ(step.records, read);
        EXPECT_EQ(step.hits, hits);
    };
    expectStep(endsWith("Last", "STRÖM"), 25, 0, 25);
    expectStep(endsWith("Last", "g"), 75, 0, 75);
    expectStep(endsWith("Last", "ström", Comparison::suffixMatch), 25, 0, 25);
    expectStep(endsWith("Last", "STRÖM", Comparison::suffixMatch), 25, 0, 0);
    expectStep(endsWith("Last", "XSTROM"), 1, 0, 1);
    expectStep(endsWith("Last", "xStrom", Comparison::suffixMatch), 1, 1, 1); // the row holds it cut
    expectStep(endsWith("Last", std::string(66, 'x') + "Strom"), 1, 1, 1);
    expectStep(endsWith("Last", std::string(71, 'x') + "Strom"), 1, 1, 0);
    expectStep(endsWith("Last", ""), 101, 0, 101);
}

TEST_F(EndingTest, IsMadeOfWhatWaitsInTheBacklogToo) {
    Store store(folder());
    const std::string ida = addPerson(store, {{"Last", text("Berg")}});
    flushIndexes(store);
    saveRecords(store, {updated(ida, {{"Last", text("Tal")}})});
    const std::string per = addPerson(store, {{"Last", text("Saal")}});
    askFor(store, {last_});
    EXPECT_THAT(foundByEnding(store, endsWith("Last", "al")), ElementsAre(ida, per));
    EXPECT_THAT(foundByEnding(store, endsWith("Last", "berg")), IsEmpty());
    EXPECT_THAT(store.check(), IsEmpty());
}

TEST_F(EndingTest, IsKeptByAProgramThatWasThereBefore) {
    Store before(folder());
    addPerson(before, {{"Last", text("Berg")}});
    askFor(*std::make_unique<Store>(folder()), {last_});
    const std::string per = addPerson(before, {{"Last", text("Tal")}});
    flushIndexes(before);
    EXPECT_THAT(foundByEnding(before, endsWith("Last", "al")), ElementsAre(per));
    EXPECT_THAT(before.check(), IsEmpty());
}

TEST_F(EndingTest, OfAPropertyThatNobodyHasYetFindsWhoGetsIt) {
    Store store(folder());
    askFor(store, {{Kind::group, "theirs"}, last_});
    EXPECT_THAT(store.endings(), ElementsAre(last_, NamedProperty{Kind::group, "theirs"}));
    const std::string ida = addPerson(store, {{"Last", text("Berg")}, {"theirs", text("Berg")}});
    flushIndexes(store);
    EXPECT_THAT(foundByEnding(store, endsWith("Last", "g")), ElementsAre(ida));
    EXPECT_EQ(store.explain(endsWith("theirs", "erg"), Date{0}).path, AccessPath::trigram); // a person's
    EXPECT_THAT(store.check(), IsEmpty());
}

TEST_F(EndingTest, GoesWithItsProperty) {
    Store store(folder());
    ChangeSet changes = changesAt(1);
    changes.definitions = {{Kind::person, "own", 1}};
    changes.endings = {{Kind::person, "own"}};
    store.save(changes);
    const std::string ida = addPerson(store, {{"own", text("Berg")}});
    ChangeSet again = changesAt(2); // taken away and made again, in one save that sets it anew
    again.removedDefinitions = changes.definitions;
    again.definitions = changes.definitions;
    again.records = {updated(ida, {{"own", text("Tal")}})};
    store.save(again);
    EXPECT_THAT(store.endings(), IsEmpty());
    EXPECT_THAT(store.check(), IsEmpty());
    EXPECT_THAT(found(store, endsWith("own", "al")), ElementsAre(ida));
}

TEST_F(EndingTest, IsGoneWhenItIsAskedForNoMore) {
    Store store(folder());
    const std::string ida = addPerson(store, {{"Last", text("Berg")}});
    askFor(store, {last_});
    askNoMore(store, {last_});
    EXPECT_THAT(store.endings(), IsEmpty());
    EXPECT_THAT(store.check(), IsEmpty());
    EXPECT_EQ(store.explain(endsWith("Last", "erg"), Date{0}).path, AccessPath::trigram);
    EXPECT_THAT(found(store, endsWith("Last", "erg")), ElementsAre(ida));
}

// A save without a change of records: it has a number, and nobody reads anything anew.
TEST_F(EndingTest, TellsNobody) {
    Store store(folder());
    addPerson(store, {{"Last", text("Berg")}});
    const std::int64_t last = store.lastChange();
    askFor(store, {last_});
    EXPECT_EQ(store.lastChange(), last + 1);
    EXPECT_THAT(store.changesSince(last), IsEmpty());
    askFor(store, {last_});
    askNoMore(store, {{Kind::person, "never"}});
    EXPECT_EQ(store.lastChange(), last + 1) << "nothing was to be done";
}

TEST_F(EndingTest, OfWhatIsNotIndexedIsRefused) {
    Store store(folder());
    EXPECT_THROW(askFor(store, {{Kind::person, "UID"}}), StoreError);
    EXPECT_THROW(askFor(store, {{Kind::person, ".Image"}}), StoreError);
    EXPECT_THAT(store.endings(), IsEmpty());
}

TEST_F(EndingTest, IsMadeAnewWithTheOtherIndexes) {
    {
        Store store(folder());
        addPerson(store, {{"Last", text("Berg")}});
        askFor(store, {last_});
    }
    execute(folder() / kFileName,
            "UPDATE meta SET value = '1.0' WHERE name = 'unicode'; DELETE FROM term WHERE property < 0");
    const Store store(folder());
    EXPECT_THAT(foundByEnding(store, endsWith("Last", "g")), testing::SizeIs(1));
    EXPECT_THAT(store.check(), IsEmpty());
}

TEST_F(EndingTest, IsInABackup) {
    const auto backup = root() / "backup";
    {
        Store store(folder());
        addPerson(store, {{"Last", text("Berg")}});
        askFor(store, {last_});
        backUp(folder(), backup, Existing::refuse);
        askNoMore(store, {last_});
    }
    restore(folder(), backup);
    const Store store(folder());
    EXPECT_THAT(store.endings(), ElementsAre(last_));
    EXPECT_THAT(foundByEnding(store, endsWith("Last", "g")), testing::SizeIs(1));
    EXPECT_THAT(store.check(), IsEmpty());
}

} // namespace
} // namespace addressbook::test

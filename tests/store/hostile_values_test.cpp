// Values that would break out of a statement, were one made of them: whatever they are given as, they are data.

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/schema.h"
#include "tests/store/builders.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <sstream>

namespace addressbook::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kAttacks[] = {
    "'; DROP TABLE record; --",
    "\"; DROP TABLE record; --",
    "x' OR '1'='1",
    "x') OR 1=1 --",
    "') UNION SELECT uid, uid, uid FROM record --",
    "%' OR 1 --",
    "* OR trigram:a",
    "\" OR NEAR(a b) NOT \"",
    "?1",
    ":uid $uid @uid",
    "[record]; ATTACH 'x' AS y; --",
    "/* */ PRAGMA writable_schema = ON; --",
    std::string("zero\0'; DROP TABLE record; --", 29),
};

class HostileValuesTest : public Scratch {
  protected:
    // Tables and indexes.
    std::string schema() const {
        sql::Connection connection(folder() / kFileName, databaseUri(folder() / kFileName),
                                   SQLITE_OPEN_READONLY | SQLITE_OPEN_URI, std::chrono::seconds(1));
        std::ostringstream text;
        auto statement = connection.prepare("SELECT name, sql FROM sqlite_schema ORDER BY name");
        while (statement.step()) {
            text << statement.text(0) << ' ' << statement.text(1) << '\n';
        }
        return text.str();
    }
};

TEST_F(HostileValuesTest, AreKeptAndFoundAsWhatTheyAre) {
    Store store(folder());
    addPerson(store, {{"First", text("Ann")}});
    const std::string before = schema();
    std::int64_t people = 1;
    for (const std::string& attack : kAttacks) {
        SCOPED_TRACE(attack);
        ChangeSet changes = changesAt(1);
        const std::string uid = attack + ":ABPerson";
        const std::string group = attack + ":ABGroup";
        MultiValue phones;
        phones.entries.push_back({newUuid(), attack, text(attack)});
        changes.definitions = {{Kind::person, attack, 1}};
        changes.records.push_back(inserted(group, {{"GroupName", text(attack)}}, Kind::group));
        changes.records.push_back(inserted(uid, {{"First", text(attack)},
                                                 {attack, text(attack)},
                                                 {"Phone", phones},
                                                 {"Address", Dictionary{{attack, text(attack)}}}}));
        changes.memberships.push_back({group, uid, true});
        changes.me = uid;
        store.save(changes);
        EXPECT_EQ(store.count(Kind::person), ++people);
        const auto record = store.find(uid);
        ASSERT_TRUE(record);
        EXPECT_EQ(store.value(record->row, "First"), text(attack));
        EXPECT_EQ(store.value(record->row, attack), text(attack));
        EXPECT_EQ(store.me(), uid);
        EXPECT_THAT(store.members(store.find(group)->row), ElementsAre(record->row));
        for (int one = 0; one < kComparisonCount; ++one) {
            const auto comparison = static_cast<Comparison>(one);
            for (const std::string& property : {std::string("First"), attack, std::string("UID")}) {
                const auto hits = found(store, query(property, comparison, text(attack)));
                EXPECT_LE(hits.size(), static_cast<std::size_t>(people));
            }
        }
        for (const char* property : {"First", attack.c_str()}) {
            if (std::string(property) == attack || property == std::string("First")) {
                EXPECT_THAT(found(store, query(property, Comparison::equal, text(attack))), ElementsAre(uid));
            }
        }
        EXPECT_THAT(found(store, query("First", Comparison::containsSubStringCaseInsensitive, text(attack))),
                    testing::Contains(uid));
    }
    EXPECT_EQ(schema(), before);
    EXPECT_THAT(store.check(), IsEmpty());
    ChangeSet removal = changesAt(2);
    for (const std::string& attack : kAttacks) {
        removal.removed.push_back(attack + ":ABPerson");
        removal.removed.push_back(attack + ":ABGroup");
        removal.removedDefinitions.push_back({Kind::person, attack, 1});
    }
    store.save(removal);
    EXPECT_EQ(store.count(Kind::person), 1);
    EXPECT_EQ(schema(), before);
    EXPECT_THAT(store.check(), IsEmpty());
}

} // namespace
} // namespace addressbook::test

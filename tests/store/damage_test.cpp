// Damage of every kind: an error that reports it, or a book that reads as before; never a crash, and never a
// loss without a report. Also what repair() rescues.

#include "frameworks/AddressBook/store/file/paths.h"
#include "frameworks/AddressBook/store/file/repair.h"
#include "tests/store/contents.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <fstream>
#include <random>

namespace addressbook::test {
namespace {

namespace fs = std::filesystem;
using Reason = StoreError::Reason;
using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

void write(const fs::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
}

class DamagedTest : public Scratch {
  protected:
    static constexpr int kPeople = 20;

    DamagedTest() {
        Store store(folder());
        ChangeSet changes = changesAt(1);
        changes.definitions = {{Kind::person, "shoe size", 1}};
        const std::string group = newUid(Kind::group);
        changes.records.push_back(inserted(group, {{"GroupName", text("Friends")}}, Kind::group));
        for (int i = 0; i < kPeople; ++i) {
            const std::string uid = newUid(Kind::person);
            const std::string number = std::to_string(i);
            changes.records.push_back(inserted(uid, {{"First", text("Ada " + number)},
                                                     {"Last", text("Lovelace")},
                                                     {"shoe size", text(number)},
                                                     {"Note", text(std::string(i == 8 ? 5000 : 40, 'n'))}}));
            if (i % 3 == 0) {
                changes.memberships.push_back({group, uid, true});
            }
            changes.me = uid;
        }
        store.save(changes);
        whole_ = contentsOf(store);
        file_ = store.file();
    }
    std::string sound() {
        if (sound_.empty()) {
            sound_ = bytesOf(file_);
        }
        return sound_;
    }
    // Puts a book of these bytes alone into the folder.
    void put(const std::string& bytes) {
        for (const char* suffix : {"", "-wal", "-shm"}) {
            fs::remove(file_.string() + suffix);
        }
        write(file_, bytes);
    }
    // What is wrong with the book, or nothing when it reads as it was written.
    std::string trouble() {
        try {
            const Store store(folder());
            if (contentsOf(store) == whole_) {
                return "";
            }
            const auto problems = store.check();
            return problems.empty() ? "SILENT" : problems.front();
        } catch (const StoreError& error) {
            EXPECT_THAT(error.what(), HasSubstr(folder().string()));
            return error.what();
        }
    }
    // Repairs, and expects that everything missing afterwards is reported, and that the damaged file is kept.
    void expectRescue(std::size_t leastPeople = 0) {
        const std::string before = bytesOf(file_);
        RepairReport report;
        try {
            report = repair(folder());
        } catch (const StoreError& error) {
            EXPECT_EQ(leastPeople, 0U) << error.what();
            EXPECT_TRUE(bytesOf(file_) == before);
            return;
        }
        if (!report.needed) {
            return;
        }
        EXPECT_TRUE(bytesOf(report.kept) == before);
        const Store store(folder());
        EXPECT_THAT(store.check(), IsEmpty());
        const Contents now = contentsOf(store);
        EXPECT_GE(now.records.size(), leastPeople);
        const std::string told = testing::PrintToString(report.lost);
        for (const auto& [uid, values] : whole_.records) {
            const auto found = now.records.find(uid);
            if (found == now.records.end() || found->second != values) {
                EXPECT_THAT(told,
                            AnyOf(HasSubstr(uid), HasSubstr("ids cannot be told"), HasSubstr("Record ")))
                    << uid;
            }
        }
        if (now.members != whole_.members) {
            EXPECT_THAT(report.lost, testing::Not(IsEmpty()));
        }
        fs::remove(report.kept);
    }

    Contents whole_;
    fs::path file_;
    std::string sound_;
};

TEST_F(DamagedTest, BitsAreToldOrDoNotMatter) {
    const std::string content = sound();
    std::mt19937 random(20261121); // NOLINT(cert-msc51-cpp): the same places each time
    int troubles = 0;
    for (int i = 0; i < 1000; ++i) {
        std::string bytes = content;
        const std::size_t place = random() % bytes.size();
        bytes[place] = static_cast<char>(bytes[place] ^ (1 << random() % 8));
        SCOPED_TRACE("bit in byte " + std::to_string(place));
        put(bytes);
        const std::string found = trouble();
        EXPECT_NE(found, "SILENT");
        if (found.empty()) {
            continue;
        }
        ++troubles;
        if (troubles % 8 == 0) {
            put(bytes);
            expectRescue(place < 100 ? 0 : 1);
        }
    }
    EXPECT_GT(troubles, 60);
}

// The checksum of a picture is beside it, as it is no part of the record's bytes.
TEST_F(DamagedTest, BitsOfAPictureAreTold) {
    const std::string uid = newUid(Kind::person);
    const Bytes picture(20'000, 'p');
    {
        Store store(folder());
        saveRecords(store, {inserted(uid, {{"First", text("Ada")}, {property::kImage.data(), picture}})});
        EXPECT_EQ(store.value(store.find(uid)->row, property::kImage), Value(picture));
    }
    std::string bytes = bytesOf(file_);
    const std::size_t place = bytes.find(std::string(2'000, 'p')) + 1'000;
    bytes[place] = static_cast<char>(bytes[place] ^ 1);
    put(bytes);
    {
        const Store store(folder());
        const auto row = store.find(uid)->row;
        EXPECT_EQ(store.value(row, "First"), text("Ada"));
        const std::string problem = "record " + std::to_string(row) + ": its picture's checksum is wrong";
        try {
            store.value(row, property::kImage);
            ADD_FAILURE() << "the picture was read";
        } catch (const StoreError& error) {
            EXPECT_EQ(error.reason(), Reason::damaged);
            EXPECT_THAT(error.what(), HasSubstr(problem));
        }
        EXPECT_THAT(store.check(Store::Depth::records), ElementsAre(HasSubstr(problem)));
    }
    const RepairReport report = repair(folder());
    EXPECT_THAT(report.lost, ElementsAre(HasSubstr(uid + " has a damaged picture, which is kept as it is.")));
    const Store store(folder());
    const Value kept = store.value(store.find(uid)->row, property::kImage);
    ASSERT_NE(kept.as<Bytes>(), nullptr);
    EXPECT_EQ(kept.as<Bytes>()->size(), picture.size());
    EXPECT_THAT(store.check(), IsEmpty());
}

TEST_F(DamagedTest, FilesThatStopShort) {
    const std::string content = sound();
    for (const double part : {0.02, 0.1, 0.3, 0.5, 0.75, 0.9, 0.99, 0.9999}) {
        SCOPED_TRACE(part);
        const auto size = static_cast<std::size_t>(static_cast<double>(content.size()) * part);
        put(content.substr(0, size));
        if (const std::string found = trouble(); found.empty()) { // what is missing holds no records
            EXPECT_FALSE(Store(folder()).check().empty());
        } else {
            EXPECT_THAT(found, AnyOf(HasSubstr("damaged"), HasSubstr("no address book")));
        }
        expectRescue(part > 0.95 ? kPeople : 0);
    }
    for (const std::size_t size : {0, 1, 99, 511, 4095, 4096}) {
        SCOPED_TRACE(size);
        put(content.substr(0, size));
        EXPECT_THAT(trouble(), testing::Not(AnyOf("", "SILENT")));
        expectRescue();
    }
}

TEST_F(DamagedTest, AFirstPageIsLentByAnotherBook) {
    std::string bytes = sound();
    bytes.replace(0, 200, std::string(200, '\xEE'));
    put(bytes);
    EXPECT_THAT(trouble(), HasSubstr("is no address book"));
    expectRescue(kPeople);
    EXPECT_EQ(contentsOf(Store(folder())), whole_);
}

TEST_F(DamagedTest, CardsKeepWhatCanBeRead) {
    std::string bytes = sound();
    const std::size_t name = bytes.find("Ada 7");
    ASSERT_NE(name, std::string::npos);
    bytes[name] = 'O';
    put(bytes);
    EXPECT_THAT(trouble(), HasSubstr("checksum"));
    const RepairReport report = repair(folder());
    EXPECT_THAT(report.lost, testing::ElementsAre(HasSubstr("4 of its values were readable; look at it.")));
    const Store store(folder());
    EXPECT_EQ(found(store, query("First", Comparison::equal, text("Oda 7"))).size(), 1U);
    EXPECT_EQ(store.count(Kind::person), kPeople);
}

TEST_F(DamagedTest, ASoundBookIsLeftAlone) {
    const std::string bytes = sound();
    EXPECT_FALSE(repair(folder()).needed);
    EXPECT_TRUE(bytesOf(file_) == bytes);
    fs::remove(file_);
    EXPECT_THROW(repair(folder()), StoreError);
}

// What is told when parts of a book are gone, each alone.
TEST_F(DamagedTest, RepairSaysWhatIsGone) {
    struct Row {
        const char* damage;
        const char* told;
    };
    const Row rows[] = {
        {"DELETE FROM record WHERE id = (SELECT min(member) FROM membership)",
         "had lost a side and are left out"},
        {"UPDATE meta SET value = 'nobody' WHERE name = 'me'", "The user's own card is lost."},
        {"UPDATE record SET uid = x'00' WHERE id = (SELECT min(id) FROM record)",
         "has lost its unique id and got "},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.damage);
        fs::remove_all(folder());
        std::string group;
        {
            Store store(folder());
            const std::string person = addPerson(store, {{"First", text("Ann")}});
            group = newUid(Kind::group);
            ChangeSet changes = changesAt(2);
            changes.records = {inserted(group, {{"GroupName", text("Friends")}}, Kind::group)};
            changes.memberships = {{group, person, true}};
            changes.me = person;
            store.save(changes);
        }
        sqlite3* database = nullptr;
        ASSERT_EQ(sqlite3_open((folder() / kFileName).c_str(), &database), SQLITE_OK);
        ASSERT_EQ(sqlite3_exec(database, row.damage, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(database);
        const RepairReport report = repair(folder());
        EXPECT_TRUE(report.needed);
        EXPECT_THAT(report.lost, Contains(HasSubstr(row.told)));
        const Store store(folder());
        EXPECT_THAT(store.check(), IsEmpty());
        EXPECT_TRUE(store.find(group));
    }
}

TEST_F(DamagedTest, ANewerVersionIsNotRepaired) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(file_.c_str(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database, "PRAGMA user_version = 99", nullptr, nullptr, nullptr), SQLITE_OK);
    sqlite3_close(database);
    const std::string bytes = bytesOf(file_);
    try {
        repair(folder());
        ADD_FAILURE() << "repaired";
    } catch (const StoreError& error) {
        EXPECT_EQ(error.reason(), Reason::newerSchema);
    }
    EXPECT_TRUE(bytesOf(file_) == bytes);
}

// A log is there as long as a store is open; these take a copy of it.
class StrayLogTest : public DamagedTest {
  protected:
    std::string log() const { return bytesOf(file_.string() + "-wal"); }
    void expectRefused(const std::string& log) {
        const std::string before = bytesOf(file_);
        write(file_.string() + "-wal", log);
        for (const Store::Access access : {Store::Access::readOnly, Store::Access::readWrite}) {
            fs::remove(file_.string() + "-shm");
            try {
                const Store store(folder(), access);
                ADD_FAILURE() << "opened";
            } catch (const StoreError& error) {
                EXPECT_EQ(error.reason(), Reason::damaged);
                EXPECT_THAT(error.what(), HasSubstr("belongs to another file or to an older state"));
            }
        }
        EXPECT_TRUE(bytesOf(file_) == before);
        const RepairReport report = repair(folder());
        EXPECT_THAT(report.lost, Contains(HasSubstr("The log beside the file belongs to another")));
    }
};

TEST_F(StrayLogTest, OfAnotherBook) {
    {
        Store other(root() / "other");
        addPerson(other, {{"First", text("Eve")}});
        const std::string foreign = bytesOf(other.file().string() + "-wal");
        ASSERT_FALSE(foreign.empty());
        expectRefused(foreign);
    }
    const Store store(folder());
    EXPECT_EQ(contentsOf(store), whole_);
}

TEST_F(StrayLogTest, OfAnOlderState) {
    std::string older;
    {
        Store store(folder());
        addPerson(store, {{"First", text("Eve")}});
        older = log();
    }
    {
        Store store(folder());
        addPerson(store, {{"First", text("Ute")}});
        whole_ = contentsOf(store);
    }
    expectRefused(older);
    EXPECT_EQ(contentsOf(Store(folder())), whole_);
}

// The state after a kill: the log holds saves that are not in the file yet.
TEST_F(StrayLogTest, OfItsOwnIsTakenOver) {
    std::string file, own;
    {
        Store store(folder());
        addPerson(store, {{"First", text("Eve")}});
        addPerson(store, {{"First", text("Ute")}});
        whole_ = contentsOf(store);
        file = bytesOf(file_);
        own = log();
    }
    put(file);
    write(file_.string() + "-wal", own);
    EXPECT_EQ(trouble(), "");
    EXPECT_EQ(contentsOf(Store(folder(), Store::Access::readOnly)), whole_);
}

TEST_F(StrayLogTest, ThatIsNone) {
    write(file_.string() + "-wal", std::string(5000, 'x'));
    EXPECT_EQ(trouble(), "");
}

} // namespace
} // namespace addressbook::test

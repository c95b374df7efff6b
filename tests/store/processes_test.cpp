// Eight processes use one book: no update is lost, the last change of a property wins, all processes see
// everything, and none gets an error about locks.

#include "tests/store/builders.h"
#include "tests/store/long_run.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <random>
#include <set>

namespace addressbook::test {
namespace {

constexpr int kProcesses = 8;

std::string noteOf(const Store& store, const std::string& uid, const std::string& property) {
    const Value value = store.value(store.find(uid)->row, property);
    const auto* words = value.as<std::string>();
    return words != nullptr ? *words : "";
}

// All that a store sees, in one line.
std::string seen(const Store& store) {
    std::string all = std::to_string(store.lastChange());
    for (const RowId row : store.rows(Kind::person)) {
        all += ' ' + store.find(row)->uid;
        for (const auto& [name, value] : store.values(row)) {
            if (const auto* words = value.as<std::string>()) {
                all += ' ' + name + '=' + *words;
            }
        }
    }
    return all;
}

// What a process did, which it reports at its end.
struct Told {
    int saves = 0;
    std::string own = "-";       // the last value of its own property
    std::int64_t lastChange = 0; // its last save of the property that all write
    std::string lastValue = "-";
    std::set<std::string> living, dead; // of the people that it added
    double longest = 0;                 // save, in seconds
};

Told work(Store& store, int number, const std::string& shared, std::chrono::seconds time) {
    using Clock = std::chrono::steady_clock;
    Told told;
    std::mt19937 random(static_cast<unsigned>(number));
    const auto end = Clock::now() + time;
    while (Clock::now() < end) {
        const std::string value = std::to_string(number) + "." + std::to_string(++told.saves);
        ChangeSet changes = changesAt(told.saves);
        const auto kind = random() % 4;
        std::string uid;
        if (kind == 0) {
            changes.records = {updated(shared, {{"own" + std::to_string(number), text(value)}})};
        } else if (kind == 1) {
            changes.records = {updated(shared, {{"Note", text(value)}})};
        } else if (kind == 2 || told.living.size() < 3) {
            uid = newUid(Kind::person);
            changes.records = {inserted(uid, {{"First", text(value)}})};
        } else {
            uid = *told.living.begin();
            changes.removed = {uid};
        }
        const auto before = Clock::now();
        const SaveResult result = store.save(changes);
        told.longest = std::max(told.longest, std::chrono::duration<double>(Clock::now() - before).count());
        if (kind == 0) {
            told.own = value;
        } else if (kind == 1) {
            told.lastChange = result.change;
            told.lastValue = value;
        } else if (!changes.records.empty()) {
            told.living.insert(uid);
        } else {
            told.living.erase(uid);
            told.dead.insert(uid);
        }
    }
    return told;
}

void write(const std::filesystem::path& file, const Told& told, const std::string& view) {
    std::ofstream out(file);
    out << told.saves << ' ' << told.own << ' ' << told.lastChange << ' ' << told.lastValue << ' '
        << told.longest << ' ' << told.living.size();
    for (const auto& uid : told.living) {
        out << ' ' << uid;
    }
    out << ' ' << told.dead.size();
    for (const auto& uid : told.dead) {
        out << ' ' << uid;
    }
    out << '\n' << view << '\n';
}

std::set<std::string> readUids(std::istream& in) {
    std::size_t count = 0;
    in >> count;
    std::set<std::string> uids;
    for (std::string uid; count > 0 && in >> uid; --count) {
        uids.insert(uid);
    }
    return uids;
}

using ProcessesTest = Scratch;

TEST_F(ProcessesTest, EightAtOnceLoseNothing) {
    std::string shared;
    {
        Store store(folder());
        shared = addPerson(store, {});
    }
    const std::chrono::seconds time(numberFrom("VELOCARD_SECONDS", 3));
    int done[2];
    int go[2];
    ASSERT_EQ(pipe(done), 0);
    ASSERT_EQ(pipe(go), 0);
    std::vector<pid_t> children;
    for (int number = 0; number < kProcesses; ++number) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            close(go[1]);
            try {
                Store store(folder());
                const Told told = work(store, number, shared, time);
                char byte = 0;
                if (::write(done[1], &byte, 1) != 1 || read(go[0], &byte, 1) != 0) {
                    _exit(2);
                }
                write(root() / std::to_string(number), told, seen(store));
                _exit(0);
            } catch (const std::exception& error) {
                std::fprintf(stderr, "process %d: %s\n", number, error.what());
                _exit(3);
            }
        }
        children.push_back(child);
    }
    close(done[1]);
    close(go[0]);
    char byte = 0;
    for (int number = 0; number < kProcesses; ++number) {
        if (read(done[0], &byte, 1) != 1) {
            break;
        }
    }
    close(go[1]); // all have saved: now they look
    for (const pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    close(done[0]);

    const Store store(folder());
    const std::string view = seen(store);
    std::int64_t lastChange = 0;
    std::string lastValue;
    std::set<std::string> living{shared};
    int saves = 1;
    for (int number = 0; number < kProcesses; ++number) {
        SCOPED_TRACE("process " + std::to_string(number));
        std::ifstream in(root() / std::to_string(number));
        Told told;
        ASSERT_TRUE(in >> told.saves >> told.own >> told.lastChange >> told.lastValue >> told.longest);
        told.living = readUids(in);
        told.dead = readUids(in);
        std::string itsView;
        std::getline(in >> std::ws, itsView);
        EXPECT_TRUE(itsView == view);
        EXPECT_EQ(noteOf(store, shared, "own" + std::to_string(number)), told.own == "-" ? "" : told.own);
        EXPECT_LT(told.longest, 10);
        EXPECT_GT(told.saves, 5);
        living.merge(told.living);
        for (const auto& uid : told.dead) {
            EXPECT_FALSE(store.find(uid)) << uid;
        }
        if (told.lastChange > lastChange) {
            lastChange = told.lastChange;
            lastValue = told.lastValue;
        }
        saves += told.saves;
    }
    EXPECT_EQ(noteOf(store, shared, "Note"), lastValue);
    std::set<std::string> there;
    for (const RowId row : store.rows(Kind::person)) {
        there.insert(store.find(row)->uid);
    }
    EXPECT_EQ(there, living);
    EXPECT_EQ(store.lastChange(), saves);
    EXPECT_THAT(store.check(), testing::IsEmpty());
}

} // namespace
} // namespace addressbook::test

// A process is killed at any moment of its saves: all saves that returned are there, and none is there in
// part.

#include "tests/store/builders.h"
#include "tests/store/long_run.h"
#include "tests/store/scratch.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <random>
#include <thread>

namespace addressbook::test {
namespace {

constexpr const char* kCounter = "00000000-0000-4000-8000-000000000000:ABPerson";
constexpr const char* kGroup = "00000000-0000-4000-8000-000000000001:ABGroup";

std::string uidOf(std::int64_t number) {
    char uuid[64];
    std::snprintf(uuid, sizeof uuid, "00000000-0000-4000-9000-%012llX:ABPerson",
                  static_cast<unsigned long long>(number));
    return uuid;
}

std::int64_t counted(const Store& store) {
    const Value value = store.value(store.find(kCounter)->row, "Note");
    return std::stoll(*value.as<std::string>());
}

// Saves until it is killed: each save adds a person to the book and to a group and counts it elsewhere. Tells
// the number of each through [pipe] once it is saved.
[[noreturn]] void saveForEver(const std::filesystem::path& folder, int pipe) {
    try {
        Store store(folder);
        for (std::int64_t number = counted(store) + 1;; ++number) {
            const std::string uid = uidOf(number);
            ChangeSet changes = changesAt(static_cast<double>(number));
            changes.records = {
                inserted(uid, {{"First", text(std::to_string(number))}, {".Image", Bytes(6000, 'p')}}),
                updated(kCounter, {{"Note", text(std::to_string(number))}})};
            changes.memberships = {{kGroup, uid, true}};
            store.save(changes);
            if (write(pipe, &number, sizeof number) != sizeof number) {
                _exit(2);
            }
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        _exit(3);
    }
}

using KillTest = Scratch;

TEST_F(KillTest, LosesNoAcknowledgedSaveAndLeavesNoneInPart) {
    {
        Store store(folder());
        saveRecords(store, {inserted(kCounter, {{"Note", text("0")}}), inserted(kGroup, {}, Kind::group)});
    }
    std::mt19937 random(5); // NOLINT(cert-msc51-cpp): the same moments each time, as far as that goes
    std::int64_t acknowledged = 0;
    const int kills = numberFrom("VELOCARD_KILLS", 25);
    for (int kill = 0; kill < kills; ++kill) {
        SCOPED_TRACE("kill " + std::to_string(kill));
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            close(ends[0]);
            saveForEver(folder(), ends[1]);
        }
        close(ends[1]);
        std::int64_t number = 0;
        const auto next = [&] { return read(ends[0], &number, sizeof number) == sizeof number; };
        if (kill % 5 != 0) { // the others are killed while they open the book
            EXPECT_TRUE(next());
        }
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 30'000));
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status)) << status;
        const std::int64_t before = acknowledged;
        acknowledged = std::max(acknowledged, number);
        while (next()) {
            acknowledged = number;
        }
        close(ends[0]);

        const Store store(folder());
        const std::int64_t saved = counted(store);
        ASSERT_GE(saved, acknowledged);
        ASSERT_LE(saved, acknowledged + 1); // the one that was on its way
        acknowledged = saved;
        ASSERT_EQ(store.count(Kind::person), saved + 1);
        ASSERT_EQ(store.members(store.find(kGroup)->row).size(), static_cast<std::size_t>(saved));
        for (std::int64_t one = before + 1; one <= saved; ++one) {
            const auto record = store.find(uidOf(one));
            ASSERT_TRUE(record) << one;
            EXPECT_EQ(store.value(record->row, "First"), text(std::to_string(one)));
            EXPECT_EQ(store.value(record->row, property::kImage), Value(Bytes(6000, 'p')));
        }
    }
    const Store store(folder());
    EXPECT_THAT(store.check(), testing::IsEmpty());
    EXPECT_GT(acknowledged, kills);
    for (std::int64_t one = 1; one <= acknowledged; ++one) {
        EXPECT_TRUE(store.find(uidOf(one))) << one;
    }
}

} // namespace
} // namespace addressbook::test

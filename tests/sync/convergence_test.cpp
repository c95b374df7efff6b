// Two books and other clients of one server, at random; and cycles that die.

#include "frameworks/AddressBook/sync/engine.h"

#include "frameworks/AddressBook/vcard/edit_card.h"
#include "tests/store/scratch.h"
#include "tests/sync/synced_book.h"
#include "tests/vcard/support.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <random>
#include <sqlite3.h>

namespace addressbook::sync {
namespace {

using test::MemoryServer;
using test::SyncedBook;
using testing::HasSubstr;

std::string uuid(int number) {
    const std::string digits = std::to_string(number);
    return "BBBBBBBB-0000-4000-8000-" + std::string(12 - digits.size(), '0') + digits;
}
std::string person(int number) {
    return uuid(number) + ":ABPerson";
}
std::string href(int number) {
    return "/book/" + uuid(number) + ".vcf";
}
std::string card(int number, std::vector<std::string> lines) {
    const std::string name = "P" + std::to_string(number);
    lines.insert(lines.begin(), {"UID:" + uuid(number), "N:" + name + ";;;;", "FN:" + name});
    return vcard::cardText(lines);
}

// Adds a phone number to a record.
void addPhone(SyncedBook& book, const std::string& uid, const std::string& number) {
    const auto record = book.store().find(uid);
    if (!record) {
        return;
    }
    Value phones = book.store().value(record->row, property::kPhone);
    if (phones.empty()) {
        phones = MultiValue();
    }
    phones.as<MultiValue>()->entries.push_back({newUuid(), "_$!<Home>!$_", Value(number)});
    book.set(uid, std::string(property::kPhone), phones);
}

class ConvergenceTest : public addressbook::test::Scratch {};

TEST_F(ConvergenceTest, RandomChangesOnAllSidesMeet) {
    for (const unsigned seed : {1U, 2U, 3U, 4U}) {
        std::mt19937 random(seed);
        const auto below = [&](int bound) {
            return std::uniform_int_distribution<int>(0, bound - 1)(random);
        };
        MemoryServer server;
        server.hasTokens = seed != 2;
        server.answersEtags = seed != 3;
        server.piece = seed == 4 ? 2 : 0;
        SyncedBook a(root() / ("a" + std::to_string(seed)), server),
            b(root() / ("b" + std::to_string(seed)), server);
        std::vector<std::string> expected; // phone numbers that were added
        int next = 0;
        CycleOptions force;
        force.force = true;
        // People of even numbers are never deleted, so that all that is added to them must stay.
        const auto change = [&](SyncedBook& book) {
            const int number = next > 0 ? below(next) : 0;
            const std::string uid = person(number);
            const std::string phone = std::to_string(seed) + std::to_string(expected.size() + 1000);
            switch (below(7)) {
            case 0:
                book.addPerson(uuid(next), {{"Last", "P" + std::to_string(next)}});
                ++next;
                break;
            case 1:
                if (number % 2 == 1 && book.store().find(uid)) {
                    book.remove(uid);
                }
                break;
            case 2:
                if (book.store().find(uid)) {
                    book.set(uid, "JobTitle", "t" + phone);
                }
                break;
            case 3: {
                const auto groups = book.groups("G" + std::to_string(below(3)));
                if (!groups.empty() && book.store().find(uid)) {
                    book.join(groups[0], uid, below(3) > 0);
                }
                break;
            }
            case 4:
                if (const int group = below(3); book.groups("G" + std::to_string(group)).empty()) {
                    book.addGroup(uuid(900 + group), "G" + std::to_string(group), {});
                }
                break;
            default:
                if (book.store().find(uid)) {
                    addPhone(book, uid, phone);
                    if (number % 2 == 0) {
                        expected.push_back(phone);
                    }
                }
            }
        };
        const auto changeThere = [&] {
            const int number = next > 0 ? below(next) : 0;
            std::string text = server.textOf(href(number));
            if (text.empty()) {
                return;
            }
            if (below(6) == 0 && number % 2 == 1) {
                server.remove(href(number));
            } else if (below(3) == 0) {
                const std::string line = "CATEGORIES:C" + std::to_string(below(2)) + "\r\n";
                const auto at = text.find("CATEGORIES:");
                at == std::string::npos ? text.insert(text.find("END:VCARD"), line)
                                        : text.erase(at, text.find("\r\n", at) + 2 - at);
                server.put(href(number), text);
            } else {
                const std::string phone = std::to_string(seed) + std::to_string(expected.size() + 1000);
                server.put(href(number),
                           text.insert(text.find("END:VCARD"), "TEL;TYPE=WORK:" + phone + "\r\n"));
                if (number % 2 == 0) {
                    expected.push_back(phone);
                }
            }
        };
        for (SyncedBook* book : {&a, &b}) {
            book->client().onRequest = [&](const std::string& what) {
                if (!what.starts_with("answer") && below(12) == 0) {
                    changeThere();
                }
            };
        }
        for (int round = 0; round < 60; ++round) {
            for (SyncedBook* book : {&a, &b}) {
                for (int count = below(4); count > 0; --count) {
                    change(*book);
                }
                if (below(3) > 0) {
                    book->sync(force);
                }
            }
            changeThere();
        }
        a.client().onRequest = b.client().onRequest = nullptr;
        for (int round = 0; round < 3; ++round) {
            a.sync(force);
            b.sync(force);
        }
        EXPECT_EQ(a.differences(), "");
        EXPECT_EQ(b.differences(), "");
        std::vector<std::string> people, others;
        for (SyncedBook* book : {&a, &b}) {
            auto& uids = book == &a ? people : others;
            uids = book->uids();
            std::sort(uids.begin(), uids.end());
            const Summary last = book->sync(force);
            EXPECT_EQ(last.fetched + last.sent + last.removedHere + last.removedThere, 0) << "seed " << seed;
        }
        EXPECT_EQ(people, others);
        EXPECT_GT(people.size(), 5);
        std::string all;
        for (const auto& [place, held] : server.cards) {
            all += held.text;
        }
        EXPECT_GT(expected.size(), 30);
        for (const std::string& phone : expected) {
            EXPECT_THAT(all, HasSubstr(":" + phone)) << "seed " << seed;
        }
        for (const std::string& uid : people) {
            auto here = a.members(uid), there = b.members(uid);
            std::sort(here.begin(), here.end());
            std::sort(there.begin(), there.end());
            EXPECT_EQ(here, there) << uid << " seed " << seed;
        }
    }
}

// The end of a process that keeps a book in step: before or after a request, or at a commit.
struct Killed {};
int stepsLeft = -1; // negative: nobody dies
bool isDead = false;

bool dies() {
    if (stepsLeft >= 0 && stepsLeft-- == 0) {
        isDead = true;
    }
    return isDead;
}

int onCommit(void*) {
    return dies() ? 1 : 0; // which undoes the transaction
}

int watchCommits(sqlite3* connection, const char**, const sqlite3_api_routines*) {
    sqlite3_commit_hook(connection, onCommit, nullptr);
    return SQLITE_OK;
}

// A book and a server with a change of every kind to bring over.
class Scene {
  public:
    explicit Scene(const std::filesystem::path& folder) : book(folder, server) {
        for (int number = 1; number <= 8; ++number) {
            server.put(href(number), card(number, {"TITLE:a"}));
        }
        server.put("/book/g.vcf", vcard::cardText({"X-ADDRESSBOOKSERVER-KIND:group", "UID:" + uuid(90), "N:G",
                                                   "FN:G", "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + uuid(1),
                                                   "X-ADDRESSBOOKSERVER-MEMBER:urn:uuid:" + uuid(20)}));
        book.sync();
        server.put(href(1), card(1, {"TITLE:b"}));
        book.set(person(1), "Note", std::string("n"));
        server.put(href(2), card(2, {"TITLE:b"}));
        book.set(person(2), "JobTitle", std::string("c"));
        book.remove(person(3));
        server.remove(href(4));
        book.remove(person(5));
        server.put(href(5), card(5, {"TITLE:b"}));
        server.remove(href(6));
        book.set(person(6), "Note", std::string("n"));
        book.addPerson(uuid(10), {{"Last", std::string("New")}});
        book.addGroup(uuid(91), "H", {person(7), person(10)});
        server.put(href(20), card(20, {"CATEGORIES:C"}));
        server.put("/book/x.vcf", vcard::cardText({"N:X;;;;", "FN:X"}));
        server.put("/book/bad.vcf", "no card");
        addPhone(book, person(8), "1234");
    }

    // Returns what both sides have, as text.
    std::string contents() {
        std::string text = book.differences();
        for (const auto& [place, held] : server.cards) {
            text += place + '\n' + held.text;
        }
        for (const std::string& uid : book.uids()) {
            text += uid + ':';
            auto members = book.members(uid);
            std::sort(members.begin(), members.end());
            for (const std::string& member : members) {
                text += ' ' + member;
            }
            text += '\n';
        }
        return text;
    }

    MemoryServer server;
    SyncedBook book;
};

TEST_F(ConvergenceTest, ACycleThatDiesAnywhereGoesOn) {
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(watchCommits));
    const auto undisturbed = [&] {
        Scene scene(root() / "undisturbed");
        scene.book.sync();
        EXPECT_EQ(scene.book.store().syncConflicts().size(), 1);
        return scene.contents();
    }();
    int deaths = 0;
    for (int step = 0; deaths == step; ++step) {
        const std::filesystem::path folder = root() / ("book" + std::to_string(step));
        Scene scene(folder);
        scene.book.client().onRequest = [](const std::string&) {
            if (dies()) {
                throw Killed();
            }
        };
        stepsLeft = step;
        try {
            scene.book.sync();
        } catch (const Killed&) {
            ++deaths;
        } catch (const StoreError&) {
            ++deaths;
        }
        stepsLeft = -1;
        isDead = false;
        SyncedBook again(folder, scene.server);
        again.sync();
        EXPECT_EQ(scene.contents(), undisturbed) << "died at step " << step;
        EXPECT_EQ(again.store().syncConflicts().size(), 1) << "died at step " << step;
        const Summary last = again.sync();
        EXPECT_EQ(last.fetched + last.sent + last.removedHere + last.removedThere, 0)
            << "died at step " << step;
    }
    EXPECT_GT(deaths, 30);
    sqlite3_reset_auto_extension();
}

} // namespace
} // namespace addressbook::sync

// Two machines in step with one address book, on servers that others wrote.

#include "tests/carddav/debian_servers.h"
#include "tests/sharing/machine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

namespace sharing_test {
namespace {

using addressbook::Outcome;
using carddav_test::ChildServer;
using carddav_test::DebianServer;
using testing::HasSubstr;

// What no address book here knows.
constexpr const char* kStrange = "X-OTHER;X-LIST=a,b;X-QUOTED=\"c;d\":J\xC3\xB8rgen \\, <&> \\n x\r\n";
// A GIF of one dot.
constexpr const char* kPhoto =
    "PHOTO;ENCODING=b;TYPE=GIF:R0lGODdhAQABAIAAAP///wAAACwAAAAAAQABAAACAkQBADs=\r\n";

class CycleTest : public testing::TestWithParam<DebianServer> {
  protected:
    CycleTest() {
        one_.found(server_.url(), "Friends");
        two_.join(server_.url(), "Friends");
    }

    // Syncs until nothing is left, and wants both to be alike.
    void inStep() const {
        for (int turn = 0; turn < 2; ++turn) {
            one_.syncWell();
            two_.syncWell();
        }
        EXPECT_EQ(one_.everybody(), two_.everybody());
    }

    ChildServer server_{GetParam().arguments};
    Machine one_, two_;
};

TEST_P(CycleTest, ChangesOfBothSides) {
    one_.add(person(kIda, "Ida", "Holm", std::string("TEL;TYPE=CELL:1\r\n") + kPhoto + kStrange) +
             person(kOle, "Ole", "Berg") + group(kChoir, "Choir", {kIda, kOle}));
    one_.syncWell();
    two_.syncWell();
    EXPECT_EQ(one_.everybody(), two_.everybody());
    EXPECT_EQ(two_.everybody().size(), 3U);
    EXPECT_THAT(two_.show(kIda), HasSubstr("Choir"));

    one_.set(kIda, "nickname=Idi");
    one_.set(kIda, "phones/mobile=2");
    two_.set(kIda, "jobtitle=Baker");
    two_.remove(kOle);
    two_.add(person(kEva, "Eva", "Lund", "CATEGORIES:Choir\r\n"));
    inStep();
    const auto all = one_.everybody();
    EXPECT_FALSE(all.contains(kOle));
    EXPECT_THAT(all.at(kIda),
                testing::IsSupersetOf({"NICKNAME:Idi\r\n", "TITLE:Baker\r\n", kPhoto, kStrange}));
    EXPECT_THAT(one_.show(kEva), HasSubstr("Choir"));
    EXPECT_THAT(all.at(kChoir), testing::Not(testing::Contains(HasSubstr(kOle))));
}

TEST_P(CycleTest, ConflictKeepsBothValues) {
    one_.add(person(kIda, "Ida", "Holm"));
    inStep();
    one_.set(kIda, "nickname=First");
    two_.set(kIda, "nickname=Second");
    inStep();
    const std::string shown = one_.show(kIda);
    const bool first = shown.find("First") != std::string::npos;
    EXPECT_NE(first, shown.find("Second") != std::string::npos);
    EXPECT_THAT(one_.run({"conflicts"}).out + two_.run({"conflicts"}).out,
                HasSubstr(first ? "Second" : "First"));
}

TEST_P(CycleTest, DeletedThereAndChangedHereIsKept) {
    one_.add(person(kIda, "Ida", "Holm"));
    inStep();
    one_.set(kIda, "nickname=Changed");
    two_.remove(kIda);
    two_.syncWell();
    inStep();
    EXPECT_THAT(two_.show(kIda), HasSubstr("Changed"));
}

TEST_P(CycleTest, NothingNewSendsNothing) {
    one_.add(person(kIda, "Ida", "Holm", std::string(kPhoto) + kStrange) + group(kChoir, "Choir", {kIda}));
    inStep();
    const auto before = one_.everybody();
    const Outcome again = one_.sync();
    EXPECT_EQ(again.status, 0) << again.err;
    EXPECT_EQ(before, one_.everybody());
}

INSTANTIATE_TEST_SUITE_P(Debian, CycleTest, testing::Values(carddav_test::kRadicale, carddav_test::kXandikos),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
} // namespace sharing_test

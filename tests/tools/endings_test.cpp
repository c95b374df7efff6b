// The commands for indexes of endings.

#include "tests/tools/program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace addressbook {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class EndingsTest : public testing::Test, public Sandbox {
  protected:
    void SetUp() override {
        std::string cards;
        for (const char* name : {"Berg", "Tal", "Lindberg"}) {
            cards += std::string("BEGIN:VCARD\nVERSION:3.0\nN:") + name + ";Ida\nEND:VCARD\n";
        }
        ASSERT_EQ(run({"import", "-"}, cards).status, 0);
    }
    Outcome add(const std::vector<std::string>& words) { return endings("add", words); }
    Outcome remove(const std::vector<std::string>& words) { return endings("remove", words); }
    std::string list() { return run({"endings"}).out; }

    // Expects that wrong words are answered with this, and change nothing.
    void expectRefused(const std::vector<std::string>& words, int status, const std::string& answer) {
        const Outcome outcome = add(words);
        EXPECT_EQ(outcome.status, status);
        EXPECT_THAT(outcome.err, StartsWith("addressbook: " + answer));
        EXPECT_EQ(list(), "");
    }

  private:
    Outcome endings(const char* command, const std::vector<std::string>& words) {
        std::vector<std::string> arguments{"endings", command};
        arguments.insert(arguments.end(), words.begin(), words.end());
        return run(arguments);
    }
};

TEST_F(EndingsTest, AreListedByTheirProperties) {
    const Outcome none = run({"endings"});
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(none.err, "no endings are indexed yet; addressbook endings add indexes those of a property\n");
    EXPECT_EQ(add({"LastName", "Email"}).status, 0);
    EXPECT_EQ(add({"--groups", "name"}).status, 0);
    EXPECT_EQ(list(), "emails\tpeople\nlastname\tpeople\nname\tgroups\n");
    EXPECT_EQ(remove({"emails"}).status, 0);
    EXPECT_EQ(remove({"name", "--groups"}).status, 0);
    EXPECT_EQ(list(), "lastname\tpeople\n");
    EXPECT_THAT(run({"check"}).err, HasSubstr("sound"));
}

TEST_F(EndingsTest, AreLookedUpInTheIndex) {
    const auto explained = [this] { return run({"check", "--explain", "lastname endsWith 'erg'"}).out; };
    EXPECT_THAT(explained(), HasSubstr("trigram index of texts"));
    ASSERT_EQ(add({"lastname"}).status, 0);
    EXPECT_THAT(explained(), HasSubstr("range of the value index (ending); 2 index rows; 2 hits"));
}

TEST_F(EndingsTest, MayBeThereOrNotAlready) {
    ASSERT_EQ(add({"lastname"}).status, 0);
    const Outcome again = add({"lastname", "note"});
    EXPECT_EQ(again.status, 0);
    EXPECT_EQ(again.err, "lastname: its endings are indexed already\n");
    EXPECT_EQ(list(), "lastname\tpeople\nnote\tpeople\n");
    const Outcome removed = remove({"lastname", "firstname"});
    EXPECT_EQ(removed.status, 1);
    EXPECT_EQ(removed.err, "addressbook: firstname: its endings are not indexed\n");
    EXPECT_EQ(list(), "lastname\tpeople\nnote\tpeople\n");
}

TEST_F(EndingsTest, OfOtherThingsAreRefused) {
    expectRefused({"lasname"}, 2, "no property to set is named \"lasname\"; did you mean lastname?");
    expectRefused({"lastname", "birthday"}, 2, "birthday holds no text, so nothing in it has an ending\n");
    expectRefused({"phones/home"}, 2, "endings are indexed for all values of a property; write phones\n");
    expectRefused({"lastname", "--groups"}, 2, "no property to set is named \"lastname\"");
    expectRefused({}, 2, "PROPERTY is required");
}

} // namespace
} // namespace addressbook

// Typical programs for macOS, run with an address book of their own.

#include "tests/framework/support.h"

#include <cstdio>
#include <sys/wait.h>

namespace {

struct Outcome {
    int status;
    std::string output; // standard error included
};

Outcome run(const std::string& command) {
    Outcome outcome{-1, {}};
    FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        return outcome;
    }
    char buffer[4096];
    for (std::size_t count; (count = std::fread(buffer, 1, sizeof(buffer), pipe)) > 0;) {
        outcome.output.append(buffer, count);
    }
    const int status = ::pclose(pipe);
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return outcome;
}

class ProgramTest : public AddressBookTest {
  protected:
    static Outcome directory(const std::string& words) { return run(directory_PROGRAM " " + words); }
    static Outcome phonebook(const std::string& words) { return run(phonebook_PROGRAM " " + words); }
};

TEST_F(ProgramTest, DirectoryInObjectiveC) {
    EXPECT_EQ(directory("add Ann wu ann@example.org 555-0100").status, 0);
    EXPECT_EQ(directory("add Bob Abel bob@example.com").output, "");
    EXPECT_EQ(directory("list").output, "Abel, Bob; bob@example.com\n"
                                        "wu, Ann; iPhone: 555-0100; ann@example.org\n");
    EXPECT_EQ(directory("find EXAMPLE.COM").output, "Abel, Bob; bob@example.com\n");
    EXPECT_EQ(directory("find nobody").status, 1);
    const Outcome card = directory("card Abel");
    EXPECT_EQ(card.status, 0);
    EXPECT_NE(card.output.find("\r\nFN:Bob Abel\r\n"), std::string::npos) << card.output;
    EXPECT_EQ(directory("card Nobody").status, 1);
    EXPECT_EQ(directory("dance").status, 2);

    ABGroup* club = [[book() groups] objectAtIndex:0];
    EXPECT_EQ(names([club members]), (std::vector<std::string>{"Ann", "Bob"}));
}

TEST_F(ProgramTest, PhonebookInC) {
    EXPECT_EQ(phonebook("me").status, 1);
    const Outcome added = phonebook("add Zo\u00eb Quist 555-0101");
    EXPECT_EQ(added.status, 0);
    EXPECT_EQ(added.output, "");
    EXPECT_EQ(phonebook("add Al Able 555-0102").status, 0);
    const std::string able = "Al Able\n  mobile: 555-0102\n  work: 555-0199\n"
                             "12 Elm Street\nSpringfield 01101\n  in Friends\n";
    const std::string quist = "Zo\u00eb Quist\n  mobile: 555-0101\n  work: 555-0199\n"
                              "12 Elm Street\nSpringfield 01101\n  in Friends\n";
    EXPECT_EQ(phonebook("list").output, able + quist);
    EXPECT_EQ(phonebook("me").output, able);
    EXPECT_EQ(phonebook("find qu").output, "ABPerson\n1 found\n");
    EXPECT_EQ(phonebook("find springfield").output, "ABPerson\nABPerson\n2 found\n");
    EXPECT_EQ(phonebook("find nobody").output, "0 found\n");

    ABMultiValue* phones = [[[book() people] objectAtIndex:0] valueForProperty:kABPhoneProperty];
    EXPECT_TRUE([[phones primaryIdentifier] isEqual:[phones identifierAtIndex:0]]);
}

TEST_F(ProgramTest, WithoutABookTheyEnd) {
    ::setenv("ADDRESSBOOK_HOME", "/does/not/exist", 1);
    const Outcome outcome = phonebook("list");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.output.find("no address book"), std::string::npos) << outcome.output;
    EXPECT_EQ(directory("list").status, 1);
}

} // namespace

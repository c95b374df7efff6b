// What the programs tell shells and the manual about any command line.
#include "tools/command_line/completion.h"
#include "tools/command_line/footer.h"
#include "tools/command_line/manual.h"
#include "tools/command_line/shell_words.h"

#include "tests/support/files.h"
#include "tests/support/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace command_line {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// A program with a command, whose options and arguments are of all kinds.
class ToyProgram {
  public:
    ToyProgram() {
        app.add_option("--book", text_, "The book; of all commands")->type_name("FOLDER");
        CLI::App* sub = app.add_subcommand("paint", "Paint a wall. Slowly");
        sub->add_option("--colour", text_, "Which")->check(CLI::IsMember({"red", "green"}));
        sub->add_option("--in", text_, "Where")->type_name("ROOM");
        sub->add_flag("--wet", wet_, "Stop before it dries");
        sub->add_option("WALL", text_, "The wall")->required();
        sub->add_option("FILE", files_, "Pictures of it");
        sub->footer(
            "It's .odd\nand goes on.\n  a table\n\nExamples:\n  toy paint 'a b'\nExit status: 0 done");
        sub = app.add_subcommand("wash", "Wash something");
        sub->add_subcommand("floor", "Wash a floor")->add_flag("--dry", wet_, "Without water");
        sub->add_subcommand("window", "Wash a window");
    }

    std::vector<std::string> words(const std::string& line) {
        std::vector<std::string> words;
        for (const Candidate& candidate : complete(app, completers, line).candidates) {
            words.push_back(candidate.word);
        }
        return words;
    }

    CLI::App app{"Toy.", "toy"};
    Completers completers{{"--in", [](const Typed& typed) {
                               return Completion{Completion::Paths::none,
                                                 false,
                                                 {{"hall of " + typed.value("--book"), ""}, {"Kitchen", ""}}};
                           }}};

  private:
    std::string text_;
    std::vector<std::string> files_;
    bool wet_ = false;
};

TEST(ShellWordsTest, QuotesAndBackslashesAreTakenAway) {
    EXPECT_THAT(shellWords("a  'b c' d\\ e\"f 'g\""), ElementsAre("a", "b c", "d ef 'g"));
    EXPECT_THAT(shellWords("a 'b c"), ElementsAre("a", "b c"));
    EXPECT_THAT(shellWords("a '' "), ElementsAre("a", "", ""));
    EXPECT_THAT(shellWords(""), ElementsAre(""));
    EXPECT_THAT(shellWords("a\\"), ElementsAre("a\\"));
}

TEST(CompletionTest, CommandsOptionsAndTheirValues) {
    ToyProgram toy;
    EXPECT_THAT(toy.words("toy "), ElementsAre("paint", "wash"));
    EXPECT_THAT(toy.words("toy p"), ElementsAre("paint"));
    EXPECT_THAT(toy.words("toy paint --w"), ElementsAre("--wet"));
    EXPECT_THAT(toy.words("toy paint --b"), ElementsAre("--book"));
    EXPECT_THAT(toy.words("toy paint --colour "), ElementsAre("red", "green"));
    EXPECT_THAT(toy.words("toy paint --colour=g"), ElementsAre("--colour=green"));
}

TEST(CompletionTest, CommandsMayHaveTheirOwn) {
    ToyProgram toy;
    EXPECT_THAT(toy.words("toy wash "), ElementsAre("floor", "window"));
    EXPECT_THAT(toy.words("toy wash floor --d"), ElementsAre("--dry"));
}

TEST(CompletionTest, AProgramKnowsMoreAndMayLookAtTheLine) {
    ToyProgram toy;
    EXPECT_THAT(toy.words("toy --book mine paint --in h"), ElementsAre("hall of mine"));
    EXPECT_THAT(toy.words("toy paint --book=mine --in h"), ElementsAre("hall of mine"));
    EXPECT_THAT(toy.words("toy paint --in k"), ElementsAre("Kitchen"));
}

TEST(CompletionTest, PathsAreLeftToTheShell) {
    ToyProgram toy;
    EXPECT_EQ(complete(toy.app, {}, "toy --book ").paths, Completion::Paths::folders);
    EXPECT_EQ(complete(toy.app, {}, "toy paint ").paths, Completion::Paths::none);
    EXPECT_EQ(complete(toy.app, {}, "toy paint north ").paths, Completion::Paths::files);
    EXPECT_EQ(complete(toy.app, {}, "toy paint north a b ").paths, Completion::Paths::files);
    EXPECT_EQ(complete(toy.app, {}, "toy paint -- --north ").paths, Completion::Paths::files);
}

TEST(FooterTest, IsTakenApart) {
    std::vector<std::string> blocks;
    for (const Block& block : blocksOf("One\nline.\n  table 1\n  table 2\nMore.\nExamples (of it):\n  toy\n"
                                       "Exit status: 0\ndone\n\nLast.")) {
        blocks.push_back(std::to_string(static_cast<int>(block.kind)) + block.text);
    }
    EXPECT_THAT(blocks,
                ElementsAre("0One line.", "1  table 1\n  table 2", "0More.", "2  toy", "30 done", "0Last."));
}

TEST(ManualTest, WhatRoffWouldReadIsWrittenSoThatItDoesNot) {
    ToyProgram toy;
    const std::string page = manualOf(*toy.app.get_subcommand("paint"), "1.0");
    EXPECT_THAT(page, HasSubstr("toy\\-paint \\- paint a wall. Slowly\n"));
    EXPECT_THAT(page, HasSubstr("It\\(aqs .odd and goes on.\n"));
    EXPECT_THAT(page, HasSubstr("  toy paint \\(aqa b\\(aq\n"));
    EXPECT_THAT(page, HasSubstr(".SH ARGUMENTS\n.TP\n\\fIWALL\\fP\n"));
    EXPECT_THAT(page, HasSubstr("\\fB\\-\\-in\\fP \\fIROOM\\fP\nWhere.\n"));
}

TEST(ManualTest, ACommandOfACommandHasItsPage) {
    ToyProgram toy;
    const support::TemporaryFolder folder;
    writeManuals(toy.app, "1.0", folder.path());
    const std::string page = support::bytesOf(folder.path() / "toy-wash-floor.1");
    EXPECT_THAT(page, HasSubstr("\\fBtoy wash floor\\fP [\\fIOPTION\\fP ...]\n"));
    EXPECT_THAT(page, HasSubstr("\\fB\\-\\-book\\fP"));
    EXPECT_THAT(page, HasSubstr("\\fBtoy\\fP(1),\n\\fBtoy\\-wash\\fP(1),\n\\fBtoy\\-wash\\-window\\fP(1)\n"));
}

} // namespace
} // namespace command_line

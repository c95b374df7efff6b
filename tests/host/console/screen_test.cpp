// What the prompt looks like on a terminal that can move its cursor and has colours.
#include "tests/host/console/terminal.h"

#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <memory>
#include <regex>
#include <sstream>
#include <termios.h>
#include <vterm.h>

namespace host {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

using Rows = std::vector<std::string>;

class ScreenTest : public TerminalTest {
  protected:
    // The colours of the terminal, by number.
    static constexpr int none = -1;
    static constexpr int red = 1;
    static constexpr int green = 2;
    static constexpr int magenta = 5;
    static constexpr int cyan = 6;
    static constexpr int grey = 8;
    static constexpr int blue = 12;

    ScreenTest() {
        environment_["TERM"] = "xterm-256color";
        environment_["LC_ALL"] = "C.UTF-8";
        vterm_set_utf8(screen_.get(), 1);
        vterm_screen_reset(cells(), 1);
    }

    void received(const std::string& bytes) override {
        vterm_input_write(screen_.get(), bytes.data(), bytes.size());
    }

    VTermScreen* cells() { return vterm_obtain_screen(screen_.get()); }

    VTermScreenCell cell(int row, int column) {
        VTermScreenCell result{};
        vterm_screen_get_cell(cells(), {row, column}, &result);
        return result;
    }

    // A row without blanks at its end; a wide character is one of them.
    std::string row(int number) {
        std::string text;
        for (int column = 0; column < columns_; ++column) {
            char bytes[1024];
            const size_t size =
                vterm_screen_get_text(cells(), bytes, sizeof bytes, {number, number + 1, column, column + 1});
            text.append(size == 0 && cell(number, column).chars[0] == 0 ? " " : std::string(bytes, size));
        }
        text.erase(text.find_last_not_of(' ') + 1);
        return text;
    }

    // The rows from the last one that begins with a prompt.
    std::vector<std::string> shown() {
        std::vector<std::string> rows;
        for (int number = 0; number < kRows; ++number) {
            if (row(number).starts_with(">")) {
                rows.clear();
                first_ = number;
            }
            rows.push_back(row(number));
        }
        while (!rows.empty() && rows.back().empty()) {
            rows.pop_back();
        }
        return rows;
    }

    std::string whole() {
        std::string text;
        for (int number = 0; number < kRows; ++number) {
            text += row(number) + "\n";
        }
        return text;
    }

    // Types, and waits until the program has answered: nothing comes any more, and it sleeps, however busy the
    // machine is.
    void look(const std::string& text) {
        type(text);
        for (int quiet = 0; quiet < 3;) {
            quiet = readSome(80) || !sleeps() ? 0 : quiet + 1;
        }
    }

    bool sleeps() const {
        std::ifstream file("/proc/" + std::to_string(program_) + "/stat");
        const std::string stat{std::istreambuf_iterator<char>(file), {}};
        return stat.empty() || stat.find(") S ") != std::string::npos ||
               stat.find(") Z ") != std::string::npos;
    }

    // Where the cursor stands, counted from the row of the prompt.
    std::pair<int, int> cursor() {
        shown();
        VTermPos place{};
        vterm_state_get_cursorpos(vterm_obtain_state(screen_.get()), &place);
        return {place.row - first_, place.col};
    }

    // The colour of a column of a row, counted from the row of the prompt.
    int colour(int fromPrompt, int column) {
        shown();
        const VTermColor colour = cell(first_ + fromPrompt, column).fg;
        return VTERM_COLOR_IS_INDEXED(&colour) && !VTERM_COLOR_IS_DEFAULT_FG(&colour) ? colour.indexed.idx
                                                                                      : none;
    }

    using Cursor = std::pair<int, int>;
    std::unique_ptr<VTerm, decltype(&vterm_free)> screen_{vterm_new(kRows, kColumns), vterm_free};
    int columns_ = kColumns;
    int first_ = 0; // the row of the last prompt
};

TEST_F(ScreenTest, GreetsWithWhatIsLoaded) {
    environment_["ADDRESSBOOK_HOME"] = "/some/folder";
    start();
    look("");
    EXPECT_THAT(row(0), testing::MatchesRegex("fmhost with Test plug-in, [0-9]+ functions"));
    EXPECT_EQ(row(1), "Address book: /some/folder ($ADDRESSBOOK_HOME)");
    EXPECT_EQ(row(2), "Type a calculation, or :help. Ctrl-D leaves.");
    EXPECT_EQ(row(3), ">");
}

TEST_F(ScreenTest, InputHasColours) {
    start();
    look("Upper ( $x ; \"a\" ) + 12 + Uper ( 1 ) /* no */");
    EXPECT_EQ(shown()[0], "> Upper ( $x ; \"a\" ) + 12 + Uper ( 1 ) /* no */");
    EXPECT_EQ(colour(0, 0), none);
    EXPECT_EQ(colour(0, 2), blue);
    EXPECT_EQ(colour(0, 6), blue);
    EXPECT_EQ(colour(0, 7), none);
    EXPECT_EQ(colour(0, 10), magenta);
    EXPECT_EQ(colour(0, 15), green);
    EXPECT_EQ(colour(0, 23), cyan);
    EXPECT_EQ(colour(0, 28), red);
    EXPECT_EQ(colour(0, 44), grey);
    EXPECT_EQ(cursor(), Cursor(0, 47));
    look("\x1b[H\x1b[3~"); // the first character goes, so that the function is not known any more
    EXPECT_EQ(shown()[0], "> pper ( $x ; \"a\" ) + 12 + Uper ( 1 ) /* no */");
    EXPECT_EQ(colour(0, 2), red);
    EXPECT_EQ(colour(0, 22), cyan);
    EXPECT_EQ(cursor(), Cursor(0, 2));
}

TEST_F(ScreenTest, OutputHasColours) {
    start();
    look("1 + 41\r");
    EXPECT_EQ(colour(-1, 0), cyan);
    look("\"a\"\r");
    EXPECT_EQ(colour(-1, 0), green);
    look("1 + )\r");
    EXPECT_EQ(colour(-3, 0), red);
    EXPECT_EQ(colour(-2, 4), none);
    EXPECT_EQ(whole().find("1 + 41\n42\n") == std::string::npos, false) << whole();
}

TEST_F(ScreenTest, NoColorIsHeeded) {
    environment_["NO_COLOR"] = "1";
    start();
    look("Upper ( \"a\"");
    EXPECT_EQ(colour(0, 2), none);
    EXPECT_EQ(shown(), (Rows{"> Upper ( \"a\"", "Upper ( text )"}));
    look(" )\r");
    EXPECT_EQ(colour(-1, 0), none);
    EXPECT_THAT(whole(), HasSubstr("> Upper ( \"a\" )\nA\n>\n"));
}

TEST_F(ScreenTest, AnEmptyNoColorIsNone) {
    environment_["NO_COLOR"] = "";
    start();
    look("Upper ( \"a\" )");
    EXPECT_EQ(colour(0, 2), blue);
    look("\r");
    EXPECT_EQ(colour(-1, 0), green);
}

TEST_F(ScreenTest, TheHintIsThePrototypeAtTheCursor) {
    start();
    look("Substitute ( Upper ( \"a\" ) ; ");
    EXPECT_EQ(shown()[1], "Substitute ( text ; searchString ; replaceString )");
    shown();
    EXPECT_EQ(cell(first_ + 1, 20).attrs.bold, 1U); // the argument at the cursor
    EXPECT_EQ(cell(first_ + 1, 13).attrs.bold, 0U);
    EXPECT_EQ(cursor(), Cursor(0, 31));
    look("\x1b[H\x1b[C\x1b[C");
    EXPECT_EQ(shown()[1], "Substitute ( text ; searchString ; replaceString )");
    look(std::string(15, '\x06')); // forward, into Upper
    EXPECT_EQ(shown()[1], "Upper ( text )");
    look("\x03");
    EXPECT_THAT(whole(), Not(HasSubstr("Upper ( text )")));
}

TEST_F(ScreenTest, AnIncompleteCalculationGoesOnInTheNextLine) {
    start();
    look("Let ( [ x = 1 ;\r");
    EXPECT_EQ(cursor(), Cursor(1, 4));
    look("y = \"a\r");
    EXPECT_EQ(cursor(), Cursor(2, 0)) << "blanks would belong to the text";
    look("b\" /*\rno\r*/\r");
    look("] ; x & y )");
    EXPECT_EQ(shown()[0], "> Let ( [ x = 1 ;");
    EXPECT_EQ(shown()[1], "    y = \"a");
    EXPECT_EQ(colour(1, 9), green);
    EXPECT_EQ(colour(2, 0), green);
    EXPECT_EQ(colour(3, 0), grey);
    look("\r");
    EXPECT_THAT(whole(), HasSubstr("] ; x & y )\n1a\nb\n>"));
}

TEST_F(ScreenTest, SeveralLinesAreOneEntryOfTheHistory) {
    start();
    look("( 1 +\r2 )\r\"other\"\r");
    look("\x1b[A\x1b[A");
    EXPECT_EQ(shown(), (Rows{"> ( 1 +", "    2 )"}));
    EXPECT_EQ(cursor(), Cursor(1, 7));
    look("\x1b[A"); // inside the text
    EXPECT_EQ(cursor(), Cursor(0, 7));
    look(" 40 +\r");
    EXPECT_THAT(whole(), HasSubstr("> ( 1 + 40 +\n    2 )\n43\n>"));
    look("\x1b[A\x1b[A\x1b[B"); // to its first line and back
    EXPECT_EQ(cursor().first, 1);
    look("\x1b[A\x1b[A\x1b[A\x1b[A");
    EXPECT_EQ(shown(), (Rows{"> ( 1 +", "    2 )"}));
    look("\x03");
}

TEST_F(ScreenTest, LongAndWideTextIsDrawnWhereItStands) {
    start();
    const std::string words = "\"" + std::string(50, 'a') + "日本語日本語\" & 12";
    look(words);
    EXPECT_EQ(shown(), (Rows{"> \"" + std::string(50, 'a') + "日本語", "日本語\" & 12"}));
    EXPECT_EQ(colour(1, 0), green);
    EXPECT_EQ(colour(1, 10), cyan);
    EXPECT_EQ(cursor(), Cursor(1, 12));
    look("\x1b[H\"\" & ");
    EXPECT_EQ(shown()[0], "> \"\" & \"" + std::string(50, 'a') + "日");
    EXPECT_EQ(shown()[1], "本語日本語\" & 12");
    EXPECT_EQ(cursor(), Cursor(0, 7));
    look("\r");
    EXPECT_THAT(whole(), Not(HasSubstr("expected")));
}

TEST_F(ScreenTest, PastedTextKeepsTabsAndLines) {
    start();
    look("\x1b[200~Let (\r\tx = 4 ;\r\tx\r)\r\x1b[201~");
    EXPECT_EQ(shown(), (Rows{"> Let (", "        x = 4 ;", "        x", ")"}));
    EXPECT_EQ(colour(1, 12), cyan);
    look("\r");
    EXPECT_THAT(whole(), HasSubstr(")\n4\n>"));
}

TEST_F(ScreenTest, ControlCLeavesTheTextAndKeepsThePrompt) {
    start();
    look("( 1 +\r2 +\x1b[A");
    look("\x03");
    EXPECT_THAT(whole(), HasSubstr("> ( 1 +\n    2 +\n>"));
    EXPECT_EQ(cursor(), Cursor(0, 2));
    look("6 * 7\r");
    EXPECT_THAT(whole(), HasSubstr("> 6 * 7\n42\n>"));
    look("\x04");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(ScreenTest, TheLineComesBackFromTheBackground) {
    start();
    look("1 + 2");
    ASSERT_EQ(kill(program_, SIGSTOP), 0);
    termios modes{};
    ASSERT_EQ(tcgetattr(terminal_, &modes), 0);
    modes.c_lflag |= ICANON | ECHO; // as a shell has them
    ASSERT_EQ(tcsetattr(terminal_, TCSANOW, &modes), 0);
    ASSERT_EQ(kill(program_, SIGCONT), 0);
    look("");
    EXPECT_EQ(colour(0, 2), cyan);
    look("\x1b[D\x1b[D4 + 3\r");
    EXPECT_THAT(whole(), HasSubstr("> 1 +4 + 3 2\n"));
}

TEST_F(ScreenTest, NamesAreListedBelowTheText) {
    start();
    look("( 1 +\rWeekOfYear\t");
    EXPECT_THAT(whole(),
                HasSubstr("    WeekOfYear\nWeekOfYear ( date )\nWeekOfYearFiscal ( date ; startingDay )\n"
                          "> ( 1 +\n    WeekOfYear\n"));
    look("\x03\tx");
    EXPECT_THAT(whole(), testing::ContainsRegex("[0-9][0-9][0-9] names begin so\n> x"));
}

TEST_F(ScreenTest, AStartedScriptPrintsBeforeTheLineThatIsTyped) {
    std::ofstream(folder_ / "Greets.fmscript") << "Show Custom Dialog [ \"hel\" & \"lo\" ]";
    start();
    look("Test_StartLater ( \"Greets\" ; 600 )\r");
    look("( 1 +\rLength (");
    waitFor("hello");
    look("");
    EXPECT_THAT(whole(), HasSubstr("0\nhello\n> ( 1 +\n    Length (\nLength ( text )\n"));
    EXPECT_EQ(cursor(), Cursor(1, 12));
}

TEST_F(ScreenTest, TheLineFollowsTheTerminalsSize) {
    start();
    const winsize size{kRows, kColumns / 2, 0, 0};
    ASSERT_EQ(ioctl(terminal_, TIOCSWINSZ, &size), 0);
    columns_ = kColumns / 2;
    vterm_set_size(screen_.get(), kRows, columns_);
    look("");
    look("1 + 2 + 3 + 4 + 5 + 6 + 7 + 8 + 9 + \"a\"");
    EXPECT_EQ(shown(), (Rows{"> 1 + 2 + 3 + 4 + 5 + 6 + 7 +", "8 + 9 + \"a\""}));
    EXPECT_EQ(colour(1, 8), green);
    EXPECT_EQ(cursor(), Cursor(1, 11));
}

// The rows of the tables in a section of a document, as :help prints them.
Rows documentedRows() {
    std::ifstream file(DOCUMENTS "/host.md");
    Rows rows;
    bool isInside = false;
    for (std::string line; std::getline(file, line);) {
        isInside = line.starts_with("## ") ? line == "## The prompt" : isInside;
        std::smatch parts;
        if (isInside && std::regex_match(line, parts, std::regex(R"(\| `?([^|`]+)`? \| ([^|]+) \|)"))) {
            std::string name = parts[1];
            name.resize(std::max<size_t>(24, name.size() + 1), ' ');
            rows.push_back("  " + name + parts[2].str());
        }
    }
    return rows;
}

TEST_F(ScreenTest, HelpIsWhatTheDocumentSays) {
    start();
    look(":help\r");
    const std::string plain =
        std::regex_replace(seen_, std::regex("\x1b\\[[0-9;?]*[a-zA-Z]|\r"), std::string());
    Rows rows;
    std::istringstream lines(plain);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("  ")) {
            rows.push_back(line);
        }
    }
    EXPECT_GT(rows.size(), 20U);
    EXPECT_EQ(rows, documentedRows());
}

// With a program of that name that stands first in the path.
class PictureTest : public ScreenTest {
  protected:
    void startWith(const std::string& program) {
        const fs::path file = folder_ / "chafa";
        std::ofstream(file) << "#!/bin/sh\n" << program << "\n";
        fs::permissions(file, fs::perms::owner_all);
        environment_["PATH"] = folder_.string() + ":" + std::getenv("PATH");
        // Two pixels by three: 14 bytes that name the kind, then a header of 40.
        std::string bmp = "BM";
        bmp.resize(78, '\0');
        bmp[10] = 54;
        bmp[14] = 40;
        bmp[18] = 2;
        bmp[22] = 3;
        bmp[26] = 1;
        bmp[28] = 24;
        std::ofstream(folder_ / "p.bmp", std::ios::binary) << bmp;
        std::ofstream(folder_ / "Picture.fmscript") << "Insert Picture [ $$p ; \"p.bmp\" ]";
        start();
        look(":run Picture\r");
        look("$$p\r");
    }
};

TEST_F(PictureTest, IsDrawnByTheProgram) {
    startWith("echo drawn $# \"$4\"; cat > '" + (folder_ / "got").string() + "'");
    EXPECT_THAT(whole(), HasSubstr("> $$p\ndrawn 5 1x1\n[picture BMP, \"p.bmp\", 2 x 3, 78 bytes]\n>"));
    EXPECT_EQ(fs::file_size(folder_ / "got"), 78U);
}

TEST_F(PictureTest, IsOnlyDescribedWhenTheProgramFails) {
    startWith("echo half a picture; exit 1");
    EXPECT_THAT(whole(), HasSubstr("> $$p\n[picture BMP, \"p.bmp\", 2 x 3, 78 bytes]\n>"));
}

TEST_F(PictureTest, IsOnlyDescribedWhenTheProgramTakesTooLong) {
    startWith("echo half a picture; exec sleep 30");
    waitFor("78 bytes");
    look("");
    EXPECT_THAT(whole(), HasSubstr("> $$p\n[picture BMP, \"p.bmp\", 2 x 3, 78 bytes]\n>"));
}

TEST_F(PictureTest, IsOnlyDescribedWithoutColours) {
    environment_["NO_COLOR"] = "1";
    startWith("echo drawn");
    EXPECT_THAT(whole(), HasSubstr("> $$p\n[picture BMP, \"p.bmp\", 2 x 3, 78 bytes]\n>"));
}

} // namespace
} // namespace host

// Files in containers, in the real program: the steps that read and write them, and containers that plug-ins
// make.
#include "tests/host/console/program.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace host {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

// One pixel, 42 bytes.
constexpr char kGifBytes[] =
    "GIF89a\1\0\1\0\x80\0\0\0\0\0\xFF\xFF\xFF\x21\xF9\4\1\0\0\0\0,\0\0\0\0\1\0\1\0\0\2\1D\0;";
const std::string kGif(kGifBytes, sizeof kGifBytes - 1);

// A PNG's header: 300 by 40000 pixels.
constexpr char kPngBytes[] = "\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\x01\x2C\0\0\x9C\x40\x08\6\0\0\0";
const std::string kPng(kPngBytes, sizeof kPngBytes - 1);

class ContainersTest : public ProgramTest {
  protected:
    // Runs a script with the test plug-in.
    Outcome script(const std::string& text, const std::string& options = "") {
        write("scripts/Main.fmscript", text);
        return good("run scripts/Main.fmscript " + options);
    }

    // The script fails at [place], a line and a column, with that message.
    void expectFailure(const std::string& text, const std::string& place, const std::string& message) {
        const Outcome result = script(text);
        EXPECT_EQ(result.status, static_cast<int>(ExitCode::failure)) << text;
        EXPECT_EQ(result.out, "");
        EXPECT_THAT(result.err,
                    testing::StartsWith("scripts/Main.fmscript:" + place + ": " + message + "\n"));
    }
};

TEST_F(ContainersTest, APictureComesInAndGoesOut) {
    write("scripts/pixel.jpg", kGif); // a name says nothing
    expect(script("Insert Picture [ $picture ; \"pixel.jpg\" ]\n"
                  "Export Field Contents [ $picture ; \"copy \" & $picture ]\n"
                  "Show Custom Dialog [ $picture & \" \" & Length ( $picture ) ; Get ( LastError ) ]\n"
                  "Exit Script [ Text Result: $picture ]"),
           ExitCode::ok, "pixel.jpg 42\n0\n[picture GIF, \"pixel.jpg\", 1 x 1, 42 bytes]\n", "");
    EXPECT_EQ(read(folder_ / "scripts" / "copy pixel.jpg"), kGif);
}

TEST_F(ContainersTest, ThePluginSeesTheStreamsInTheirOrder) {
    write("scripts/a.gif", kGif);
    write("scripts/b.txt", kPng);
    write("scripts/c.png", "no picture");
    EXPECT_EQ(
        script("Insert Picture [ $a ; \"a.gif\" ]\nInsert Picture [ Target: $$b ; \"b.txt\" ]\n"
               "Insert Picture [ $c ; \"c.png\" ]\nInsert File [ $d[1] ; \"a.gif\" ]\n"
               "Exit Script [ Text Result: List ( Test_Streams ( $a ) ; Test_Streams ( $$b ) ; Test_Streams "
               "( $c ) ; "
               "Test_Streams ( $d ) ; Test_Streams ( \"\" ) ) ]")
            .out,
        "FNAM 10 SIZE 4 GIFf 42 1x1\nFNAM 10 SIZE 4 PNGf 29 300x32767\nFNAM 10 FILE 10 \nFNAM 10 FILE 42 \n");
}

// Returns a BMP of one colour.
std::string bitmap(int width, int height) {
    const int row = (width * 3 + 3) / 4 * 4;
    std::string bytes(static_cast<size_t>(54 + row * height), '\x40');
    const auto put = [&bytes](size_t at, int number, size_t size) {
        for (size_t i = 0; i < size; ++i) {
            bytes[at + i] = static_cast<char>(number >> (8 * i));
        }
    };
    bytes.replace(0, 54, 54, '\0');
    bytes.replace(0, 2, "BM");
    put(2, 54 + row * height, 4);
    put(10, 54, 4);
    put(14, 40, 4);
    put(18, width, 4);
    put(22, height, 4);
    put(26, 1, 2);
    put(28, 24, 2);
    return bytes;
}

TEST_F(ContainersTest, ThumbnailsFitAndKeepTheProportions) {
    write("scripts/wide.bmp", bitmap(40, 20));
    write("scripts/broken.bmp", bitmap(40, 20).substr(0, 200));
    const std::string size =
        "Substitute ( List ( GetAsText ( $s ) ; GetWidth ( $s ) ; GetHeight ( $s ) ) ; ¶ ; \" \" )";
    const auto thumbnail = [&](const std::string& file, const std::string& sides) {
        return script("Insert Picture [ $p ; \"" + file +
                      "\" ]\nSet Variable [ $s ; Value: GetThumbnail ( $p ; " + sides +
                      " ) ]\nExit Script [ Text Result: " + size + " ]")
            .out;
    };
    EXPECT_EQ(thumbnail("wide.bmp", "10 ; 10"), "wide.png 10 5\n");
    EXPECT_EQ(thumbnail("wide.bmp", "100 ; 5"), "wide.png 10 5\n");
    EXPECT_EQ(thumbnail("wide.bmp", "1 ; 1"), "wide.png 1 1\n");
    EXPECT_EQ(thumbnail("wide.bmp", "40 ; 20"), "wide.bmp 40 20\n"); // no larger than it is
    EXPECT_EQ(thumbnail("wide.bmp", "400 ; 400"), "wide.bmp 40 20\n");
    EXPECT_EQ(thumbnail("wide.bmp", "0 ; 10"), "0 0\n");
    EXPECT_EQ(thumbnail("wide.bmp", "-1 ; \"\""), "0 0\n");
    EXPECT_EQ(thumbnail("broken.bmp", "10 ; 10"), "0 0\n");
    EXPECT_EQ(script("Insert Picture [ $p ; \"wide.bmp\" ]\nExit Script [ Text Result: Test_Streams ( "
                     "GetThumbnail ( $p ; 10 ; 10 ) ) & IsEmpty ( GetThumbnail ( \"text\" ; 10 ; 10 ) ) ]")
                  .out.substr(0, 20),
              "FNAM 16 SIZE 4 PNGf ");
}

TEST_F(ContainersTest, PathsStartAtTheScript) {
    write("scripts/in/a.gif", kGif);
    write("b.gif", kGif);
    const std::string absolute = (folder_ / "b.gif").string();
    for (const std::string& path :
         {std::string("in/a.gif"), std::string("image:in/a.gif"), std::string("file:in/a.gif"),
          std::string("../b.gif"), absolute, "filelinux:" + absolute, "imagelinux:" + absolute}) {
        EXPECT_EQ(
            script("Insert File [ $f ; \"" + path + "\" ]\nExit Script [ Text Result: Length ( $f ) ]").out,
            "42\n")
            << path;
    }
    // Also in a script that runs inside one of another folder.
    write("other/Reads.fmscript",
          "Insert File [ $f ; \"c\" ]\nExit Script [ Text Result: HexEncode ( $f ) ]");
    write("other/c", "hi");
    EXPECT_EQ(script("Perform Script [ \"Reads\" from file: \"other\" ]\nExit Script [ Text Result: Get ( "
                     "ScriptResult ) ]")
                  .out,
              "6869\n");
}

TEST_F(ContainersTest, WhatAPluginMadeIsKeptShownAndExported) {
    expect(script("Set Variable [ $p ; Value: Test_Picture ]\nShow Custom Dialog [ GetContainerAttribute ( "
                  "$p ; \"width\" ) ; "
                  "GetContainerAttribute ( $p ; \"height\" ) ]\nExport Field Contents [ $p ; \"p.bmp\" ]\n"
                  "Insert Picture [ $back ; \"p.bmp\" ]\nExit Script [ Text Result: $back ]"),
           ExitCode::ok, "2\n3\n[picture BMP, \"p.bmp\", 2 x 3, 78 bytes]\n", "");
    const Outcome shown =
        good("eval Test_Picture 'Test_Echo ( Test_Picture ) = Test_Picture' 'IsEmpty ( Test_Picture )' "
             "'\"<\" & Test_Picture & \">\"' 'Base64Decode ( \"\" ; \"e\" )'");
    EXPECT_EQ(shown.out, "[container, 9 x 9, GIFf 78 bytes, BMPf 78 bytes, PNGf 78 bytes]\n1\n0\n<>\n"
                         "[file, \"e\", 0 bytes]\n");
}

TEST_F(ContainersTest, FilesThatCanNotBeRead) {
    write("scripts/empty.gif", "");
    fs::create_directory(folder_ / "scripts" / "folder");
    ASSERT_EQ(mkfifo((folder_ / "scripts" / "pipe").c_str(), 0600), 0);
    const auto expectBoth = [&](const std::string& name, const std::string& message) {
        expectFailure("# a\nInsert Picture [ $p ; \"" + name + "\" ]", "2:23", message);
        expectFailure("Insert File [ $p ; \"" + name + "\" ]", "1:20", message);
    };
    expectBoth("none.gif", "can not read scripts/none.gif: No such file or directory");
    expectBoth("empty.gif", "scripts/empty.gif is empty");
    expectBoth("folder", "scripts/folder is a folder");
    expectBoth("pipe", "scripts/pipe is no regular file");
    expectBoth("", "the path is empty");
    expectBoth("file:", "the path is empty");
    expectBoth("empty.gif/x", "can not read scripts/empty.gif/x: Not a directory");
    expectFailure("Insert File [ $p ; \"a\" & HexDecode ( \"00\" ) ]", "1:20",
                  "the path holds a zero character");
    if (geteuid() != 0) { // who may read everything
        fs::permissions(write("scripts/secret", "x"), fs::perms::none);
        expectBoth("secret", "can not read scripts/secret: Permission denied");
    }
}

TEST_F(ContainersTest, ALargeFileIsHeldOnce) {
    constexpr off_t kSize = 500'000'000;
    const fs::path large = write("scripts/large", "x");
    ASSERT_EQ(truncate(large.c_str(), kSize), 0);
    write("scripts/Main.fmscript", "Insert Picture [ $p ; \"large\" ]\nSet Variable [ $q ; Value: $p ]\n"
                                   "Exit Script [ Text Result: ( $q = $p ) & Length ( $q ) ]");
    const Outcome result = plain("run scripts/Main.fmscript");
    EXPECT_EQ(result.out, "1500000000\n");
#ifndef __SANITIZE_THREAD__ // which takes a multiple of what the program does
    rusage used{};
    getrusage(RUSAGE_CHILDREN, &used);
    EXPECT_LT(used.ru_maxrss, 800'000); // kilobytes, of the child that used most
#endif
    ASSERT_EQ(truncate(large.c_str(), 3'000'000'000), 0);
    expectFailure("Insert Picture [ $p ; \"large\" ]", "1:23", "scripts/large is larger than 2 GB");
}

TEST_F(ContainersTest, WhatCanNotBeExported) {
    const std::string step = "Export Field Contents [ ";
    write("scripts/there", "before");
    expectFailure(step + "\"text\" ; \"there\" ]", "1:25", "expected a container to export");
    expectFailure(step + "Test_Empty ; \"there\" ]", "1:25", "expected a container to export");
    write("scripts/sub/x", "");
    const std::string some = "Test_Picture ; ";
    expectFailure(step + some + "\"sub\" ]", "1:40", "scripts/sub is a folder");
    expectFailure(step + some + "\"/dev/null\" ]", "1:40", "/dev/null is no regular file");
    expectFailure(step + some + "\"none/x\" ]", "1:40",
                  "can not write scripts/none/x: No such file or directory");
    expectFailure(step + some + "\"there/x\" ]", "1:40", "can not write scripts/there/x: Not a directory");
    expectFailure(step + some + "\"\" ]", "1:40", "the path is empty");
    expectFailure(step + some + "\"" + std::string(300, 'n') + "\" ]", "1:40",
                  "can not write scripts/" + std::string(300, 'n') + ": File name too long");
    EXPECT_EQ(read(folder_ / "scripts" / "there"), "before");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(ContainersTest, ExportReplacesTheWholeFile) {
    const fs::path there = write("scripts/there", std::string(1000, 'x'));
    fs::permissions(there, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("there", folder_ / "scripts" / "link");
    EXPECT_EQ(script("Export Field Contents [ Base64Decode ( \"aGk=\" ; \"a\" ) ; \"link\" ]\nExport Field "
                     "Contents [ Base64Decode "
                     "( \"aGk=\" ; \"a\" ) ; \"new\" ]")
                  .status,
              0);
    EXPECT_EQ(read(there), "hi");
    EXPECT_EQ(fs::status(there).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_TRUE(fs::is_symlink(folder_ / "scripts" / "link"));
    EXPECT_EQ(read(folder_ / "scripts" / "new"), "hi");
    size_t files = 0;
    for (const auto& entry : fs::directory_iterator(folder_ / "scripts")) {
        EXPECT_THAT(entry.path().string(), testing::Not(HasSubstr(".fmhost-")));
        ++files;
    }
    EXPECT_EQ(files, 4U); // with the script
}

TEST_F(ContainersTest, AnExportThatFailsLeavesTheFileAsItWas) {
    write("scripts/there", "before");
    write("scripts/big", std::string(200'000, 'x'));
    write("scripts/Main.fmscript", "Insert File [ $f ; \"big\" ]\nExport Field Contents [ $f ; \"there\" ]");
    const std::string command = "cd " + folder_.string() +
                                " && (ulimit -f 100; trap '' XFSZ; " FMHOST
                                " --no-plugin run scripts/Main.fmscript >out 2>err)";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), static_cast<int>(ExitCode::failure));
    EXPECT_THAT(read(folder_ / "err"),
                HasSubstr("Main.fmscript:2:30: can not write scripts/there: File too large\n"));
    EXPECT_EQ(read(folder_ / "scripts" / "there"), "before");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "scripts"), fs::directory_iterator()), 3);
}

TEST_F(ContainersTest, StepsThatCanNotBeRead) {
    const auto message = [&](const std::string& text) { return script(text).err; };
    EXPECT_THAT(message("Insert Picture [ \"a\" ]"),
                HasSubstr(":1:18: expected a $local or $$global variable, found"));
    EXPECT_THAT(message("Insert Picture [ Field: $a ; 1 ]"),
                HasSubstr(":1:18: Insert Picture has no parameter called Field"));
    EXPECT_THAT(message("Insert File [ $a ]"), HasSubstr(":1:18: expected a value ("));
    EXPECT_THAT(message("Insert File"), HasSubstr(":1:12: expected \"[\" after Insert File"));
    EXPECT_THAT(message("Export Field Contents [ $a ]"), HasSubstr(":1:28: expected a value ("));
    EXPECT_EQ(script("Insert File").status, static_cast<int>(ExitCode::parse));
}

} // namespace
} // namespace host

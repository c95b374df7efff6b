// How calculations and scripts are laid out.
#include "host/calc/calc_error.h"
#include "host/editor/format.h"
#include "host/values/text.h"

#include <gtest/gtest.h>

namespace host {
namespace {

std::string format(const std::string& text, FileKind kind, size_t width = 120) {
    FormatStyle style;
    style.width = width;
    return toUtf8(formatFile(std::make_shared<Source>("file", fromUtf8(text)), kind, style));
}

std::string calculation(const std::string& text, size_t width = 120) {
    const std::string result = format(text, FileKind::calculation, width);
    EXPECT_EQ(format(result, FileKind::calculation, width), result) << "changes again";
    return result.substr(0, result.size() - (result.ends_with('\n') ? 1 : 0));
}

std::string script(const std::string& text, size_t width = 120) {
    const std::string result = format(text, FileKind::script, width);
    EXPECT_EQ(format(result, FileKind::script, width), result) << "changes again";
    return result;
}

TEST(FormatTest, BlanksAndLetterCase) {
    EXPECT_EQ(calculation("1+2*( 3-4 )^5"), "1 + 2 * ( 3 - 4 ) ^ 5");
    EXPECT_EQ(calculation("UPPER(\"a  b\")&¶&$x"), "Upper ( \"a  b\" ) & ¶ & $x");
    EXPECT_EQ(calculation("-x*- 3+(-  4)"), "-x * -3 + ( -4 )");
    EXPECT_EQ(calculation("NOT a AND b Or not c"), "not a and b or not c");
    EXPECT_EQ(calculation("get(lasterror)"), "Get ( LastError )");
    EXPECT_EQ(calculation("$x [ 3+1 ]&$$y[1]"), "$x[3 + 1] & $$y[1]");
    EXPECT_EQ(calculation("Let([a=1;b=2];a<>b)"), "Let ( [ a = 1 ; b = 2 ] ; a <> b )");
    EXPECT_EQ(calculation("Table::Field[2]&f()"), "Table::Field[2] & f ( )");
    EXPECT_EQ(calculation("Let ( upper = 1 ; upper )"), "Let ( upper = 1 ; upper )");
    EXPECT_EQ(calculation("Let(net price=1 , net price*2)"), "Let ( net price = 1 ; net price * 2 )");
    EXPECT_EQ(calculation("lasterror & pi"), "lasterror & pi");
    EXPECT_EQ(calculation(""), "");
    // What cannot be understood becomes no comment and no other operator.
    EXPECT_EQ(calculation("a + / / 2"), "a + / / 2");
    EXPECT_EQ(calculation("( < > / * )"), "( < > / * )");
}

TEST(FormatTest, LinesAndCommentsStay) {
    EXPECT_EQ(calculation("a&\n\n\n  \"b\n c\"  // why\n&c"), "a &\n\n    \"b\n c\" // why\n    & c");
    EXPECT_EQ(calculation("// first\nLet ( [  // names\na=1;/* two */b=2\n];\na+\nb )"),
              "// first\nLet ( [ // names\n    a = 1 ; /* two */ b = 2\n] ;\n    a +\n        b )");
    EXPECT_EQ(calculation("1 // end  "), "1 // end");
    EXPECT_EQ(calculation("/* only */"), "/* only */");
    EXPECT_EQ(calculation("f (\n/* a\n      b */ 1\n)"), "f (\n    /* a\n      b */ 1\n)");
}

TEST(FormatTest, LongLinesAreBroken) {
    EXPECT_EQ(calculation("Let ( [ a = 1 ; b = 2 ] ; a + b )", 20),
              "Let ( [\n    a = 1 ;\n    b = 2\n] ;\n    a + b\n)");
    EXPECT_EQ(calculation("\"aaaaaaaa\" & \"bbbbbbbb\" & \"cccccccc\"", 20),
              "\"aaaaaaaa\"\n    & \"bbbbbbbb\"\n    & \"cccccccc\"");
    EXPECT_EQ(calculation("Case ( a = 1 ; \"one\" ; a = 2 ; \"two\" ; \"many\" )", 24),
              "Case (\n    a = 1 ; \"one\" ;\n    a = 2 ; \"two\" ;\n    \"many\"\n)");
    EXPECT_EQ(calculation("If ( a ; Substitute ( text ; [ \"a\" ; \"b\" ] ; [ \"c\" ; \"d\" ] ) ; c )", 30),
              "If (\n    a ;\n    Substitute (\n        text ;\n        [ \"a\" ; \"b\" ] ;\n"
              "        [ \"c\" ; \"d\" ]\n    ) ;\n    c\n)");
    EXPECT_EQ(calculation("Upper ( x ) // a comment that is longer than the line", 20),
              "Upper ( x ) // a comment that is longer than the line");
    EXPECT_EQ(calculation("\"a text that is longer than the line\"", 10),
              "\"a text that is longer than the line\"");
    EXPECT_EQ(calculation("Let ( [ a = 1 ; b = 2 ] ; a + b )", 0), "Let ( [ a = 1 ; b = 2 ] ; a + b )");
}

TEST(FormatTest, Scripts) {
    EXPECT_EQ(script("if[$x=1]\nset variable[$y;value:$x+1]\n\n  # note  \nElse   if [ $x ]\nBeep\nelse\n"
                     "//Beep [ x ]\nend if\nexit script[text   result:\"a\"]"),
              "if [ $x = 1 ]\n    set variable [ $y ; value: $x + 1 ]\n\n    # note\nElse if [ $x ]\n    "
              "Beep\nelse\n"
              "    //Beep [ x ]\nend if\nexit script [ text   result: \"a\" ]\n");
    EXPECT_EQ(script("Loop\nExit Loop If[\n$x>3]\nPause/Resume Script[Duration (seconds):.5]\nEnd Loop"),
              "Loop\n    Exit Loop If [ $x > 3 ]\n    Pause/Resume Script [ Duration (seconds): .5 "
              "]\nEnd Loop\n");
    EXPECT_EQ(
        script("Write to Data File[File ID:$f;Data source:utf-8;Write as: UTF-16;Append line feed]"),
        "Write to Data File [ File ID: $f ; Data source: utf-8 ; Write as: UTF-16 ; Append line feed ]\n");
    EXPECT_EQ(script("Set Variable [ $x ; Value: $utf-8 ]"), "Set Variable [ $x ; Value: $utf - 8 ]\n");
    EXPECT_EQ(script("Show Custom Dialog [ Title:Contacts :: Name;Message: \"x\" ]\nBeep[a:b :c]"),
              "Show Custom Dialog [ Title: Contacts::Name ; Message: \"x\" ]\nBeep [ a: b:c ]\n");
    EXPECT_EQ(script("Beep [ : :b:c ; a : : b:c ]"), "Beep [ : :b:c ; a: :b:c ]\n"); // no field "::b"
    EXPECT_EQ(script("Set Field[Contacts::Name;Contacts::Name]"),
              "Set Field [ Contacts::Name ; Contacts::Name ]\n");
    EXPECT_EQ(script("Perform Script[“ other ”;Parameter:1]\nEnd If"),
              "Perform Script [ “ other ” ; Parameter: 1 ]\nEnd If\n");
    EXPECT_EQ(script("Set Variable [ $x ; Value: List ( \"aaaa\" ; \"bbbb\" ) ]", 40),
              "Set Variable [ $x ; Value: List (\n    \"aaaa\" ;\n    \"bbbb\"\n) ]\n");
    EXPECT_EQ(script("Set Variable [ $x ; Value: 1 // one\n]"), "Set Variable [ $x ; Value: 1 // one\n]\n");
}

// What stands behind a step's bracket is wrong there; it stays, one blank away.
TEST(FormatTest, TextBehindAStep) {
    EXPECT_EQ(script("If [ 1 ]   Beep  \nEnd If"), "If [ 1 ] Beep\nEnd If\n");
}

TEST(FormatTest, IndentationIsTheFilesOwn) {
    EXPECT_EQ(script("If [ 1 ]\n\tBeep\n  Beep\nEnd If\n"), "If [ 1 ]\n\tBeep\n\tBeep\nEnd If\n");
    EXPECT_EQ(script("If [ 1 ]\r\n Beep\r\nEnd If\r\n"), "If [ 1 ]\r\n    Beep\r\nEnd If\r\n");
}

TEST(FormatTest, FilesOfCalculations) {
    EXPECT_EQ(
        format("# note  \n\n1+1\n= 2\nlet(a=1;\\\n a)\n~ x\n1+\n! expected\n\"a\\\nb\"&1\n= a¶b1\n",
               FileKind::calculations),
        "# note  \n\n1 + 1\n= 2\nLet ( a = 1 ; \\\n    a )\n~ x\n1 +\n! expected\n\"a\\\nb\" & 1\n= a¶b1\n");
    EXPECT_EQ(format("1+1\n```calc\n1+1\n= 2\n```\n", FileKind::markdown), "1+1\n```calc\n1 + 1\n= 2\n```\n");
    EXPECT_EQ(format("1+1\r\n= 2\r\n", FileKind::calculations), "1 + 1\r\n= 2\r\n");
}

TEST(FormatTest, WhatCanNotBeRead) {
    const auto error = [](const std::string& text, FileKind kind) {
        try {
            return format(text, kind);
        } catch (const CalcError& refused) {
            return refused.summary();
        }
    };
    EXPECT_EQ(error("f ( a", FileKind::calculation), "file:1:3: this \"(\" is not closed");
    EXPECT_EQ(error("f ( a ]", FileKind::calculation), "file:1:7: this \"]\" closes nothing");
    EXPECT_EQ(error("1\n& \"a", FileKind::calculation),
              "file:2:3: this text is not closed; expected \"\\\"\"");
    EXPECT_EQ(error("1 /* a", FileKind::calculation),
              "file:1:3: this comment is not closed; expected \"*/\"");
    EXPECT_EQ(error("Beep\nIf [ 1", FileKind::script), "file:2:4: this \"[\" is not closed");
    EXPECT_EQ(error("Beep\nIf [ ( 1 ]", FileKind::script), "file:2:6: this \"(\" is not closed");
}

} // namespace
} // namespace host

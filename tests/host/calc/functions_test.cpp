#include "host/calc/builtins.h"
#include "tests/host/calc/calc_table.h"

#include <set>

namespace host {
namespace {

TEST(Functions, Text) {
    expectRows({
        {"Left ( \"abcdef\" ; 2 )", "ab"},
        {"Left ( \"abc\" ; 99 )", "abc"},
        {"Left ( \"abc\" ; 0 )", ""},
        {"Left ( \"abc\" ; -1 )", ""},
        {"Left ( 12345 ; 2.9 )", "12"},
        {"Left ( \"😀x\" ; 1 )", "😀"},
        {"Right ( \"abcdef\" ; 2 )", "ef"},
        {"Right ( \"abc\" ; 99 )", "abc"},
        {"Right ( \"abc\" ; -5 )", ""},
        {"Right ( \"x😀\" ; 1 )", "😀"},
        {"Middle ( \"abcdef\" ; 2 ; 3 )", "bcd"},
        {"Middle ( \"abcdef\" ; 5 ; 99 )", "ef"},
        {"Middle ( \"abcdef\" ; 7 ; 1 )", ""},
        {"Middle ( \"abcdef\" ; 0 ; 3 )", "ab"},
        {"Middle ( \"abcdef\" ; -1 ; 3 )", "a"},
        {"Middle ( \"abcdef\" ; -9999999999999999999 ; 3 )", ""},
        {"Middle ( \"a😀b😀c\" ; 2 ; 3 )", "😀b😀"},
        {"Length ( \"\" )", "0"},
        {"Length ( \"äöü\" )", "3"},
        {"Length ( \"😀\" )", "1"},
        {"Length ( 10.50 )", "4"},
        {"Position ( \"banana\" ; \"a\" ; 1 ; 1 )", "2"},
        {"Position ( \"banana\" ; \"a\" ; 1 ; 2 )", "4"},
        {"Position ( \"banana\" ; \"a\" ; 3 ; 1 )", "4"},
        {"Position ( \"banana\" ; \"a\" ; 1 ; 4 )", "0"},
        {"Position ( \"banana\" ; \"AN\" ; 1 ; 2 )", "4"},
        {"Position ( \"banana\" ; \"a\" ; 6 ; -1 )", "6"},
        {"Position ( \"banana\" ; \"a\" ; 6 ; -3 )", "2"},
        {"Position ( \"banana\" ; \"a\" ; 6 ; -4 )", "0"},
        {"Position ( \"banana\" ; \"\" ; 1 ; 1 )", "0"},
        {"Position ( \"banana\" ; \"x\" ; 1 ; 1 )", "0"},
        {"Position ( \"banana\" ; \"a\" ; 1 ; 0 )", "0"},
        {"Position ( \"😀😀b\" ; \"B\" ; 1 ; 1 )", "3"},
        {"Position ( \"ÄÖÜ\" ; \"ü\" ; 1 ; 1 )", "3"},
        {"PatternCount ( \"Mississippi\" ; \"is\" )", "2"},
        {"PatternCount ( \"Mississippi\" ; \"IS\" )", "2"},
        {"PatternCount ( \"aaaa\" ; \"aa\" )", "2"},
        {"PatternCount ( \"aaaa\" ; \"\" )", "0"},
        {"Substitute ( \"banana\" ; \"a\" ; \"o\" )", "bonono"},
        {"Substitute ( \"banana\" ; \"A\" ; \"o\" )", "banana"},
        {"Substitute ( \"banana\" ; \"\" ; \"o\" )", "banana"},
        {"Substitute ( \"aaa\" ; \"a\" ; \"aa\" )", "aaaaaa"},
        {"Substitute ( \"a-b\" ; [ \"a\" ; \"b\" ] ; [ \"b\" ; \"c\" ] )", "c-c"},
        {"Substitute ( \"x y\" ; [ \" \" ; \"\" ] )", "xy"},
        {"Trim ( \"  a b  \" )", "a b"},
        {"Trim ( \"   \" )", ""},
        {"Upper ( \"straße é\" )", "STRASSE É"},
        {"Lower ( \"ÄBC\" )", "äbc"},
        {"Exact ( \"a\" ; \"a\" )", "1"},
        {"Exact ( \"a\" ; \"A\" )", "0"},
        {"Exact ( \"1.0\" ; 1 )", "0"},
        {"Replace ( \"abcdef\" ; 2 ; 3 ; \"X\" )", "aXef"},
        {"Replace ( \"abc\" ; 9 ; 1 ; \"X\" )", "abcX"},
        {"Filter ( \"(555) 12-34\" ; \"0123456789\" )", "5551234"},
        {"Quote ( \"a\\\"b\\\\c¶d\" )", "\"a\\\"b\\\\c¶d\""},
        {"Evaluate ( Quote ( \"a\\\"b¶\\¶\" ) ) = \"a\\\"b¶\\¶\"", "1"},
        {"Char ( 65 )", "A"},
        {"Char ( 6600065 )", "AB"},
        {"Char ( 5683255357 )", "😀"},
        {"Char ( 55357 ) & Char ( 56832 )", "😀"},
        {"Char ( -1 ) & Char ( \"\" ) & Char ( \"x\" )", ""},
        {"Code ( \"A\" )", "65"},
        {"Code ( \"\" )", ""},
    });
}

// A text that no keyboard makes: what plug-ins must bear.
TEST(Functions, HalfPairsAndZeroCharacters) {
    Session session;
    EXPECT_EQ(session.evaluate(u"Char ( 0 )").asText(), std::u16string(1, u'\0'));
    EXPECT_EQ(session.evaluate(u"Char ( 55296 )").asText(), std::u16string(1, 0xD800));
    EXPECT_EQ(session.evaluate(u"Char ( 65000005734300065 )").asText(),
              (std::u16string{u'A', 0xDFFF, u'\0', u'A'}));
    expectRows({
        {"Code ( Char ( 0 ) )", "0"},
        {"Code ( Char ( 55296 ) )", "55296"},
        {"Code ( Char ( 57343 ) )", "57343"},
        {"Code ( Char ( 55357 ) & Char ( 56832 ) )", "128512"},
        {"Length ( \"a\" & Char ( 0 ) & Char ( 56832 ) & Char ( 55357 ) & \"b\" )", "5"},
        {"IsEmpty ( Char ( 0 ) )", "0"},
        {"Code ( Right ( \"a\" & Char ( 0 ) ; 1 ) )", "0"},
        {"Position ( \"a\" & Char ( 0 ) & Char ( 55296 ) ; Char ( 55296 ) ; 1 ; 1 )", "3"},
        {"Exact ( Upper ( \"é\" & Char ( 55296 ) & Char ( 0 ) ) ; \"É\" & Char ( 55296 ) & Char ( 0 ) )",
         "1"},
        {"Char ( 55296 ) = Char ( 55297 )", "0"},
        {"\"a\" & Char ( 0 ) = \"A\" & Char ( 0 )", "1"},
        {"GetAsNumber ( 1 & Char ( 0 ) & 2 )", "12"},
        {"EvaluationError ( Evaluate ( \"1 + \" & Char ( 0 ) ) )", "1208"},
    });
}

TEST(Functions, Lists) {
    expectRows({
        {"List ( \"a\" ; \"\" ; \"b\" )", "a¶b"},
        {"List ( \"\" ; \"\" )", ""},
        {"List ( 1 )", "1"},
        {"List ( $never ; \"x\" )", "x"},
        {"GetValue ( \"a¶b¶c\" ; 2 )", "b"},
        {"GetValue ( \"a¶b¶c\" ; 0 )", ""},
        {"GetValue ( \"a¶b¶c\" ; 4 )", ""},
        {"GetValue ( \"a¶b¶c\" ; -1 )", ""},
        {"GetValue ( \"a\" & Char ( 10 ) & \"b\" ; 2 )", "b"},
        {"GetValue ( \"a¶\" & Char ( 10 ) & \"b\" ; 2 )", "b"},
        {"GetValue ( \"a¶¶b\" ; 2 )", ""},
        {"ValueCount ( \"\" )", "0"},
        {"ValueCount ( \"a\" )", "1"},
        {"ValueCount ( \"a¶\" )", "1"},
        {"ValueCount ( \"a¶¶b\" )", "3"},
        {"ValueCount ( \"¶\" )", "1"},
        {"LeftValues ( \"a¶b¶c\" ; 2 )", "a¶b¶"},
        {"LeftValues ( \"a¶b\" ; 9 )", "a¶b¶"},
        {"LeftValues ( \"a¶b\" ; 0 )", ""},
        {"RightValues ( \"a¶b¶c\" ; 2 )", "b¶c¶"},
        {"RightValues ( \"a\" ; -2 )", ""},
        {"MiddleValues ( \"a¶b¶c¶d\" ; 2 ; 2 )", "b¶c¶"},
        {"MiddleValues ( \"a¶b\" ; 0 ; 1 )", "a¶"},
        {"MiddleValues ( \"a¶b\" ; 2 ; 99999999999999999999 )", "b¶"},
        {"FilterValues ( \"a¶B¶c\" ; \"b¶c\" )", "B¶c¶"},
        {"FilterValues ( \"a\" ; \"\" )", ""},
    });
}

TEST(Functions, ConditionsEvaluateOnlyWhatTheyNeed) {
    expectRows({
        {"If ( 1 ; \"yes\" ; \"no\" )", "yes"},
        {"If ( 0 ; \"yes\" ; \"no\" )", "no"},
        {"If ( 0 ; \"yes\" )", ""},
        {"If ( \"\" ; \"yes\" ; \"no\" )", "no"},
        {"Case ( 0 ; \"a\" ; 1 ; \"b\" ; \"c\" )", "b"},
        {"Case ( 0 ; \"a\" ; 0 ; \"b\" ; \"c\" )", "c"},
        {"Case ( 0 ; \"a\" )", ""},
        {"Choose ( 0 ; \"a\" ; \"b\" )", "a"},
        {"Choose ( 1.9 ; \"a\" ; \"b\" )", "b"},
        {"Choose ( 2 ; \"a\" ; \"b\" )", ""},
        {"Choose ( -1 ; \"a\" ; \"b\" )", ""},
        {"If ( 1 ; 1 ; Let ( $bad = 1 ; 1 ) ) & If ( 0 ; Let ( $bad = 1 ; 1 ) ; 2 )", "12"},
        {"Case ( 1 ; 1 ; Let ( $bad = 1 ; 1 ) ; 2 )", "1"},
        {"Choose ( 0 ; 1 ; Let ( $bad = 1 ; 1 ) )", "1"},
        {"$bad", ""},
        {"IsEmpty ( \"\" )", "1"},
        {"IsEmpty ( 0 )", "0"},
        {"IsEmpty ( \" \" )", "0"},
        {"IsEmpty ( $never )", "1"},
    });
}

TEST(Functions, Let) {
    expectRows({
        {"Let ( a = 1 ; a + 1 )", "2"},
        {"Let ( [ a = 1 ; b = a + 1 ] ; a & b )", "12"},
        {"Let ( [ ] ; 5 )", "5"},
        {"Let ( [ a = 1 ; a = a + 1 ] ; a )", "2"},
        {"Let ( A = 1 ; a )", "1"},
        {"Let ( a = 1 ; Let ( a = 2 ; a ) & a )", "21"},
        {"Let ( a = 1 ; Let ( b = a + 1 ; a + b ) )", "3"},
        {"Let ( a = Let ( a = 5 ; a * 2 ) ; a )", "10"},
        {"Let ( [ $x = 3 ; $$y = 4 ] ; $x + $$y )", "7"},
        {"$x & $$y", "34"},
        {"$X", "3"},
        {"Let ( $x = \"\" ; $x )", ""},
        {"Let ( ~a#1 = 2 ; ~a#1 )", "2"},
        {"Let ( größe = 2 ; GRÖSSE )", "2"},
        {"Let ( größe = 2 ; GRÖßE )", "2"},
        {"Let ( a = 1 ; Evaluate ( \"a\" ) )", "?"},
        {"Let ( $a = 1 ; Evaluate ( \"$a + 1\" ) )", "2"},
        {"Let ( Left = 5 ; Left & Left ( \"abc\" ; 1 ) )", "5a"},
    });
}

TEST(Functions, While) {
    expectRows({
        {"While ( [ i = 0 ; s = \"\" ] ; i < 3 ; [ i = i + 1 ; s = s & i ] ; s )", "123"},
        {"While ( i = 0 ; i < 3 ; i = i + 1 ; i )", "3"},
        {"While ( [ ] ; 0 ; [ ] ; \"done\" )", "done"},
        {"While ( [ i = 0 ] ; i < 49999 ; [ i = i + 1 ] ; i )", "49999"},
        {"While ( [ i = 0 ] ; i < 50000 ; [ i = i + 1 ] ; i )", "50000"},
        {"While ( [ i = 0 ] ; i < 50001 ; [ i = i + 1 ] ; i )", "?"},
        {"While ( [ ] ; 1 ; [ ] ; 1 )", "?"},
        {"While ( [ i = 0 ; t = 0 ] ; i < 3 ; [ i = i + 1 ; t = t + While ( j = 0 ; j < 4 ; j = j + 1 ; j ) "
         "] ; t )",
         "12"},
        {"While ( [ i = 0 ; out = \"\" ] ; i < 2 ; [ i = i + 1 ; out = out & While ( [ ] ; 0 ; [ x = 1 ] ; x "
         ") & \".\" ] ; out )",
         ".."},
        {"While ( [ $i = 0 ] ; $i < 3 ; [ $i = $i + 1 ] ; $i )", "3"},
        {"While ( [ i = 0 ] ; i < 3 ; [ i = i + 1 ; twice = i * 2 ] ; twice )", "6"},
        {"Let ( n = 3 ; While ( [ i = 0 ] ; i < n ; [ i = i + 1 ] ; i * n ) )", "9"},
    });
}

TEST(Functions, Numbers) {
    expectRows({
        {"Int ( 1.9 )", "1"},
        {"Int ( -1.9 )", "-1"},
        {"Abs ( -3 )", "3"},
        {"Mod ( 7 ; 3 )", "1"},
        {"Mod ( -7 ; 3 )", "2"},
        {"Mod ( 7 ; -3 )", "-2"},
        {"Mod ( 5.5 ; 2 )", "1.5"},
        {"Round ( 2.345 ; 2 )", "2.35"},
        {"Round ( -2.345 ; 2 )", "-2.35"},
        {"Round ( 1250 ; -2 )", "1300"},
        {"Round ( 2.5 ; 0 )", "3"},
        {"Truncate ( 2.349 ; 2 )", "2.34"},
        {"Truncate ( -2.349 ; 2 )", "-2.34"},
        {"Max ( 1 ; 10 ; 9 )", "10"},
        {"Min ( 4 ; \"3\" ; 10 )", "3"},
        {"Max ( \"\" ; -1 )", "-1"},
        {"Max ( 5 )", "5"},
        {"Floor ( -1.5 )", "-2"},
        {"Ceiling ( 1.2 )", "2"},
        {"2 ^ 10", "1024"},
        {"2 ^ .5 > 1.41421 and 2 ^ .5 < 1.41422", "1"},
        {"Sign ( -3 )", "-1"},
        {"GetAsNumber ( \"1,234.5\" )", "1234.5"},
    });
}

TEST(Functions, DatesAndTimes) {
    expectRows({
        {"Date ( 12 ; 25 ; 2010 )", "12/25/2010"},
        {"Date ( 13 ; 1 ; 2010 )", "1/1/2011"},
        {"Date ( 2 ; 30 ; 2011 )", "3/2/2011"},
        {"Date ( 3 ; 0 ; 2012 )", "2/29/2012"},
        {"Date ( 1 ; 1 ; 1 ) + 0 & \"\"", "1/1/0001"},
        {"GetAsNumber ( Date ( 1 ; 1 ; 1 ) )", "1"},
        {"GetAsNumber ( Date ( 1 ; 1 ; 2000 ) )", "730120"},
        {"Date ( 1 ; 1 ; 2000 ) + 31", "2/1/2000"},
        {"31 + Date ( 1 ; 1 ; 2000 )", "2/1/2000"},
        {"Date ( 3 ; 1 ; 2000 ) - 1", "2/29/2000"},
        {"Date ( 3 ; 1 ; 2000 ) - Date ( 2 ; 1 ; 2000 )", "29"},
        {"Date ( 1 ; 2 ; 2000 ) > Date ( 12 ; 31 ; 1999 )", "1"},
        {"Date ( 1 ; 1 ; 2000 ) = \"1/1/2000\"", "1"},
        {"Year ( Date ( 5 ; 6 ; 2007 ) ) & \"-\" & Month ( \"5/6/2007\" ) & \"-\" & Day ( Date ( 5 ; 6 ; "
         "2007 ) )",
         "2007-5-6"},
        {"DayOfWeek ( Date ( 1 ; 1 ; 2000 ) )", "7"},
        {"Time ( 1 ; 2 ; 3 )", "1:02:03"},
        {"Time ( 0 ; 90 ; 0 )", "1:30:00"},
        {"Time ( 25 ; 0 ; 0 )", "25:00:00"},
        {"GetAsNumber ( Time ( 1 ; 0 ; 1 ) )", "3601"},
        {"Time ( 1 ; 0 ; 0 ) + 60", "1:01:00"},
        {"Hour ( Time ( 13 ; 4 ; 5 ) ) & Minute ( Time ( 13 ; 4 ; 5 ) ) & Seconds ( Time ( 13 ; 4 ; 5 ) )",
         "1345"},
        {"Timestamp ( Date ( 12 ; 25 ; 2010 ) ; Time ( 14 ; 30 ; 0 ) )", "12/25/2010 14:30:00"},
        {"GetAsTimestamp ( \"12/25/2010 2:30:00 PM\" ) + 60", "12/25/2010 14:31:00"},
        {"GetAsDate ( \"12/25/2010\" ) + 1", "12/26/2010"},
        {"GetAsDate ( 730120 )", "1/1/2000"},
        {"GetAsDate ( \"no date\" )", "?"},
        {"GetAsDate ( \"2/30/2010\" )", "?"},
        {"GetAsDate ( \"\" )", ""},
        {"GetAsTime ( \"14:30\" ) + 1", "14:30:01"},
        {"GetAsDate ( Timestamp ( Date ( 1 ; 2 ; 2003 ) ; 5 ) )", "1/2/2003"},
        {"GetAsText ( Date ( 1 ; 1 ; 2000 ) ) & \"!\"", "1/1/2000!"},
        {"Get ( CurrentDate ) > Date ( 1 ; 1 ; 2020 )", "1"},
        {"GetAsDate ( Get ( CurrentTimestamp ) ) - Get ( CurrentDate ) < 2", "1"},
    });
}

TEST(Functions, Evaluate) {
    expectRows({
        {"Evaluate ( \"1 + 1\" )", "2"},
        {"Evaluate ( \"1 +\" )", "?"},
        {"Evaluate ( \"\" )", "?"},
        {"Evaluate ( \"Nothing ( 1 )\" )", "?"},
        {"Evaluate ( \"Evaluate ( \\\"2 * 21\\\" )\" )", "42"},
        {"EvaluationError ( Evaluate ( \"1 + 1\" ) )", "0"},
        {"EvaluationError ( Evaluate ( \"1 +\" ) )", "1203"},
        {"EvaluationError ( Evaluate ( \"Left ( 1 )\" ) )", "1201"},
        {"EvaluationError ( Evaluate ( \"Left ( 1 ; 2 ; 3 )\" ) )", "1202"},
        {"EvaluationError ( Evaluate ( \"* 2\" ) )", "1204"},
        {"EvaluationError ( Evaluate ( \"/* x\" ) )", "1205"},
        {"EvaluationError ( Evaluate ( \"\\\"x\" ) )", "1206"},
        {"EvaluationError ( Evaluate ( \"Nothing ( 1 )\" ) )", "1208"},
        {"EvaluationError ( Evaluate ( \"Get ( Rich )\" ) )", "1215"},
    });
}

TEST(Functions, Get) {
    expectRows({
        {"Get ( ScriptParameter )", ""},
        {"Get ( ScriptResult )", ""},
        {"Get ( LastError )", "0"},
        {"get ( lasterror )", "0"},
    });
}

TEST(Functions, NamesIgnoreCase) {
    expectRows({{"UPPER ( \"a\" )", "A"},
                {"upper ( \"a\" )", "A"},
                {"LET ( x = 1 ; x )", "1"},
                {"iF ( 1 ; 2 )", "2"}});
}

TEST(Functions, TableIsOrderedAndEachNameStandsOnce) {
    std::u16string last;
    for (const Builtin& row : builtins()) {
        const std::u16string key = foldName(row.name());
        EXPECT_LT(last, key);
        last = key;
        EXPECT_EQ(findBuiltin(key), &row);
        EXPECT_TRUE(row.maxArguments() == -1 || row.minArguments() <= row.maxArguments())
            << toUtf8(row.prototype);
        const bool isOwnSyntax = row.form != BuiltinForm::eager && row.form != BuiltinForm::lazy;
        EXPECT_EQ(row.eager == nullptr && row.lazy == nullptr, isOwnSyntax) << toUtf8(row.prototype);
    }
}

TEST(Functions, ArgumentCountsFollowFromPrototypes) {
    const auto counts = [](const char16_t* name) {
        const Builtin* row = findBuiltin(name);
        return std::pair(row->minArguments(), row->maxArguments());
    };
    EXPECT_EQ(counts(u"true"), std::pair(0, 0));
    EXPECT_EQ(counts(u"left"), std::pair(2, 2));
    EXPECT_EQ(counts(u"if"), std::pair(2, 3));
    EXPECT_EQ(counts(u"case"), std::pair(2, -1));
    EXPECT_EQ(counts(u"list"), std::pair(1, -1));
    EXPECT_EQ(counts(u"position"), std::pair(4, 4));
    EXPECT_EQ(counts(u"substitute"), std::pair(2, -1));
}

} // namespace
} // namespace host

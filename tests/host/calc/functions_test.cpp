#include "host/calc/builtins.h"
#include "tests/host/calc/calc_table.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace host {
namespace {

// Texts that no keyboard makes: what plug-ins must bear.
TEST(FunctionsTest, HalfPairsAndZeroCharacters) {
    Session session;
    EXPECT_EQ(session.evaluate(u"HexDecode ( \"00\" )").asText(), std::u16string(1, u'\0'));
    EXPECT_EQ(session.evaluate(u"Char ( 55296 )").asText(), std::u16string(1, 0xD800));
    EXPECT_EQ(session.evaluate(u"Char ( 65000005734300065 )").asText(), (std::u16string{u'A', 0xDFFF, u'A'}));
    expectRows({
        {"Let ( $zero = HexDecode ( \"00\" ) ; Code ( $zero ) )", "0"},
        {"Code ( Char ( 55296 ) )", "55296"},
        {"Code ( Char ( 57343 ) )", "57343"},
        {"Char ( 5683255357 )", "😀"},
        {"Code ( \"a😀\" )", "568325535700097"},
        {"Length ( \"a\" & $zero & Char ( 56832 ) & Char ( 55357 ) & \"b\" )", "5"},
        {"IsEmpty ( $zero )", "0"},
        {"Code ( Right ( \"a\" & $zero ; 1 ) )", "0"},
        {"Position ( \"a\" & $zero & Char ( 55296 ) ; Char ( 55296 ) ; 1 ; 1 )", "3"},
        {"Exact ( Upper ( \"é\" & Char ( 55296 ) & $zero ) ; \"É\" & Char ( 55296 ) & $zero )", "1"},
        {"Char ( 55296 ) = Char ( 55297 )", "0"},
        {"\"a\" & $zero = \"A\" & $zero", "1"},
        {"\"a\" & $zero = \"a\"", "0"},
        {"GetAsNumber ( 1 & $zero & 2 )", "12"},
        {"EvaluationError ( Evaluate ( \"1 + \" & $zero ) )", "1208"},
    });
}

TEST(FunctionsTest, ConditionsEvaluateOnlyWhatTheyNeed) {
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

TEST(FunctionsTest, Let) {
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
        {"Let ( [ total of 2010 = 5 ; Net Price = 2 ] ; TOTAL OF 2010 * net price )", "10"},
        {"Let ( ${net/gross} = 5 ; ${NET/gross} * 2 )", "10"},
        {"Let ( ${ = 5 ; 1 )", "error 1:7: expected a name between \"${\" and \"}\""},
        {"EvaluationError ( Evaluate ( \"${a+b}\" ) )", "102"},
        {"Let ( [ $my list[2] = 3 ; $$my list = 4 ] ; $My List[ 2 ] & $$my list & $my list )", "34"},
        {"Let ( [ this or = 1 ; x = 0 ] ; x )",
         "error 1:14: expected \"=\" after the name of a variable, found or"},
        {"Let ( [ yes = 1 ; no = 0 ] ; yes and no or yes AND not no )", "1"},
        {"Let ( [ price.net = 1 ; preis€ = 2 ; done? = 3 ; it's = 4 ; 😀 = 5 ] ; price.net & preis€ & done? "
         "& it's & 😀 )",
         "12345"},
        {"Let ( [ a = 1\nb = 2 ] ; a )", "error 2:1: expected an operator, \";\" or \"]\", found b"},
        {"Let ( größe = 2 ; GRÖSSE )", "2"},
        {"Let ( größe = 2 ; GRÖßE )", "2"},
        {"Let ( a = 1 ; Evaluate ( \"a\" ) )", "?"},
        {"Let ( $a = 1 ; Evaluate ( \"$a + 1\" ) )", "2"},
        {"Let ( Left = 5 ; Left & Left ( \"abc\" ; 1 ) )", "5a"},
    });
}

TEST(FunctionsTest, While) {
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

TEST(FunctionsTest, NamesIgnoreCase) {
    expectRows({{"UPPER ( \"a\" )", "A"},
                {"upper ( \"a\" )", "A"},
                {"LET ( x = 1 ; x )", "1"},
                {"iF ( 1 ; 2 )", "2"}});
}

TEST(FunctionsTest, TableIsOrderedAndEachNameStandsOnce) {
    std::u16string last;
    for (const Builtin& row : builtins()) {
        const std::u16string key = foldName(row.name());
        EXPECT_LT(last, key);
        last = key;
        EXPECT_EQ(findBuiltin(key), &row);
        EXPECT_TRUE(row.maxArguments() == -1 || row.minArguments() <= row.maxArguments())
            << toUtf8(row.prototype);
        EXPECT_EQ((row.eager != nullptr) + (row.owning != nullptr), row.form == BuiltinForm::eager)
            << toUtf8(row.prototype);
        EXPECT_EQ(row.branch != nullptr, row.form == BuiltinForm::branch) << toUtf8(row.prototype);
        EXPECT_EQ(row.lazy != nullptr, row.form == BuiltinForm::lazy) << toUtf8(row.prototype);
        EXPECT_TRUE(row.description.ends_with('.')) << toUtf8(row.prototype);
        EXPECT_FALSE(row.category.empty()) << toUtf8(row.prototype);
    }
}

TEST(FunctionsTest, AllNamesOfGetAreKnown) {
    EXPECT_EQ(getRows().size(), 138U);
    Session session;
    for (const GetRow& row : getRows()) {
        EXPECT_TRUE(row.description.ends_with('.')) << toUtf8(row.name);
        EXPECT_EQ(outcome(session, "IsEmpty ( Get ( " + toUtf8(row.name) + " ) ) < 2"), "1")
            << toUtf8(row.name);
    }
}

// Every function has a calculation with a known result in some file.
TEST(FunctionsTest, EachIsTried) {
    namespace fs = std::filesystem;
    std::string calculations;
    for (const auto& entry : fs::directory_iterator(CALCULATIONS)) {
        if (entry.path().extension() == ".calc") {
            std::ifstream in(entry.path());
            calculations.append(std::istreambuf_iterator<char>(in), {});
        }
    }
    for (const Builtin& row : builtins()) {
        if (row.form == BuiltinForm::placeholder || row.form == BuiltinForm::refused) {
            continue;
        }
        const std::string name = toUtf8(row.name());
        EXPECT_TRUE(calculations.find(name + " (") != std::string::npos ||
                    (row.maxArguments() < 1 && calculations.find(name) != std::string::npos))
            << name;
    }
}

TEST(FunctionsTest, ArgumentCountsFollowFromPrototypes) {
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
    EXPECT_EQ(counts(u"substitute"), std::pair(3, 3));
    EXPECT_EQ(counts(u"windownames"), std::pair(0, 1));
    EXPECT_EQ(counts(u"getsensor"), std::pair(1, 3));
}

} // namespace
} // namespace host

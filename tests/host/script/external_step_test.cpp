// Parsing and running the steps that plug-ins register.
#include "host/script/external_step.h"
#include "host/script/step_arguments.h"
#include "host/values/text.h"

#include <gtest/gtest.h>

namespace host {
namespace {

using Kind = StepParameter::Kind;

std::vector<StepParameter> everyKind() {
    return {{Kind::calculation, 0, u"Send to", ValueType::text, {}, 0},
            {Kind::flag, 1, u"Urgent", ValueType::text, {}, 1},
            {Kind::choice, 3, u"Colour", ValueType::text, {{u"Red & white", 5}, {u"Green", 7}}, 7},
            {Kind::calculation, 2, u"", ValueType::number, {}, 0},
            {Kind::target, 4, u"Result", ValueType::text, {}, 0}};
}

const FunctionRegistry kNoFunctions;

// What is read between brackets: "0=calculation" or "1=number" for each parameter by its index, and the
// variable; or "error column: message".
std::string read(const std::string& brackets, const std::vector<StepParameter>& parameters = everyKind()) {
    const auto source = std::make_shared<Source>("", fromUtf8(brackets));
    try {
        Parser in(source, 1, kNoFunctions);
        const StepArguments arguments = readStepArguments(u"Some Step", parameters, &in);
        if (in.current().kind != TokenKind::rightBracket) {
            in.failExpected("an operator or the \"]\" of Some Step", CalcCode::unbalancedParenthesis);
        }
        std::string result;
        for (size_t i = 0; i < arguments.size(); ++i) {
            const auto& [isGiven, value, number, script, file] = arguments[i];
            if (isGiven) {
                const size_t begin = value ? value->root.begin : 0;
                const size_t length = parameters[i].kind == Kind::target ? 5 : 1;
                result += std::to_string(parameters[i].index) + "=" +
                          (value ? toUtf8(source->text().substr(begin, length)) : std::to_string(number)) +
                          " ";
            }
        }
        return result;
    } catch (const CalcError& error) {
        return "error " + error.summary();
    }
}

TEST(ExternalStepTest, ParametersStandInTheOrderOfTheDefinition) {
    EXPECT_EQ(read("[ \"a\" ; Off ; Red & white ; 4 ; $x ]"), "0=\" 1=0 3=5 2=4 4=$x ] ");
    EXPECT_EQ(read("[ 8 ; on ; \"GREEN\" ]"), "0=8 1=1 3=7 ");
    EXPECT_EQ(read("[ ]"), "");
}

TEST(ExternalStepTest, ALabelNamesItsParameter) {
    EXPECT_EQ(read("[ Result: $$out[1] ; colour : Green ; send  TO: 9 ]"), "0=9 3=7 4=$$out ");
    EXPECT_EQ(read("[ Urgent: On ; 6 ; Green ]"), "0=6 1=1 3=7 ");
    EXPECT_EQ(read("[ \"Urgent: no label\" & $x ]"), "0=\" ");
}

TEST(ExternalStepTest, MistakesAreToldWhereTheyAre) {
    EXPECT_EQ(read("[ Sent to: 1 ]"),
              "error 1:3: Some Step has no parameter called Sent to; did you mean Send to?");
    EXPECT_EQ(read("[ 1 ; Send to: 2 ]"), "error 1:7: Send to is given twice");
    EXPECT_EQ(read("[ Urgent: Maybe ]"), "error 1:11: expected On or Off, found Maybe");
    EXPECT_EQ(read("[ Colour: Blue ]"), "error 1:11: expected one of Red & white, Green, found Blue");
    EXPECT_EQ(read("[ Result: 5 ]"), "error 1:11: expected a $local or $$global variable, found 5");
    EXPECT_EQ(read("[ 1 ; On ; Green ; 4 ; $x ; 6 ]"),
              "error 1:27: expected an operator or the \"]\" of Some Step, found ;");
    EXPECT_EQ(read("[ 1", {}).substr(0, 35), "error 1:3: expected the \"]\" of Some");
    EXPECT_EQ(read("[ Colour: "), "error 1:11: expected one of Red & white, Green, found the end");
}

TEST(ExternalStepTest, TheListShowsHowAStepIsWritten) {
    EXPECT_EQ(toUtf8(stepPrototype(u"Some Step", everyKind())),
              "Some Step [ Send to: calculation ; Urgent: On/Off ; Colour: Red & white/Green ; calculation ; "
              "Result: "
              "$variable ]");
    EXPECT_EQ(toUtf8(stepPrototype(u"Some Step", {})), "Some Step");
}

} // namespace
} // namespace host

// fmhost lsp, driven as an editor does.
#include "tests/host/console/program.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace host {
namespace {

using Json = nlohmann::json;
using testing::HasSubstr;

class LanguageServerTest : public ProgramTest {
  protected:
    static std::string message(const std::string& body) {
        return "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    }
    void notify(const std::string& method, const Json& parameters) {
        input_ += message(Json{{"jsonrpc", "2.0"}, {"method", method}, {"params", parameters}}.dump());
    }
    void request(int id, const std::string& method, const Json& parameters) {
        input_ +=
            message(Json{{"jsonrpc", "2.0"}, {"id", id}, {"method", method}, {"params", parameters}}.dump());
    }
    std::string uri(const std::string& name) const { return "file://" + (folder_ / name).string(); }
    void open(const std::string& name, const std::string& text) {
        notify("textDocument/didOpen",
               {{"textDocument",
                 {{"uri", uri(name)}, {"languageId", "filemaker"}, {"version", 1}, {"text", text}}}});
    }
    // A request about a position of a document.
    void ask(int id, const std::string& what, const std::string& name, int line, int character) {
        request(id, "textDocument/" + what,
                {{"textDocument", {{"uri", uri(name)}}},
                 {"position", {{"line", line}, {"character", character}}}});
    }

    // Runs the program with all that was said between initialize and exit, and takes its messages apart.
    void talk(const std::string& arguments = "--no-plugin lsp") {
        const std::string said = std::move(input_);
        input_.clear();
        request(1000, "initialize", {{"capabilities", Json::object()}});
        notify("initialized", Json::object());
        input_ += said;
        request(1001, "shutdown", nullptr);
        notify("exit", nullptr);
        outcome_ = run(arguments, input_);
        EXPECT_EQ(outcome_.status, 0);
        for (std::string rest = outcome_.out; !rest.empty();) {
            const size_t head = rest.find("\r\n\r\n");
            ASSERT_TRUE(rest.starts_with("Content-Length: ") && head != std::string::npos) << rest;
            const size_t length = std::stoul(rest.substr(16));
            messages_.push_back(Json::parse(rest.substr(head + 4, length)));
            rest.erase(0, head + 4 + length);
        }
    }

    Json answer(int id) const {
        for (const Json& message : messages_) {
            if (message.contains("id") && message["id"] == id) {
                return message;
            }
        }
        ADD_FAILURE() << "no answer to " << id;
        return {};
    }
    Json result(int id) const { return answer(id).at("result"); }
    std::vector<std::string> labels(int id) const {
        std::vector<std::string> names;
        const Json list = result(id);
        for (const Json& item : list.at("items")) {
            names.push_back(item.at("label"));
        }
        return names;
    }
    // The diagnostics of all times that they were told.
    std::vector<Json> diagnostics() const {
        std::vector<Json> lists;
        for (const Json& message : messages_) {
            if (message.value("method", "") == "textDocument/publishDiagnostics") {
                lists.push_back(message.at("params").at("diagnostics"));
            }
        }
        return lists;
    }
    static Json range(int line, int begin, int end) {
        return {{"start", {{"line", line}, {"character", begin}}},
                {"end", {{"line", line}, {"character", end}}}};
    }

    std::string input_;
    Outcome outcome_;
    std::vector<Json> messages_;
};

TEST_F(LanguageServerTest, TellsWhatItCan) {
    talk();
    const Json can = result(1000).at("capabilities");
    EXPECT_EQ(can.at("positionEncoding"), "utf-16");
    EXPECT_EQ(can.at("hoverProvider"), true);
    EXPECT_TRUE(result(1001).is_null());
    EXPECT_EQ(outcome_.err, "");
}

TEST_F(LanguageServerTest, SemanticTokensSayWhatEachPartIs) {
    // Positions are UTF-16; a comment of two lines is two tokens; an unknown function is none.
    open("a.calc",
         "\"\U0001F600\" & Upper ( $x ) & Nobody ( 12 )\n= x\nGet ( LastError ) /* a \\\nb */\n= 0\n");
    request(1, "textDocument/semanticTokens/full", {{"textDocument", {{"uri", uri("a.calc")}}}});
    talk();
    EXPECT_EQ(result(1).at("data"), Json({0, 0,  4, 1, 0, // the text
                                          0, 7,  5, 4, 0, // Upper
                                          0, 8,  2, 3, 0, // $x
                                          0, 16, 2, 2, 0, // 12
                                          2, 0,  3, 4, 0, // Get
                                          0, 6,  9, 5, 0, // LastError
                                          0, 12, 6, 0, 0, // the comment
                                          1, 0,  4, 0, 0}));
    EXPECT_EQ(
        result(1000).at("capabilities").at("semanticTokensProvider").at("legend").at("tokenTypes").at(4),
        "function");
}

TEST_F(LanguageServerTest, DiagnosticsFollowTheText) {
    // Positions are UTF-16: the emoji counts two.
    open("a.fmscript", "Set Variable [ $x ; Value: \"😀\" & Lenght ( 1 ) ]\n");
    notify("textDocument/didChange",
           {{"textDocument", {{"uri", uri("a.fmscript")}, {"version", 2}}},
            {"contentChanges", {{{"range", range(0, 34, 40)}, {"text", "Length"}}}}});
    notify("textDocument/didChange", {{"textDocument", {{"uri", uri("a.fmscript")}, {"version", 3}}},
                                      {"contentChanges", {{{"text", "If [ 1 ]\n"}}}}});
    notify("textDocument/didClose", {{"textDocument", {{"uri", uri("a.fmscript")}}}});
    talk();
    const std::vector<Json> told = diagnostics();
    ASSERT_EQ(told.size(), 4U);
    ASSERT_EQ(told[0].size(), 1U);
    EXPECT_EQ(told[0][0].at("range"), range(0, 34, 40));
    EXPECT_EQ(told[0][0].at("severity"), 1);
    EXPECT_EQ(told[0][0].at("code"), 1208);
    EXPECT_EQ(told[0][0].at("source"), "fmhost");
    EXPECT_EQ(told[0][0].at("message"), "there is no function called Lenght; did you mean Length?");
    EXPECT_EQ(told[0][0].at("code"), 1208);
    EXPECT_TRUE(told[1].empty()) << told[1];
    EXPECT_EQ(told[2].size(), 1U);
    EXPECT_TRUE(told[3].empty());
}

TEST_F(LanguageServerTest, ChangesOfOneMessageFollowEachOther) {
    open("a.calc", "1 + 1\n= 2\n");
    notify("textDocument/didChange", {{"textDocument", {{"uri", uri("a.calc")}, {"version", 2}}},
                                      {"contentChanges",
                                       {{{"range", range(0, 0, 1)}, {"text", "Nobody ( 1 )"}},
                                        {{"range", range(0, 15, 16)}, {"text", "Length ( 2 )"}}}}});
    ask(1, "hover", "a.calc", 0, 17);
    talk();
    const std::vector<Json> told = diagnostics();
    ASSERT_EQ(told.size(), 2U);
    ASSERT_EQ(told[1].size(), 1U) << told[1];
    EXPECT_EQ(told[1][0].at("range"), range(0, 0, 6));
    EXPECT_THAT(result(1).at("contents").at("value"), HasSubstr("Length ( text )"));
}

TEST_F(LanguageServerTest, Completion) {
    write("My Script.fmscript", "");
    open("a.fmscript", "Set Variable [ $count ; Value: weekofy + Get ( lastm ) + $c ]\nPerform Script [ \"my "
                       "\nset v\npause/re\n# se\n");
    ask(1, "completion", "a.fmscript", 0, 38);
    ask(2, "completion", "a.fmscript", 0, 52);
    ask(3, "completion", "a.fmscript", 0, 59);
    ask(4, "completion", "a.fmscript", 1, 21);
    ask(5, "completion", "a.fmscript", 2, 5);
    ask(6, "completion", "a.fmscript", 3, 8);
    ask(7, "completion", "a.fmscript", 4, 4);
    talk();
    EXPECT_THAT(labels(1), testing::ElementsAre("WeekOfYear", "WeekOfYearFiscal"));
    const Json first = result(1).at("items")[0];
    EXPECT_EQ(first, Json({{"label", "WeekOfYear"},
                           {"kind", 3}, // a function
                           {"detail", "WeekOfYear ( date )"},
                           {"documentation", "Returns the week of the year; January 1 is in week 1."},
                           {"filterText", "WeekOfYear"},
                           {"textEdit", {{"range", range(0, 31, 38)}, {"newText", "WeekOfYear"}}}}));
    EXPECT_THAT(labels(2), testing::ElementsAre("LastMessageChoice"));
    EXPECT_THAT(labels(3), testing::ElementsAre("$count"));
    EXPECT_EQ(result(3).at("items")[0].at("kind"), 6); // a variable
    EXPECT_THAT(labels(4), testing::ElementsAre("My Script"));
    EXPECT_THAT(labels(5), testing::Contains("Set Variable"));
    EXPECT_THAT(labels(6), testing::ElementsAre("Pause/Resume Script"));
    EXPECT_THAT(labels(7), testing::Not(testing::Contains("Set Variable")));
}

TEST_F(LanguageServerTest, CompletionOfAStepsOptions) {
    open("a.fmscript", "Set Error Capture [ o ]\n"
                       "Insert from URL [ Select ; With d ; With dialog: o ; $t ; \"a: b\" ; upperc ]\n"
                       "Read from Data File [ File ID: $id ; Read as: utf ; t ]\n"
                       "Set Variable [ $x ;  ]\n"
                       "Perform Script [\n  \"B\" ;\n  par ]\n"
                       "Set Variable [ $x ; Value: Upper ( v ) ]\n"
                       "Insert Text [ $t ; sel ]\n");
    ask(1, "completion", "a.fmscript", 0, 21);
    ask(2, "completion", "a.fmscript", 1, 33);
    ask(3, "completion", "a.fmscript", 1, 50);
    ask(4, "completion", "a.fmscript", 1, 70);
    ask(5, "completion", "a.fmscript", 2, 49);
    ask(6, "completion", "a.fmscript", 2, 53);
    ask(7, "completion", "a.fmscript", 3, 20);
    ask(8, "completion", "a.fmscript", 6, 5);
    ask(9, "completion", "a.fmscript", 7, 36);
    ask(10, "completion", "a.fmscript", 8, 22);
    ask(11, "completion", "a.fmscript", 8, 24);
    talk();
    EXPECT_THAT(labels(1), testing::ElementsAre("On", "Off"));
    EXPECT_THAT(labels(2), testing::ElementsAre("With dialog:"));
    EXPECT_EQ(result(2).at("items")[0],
              Json({{"label", "With dialog:"},
                    {"kind", 14}, // a keyword
                    {"detail", "Insert from URL [ {Select} ; {With dialog: On/Off} ; Target: $variable ; "
                               "calculation ; {Verify SSL Certificates} ; {cURL options: calculation} ]"},
                    {"documentation", ""},
                    {"filterText", "With dialog:"},
                    {"textEdit", {{"range", range(1, 27, 33)}, {"newText", "With dialog:"}}}}));
    EXPECT_THAT(labels(3), testing::ElementsAre("On", "Off"));
    EXPECT_THAT(labels(4), testing::IsEmpty()); // all values without a label are there
    EXPECT_THAT(labels(5), testing::ElementsAre("UTF-8", "UTF-16"));
    EXPECT_THAT(labels(6), testing::Contains("Target:"));
    EXPECT_THAT(labels(7), testing::ElementsAre("Value:"));
    EXPECT_THAT(labels(8), testing::ElementsAre("Parameter:"));
    EXPECT_THAT(labels(9),
                testing::AllOf(testing::Contains("ValueCount"), testing::Not(testing::Contains("Value:"))));
    EXPECT_THAT(labels(10), testing::ElementsAre("Select", "Self"));
    EXPECT_THAT(labels(11), testing::IsEmpty()); // behind the bracket
}

TEST_F(LanguageServerTest, HoverAndSignature) {
    open("a.calc", "Substitute ( Upper ( \"a\" ) ; [ \"b\" ; \"c\" ] ; \"d\n= 1\n");
    ask(1, "hover", "a.calc", 0, 3);
    ask(2, "hover", "a.calc", 0, 22);
    ask(3, "signatureHelp", "a.calc", 0, 27);
    open("b.calc", "Test_Count ( 1 ; ");
    ask(4, "signatureHelp", "b.calc", 0, 17);
    open("c.calc", "WeekOfYear ( 1 )\n= 1\n");
    ask(5, "hover", "c.calc", 0, 3);
    ask(6, "signatureHelp", "a.calc", 0, 37); // in the list, behind its semicolon
    talk("--plugin " + kGood + " lsp");
    EXPECT_THAT(result(1).at("contents").at("value"),
                HasSubstr("Substitute ( text ; searchString ; replaceString )"));
    EXPECT_TRUE(result(2).is_null());
    EXPECT_EQ(result(5).at("contents"),
              Json({{"kind", "markdown"},
                    {"value", "```filemaker\nWeekOfYear ( date )\n```\n"
                              "Returns the week of the year; January 1 is in week 1.\n\n*Date*"}}));
    EXPECT_EQ(result(6).at("activeParameter"), 1);
    EXPECT_EQ(result(3).at("activeParameter"), 0);
    EXPECT_EQ(result(4).at("activeParameter"), 1);
    const Json signature = result(4).at("signatures")[0];
    EXPECT_EQ(signature.at("label"), "Test_Count ( a ; b {; c } )");
    EXPECT_EQ(signature.at("parameters"),
              Json::parse(R"([{"label":[13,14]},{"label":[17,18]},{"label":[22,23]}])"));
}

TEST_F(LanguageServerTest, DefinitionsOfScriptsAndCustomFunctions) {
    write("Über uns.fmscript", "");
    write("Twice.fmfn", "// doubles\nTwice ( x ) = x * 2\n");
    open("a.fmscript",
         "Perform Script [ “über uns” ; Parameter: Twice ( 2 ) ]\nPerform Script [ \"none\" ]\n");
    ask(1, "definition", "a.fmscript", 0, 20);
    ask(2, "definition", "a.fmscript", 0, 43);
    ask(3, "definition", "a.fmscript", 1, 20);
    talk();
    EXPECT_THAT(result(1).at("uri"), testing::EndsWith("/%C3%9Cber%20uns.fmscript"));
    EXPECT_EQ(result(2).at("uri"), uri("Twice.fmfn"));
    EXPECT_EQ(result(2).at("range"), range(1, 0, 0));
    EXPECT_TRUE(result(3).is_null());
}

TEST_F(LanguageServerTest, CustomFunctionsOfTheFolderAreKnownAsTheEditorHasThem) {
    write("Twice.fmfn", "Twice ( x ) = x * 2\n");
    open("a.calc", "Twice ( 2 )\n= 4\n");
    open("Twice.fmfn", "Double ( x ) = x * 2\n");
    notify("textDocument/didChange",
           {{"textDocument", {{"uri", uri("a.calc")}, {"version", 2}}},
            {"contentChanges", {{{"text", "Twice ( 2 )\n= 4\nDouble ( 2 )\n= 4\n"}}}}});
    ask(1, "hover", "a.calc", 2, 2);
    talk();
    const std::vector<Json> told = diagnostics();
    ASSERT_EQ(told.size(), 3U);
    EXPECT_TRUE(told[0].empty()) << told[0];
    ASSERT_EQ(told[2].size(), 1U) << told[2];
    EXPECT_EQ(told[2][0].at("range").at("start").at("line"), 0);
    EXPECT_THAT(result(1).at("contents").at("value"), HasSubstr("Double ( x )"));
}

TEST_F(LanguageServerTest, Formatting) {
    open("a.fmscript", "If[1]\nBeep\nEnd If");
    open("b.fmscript", "If [ ( 1 ]");
    const Json options = {{"tabSize", 2}, {"insertSpaces", true}};
    request(1, "textDocument/formatting",
            {{"textDocument", {{"uri", uri("a.fmscript")}}}, {"options", options}});
    request(2, "textDocument/formatting",
            {{"textDocument", {{"uri", uri("b.fmscript")}}}, {"options", options}});
    request(3, "textDocument/formatting",
            {{"textDocument", {{"uri", uri("a.fmscript")}}}, {"options", {{"insertSpaces", false}}}});
    talk();
    EXPECT_EQ(result(3)[0].at("newText"), "If [ 1 ]\n\tBeep\nEnd If\n");
    EXPECT_EQ(result(1)[0].at("newText"), "If [ 1 ]\n  Beep\nEnd If\n");
    EXPECT_EQ(result(1)[0].at("range").at("end"), Json({{"line", 2}, {"character", 6}}));
    EXPECT_TRUE(result(2).empty());
}

TEST_F(LanguageServerTest, BrokenMessages) {
    input_ += message("{ not json");
    input_ += message("[ 1 ]");
    input_ += message(R"({"jsonrpc":"2.0","id":7})");
    request(1, "textDocument/unknown", Json::object());
    ask(2, "hover", "never-opened.calc", 0, 0);
    request(3, "textDocument/hover", {{"textDocument", 5}});
    request(4, "textDocument/hover",
            {{"textDocument", {{"uri", uri("a.calc")}}}, {"position", {{"line", -1}}}});
    notify("textDocument/didOpen", {{"textDocument", "none"}});
    notify("$/unknown", Json::object());
    open("a.calc", "1\n= 1\n");
    ask(5, "hover", "a.calc", 99, 99);
    talk();
    const auto code = [this](int id) { return answer(id).at("error").at("code").get<int>(); };
    EXPECT_EQ(messages_[1].at("error").at("code"), -32700);
    EXPECT_EQ(messages_[2].at("error").at("code"), -32600);
    EXPECT_EQ(code(7), -32600);
    EXPECT_EQ(code(1), -32601);
    EXPECT_EQ(code(2), -32602);
    EXPECT_EQ(code(3), -32602);
    EXPECT_EQ(code(4), -32602);
    EXPECT_TRUE(result(5).is_null());
    // Notifications are never answered, not even those that mean nothing.
    EXPECT_EQ(std::count_if(messages_.begin(), messages_.end(),
                            [](const Json& message) { return message.contains("error"); }),
              7);
}

TEST_F(LanguageServerTest, OrderOfLife) {
    const Outcome early = plain("lsp", message(R"({"jsonrpc":"2.0","id":1,"method":"shutdown"})"));
    EXPECT_THAT(early.out, HasSubstr("-32002"));
    EXPECT_EQ(early.status, 1); // left without a shut-down
    EXPECT_EQ(plain("lsp", "Content-Length: 100\r\n\r\n{").status, 1);
    EXPECT_EQ(plain("lsp", "Content-Length: x\r\n\r\n").status, 1);
    talk("--plugin none.fmx lsp");
    EXPECT_EQ(outcome_.err, "fmhost: there is no plug-in at none.fmx; going on without the plug-in\n");
}

} // namespace
} // namespace host

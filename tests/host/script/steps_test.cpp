// What each step does, run from a script.
#include "tests/host/script/scripts_fixture.h"

#include "host/script/own_steps.h"

namespace host {
namespace {

class StepsTest : public ScriptsTest {
  protected:
    static std::string contents(const fs::path& file) {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    // Returns the result of a script with these steps and, at its end, a calculation.
    std::string after(const std::string& steps, const std::string& calculation) {
        return run(steps + "\nExit Script [ Text Result: " + calculation + " ]");
    }
};

TEST_F(StepsTest, EveryPrototypeReadsAsItIsShown) {
    for (const OwnStep& step : ownSteps()) {
        const std::u16string shown = stepPrototype(step.name(), step.parameters);
        EXPECT_EQ(toUtf8(prototypeName(shown)), toUtf8(step.name()));
        EXPECT_EQ(prototypeParameters(shown).size(), step.parameters.size()) << toUtf8(shown);
        EXPECT_FALSE(step.row.description.empty()) << toUtf8(shown);
        EXPECT_EQ(findOwnStep(step.key), &step) << "twice: " << toUtf8(step.name());
    }
    EXPECT_GE(ownSteps().size(), 200U);
}

TEST_F(StepsTest, TheDocumentNamesEveryStepThatIsNotRefused) {
    const std::string document = contents(SCRIPTS_DOCUMENT);
    for (const OwnStep& step : ownSteps()) {
        if (step.row.form != StepForm::refused) {
            EXPECT_NE(document.find("| `" + toUtf8(step.name())), std::string::npos) << toUtf8(step.name());
        }
    }
}

TEST_F(StepsTest, SetVariableTakesRepetitions) {
    EXPECT_EQ(after("Set Variable [ $x[2] ; Value: 7 ]\nSet Variable [ $i ; Value: 3 ]\n"
                    "Set Variable [ $x[$i + 1] ; Value: 9 ]",
                    "$x & \"-\" & $x[2] & \"-\" & $x[3] & \"-\" & $x[4]"),
              "-7--9");
}

TEST_F(StepsTest, ErrorCaptureDecidesWhetherAFailureEndsTheScript) {
    EXPECT_EQ(run("Open Data File [ \"nothing.txt\" ; Target: $id ]").substr(0, 30),
              "error main:1:1: can not open /");
    EXPECT_EQ(after("Set Error Capture [ On ]\nSet Variable [ $state ; Value: Get ( ErrorCaptureState ) ]\n\n"
                    "Open Data File [ \"nothing.txt\" ; Target: $id ]\n"
                    "Set Variable [ $error ; Value: Get ( LastError ) ]",
                    "$state & \" \" & $error & \" \" & Get ( LastErrorLocation ) & \" \" & "
                    "RightWords ( Get ( LastErrorDetail ) ; 3 ) & $id"),
              "1 100 main|Open Data File|4 file or directory");
    EXPECT_EQ(after("", "Get ( ErrorCaptureState )"), "0"); // it ends with the scripts
    EXPECT_EQ(after("Allow User Abort [ Off ]", "Get ( AllowAbortState )"), "0");
    EXPECT_EQ(after("", "Get ( AllowAbortState )"), "1");
}

TEST_F(StepsTest, ErrorLoggingWritesWhatFailed) {
    setenv("HOME", root_.c_str(), 1);
    EXPECT_EQ(
        after("Set Error Capture [ On ]\nSet Error Logging [ On ; Custom debug info: \"nightly\" ]\n"
              "Delete File [ \"nothing.txt\" ]\nSet Error Logging [ Off ]\nDelete File [ \"nothing.txt\" ]",
              "Get ( LastError )"),
        "100");
    const std::string log = contents(root_ / "ScriptErrors.log");
    EXPECT_NE(log.find("\tmain\tDelete File\t3\t100\tnightly\n"), std::string::npos) << log;
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 1);
}

TEST_F(StepsTest, SettingsLastUntilTheScriptsEnd) {
    const std::string states = "Get ( ScriptAnimationState ) & Get ( RevertTransactionOnErrorState )";
    write("inner", "Set Layout Object Animation [ On ]\nSet Revert Transaction on Error [ Off ]");
    EXPECT_EQ(after("Perform Script [ \"inner\" ]", states), "10");
    EXPECT_EQ(after("", states), "01");
}

TEST_F(StepsTest, FilesOfAnyKindAreInserted) {
    std::ofstream(root_ / "main" / "a.pdf") << "%PDF-1.4";
    EXPECT_EQ(after("Insert PDF [ $pdf ; \"a.pdf\" ]\nInsert Audio/Video [ Store only as a reference ; "
                    "Target: $sound ; "
                    "\"a.pdf\" ]",
                    "$pdf & Length ( $pdf ) & \" \" & GetContainerAttribute ( $sound ; \"filename\" ) & "
                    "HexEncode ( $sound "
                    ")"),
              "a.pdf8 a.pdf255044462D312E34");
}

TEST_F(StepsTest, ExitApplicationEndsAllScripts) {
    write("leaving", "Exit Application\nExit Script [ Text Result: \"here\" ]");
    EXPECT_EQ(after("Perform Script [ \"leaving\" ]", "\"not reached\""), "");
}

TEST_F(StepsTest, HaltScriptEndsAllScripts) {
    write("halting", "Halt Script");
    EXPECT_EQ(after("Perform Script [ “halting” ]\nSet Variable [ $$after ; Value: 1 ]", "1"), "");
    EXPECT_TRUE(session_.evaluate(u"$$after").isEmpty());
    EXPECT_FALSE(session_.runsScript());
}

TEST_F(StepsTest, DataFilesAreReadAndWrittenAtAPosition) {
    EXPECT_EQ(
        after("Create Data File [ \"sub/data.txt\" ; Create folders: On ]\n"
              "Open Data File [ \"sub/data.txt\" ; Target: $id ]\n"
              "Write to Data File [ File ID: $id ; Data source: \"één\" ; Write as: UTF-8 ; Append line feed "
              "]\n"
              "Get Data File Position [ File ID: $id ; Target: $end ]\n"
              "Set Data File Position [ File ID: $id ; New position: 5 ]\n"
              "Write to Data File [ File ID: $id ; Data source: \"X\" ]\n"
              "Set Data File Position [ File ID: $id ; New position: 0 ]\n"
              "Read from Data File [ File ID: $id ; Amount (bytes): 4 ; Target: $start ]\n"
              "Read from Data File [ File ID: $id ; Target: $rest ; Read as: Bytes ]\n"
              "Set Variable [ $open ; Value: Get ( OpenDataFileInfo ) ]\n"
              "Close Data File [ File ID: $id ]",
              "$end & \" \" & $start & \" \" & HexEncode ( $rest ) & \" \" & GetValue ( Substitute ( $open ; "
              "\";\" ; ¶ ) ; 1 ) & Get ( OpenDataFileInfo )"),
        "6 éé 6E58 1");
    EXPECT_EQ(contents(root_ / "main" / "sub" / "data.txt"), "éénX");
}

TEST_F(StepsTest, DataFilesInUtf16) {
    EXPECT_EQ(after("Create Data File [ \"a\" ]\nOpen Data File [ \"a\" ; $id ]\n"
                    "Write to Data File [ File ID: $id ; Data source: \"aé😀\" ; Write as: UTF-16 ]\n"
                    "Set Data File Position [ File ID: $id ; New position: 2 ]\n"
                    "Read from Data File [ File ID: $id ; Target: $x ; Read as: UTF-16 ]\n"
                    "Read from Data File [ File ID: $id ; Target: $none ]",
                    "$x & \"/\" & $none & Get ( LastError )"),
              "é😀/0");
    EXPECT_EQ(contents(root_ / "main" / "a"), std::string("a\0\xE9\0\x3D\xD8\0\xDE", 8));
}

TEST_F(StepsTest, AtMost25DataFilesAreOpen) {
    write("many",
          "Set Error Capture [ On ]\nCreate Data File [ \"a\" ]\n"
          "Loop\nOpen Data File [ \"a\" ; Target: $id ]\nExit Loop If [ Get ( LastError ) ≠ 0 ]\n"
          "Set Variable [ $n ; Value: $n + 1 ]\nEnd Loop\nExit Script [ Text Result: $n & \" \" & $id ]");
    EXPECT_EQ(shown(runner_->run(root_ / "main" / "many.fmscript", {})), "25 25");
    EXPECT_EQ(after("Set Error Capture [ On ]\nClose Data File [ File ID: 99 ]", "Get ( LastError )"), "100");
    EXPECT_EQ(after("Close Data File [ File ID: 7 ]\nOpen Data File [ \"a\" ; Target: $id ]", "$id"), "7");
}

TEST_F(StepsTest, FilesAreFoundMeasuredRenamedAndDeleted) {
    write("a", "12345");
    EXPECT_EQ(
        after("Get File Exists [ \"a.fmscript\" ; Target: $there ]\nGet File Size [ \"a.fmscript\" ; Target: "
              "$size ]\nRename File [ \"a.fmscript\" ; New name: \"b.txt\" ]\n"
              "Get File Exists [ \"a.fmscript\" ; Target: $gone ]",
              "$there & $size & $gone & Get ( LastError )"),
        "1500");
    EXPECT_EQ(contents(root_ / "main" / "b.txt"), "12345");
    write("c", "other");
    EXPECT_EQ(run("Rename File [ \"b.txt\" ; New name: \"c.fmscript\" ]").substr(0, 6), "error ");
    EXPECT_EQ(run("Rename File [ \"b.txt\" ; New name: \"../b.txt\" ]"),
              "error main:1:35: expected a name without a folder");
    EXPECT_EQ(run("Delete File [ \"b.txt\" ]"), "");
    EXPECT_FALSE(fs::exists(root_ / "main" / "b.txt"));
    EXPECT_EQ(
        after("Set Error Capture [ On ]\nGet File Size [ \"b.txt\" ; Target: $size ]", "Get ( LastError )"),
        "100");
    EXPECT_EQ(run("Delete File [ \"\" ]"), "error main:1:15: the path is empty");
}

TEST_F(StepsTest, InsertTextAndFromUrl) {
    write("text", "grüße");
    EXPECT_EQ(after("Insert Text [ Select ; Target: $a[2] ; \"one\" ]\n"
                    "Insert Calculated Result [ $b ; 1 + 1 ]\n"
                    "Insert from URL [ Select ; With dialog: Off ; Target: $c ; \"file:text.fmscript\" ; "
                    "Verify SSL Certificates ; cURL options: \"\" ]",
                    "$a[2] & $b & $c"),
              "one2grüße");
    EXPECT_EQ(after("Set Error Capture [ On ]\nInsert from URL [ Target: $c ; \"https://example.com\" ]",
                    "Get ( LastError )"),
              "1631");
}

TEST_F(StepsTest, DialogsBeepsAndIdentifiers) {
    EXPECT_EQ(after("Show Custom Dialog [ \"t\" ; \"m\" ; $input ]\nBeep\nSet Session Identifier [ \"me\" ]\n"
                    "Freeze Window",
                    "Get ( LastMessageChoice ) & Get ( SessionIdentifier ) & Get ( LastError )"),
              "1me0");
    EXPECT_EQ(dialogs_, std::vector<std::string>{"t: m"});
    EXPECT_EQ(after("Open URL [ With dialog: Off ; \"https://example.com\" ]", "Get ( LastError )"), "3");
    EXPECT_EQ(after("Set Error Capture [ On ]\nGet Folder Path [ $x ; \"Choose\" ]", "Get ( LastError )"),
              "1");
    EXPECT_EQ(
        after("Get Folder Path [ Allow Folder Creation ; $x ; \"Choose\" ; \"made\" ]", "Right ( $x ; 6 )"),
        "/made/");
}

TEST_F(StepsTest, ATimerIsDueAgainAndAgain) {
    write("tick", "Exit Script");
    EXPECT_FALSE(runner_->dueScript());
    EXPECT_EQ(run("Install OnTimer Script [ “tick” ; Parameter: 5 ; Interval: .01 ]"), "");
    EXPECT_FALSE(runner_->dueScript());
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const auto due = runner_->dueScript();
    ASSERT_TRUE(due);
    EXPECT_EQ(due->file.filename(), "tick.fmscript");
    EXPECT_EQ(shown(due->parameter), "5");
    EXPECT_EQ(run("Install OnTimer Script"), "");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(runner_->dueScript());
    EXPECT_EQ(run("Install OnTimer Script [ “tock” ; Interval: 1 ]"),
              "error main:1:1: there is no such script");
}

TEST_F(StepsTest, AllMistakesOfAScriptAreFound) {
    const auto source = std::make_shared<Source>(
        "",
        u"If [ 1 + ]\n  Set Varable [ $x ; Value: 1 ]\n  Set Variable [ $x ; Value: ( 2 ]\n"
        u"Else\n  Set Variable [ $y ; Value: 3\n  Beep\nEnd If\nSet Field [ A::b ; \"[\" ]\nEnd Loop\nLoop\n"
        u"Set Variable [ $z ; Value:\n \"open ]\nBeep\n");
    std::vector<CalcError> errors;
    parseScript(source, session_.functions(), steps_, errors);
    std::string found;
    for (const CalcError& error : errors) {
        found += std::to_string(error.place().line) + " ";
    }
    EXPECT_EQ(found, "1 2 3 6 8 9 12 10 ");
}

} // namespace
} // namespace host

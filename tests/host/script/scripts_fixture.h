#pragma once

#include "host/script/script_runner.h"
#include "host/values/text.h"
#include "tests/support/temporary_folder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

namespace host {

namespace fs = std::filesystem;

// A test with a folder of scripts and a session, which records what the scripts show.
class ScriptsTest : public testing::Test, protected ScriptListener {
  protected:
    ScriptsTest() {
        fs::create_directory(root_ / "main");
        library_.emplace(root_ / "main", session_.functions(), steps_);
        runner_.emplace(session_, *library_, static_cast<ScriptListener&>(*this));
    }

    fs::path write(const std::string& name, const std::string& text) const {
        fs::path file = root_ / "main" / (name + ".fmscript");
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << text;
        return file;
    }

    // Runs a script and returns its result, or "error " and the message with its place in the file main.
    std::string run(const std::string& text, const std::string& parameter = "") {
        const fs::path file = write("main", text);
        try {
            return shown(runner_->run(file, Value::text(fromUtf8(parameter))));
        } catch (const CalcError& error) {
            std::string message = error.summary();
            if (message.starts_with(file.string())) {
                message = "main" + message.substr(file.string().size());
            }
            return "error " + message;
        } catch (const FileError& error) {
            return std::string("error ") + error.what();
        }
    }

    static std::string shown(const Value& value) {
        std::string text = toUtf8(value.asText());
        for (char& c : text) {
            c = c == '\r' ? '|' : c;
        }
        return text;
    }

    void dialog(const Value& title, const Value& message) override {
        dialogs_.push_back(shown(title) + ": " + shown(message));
    }
    void evaluated(const Script& script, const Step& step, const Value& result) override {
        traced_.push_back(toUtf8(script.source->text().substr(step.begin, step.end - step.begin)) + " -> " +
                          shown(result));
    }

    support::TemporaryFolder folder_;
    fs::path root_ = folder_.path();
    Session session_;
    StepRegistry steps_;
    std::optional<ScriptLibrary> library_;
    std::optional<ScriptRunner> runner_;
    std::vector<std::string> dialogs_;
    std::vector<std::string> traced_;
};

} // namespace host

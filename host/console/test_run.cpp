#include "host/console/test_run.h"

#include "host/console/test_report.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <sys/wait.h>
#include <unistd.h>

namespace host {

namespace fs = std::filesystem;
using Json = nlohmann::json;

namespace {

void runFile(const HostOptions& options, const std::string& file, const CheckFilter& filter,
             CheckListener& listener) {
    Host host(options);
    runCalcTest(host, file, filter, listener);
    if (host.hasRefused()) {
        listener.ended({0, "", "the plug-in registered what it must not", 0});
    }
}

// Adds results to the report directly, for a run in this process.
class DirectListener : public CheckListener {
  public:
    explicit DirectListener(TestReport& report) : report_(report) {}
    void begins(int /*line*/, const std::string& /*text*/) override {}
    void ended(CheckResult result) override { report_.add(std::move(result)); }

  private:
    TestReport& report_;
};

// Writes a line of JSON into a pipe for each event, for a run in a process of its own.
class PipeListener : public CheckListener {
  public:
    explicit PipeListener(int pipe) : pipe_(pipe) {}
    void begins(int line, const std::string& text) override {
        send({{"event", "begins"}, {"line", line}, {"text", text}});
    }
    void ended(CheckResult result) override {
        send({{"event", "ended"},
              {"line", result.line},
              {"text", result.text},
              {"failure", result.failure},
              {"seconds", result.seconds}});
    }
    void finished() { send({{"event", "finished"}}); }
    void failed(ExitCode code, const char* message) {
        send({{"event", "failed"}, {"code", static_cast<int>(code)}, {"message", message}});
    }

  private:
    void send(const Json& event) {
        const std::string line = event.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
        for (size_t sent = 0; sent < line.size();) {
            const ssize_t count = write(pipe_, line.data() + sent, line.size() - sent);
            if (count < 0 && errno != EINTR) {
                _exit(1); // the reading process has ended
            }
            sent += count > 0 ? static_cast<size_t>(count) : 0;
        }
    }

    int pipe_;
};

// Reads what PipeListener wrote, and adds it to the report.
class Receiver {
  public:
    explicit Receiver(TestReport& report) : report_(report) {}

    void take(const Json& event) {
        const std::string kind = event.at("event");
        if (kind == "begins") {
            current_ = {event.at("line"), event.at("text"), "", 0};
        } else if (kind == "ended") {
            current_.reset();
            report_.add({event.at("line"), event.at("text"), event.at("failure"), event.at("seconds")});
        } else if (kind == "failed") {
            error_ = static_cast<ExitCode>(event.at("code").get<int>());
            message_ = event.at("message");
        } else {
            isFinished_ = true;
        }
    }

    // To be called when the process has ended. Throws the error that ended it, and reports a check in which
    // it ended early.
    void close(int status) {
        if (error_ == ExitCode::load) {
            throw LoadError(message_);
        }
        if (error_ == ExitCode::usage) {
            throw FileError(message_);
        }
        if (!isFinished_) {
            CheckResult result = current_.value_or(CheckResult());
            result.failure = result.text.empty() ? "" : "  "; // indented below the calculation
            result.failure += "the host ended early";
            result.failure += WIFSIGNALED(status) ? std::string(": ") + strsignal(WTERMSIG(status)) : "";
            report_.add(std::move(result));
        }
    }

  private:
    TestReport& report_;
    std::optional<CheckResult> current_; // the check that is being evaluated
    ExitCode error_ = ExitCode::ok;
    std::string message_;
    bool isFinished_ = false;
};

[[noreturn]] void runAsChild(const HostOptions& options, const std::string& file, const CheckFilter& filter,
                             int pipe) {
    PipeListener listener(pipe);
    try {
        runFile(options, file, filter, listener);
        listener.finished();
    } catch (const LoadError& error) {
        listener.failed(ExitCode::load, error.what());
    } catch (const FileError& error) {
        listener.failed(ExitCode::usage, error.what());
    }
    std::cout.flush();
    _exit(0);
}

// Runs a file in a process of its own. A plug-in keeps its state as long as its process lives, and no file
// may depend on the state that another one left.
void runFileApart(const HostOptions& options, const std::string& file, const CheckFilter& filter,
                  TestReport& report) {
    int ends[2];
    std::cout.flush();
    if (pipe(ends) != 0) {
        throw FileError("can not run " + file + ": " + std::strerror(errno));
    }
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        runAsChild(options, file, filter, ends[1]);
    }
    close(ends[1]);
    if (child < 0) {
        close(ends[0]);
        throw FileError("can not run " + file + ": " + std::strerror(errno));
    }
    Receiver receiver(report);
    std::string pending;
    char buffer[4096];
    for (ssize_t size = 0; (size = read(ends[0], buffer, sizeof buffer)) != 0;) {
        if (size < 0) {
            if (errno == EINTR) {
                continue;
            }
            break;
        }
        pending.append(buffer, static_cast<size_t>(size));
        for (size_t end = 0; (end = pending.find('\n')) != std::string::npos; pending.erase(0, end + 1)) {
            receiver.take(Json::parse(pending.substr(0, end)));
        }
    }
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    receiver.close(status);
}

// Writes the report atomically: an existing file is replaced when the new one is complete.
void writeReport(const fs::path& file, const std::string& report) {
    std::error_code error;
    const bool isSpecial = fs::exists(file, error) && !fs::is_regular_file(file, error); // /dev/stdout
    const fs::path target = isSpecial ? file : fs::path(file.string() + ".part");
    std::ofstream out(target, std::ios::binary);
    out << report << std::flush;
    if (!out) {
        throw FileError("can not write " + file.string() + ": " + std::strerror(errno));
    }
    if (!isSpecial) {
        fs::rename(target, file, error);
        if (error) {
            throw FileError("can not write " + file.string() + ": " + error.message());
        }
    }
}

} // namespace

ExitCode runTests(const HostOptions& options, const TestPlan& plan) {
    TestReport report(std::cout);
    const bool isAlone = plan.files.size() == 1 && plan.repeat == 1 && plan.junit.empty();
    for (const std::string& file : plan.files) {
        for (int run = 1; run <= plan.repeat; ++run) {
            report.startSuite(file, run);
            if (isAlone) {
                DirectListener listener(report);
                runFile(options, file, plan.filter, listener);
            } else {
                runFileApart(options, file, plan.filter, report);
            }
        }
    }
    report.printSummary();
    if (!plan.junit.empty()) {
        writeReport(plan.junit, report.junit());
    }
    if (report.passed() + report.failed() == 0) {
        std::cerr << "fmhost: no calculation is left by --filter and --exclude" << '\n' << std::flush;
        return ExitCode::failure;
    }
    return report.failed() == 0 ? ExitCode::ok : ExitCode::failure;
}

} // namespace host

#include "host/console/commands.h"

#include "host/calc/parser.h"
#include "host/console/calc_test.h"
#include "host/console/input_reader.h"
#include "host/console/show.h"
#include "host/values/text.h"

#include <cerrno>
#include <cstring>
#include <iomanip>
#include <iostream>
#include <sys/wait.h>
#include <unistd.h>

namespace host {

namespace {

void evaluateAndPrint(Host& host, const Calculation& calculation) {
    const Value result = host.session().evaluate(calculation);
    std::cout << oneLine(result) << std::endl;
    host.idle();
}

void evaluateInput(Host& host) {
    InputReader reader(host.session().functions(), "standard input");
    for (std::string line; std::getline(std::cin, line);) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        if (const auto calculation = reader.addLine(line)) {
            evaluateAndPrint(host, *calculation);
        }
    }
    reader.finish();
}

CalcTestCount runTest(const HostOptions& options, const std::string& file) {
    Host host(options);
    CalcTestCount count = runCalcTest(host, file, std::cout);
    if (host.hasRefused()) {
        std::cout << file << ": the plug-in registered what it must not\n";
        ++count.failed;
    }
    return count;
}

// In a process of its own: a plug-in keeps its state for as long as its process lives, and one file must not
// see what another one left. What the file throws ends the command with the same error, thrown here.
CalcTestCount runTestApart(const HostOptions& options, const std::string& file) {
    struct Report {
        CalcTestCount count;
        ExitCode error = ExitCode::ok;
        char message[1024] = "";
    } report;
    int ends[2];
    if (pipe(ends) != 0) {
        throw FileError(std::string("can not run ") + file + ": " + std::strerror(errno));
    }
    std::cout.flush();
    const pid_t child = fork();
    if (child == 0) {
        const auto fail = [&](ExitCode code, const char* message) {
            report.error = code;
            std::strncpy(report.message, message, sizeof report.message - 1);
        };
        try {
            report.count = runTest(options, file);
        } catch (const LoadError& error) {
            fail(ExitCode::load, error.what());
        } catch (const FileError& error) {
            fail(ExitCode::usage, error.what());
        }
        std::cout.flush();
        const bool written = write(ends[1], &report, sizeof report) == sizeof report;
        _exit(written ? 0 : 1);
    }
    close(ends[1]);
    const bool isComplete = child > 0 && read(ends[0], &report, sizeof report) == sizeof report;
    close(ends[0]);
    int status = 0;
    if (child > 0) {
        waitpid(child, &status, 0);
    }
    if (report.error == ExitCode::load) {
        throw LoadError(report.message);
    }
    if (report.error == ExitCode::usage) {
        throw FileError(report.message);
    }
    if (!isComplete) {
        std::cout << file << ": the host ended early"
                  << (WIFSIGNALED(status) ? std::string(": ") + strsignal(WTERMSIG(status)) : "") << '\n';
        report.count = {0, 1};
    }
    return report.count;
}

} // namespace

ExitCode exitCodeOf(const CalcError& error) {
    return error.kind() == ErrorKind::evaluation ? ExitCode::failure : ExitCode::parse;
}

ExitCode showInfo(const Host& host) {
    const PluginInfo* plugin = host.plugin();
    if (plugin == nullptr) {
        std::cerr << "fmhost: no plug-in is loaded" << std::endl;
        return ExitCode::usage;
    }
    const auto show = [](const char* name, const std::string& text) {
        std::cout << std::left << std::setw(12) << name << text << '\n';
    };
    show("Name:", toUtf8(plugin->name));
    show("Help text:", toUtf8(plugin->helpText));
    if (!plugin->helpAddress.empty()) {
        show("Help at:", toUtf8(plugin->helpAddress));
    }
    show("Options:", toUtf8(plugin->options));
    show("Interface:", std::to_string(plugin->version));
    show("Functions:", std::to_string(host.functions().size()));
    show("Steps:", std::to_string(host.steps().size()));
    show("File:", plugin->path.string());
    return ExitCode::ok;
}

ExitCode evaluateAll(Host& host, const std::vector<std::string>& calculations) {
    for (const std::string& text : calculations) {
        if (text == "-") {
            evaluateInput(host);
        } else {
            const auto source = std::make_shared<Source>("", fromUtf8(text));
            evaluateAndPrint(host, parseCalculation(source, host.session().functions()));
        }
    }
    return ExitCode::ok;
}

ExitCode runScript(Host& host, const std::string& script, const std::string& parameter, bool showResult) {
    std::filesystem::path file = script;
    if (file.extension() != ".fmscript") {
        const auto found = host.scripts().find(u"", fromUtf8(script));
        if (!found) {
            throw FileError("there is no script called " + script + "; expected a file " + script +
                            ".fmscript");
        }
        file = *found;
    }
    const Value result = host.run(file, Value::text(fromUtf8(parameter)));
    if (showResult && !result.isEmpty()) {
        std::cout << severalLines(result) << std::endl;
    }
    host.idle();
    return ExitCode::ok;
}

ExitCode runTests(const HostOptions& options, const std::vector<std::string>& files) {
    CalcTestCount total;
    for (const std::string& file : files) {
        const CalcTestCount count = files.size() == 1 ? runTest(options, file) : runTestApart(options, file);
        total.passed += count.passed;
        total.failed += count.failed;
    }
    std::cout << total.passed << " passed, " << total.failed << " failed\n";
    return total.failed == 0 ? ExitCode::ok : ExitCode::failure;
}

} // namespace host

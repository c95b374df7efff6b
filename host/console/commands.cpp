#include "host/console/commands.h"

#include "host/calc/parser.h"
#include "host/console/input_reader.h"
#include "host/console/show.h"
#include "host/values/text.h"

#include <iomanip>
#include <iostream>

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

} // namespace host

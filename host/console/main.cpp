// The command line.
#include "host/calc/stack_limit.h"
#include "host/console/check_command.h"
#include "host/console/commands.h"
#include "host/console/completers.h"
#include "host/console/format_command.h"
#include "host/console/function_list.h"
#include "host/console/host.h"
#include "host/console/language_server_command.h"
#include "host/console/prompt.h"
#include "host/console/test_run.h"
#include "host/values/formats.h"
#include "tools/command_line/questions.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <unistd.h>

namespace {

using namespace host;

// The options as given on the command line.
struct CommandLine {
    std::string plugin;
    bool noPlugin = false;
    int hostVersion = kHostVersion;
    long seconds = HostOptions().limit.count();
    long workSeconds = 0; // --timeout where it is given
    bool allowsNetwork = false;
    std::string folder;
    std::string locale;
    FunctionQuery functions;
    CheckPlan check;
    std::vector<std::string> calculations;
    std::string script;
    std::string parameter;
    bool trace = false;
    TestPlan tests;
    FormatCommand format;
    int indent = -1; // of formatted files; -1: their own
};

HostOptions hostOptions(const CommandLine& line) {
    HostOptions options;
    if (!line.noPlugin) {
        options.plugin = line.plugin.empty() ? defaultPlugin() : std::filesystem::path(line.plugin);
    }
    options.hostVersion = line.hostVersion;
    options.limit = std::chrono::seconds(line.seconds);
    options.trace = line.trace;
    options.allowsNetwork = line.allowsNetwork;
    options.workLimit = std::chrono::seconds(line.workSeconds);
    if (!line.folder.empty()) {
        options.scripts = line.folder;
    } else if (const auto folder = std::filesystem::path(line.script).parent_path(); !folder.empty()) {
        options.scripts = folder;
    }
    return options;
}

void defineOptions(CLI::App& app, CommandLine& line) {
    command_line::addVersion(app);
    app.fallthrough();
    app.add_option("--plugin", line.plugin,
                   "The plug-in: an .fmx file, a folder with one, or a bundle (.fmplugin) with one for Linux "
                   "[$FMHOST_PLUGIN, or the one that comes with this program]")
        ->type_name("PATH");
    app.add_flag("--no-plugin", line.noPlugin, "Load no plug-in: the language alone");
    app.add_option("--host-version", line.hostVersion,
                   "The interface version that the host says it has [" + std::to_string(kHostVersion) + "]")
        ->check(CLI::Range(0, 32767))
        ->type_name("N");
    app.add_option_function<long>(
           "--timeout",
           [&line](long seconds) {
               line.seconds = seconds;
               line.workSeconds = seconds;
           },
           "How long the plug-in may take for its start-up, and for its shut-down [" +
               std::to_string(line.seconds) +
               "], and each calculation and script [no limit]; 0 waits for ever")
        ->check(CLI::Range(0, 86400))
        ->type_name("SECONDS");
    app.add_option(
           "--locale", line.locale,
           "Dates, times and numbers as a file has them that was made there, for instance de_DE [en_US]")
        ->type_name("NAME");
    app.add_flag("--allow-network", line.allowsNetwork, "Scripts may use the network (Insert from URL)");
    app.add_option("--folder", line.folder,
                   "The database file: a folder of scripts [the script's own, or this one]")
        ->type_name("DIR");
}

void defineCommands(CLI::App& app, CommandLine& line) {
    CLI::App* functions = app.add_subcommand(
        "functions",
        "List the plug-in's functions and script steps: argument ranges, prototypes, descriptions");
    functions->add_flag("--json", line.functions.asJson, "As JSON, with ids and flags");
    functions->add_flag("--all", line.functions.all, "The functions of the language as well, by category");
    functions->add_flag(
        "--count", line.functions.counted,
        "How many each category has: that compute their answer, that answer as where there is no "
        "database, that need a field");
    functions->add_option("WORD", line.functions.word,
                          "Only functions, the language's too, with this word in name or description");
    functions->footer("Examples:\n  fmhost functions --json | jq '.[].name'\n  fmhost --no-plugin functions "
                      "--all --count");

    app.add_subcommand("info", "Show the plug-in's name, help text, options string and interface version")
        ->footer("Example:\n  fmhost info --plugin build/release/lib/Velocard");

    CLI::App* eval = app.add_subcommand("eval", "Evaluate calculations in one session, one result a line");
    eval->add_option("CALCULATION", line.calculations,
                     "A calculation; - reads calculations from standard input, one a line")
        ->required();
    eval->footer("A return in a result is shown as \u00B6. The first error ends the command.\n\nExamples:\n"
                 "  fmhost eval 'KORU_Version' 'Upper ( \"abc\" )'\n"
                 "  fmhost eval 'Let ( $x = 20 ; $x )' '$x + 1'\n"
                 "  fmhost eval -- '-7 * 6'    (nothing behind -- is an option)\n"
                 "  fmhost eval - < calculations.txt");

    CLI::App* run = app.add_subcommand("run", "Run a script");
    run->add_option("SCRIPT", line.script, "A file, or the name of a script in --folder")->required();
    run->add_option("--parameter", line.parameter, "What Get ( ScriptParameter ) answers in it")
        ->type_name("TEXT");
    run->add_flag("--trace", line.trace, "Print each step and the value of its calculation");
    run->footer("Prints what the script shows, then its result.\n\nExamples:\n"
                "  fmhost run examples/typical.fmscript --trace\n"
                "  fmhost run --folder scripts Import --parameter contacts.vcf");

    CLI::App* test = app.add_subcommand("test", "Run files of calculations with their expected results");
    test->add_option("FILE", line.tests.files,
                     "A .calc file, or a .md file with blocks fenced as calc; each is one session")
        ->required();
    test->add_option("--filter", line.tests.filter.only,
                     "Judge only calculations with this text in them, or in FILE:LINE; may be repeated")
        ->type_name("TEXT")
        ->expected(1)
        ->take_all();
    test->add_option("--exclude", line.tests.filter.without,
                     "Judge none with this text in them, or in FILE:LINE; may be repeated")
        ->type_name("TEXT")
        ->expected(1)
        ->take_all();
    test->add_option("--repeat", line.tests.repeat, "Run each file so often, each time from the start [1]")
        ->check(CLI::Range(1, 1'000'000))
        ->type_name("N");
    test->add_option("--junit", line.tests.junit, "Write a report for continuous integration (JUnit XML)")
        ->type_name("PATH");
    test->footer(
        "After a calculation stands one of\n  = RESULT     the whole result, with \u00B6 for a return\n"
        "  ~ PATTERN    a regular expression that matches the whole result\n"
        "  ! MESSAGE    a part of the error message\n\nA calculation that --filter or --exclude leaves out "
        "is evaluated all the same, since a file is "
        "one\nsession; it can not fail.\n\nExamples:\n  fmhost test tests/calculations/*.calc\n"
        "  fmhost test dates.calc --filter WeekOfYear --repeat 100\n"
        "  fmhost test dates.calc --filter dates.calc:12 --junit report.xml");

    CLI::App* check = app.add_subcommand(
        "check", "Say what is wrong with scripts, custom functions and calculations, without running them");
    check
        ->add_option(
            "PATH", line.check.paths,
            "A script (.fmscript), custom functions (.fmfn), calculations (.calc, .md), or a folder of them")
        ->required();
    check->add_option("--format", line.check.format, "text, json, sarif or github (workflow commands) [text]")
        ->check(CLI::IsMember({"text", "json", "sarif", "github"}));
    check->footer(
        "The custom functions beside a file are known in it. Exit status 3 when there is an error.\n\n"
        "Examples:\n  fmhost check scripts\n  fmhost --no-plugin check --format sarif scripts > check.sarif");

    CLI::App* format = app.add_subcommand("format", "Lay scripts and calculations out in FileMaker's style");
    format->add_option(
        "FILE", line.format.files,
        "A script (.fmscript), custom functions (.fmfn), calculations (.calc, .md): formatted in "
        "place; - or none: a calculation from standard input, to standard output");
    format->add_flag("--check", line.format.check,
                     "Write nothing; name the files that would change, and fail when there are any");
    format->add_option("--width", line.format.style.width, "Break longer lines; 0 breaks none [120]")
        ->check(CLI::Range(0, 10'000))
        ->type_name("N");
    format
        ->add_option("--indent", line.indent,
                     "Blanks for each level; 0 for a tab [tabs where the file has them, else 4]")
        ->check(CLI::Range(0, 16))
        ->type_name("N");
    format->footer(
        "Prints the names of the files that it changes. Line breaks and comments stay.\n\nExamples:\n"
        "  fmhost format scripts/*.fmscript\n"
        "  fmhost format --check scripts/*.fmscript functions/*.fmfn\n"
        "  echo 'let([x=1;y=x*2];x&y)' | fmhost format");

    app.add_subcommand("lsp", "Serve an editor: the Language Server Protocol over standard input and output")
        ->footer("Diagnostics, completion, hovers, signatures, definitions, formatting of scripts, custom "
                 "functions "
                 "and calculations.\n\nExample (an editor's configuration):\n  command: fmhost lsp --plugin "
                 "Some.fmx");

    app.require_subcommand(0, 1);
    app.footer("Without a command: a prompt on a terminal, else calculations from standard input.\n\n"
               "Exit status: 0 ok, 1 a calculation or test failed, 2 wrong usage, 3 a calculation or script "
               "can not be\n"
               "understood, 4 the plug-in can not be loaded, or registers what it must not.\n\nExamples:\n  "
               "fmhost\n  fmhost --no-plugin "
               "eval '1 + 1'\n"
               "  fmhost functions --plugin Other.fmx");
}

ExitCode runOnHost(Host& host, const CLI::App& app, const CommandLine& line) {
    if (app.got_subcommand("functions")) {
        return listFunctions(host, line.functions);
    }
    if (app.got_subcommand("info")) {
        return showInfo(host);
    }
    if (app.got_subcommand("eval")) {
        return evaluateAll(host, line.calculations);
    }
    if (app.got_subcommand("run")) {
        return runScript(host, line.script, line.parameter, !line.trace);
    }
    return evaluateAll(host, {"-"});
}

// Sets the formats of a locale; returns false for an unknown locale.
bool useLocale(const std::string& name) {
    const std::optional<Formats> formats = name.empty() ? Formats() : formatsOf(name);
    if (formats) {
        setFormats(*formats);
    }
    return formats.has_value();
}

ExitCode runCommand(const CLI::App& app, const CommandLine& line) {
    if (!useLocale(line.locale)) {
        std::cerr << "fmhost: there is no locale called " << line.locale
                  << "; expected a language and a country, for instance de_DE" << std::endl;
        return ExitCode::usage;
    }
    const HostOptions options = hostOptions(line);
    if (app.got_subcommand("test")) {
        return runTests(options, line.tests);
    }
    if (app.got_subcommand("format")) {
        FormatCommand command = line.format;
        if (line.indent >= 0) {
            command.style.indent =
                line.indent == 0 ? u"\t" : std::u16string(static_cast<size_t>(line.indent), u' ');
        }
        return runFormat(command);
    }
    if (app.got_subcommand("check")) {
        HostOptions checking = options;
        checking.loadsCustomFunctions = false;
        Host host(checking);
        CheckPlan plan = line.check;
        plan.folder = line.folder;
        return checkFiles(host, plan);
    }
    if (app.got_subcommand("lsp")) {
        return runLanguageServer(options);
    }
    Host host(options);
    if (app.get_subcommands().empty() && isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0) {
        return runPrompt(host);
    }
    const ExitCode code = runOnHost(host, app, line);
    if (code != ExitCode::ok) {
        return code;
    }
    return host.hasRefused() ? ExitCode::load : host.startedScriptFailed() ? ExitCode::failure : ExitCode::ok;
}

} // namespace

int main(int argc, char** argv) { // NOLINT(bugprone-exception-escape): writing the message may fail
    growStack();
    CommandLine line;
    CLI::App app("Loads a FileMaker plug-in, evaluates calculations and runs scripts with it.", "fmhost");
    defineOptions(app, line);
    defineCommands(app, line);
    if (const auto status = command_line::answerQuestion(argc, argv, app, completers())) {
        return *status;
    }
    try {
        app.parse(argc, argv);
        return static_cast<int>(runCommand(app, line));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? static_cast<int>(ExitCode::ok) : static_cast<int>(ExitCode::usage);
    } catch (const LoadError& error) {
        std::cerr << "fmhost: " << error.what() << std::endl;
        return static_cast<int>(ExitCode::load);
    } catch (const FileError& error) {
        std::cerr << "fmhost: " << error.what() << std::endl;
        return static_cast<int>(ExitCode::usage);
    } catch (const CalcError& error) {
        std::cerr << error.report() << std::endl;
        return static_cast<int>(exitCodeOf(error));
    } catch (const std::exception& error) {
        std::cerr << "fmhost: " << error.what() << std::endl;
        return static_cast<int>(ExitCode::failure);
    }
}

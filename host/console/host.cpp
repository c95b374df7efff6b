#include "host/console/host.h"

#include "host/console/exit_code.h"
#include "host/console/show.h"
#include "host/modules/installed_library.h"
#include "host/values/text.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <set>
#include <thread>
#include <unistd.h>

namespace host {

namespace fs = std::filesystem;

fs::path defaultPlugin() {
    if (const char* path = std::getenv("FMHOST_PLUGIN"); path != nullptr && *path != '\0') {
        return path;
    }
    return libraryFolder() / "Velocard";
}

namespace {

// Prints a message and ends the program at once: the plug-in blocks the main thread, or the program is
// exiting.
[[noreturn]] void endProgram(const std::string& message) {
    const std::string line = "fmhost: " + message + "\n";
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
    _exit(static_cast<int>(ExitCode::load));
}

} // namespace

Host::Host(const HostOptions& options)
    : library_(options.scripts, session_.functions(), steps_), runner_(session_, library_, *this),
      plugins_(session_, steps_,
               [this](const std::u16string& file, const std::u16string& script, const Value& parameter) {
                   const auto found = library_.find(file, script);
                   if (!found) {
                       return static_cast<int>(kScriptMissing);
                   }
                   queue_.push({*found, parameter});
                   return 0;
               }),
      trace_(options.trace) {
    describeEnvironment(options);
    if (options.plugin) {
        plugin_ = &plugins_.load(*options.plugin, {options.hostVersion, options.limit, endProgram});
    }
    printWarnings();
    session_.setTimeLimit(options.workLimit);
    if (options.loadsCustomFunctions) {
        std::vector<CalcError> errors;
        customFunctions_.load(readCustomFunctions(options.scripts), session_.functions(), errors);
        if (!errors.empty()) {
            throw CalcError(errors.front());
        }
    }
}

// Fills in what the Get functions return about the folder and the plug-in.
void Host::describeEnvironment(const HostOptions& options) {
    Environment& environment = session_.environment();
    std::error_code error;
    fs::path folder = fs::weakly_canonical(options.scripts, error);
    environment.folder = fromUtf8(folder.string());
    environment.allowsNetwork = options.allowsNetwork;
    environment.scriptNames = [folder] {
        std::set<std::u16string> names;
        std::error_code unreadable;
        for (const auto& entry : fs::directory_iterator(folder, unreadable)) {
            if (entry.path().extension() == ".fmscript") {
                names.insert(fromUtf8(entry.path().stem().string()));
            }
        }
        return std::vector<std::u16string>(names.begin(), names.end());
    };
    environment.plugins = [this] {
        std::vector<InstalledPlugin> list;
        if (plugin_ != nullptr) {
            list.push_back({plugin_->name, fromUtf8(std::to_string(plugin_->version))});
        }
        return list;
    };
}

Host::~Host() {
    std::cout.flush();
}

Value Host::run(const fs::path& script, Value parameter) {
    return runner_.run(script, std::move(parameter));
}

bool Host::idle(IdleLevel level, const std::function<void()>& beforeScript) {
    bool ran = false;
    const auto run = [&](const ScriptQueue::Request& request) {
        if (!ran && beforeScript) {
            beforeScript();
        }
        ran = true;
        runStarted(request);
    };
    plugins_.idle(level);
    while (runner_.canRun()) {
        const auto request = queue_.pop();
        if (!request) {
            break;
        }
        run(*request);
    }
    if (const auto request = runner_.canRun() ? runner_.dueScript() : std::nullopt) {
        run(*request);
    }
    printWarnings();
    return ran;
}

void Host::runStarted(const ScriptQueue::Request& request) {
    try {
        runner_.run(request.file, request.parameter);
        return;
    } catch (const CalcError& error) {
        std::cerr << error.report() << std::endl;
    } catch (const FileError& error) {
        std::cerr << "fmhost: " << error.what() << std::endl;
    }
    startedScriptFailed_ = true;
}

// While a script is paused, plug-ins get idle messages and the scripts that they start run. A script that is
// still running when the pause is over prolongs it.
void Host::paused(std::chrono::duration<double> time) {
    using Clock = std::chrono::steady_clock;
    constexpr auto kInterval = std::chrono::milliseconds(50);
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(time);
    const auto tell = [this] { // nobody works with this host then: its user is idle, too
        idle(IdleLevel::userIdle);
        idle(IdleLevel::scriptPaused);
    };
    tell();
    while (Clock::now() < end && session_.reasonToStopNow() == nullptr) {
        std::this_thread::sleep_for(std::min<Clock::duration>(kInterval, end - Clock::now()));
        tell();
    }
}

void Host::dialog(const Value& title, const Value& message) {
    const std::string head = severalLines(title);
    const std::string body = severalLines(message);
    std::cout << head << (head.empty() || body.empty() ? "" : "\n") << body << std::endl;
}

void Host::beep() {
    if (isatty(STDOUT_FILENO) != 0) {
        std::cout << '\a' << std::flush;
    }
}

// Prints a step as it is written in the script, and its value below it.
void Host::evaluated(const Script& script, const Step& step, const Value& result) {
    if (trace_) {
        const std::string value = oneLine(result);
        std::cout << toUtf8(script.source->text().substr(step.begin, step.end - step.begin)) << "\n    \u2192"
                  << (value.empty() ? "" : " ") << value << std::endl;
    }
}

void Host::printWarnings() {
    for (const std::string& warning : plugins_.takeWarnings()) {
        std::cerr << "fmhost: " << warning << std::endl;
    }
}

} // namespace host

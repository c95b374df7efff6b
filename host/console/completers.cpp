#include "host/console/completers.h"

#include "host/console/function_list.h"
#include "host/console/host.h"
#include "host/values/formats.h"

#include <filesystem>

namespace host {

namespace {

using command_line::Completion;
using command_line::Typed;

// Who presses Tab does not wait for a plug-in that hangs.
constexpr std::chrono::seconds kPatience{5};

Completion functionWords(const Typed& typed) {
    HostOptions options;
    options.loadsCustomFunctions = false;
    options.limit = kPatience;
    const std::string plugin = typed.value("--plugin");
    if (!typed.options.contains("--no-plugin")) {
        options.plugin = plugin.empty() ? defaultPlugin() : std::filesystem::path(plugin);
    }
    Completion completion;
    const auto addNames = [&] {
        const Host host(options);
        for (const FunctionName& function : functionNames(host)) {
            completion.candidates.push_back({function.name, function.prototype});
        }
    };
    try {
        addNames();
    } catch (const LoadError&) {
        options.plugin.reset();
        addNames();
    }
    return completion;
}

// Completes files, and the names of the scripts in the folder that the line names.
Completion scripts(const Typed& typed) {
    Completion completion;
    completion.paths = Completion::Paths::files;
    std::error_code none;
    const std::string folder = typed.value("--folder");
    for (const auto& entry : std::filesystem::directory_iterator(folder.empty() ? "." : folder, none)) {
        if (entry.path().extension() == ".fmscript" && !folder.empty()) {
            completion.candidates.push_back({entry.path().stem().string(), ""});
        }
    }
    return completion;
}

Completion locales(const Typed& /*typed*/) {
    Completion completion;
    for (const std::string& name : knownLocales()) {
        completion.candidates.push_back({name, ""});
    }
    return completion;
}

} // namespace

command_line::Completers completers() {
    return {{"WORD", functionWords}, {"SCRIPT", scripts}, {"--locale", locales}};
}

} // namespace host

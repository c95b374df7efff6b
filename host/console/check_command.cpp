#include "host/console/check_command.h"

#include "host/calc/custom_functions.h"
#include "host/check/checker.h"
#include "host/console/diagnostic_formats.h"

#include <algorithm>
#include <iostream>
#include <set>

namespace host {

namespace {

namespace fs = std::filesystem;

// Returns the files that a path stands for, in the order of their names.
std::vector<fs::path> filesOf(const std::string& path) {
    std::error_code error;
    if (!fs::is_directory(path, error)) {
        if (!fileKind(path)) {
            throw FileError("can not check " + path +
                            "; expected a file .fmscript, .fmfn, .calc or .md, or a folder");
        }
        return {path};
    }
    std::set<fs::path> files;
    for (fs::recursive_directory_iterator at(path, error), end; !error && at != end; at.increment(error)) {
        const auto kind = fileKind(at->path());
        if (kind && kind != FileKind::markdown && at->is_regular_file(error)) {
            files.insert(at->path());
        }
    }
    if (error) {
        throw FileError("can not read " + path + ": " + error.message());
    }
    return {files.begin(), files.end()};
}

std::string counted(int64_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

} // namespace

ExitCode checkFiles(Host& host, const CheckPlan& plan) {
    std::vector<Diagnostic> found;
    int64_t files = 0;
    CustomFunctions functions;
    std::optional<fs::path> loaded; // the folder whose functions are known
    std::optional<ScriptLibrary> scripts;
    const Vocabulary known{host.session().functions(), host.stepRegistry(),
                           [&scripts](std::u16string_view file, std::u16string_view name) {
                               return scripts->find(file, name).has_value();
                           }};
    for (const std::string& path : plan.paths) {
        for (const fs::path& file : filesOf(path)) {
            const fs::path folder =
                plan.folder.empty() ? fs::absolute(file).parent_path() : fs::absolute(plan.folder);
            if (folder != loaded) {
                std::vector<CalcError> told; // ignored, as the check of each file reports them
                functions.load(readCustomFunctions(folder), host.session().functions(), told);
                scripts.emplace(folder, known.functions, known.steps);
                loaded = folder;
            }
            const auto wrong = check(readSource(file), *fileKind(file), known);
            found.insert(found.end(), wrong.begin(), wrong.end());
            ++files;
        }
    }
    std::vector<CalcError> none;
    functions.load({}, host.session().functions(), none);
    printDiagnostics(std::cout, found, plan.format);
    const auto errors = std::count_if(found.begin(), found.end(), [](const Diagnostic& diagnostic) {
        return diagnostic.severity == Severity::error;
    });
    const auto warnings = static_cast<int64_t>(found.size()) - errors;
    std::cerr << counted(files, "file") << ": " << counted(errors, "error") << ", "
              << counted(warnings, "warning") << std::endl;
    return errors == 0 ? ExitCode::ok : ExitCode::parse;
}

} // namespace host

#include "host/script/script_library.h"

#include "host/values/text.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <set>

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kScriptEnding = ".fmscript";
constexpr std::string_view kFunctionsEnding = ".fmfn";

// Returns the folded name of a database file, without its extension.
std::u16string databaseKey(std::u16string_view name) {
    return foldName(name.substr(0, name.rfind(u'.')));
}

} // namespace

SourcePtr readSource(const fs::path& file) {
    if (fs::is_directory(file)) {
        throw FileError(file.string() + " is a folder");
    }
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        throw FileError("can not read " + file.string() + ": " + std::strerror(errno));
    }
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    if (in.bad()) {
        throw FileError("can not read " + file.string());
    }
    std::u16string text = fromUtf8(bytes);
    if (toUtf8(text) != bytes) {
        throw FileError(file.string() + " is not a UTF-8 text");
    }
    return std::make_shared<Source>(file.string(), std::move(text));
}

std::vector<SourcePtr> readCustomFunctions(const fs::path& folder) {
    std::set<fs::path> files;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (entry.path().extension() == kFunctionsEnding) {
            files.insert(entry.path());
        }
    }
    std::vector<SourcePtr> sources;
    sources.reserve(files.size());
    for (const fs::path& file : files) {
        sources.push_back(readSource(file));
    }
    return sources;
}

ScriptLibrary::ScriptLibrary(const fs::path& folder, const FunctionRegistry& functions,
                             const StepRegistry& externalSteps)
    : folder_(fs::absolute(folder).lexically_normal()), functions_(functions), externalSteps_(externalSteps) {
    if (!folder_.has_filename()) {
        folder_ = folder_.parent_path(); // "scripts/" means "scripts"
    }
}

std::optional<fs::path> ScriptLibrary::find(std::u16string_view database, std::u16string_view name) const {
    std::error_code error;
    fs::path folder = folder_;
    const std::u16string wanted = databaseKey(database);
    if (!wanted.empty() && wanted != databaseKey(fromUtf8(folder_.filename().string()))) {
        folder.clear();
        for (const fs::directory_entry& entry : fs::directory_iterator(folder_.parent_path(), error)) {
            if (entry.is_directory(error) &&
                databaseKey(fromUtf8(entry.path().filename().string())) == wanted) {
                folder = entry.path();
            }
        }
    }
    const std::u16string key = foldName(name);
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        const fs::path& path = entry.path();
        if (path.extension() == kScriptEnding && foldName(fromUtf8(path.stem().string())) == key) {
            return path;
        }
    }
    return std::nullopt;
}

ScriptPtr ScriptLibrary::load(const fs::path& file) {
    std::error_code error;
    const fs::file_time_type changed = fs::last_write_time(file, error);
    const auto known = loaded_.find(file);
    if (known != loaded_.end() && known->second.changed == changed) {
        return known->second.script;
    }
    auto script = std::make_shared<const Script>(parseScript(readSource(file), functions_, externalSteps_));
    loaded_.insert_or_assign(file, Loaded{changed, script});
    return script;
}

} // namespace host

#include "host/loader/plugin_file.h"

#include "host/loader/load_error.h"
#include "host/loader/machine.h"

#include <algorithm>
#include <string>
#include <vector>

namespace host {

namespace fs = std::filesystem;

namespace {

constexpr const char* kLibraryEnding = ".fmx";
constexpr const char* kBundleEnding = ".fmplugin";
constexpr const char* kBundleFolder = "Contents/Resources/Linux";

// Returns the .fmx files in a folder, and those in its bundles.
std::vector<fs::path> librariesIn(const fs::path& folder) {
    std::vector<fs::path> result;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        const fs::path& path = entry.path();
        std::error_code unknown;
        if (path.extension() == kLibraryEnding && !entry.is_directory(unknown)) {
            result.push_back(path);
        } else if (path.extension() == kBundleEnding && fs::is_directory(path / kBundleFolder, unknown)) {
            const std::vector<fs::path> inside = librariesIn(path / kBundleFolder);
            result.insert(result.end(), inside.begin(), inside.end());
        }
    }
    if (error) {
        throw LoadError("can not read the folder " + folder.string() + ": " + error.message());
    }
    std::sort(result.begin(), result.end());
    return result;
}

fs::path onlyLibraryOf(const fs::path& folder) {
    std::error_code unknown;
    const bool isBundle = folder.extension() == kBundleEnding;
    const fs::path inside = isBundle ? folder / kBundleFolder : folder;
    if (isBundle && !fs::is_directory(inside, unknown)) {
        throw LoadError("the bundle " + folder.string() + " holds no plug-in for Linux: it has no folder " +
                        kBundleFolder);
    }
    const std::vector<fs::path> libraries = librariesIn(inside);
    if (libraries.empty()) {
        throw LoadError("the folder " + inside.string() + " holds no .fmx file");
    }
    if (libraries.size() > 1) {
        std::string names;
        for (const fs::path& library : libraries) {
            names += (names.empty() ? "" : ", ") + library.filename().string();
        }
        throw LoadError("the folder " + inside.string() + " holds more than one .fmx file (" + names +
                        "); name the one to load");
    }
    return libraries.front();
}

} // namespace

fs::path pluginFile(const fs::path& path) {
    std::error_code error;
    // "Some.fmplugin/" means "Some.fmplugin".
    const fs::path named = path.has_filename() ? path : path.parent_path();
    const fs::file_status status = fs::status(named, error);
    if (!fs::exists(status)) {
        throw LoadError("there is no plug-in at " + path.string() +
                        (error && status.type() == fs::file_type::none ? ": " + error.message() : ""));
    }
    fs::path file = fs::absolute(fs::is_directory(status) ? onlyLibraryOf(named) : named);
    if (!fs::is_regular_file(file, error)) {
        throw LoadError("can not load " + file.string() + ": it is neither a file nor a folder");
    }
    if (const std::string machine = foreignMachine(file); !machine.empty()) {
        throw LoadError("can not load " + file.string() + ": it is built for " + machine +
                        ", this host for " + ownMachine());
    }
    if (isCutShort(file)) {
        throw LoadError("can not load " + file.string() + ": it is cut short; copy it again");
    }
    return file;
}

} // namespace host

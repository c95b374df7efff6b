#pragma once

// The scripts on disk. A folder stands for a database file; a script is a file NAME.fmscript in it. Names are
// compared without regard to case.

#include "host/script/script.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

namespace host {

// Thrown when a file cannot be read or written; what() names it.
class FileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Returns the contents of a UTF-8 file as a source named by the file's path. Throws FileError, also when the
// file is not UTF-8.
SourcePtr readSource(const std::filesystem::path& file);

// Returns the files NAME.fmfn of a folder, in the order of their names. Throws FileError.
std::vector<SourcePtr> readCustomFunctions(const std::filesystem::path& folder);

using ScriptPtr = std::shared_ptr<const Script>;

// Finds scripts, and keeps those that were parsed.
class ScriptLibrary {
  public:
    // [folder] is the database file for scripts that are named without one.
    ScriptLibrary(const std::filesystem::path& folder, const FunctionRegistry& functions,
                  const StepRegistry& externalSteps);

    // Returns the file of a script; nothing when there is none. [database] is empty, or the name of the
    // folder or of one beside it, with or without an extension. Thread-safe: it only reads folders.
    std::optional<std::filesystem::path> find(std::u16string_view database, std::u16string_view name) const;

    // Returns the parsed script in a file; reads it again when the file has changed. Throws CalcError,
    // FileError.
    ScriptPtr load(const std::filesystem::path& file);

  private:
    struct Loaded {
        std::filesystem::file_time_type changed;
        ScriptPtr script;
    };

    std::filesystem::path folder_;
    const FunctionRegistry& functions_;
    const StepRegistry& externalSteps_;
    std::map<std::filesystem::path, Loaded> loaded_;
};

} // namespace host

#pragma once

// Where scripts live: a "database file" is a folder, a script is a file NAME.fmscript in it. Names compare
// without regard to case.

#include "host/script/script.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>

namespace host {

// A file that can not be read; what() names it.
class FileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The whole of a file in UTF-8 as a source that has the file's path for its name. Throws FileError, also for
// a file that is no UTF-8 text.
SourcePtr readSource(const std::filesystem::path& file);

using ScriptPtr = std::shared_ptr<const Script>;

class ScriptLibrary {
  public:
    // [folder] is the database file that names without one refer to.
    ScriptLibrary(const std::filesystem::path& folder, const FunctionRegistry& functions,
                  const StepRegistry& externalSteps);

    // The file of a script; nothing when there is none. [database] is empty, or the name of the folder or of
    // one beside it, with or without an ending. Reads folders only: safe on any thread.
    std::optional<std::filesystem::path> find(std::u16string_view database, std::u16string_view name) const;

    // The parsed script of a file, read again when the file has changed. Throws CalcError, FileError.
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

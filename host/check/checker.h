#pragma once

// Checks scripts, custom functions and files of calculations without running them, and reports everything
// that is wrong: for `fmhost check`, and for editors.

#include "host/calc/external_function.h"
#include "host/calc/source.h"
#include "host/script/external_step.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

enum class Severity : uint8_t { error, warning };

// Something that is wrong in a file, and where.
struct Diagnostic {
    std::string file; // the name of the source
    Place begin;      // of what is wrong, half open; lines and columns (code points) count from 1
    Place end;
    std::string message; // one line of UTF-8
    int code;            // FileMaker's error code, for instance 1208
    Severity severity = Severity::error;
};

// What a file holds.
enum class FileKind : uint8_t {
    calculation,     // one calculation
    calculations,    // .calc: calculations with their expected results
    markdown,        // .md: the blocks fenced as calc
    script,          // .fmscript
    customFunctions, // .fmfn
};

// Returns the kind of a file by its extension; nothing for any other extension.
std::optional<FileKind> fileKind(const std::filesystem::path& file);

// The names that files may use besides those of the language: those that plug-ins have registered, and custom
// functions.
struct Vocabulary {
    const FunctionRegistry& functions;
    const StepRegistry& steps;
    // Returns whether a database file (empty: the current one) has a script of that name. When it is not set,
    // names of scripts are not checked.
    std::function<bool(std::u16string_view file, std::u16string_view name)> hasScript = {};
};

// Checks a text and returns what is wrong with it, in the order of the text. A calculation that a test
// expects to fail is not checked.
std::vector<Diagnostic> check(const SourcePtr& text, FileKind kind, const Vocabulary& known);

} // namespace host

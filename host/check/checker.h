#pragma once

// Reads scripts, custom functions and files of calculations without running them, and tells everything that is
// wrong: for `fmhost check`, and for editors.

#include "host/calc/external_function.h"
#include "host/calc/source.h"
#include "host/script/external_step.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace host {

enum class Severity : uint8_t { error, warning };

// Something that is wrong at a place of a file.
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

// Tells it by the file's ending; nothing for other endings.
std::optional<FileKind> fileKind(const std::filesystem::path& file);

// What files may use besides the language itself: what plug-ins have registered, custom functions.
struct Vocabulary {
    const FunctionRegistry& functions;
    const StepRegistry& steps;
};

// Reads a text and answers what is wrong, in the order of places. A calculation that a test expects to fail is
// not looked at.
std::vector<Diagnostic> check(const SourcePtr& text, FileKind kind, const Vocabulary& known);

} // namespace host

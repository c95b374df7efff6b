#pragma once

// What helps while writing: completions, the function under the cursor, where a script or custom function is.

#include "host/editor/document.h"
#include "host/editor/sheets.h"

namespace host {

// The numbers are those of the Language Server Protocol.
enum class CompletionKind : int {
    function = 3,
    variable = 6,
    property = 10,
    keyword = 14,
    file = 17,
    constant = 21
};

struct Completion {
    CompletionKind kind;
    std::string name;
    std::string prototype;
    std::string description;
};

struct CompletionList {
    size_t begin = 0; // of what the names replace, up to the cursor
    std::vector<Completion> items;
};

// The names that may stand at [offset] and begin with what is written there: steps at the start of a script's
// line, the options of a step between its brackets, names of Get in its parentheses, scripts in the quotes of
// Perform Script, else functions, constants and the variables of the text.
CompletionList completions(const Document& document, size_t offset, const Vocabulary& known);

// The sheet of the name at [offset]; at the start of a script's line of its step.
std::optional<Sheet> sheetAt(const Document& document, size_t offset, const Vocabulary& known);

// A call that is open at a place, and which of its arguments stands there, from 0.
struct CallAt {
    Sheet sheet;
    size_t argument = 0;
};
std::optional<CallAt> callAt(const Document& document, size_t offset, const Vocabulary& known);

struct Definition {
    std::filesystem::path file;
    EditorPosition place;
};

// The file of the script in quotes, or of the custom function, that is named at [offset]; it is looked for in
// the document's folder.
std::optional<Definition> definitionAt(const Document& document, size_t offset);

} // namespace host

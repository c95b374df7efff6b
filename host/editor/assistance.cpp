#include "host/editor/assistance.h"

#include "host/calc/lexer.h"
#include "host/calc/registry.h"
#include "host/editor/step_options.h"
#include "host/script/script_library.h"
#include "host/script/step_parameter.h"
#include "host/values/text.h"

#include <algorithm>
#include <set>

namespace host {

namespace fs = std::filesystem;

namespace {

CompletionKind kindOf(SheetKind kind) {
    switch (kind) {
    case SheetKind::function:
        return CompletionKind::function;
    case SheetKind::get:
        return CompletionKind::property;
    case SheetKind::constant:
        return CompletionKind::constant;
    case SheetKind::step:
        return CompletionKind::keyword;
    }
    return CompletionKind::function;
}

bool startsWith(const std::string& name, const std::u16string& foldedPrefix) {
    return foldName(fromUtf8(name)).starts_with(foldedPrefix);
}

// The tokens that end before [offset]; those before an error when there is one.
std::vector<Token> tokensBefore(const Document& document, size_t offset, size_t begin) {
    std::vector<Token> tokens;
    Lexer lexer(std::make_shared<Source>("", document.text().substr(0, offset)), begin);
    try {
        for (Token token = lexer.next(); token.kind != TokenKind::end; token = lexer.next()) {
            tokens.push_back(std::move(token));
        }
    } catch (const CalcError&) { // an open text: the cursor stands in it
    }
    return tokens;
}

// Whether nothing but the name of a step stands before [offset] in its line of a script.
bool isStepName(const Document& document, size_t offset, const StepOptions& options) {
    const std::u16string line = normalName(document.lineBefore(offset));
    const bool isComment = line.starts_with(u"#") || line.starts_with(u"//");
    return document.kind() == FileKind::script && !options.isInside && !isComment &&
           line.find(u'[') == std::u16string::npos;
}

// The name in quotes that [offset] stands in, when its line performs a script: its first offset.
std::optional<size_t> scriptName(const Document& document, size_t offset) {
    const std::u16string line = document.lineBefore(offset);
    const bool performs = foldCase(line).find(u"perform script") != std::u16string::npos ||
                          foldCase(line).find(u"install ontimer script") != std::u16string::npos;
    const size_t quote = line.find_last_of(u"\"\u201C\u201D");
    const auto quotes = std::count_if(
        line.begin(), line.end(), [](char16_t c) { return c == u'"' || c == u'\u201C' || c == u'\u201D'; });
    if (!performs || quotes % 2 == 0) {
        return std::nullopt;
    }
    return offset - line.size() + quote + 1;
}

// Scripts of the document's folder, by name.
std::vector<std::string> scriptNames(const Document& document) {
    std::set<std::string> names;
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(document.file().parent_path(), error)) {
        if (entry.path().extension() == ".fmscript") {
            names.insert(entry.path().stem().string());
        }
    }
    return {names.begin(), names.end()};
}

std::set<std::string> variables(const Document& document, size_t besides) {
    std::set<std::string> names;
    const std::u16string& text = document.text();
    for (size_t at = 0; (at = text.find(u'$', at)) != std::u16string::npos;) {
        const std::u16string name = document.wordAt(at);
        if (at != besides && name.find_first_not_of(u'$') != std::u16string::npos) {
            names.insert(toUtf8(name));
        }
        at += std::max<size_t>(name.size(), 1);
    }
    return names;
}

// The innermost call that is open after the tokens: the place of its "(", and how many semicolons follow.
struct OpenCall {
    size_t name;
    size_t argument;
};
std::optional<OpenCall> openCall(const std::vector<Token>& tokens) {
    int closed = 0;
    size_t semicolons = 0;
    for (size_t i = tokens.size(); i > 0; --i) {
        const TokenKind kind = tokens[i - 1].kind;
        if (kind == TokenKind::rightParen || kind == TokenKind::rightBracket) {
            ++closed;
        } else if (kind == TokenKind::leftParen || kind == TokenKind::leftBracket) {
            const bool isCall =
                kind == TokenKind::leftParen && i > 1 && tokens[i - 2].kind == TokenKind::identifier;
            if (closed == 0 && isCall) {
                return OpenCall{i - 2, semicolons};
            }
            if (closed == 0) {
                semicolons = 0; // of a list in an argument, or of nothing that counts
            }
            closed -= closed > 0 ? 1 : 0;
        } else if (kind == TokenKind::semicolon && closed == 0) {
            ++semicolons;
        }
    }
    return std::nullopt;
}

// Where the calculation around [offset] begins: in a script behind the bracket of its step.
size_t calculationBegin(const Document& document, size_t offset) {
    if (document.kind() == FileKind::calculation || document.kind() == FileKind::customFunctions) {
        return 0;
    }
    const std::u16string line = document.lineBefore(offset);
    const size_t bracket = document.kind() == FileKind::script ? line.find(u'[') : std::u16string::npos;
    return offset - line.size() + (bracket == std::u16string::npos ? 0 : bracket + 1);
}

} // namespace

CompletionList completions(const Document& document, size_t offset, const Vocabulary& known) {
    CompletionList result;
    const auto add = [&result](CompletionKind kind, const std::string& name) {
        result.items.push_back({kind, name, "", ""});
    };
    if (const auto script = scriptName(document, offset)) {
        result.begin = *script;
        for (const std::string& name : scriptNames(document)) {
            if (startsWith(name, foldName(document.text().substr(*script, offset - *script)))) {
                add(CompletionKind::file, name);
            }
        }
        return result;
    }
    const StepOptions options = stepOptions(document, offset, known);
    const bool isStep = isStepName(document, offset, options);
    const std::u16string line = document.lineBefore(offset);
    result.begin = isStep ? offset - line.size() + std::min(line.find_first_not_of(u" \t"), line.size())
                          : document.wordBegin(offset);
    const std::u16string prefix = foldName(document.text().substr(result.begin, offset - result.begin));
    if (prefix.starts_with(u"$")) {
        for (const std::string& name : variables(document, result.begin)) {
            if (startsWith(name, prefix)) {
                add(CompletionKind::variable, name);
            }
        }
        return result;
    }
    for (const std::u16string& word : options.words) {
        result.items.push_back({CompletionKind::keyword, toUtf8(word), toUtf8(options.prototype), ""});
    }
    if (!isStep && (options.isWhole || (!options.words.empty() && options.begin < result.begin))) {
        result.begin = options.begin; // before the first word of a label of several words
        return result;
    }
    const std::vector<Token> tokens =
        tokensBefore(document, result.begin, calculationBegin(document, offset));
    const std::optional<OpenCall> call = isStep ? std::nullopt : openCall(tokens);
    const bool isGet = call && foldName(tokens[call->name].text) == u"get";
    for (const Sheet& sheet : allSheets(known)) {
        const bool isWanted = isStep ? sheet.kind == SheetKind::step
                              : isGet
                                  ? sheet.kind == SheetKind::get
                                  : sheet.kind == SheetKind::function || sheet.kind == SheetKind::constant;
        if (isWanted && startsWith(sheet.name, prefix)) {
            result.items.push_back({kindOf(sheet.kind), sheet.name, sheet.prototypes[0], sheet.description});
        }
    }
    return result;
}

std::optional<Sheet> sheetAt(const Document& document, size_t offset, const Vocabulary& known) {
    if (isStepName(document, offset, stepOptions(document, offset, known))) {
        const size_t begin = offset - document.lineBefore(offset).size();
        const size_t end = std::min(document.text().find_first_of(u"[\r\n", begin), document.text().size());
        return findSheet(toUtf8(normalName(document.text().substr(begin, end - begin))), known);
    }
    return findSheet(toUtf8(document.wordAt(offset)), known);
}

std::optional<CallAt> callAt(const Document& document, size_t offset, const Vocabulary& known) {
    const std::vector<Token> tokens = tokensBefore(document, offset, calculationBegin(document, offset));
    const std::optional<OpenCall> call = openCall(tokens);
    const auto sheet = call ? findSheet(toUtf8(tokens[call->name].text), known) : std::nullopt;
    return sheet ? std::optional(CallAt{*sheet, call->argument}) : std::nullopt;
}

std::optional<Definition> definitionAt(const Document& document, size_t offset) {
    const fs::path folder = document.file().parent_path();
    if (const auto begin = scriptName(document, offset)) {
        const size_t end =
            std::min(document.text().find_first_of(u"\"\u201D\r\n", *begin), document.text().size());
        const std::u16string key = foldName(document.text().substr(*begin, end - *begin));
        for (const std::string& name : scriptNames(document)) {
            if (foldName(fromUtf8(name)) == key) {
                return Definition{folder / (name + ".fmscript"), {}};
            }
        }
        return std::nullopt;
    }
    const std::u16string key = foldName(document.wordAt(offset));
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
        if (key.empty() || entry.path().extension() != ".fmfn") {
            continue;
        }
        try {
            const Document file(entry.path(), std::u16string(readSource(entry.path())->text()));
            for (size_t line = 0; file.offset({line, 0}) < file.text().size(); ++line) {
                if (foldName(file.wordAt(file.offset({line, 0}))) == key) {
                    return Definition{entry.path(), {line, 0}};
                }
            }
        } catch (const FileError&) { // no text: it defines nothing
        }
    }
    return std::nullopt;
}

} // namespace host

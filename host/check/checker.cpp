#include "host/check/checker.h"

#include "host/calc/custom_functions.h"
#include "host/calc/lexer.h"
#include "host/calc/parser.h"
#include "host/check/calc_file.h"
#include "host/script/script.h"
#include "host/script/step_failure.h"
#include "host/values/text.h"

#include <algorithm>

namespace host {

namespace {

// Returns the end of the word at [offset]; one character further when there is no word, but at most the end
// of the text.
size_t endOfWord(const SourcePtr& source, size_t offset) {
    try {
        const Token token = Lexer(source, offset).next();
        if (token.begin == offset && token.end > offset) {
            return token.end;
        }
    } catch (const CalcError&) { // an open text or an unexpected character: only that character
    }
    return std::min(offset + 1, source->text().size());
}

Diagnostic diagnostic(const CalcError& error) {
    const SourcePtr& source = error.source();
    const Place end = source->place(endOfWord(source, error.offset()));
    return {source->name(), error.place(), end, error.what(), static_cast<int>(error.code())};
}

// Whether two paths lead to one file, which need not be there.
bool isSameFile(const std::string& a, const std::string& b) {
    const auto whole = [](const std::string& path) {
        return std::filesystem::absolute(path).lexically_normal();
    };
    return a == b || (!a.empty() && !b.empty() && whole(a) == whole(b));
}

class Checker {
  public:
    explicit Checker(const Vocabulary& known) : known_(known) {}

    std::vector<Diagnostic> check(const SourcePtr& text, FileKind kind) {
        switch (kind) {
        case FileKind::calculation:
            calculation(text);
            break;
        case FileKind::calculations:
        case FileKind::markdown:
            calculations(*text, kind == FileKind::markdown);
            break;
        case FileKind::script:
            script(text);
            break;
        case FileKind::customFunctions:
            customFunctions(text);
            break;
        }
        std::stable_sort(found_.begin(), found_.end(), [](const Diagnostic& a, const Diagnostic& b) {
            return std::pair(a.begin.line, a.begin.column) < std::pair(b.begin.line, b.begin.column);
        });
        return std::move(found_);
    }

  private:
    template <class Reading>
    void attempt(Reading read) {
        try {
            read();
        } catch (const CalcError& error) {
            found_.push_back(diagnostic(error));
        }
    }

    void calculation(const SourcePtr& text) {
        attempt([&] { parseCalculation(text, known_.functions); });
    }

    void add(const std::vector<CalcError>& errors) {
        for (const CalcError& error : errors) {
            found_.push_back(diagnostic(error));
        }
    }

    void script(const SourcePtr& text) {
        std::vector<CalcError> errors;
        const Script script = parseScript(text, known_.functions, known_.steps, errors);
        add(errors);
        for (const Step& step : script.steps) {
            for (size_t i = 0; known_.hasScript && step.own != nullptr && i < step.arguments.size(); ++i) {
                if (step.own->parameters[i].kind == StepParameter::Kind::script) {
                    scriptName(text, step, step.arguments[i]);
                }
            }
        }
    }

    // Warns of a fixed name of a script that there is not.
    void scriptName(const SourcePtr& text, const Step& step, const StepArgument& argument) {
        const auto* literal = argument.value ? std::get_if<Literal>(&argument.value->root.form) : nullptr;
        const std::u16string name = literal != nullptr ? literal->value.asText() : argument.script;
        if (!name.empty() && !known_.hasScript(argument.file, name)) {
            found_.push_back({text->name(), text->place(step.begin), text->place(step.end),
                              "there is no script called " + toUtf8(name), kScriptMissing,
                              Severity::warning});
        }
    }

    // Checks definitions against all functions but those that the file has defined before.
    void customFunctions(const SourcePtr& text) {
        FunctionRegistry others;
        for (const auto& [key, function] : known_.functions.all()) {
            const auto* custom = dynamic_cast<const CustomFunction*>(function.get());
            if (custom == nullptr || !isSameFile(custom->source()->name(), text->name())) {
                others.add(function);
            }
        }
        std::vector<CalcError> errors;
        CustomFunctions().load({text}, others, errors);
        add(errors);
    }

    void calculations(const Source& file, bool isMarkdown) {
        const CalcTestFile test = parseCalcTest(toUtf8(file.text()), isMarkdown);
        for (const CalcTestFault& fault : test.faults) {
            const Place begin{static_cast<uint32_t>(fault.line), 1};
            found_.push_back({file.name(), begin, begin, fault.message, static_cast<int>(CalcCode::generic)});
        }
        for (const CalcCheck& check : test.checks) {
            if (check.kind != CheckKind::fails) {
                calculation(std::make_shared<Source>(file.name(), fromUtf8(check.text),
                                                     static_cast<uint32_t>(check.line)));
            }
        }
    }

    const Vocabulary& known_;
    std::vector<Diagnostic> found_;
};

} // namespace

std::optional<FileKind> fileKind(const std::filesystem::path& file) {
    static constexpr std::pair<std::string_view, FileKind> kEndings[] = {
        {".calc", FileKind::calculations},
        {".md", FileKind::markdown},
        {".fmscript", FileKind::script},
        {".fmfn", FileKind::customFunctions},
    };
    for (const auto& [ending, kind] : kEndings) {
        if (file.extension() == ending) {
            return kind;
        }
    }
    return std::nullopt;
}

std::vector<Diagnostic> check(const SourcePtr& text, FileKind kind, const Vocabulary& known) {
    return Checker(known).check(text, kind);
}

} // namespace host

#include "host/check/checker.h"

#include "host/calc/lexer.h"
#include "host/calc/parser.h"
#include "host/check/calc_file.h"
#include "host/script/script.h"
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

    void script(const SourcePtr& text) {
        std::vector<CalcError> errors;
        parseScript(text, known_.functions, known_.steps, errors);
        for (const CalcError& error : errors) {
            found_.push_back(diagnostic(error));
        }
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

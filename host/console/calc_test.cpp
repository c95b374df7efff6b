#include "host/console/calc_test.h"

#include "host/calc/parser.h"
#include "host/console/host.h"
#include "host/console/show.h"
#include "host/values/text.h"

#include <memory>
#include <optional>
#include <ostream>
#include <unicode/uregex.h>

namespace host {

namespace {

// True when [pattern] matches the whole of [text]; nothing when the pattern is none.
std::optional<bool> matches(const std::string& pattern, const std::string& text) {
    const std::u16string expression = fromUtf8(pattern);
    const std::u16string subject = fromUtf8(text);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<URegularExpression, decltype(&uregex_close)> regex(
        uregex_open(expression.data(), static_cast<int32_t>(expression.size()), 0, nullptr, &status),
        uregex_close);
    uregex_setText(regex.get(), subject.data(), static_cast<int32_t>(subject.size()), &status);
    const bool found = uregex_matches(regex.get(), -1, &status) != 0;
    return U_SUCCESS(status) ? std::optional(found) : std::nullopt;
}

bool isBlank(std::string_view line) {
    return line.find_first_not_of(" \t") == std::string_view::npos;
}

bool isCheck(std::string_view line) {
    return !line.empty() && (line[0] == '=' || line[0] == '~' || line[0] == '!') &&
           (line.size() == 1 || line[1] == ' ');
}

class CalcTestParser {
  public:
    explicit CalcTestParser(bool isMarkdown) : isMarkdown_(isMarkdown), isInside_(!isMarkdown) {}

    void line(std::string_view text) {
        ++line_;
        if (isMarkdown_ && text.starts_with("```")) {
            closeCalculation();
            isInside_ = !isInside_ && text == "```calc";
            return;
        }
        if (!isInside_) {
            return;
        }
        if (isContinued_) {
            calculation_ += '\n';
            take(text);
        } else if (isCheck(text)) {
            check(text);
        } else if (isBlank(text) || text[0] == '#') {
            closeCalculation();
        } else {
            closeCalculation();
            start_ = line_;
            isOpen_ = true;
            take(text);
        }
    }

    CalcTestFile finish() {
        closeCalculation();
        return std::move(result_);
    }

  private:
    void take(std::string_view text) {
        isContinued_ = text.ends_with('\\');
        calculation_ += isContinued_ ? text.substr(0, text.size() - 1) : text;
    }

    void check(std::string_view text) {
        if (!isOpen_) {
            result_.faults.push_back({line_, "a check without a calculation before it"});
            return;
        }
        const auto kind = static_cast<CheckKind>(text[0]);
        result_.checks.push_back(
            {start_, std::move(calculation_), kind, std::string(text.size() > 2 ? text.substr(2) : "")});
        calculation_.clear();
        isOpen_ = false;
    }

    void closeCalculation() {
        if (isOpen_) {
            result_.faults.push_back(
                {start_, "a calculation without a check; expected a line with =, ~ or ! after it"});
        }
        isOpen_ = false;
        isContinued_ = false;
        calculation_.clear();
    }

    bool isMarkdown_;
    bool isInside_; // of what counts
    bool isOpen_ = false;
    bool isContinued_ = false;
    int line_ = 0;
    int start_ = 0;
    std::string calculation_;
    CalcTestFile result_;
};

// What a calculation gave: a result, or an error.
struct Outcome {
    std::string text;
    bool isError;
};

Outcome evaluate(Session& session, const std::filesystem::path& file, const CalcCheck& check) {
    try {
        const auto source =
            std::make_shared<Source>(file.string(), fromUtf8(check.text), static_cast<uint32_t>(check.line));
        return {oneLine(session.evaluate(parseCalculation(source, session.functions()))), false};
    } catch (const CalcError& error) {
        return {error.what(), true};
    }
}

bool passes(const CalcCheck& check, const Outcome& outcome) {
    switch (check.kind) {
    case CheckKind::equals:
        return !outcome.isError && outcome.text == check.expected;
    case CheckKind::matches:
        return !outcome.isError && matches(check.expected, outcome.text).value_or(false);
    case CheckKind::fails:
        return outcome.isError && outcome.text.find(check.expected) != std::string::npos;
    }
    return false;
}

std::string expectation(const CalcCheck& check) {
    switch (check.kind) {
    case CheckKind::equals:
        return check.expected;
    case CheckKind::matches:
        return (matches(check.expected, "") ? "a match of " : "a match of this pattern, which is none: ") +
               check.expected;
    case CheckKind::fails:
        return "an error with \"" + check.expected + "\"";
    }
    return {};
}

} // namespace

CalcTestFile parseCalcTest(std::string_view text, bool isMarkdown) {
    CalcTestParser parser(isMarkdown);
    while (!text.empty()) {
        const size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        parser.line(line);
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return parser.finish();
}

CalcTestCount runCalcTest(Host& host, const std::filesystem::path& file, std::ostream& out) {
    const CalcTestFile test = parseCalcTest(toUtf8(readSource(file)->text()), file.extension() == ".md");
    CalcTestCount count;
    for (const CalcTestFault& fault : test.faults) {
        ++count.failed;
        out << file.string() << ':' << fault.line << ": " << fault.message << '\n';
    }
    for (const CalcCheck& check : test.checks) {
        const Outcome outcome = evaluate(host.session(), file, check);
        host.idle();
        if (passes(check, outcome)) {
            ++count.passed;
            continue;
        }
        ++count.failed;
        out << file.string() << ':' << check.line << ": " << check.text
            << "\n  expected: " << expectation(check) << "\n  got: " << (outcome.isError ? "the error: " : "")
            << outcome.text << '\n';
    }
    if (count.passed + count.failed == 0) {
        ++count.failed;
        out << file.string() << ": there are no checks in this file\n";
    }
    return count;
}

} // namespace host

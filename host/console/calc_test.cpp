#include "host/console/calc_test.h"

#include "host/calc/parser.h"
#include "host/console/host.h"
#include "host/console/show.h"
#include "host/values/text.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <unicode/uregex.h>
#include <utility>

namespace host {

namespace {

// Whether [pattern] matches the whole of [text]; nothing when it is no valid regular expression.
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

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

// The outcome of a calculation: the text of its result or error.
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

// Returns two results one below the other, with a mark where they begin to differ. Long ones are cut around
// it.
std::string difference(const std::string& expected, const std::string& got) {
    const std::u16string wanted = fromUtf8(expected);
    const std::u16string come = fromUtf8(got);
    const size_t offset = static_cast<size_t>(
        std::mismatch(wanted.begin(), wanted.end(), come.begin(), come.end()).first - wanted.begin());
    const auto excerpt = [offset](const std::u16string& text) {
        const std::string lines = Source("", text).excerpt(offset);
        const size_t end = lines.rfind('\n');
        constexpr size_t kIndent = 4;
        return std::pair(lines.substr(kIndent, end - kIndent), lines.substr(end + 1 + kIndent));
    };
    const auto [shownWanted, mark] = excerpt(wanted);
    std::string result = "  expected: " + shownWanted + "\n  got:      " + excerpt(come).first;
    if (offset > 0) {
        result += "\n            " + mark;
    }
    return result;
}

std::string failure(const CalcCheck& check, const Outcome& outcome) {
    if (check.kind == CheckKind::equals && !outcome.isError) {
        return difference(check.expected, outcome.text);
    }
    return "  expected: " + expectation(check) + "\n  got:      " + (outcome.isError ? "the error: " : "") +
           outcome.text;
}

} // namespace

bool CheckFilter::accepts(const std::string& file, int line, const std::string& text) const {
    const std::u16string place = foldCase(fromUtf8(file + ":" + std::to_string(line)));
    const std::u16string calculation = foldCase(fromUtf8(text));
    const auto isMeant = [&](const std::string& wanted) {
        const std::u16string key = foldCase(fromUtf8(wanted));
        const size_t at = place.find(key);
        const bool isPlace = at != std::u16string::npos &&
                             (at + key.size() == place.size() || key.empty() || !isDigit(key.back()) ||
                              !isDigit(place[at + key.size()])); // line 1 is not line 12
        return isPlace || calculation.find(key) != std::u16string::npos;
    };
    return (only.empty() || std::any_of(only.begin(), only.end(), isMeant)) &&
           std::none_of(without.begin(), without.end(), isMeant);
}

void runCalcTest(Host& host, const std::filesystem::path& file, const CheckFilter& filter,
                 CheckListener& listener) {
    using Clock = std::chrono::steady_clock;
    const CalcTestFile test = parseCalcTest(toUtf8(readSource(file)->text()), file.extension() == ".md");
    for (const CalcTestFault& fault : test.faults) {
        listener.ended({fault.line, "", fault.message, 0});
    }
    if (test.checks.empty() && test.faults.empty()) {
        listener.ended({0, "", "there are no checks in this file", 0});
    }
    for (const CalcCheck& check : test.checks) {
        listener.begins(check.line, check.text);
        const auto start = Clock::now();
        const Outcome outcome = evaluate(host.session(), file, check);
        const std::chrono::duration<double> taken = Clock::now() - start;
        host.idle();
        if (filter.accepts(file.string(), check.line, check.text)) {
            listener.ended({check.line, check.text, passes(check, outcome) ? "" : failure(check, outcome),
                            taken.count()});
        }
    }
    listener.begins(0, "");
}

} // namespace host

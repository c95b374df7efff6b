#include "host/check/calc_file.h"

namespace host {

namespace {

bool isBlank(std::string_view line) {
    return line.find_first_not_of(" \t") == std::string_view::npos;
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
        } else if (isCalcCheck(text)) {
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
    bool isInside_; // of a block that is read
    bool isOpen_ = false;
    bool isContinued_ = false;
    int line_ = 0;
    int start_ = 0;
    std::string calculation_;
    CalcTestFile result_;
};

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

} // namespace host

#include "host/console/input_reader.h"

#include "host/calc/parser.h"
#include "host/values/text.h"

namespace host {

std::optional<Calculation> InputReader::addLine(std::string_view line) {
    ++line_;
    if (open_) {
        pending_ += '\n';
    } else {
        first_ = name_.empty() ? 1 : line_;
    }
    pending_ += line;
    if (const size_t first = pending_.find_first_not_of(" \t");
        !open_ && first != std::string::npos && (pending_[first] == ':' || pending_[first] == '?')) {
        const auto source = std::make_shared<Source>(name_, fromUtf8(pending_), first_);
        clear();
        throw CalcError(ErrorKind::syntax, CalcCode::valueExpected, source, first,
                        "commands are for the prompt on a terminal; expected a calculation");
    }
    try {
        Calculation result = parse();
        clear();
        return result;
    } catch (const CalcError& error) {
        if (error.kind() != ErrorKind::incomplete) {
            clear();
            throw;
        }
    }
    open_ = !isBlank();
    if (!open_) {
        clear();
    }
    return std::nullopt;
}

bool InputReader::isBlank() const {
    try {
        return isBlankCalculation(std::make_shared<Source>(name_, fromUtf8(pending_)));
    } catch (const CalcError&) {
        return false; // a comment or a text without its end
    }
}

void InputReader::finish() {
    if (open_) {
        open_ = false;
        parse(); // throws what is missing
    }
}

void InputReader::clear() {
    pending_.clear();
    open_ = false;
}

Calculation InputReader::parse() const {
    return parseCalculation(std::make_shared<Source>(name_, fromUtf8(pending_), first_), functions_);
}

} // namespace host

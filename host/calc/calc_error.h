#pragma once

// Errors of calculations: their kinds, their codes, and the exception that carries them.

#include "host/calc/source.h"

#include <exception>
#include <optional>
#include <string>

namespace host {

enum class ErrorKind {
    incomplete, // the text ends too early; more input can complete it
    syntax,     // the text cannot be parsed
    evaluation, // the text was parsed, but evaluating it failed
};

// The codes that EvaluationError returns and plug-ins get for an evaluation; the numbers are FileMaker's.
enum class CalcCode : int {
    none = 0,
    dataMissing = 10,
    outOfRange = 14,
    divisionByZero = 15,
    fieldMissing = 102,
    tableMissing = 106,
    aiAccountMissing = 877,
    generic = 1200,
    tooFewArguments = 1201,
    tooManyArguments = 1202,
    unexpectedEnd = 1203,
    valueExpected = 1204,
    unterminatedComment = 1205,
    unterminatedText = 1206,
    unbalancedParenthesis = 1207,
    operatorOrFunctionExpected = 1208,
    nameMissing = 1209,
    listNotAllowed = 1211,
    definedTwice = 1213,
    fieldRequired = 1214,
    badGetArgument = 1215,
    summaryFieldRequired = 1216,
    badNumber = 1218,
    notSupportedHere = 1225,
    nameTaken = 1300,
    parameterNamedLikeFunction = 1301,
};

// Returns the kind of an error by the code that the lexer or the parser gives. An error at the end of a text
// is incomplete whatever its code.
constexpr ErrorKind parseErrorKind(CalcCode code) {
    return code == CalcCode::unexpectedEnd || code == CalcCode::unterminatedComment ||
                   code == CalcCode::unterminatedText
               ? ErrorKind::incomplete
               : ErrorKind::syntax;
}

// An error at a place in a source. what() is the message without the place, in UTF-8.
class CalcError : public std::exception {
  public:
    CalcError(ErrorKind kind, CalcCode code, SourcePtr source, size_t offset, std::string message);

    ErrorKind kind() const { return kind_; }
    CalcCode code() const { return code_; }
    const SourcePtr& source() const { return source_; }
    size_t offset() const { return offset_; }
    Place place() const { return source_->place(offset_); }
    const char* what() const noexcept override { return message_.c_str(); }

    // Returns "name:line:column: message", without "name:" when the source has no name.
    std::string summary() const;

    // Returns the summary, followed by the source line with a caret under the place; without a final line
    // end.
    std::string report() const;

  private:
    ErrorKind kind_;
    CalcCode code_;
    SourcePtr source_;
    size_t offset_;
    std::string message_;
};

} // namespace host

#pragma once

// The parser of calculations: recursive descent, with the table of operators. Names are looked up while
// parsing.

#include "host/calc/ast.h"
#include "host/calc/lexer.h"

#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host {

// The deepest nesting of parentheses, calls and signs.
inline constexpr int kMaxNesting = 250;

// Parses the whole of [source] as one calculation. Throws CalcError (incomplete or syntax).
Calculation parseCalculation(const SourcePtr& source, const FunctionRegistry& functions);

// Whether a text has only white space and comments. Throws CalcError for a comment without its end.
bool isBlankCalculation(const SourcePtr& source);

// Parses calculations in a source, and tokens between them: script steps parse their brackets with it.
class Parser {
  public:
    Parser(SourcePtr source, size_t offset, const FunctionRegistry& functions);

    // Parses one calculation, up to the first token that does not belong to it. [parameters] are names that
    // it can use, in its first slots.
    Calculation calculation(std::span<const std::u16string> parameters = {});

    // Parses the calculation of a new value for a variable, which may take the old one (x = List ( x ; 1 )).
    Calculation calculationFor(const Variable& target);

    // Parses a variable, with or without a repetition, as a calculation for Session::assign().
    Calculation variableCalculation();

    const Token& current() const { return token_; }
    void advance() { token_ = lexer_.next(); }
    const SourcePtr& source() const { return lexer_.source(); }

    // Continues with the first token at or after [offset] in the source.
    void continueAt(size_t offset);

    // Takes the current token if it is of [kind]; returns whether it was.
    bool accept(TokenKind kind);

    // Takes the current token, which must be of [kind]; otherwise fails with "expected [what]".
    void expect(TokenKind kind, std::string_view what);

    // Takes the current token if it is the word [word] (folded); returns whether it was.
    bool acceptWord(std::u16string_view word);

    // Throws CalcError, "expected [what]", at the current token: incomplete when that is the end, else
    // syntax.
    [[noreturn]] void failExpected(std::string_view what, CalcCode code) const;
    [[noreturn]] void fail(size_t offset, CalcCode code, std::string message) const;

  private:
    struct ScopedName {
        std::u16string key;
        uint32_t slot;
    };

    Node expression(int minimumLevel = level::kOr);
    Node operand();
    Node primary();
    Node named();
    Node call(const Builtin& function, size_t begin);
    Node call(const ExternalFunctionPtr& function, size_t begin);
    Node letForm(size_t begin);
    Node whileForm(size_t begin);
    Node getForm(size_t begin);
    Node textOrNumber();
    std::vector<Node> arguments(std::u16string_view function, bool brackets);
    Node brackets();
    std::vector<Assignment> assignments(size_t scope);
    Assignment assignment(size_t scope);
    uint32_t define(std::u16string key, size_t scope);
    std::optional<uint32_t> slotOf(std::u16string_view key, size_t scope) const;
    void leave(size_t scope);
    Node newValue(const Variable& target);
    void openCall(std::u16string_view function);
    void checkLists(const Builtin& function, const std::vector<Node>& arguments) const;
    void checkField(const Builtin& function, const std::vector<Node>& arguments, size_t begin) const;
    Variable variable();
    void checkCount(std::u16string_view name, std::u16string_view prototype, int minArguments,
                    int maxArguments, size_t given, size_t begin) const;
    std::string suggestion(std::u16string_view name) const;
    std::string describe(const Token& token) const;

    Lexer lexer_;
    const FunctionRegistry& functions_;
    Token token_;
    std::vector<ScopedName> names_;
    std::unordered_map<std::u16string, std::vector<size_t>> places_; // in names_, of each key
    std::vector<uint32_t> uses_;                                     // of each slot, so far
    std::map<std::u16string, uint32_t> variableUses_;
    uint32_t opaqueCalls_ = 0; // calls so far that may read any variable
    uint32_t slots_ = 0;
    int depth_ = 0;
};

} // namespace host

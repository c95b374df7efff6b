#pragma once

// Functions that users define in the calculation language: text files NAME.fmfn of definitions
//
//     Name ( parameter1 ; parameter2 ) = calculation
//
// one after another; one without parameters has no parentheses. They may call themselves and each other.

#include "host/calc/ast.h"
#include "host/calc/calc_error.h"

#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

// A function that a user has defined.
class CustomFunction : public ExternalFunction {
  public:
    // [begin] is the offset of the function's name in the source.
    CustomFunction(const std::u16string& name, std::vector<std::u16string> parameters, SourcePtr source,
                   size_t begin);

    Value call(Session& session, std::span<Value> arguments) override;
    const Calculation* body() const override { return body_ ? &*body_ : nullptr; }

    const std::vector<std::u16string>& parameters() const { return parameters_; }
    const SourcePtr& source() const { return source_; }
    size_t begin() const { return begin_; }

  private:
    friend class CustomFunctions;

    std::vector<std::u16string> parameters_;
    SourcePtr source_;
    size_t begin_;
    std::optional<Calculation> body_;
};

using CustomFunctionPtr = std::shared_ptr<CustomFunction>;

// The custom functions of a folder, or of an editor's text.
class CustomFunctions {
  public:
    CustomFunctions() = default;
    ~CustomFunctions() { clear(); }
    CustomFunctions(const CustomFunctions&) = delete;
    CustomFunctions& operator=(const CustomFunctions&) = delete;

    // Reads the definitions in all sources and adds them to [registry], in place of those that were loaded
    // before. Adds all errors to [errors]; definitions without errors are still added.
    void load(const std::vector<SourcePtr>& sources, FunctionRegistry& registry,
              std::vector<CalcError>& errors);

    // Returns the functions by their folded names.
    const std::map<std::u16string, CustomFunctionPtr>& all() const { return functions_; }

  private:
    struct Definition;

    void clear(FunctionRegistry* registry = nullptr);
    std::vector<Definition> readHeadings(const SourcePtr& source, FunctionRegistry& registry,
                                         std::vector<CalcError>& errors);

    std::map<std::u16string, CustomFunctionPtr> functions_;
};

} // namespace host

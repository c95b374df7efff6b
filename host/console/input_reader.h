#pragma once

// Puts lines together to calculations: one line each, except that a line which ends too early goes on in the
// next one.

#include "host/calc/ast.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

class InputReader {
  public:
    // [name] is what errors call the input, with lines counted from its start; empty for calculations typed
    // by hand, each of which starts at line 1.
    InputReader(const FunctionRegistry& functions, std::string name)
        : functions_(functions), name_(std::move(name)) {}

    // Takes a line without its end. Answers a calculation when it is complete; nothing while more is needed,
    // and for a line that holds no calculation. Throws CalcError (syntax) and forgets the lines.
    std::optional<Calculation> addLine(std::string_view line);

    // The end of the input: throws CalcError when a calculation is open.
    void finish();

    // True while a calculation is open.
    bool isOpen() const { return open_; }

    // Forgets the open calculation.
    void clear();

  private:
    Calculation parse() const;
    bool isBlank() const;

    const FunctionRegistry& functions_;
    std::string name_;
    std::string pending_;
    bool open_ = false;
    uint32_t line_ = 0;  // the last one taken
    uint32_t first_ = 1; // of the open calculation
};

} // namespace host

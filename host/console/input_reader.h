#pragma once

// Combines lines into calculations. Each line is a calculation, but an incomplete one continues on the next
// line.

#include "host/calc/ast.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace host {

class InputReader {
  public:
    // [name] is the input's name in errors, whose line numbers then count from its start; empty for
    // calculations typed by hand, each of which starts at line 1.
    InputReader(const FunctionRegistry& functions, std::string name)
        : functions_(functions), name_(std::move(name)) {}

    // Adds a line, without its line end. Returns the calculation when it is complete; nothing while more
    // lines are needed, and for a line without a calculation. Throws CalcError (syntax), and then discards
    // the lines.
    std::optional<Calculation> addLine(std::string_view line);

    // Ends the input. Throws CalcError when a calculation is incomplete.
    void finish();

    // Whether a calculation is incomplete.
    bool isOpen() const { return open_; }

    // Discards the incomplete calculation.
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

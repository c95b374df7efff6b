#pragma once

// What the prompt prints: results and errors, in colours when the terminal has them.

#include "host/calc/calc_error.h"
#include "host/console/palette.h"
#include "host/values/value.h"

#include <string>

namespace host {

class PromptOutput {
  public:
    const Palette& palette() const { return palette_; }

    // Prints a line.
    void line(const std::string& text) const;
    void result(const Value& value) const; // a picture is shown where the terminal can
    void error(const CalcError& error) const;
    void error(const std::string& message) const;

    // Returns a value on one line, in its colour.
    std::string painted(const Value& value) const;

  private:
    Palette palette_ = Palette::ofOutput();
};

} // namespace host

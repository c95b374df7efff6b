#pragma once

// The error for a plug-in that cannot be used at all.

#include <stdexcept>

namespace host {

// Thrown for a plug-in that cannot be loaded or refuses to run; what() is one line that names it and says
// why.
class LoadError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace host

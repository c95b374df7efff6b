#pragma once

// The error of everything that goes wrong with a plug-in as a whole.

#include <stdexcept>

namespace host {

// A plug-in that can not be loaded or does not want to run; what() is one line that names it and says why.
class LoadError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace host

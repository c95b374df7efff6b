#pragma once

// The size of tests that find more the longer they run; `make test-long` sets larger ones.

#include <cstdlib>
#include <string>

namespace addressbook::test {

// Returns the number in an environment variable, else [usual].
inline int numberFrom(const char* variable, int usual) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0' ? std::stoi(value) : usual;
}

} // namespace addressbook::test

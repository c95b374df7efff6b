#pragma once

// How much the tests do that get better the longer they run: `make test-long` says more.

#include <cstdlib>
#include <string>

namespace addressbook::test {

// The number in an environment variable, else [usual].
inline int numberFrom(const char* variable, int usual) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0' ? std::stoi(value) : usual;
}

} // namespace addressbook::test

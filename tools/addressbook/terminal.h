#pragma once

// Questions to the user on a terminal: printed to standard error, answered on standard input. Ctrl-C ends them with
// Interrupted once noteSignals() was called.

#include "frameworks/AddressBook/carddav/secret.h"

#include <string>

namespace addressbook::tool {

// Whether questions can be asked: standard input and standard error are terminals.
bool canAsk();

// Prints [question] and returns the line that is typed, without blanks around it; empty at the end of input.
std::string ask(const std::string& question);

// Asks a question that is answered with yes or no; anything else means no.
bool confirm(const std::string& question);

// Asks for a password, which is not shown while it is typed.
carddav::Secret askPassword(const std::string& question);

} // namespace addressbook::tool

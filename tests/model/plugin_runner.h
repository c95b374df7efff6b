#pragma once

// Calls the plug-in as the host does.

#include "tests/model/generator.h"

namespace model {

// The result of a call.
struct Answered {
    bool escaped = false; // an NSException left the handler
    bool date = false;    // the result is a time stamp
    std::string text;     // UTF-8
    Civil stamp;
};

// Calls a function of the plug-in by its id.
Answered callPlugin(const Function& function, const Arguments& arguments);

// Resets the plug-in to the state in which it is loaded, with an empty address book.
void resetPlugin();

// Returns the differences between the plug-in's variables and the model's; empty when there are none.
std::string differenceOfStates(const State& state);

// Return the differences between the address book and the model's: in memory, and in the database, which is
// opened a second time for this.
std::string differenceOfBooks(const Model& model);
std::string differenceOfDatabases(const Model& model);

// Returns the differences between the plug-in's table of functions and the model's: functions and numbers of
// arguments.
std::string differenceOfTables();

// Returns the identifiers of a person and a group in another address book.
std::pair<std::string, std::string> recordsElsewhere();

} // namespace model

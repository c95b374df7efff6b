#pragma once

// The plug-in itself, called as the host calls it.

#include "tests/model/generator.h"

namespace model {

// What a call answered.
struct Answered {
    bool escaped = false; // a platform exception left the handler
    bool date = false;    // a time stamp
    std::string text;     // UTF-8
    Civil stamp;
};

// Calls a function of the plug-in by its id.
Answered callPlugin(const Function& function, const Arguments& arguments);

// The plug-in as it is when it has been loaded, with an empty address book.
void resetPlugin();

// In what the plug-in's variables differ from the model's; empty when they agree.
std::string differenceOfStates(const State& state);

// In what the address book differs from the model's: in memory; in the database, opened a second time.
std::string differenceOfBooks(const Model& model);
std::string differenceOfDatabases(const Model& model);

// Whether the plug-in's table and the model's have the same functions and numbers of arguments; what differs.
std::string differenceOfTables();

// Identifiers of a person and a group in another address book.
std::pair<std::string, std::string> recordsElsewhere();

} // namespace model

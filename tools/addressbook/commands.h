#pragma once

// The work of each command. Each answers the exit status, and throws what Store, Output and Failure throw;
// std::invalid_argument for what the user wrote and nobody can read.

#include "frameworks/AddressBook/store/store.h"

#include <cstddef>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

namespace addressbook::tool {

// What the command line says.
struct Options {
    std::string book; // folder; empty: the user's own
    struct {
        std::vector<std::string> files;
        bool dryRun = false, progress = false, quiet = false;
    } import;
    struct {
        std::string group, file;
    } write;
    struct { // of what is listed
        std::string group, where;
        std::size_t limit = std::numeric_limits<std::size_t>::max();
    } narrow;
    std::string fields = "name,organization,phones,emails"; // of what is listed
    bool json = false;                                      // what is written is JSON
    std::vector<std::string> words;                         // to find
    std::string id;                                         // to show
    struct {
        std::vector<std::string> ids;
        bool dryRun = false;
    } remove;
    struct {
        std::string id;
        std::vector<std::string> assignments;
    } set;
    struct {
        std::string id;
        bool clear = false;
    } me;
    std::vector<std::string> searches; // to explain
    struct {
        std::string file;
        bool force = false;
    } backup;
};

// Returns the folder of the address book that the user means, and opens the book in it.
std::filesystem::path folder(const Options& options);
Store open(const Options& options, Store::Access access);

// Returns "1 card", "2 cards".
std::string counted(std::size_t count, const std::string& singular, const std::string& plural);

int runImport(const Options& options);
int runExport(const Options& options);
int runList(const Options& options);
int runFind(const Options& options);
int runShow(const Options& options);
int runGroups(const Options& options);
int runMe(const Options& options);
int runSet(const Options& options);
int runDelete(const Options& options);
int runCheck(const Options& options);
int runBackup(const Options& options);
int runRestore(const Options& options);
int runRepair(const Options& options);

} // namespace addressbook::tool

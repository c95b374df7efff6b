#pragma once

// The commands. Each returns the exit status. They throw StoreError, Failure, OutputClosed and Interrupted,
// and std::invalid_argument when the user's words cannot be parsed.

#include "frameworks/AddressBook/store/store.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

namespace addressbook::tool {

// The command line, parsed.
struct Options {
    std::string book; // the folder of the address book; empty: the user's own
    struct {
        std::vector<std::string> files;
        bool dryRun = false, progress = false, quiet = false;
        std::string format, charset, dates; // empty: guessed
        std::vector<std::string> maps;      // of columns to properties
    } import;
    struct {
        std::string group, file, format = "vcard";
        std::string version = "3.0";
        std::string groups = "both"; // cards, categories or both
    } write;
    struct { // which records are listed
        std::string group, where;
        std::string account; // the place that they belong to; see sync/places.h
        std::size_t limit = std::numeric_limits<std::size_t>::max();
    } narrow;
    std::string fields = "name,organization,phones,emails"; // the columns of a list
    bool json = false;                                      // writes JSON instead of text
    std::vector<std::string> words;                         // find: the words
    std::string id;                                         // show: the record
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
    std::vector<std::string> searches; // explain: the searches
    struct {
        std::vector<std::string> properties;
        bool ofGroups = false;
    } endings;
    struct {
        std::string file;
        bool force = false;
    } backup;
    struct {
        std::string address, user, passwordCommand, passwordFile, create, name, caFile;
        std::vector<std::string> books; // on the server
        bool keyring = false, isDefault = false, allowHttp = false;
    } addAccount;
    struct {
        std::string name;
        bool deletePeople = false;
    } removeAccount;
    std::string place; // account default: where new records go
    struct {
        std::vector<std::string> accounts; // empty: all
        bool dryRun = false, force = false;
        unsigned watch = 0; // seconds between two looks at the server; 0: looks once
    } sync;
    std::vector<std::int64_t> conflicts; // their ids
    struct {
        std::vector<std::string> ids;
        std::string to;
        std::string from; // all that belong there
    } move;
};

// Return the folder of the address book that the options name, and the book in it, opened.
std::filesystem::path folder(const Options& options);
Store open(const Options& options, Store::Access access);

// Returns a count with its noun: "1 card", "2 cards".
std::string counted(std::size_t count, const std::string& singular, const std::string& plural);

// Whether an error says that the user's own address book, at its usual place, is not there yet; and what to say
// then: where it would be and how to fill it.
bool isFirstRun(const Options& options, const StoreError& error);
std::string firstSteps();

int runOverview(const Options& options);
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
int runEndings(const Options& options);
int runEndingsAdd(const Options& options);
int runEndingsRemove(const Options& options);
int runBackup(const Options& options);
int runRestore(const Options& options);
int runRepair(const Options& options);
int runAccountAdd(const Options& options);
int runAccountList(const Options& options);
int runAccountRemove(const Options& options);
int runAccountDefault(const Options& options);
int runSync(const Options& options);
int runConflicts(const Options& options);
int runConflictsTake(const Options& options);
int runConflictsDrop(const Options& options);
int runMove(const Options& options);

} // namespace addressbook::tool

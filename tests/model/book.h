#pragma once

// The model's own address book: a few records in a vector, and their saved contents.

#include "tests/model/value.h"

#include <functional>
#include <set>

namespace model {

struct Record;
using RecordPtr = std::shared_ptr<Record>;

struct Record {
    bool isGroup = false;
    std::string id;    // empty until a result of the plug-in has told it
    bool loose = true; // new, and not added yet
    bool inBook = false;
    bool unsaved = false; // has unsaved changes
    std::map<std::string, Value> values;
    std::vector<RecordPtr> members; // of a group: people and subgroups, in the order in which they joined
};

// One condition of a search, or two searches joined.
struct Search {
    bool ofGroups = false;
    std::string property;
    Text label, key;
    Value wanted; // none: asks whether there is any value
    int comparison = 0;

    std::shared_ptr<const Search> first, second; // the joined searches; null for a condition
    bool either = false;
};
using SearchPtr = std::shared_ptr<const Search>;

// Thrown for a value of a wrong type, for which the framework raises an exception.
struct WrongType {};

class Book {
  public:
    // Returns a new record, which is not added to the address book.
    static RecordPtr make(bool isGroup);

    const std::vector<RecordPtr>& records() const { return records_; }
    // Returns the record with the id; null when the address book has none.
    RecordPtr find(const Text& id) const;
    std::vector<RecordPtr> all(bool groups) const;

    bool add(const RecordPtr& record);
    // Removes a record. If [held] says that somebody still holds it, it keeps its values, else only its id.
    void remove(const RecordPtr& record, const std::function<bool(const Record&)>& held);

    // Returns the type of a property, built-in or added; 0 when there is none.
    int typeOf(bool ofGroups, const std::string& property) const;
    // Returns the value of a property; none when the record is null, or has no such property or no value.
    Value value(const RecordPtr& record, const std::string& property) const;
    // Sets a property. Returns false when it cannot be set. Throws WrongType.
    bool set(const RecordPtr& record, const std::string& property, Value value) const;

    std::vector<RecordPtr> members(const Record& group, bool groups) const;
    std::vector<RecordPtr> parents(const RecordPtr& record) const;
    void join(const RecordPtr& group, const RecordPtr& member) const;
    void leave(const RecordPtr& group, const RecordPtr& member) const;

    // Add and remove a property. Return false when there is one already, and when none was added.
    bool define(bool ofGroups, const std::string& property);
    bool undefine(bool ofGroups, const std::string& property, const std::vector<RecordPtr>& otherRecords);

    // Returns the records that a search finds, in the order in which they were added.
    std::vector<RecordPtr> search(const Search& search) const;
    static bool matches(const Book& book, const Search& search, const RecordPtr& record);

    void save();

    // The contents of a record in the database.
    struct Saved {
        bool isGroup = false;
        std::map<std::string, Value> values;
        std::vector<std::string> members;
        bool operator==(const Saved&) const = default;
    };
    const std::map<std::string, Saved>& saved() const { return saved_; }
    // Returns the contents of a record in memory, in the form in which they are saved.
    static Saved contentsOf(const Record& record);
    const std::set<std::pair<bool, std::string>>& defined() const { return defined_; }

  private:
    bool contains(const RecordPtr& group, const RecordPtr& wanted) const;

    std::vector<RecordPtr> records_;
    std::set<std::pair<bool, std::string>> defined_;
    std::map<std::string, Saved> saved_;
};

} // namespace model

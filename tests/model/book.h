#pragma once

// The model's own address book: a handful of records in a vector, and what of them has been saved.

#include "tests/model/value.h"

#include <functional>
#include <set>

namespace model {

struct Record;
using RecordPtr = std::shared_ptr<Record>;

struct Record {
    bool isGroup = false;
    std::string id;    // empty until an answer has told it
    bool loose = true; // new, and not added yet
    bool inBook = false;
    bool unsaved = false; // differs from what was last saved
    std::map<std::string, Value> values;
    std::vector<RecordPtr> members; // of a group: people and subgroups, in the order of joining
};

// One condition of a search, or two searches joined.
struct Search {
    bool ofGroups = false;
    std::string property;
    Text label, key;
    Value wanted; // none: whether there is a value at all
    int comparison = 0;

    std::shared_ptr<const Search> first, second; // of a join
    bool either = false;
};
using SearchPtr = std::shared_ptr<const Search>;

// A value of a property that the framework refuses by raising.
struct WrongType {};

class Book {
  public:
    // A new record, in no address book yet.
    static RecordPtr make(bool isGroup);

    const std::vector<RecordPtr>& records() const { return records_; }
    // The record with the id, null when the address book has none.
    RecordPtr find(const Text& id) const;
    std::vector<RecordPtr> all(bool groups) const;

    bool add(const RecordPtr& record);
    // [held] tells whether somebody has the record in hand: then it keeps its values, else only its id.
    void remove(const RecordPtr& record, const std::function<bool(const Record&)>& held);

    // The type of a property, added ones included; 0 when there is none.
    int typeOf(bool ofGroups, const std::string& property) const;
    // None when the record is null, has no such property, or no value.
    Value value(const RecordPtr& record, const std::string& property) const;
    // False when the property cannot be set. Throws WrongType.
    bool set(const RecordPtr& record, const std::string& property, Value value) const;

    std::vector<RecordPtr> members(const Record& group, bool groups) const;
    std::vector<RecordPtr> parents(const RecordPtr& record) const;
    void join(const RecordPtr& group, const RecordPtr& member) const;
    void leave(const RecordPtr& group, const RecordPtr& member) const;

    // False when there is one; when there is none that was added.
    bool define(bool ofGroups, const std::string& property);
    bool undefine(bool ofGroups, const std::string& property, const std::vector<RecordPtr>& otherRecords);

    // In the order in which the records were added.
    std::vector<RecordPtr> search(const Search& search) const;
    static bool matches(const Book& book, const Search& search, const RecordPtr& record);

    void save();

    // What is in the database.
    struct Saved {
        bool isGroup = false;
        std::map<std::string, Value> values;
        std::vector<std::string> members;
        bool operator==(const Saved&) const = default;
    };
    const std::map<std::string, Saved>& saved() const { return saved_; }
    // The same of what is in memory.
    static Saved contentsOf(const Record& record);
    const std::set<std::pair<bool, std::string>>& defined() const { return defined_; }

  private:
    bool contains(const RecordPtr& group, const RecordPtr& wanted) const;

    std::vector<RecordPtr> records_;
    std::set<std::pair<bool, std::string>> defined_;
    std::map<std::string, Saved> saved_;
};

} // namespace model

#pragma once

// A second, as simple as possible implementation of the plug-in: every function step by step, on the model's
// own address book. The variables have the plug-in's names without their prefixes, so that both can be
// compared after every call.

#include "tests/model/book.h"

#include <functional>
#include <span>

namespace model {

using Arguments = std::vector<std::string>;

// The expected result of a call.
struct Expected {
    enum class Kind {
        text,       // exactly this
        newRecord,  // a new identifier of a record, which learn() takes
        newEntry,   // a new identifier of an entry, which learn() takes
        date,       // this time stamp
        moment,     // a time stamp of this test run
        dictionary, // a description that contains all of the texts
        escapes     // none: an NSException leaves the handler
    };
    Kind kind = Kind::text;
    std::string text;
    Civil date;
    std::vector<std::string> parts;
    std::function<void(const std::string&)> learn;
    bool orException = false; // the framework may raise instead
};

// The outcome of the last call, as the last-error function returns it.
struct LastError {
    int code = 0;           // other than 0: the call results in the error marker
    int number = 0;         // the last-error function's number
    Text message;           // none: "Success"
    Text detail;            // follows the message
    bool anyDetail = false; // an exception, whose text is the framework's
    std::string text() const;
};

// The result list of a search; a record in it becomes an object when it is first accessed.
struct Found {
    RecordPtr record;
    bool asked = false;
};
using Results = std::optional<std::vector<Found>>;

// One of the walks over groups and members.
struct Walk {
    std::optional<std::vector<RecordPtr>> list;
    RecordPtr current;
    unsigned index = 0;
};

struct State {
    unsigned currentRecordType = 0;
    unsigned lastSearchType = 0;
    RecordPtr person, group;
    bool newRecord = false;
    SearchPtr search;
    Results personResults, groupResults;
    unsigned personIndex = 0, groupIndex = 0;
    Text property;
    std::optional<Entries> values;
    unsigned valuesIndex = 0;
    Walk parents, members, subgroups;
    unsigned savedCount = 0;
};

class Model;

// A function of the plug-in: a row of the table that the model and the generator use.
struct Function {
    const char* name; // as calculations call it
    short id;
    int minArguments, maxArguments;
    Expected (*run)(Model& model, const Arguments& arguments);
};

class Model {
  public:
    // Makes a call and returns the expected result. State and error are then those after the call.
    Expected call(const Function& function, const Arguments& arguments);

    // To be called when the framework has raised in a call that allows it (Expected::orException).
    void raised();

    State state;
    Book book;
    LastError error;

    // --- For the functions.

    struct Failed {};
    // Note a failure, without and with ending the call.
    void note(int code, const std::string& detail = "");
    [[noreturn]] void fail(int code, const std::string& detail = "");
    [[noreturn]] void failCodeOnly(int code);
    [[noreturn]] void raise();

    bool ofGroups() const { return state.currentRecordType == 1; }
    RecordPtr current() const { return ofGroups() ? state.group : state.person; }
    void setType(const Arguments& arguments, std::size_t position);
    void requireActive();
    // Opens a property and returns its type.
    int openProperty(const Text& name);
    // Like openProperty(), but fails the call unless the property is a list, or unless it is not.
    int openList(const Text& name, const std::string& detail = "");
    int openSingle(const Text& name, const std::string& detail = "");
    // Sets a property of the current record; returns false when it is refused.
    bool set(const std::string& property, Value value);
    void remove(const RecordPtr& record);
    void save();
    // Returns the records that somebody holds but that are in no address book.
    std::vector<RecordPtr> strays() const;

  private:
    bool held(const Record& record) const;
    std::vector<RecordPtr> inHand() const;
};

// Returns an argument; none when it is missing or empty.
Text argument(const Arguments& arguments, std::size_t position);

Expected answer(std::string text);
Expected done();

// Returns the functions, in the order of their ids.
std::span<const Function> functions();
const Function& functionNamed(const std::string& name);

// The functions by area.
namespace run {
Expected Version(Model&, const Arguments&);
Expected GetLastError(Model&, const Arguments&);
Expected Search(Model&, const Arguments&);
Expected OpenFirstRecord(Model&, const Arguments&);
Expected OpenNextRecord(Model&, const Arguments&);
Expected Open(Model&, const Arguments&);
Expected New(Model&, const Arguments&);
Expected Save(Model&, const Arguments&);
Expected Delete(Model&, const Arguments&);
Expected ClearAll(Model&, const Arguments&);
Expected GetValueForProperty(Model&, const Arguments&);
Expected SetValueForProperty(Model&, const Arguments&);
Expected DeleteValueForProperty(Model&, const Arguments&);
Expected CompareProperty(Model&, const Arguments&);
Expected OpenFirstMVProperty(Model&, const Arguments&);
Expected OpenNextMVProperty(Model&, const Arguments&);
Expected GetValueForUID(Model&, const Arguments&);
Expected SetValueForUID(Model&, const Arguments&);
Expected DeleteValueForUID(Model&, const Arguments&);
Expected GetLabelForUID(Model&, const Arguments&);
Expected SetLabelForUID(Model&, const Arguments&);
Expected AddMV(Model&, const Arguments&);
Expected AddAddress(Model&, const Arguments&);
Expected GetListOfValues(Model&, const Arguments&);
Expected GetFirstParentID(Model&, const Arguments&);
Expected GetNextParentID(Model&, const Arguments&);
Expected GetFirstMemberID(Model&, const Arguments&);
Expected GetNextMemberID(Model&, const Arguments&);
Expected GetFirstSubgroupID(Model&, const Arguments&);
Expected GetNextSubgroupID(Model&, const Arguments&);
Expected AddPerson(Model&, const Arguments&);
Expected RemovePerson(Model&, const Arguments&);
Expected AddSubgroup(Model&, const Arguments&);
Expected RemoveSubgroup(Model&, const Arguments&);
Expected AddCustomField(Model&, const Arguments&);
Expected RemoveCustomField(Model&, const Arguments&);
Expected SetCustomField(Model&, const Arguments&);
Expected GetCustomField(Model&, const Arguments&);
} // namespace run

} // namespace model

#pragma once

// What the plug-in should do, told a second time and as simply as possible: every function as its steps, over
// the model's own book. The variables have the plug-in's names without their prefixes, so that the two can be
// compared after every call.

#include "tests/model/book.h"

#include <functional>
#include <span>

namespace model {

using Arguments = std::vector<std::string>;

// What a call should answer.
struct Expected {
    enum class Kind {
        text,       // exactly this
        newRecord,  // an identifier that nobody has seen: learn() takes it
        newEntry,   // likewise
        date,       // this time stamp
        moment,     // a time stamp of this test run
        dictionary, // some description that has every one of the texts in it
        escapes     // no answer: a platform exception leaves the handler
    };
    Kind kind = Kind::text;
    std::string text;
    Civil date;
    std::vector<std::string> parts;
    std::function<void(const std::string&)> learn;
    bool orException = false; // the framework may raise instead
};

// The last call's outcome, as the last-error function tells it.
struct LastError {
    int code = 0;           // what makes a call answer the error marker
    int number = 0;         // what the last-error function answers
    Text message;           // none: "Success"
    Text detail;            // behind the message
    bool anyDetail = false; // an exception: what it says is the framework's affair
    std::string text() const;
};

// A result list of a search; a record in it exists only once somebody has asked for it.
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

// One function of the plug-in: to the model and to the generator all functions are rows of a table.
struct Function {
    const char* name; // as calculations call it
    short id;
    int minArguments, maxArguments;
    Expected (*run)(Model& model, const Arguments& arguments);
};

class Model {
  public:
    // What the call should answer; the state and the error are then as after it.
    Expected call(const Function& function, const Arguments& arguments);

    // A call that the framework may fail was failed.
    void raised();

    State state;
    Book book;
    LastError error;

    // --- For the functions.

    struct Failed {};
    // Notes a failure; and ends the call.
    void note(int code, const std::string& detail = "");
    [[noreturn]] void fail(int code, const std::string& detail = "");
    [[noreturn]] void failCodeOnly(int code);
    [[noreturn]] void raise();

    bool ofGroups() const { return state.currentRecordType == 1; }
    RecordPtr current() const { return ofGroups() ? state.group : state.person; }
    void setType(const Arguments& arguments, std::size_t position);
    void requireActive();
    // Opens a property; its type.
    int openProperty(const Text& name);
    // The same for a list, or not a list.
    int openList(const Text& name, const std::string& detail = "");
    int openSingle(const Text& name, const std::string& detail = "");
    // Sets a property of the current record; false when it is refused.
    bool set(const std::string& property, Value value);
    void remove(const RecordPtr& record);
    void save();
    // Records that are in no book but in somebody's hand.
    std::vector<RecordPtr> strays() const;

  private:
    bool held(const Record& record) const;
    std::vector<RecordPtr> inHand() const;
};

// An argument; none when it is absent or empty.
Text argument(const Arguments& arguments, std::size_t position);

Expected answer(std::string text);
Expected done();

// The functions, in the order of their ids.
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

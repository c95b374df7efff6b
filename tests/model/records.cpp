// Version and last error; searching; opening, making, saving and deleting records.

#include "tests/model/model.h"
#include "tests/model/words.h"

#include <algorithm>

namespace model::run {
namespace {

// Opens the record at a side's cursor.
Expected openAt(Model& model) {
    State& state = model.state;
    const bool groups = model.ofGroups();
    RecordPtr& current = groups ? state.group : state.person;
    Results& results = groups ? state.groupResults : state.personResults;
    const unsigned index = groups ? state.groupIndex : state.personIndex;
    current = nullptr;
    if (!results) {
        model.fail(-8004);
    }
    if (index >= results->size()) {
        return answer("END");
    }
    Found& found = results->at(index);
    found.asked = true;
    current = found.record;
    return answer(current->id);
}

unsigned& cursor(Model& model) {
    return model.ofGroups() ? model.state.groupIndex : model.state.personIndex;
}

// An identifier that the book does not know counts as a person's.
bool isPerson(Model& model, const Text& id) {
    const RecordPtr record = model.book.find(id);
    return !record || !record->isGroup;
}

Value searchedValue(Model& model, const Text& text, const Text& property, int comparison) {
    if (!text) {
        return {};
    }
    if (comparison >= 17) {
        return integerFromText(*text);
    }
    switch (model.book.typeOf(model.state.lastSearchType == 1, property.value_or("")) & ~0x100) {
    case 2:
        return integerFromText(*text);
    case 4:
        if (const auto date = dateFromText(*text)) {
            return *date;
        }
        return {};
    default:
        return *text;
    }
}

} // namespace

Expected Version(Model& /*model*/, const Arguments& arguments) {
    const bool isLong = arguments.size() == 1 && lower(arguments[0]) == "long";
    return answer(isLong ? "Velocard 3.0.3.1" : "3.0.3.1");
}

Expected GetLastError(Model& model, const Arguments& arguments) {
    if (arguments.size() > 1) {
        model.note(-3);
        return answer("!!ERROR!!");
    }
    if (arguments.size() == 1 && lower(arguments[0]) != "text") {
        return answer(std::to_string(model.error.number));
    }
    Expected expected = answer(model.error.text());
    if (model.error.anyDetail) {
        expected.kind = Expected::Kind::dictionary;
        expected.parts = {expected.text};
    }
    return expected;
}

Expected Search(Model& model, const Arguments& arguments) {
    State& state = model.state;
    const Text type = argument(arguments, 0);
    if (!type) {
        model.fail(-4);
    }
    state.lastSearchType = lower(*type) == "group" ? 1 : 0;

    const Text conjunction = argument(arguments, 6);
    const std::string join = lower(conjunction.value_or(""));
    if (conjunction && !state.search) {
        model.fail(-8004);
    }
    if (conjunction && join != "expand" && join != "constrain") {
        model.fail(-4);
    }
    auto search = std::make_shared<model::Search>();
    Text label = argument(arguments, 2);
    if (const Text known = labelForWord(label)) {
        label = known;
    }
    Text property = argument(arguments, 1);
    if (property && propertyNamed(property)) {
        property = propertyNamed(property);
    }
    const Text key = keyForReading(argument(arguments, 3));
    search->comparison = comparisonNamed(argument(arguments, 5));
    search->wanted = searchedValue(model, argument(arguments, 4), property, search->comparison);
    search->ofGroups = lower(*type) != "person" && lower(*type) != "contact";
    if (!property || (search->wanted.empty() && search->comparison > 1)) {
        model.raise();
    }
    search->property = *property;
    if (!search->ofGroups) {
        search->label = label;
        search->key = key;
    }
    if (conjunction) {
        auto both = std::make_shared<model::Search>();
        both->first = search;
        both->second = state.search;
        both->either = join == "expand";
        state.search = both;
    } else {
        state.search = search;
    }

    std::vector<Found> found;
    for (const RecordPtr& record : model.book.search(*state.search)) {
        found.push_back({record, record->unsaved});
    }
    const std::size_t count = found.size();
    (state.lastSearchType == 1 ? state.groupResults : state.personResults) = std::move(found);
    state.currentRecordType = state.lastSearchType;
    return answer(std::to_string(count));
}

Expected OpenFirstRecord(Model& model, const Arguments& arguments) {
    model.setType(arguments, 0);
    cursor(model) = 0;
    model.state.property.reset();
    return openAt(model);
}

Expected OpenNextRecord(Model& model, const Arguments& arguments) {
    model.setType(arguments, 0);
    if (arguments.empty()) {
        model.state.currentRecordType = model.state.lastSearchType;
    }
    ++cursor(model);
    model.state.property.reset();
    return openAt(model);
}

Expected Open(Model& model, const Arguments& arguments) {
    State& state = model.state;
    state.property.reset();
    const Text id = argument(arguments, 0);
    const bool person = isPerson(model, id);
    const RecordPtr record = model.book.find(id);
    (person ? state.person : state.group) = record;
    state.currentRecordType = state.lastSearchType = person ? 0 : 1;
    if (!record) {
        model.fail(-8001);
    }
    return done();
}

Expected New(Model& model, const Arguments& arguments) {
    State& state = model.state;
    const Text type = argument(arguments, 0);
    if (!type) {
        model.failCodeOnly(-4);
    }
    const std::string word = lower(*type);
    if (word != "person" && word != "contact" && word != "group") {
        model.fail(-4);
    }
    const bool group = word == "group";
    state.currentRecordType = group ? 1 : 0;
    const RecordPtr record = Book::make(group);
    (group ? state.group : state.person) = record;
    state.newRecord = true;
    if (const Text name = argument(arguments, 1); group && name) {
        model.set("GroupName", *name);
    }
    Expected expected;
    expected.kind = Expected::Kind::newRecord;
    expected.text = group ? ":ABGroup" : ":ABPerson";
    expected.learn = [record](const std::string& id) { record->id = id; };
    return expected;
}

Expected Save(Model& model, const Arguments& /*arguments*/) {
    State& state = model.state;
    if (state.newRecord) {
        RecordPtr& current = model.ofGroups() ? state.group : state.person;
        model.book.add(current);
        current = nullptr;
        state.newRecord = false;
    }
    model.save();
    ++state.savedCount;
    state.lastSearchType = state.currentRecordType;
    return done();
}

Expected Delete(Model& model, const Arguments& arguments) {
    const RecordPtr record = model.book.find(argument(arguments, 0));
    if (!record) {
        model.fail(-8001);
    }
    model.remove(record);
    model.save();
    return done();
}

Expected ClearAll(Model& model, const Arguments& arguments) {
    // There is no own card in this book: the third argument changes nothing.
    State& state = model.state;
    const Text id = argument(arguments, 0);
    const Text what = argument(arguments, 1);
    if (id) {
        if (isPerson(model, id)) {
            model.fail(-8018);
        }
        state.group = model.book.find(id);
    }
    const bool people = !what || lower(*what) == "members";
    const bool groups = !what || lower(*what) == "groups";
    // The lists are made before anything is removed.
    std::vector<RecordPtr> deleted;
    std::vector<RecordPtr> detached;
    if (people) {
        deleted = id ? model.book.members(*state.group, false) : model.book.all(false);
    }
    if (groups && id) {
        detached = model.book.members(*state.group, true);
    } else if (groups) {
        const auto all = model.book.all(true);
        deleted.insert(deleted.end(), all.begin(), all.end());
    }
    for (const RecordPtr& record : deleted) {
        model.remove(record);
    }
    for (const RecordPtr& record : detached) {
        model.book.leave(state.group, record);
    }
    model.save();
    return done();
}

} // namespace model::run

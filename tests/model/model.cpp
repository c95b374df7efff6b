#include "tests/model/model.h"

#include "tests/model/words.h"

#include <algorithm>
#include <map>
#include <stdexcept>

namespace model {
namespace {

constexpr Function kFunctions[] = {
    {"KORU_Version", 0, 0, 1, run::Version},
    {"KORU_Delete", 3, 1, 1, run::Delete},
    {"KORU_Search", 4, 6, 7, run::Search},
    {"KORU_OpenFirstRecord", 5, 0, 1, run::OpenFirstRecord},
    {"KORU_OpenNextRecord", 6, 0, 1, run::OpenNextRecord},
    {"KORU_Open", 7, 1, 1, run::Open},
    {"KORU_New", 8, 1, 3, run::New},
    {"KORU_Save", 9, 0, 1, run::Save},
    {"KORU_GetFirstParentID", 10, 0, 0, run::GetFirstParentID},
    {"KORU_GetNextParentID", 11, 0, 0, run::GetNextParentID},
    {"KORU_CompareProperty", 12, 2, 4, run::CompareProperty},
    {"KORU_GetValueForProperty", 13, 1, 2, run::GetValueForProperty},
    {"KORU_OpenFirstMVProperty", 14, 1, 2, run::OpenFirstMVProperty},
    {"KORU_OpenNextMVProperty", 15, 0, 0, run::OpenNextMVProperty},
    {"KORU_GetValueForUID", 16, 2, 4, run::GetValueForUID},
    {"KORU_SetValueForProperty", 17, 2, 3, run::SetValueForProperty},
    {"KORU_SetValueForUID", 18, 3, 5, run::SetValueForUID},
    {"KORU_GetLabelForUID", 19, 2, 3, run::GetLabelForUID},
    {"KORU_SetLabelForUID", 20, 3, 4, run::SetLabelForUID},
    {"KORU_DeleteValueForProperty", 22, 1, 2, run::DeleteValueForProperty},
    {"KORU_DeleteValueForUID", 23, 2, 3, run::DeleteValueForUID},
    {"KORU_AddPerson", 24, 1, 1, run::AddPerson},
    {"KORU_RemovePerson", 25, 1, 1, run::RemovePerson},
    {"KORU_AddSubgroup", 26, 1, 1, run::AddSubgroup},
    {"KORU_RemoveSubgroup", 27, 1, 1, run::RemoveSubgroup},
    {"KORU_GetFirstMemberID", 28, 0, 0, run::GetFirstMemberID},
    {"KORU_GetNextMemberID", 29, 0, 0, run::GetNextMemberID},
    {"KORU_GetFirstSubgroupID", 30, 0, 0, run::GetFirstSubgroupID},
    {"KORU_GetNextSubgroupID", 31, 0, 0, run::GetNextSubgroupID},
    {"KORU_AddMV", 32, 3, 4, run::AddMV},
    {"KORU_AddAddress", 33, 7, 7, run::AddAddress},
    {"KORU_GetLastError", 34, 0, 1, run::GetLastError},
    {"KORU_AddCustomField", 35, 2, 2, run::AddCustomField},
    {"KORU_RemoveCustomField", 36, 2, 2, run::RemoveCustomField},
    {"KORU_SetCustomField", 37, 3, 3, run::SetCustomField},
    {"KORU_GetCustomField", 38, 2, 2, run::GetCustomField},
    {"KORU_GetListOfValues", 41, 3, 3, run::GetListOfValues},
    {"KORU_ClearAll", 42, 3, 3, run::ClearAll},
};

std::string messageOf(int code) {
    static const std::map<int, std::string> kMessages{
        {-3, "Invalid Number of Parameters"},
        {-4, "Invalid Parameter value(s)"},
        {-8000, "Exception caught in function"},
        {-8001, "Record does not exist"},
        {-8002, "Failed to delete record"},
        {-8003, "No active record in context"},
        {-8004, "Function call order is invalid"},
        {-8006, "Invalid property type"},
        {-8007, "UID does not exist"},
        {-8008, "Invalid value for key"},
        {-8009, "Property is not an Address"},
        {-8010, "Invalid property name"},
        {-8011, "Error in property"},
        {-8012, "Error setting property"},
        {-8013, "Error replacing multi-value array"},
        {-8014, "Error setting label"},
        {-8015, "Failed to create address"},
        {-8016, "Failed to add property"},
        {-8018, "Invalid record type"},
        {-8019, "Multi-value array does not exist"},
        {-8020, "Unable to create property"},
        {-8021, "No properties added"},
        {-8023, "No properties removed"},
        {-8024, "Unable to set custom property"},
        {-8029, "Property value cannot be empty"},
        {-8030, "UID is missing and is required for this function"},
        {-8031, "Invalid country code passed to function"},
    };
    return kMessages.at(code);
}

} // namespace

std::span<const Function> functions() {
    return kFunctions;
}

const Function& functionNamed(const std::string& name) {
    for (const Function& function : kFunctions) {
        if (name == function.name) {
            return function;
        }
    }
    throw std::out_of_range(name);
}

std::string LastError::text() const {
    if (!message) {
        return "Success";
    }
    return detail ? *message + " " + *detail : *message;
}

Text argument(const Arguments& arguments, std::size_t position) {
    return position < arguments.size() && !arguments[position].empty() ? Text(arguments[position])
                                                                       : std::nullopt;
}

Expected answer(std::string text) {
    Expected expected;
    expected.text = std::move(text);
    return expected;
}

Expected done() {
    return answer("0");
}

Expected Model::call(const Function& function, const Arguments& arguments) {
    if (function.run == run::GetLastError) {
        return function.run(*this, arguments);
    }
    error = {};
    const int count = static_cast<int>(arguments.size());
    try {
        if (function.run != run::Version &&
            (count < function.minArguments || count > function.maxArguments)) {
            failCodeOnly(-3);
        }
        Expected expected = function.run(*this, arguments);
        if (error.code == 0) {
            // Texts go to the host with a zero character for their end.
            expected.text = expected.text.substr(0, expected.text.find('\0'));
            return expected;
        }
    } catch (const Failed&) {
    } catch (const WrongType&) {
        raised();
    }
    return answer("!!ERROR!!");
}

void Model::note(int code, const std::string& detail) {
    error = {code, code, messageOf(code), detail, false};
}

void Model::fail(int code, const std::string& detail) {
    note(code, detail);
    throw Failed{};
}

void Model::failCodeOnly(int code) {
    error.code = code;
    throw Failed{};
}

void Model::raised() {
    note(-8000);
    error.anyDetail = true;
}

void Model::raise() {
    raised();
    throw Failed{};
}

void Model::setType(const Arguments& arguments, std::size_t position) {
    const std::string word = lower(argument(arguments, position).value_or(""));
    if (word == "person" || word == "contact") {
        state.currentRecordType = 0;
    } else if (word == "group") {
        state.currentRecordType = 1;
    }
}

void Model::requireActive() {
    if (ofGroups() && !state.group) {
        fail(-8003);
    }
}

int Model::openProperty(const Text& name) {
    const Text property = propertyNamed(name);
    if (!property) {
        fail(-8010);
    }
    state.values.reset();
    state.property = property;
    const int type = book.typeOf(ofGroups(), *property);
    if (type == 0) {
        fail(-8011);
    }
    if ((type & 0x100) != 0) {
        const Value value = book.value(current(), *property);
        if (const auto* entries = value.as<Entries>()) {
            state.values = *entries;
        }
    }
    return type;
}

int Model::openList(const Text& name, const std::string& detail) {
    const int type = openProperty(name);
    if ((type & 0x100) == 0) {
        fail(-8006, detail);
    }
    return type;
}

int Model::openSingle(const Text& name, const std::string& detail) {
    const int type = openProperty(name);
    if ((type & 0x100) != 0) {
        fail(-8006, detail);
    }
    return type;
}

bool Model::set(const std::string& property, Value value) {
    return book.set(current(), property, std::move(value));
}

std::vector<RecordPtr> Model::inHand() const {
    std::vector<RecordPtr> records{state.person, state.group};
    for (const Results* results : {&state.personResults, &state.groupResults}) {
        if (*results) {
            for (const Found& found : **results) {
                if (found.asked) {
                    records.push_back(found.record);
                }
            }
        }
    }
    for (const Walk* walk : {&state.parents, &state.members, &state.subgroups}) {
        records.push_back(walk->current);
        if (walk->list) {
            records.insert(records.end(), walk->list->begin(), walk->list->end());
        }
    }
    std::erase(records, nullptr);
    return records;
}

std::vector<RecordPtr> Model::strays() const {
    std::vector<RecordPtr> records = inHand();
    std::erase_if(records, [](const RecordPtr& record) { return record->inBook; });
    return records;
}

// A group that is in no book keeps hold of who has joined it.
bool Model::held(const Record& record) const {
    const auto records = inHand();
    return std::any_of(records.begin(), records.end(), [&](const RecordPtr& one) {
        return one.get() == &record || (!one->inBook && std::any_of(one->members.begin(), one->members.end(),
                                                                    [&](const RecordPtr& member) {
                                                                        return member.get() == &record;
                                                                    }));
    });
}

void Model::remove(const RecordPtr& record) {
    book.remove(record, [this](const Record& one) { return held(one); });
}

void Model::save() {
    book.save();
}

} // namespace model

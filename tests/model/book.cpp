#include "tests/model/book.h"

#include "tests/model/words.h"

#include <algorithm>

namespace model {

RecordPtr Book::make(bool isGroup) {
    auto record = std::make_shared<Record>();
    record->isGroup = isGroup;
    record->values["Creation"] = Clock{};
    record->values["Modification"] = Clock{};
    return record;
}

RecordPtr Book::find(const Text& id) const {
    const auto found = std::find_if(records_.begin(), records_.end(),
                                    [&](const RecordPtr& record) { return id && record->id == *id; });
    return found == records_.end() ? nullptr : *found;
}

std::vector<RecordPtr> Book::all(bool groups) const {
    std::vector<RecordPtr> found;
    for (const RecordPtr& record : records_) {
        if (record->isGroup == groups) {
            found.push_back(record);
        }
    }
    return found;
}

bool Book::add(const RecordPtr& record) {
    // What was deleted once does not come back.
    if (!record || !record->loose) {
        return false;
    }
    record->loose = false;
    record->inBook = true;
    records_.push_back(record);
    return true;
}

void Book::remove(const RecordPtr& record, const std::function<bool(const Record&)>& held) {
    std::erase(records_, record);
    record->inBook = false;
    record->unsaved = false;
    record->members.clear();
    for (const RecordPtr& group : records_) {
        std::erase(group->members, record);
    }
    if (!held(*record)) {
        record->values.clear();
    }
}

int Book::typeOf(bool ofGroups, const std::string& property) const {
    if (const int type = builtInType(ofGroups, property); type != 0) {
        return type;
    }
    return defined_.contains({ofGroups, property}) ? 1 : 0;
}

Value Book::value(const RecordPtr& record, const std::string& property) const {
    if (!record || typeOf(record->isGroup, property) == 0) {
        return {};
    }
    if (property == "UID") {
        return record->id;
    }
    const auto found = record->values.find(property);
    return found == record->values.end() ? Value() : found->second;
}

bool Book::set(const RecordPtr& record, const std::string& property, Value value) const {
    const int type = record ? typeOf(record->isGroup, property) : 0;
    if (type == 0 || property == "UID" || property == "Creation" || property == "Modification") {
        return false;
    }
    const bool fits = value.empty() || (type == 1 && value.as<std::string>() != nullptr) ||
                      (type == 2 && value.as<long long>() != nullptr) ||
                      (type == 4 && value.as<Civil>() != nullptr) ||
                      ((type & 0x100) != 0 && value.as<Entries>() != nullptr);
    if (!fits) {
        throw WrongType{};
    }
    if (const auto* entries = value.as<Entries>(); entries != nullptr && entries->empty()) {
        value = {}; // the framework keeps no empty lists
    }
    if (this->value(record, property) == value) {
        return true;
    }
    if (value.empty()) {
        record->values.erase(property);
    } else {
        record->values[property] = std::move(value);
    }
    record->unsaved = record->unsaved || record->inBook;
    return true;
}

std::vector<RecordPtr> Book::members(const Record& group, bool groups) const {
    std::vector<RecordPtr> found;
    for (const RecordPtr& member : group.members) {
        if (member->isGroup == groups && member->inBook) {
            found.push_back(member);
        }
    }
    return found;
}

std::vector<RecordPtr> Book::parents(const RecordPtr& record) const {
    std::vector<RecordPtr> found;
    for (const RecordPtr& group : records_) {
        if (record->inBook &&
            std::find(group->members.begin(), group->members.end(), record) != group->members.end()) {
            found.push_back(group);
        }
    }
    return found;
}

// Whether a group is the wanted one or has it inside, however deep.
bool Book::contains(const RecordPtr& group, const RecordPtr& wanted) const {
    return group == wanted ||
           std::any_of(group->members.begin(), group->members.end(),
                       [&](const RecordPtr& member) { return member->isGroup && contains(member, wanted); });
}

void Book::join(const RecordPtr& group, const RecordPtr& member) const {
    const bool inside =
        std::find(group->members.begin(), group->members.end(), member) != group->members.end();
    if (!inside && member->inBook && !(member->isGroup && contains(member, group))) {
        group->members.push_back(member);
        group->unsaved = group->unsaved || group->inBook;
    }
}

void Book::leave(const RecordPtr& group, const RecordPtr& member) const {
    if (std::erase(group->members, member) > 0) {
        group->unsaved = group->unsaved || group->inBook;
    }
}

bool Book::define(bool ofGroups, const std::string& property) {
    return typeOf(ofGroups, property) == 0 && defined_.insert({ofGroups, property}).second;
}

bool Book::undefine(bool ofGroups, const std::string& property, const std::vector<RecordPtr>& otherRecords) {
    if (defined_.erase({ofGroups, property}) == 0) {
        return false;
    }
    for (const auto& list : {std::cref(records_), std::cref(otherRecords)}) {
        for (const RecordPtr& record : list.get()) {
            if (record->isGroup == ofGroups) {
                record->values.erase(property);
            }
        }
    }
    return true;
}

Book::Saved Book::contentsOf(const Record& record) {
    Saved contents{record.isGroup, record.values, {}};
    for (const RecordPtr& member : record.members) {
        contents.members.push_back(member->id);
    }
    return contents;
}

void Book::save() {
    saved_.clear();
    for (const RecordPtr& record : records_) {
        record->unsaved = false;
        std::erase_if(record->members, [](const RecordPtr& member) { return !member->inBook; });
        saved_[record->id] = contentsOf(*record);
    }
}

} // namespace model

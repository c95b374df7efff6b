// Walks over groups and members, membership, lists of values, properties that users add.

#include "tests/model/model.h"

namespace model::run {
namespace {

Expected step(Walk& walk) {
    if (walk.index >= walk.list->size()) {
        return answer("END");
    }
    walk.current = walk.list->at(walk.index++);
    return answer(walk.current->id);
}

void requireGroup(Model& model) {
    if (!model.state.group) {
        model.fail(-8004);
    }
}

// A search can put a person where the current group is: a person has no members, and asking raises.
std::vector<RecordPtr> listOf(Model& model, bool groups) {
    if (!model.state.group->isGroup) {
        model.raise();
    }
    return model.book.members(*model.state.group, groups);
}

// The record that is to join or leave the current group.
RecordPtr recordToJoin(Model& model, const Arguments& arguments) {
    requireGroup(model);
    const RecordPtr record = model.book.find(argument(arguments, 0));
    if (!record) {
        model.fail(-8007);
    }
    return record;
}

// Joins or leaves; the address book refuses people among groups and groups among people silently.
Expected changeMembership(Model& model, const Arguments& arguments, bool groups, bool joins) {
    const RecordPtr record = recordToJoin(model, arguments);
    if (groups && !record->isGroup) {
        model.fail(-8018);
    }
    const RecordPtr& group = model.state.group;
    if (!group->isGroup) {
        model.raise();
    }
    if (record->isGroup == groups) {
        joins ? model.book.join(group, record) : model.book.leave(group, record);
    }
    return done();
}

std::string fullName(const Model& model, const RecordPtr& person) {
    std::string name;
    for (const char* part : {"Title", "First", "Middle", "Last", "Suffix"}) {
        const Value value = model.book.value(person, part);
        if (const auto* text = value.as<std::string>()) {
            name += *text + (std::string(part) == "Suffix" ? "" : " ");
        }
    }
    return name;
}

bool isPersonKind(Model& model, const Arguments& arguments) {
    const Text kind = argument(arguments, 0);
    if (!kind) {
        model.failCodeOnly(-4);
    }
    return lower(*kind) == "person";
}

// The record and the property of a custom value. Without a name the framework raises, if there is a record.
RecordPtr recordOfKind(Model& model, const Arguments& arguments) {
    const RecordPtr record = isPersonKind(model, arguments) ? model.state.person : model.state.group;
    if (record && !argument(arguments, 1)) {
        model.raise();
    }
    return record;
}

} // namespace

Expected GetFirstParentID(Model& model, const Arguments& arguments) {
    model.setType(arguments, 0);
    model.requireActive();
    Walk& walk = model.state.parents;
    walk.list.reset();
    if (!model.current()) {
        return answer("END");
    }
    walk.list = model.book.parents(model.current());
    walk.index = 0;
    return step(walk);
}

Expected GetNextParentID(Model& model, const Arguments& /*arguments*/) {
    model.requireActive();
    if (!model.state.parents.list) {
        model.fail(-8004);
    }
    return step(model.state.parents);
}

Expected GetFirstMemberID(Model& model, const Arguments& /*arguments*/) {
    requireGroup(model);
    Walk& walk = model.state.members;
    walk.index = 0;
    walk.list.reset();
    walk.list = listOf(model, false);
    return step(walk);
}

Expected GetNextMemberID(Model& model, const Arguments& /*arguments*/) {
    requireGroup(model);
    if (!model.state.members.list) {
        model.fail(-8004);
    }
    return step(model.state.members);
}

Expected GetFirstSubgroupID(Model& model, const Arguments& /*arguments*/) {
    requireGroup(model);
    Walk& walk = model.state.subgroups;
    walk.list.reset();
    walk.list = listOf(model, true);
    walk.index = 0;
    return step(walk);
}

Expected GetNextSubgroupID(Model& model, const Arguments& /*arguments*/) {
    model.requireActive();
    Walk& walk = model.state.subgroups;
    if (!walk.list) {
        model.fail(-8004);
    }
    if (walk.index < walk.list->size()) {
        return answer("END");
    }
    walk.current = nullptr;
    model.raise();
}

Expected AddPerson(Model& model, const Arguments& arguments) {
    model.requireActive();
    return changeMembership(model, arguments, false, true);
}

Expected RemovePerson(Model& model, const Arguments& arguments) {
    return changeMembership(model, arguments, false, false);
}

Expected AddSubgroup(Model& model, const Arguments& arguments) {
    return changeMembership(model, arguments, true, true);
}

Expected RemoveSubgroup(Model& model, const Arguments& arguments) {
    return changeMembership(model, arguments, true, false);
}

Expected GetListOfValues(Model& model, const Arguments& arguments) {
    model.setType(arguments, 0);
    const Text what = argument(arguments, 1);
    const Text field = argument(arguments, 2);
    if (!what && !field) {
        model.fail(-3);
    }
    const bool members = lower(what.value_or("")) == "members";
    const bool ids = lower(field.value_or("")) == "uid";
    if ((!members && lower(what.value_or("")) != "groups") || (!ids && lower(field.value_or("")) != "name") ||
        (members && !model.ofGroups())) {
        model.fail(-4);
    }
    std::string list;
    if (!model.current()) {
        return answer(list);
    }
    bool first = true;
    for (const RecordPtr& record : members ? listOf(model, false) : model.book.parents(model.current())) {
        list += first ? "" : "\r";
        first = false;
        if (ids) {
            list += record->id;
        } else if (members) {
            list += fullName(model, record);
        } else {
            const Value name = model.book.value(record, "GroupName");
            list += name.empty() ? "" : *name.as<std::string>();
        }
    }
    return answer(list);
}

Expected AddCustomField(Model& model, const Arguments& arguments) {
    const bool person = isPersonKind(model, arguments);
    const Text name = argument(arguments, 1);
    if (!name) {
        model.failCodeOnly(-4);
    }
    if (name->starts_with(".")) {
        model.fail(-8020); // such names are the framework's own
    }
    if (!model.book.define(!person, *name)) {
        model.fail(-8021);
    }
    return done();
}

Expected RemoveCustomField(Model& model, const Arguments& arguments) {
    const bool person = isPersonKind(model, arguments);
    const Text name = argument(arguments, 1);
    if (!name) {
        model.failCodeOnly(-4);
    }
    if (!model.book.undefine(!person, *name, model.strays())) {
        model.fail(-8023);
    }
    return done();
}

Expected SetCustomField(Model& model, const Arguments& arguments) {
    const RecordPtr record = recordOfKind(model, arguments);
    const std::string name = argument(arguments, 1).value_or("");
    const Text text = argument(arguments, 2);
    if (!model.book.set(record, name, text ? Value(*text) : Value()) && text) {
        model.fail(-8024);
    }
    return done();
}

Expected GetCustomField(Model& model, const Arguments& arguments) {
    const RecordPtr record = recordOfKind(model, arguments);
    const Value value = model.book.value(record, argument(arguments, 1).value_or(""));
    if (value.empty()) {
        return answer("empty");
    }
    if (const auto* text = value.as<std::string>()) {
        return answer(*text);
    }
    Expected expected;
    expected.kind = Expected::Kind::escapes; // what is no text is taken for one
    return expected;
}

} // namespace model::run

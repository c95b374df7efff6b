#include "tools/addressbook/completers.h"

#include "frameworks/AddressBook/store/store.h"
#include "tools/addressbook/commands.h"
#include "tools/addressbook/fields.h"
#include "tools/addressbook/property_path.h"
#include "tools/addressbook/sync/places.h"

#include <algorithm>
#include <memory>

namespace addressbook::tool {
namespace {

using command_line::Completion;
using command_line::Typed;

// Who presses Tab waits: in larger books ids are not searched beyond this many records.
constexpr std::size_t kSearchedRecords = 20'000;
// More ids than that help nobody.
constexpr std::size_t kShownIds = 100;

// Opens the address book that the line names; null when it cannot be opened.
std::unique_ptr<Store> bookOf(const Typed& typed) {
    Options options;
    options.book = typed.value("--book");
    try {
        return std::make_unique<Store>(folder(options), Store::Access::readOnly);
    } catch (const StoreError&) {
        return nullptr;
    }
}

std::vector<Field> fieldsOf(const Typed& typed) {
    const std::unique_ptr<Store> store = bookOf(typed);
    return store ? allFields(*store) : allFields(std::vector<PropertyDefinition>());
}

// Completes the last of the names in a list with commas.
Completion fieldList(const Typed& typed) {
    Completion completion;
    completion.continues = true;
    const std::string before = typed.word.substr(0, typed.word.rfind(',') + 1);
    for (const Field& field : fieldsOf(typed)) {
        completion.candidates.push_back({before + field.name, ""});
    }
    return completion;
}

// Completes the property with which a search begins.
Completion search(const Typed& typed) {
    Completion completion;
    completion.continues = true;
    for (const Field& field : fieldsOf(typed)) {
        if (!field.property.empty()) {
            completion.candidates.push_back({field.name, ""});
        }
    }
    return completion;
}

// Completes the name of a property that can be set.
Completion settings(const Typed& typed) {
    Completion completion;
    completion.continues = true;
    const std::unique_ptr<Store> store = bookOf(typed);
    const auto record =
        store && !typed.arguments.empty() ? store->find(typed.arguments.front()) : std::nullopt;
    const auto definitions = store ? store->definitions() : std::vector<PropertyDefinition>();
    for (const Field& field : settableFields(definitions, record ? record->kind : Kind::person)) {
        completion.candidates.push_back({field.name + '=', ""});
    }
    return completion;
}

// Completes the name of a property whose endings can be indexed.
Completion properties(const Typed& typed) {
    Completion completion;
    const std::unique_ptr<Store> store = bookOf(typed);
    const auto definitions = store ? store->definitions() : std::vector<PropertyDefinition>();
    for (const Field& field :
         settableFields(definitions, typed.options.contains("--groups") ? Kind::group : Kind::person)) {
        completion.candidates.push_back({field.name, ""});
    }
    return completion;
}

Completion groupNames(const Typed& typed) {
    Completion completion;
    if (const std::unique_ptr<Store> store = bookOf(typed)) {
        for (const RowId row : store->rows(Kind::group)) {
            const Value value = store->value(row, property::kGroupName);
            if (const auto* name = value.as<std::string>()) {
                completion.candidates.push_back({*name, ""});
            }
        }
    }
    return completion;
}

// Completes unique ids, with the names of the records beside them.
Completion ids(const Typed& typed, std::initializer_list<Kind> kinds) {
    Completion completion;
    const std::unique_ptr<Store> store = bookOf(typed);
    if (!store) {
        return completion;
    }
    for (const Kind kind : kinds) {
        std::vector<RowId> rows = store->rows(kind);
        rows.resize(std::min(rows.size(), kSearchedRecords));
        for (const RowId row : rows) {
            const auto record = store->find(row);
            if (completion.candidates.size() < kShownIds && record && record->uid.starts_with(typed.word)) {
                completion.candidates.push_back({record->uid, displayName(*store, *record)});
            }
        }
    }
    return completion;
}

// Completes names of accounts and their address books; with [local] also what belongs to none.
Completion places(const Typed& typed, bool local) {
    Completion completion;
    if (local) {
        completion.candidates.push_back({std::string(kLocal), ""});
    }
    if (const std::unique_ptr<Store> store = bookOf(typed)) {
        for (const std::string& name : Places(*store).names()) {
            completion.candidates.push_back({name, ""});
        }
    }
    return completion;
}

} // namespace

command_line::Completers completers() {
    return {
        {"--fields", fieldList},
        {"--where", search},
        {"--explain", search},
        {"--group", groupNames},
        {"PROPERTY=VALUE", settings},
        {"PROPERTY", properties},
        {"--account", [](const Typed& typed) { return places(typed, true); }},
        {"--to", [](const Typed& typed) { return places(typed, true); }},
        {"PLACE", [](const Typed& typed) { return places(typed, true); }},
        {"ACCOUNT", [](const Typed& typed) { return places(typed, false); }},
        {"ID",
         [](const Typed& typed) {
             return typed.command == "me" ? ids(typed, {Kind::person})
                                          : ids(typed, {Kind::person, Kind::group});
         }},
    };
}

} // namespace addressbook::tool

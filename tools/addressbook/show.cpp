#include "tools/addressbook/show.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/vcard.h"
#include "tools/addressbook/json.h"
#include "tools/addressbook/sync/places.h"

#include <algorithm>
#include <span>

namespace addressbook::tool {

namespace {

Json fieldJson(const Store& store, const RecordRef& record, const Field& field) {
    if (field.property.empty()) {
        return fieldText(store, record, field);
    }
    return jsonOf(store.value(record.row, field.property));
}

// Returns the names of the groups that a record is in.
std::vector<std::string> groupNames(const Store& store, const RecordRef& record) {
    std::vector<std::string> names;
    for (const RowId row : store.parents(record.row)) {
        names.push_back(valueText(store.value(row, property::kGroupName)));
    }
    return names;
}

// Returns the first [limit] rows at most.
std::span<const RowId> firstOf(const std::vector<RowId>& rows, std::size_t limit) {
    return std::span(rows).first(std::min(rows.size(), limit));
}

// Pads a text to a column of [width] characters, followed by at least one blank.
std::string column(std::string text, std::size_t width) {
    const std::size_t characters = countCharacters(text);
    text.append(characters < width ? width - characters : 1, ' ');
    return text;
}

void writeRow(Output& output, const std::string& name, const std::string& label, std::string_view value) {
    constexpr std::size_t kName = 18, kLabel = 14;
    std::string row = column(name, kName) + column(label, kLabel);
    for (std::size_t start = 0;;) {
        const std::size_t end = std::min(value.find_first_of("\r\n", start), value.size());
        row += escaped(value.substr(start, end - start)) + '\n';
        if (end == value.size()) {
            break;
        }
        row += std::string(kName + kLabel, ' ');
        start = end + (value.substr(end, 2) == "\r\n" ? 2 : 1);
    }
    output.write(row);
}

void writeValue(Output& output, const std::string& name, const Value& value) {
    if (const auto* list = value.as<MultiValue>()) {
        for (std::size_t at = 0; at < list->entries.size(); ++at) {
            const Entry& entry = list->entries[at];
            writeRow(output, at ? "" : name, escaped(labelText(entry.label)), valueText(entry.value));
        }
    } else if (const auto* array = value.as<Array>()) {
        for (std::size_t at = 0; at < array->size(); ++at) {
            writeRow(output, at ? "" : name, "", valueText((*array)[at]));
        }
    } else {
        writeRow(output, name, "", valueText(value));
    }
}

// The full name that a card gave the record; none when it is the one to show.
std::optional<std::string> fullNameOf(const RecordRef& record, const std::map<std::string, Value>& values) {
    vcard::Card card;
    card.kind = record.kind;
    card.values = values;
    return vcard::keptFullName(card);
}

} // namespace

void listRecords(const Store& store, const std::vector<RowId>& rows, const std::vector<Field>& fields,
                 Output& output) {
    for (const RowId row : rows) {
        const auto record = store.find(row);
        if (!record) {
            continue;
        }
        std::string line = record->uid;
        for (const Field& field : fields) {
            line += '\t' + escaped(fieldText(store, *record, field));
        }
        output.write(line + '\n');
    }
    output.finish();
}

void listRecordsAsJson(const Store& store, const std::vector<RowId>& rows, const std::vector<Field>& fields,
                       Output& output) {
    JsonLines lines(output);
    for (const RowId row : rows) {
        const auto record = store.find(row);
        if (!record) {
            continue;
        }
        Json object{{"id", record->uid}};
        for (const Field& field : fields) {
            object[field.name] = fieldJson(store, *record, field);
        }
        lines.add(object);
    }
    lines.finish();
    output.finish();
}

void listGroups(const Store& store, const std::vector<RowId>& rows, bool json, Output& output) {
    if (json) {
        JsonLines lines(output);
        for (const RowId row : rows) {
            if (const auto group = store.find(row)) {
                lines.add({{"id", group->uid},
                           {"name", displayName(store, *group)},
                           {"members", store.members(row).size()},
                           {"subgroups", store.subgroups(row).size()}});
            }
        }
        lines.finish();
    } else {
        for (const RowId row : rows) {
            if (const auto group = store.find(row)) {
                output.write(group->uid + '\t' + escaped(displayName(store, *group)) + '\t' +
                             std::to_string(store.members(row).size()) + '\t' +
                             std::to_string(store.subgroups(row).size()) + '\n');
            }
        }
    }
    output.finish();
}

void showValues(std::map<std::string, Value> values, const std::vector<Field>& fields, Output& output) {
    std::erase_if(values, [](const auto& value) { return isInternal(value.first); });
    // In the order of the fields, then all other properties.
    for (const Field& field : fields) {
        if (const auto found = values.find(field.property); found != values.end()) {
            writeValue(output, field.name, found->second);
            values.erase(found);
        }
    }
    for (const auto& [property, value] : values) {
        writeValue(output, friendlyName(fields, property), value);
    }
}

void showGroupNames(const std::vector<std::string>& names, Output& output) {
    for (const std::string& name : names) {
        writeRow(output, "in group", "", name);
    }
}

void writeNames(const Store& store, const std::vector<RecordRef>& records, bool json, Output& output) {
    if (json) {
        JsonLines lines(output);
        for (const RecordRef& record : records) {
            lines.add({{"id", record.uid}, {"name", displayName(store, record)}});
        }
        lines.finish();
        return;
    }
    for (const RecordRef& record : records) {
        output.write(record.uid + '\t' + escaped(displayName(store, record)) + '\n');
    }
}

void showRecord(const Store& store, const RecordRef& record, bool json, Output& output, std::size_t limit) {
    std::map<std::string, Value> values = store.values(record.row);
    const std::vector<Field> fields = allFields(store);
    const Value image = store.value(record.row, property::kImage);
    const auto fullName = fullNameOf(record, values);
    std::erase_if(values, [](const auto& value) { return isInternal(value.first); });
    values.erase(std::string(property::kUid));
    const Places places(store);
    const std::string place = places.accounts().empty() ? "" : places.placeOf(store, record.uid);
    if (json) {
        Json object{{"id", record.uid}, {"name", displayName(store, record)}};
        if (!place.empty()) {
            object["account"] = place;
        }
        if (fullName) {
            object["fullname"] = *fullName;
        }
        for (const auto& [property, value] : values) {
            object[friendlyName(fields, property)] = jsonOf(value);
        }
        if (const auto* bytes = image.as<Bytes>()) {
            object["picture"] = {{"bytes", bytes->size()}};
        }
        object["groups"] = groupNames(store, record);
        if (record.kind == Kind::group) {
            for (const auto& [key, rows] : {std::pair("members", store.members(record.row)),
                                            std::pair("subgroups", store.subgroups(record.row))}) {
                object[key] = Json::array();
                for (const RowId row : firstOf(rows, limit)) {
                    if (const auto member = store.find(row)) {
                        object[key].push_back({{"id", member->uid}, {"name", displayName(store, *member)}});
                    }
                }
                if (rows.size() > limit) {
                    object[std::string(key) + "NotShown"] = rows.size() - limit;
                }
            }
        }
        output.write(dump(object, 2) + '\n');
        output.finish();
        return;
    }
    output.write(escaped(displayName(store, record)) + '\n');
    writeRow(output, "id", "", record.uid);
    if (!place.empty()) {
        writeRow(output, "account", "", place);
    }
    if (fullName) {
        writeRow(output, "fullname", "", *fullName);
    }
    showValues(values, fields, output);
    if (!image.empty()) {
        writeRow(output, "picture", "", valueText(image));
    }
    showGroupNames(groupNames(store, record), output);
    if (record.kind == Kind::group) {
        for (const auto& rows : {store.members(record.row), store.subgroups(record.row)}) {
            for (const RowId row : firstOf(rows, limit)) {
                if (const auto member = store.find(row)) {
                    writeRow(output, "member", "", displayName(store, *member) + "  " + member->uid);
                }
            }
            if (rows.size() > limit) {
                writeRow(output, "", "", "and " + std::to_string(rows.size() - limit) + " more");
            }
        }
    }
    output.finish();
}

} // namespace addressbook::tool

#include "tools/addressbook/assignment.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/values/uid.h"
#include "tools/addressbook/fields.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace addressbook::tool {
namespace {

// The label of a new entry when the user gives none.
struct DefaultLabel {
    std::string_view property, label;
};
constexpr std::array kDefaultLabels{
    DefaultLabel{property::kPhone, "_$!<Home>!$_"},
    DefaultLabel{property::kEmail, "_$!<Home>!$_"},
    DefaultLabel{property::kAddress, "_$!<Home>!$_"},
    DefaultLabel{property::kUrls, "_$!<HomePage>!$_"},
};

std::string defaultLabel(std::string_view property) {
    for (const DefaultLabel& row : kDefaultLabels) {
        if (row.property == property) {
            return std::string(row.label);
        }
    }
    return "_$!<Other>!$_";
}

bool sameLabel(const Entry& entry, const std::string& label) {
    return entry.label == label || fold(labelText(entry.label)) == fold(labelText(label));
}

std::string labelsOf(const MultiValue& list) {
    std::vector<std::string> labels;
    labels.reserve(list.entries.size());
    for (const Entry& entry : list.entries) {
        labels.push_back(labelText(entry.label));
    }
    return listed(labels);
}

// Returns the value of an entry after the change, "no value" to remove the entry.
Value assignedEntry(const Assignment& assignment, const Value& before) {
    const PropertyPath& path = assignment.path;
    if (path.entryType() != Type::dictionary) {
        return assignment.value.empty() ? Value() : valueOfType(path.entryType(), assignment.value);
    }
    if (path.field.empty()) {
        if (assignment.value.empty()) {
            return {};
        }
        throw std::invalid_argument("say which field of " + path.text + " it is: write " + path.text +
                                    (path.label.empty() ? "/LABEL" : "") + "/FIELD=VALUE");
    }
    const auto* old = before.as<Dictionary>();
    Dictionary fields = old != nullptr ? *old : Dictionary();
    if (assignment.value.empty()) {
        fields.erase(path.field);
    } else {
        fields[path.field] = assignment.value;
    }
    return fields.empty() ? Value() : Value(std::move(fields));
}

void add(MultiValue& list, const Assignment& assignment) {
    if (Value value = assignedEntry(assignment, {}); !value.empty()) {
        const std::string& label = assignment.path.label;
        list.entries.push_back(
            {newUuid(), label.empty() ? defaultLabel(assignment.path.property) : label, std::move(value)});
    }
}

Value assignedList(const Assignment& assignment, const Value& before) {
    const PropertyPath& path = assignment.path;
    const auto* old = before.as<MultiValue>();
    MultiValue list = old != nullptr ? *old : MultiValue();
    const auto isMeant = [&](const Entry& entry) {
        return path.label.empty() || sameLabel(entry, path.label);
    };
    if (assignment.further) {
        add(list, assignment);
    } else if (assignment.value.empty() && path.field.empty()) {
        std::erase_if(list.entries, isMeant);
    } else {
        const auto meant = std::count_if(list.entries.begin(), list.entries.end(), isMeant);
        if (meant > 1 && path.label.empty()) {
            throw std::invalid_argument(path.text + " has several entries; write " + path.text +
                                        "/LABEL=VALUE with one of: " + labelsOf(list) + ", or " + path.text +
                                        "+=VALUE for a further one");
        }
        const auto first = std::find_if(list.entries.begin(), list.entries.end(), isMeant);
        if (first == list.entries.end()) {
            add(list, assignment);
        } else if (first->value = assignedEntry(assignment, first->value); first->value.empty()) {
            list.entries.erase(first);
        }
    }
    return list.entries.empty() ? Value() : Value(std::move(list));
}

} // namespace

Assignment parseAssignment(const std::string& text, Kind kind, const Store& store) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0) {
        throw std::invalid_argument("expected PROPERTY=VALUE, not \"" + text + '"');
    }
    Assignment assignment;
    assignment.further = text[equals - 1] == '+';
    assignment.path = parsePath(std::string_view(text).substr(0, equals - (assignment.further ? 1 : 0)), kind,
                                store.definitions());
    assignment.value = text.substr(equals + 1);
    if (assignment.further && !assignment.path.isList()) {
        throw std::invalid_argument(assignment.path.text + " has one value; write " + assignment.path.text +
                                    "=VALUE");
    }
    return assignment;
}

Value assigned(const Assignment& assignment, const Value& before) {
    const PropertyPath& path = assignment.path;
    try {
        if (path.isList()) {
            return assignedList(assignment, before);
        }
        return assignment.value.empty() ? Value() : valueOfType(path.entryType(), assignment.value);
    } catch (const std::invalid_argument& error) {
        throw std::invalid_argument(path.text + ": " + error.what());
    }
}

} // namespace addressbook::tool

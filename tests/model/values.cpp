// Single values, lists entry by entry, new entries, comparing.

#include "tests/model/model.h"
#include "tests/model/words.h"

#include <algorithm>

namespace model::run {
namespace {

// A value as a result.
Expected shown(const Value& value) {
    Expected expected;
    if (const auto* text = value.as<std::string>()) {
        expected.text = *text;
    } else if (const auto* number = value.as<long long>()) {
        expected.text = std::to_string(*number);
    } else if (const auto* date = value.as<Civil>()) {
        expected.kind = Expected::Kind::date;
        expected.date = *date;
    } else if (value.as<Clock>() != nullptr) {
        expected.kind = Expected::Kind::moment;
    } else if (const auto* address = value.as<Address>()) {
        expected.kind = Expected::Kind::dictionary;
        for (const auto& [key, field] : *address) {
            expected.parts.push_back(key);
        }
    }
    return expected;
}

// Returns the identifier of an entry; the plug-in may have made one that no result has told yet.
Expected identifierOf(Entry& entry, const std::function<void(const std::string&)>& learn) {
    if (!entry.id.empty()) {
        return answer(entry.id);
    }
    Expected expected;
    expected.kind = Expected::Kind::newEntry;
    expected.learn = learn;
    return expected;
}

// Gives the entry that is still without an identifier the one it has, in the open copy and in the record.
void learnEntry(State& state, const RecordPtr& record, const std::string& property, const std::string& id) {
    const auto name = [&](Entries& entries) {
        for (Entry& entry : entries) {
            if (entry.id.empty()) {
                entry.id = id;
            }
        }
    };
    if (state.values) {
        name(*state.values);
    }
    if (record && record->values.contains(property)) {
        if (auto* entries = record->values[property].as<Entries>()) {
            name(*entries);
        }
    }
}

std::size_t indexOf(const Entries& entries, const std::string& id) {
    return static_cast<std::size_t>(
        std::find_if(entries.begin(), entries.end(), [&](const Entry& entry) { return entry.id == id; }) -
        entries.begin());
}

// The text as a value: none for no date.
Value converted(const std::string& text, int type) {
    if ((type & ~0x100) == 4) {
        const auto date = dateFromText(text);
        return date ? Value(*date) : Value();
    }
    return text;
}

int flagsFrom(const std::string& text) {
    if (text == "ShowAsCompany") {
        return 1;
    }
    return text == "FirstNameFirst" ? 32 : text == "LastNameFirst" ? 16 : 0;
}

void writeBack(Model& model) {
    if (!model.set(*model.state.property, *model.state.values)) {
        model.fail(-8013);
    }
}

// Makes people current, opens the list and finds the entry to change.
std::size_t openToChange(Model& model, const Arguments& arguments, int& type) {
    model.state.currentRecordType = 0;
    const Text id = argument(arguments, 1);
    if (!id) {
        model.fail(-8030);
    }
    type = model.openList(argument(arguments, 0));
    if (!model.state.values) {
        model.fail(-8019);
    }
    const std::size_t index = indexOf(*model.state.values, *id);
    if (index == model.state.values->size()) {
        model.fail(-8007);
    }
    return index;
}

// Adds an entry to the open list and writes it back.
Expected append(Model& model, const Value& value, const Text& label, int refused) {
    State& state = model.state;
    if (!state.values) {
        state.values.emplace();
    }
    if (value.empty() || !label) {
        model.fail(refused);
    }
    state.values->push_back({"", *label, value});
    writeBack(model);
    return identifierOf(state.values->back(),
                        [&state, record = state.person, property = *state.property](const std::string& id) {
                            learnEntry(state, record, property, id);
                        });
}

// What the comparison looks at; none when there is no value.
Value stored(Model& model, const Text& name, const Text& id, const Text& key) {
    const int type = model.openProperty(name);
    if (!id && model.state.values) {
        model.fail(-8030);
    }
    if (type == 6 && !key) {
        model.fail(-8008);
    }
    Value value;
    if (!id) {
        value = model.book.value(model.current(), *model.state.property);
    } else {
        if (!model.state.values) {
            model.fail(-8006);
        }
        const std::size_t index = indexOf(*model.state.values, *id);
        if (index == model.state.values->size()) {
            model.fail(-8007);
        }
        value = model.state.values->at(index).value;
    }
    if (!key) {
        return value;
    }
    const auto* address = value.as<Address>();
    if (address == nullptr) {
        model.fail(-8009);
    }
    const Text field = keyForReading(key);
    if (!field) {
        model.fail(-8008);
    }
    const auto found = address->find(*field);
    return found == address->end() ? Value() : Value(found->second);
}

} // namespace

Expected GetValueForProperty(Model& model, const Arguments& arguments) {
    model.setType(arguments, 1);
    model.requireActive();
    const Text name = argument(arguments, 0);
    model.openSingle(name, "This property may be a multi-value property.");
    const Value value = model.book.value(model.current(), *model.state.property);
    model.state.property.reset();
    if (const auto* flags = value.as<long long>(); flags != nullptr && name == "Person Flags") {
        return answer((*flags & 7) != 0 ? "ShowAsCompany" : "ShowAsPerson");
    }
    return shown(value);
}

Expected SetValueForProperty(Model& model, const Arguments& arguments) {
    model.setType(arguments, 2);
    model.requireActive();
    const int type = model.openSingle(argument(arguments, 0));
    const Text text = argument(arguments, 1);
    const std::string property = *model.state.property;
    if (!text) {
        model.set(property, {});
        return done();
    }
    const Value value = type == 2 ? Value(static_cast<long long>(flagsFrom(*text))) : converted(*text, type);
    if (!value.empty() && !model.set(property, value)) {
        model.fail(-8012);
    }
    return done();
}

Expected DeleteValueForProperty(Model& model, const Arguments& arguments) {
    model.setType(arguments, 1);
    model.requireActive();
    model.openSingle(argument(arguments, 0));
    model.set(*model.state.property, {});
    model.state.property.reset();
    return done();
}

Expected CompareProperty(Model& model, const Arguments& arguments) {
    model.requireActive();
    const Value value = stored(model, argument(arguments, 0), argument(arguments, 2), argument(arguments, 3));
    const Text text = argument(arguments, 1);
    if (value.empty() || !text) {
        return answer(value.empty() && !text ? "0" : "-1");
    }
    if (const auto* date = value.as<Civil>()) {
        return answer(dateFromText(*text) == *date ? "0" : "-1");
    }
    if (value.as<Clock>() != nullptr) {
        return answer("-1");
    }
    Expected expected = answer("-1");
    if (const auto* held = value.as<std::string>()) {
        expected.text = *held == *text ? "0" : "-1";
    } else {
        expected.orException = true; // a text is compared with what is none
    }
    return expected;
}

Expected OpenFirstMVProperty(Model& model, const Arguments& arguments) {
    State& state = model.state;
    model.setType(arguments, 1);
    model.requireActive();
    model.openList(argument(arguments, 0), "Property may be a single-value property.");
    if (!state.values) {
        return answer("END");
    }
    state.valuesIndex = 1;
    return answer(state.values->front().id);
}

Expected OpenNextMVProperty(Model& model, const Arguments& /*arguments*/) {
    State& state = model.state;
    if (!state.property) {
        model.fail(-8004);
    }
    if (!state.values || state.valuesIndex >= state.values->size()) {
        return answer("END");
    }
    return identifierOf(state.values->at(state.valuesIndex++),
                        [&state](const std::string& id) { learnEntry(state, nullptr, "", id); });
}

Expected GetValueForUID(Model& model, const Arguments& arguments) {
    State& state = model.state;
    state.currentRecordType = 0;
    const Text id = argument(arguments, 1);
    const Text key = argument(arguments, 2);
    if (!id) {
        model.fail(-8030);
    }
    model.openList(argument(arguments, 0));
    if (!state.values) {
        return answer("");
    }
    const std::size_t index = indexOf(*state.values, *id);
    if (index == state.values->size()) {
        Expected expected = answer("");
        expected.orException = true; // an index that is none is asked for
        return expected;
    }
    const Value& value = state.values->at(index).value;
    if (const auto* address = value.as<Address>(); address != nullptr && key) {
        const Text field = keyForReading(key);
        if (!field) {
            model.fail(-8008);
        }
        const auto found = address->find(*field);
        return answer(found == address->end() ? "" : found->second);
    }
    return shown(value);
}

Expected SetValueForUID(Model& model, const Arguments& arguments) {
    int type = 0;
    const std::size_t index = openToChange(model, arguments, type);
    const std::string text = argument(arguments, 2).value_or("");
    Value& held = model.state.values->at(index).value;
    Value value;
    if (const Text word = argument(arguments, 3)) {
        const auto* address = held.as<Address>();
        if (address == nullptr) {
            model.fail(-8006);
        }
        const Text key = keyForWriting(*word);
        if (!key) {
            model.fail(-8008);
        }
        const bool country = *key == "CountryCode";
        if (country && !isCountry(lower(text))) {
            model.fail(-8031);
        }
        Address changed = *address;
        changed[*key] = country ? lower(text) : text;
        value = std::move(changed);
    } else if (type == 0x106) {
        model.fail(-8006);
    } else {
        value = converted(text, type);
    }
    if (value.empty()) {
        model.note(-8029); // and the copy is written back
    } else {
        held = value;
    }
    writeBack(model);
    return done();
}

Expected DeleteValueForUID(Model& model, const Arguments& arguments) {
    State& state = model.state;
    state.currentRecordType = 0;
    const Text id = argument(arguments, 1);
    if (!id) {
        model.fail(-8030);
    }
    model.openList(argument(arguments, 0));
    if (!state.values) {
        model.fail(-8002);
    }
    const std::size_t index = indexOf(*state.values, *id);
    if (index == state.values->size()) {
        model.fail(-8007);
    }
    auto* address = state.values->at(index).value.as<Address>();
    if (const Text word = argument(arguments, 2); word && address != nullptr) {
        const Text key = keyForReading(word);
        if (!key) {
            model.fail(-8008);
        }
        address->erase(*key);
    } else {
        state.values->erase(state.values->begin() + static_cast<std::ptrdiff_t>(index));
    }
    writeBack(model);
    return done();
}

Expected GetLabelForUID(Model& model, const Arguments& arguments) {
    State& state = model.state;
    model.requireActive();
    state.currentRecordType = 0;
    const Text id = argument(arguments, 1);
    if (!id) {
        model.fail(-8030);
    }
    model.openList(argument(arguments, 0));
    const std::size_t index = state.values ? indexOf(*state.values, *id) : 0;
    if (!state.values || index == state.values->size()) {
        model.fail(-8007);
    }
    const std::string& label = state.values->at(index).label;
    return answer(wordForLabel(label).value_or(label));
}

Expected SetLabelForUID(Model& model, const Arguments& arguments) {
    int type = 0;
    const std::size_t index = openToChange(model, arguments, type);
    const Text word = argument(arguments, 2);
    if (!word) {
        model.fail(-8014);
    }
    model.state.values->at(index).label = labelForWord(word).value_or(*word);
    writeBack(model);
    return done();
}

Expected AddMV(Model& model, const Arguments& arguments) {
    model.requireActive();
    model.state.currentRecordType = 0;
    const Text text = argument(arguments, 1);
    if (!text) {
        model.fail(-4);
    }
    const int type = model.openList(argument(arguments, 0));
    const Value value = type == 0x106 ? Value() : converted(*text, type);
    return append(model, value, labelForNewEntry(argument(arguments, 2)), -8016);
}

Expected AddAddress(Model& model, const Arguments& arguments) {
    model.state.currentRecordType = 0;
    const Text country = argument(arguments, 6);
    if (!country || !isCountry(lower(*country))) {
        model.fail(-8031);
    }
    constexpr const char* kKeys[] = {"Street", "City", "State", "ZIP", "Country"};
    Address address;
    for (std::size_t i = 0; i < std::size(kKeys); ++i) {
        if (const Text text = argument(arguments, i + 1)) {
            address[kKeys[i]] = *text;
        }
    }
    if (address.empty()) {
        model.fail(-4);
    }
    address["CountryCode"] = lower(*country);
    model.openList("Address");
    const Text word = argument(arguments, 0);
    const Text label = labelForWord(word);
    return append(model, address, label ? label : word, -8015);
}

} // namespace model::run

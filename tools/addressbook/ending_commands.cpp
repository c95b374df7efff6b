// The commands `endings`, `endings add` and `endings remove`.

#include "tools/addressbook/commands.h"

#include "tools/addressbook/fields.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/property_path.h"

#include <algorithm>
#include <iostream>

namespace addressbook::tool {
namespace {

// Returns the properties that the user names, all of which hold texts.
std::vector<NamedProperty> wanted(const Options& options, const Store& store) {
    const Kind kind = options.endings.ofGroups ? Kind::group : Kind::person;
    std::vector<NamedProperty> properties;
    for (const std::string& name : options.endings.properties) {
        if (const std::size_t slash = name.find('/'); slash != std::string::npos) {
            throw std::invalid_argument("endings are indexed for all values of a property; write " +
                                        name.substr(0, slash));
        }
        const PropertyPath path = parsePath(name, kind, store.definitions());
        if (path.entryType() != Type::string && path.entryType() != Type::dictionary) {
            throw std::invalid_argument(name + " holds no text, so nothing in it has an ending");
        }
        properties.push_back({kind, path.property});
    }
    return properties;
}

// Splits off those of [properties] whose endings are indexed.
std::vector<NamedProperty> takeIndexed(const Store& store, std::vector<NamedProperty>& properties) {
    const std::vector<NamedProperty> indexed = store.endings();
    const auto first =
        std::stable_partition(properties.begin(), properties.end(), [&](const NamedProperty& property) {
            return std::find(indexed.begin(), indexed.end(), property) == indexed.end();
        });
    std::vector<NamedProperty> taken(first, properties.end());
    properties.erase(first, properties.end());
    return taken;
}

std::string nameOf(const Store& store, const NamedProperty& property) {
    return escaped(friendlyName(settableFields(store.definitions(), property.kind), property.name));
}

} // namespace

int runEndings(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    const std::vector<NamedProperty> properties = store.endings();
    Output output;
    for (const NamedProperty& property : properties) {
        output.write(nameOf(store, property) + '\t' + (property.kind == Kind::person ? "people" : "groups") +
                     '\n');
    }
    output.finish();
    if (properties.empty()) {
        std::cerr << "no endings are indexed yet; addressbook endings add indexes those of a property\n";
    }
    return kDone;
}

int runEndingsAdd(const Options& options) {
    Store store = open(options, Store::Access::readWrite);
    ChangeSet changes;
    changes.endings = wanted(options, store);
    for (const NamedProperty& property : takeIndexed(store, changes.endings)) {
        std::cerr << nameOf(store, property) << ": its endings are indexed already\n";
    }
    store.save(changes);
    return kDone;
}

int runEndingsRemove(const Options& options) {
    Store store = open(options, Store::Access::readWrite);
    std::vector<NamedProperty> properties = wanted(options, store);
    ChangeSet changes;
    changes.removedEndings = takeIndexed(store, properties);
    if (!properties.empty()) {
        throw Failure(nameOf(store, properties.front()) + ": its endings are not indexed");
    }
    store.save(changes);
    return kDone;
}

} // namespace addressbook::tool

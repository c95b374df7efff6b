#pragma once

// The complete contents of a book, for comparisons, and the bytes of files.

#include "tests/store/builders.h"
#include "tests/support/files.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace addressbook::test {

// Everything in a book.
struct Contents {
    std::map<std::string, Values> records;
    std::map<std::string, std::vector<std::string>> members;
    std::vector<PropertyDefinition> definitions;
    std::optional<std::string> me;
    bool operator==(const Contents&) const = default;
};

// Returns the unique id of the record in a row, which may be lost.
inline std::string uidAt(const Store& store, RowId row) {
    const auto record = store.find(row);
    return record ? record->uid : "lost";
}

inline Contents contentsOf(const Store& store) {
    Contents contents;
    for (const Kind kind : {Kind::person, Kind::group}) {
        for (const RowId row : store.rows(kind)) {
            const std::string uid = uidAt(store, row);
            Values values = store.values(row);
            if (const Value picture = store.value(row, property::kImage); !picture.empty()) {
                values.emplace(property::kImage, picture);
            }
            contents.records.emplace(uid, values);
            for (const auto& rows : {store.members(row), store.subgroups(row)}) {
                for (const RowId member : rows) {
                    contents.members[uid].push_back(uidAt(store, member));
                }
            }
        }
    }
    contents.definitions = store.definitions();
    contents.me = store.me();
    return contents;
}

using support::bytesOf;
using support::filesIn;

} // namespace addressbook::test

// The commands `list`, `groups`, `find` and `show`.

#include "tools/addressbook/commands.h"

#include "tools/addressbook/condition.h"
#include "tools/addressbook/fields.h"
#include "tools/addressbook/find.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/selection.h"
#include "tools/addressbook/show.h"
#include "tools/addressbook/sync/places.h"

#include "frameworks/AddressBook/values/calendar.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace addressbook::tool {
namespace {

// Returns the rows that a search (--where) finds.
std::vector<RowId> found(const Store& store, const std::string& where) {
    try {
        return store.search(parseSearch(where, store), currentTime());
    } catch (const std::invalid_argument& error) {
        throw std::invalid_argument("--where " + escaped(where) + ": " + error.what());
    }
}

// Returns the rows of all records of a kind, or of those that the options select.
std::vector<RowId> narrowed(const Store& store, Kind kind, const Options& options) {
    std::vector<RowId> rows;
    if (options.narrow.group.empty()) {
        rows = store.rows(kind);
    } else {
        const Selection selection = contentsOfGroup(store, options.narrow.group);
        const auto& chosen = kind == Kind::person ? selection.people : selection.groups;
        rows.assign(chosen.begin(), chosen.end());
    }
    const auto keep = [&](const auto& hits) {
        std::vector<RowId> both;
        std::set_intersection(rows.begin(), rows.end(), hits.begin(), hits.end(), std::back_inserter(both));
        rows = std::move(both);
    };
    if (!options.narrow.where.empty()) {
        keep(found(store, options.narrow.where));
    }
    if (!options.narrow.account.empty()) {
        keep(rowsIn(store, options.narrow.account));
    }
    return rows;
}

void limit(std::vector<RowId>& rows, const Options& options) {
    rows.resize(std::min(rows.size(), options.narrow.limit));
}

void write(const Store& store, const std::vector<RowId>& rows, const Options& options) {
    const std::vector<Field> fields = parseFields(options.fields, store);
    Output output;
    options.json ? listRecordsAsJson(store, rows, fields, output) : listRecords(store, rows, fields, output);
}

} // namespace

int runList(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    std::vector<RowId> rows = narrowed(store, Kind::person, options);
    limit(rows, options);
    write(store, rows, options);
    return kDone;
}

int runFind(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    std::vector<RowId> rows = findWords(store, options.words);
    const bool nothing = rows.empty();
    limit(rows, options);
    write(store, rows, options);
    if (nothing) {
        complain("nothing found");
    }
    return nothing ? kIncomplete : kDone;
}

int runGroups(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    std::vector<RowId> rows = narrowed(store, Kind::group, options);
    limit(rows, options);
    Output output;
    listGroups(store, rows, options.json, output);
    return kDone;
}

int runShow(const Options& options) {
    const Store store = open(options, Store::Access::readOnly);
    Output output;
    showRecord(store, findRecord(store, options.id), options.json, output, options.narrow.limit);
    return kDone;
}

} // namespace addressbook::tool

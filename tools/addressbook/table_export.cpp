#include "tools/addressbook/table_export.h"

#include "frameworks/AddressBook/csv/layout.h"
#include "frameworks/AddressBook/csv/table.h"
#include "tools/addressbook/fields.h"
#include "tools/addressbook/selection.h"

namespace addressbook::tool {

ExportSummary exportTable(const Store& store, const std::string& group, Output& output,
                          const Progress& progress) {
    const Store::ReadTransaction oneMoment(store); // the rows must fit the header
    const auto [people, groups] = group.empty() ? everything(store) : contentsOfGroup(store, group);
    const std::vector<PropertyDefinition> own = store.definitions();
    csv::Layout layout(own);
    std::size_t done = 0;
    for (const RowId row : people) {
        tellProgress(progress, done++, people.size(), 0, 0.3);
        layout.measure(store.values(row));
    }
    output.write(csv::line(layout.headers()));
    ExportSummary summary;
    for (const RowId row : people) {
        tellProgress(progress, summary.people, people.size(), 0.3, 1);
        if (const auto record = store.find(row)) {
            std::vector<std::string> names;
            for (const RowId parent : store.parents(row)) {
                names.push_back(valueText(store.value(parent, property::kGroupName)));
            }
            output.write(csv::line(layout.cells(record->uid, store.values(row), names)));
            ++summary.people;
        }
    }
    output.finish();
    return summary;
}

} // namespace addressbook::tool

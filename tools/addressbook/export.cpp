#include "tools/addressbook/export.h"

#include "frameworks/AddressBook/vcard/vcard.h"
#include "tools/addressbook/selection.h"

namespace addressbook::tool {

namespace {

std::string uuidOfRow(const Store& store, RowId row) {
    const auto record = store.find(row);
    return record ? vcard::uuidOf(record->uid) : std::string();
}

} // namespace

ExportSummary exportCards(const Store& store, const std::string& group, Output& output,
                          const Progress& progress) {
    const auto [people, groups] = group.empty() ? everything(store) : contentsOfGroup(store, group);
    ExportSummary summary;
    std::size_t done = 0;
    for (const auto* rows : {&people, &groups}) {
        for (const RowId row : *rows) {
            tellProgress(progress, done++, people.size() + groups.size());
            const auto record = store.find(row);
            if (!record) {
                continue;
            }
            vcard::Card card;
            card.kind = record->kind;
            card.uid = record->uid;
            card.values = store.values(row);
            if (Value image = store.value(row, property::kImage); !image.empty()) {
                card.values[std::string(property::kImage)] = std::move(image);
            }
            if (record->kind == Kind::group) {
                for (const auto& members : {store.members(row), store.subgroups(row)}) {
                    for (const RowId member : members) {
                        card.memberUids.push_back(uuidOfRow(store, member));
                    }
                }
                ++summary.groups;
            } else {
                ++summary.people;
            }
            output.write(vcard::write(card));
        }
    }
    output.finish();
    return summary;
}

} // namespace addressbook::tool

#include "tools/addressbook/export.h"

#include "frameworks/AddressBook/vcard/vcard.h"
#include "tools/addressbook/selection.h"

namespace addressbook::tool {

namespace {

// A person's or a group's card; it names members as their own cards name themselves.
vcard::Card cardOf(const Store& store, const RecordRef& record, const ExportForm& form) {
    vcard::Card card;
    card.kind = record.kind;
    card.uid = record.uid;
    card.values = store.values(record.row);
    if (Value image = store.value(record.row, property::kImage); !image.empty()) {
        card.values[std::string(property::kImage)] = std::move(image);
    }
    if (record.kind == Kind::group) {
        for (const auto& members : {store.members(record.row), store.subgroups(record.row)}) {
            for (const RowId row : members) {
                if (const auto member = store.find(row)) {
                    card.memberUids.push_back(
                        vcard::memberName(member->uid, store.value(row, property::kUnknownLines)));
                }
            }
        }
    } else if (form.categories) {
        for (const RowId row : store.parents(record.row)) {
            const Value name = store.value(row, property::kGroupName);
            if (const auto* text = name.as<std::string>()) {
                card.categories.push_back(*text);
            }
        }
    }
    return card;
}

} // namespace

ExportSummary exportCards(const Store& store, const std::string& group, const ExportForm& form,
                          Output& output, const Progress& progress) {
    auto [people, groups] = group.empty() ? everything(store) : contentsOfGroup(store, group);
    if (!form.groupCards) {
        groups.clear();
    }
    ExportSummary summary;
    std::size_t done = 0;
    for (const auto* rows : {&people, &groups}) {
        for (const RowId row : *rows) {
            tellProgress(progress, done++, people.size() + groups.size());
            if (const auto record = store.find(row)) {
                output.write(vcard::write(cardOf(store, *record, form), form.version));
                ++(record->kind == Kind::group ? summary.groups : summary.people);
            }
        }
    }
    output.finish();
    return summary;
}

} // namespace addressbook::tool

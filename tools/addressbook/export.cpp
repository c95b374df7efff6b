#include "tools/addressbook/export.h"

#include "frameworks/AddressBook/vcard/vcard.h"
#include "tools/addressbook/selection.h"

#include <algorithm>
#include <vector>

namespace addressbook::tool {

namespace {

// How many cards, and bytes of them, are made in one read transaction.
constexpr std::size_t kCardsAtOnce = 256;
constexpr std::size_t kBytesAtOnce = std::size_t{1} * 1024 * 1024;

// A person's or a group's card; it names members as their own cards name themselves.
vcard::Card cardOf(const Store& store, const RecordRow& record, const ExportForm& form) {
    vcard::Card card;
    card.kind = record.kind;
    card.uid = record.uid.text();
    card.values = store.values(record);
    if (Value image = store.value(record.id, property::kImage); !image.empty()) {
        card.values[std::string(property::kImage)] = std::move(image);
    }
    if (record.kind == Kind::group) {
        for (const auto& members : {store.members(record.id), store.subgroups(record.id)}) {
            for (const RowId row : members) {
                if (const auto member = store.find(row)) {
                    card.memberUids.push_back(
                        vcard::memberName(member->uid, store.value(row, property::kUnknownLines)));
                }
            }
        }
    } else if (form.categories) {
        for (const RowId row : store.parents(record.id)) {
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
    const auto [people, groups] = group.empty() ? everything(store) : contentsOfGroup(store, group);
    std::vector<RowId> rows(people.begin(), people.end());
    if (form.groupCards) {
        rows.insert(rows.end(), groups.begin(), groups.end());
    }
    ExportSummary summary;
    for (std::size_t done = 0; done < rows.size();) {
        std::string cards;
        {
            const Store::ReadTransaction reading(store);
            const std::size_t end = std::min(rows.size(), done + kCardsAtOnce);
            for (; done < end && cards.size() < kBytesAtOnce; ++done) {
                tellProgress(progress, done, rows.size());
                if (const auto record = store.read(rows[done])) {
                    cards += vcard::write(cardOf(store, *record, form), form.version);
                    ++(record->kind == Kind::group ? summary.groups : summary.people);
                }
            }
        }
        output.write(cards); // may wait for whoever reads it
    }
    output.finish();
    return summary;
}

} // namespace addressbook::tool

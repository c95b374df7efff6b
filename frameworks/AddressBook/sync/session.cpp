#include "frameworks/AddressBook/sync/session.h"

#include "frameworks/AddressBook/sync/links.h"
#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/display_name.h"
#include "frameworks/AddressBook/vcard/card_text.h"

namespace addressbook::sync {

namespace {

class CardView final : public RecordView {
  public:
    explicit CardView(const vcard::Card& card) : card_(card) {}
    [[nodiscard]] Kind kind() const override { return card_.kind; }
    [[nodiscard]] const Value& value(std::string_view property) const override {
        static const Value kNone;
        const auto found = card_.values.find(std::string(property));
        return found == card_.values.end() ? kNone : found->second;
    }

  private:
    const vcard::Card& card_;
};

} // namespace

void Session::save(const std::function<void(ChangeSet&)>& plan) {
    for (bool saved = false; !saved;) {
        ChangeSet changes;
        changes.basis = store.lastChange();
        changes.time = currentTime();
        {
            const Store::ReadTransaction moment(store);
            plan(changes);
        }
        if (options.dryRun) {
            return;
        }
        const SaveResult result = store.save(changes);
        saved = !result.outdated;
        if (result.change != 0) {
            saves_.insert(result.change);
        }
    }
}

std::optional<SyncLink> Session::linkOf(std::string_view uid) const {
    for (SyncLink& link : store.syncLinksOf(uid)) {
        if (!link.leaves) {
            return link.collection == collection.id ? std::optional(std::move(link)) : std::nullopt;
        }
    }
    return std::nullopt;
}

std::optional<vcard::Card> readCard(std::string_view text) {
    const auto read = vcard::CardText::read(text);
    return read ? std::optional(read->card()) : std::nullopt;
}

std::string nameOf(const vcard::Card& card) {
    return displayName(CardView(card));
}

} // namespace addressbook::sync

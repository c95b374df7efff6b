#pragma once

// Cards that were fetched become records, with what was changed here since the card was last agreed.

#include "frameworks/AddressBook/sync/categories.h"
#include "frameworks/AddressBook/sync/session.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace addressbook::sync {

class Incoming {
  public:
    Incoming(Session& session, Categories& categories) : session_(session), categories_(categories) {}

    // Takes a card as it was fetched, and saves those taken when they are enough for a transaction.
    void take(carddav::Fetched&& fetched);
    // Notes that the card at [href], where a record's own card was to be made, is taken for that of the record.
    void expect(const std::string& href, const std::string& uid) { expected_[href] = uid; }
    // Saves what was taken.
    void flush();

    // Deletes the records of cards that are gone from the server, but those that were changed here, which are sent
    // again, and those that another card stands for.
    void remove(const std::vector<std::string>& hrefs);

    // Notes which cards the listing says are gone, so that a card that moved is known by its UID.
    void noteGone(const std::vector<std::string>& hrefs) { gone_.insert(hrefs.begin(), hrefs.end()); }

    // Returns the record's card as it should be on the server that has [agreed]; nothing when there is no record.
    std::optional<vcard::Card> localCard(const std::string& uid,
                                         const std::optional<vcard::Card>& agreed) const;

  private:
    struct Arrived {
        std::string href, etag, text;
        std::optional<vcard::Card> card;
    };
    // What saving a batch comes to, counted once it is saved.
    struct Outcome {
        Summary summary;
        std::vector<std::string> toSend;
        std::unordered_map<std::string, std::string> etags;
        std::unordered_set<std::string> uids;     // of its records
        std::unordered_set<std::string> restored; // of them, those that had been deleted here
        bool again = false;
    };
    void plan(const Arrived& arrived, ChangeSet& changes, Outcome& outcome) const;
    void planRemoval(const SyncLink& link, ChangeSet& changes, Outcome& outcome) const;
    void bringTogether(const Arrived& arrived, SyncLink&& link, const std::optional<vcard::Card>& base,
                       ChangeSet& changes, Outcome& outcome) const;
    void rejoin(const Outcome& outcome, ChangeSet& changes) const;
    void decline(const Arrived& arrived, const std::string& id, std::string reason, ChangeSet& changes,
                 Outcome& outcome) const;
    std::string uidFor(const Arrived& arrived) const;
    void apply(Outcome&& outcome);

    Session& session_;
    Categories& categories_;
    std::vector<Arrived> batch_;
    std::size_t bytes_ = 0;
    std::unordered_map<std::string, std::string> expected_; // by href
    std::unordered_set<std::string> gone_;
};

} // namespace addressbook::sync

#pragma once

// What was changed here goes to the server.

#include "frameworks/AddressBook/sync/categories.h"
#include "frameworks/AddressBook/sync/incoming.h"
#include "frameworks/AddressBook/sync/session.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace addressbook::sync {

class Outgoing {
  public:
    Outgoing(Session& session, Categories& categories, Incoming& incoming)
        : session_(session), categories_(categories), incoming_(incoming) {}

    // Has a record without a link belong to the collection once it is sent.
    void join(const std::string& uid) { joining_.insert(uid); }

    // Makes the cards of the records in Session::toSend what these are, where they are not. What changed on the server
    // meanwhile, or may have, is fetched, and what is then still to be sent is sent again, a few times at most.
    void run();

  private:
    // A write, and what it is of.
    struct Job {
        carddav::Write::Kind kind = carddav::Write::Kind::create;
        std::string uid, name;
        std::string linked; // href of its link; empty when it has none
        std::string href, text;
        std::optional<vcard::Card> unread; // what the record is, where the text cannot say that
        std::string etag;                  // once it is made
        bool refused = false;
    };
    void send();
    void prepare(const std::string& uid);
    void prepareRemoval(const SyncLink& link);
    void prepareCard(const std::string& uid, const std::optional<SyncLink>& link);
    std::string hrefFor(const std::string& uid) const;
    // Returns the etag to send with a write; nothing when the card must be fetched to know it.
    std::optional<std::string> etagOf(const SyncLink& link) const;
    void look(const std::string& href, const std::string& uid) { looks_.emplace(href, uid); }
    void done(const carddav::Write& write, carddav::Written&& written);
    void fail(Job&& job, const carddav::Error& error);
    void finish();
    void plan(const Job& job, ChangeSet& changes) const;
    void lookAgain();
    void refuse(const Job& job, const std::string& reason);

    Session& session_;
    Categories& categories_;
    Incoming& incoming_;
    std::unordered_set<std::string> joining_;
    std::vector<Job> ready_;                             // of the record looked at last
    std::unordered_map<std::string, Job> inFlight_;      // by href
    std::vector<Job> finished_;                          // not yet saved
    std::size_t bytes_ = 0;                              // of their texts
    std::unordered_map<std::string, std::string> looks_; // cards to fetch -> records
    std::size_t told_ = 0;
};

} // namespace addressbook::sync

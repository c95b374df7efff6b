#pragma once

// Groups that are no cards on the server, but CATEGORIES of people's cards.
//
// Each category of a collection is a group here: one that was made for it, with a link of its own (categoryHref()), or
// the group of that name whose card is in the collection. Who joins or leaves such a group here gets or loses the
// category; a group that is a card has its members in that, and people lose its category with their membership, but do
// not get it. A category whose people have all left stays as an empty group.

#include "frameworks/AddressBook/sync/session.h"

#include <optional>
#include <string>
#include <vector>

namespace addressbook::sync {

class Categories {
  public:
    explicit Categories(Session& session) : session_(session) {}

    // Returns the categories that a person's card should have here, who has had those of [agreed].
    std::vector<std::string> of(const std::string& person, const std::vector<std::string>& agreed) const;

    // Adds to [changes] what has a person join the groups of the categories in [wanted] that are not in [now], and leave
    // those that are in [now] alone. Groups that are not there are made.
    void set(const std::string& person, const std::vector<std::string>& now,
             const std::vector<std::string>& wanted, ChangeSet& changes) const;

    // Adds to [changes] what puts a group whose card has come in the place of the one that was made for a category of
    // its name.
    void replace(const std::string& group, const vcard::Card& card, ChangeSet& changes) const;

    // Notes that the group of a category was changed or deleted here; queues all whom that may concern, which takes a
    // walk over the collection; and, once they are sent, has the categories be called as their groups are.
    void noteChanged(const std::string& group) { changed_.add(group); }
    void queueConcerned();
    void rename();

  private:
    struct Group {
        std::string uid;
        bool isCard = false;
    };
    std::optional<Group> find(const std::string& name, const ChangeSet* changes = nullptr) const;
    std::string make(const std::string& name, ChangeSet& changes) const;
    std::vector<std::string> groupsOf(const std::string& person) const;
    std::string nameOf(const std::string& group) const;

    Session& session_;
    Queue changed_;
    std::vector<std::string> concerned_; // groups whose people were queued
};

} // namespace addressbook::sync

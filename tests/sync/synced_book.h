#pragma once

// An address book that is kept in step with a server in memory.

#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/sync/engine.h"
#include "tests/sync/memory_server.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace addressbook::sync::test {

class SyncedBook {
  public:
    // Opens the book in [folder]; makes it, with an account and the server's address book as the default one, when it is
    // not there.
    SyncedBook(const std::filesystem::path& folder, MemoryServer& server);

    Summary sync(const CycleOptions& options = {});
    Store& store() { return *store_; }
    MemoryCollection& client() { return client_; }
    std::int64_t collection() const { return collection_; }

    // Adds a person, or a group, of this UUID; returns the unique id.
    std::string addPerson(const std::string& uuid, std::map<std::string, Value> values);
    std::string addGroup(const std::string& uuid, const std::string& name,
                         const std::vector<std::string>& members);
    void set(const std::string& uid, const std::string& property, Value value);
    void remove(const std::string& uid);
    void join(const std::string& group, const std::string& member, bool add = true);
    void save(const ChangeSet& changes);

    // Returns a text value; empty when there is none.
    std::string text(const std::string& uid, std::string_view property) const;
    std::vector<std::string> members(const std::string& group) const;
    // Returns the unique ids of the groups of this name.
    std::vector<std::string> groups(const std::string& name) const;
    std::vector<std::string> uids() const;

    // Returns what is not in step with the server, a line each; empty when everything is.
    std::string differences() const;

  private:
    MemoryServer& server_;
    MemoryCollection client_{server_};
    std::unique_ptr<Store> store_;
    std::int64_t collection_ = 0;
    double time_ = 0;
};

} // namespace addressbook::sync::test

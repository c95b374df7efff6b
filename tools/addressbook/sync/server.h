#pragma once

// The way to an account's server.

#include "frameworks/AddressBook/carddav/http.h"
#include "frameworks/AddressBook/carddav/secret.h"
#include "frameworks/AddressBook/store/sync_state.h"

#include <functional>
#include <memory>

namespace addressbook::tool {

class Server {
  public:
    // Takes the settings of [account]. [password] is called before the first request, unless the account has no user,
    // and may throw. What goes on ends with the error `stopped` when a signal was noted.
    Server(SyncAccount account, std::function<carddav::Secret()> password);
    // Like the other, with the password from where the account has it.
    explicit Server(const SyncAccount& account);

    const SyncAccount& account() const { return account_; }
    carddav::Client& client() { return *client_; }

  private:
    SyncAccount account_;
    std::shared_ptr<carddav::Client> client_;
};

} // namespace addressbook::tool

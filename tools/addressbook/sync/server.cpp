#include "tools/addressbook/sync/server.h"

#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/sync/carddav_library.h"
#include "tools/addressbook/sync/password.h"

#include <utility>

namespace addressbook::tool {
namespace {

carddav::ClientOptions optionsOf(const SyncAccount& account) {
    carddav::ClientOptions options;
    options.caFile = account.caFile;
    options.allowHttp = account.allowHttp;
    options.stop = &interruptFlag();
    return options;
}

carddav::Credentials credentialsOf(const SyncAccount& account, std::function<carddav::Secret()> password) {
    carddav::Credentials credentials;
    if (!account.user.empty()) {
        credentials.user = account.user;
        credentials.password = std::move(password);
    }
    return credentials;
}

} // namespace

Server::Server(SyncAccount account, std::function<carddav::Secret()> password)
    : account_(std::move(account)),
      client_(carddavLibrary().connect(optionsOf(account_), credentialsOf(account_, std::move(password)))) {}

Server::Server(const SyncAccount& account) : Server(account, [account] { return readPassword(account); }) {}

} // namespace addressbook::tool

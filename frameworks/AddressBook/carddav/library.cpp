#include "frameworks/AddressBook/carddav/library.h"

#include <utility>

namespace addressbook::carddav {
namespace {

std::shared_ptr<Client> connect(ClientOptions options, Credentials credentials) {
    return std::make_shared<Client>(std::move(options), std::move(credentials));
}

Account discoverBySystem(Client& client, const std::string& address, const ConfirmHost& confirm) {
    return discover(client, address, SystemDns(), confirm);
}

} // namespace

extern "C" __attribute__((visibility("default")))
const Library velocardCardDav = {connect, discoverBySystem, createBook, openCollection, parseUrl};

} // namespace addressbook::carddav

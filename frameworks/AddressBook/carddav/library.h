#pragma once

// The way to servers as a library of its own: libcurl brings some twenty others with it, for which no program waits that
// asks no server. Who asks one loads it, and calls its functions through the table that it exports. Whoever links
// addressbook_carddav has the functions themselves.

#include "frameworks/AddressBook/carddav/discovery.h"
#include "frameworks/AddressBook/carddav/server_collection.h"
#include "frameworks/AddressBook/carddav/url.h"

#include <memory>
#include <optional>
#include <string>

namespace addressbook::carddav {

// The functions of the library: those of the headers above, and what makes a client. They throw what these throw.
struct Library {
    // Returns a client, which only these functions know how to use and to end.
    std::shared_ptr<Client> (*connect)(ClientOptions options, Credentials credentials);

    // discover() by the name servers of this machine.
    Account (*discover)(Client& client, const std::string& address, const ConfirmHost& confirm);
    Book (*createBook)(Client& client, const std::string& home, const std::string& name);
    std::unique_ptr<Collection> (*openCollection)(Client& client, const std::string& url,
                                                  CollectionOptions options);
    std::optional<Url> (*parseUrl)(const std::string& address);
};

// The symbol that the library exports.
extern "C" const Library velocardCardDav;
inline constexpr const char* kLibrarySymbol = "velocardCardDav";
inline constexpr const char* kLibraryFile = "libAddressBookCardDAV.so";

} // namespace addressbook::carddav

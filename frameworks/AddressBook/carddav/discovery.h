#pragma once

// Finds the address books of somebody who knows a mail address, a server, or the address of one address book (RFC 6764,
// RFC 5397), and makes new ones.

#include "frameworks/AddressBook/carddav/dns.h"
#include "frameworks/AddressBook/carddav/http.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace addressbook::carddav {

// What a server tells of an address book.
struct Book {
    std::string url;       // absolute, ends with a slash: what openCollection() takes, and an account stores
    std::string name;      // to show; the last part of the address when the server has none
    bool readOnly = false; // this account may not add, change or remove cards
    bool hasSyncReport = false;
    std::string ctag;                  // as it is now; empty: none
    std::vector<std::string> versions; // of vCards that it takes, as "3.0"; empty: not told, which means 3.0
    std::uint64_t maxCardSize = 0;     // bytes; 0: not told
};

// What there is for an account.
struct Account {
    std::string principal;          // address of who asks; empty when the server does not tell
    std::vector<std::string> homes; // where address books are, and can be made
    std::vector<Book> books;        // in the homes; the given one first
    bool isGivenBook = false;       // the address was that of an address book, which is the first of [books]
};

// Asks the user whether the password may go to another host than the one that he named; [host] as "https://dav.example.com".
using ConfirmHost = std::function<bool(const std::string& host)>;

// Finds the address books for [address]: a mail address ("ida@example.com"), a mail domain ("example.com"), a server
// ("https://dav.example.com/", "dav.example.com:8443"), a principal's address or an address book's own. Trusts the host
// of an address that is given, and a mail domain and hosts in it; for every other one, to which DNS, a redirect or an
// answer leads, [confirm] decides; without it they are refused (Error untrustedHost). Throws Error.
Account discover(Client& client, const std::string& address, const Dns& dns, const ConfirmHost& confirm = {});

// Returns what the server tells of the address book at [url]. Throws Error, notFound when it is no address book.
Book describeBook(Client& client, const std::string& url);

// Makes an address book in one of Account::homes and returns it. Throws Error.
Book createBook(Client& client, const std::string& home, const std::string& name);

} // namespace addressbook::carddav

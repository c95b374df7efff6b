// The command `account add`.

#include "tools/addressbook/commands.h"

#include "frameworks/AddressBook/values/calendar.h"
#include "frameworks/AddressBook/values/text.h"
#include "tools/addressbook/interrupt.h"
#include "tools/addressbook/output.h"
#include "tools/addressbook/property_path.h"
#include "tools/addressbook/sync/carddav_library.h"
#include "tools/addressbook/sync/keyring.h"
#include "tools/addressbook/sync/password.h"
#include "tools/addressbook/sync/permissions.h"
#include "tools/addressbook/sync/places.h"
#include "tools/addressbook/sync/server.h"
#include "tools/addressbook/terminal.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

namespace addressbook::tool {
namespace {

using carddav::Error;
using carddav::ErrorKind;

// The password while it is not known to be right: read once, and again when the server did not take it.
class TriedPassword {
  public:
    carddav::Secret get(const SyncAccount& account) {
        if (!known_) {
            known_ = read(account);
        }
        return carddav::Secret(std::string(known_->text()));
    }
    // The next time the password is asked for on the terminal, if it can be: where it came from it is wrong.
    // Returns whether that is so.
    bool forget(const SyncAccount& account) {
        constexpr int kTries = 3;
        known_.reset();
        asks_ = true;
        const bool mayAsk =
            account.source == PasswordSource::prompt || account.source == PasswordSource::keyring;
        return mayAsk && canAsk() && ++tries_ < kTries;
    }
    // Puts the password into the keyring if it was asked for to be there.
    void keep(const SyncAccount& account) const {
        if (account.source == PasswordSource::keyring && asked_) {
            putIntoKeyring(account, *known_);
        }
    }

  private:
    carddav::Secret read(const SyncAccount& account) {
        if (account.source != PasswordSource::keyring) {
            return readPassword(account);
        }
        if (auto found = asks_ ? std::nullopt : findInKeyring(account)) {
            return *std::move(found);
        }
        asked_ = true;
        return askForPassword(account);
    }

    std::optional<carddav::Secret> known_;
    bool asks_ = false, asked_ = false;
    int tries_ = 0;
};

// What there is on the server, and the way there.
struct Found {
    std::unique_ptr<Server> server;
    carddav::Account books;
};

// Returns the file's path from the root; nothing of none.
std::string absolute(const std::string& path) {
    return path.empty() ? path : std::filesystem::absolute(path).lexically_normal().string();
}

// Returns the account that the options describe, without the user, who may have to be found out.
SyncAccount describe(const Options& options) {
    const auto& given = options.addAccount;
    SyncAccount account;
    account.url = given.address;
    account.name = given.name;
    account.caFile = absolute(given.caFile);
    account.allowHttp = given.allowHttp;
    account.source = !given.passwordCommand.empty() ? PasswordSource::command
                     : !given.passwordFile.empty()  ? PasswordSource::file
                     : given.keyring                ? PasswordSource::keyring
                                                    : PasswordSource::prompt;
    account.password = given.passwordCommand.empty() ? absolute(given.passwordFile) : given.passwordCommand;
    if (!account.caFile.empty() && !std::filesystem::is_regular_file(account.caFile)) {
        throw Failure(account.caFile + ": there is no file of certificates here");
    }
    return account;
}

// Returns the users to try: who was named; of a mail address it and what stands before the @ (RFC 6764, 5 asks for
// both); else nobody.
std::vector<std::string> usersFor(const Options& options) {
    const std::string &user = options.addAccount.user, &address = options.addAccount.address;
    const std::size_t at = address.find('@');
    if (!user.empty()) {
        return {user};
    }
    if (at != std::string::npos && at > 0 && address.find("://") == std::string::npos) {
        return {address, address.substr(0, at)};
    }
    return {""};
}

// Returns the error with the option that may help.
Error withAdvice(const Error& error, const SyncAccount& account) {
    const char* advice = "";
    if (error.kind() == ErrorKind::unauthorised) {
        advice = "; --user tells who asks";
    } else if (error.kind() == ErrorKind::tls) {
        advice = "; --ca-file takes one";
    } else if (error.kind() == ErrorKind::refused && account.url.starts_with("http://")) {
        advice = "; --allow-http takes that upon you";
    }
    return {error.kind(), error.what() + std::string(advice), error.status(), error.condition(),
            error.href()};
}

// Asks the server with one user after the other until it takes one. Throws Error and Failure.
Found find(SyncAccount account, std::vector<std::string> users, TriedPassword& password) {
    const auto confirmHost = [&](const std::string& host) {
        return canAsk() && confirm("The server that " + account.url + " leads to is " + host +
                                   ". Shall it get the password?");
    };
    for (std::size_t at = 0;;) {
        account.user = users[at];
        auto server =
            std::make_unique<Server>(account, [account, &password] { return password.get(account); });
        try {
            carddav::Account books = carddavLibrary().discover(server->client(), account.url, confirmHost);
            return {std::move(server), std::move(books)};
        } catch (const Error& error) {
            throwIfInterrupted();
            if (error.kind() != ErrorKind::unauthorised) {
                throw withAdvice(error, account);
            }
            if (at + 1 < users.size()) {
                ++at;
            } else if (!account.user.empty()) {
                if (!password.forget(account)) {
                    throw;
                }
                complain(std::string(error.what()) + "; try again");
                at = 0;
            } else if (canAsk()) {
                users = {ask("User name for " + hostOf(account) + ": ")};
                if (users[0].empty()) {
                    throw;
                }
            } else {
                throw withAdvice(error, account);
            }
        }
    }
}

std::vector<std::string> namesOf(const std::vector<carddav::Book>& books) {
    std::vector<std::string> names;
    names.reserve(books.size());
    for (const carddav::Book& book : books) {
        names.push_back(book.name);
    }
    return names;
}

// Returns the books of a name, whatever its letter case when there is none of exactly this one, or of an address.
std::vector<carddav::Book> booksNamed(const std::vector<carddav::Book>& books, const std::string& name) {
    std::vector<carddav::Book> named;
    for (const bool exactly : {true, false}) {
        for (const carddav::Book& book : books) {
            if (exactly ? book.name == name || book.url == name : fold(book.name) == fold(name)) {
                named.push_back(book);
            }
        }
        if (!named.empty()) {
            break;
        }
    }
    return named;
}

carddav::Book bookNamed(const std::vector<carddav::Book>& books, const std::string& name) {
    const std::vector<carddav::Book> named = booksNamed(books, name);
    if (named.empty()) {
        throw Failure("the server has no address book named \"" + name +
                      "\"; it has: " + listed(namesOf(books)) +
                      " (the folder of the book here stands before the command: addressbook --book FOLDER "
                      "account add)");
    }
    if (named.size() > 1) {
        throw Failure("the server has several address books named \"" + name + "\"; give --book its address");
    }
    return named.front();
}

// Asks which of several books is meant.
carddav::Book askForBook(const std::vector<carddav::Book>& books) {
    if (!canAsk()) {
        throw Failure("the server has several address books; --book NAME says which: " +
                      listed(namesOf(books)));
    }
    for (std::size_t at = 0; at < books.size(); ++at) {
        std::cerr << "  " << at + 1 << "  " << escaped(books[at].name)
                  << (books[at].readOnly ? " (read only)" : "") << '\n';
    }
    const std::string answer = ask("Which one, by its number or name? ");
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(answer.data(), answer.data() + answer.size(), number);
    if (error == std::errc() && end == answer.data() + answer.size() && number >= 1 &&
        number <= books.size()) {
        return books[number - 1];
    }
    return bookNamed(books, answer);
}

carddav::Book makeBook(const Found& found, const std::string& name) {
    if (!booksNamed(found.books.books, name).empty()) {
        throw Failure("the server has an address book named \"" + name + "\" already; --book takes that");
    }
    if (found.books.homes.empty()) {
        throw Failure("the server does not tell where address books can be made");
    }
    return carddavLibrary().createBook(found.server->client(), found.books.homes.front(), name);
}

// Returns the books that the options choose.
std::vector<carddav::Book> choose(const Found& found, const Options& options) {
    const std::vector<carddav::Book>& books = found.books.books;
    if (!options.addAccount.create.empty()) {
        return {makeBook(found, options.addAccount.create)};
    }
    std::vector<carddav::Book> chosen;
    chosen.reserve(options.addAccount.books.size());
    for (const std::string& name : options.addAccount.books) {
        chosen.push_back(bookNamed(books, name));
    }
    if (!chosen.empty()) {
        return chosen;
    }
    if (books.empty()) {
        throw Failure("the server has no address book yet; --create NAME makes one");
    }
    return {found.books.isGivenBook || books.size() == 1 ? books.front() : askForBook(books)};
}

// Throws when an account cannot be called so.
void checkName(const std::string& name) {
    if (name == kLocal || name.find('/') != std::string::npos || escaped(name) != name) {
        throw std::invalid_argument("an account cannot be named \"" + escaped(name) +
                                    "\"; a name without slashes, other than local, is needed");
    }
}

// Returns what an account is called whose user gave it no name: its mail address, or user and host.
std::string nameFor(const SyncAccount& account) {
    const bool isMail = account.user.find('@') != std::string::npos;
    std::string name = isMail || account.user.empty() ? account.user : account.user + '@';
    name += isMail ? "" : hostOf(account);
    std::replace(name.begin(), name.end(), '/', '-');
    return name;
}

// Returns the account of [places] that this is, if it is there already; another one of its name is an error.
const SyncAccount* known(const Places& places, const SyncAccount& account) {
    const std::string name = account.name.empty() ? nameFor(account) : account.name;
    for (const SyncAccount& other : places.accounts()) {
        const bool isSame = other.url == account.url && other.user == account.user;
        if (isSame && (account.name.empty() || name == other.name)) {
            return &other;
        }
        if (name == other.name) {
            throw Failure("there is an account named " + name + " already; --name gives this one another");
        }
    }
    return nullptr;
}

// Returns the name of a book that no other of its account has.
std::string freeName(const std::string& name, const std::vector<SyncCollection>& others) {
    std::string free = name;
    for (int number = 2; std::any_of(others.begin(), others.end(),
                                     [&](const SyncCollection& other) { return other.name == free; });
         ++number) {
        free = name + ' ' + std::to_string(number);
    }
    return free;
}

// What was noted.
struct Noted {
    std::vector<std::string> added, known; // books, as they are called here
};

// Notes the account and its books. Those that it has already stay as they are; the account has the new settings.
Noted save(Store& store, SyncAccount account, const std::vector<carddav::Book>& books, bool isDefault) {
    if (store.readOnly()) {
        throw readOnlyError(store.file());
    }
    const Places places(store);
    const SyncAccount* before = known(places, account);
    account.id = before != nullptr ? before->id : 0;
    account.name = before != nullptr ? before->name : account.name.empty() ? nameFor(account) : account.name;
    ChangeSet changes;
    changes.time = currentTime();
    changes.sync.accounts.push_back(account);
    std::vector<SyncCollection> others =
        before != nullptr ? places.booksOf(account.id) : std::vector<SyncCollection>();
    Noted noted;
    for (const carddav::Book& book : books) {
        if (const SyncCollection* there = places.bookAt(book.url)) {
            const std::string place = places.nameOf(there->id);
            if (there->account != account.id) {
                throw Failure("the address book " + book.name + " belongs to " + place + " already");
            }
            noted.known.push_back(place);
            continue;
        }
        SyncCollection added{0,
                             account.id,
                             book.url,
                             freeName(book.name, others),
                             "",
                             store.lastChange(),
                             isDefault && noted.added.empty()};
        noted.added.push_back(account.name + '/' + added.name);
        others.push_back(added);
        changes.sync.collections.push_back(std::move(added));
    }
    store.save(changes);
    return noted;
}

// Lists the books of the server, and which of them are chosen.
void show(const std::vector<carddav::Book>& books, const std::vector<carddav::Book>& chosen) {
    Output output;
    const auto write = [&](const carddav::Book& book, bool isChosen) {
        output.write(escaped(book.name) + '\t' + escaped(book.url) + '\t' +
                     (book.readOnly ? "read only" : "") + '\t' + (isChosen ? "chosen" : "") + '\n');
    };
    const auto isIn = [](const std::vector<carddav::Book>& all, const carddav::Book& book) {
        return std::any_of(all.begin(), all.end(),
                           [&](const carddav::Book& each) { return each.url == book.url; });
    };
    for (const carddav::Book& book : books) {
        write(book, isIn(chosen, book));
    }
    for (const carddav::Book& book : chosen) { // one that was just made
        if (!isIn(books, book)) {
            write(book, true);
        }
    }
    output.finish();
}

} // namespace

int runAccountAdd(const Options& options) {
    noteSignals();
    const SyncAccount account = describe(options);
    checkName(account.name);
    TriedPassword password;
    const Found found = find(account, usersFor(options), password);
    const std::vector<carddav::Book> chosen = choose(found, options);
    SyncAccount complete = found.server->account();
    complete.source = complete.user.empty() ? PasswordSource::none : complete.source;
    password.keep(complete);
    Store store = open(options, Store::Access::readWrite);
    for (const carddav::Book& book : chosen) {
        permit(complete, book.url);
    }
    const Noted noted = save(store, complete, chosen, options.addAccount.isDefault);
    show(found.books.books, chosen);
    if (!noted.known.empty()) {
        std::cerr << escaped(listed(noted.known))
                  << ": was there already; the account's settings are those given now\n";
    }
    if (!noted.added.empty()) {
        std::cerr << escaped(listed(noted.added)) << ": added; addressbook sync fetches the people"
                  << (complete.source == PasswordSource::prompt ? ", and asks for the password each time"
                                                                : "")
                  << '\n';
    }
    return kDone;
}

} // namespace addressbook::tool

#include "frameworks/AddressBook/carddav/discovery.h"

#include "frameworks/AddressBook/carddav/names.h"
#include "frameworks/AddressBook/carddav/propfind.h"
#include "frameworks/AddressBook/carddav/requests.h"
#include "frameworks/AddressBook/carddav/url.h"
#include "frameworks/AddressBook/values/uid.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace addressbook::carddav {
namespace {

// Sync tokens are not asked for: DAViCal fails with a status 500 where it has none, at its root and at a principal.
Request askForBooks(const std::string& url, int depth) {
    return propfind(url, depth,
                    {names::kResourceType, names::kDisplayName, names::kPrincipal, names::kHomeSet,
                     names::kPrivileges, names::kReports, names::kCtag, names::kVersions, names::kMaxSize});
}

bool isBook(const Resource& resource) {
    return resource.has(names::kResourceType, names::kIsAddressBook);
}

// An address in an answer. A server behind a proxy that does not know of its TLS names its own host with http: that
// stays https.
std::optional<std::string> addressIn(const std::string& base, std::string_view href) {
    const std::optional<std::string> address = resolve(base, href);
    std::optional<Url> url = address ? parseUrl(*address) : std::nullopt;
    const std::optional<Url> from = parseUrl(base);
    if (!url || !from) {
        return std::nullopt;
    }
    if (from->scheme == "https" && url->scheme == "http" && url->host == from->host) {
        url->scheme = from->scheme;
        url->port = from->port;
    }
    return url->origin() + normalHref(base, url->path).value_or("/");
}

std::vector<std::string> hrefsIn(const Resource& resource, std::string_view property,
                                 const std::string& base) {
    std::vector<std::string> addresses;
    if (const Property* found = resource.find(property)) {
        for (const Element& element : found->inside) {
            if (element.name == names::kHref) {
                if (std::optional<std::string> address = addressIn(base, element.text)) {
                    addresses.push_back(std::move(*address));
                }
            }
        }
    }
    return addresses;
}

std::string lastPart(std::string_view path) {
    while (path.ends_with('/')) {
        path.remove_suffix(1);
    }
    return std::string(path.substr(path.rfind('/') + 1));
}

Book bookOf(const Resource& resource, const std::string& base) {
    Book book;
    book.url = addressIn(base, resource.href).value_or(base);
    book.url += book.url.ends_with('/') ? "" : "/";
    book.name = resource.text(names::kDisplayName);
    if (book.name.empty()) {
        book.name = lastPart(book.url);
    }
    if (const Property* privileges = resource.find(names::kPrivileges);
        privileges != nullptr && !privileges->inside.empty()) {
        constexpr std::array kWriting = {"{DAV:}all", "{DAV:}write", "{DAV:}write-content", "{DAV:}bind"};
        book.readOnly = std::none_of(kWriting.begin(), kWriting.end(), [&](const char* privilege) {
            return resource.has(names::kPrivileges, privilege);
        });
    }
    book.hasSyncReport = resource.has(names::kReports, names::kSyncReport);
    book.ctag = resource.text(names::kCtag);
    if (const Property* versions = resource.find(names::kVersions)) {
        for (const Element& element : versions->inside) {
            for (const auto& [name, value] : element.attributes) {
                if (element.name == names::kVersion && name == "version") {
                    book.versions.push_back(value);
                }
            }
        }
    }
    const std::string size = resource.text(names::kMaxSize);
    std::from_chars(size.data(), size.data() + size.size(), book.maxCardSize);
    return book;
}

// The resource of an answer of depth 0. Most servers tell of nothing else.
const Resource* itself(const Resources& read) {
    const std::optional<Url> url = parseUrl(read.url);
    const std::string path = url ? normalHref(read.url, url->path).value_or("/") : "/";
    for (const Resource& resource : read.resources) {
        const std::string href = normalHref(read.url, resource.href).value_or("");
        if (href == path || href + '/' == path || href == path + '/') {
            return &resource;
        }
    }
    return read.resources.empty() ? nullptr : &read.resources.front();
}

// Whether [host] is [domain] or in it.
bool isWithin(const std::string& host, const std::string& domain) {
    return host == domain || host.ends_with('.' + domain);
}

class Discovery {
  public:
    Discovery(Client& client, const Dns& dns, const ConfirmHost& confirm)
        : client_(client), dns_(dns), confirm_(confirm) {}

    Account fromDomain(const std::string& domain);
    Account fromAddress(const Url& url);

  private:
    Resources ask(Request request);
    bool look(const std::string& url);
    bool lookAtPrincipal(const std::string& principal);
    void listHomes(std::vector<std::string> homes);
    void confirmService(const std::string& domain, const Url& url) const;
    Account found() { return std::move(account_); }

    Client& client_;
    const Dns& dns_;
    const ConfirmHost& confirm_;
    Account account_;
};

// Makes a request; where the way leads to another host, after it was confirmed.
Resources Discovery::ask(Request request) {
    constexpr int kMaxHosts = 3;
    for (int hosts = 0;; ++hosts) {
        try {
            return readResources(client_, request);
        } catch (const Error& error) {
            const std::optional<Url> url = parseUrl(error.href());
            if (error.kind() != ErrorKind::untrustedHost || !url || hosts >= kMaxHosts || !confirm_ ||
                !confirm_(url->origin())) {
                throw;
            }
            request.url = error.href();
            client_.trust(request.url);
        }
    }
}

// Looks whether [url] leads to address books, and keeps what it finds. Throws what is no use to go on with.
bool Discovery::look(const std::string& url) {
    Resources read;
    try {
        read = ask(askForBooks(url, 0));
    } catch (const Error& error) {
        if (concernsServer(error.kind()) || error.kind() == ErrorKind::forbidden) {
            throw;
        }
        return false;
    }
    const Resource* resource = itself(read);
    if (resource == nullptr) {
        return false;
    }
    if (isBook(*resource)) {
        account_.isGivenBook = true;
        account_.books.push_back(bookOf(*resource, read.url));
    }
    const std::vector<std::string> principals = hrefsIn(*resource, names::kPrincipal, read.url);
    if (std::vector<std::string> homes = hrefsIn(*resource, names::kHomeSet, read.url); !homes.empty()) {
        account_.principal = principals.empty() ? read.url : principals.front();
        listHomes(std::move(homes));
        return true;
    }
    if (!principals.empty()) {
        try {
            return lookAtPrincipal(principals.front()) || account_.isGivenBook;
        } catch (const Error&) {
            if (!account_.isGivenBook) {
                throw;
            }
        }
    }
    return account_.isGivenBook;
}

bool Discovery::lookAtPrincipal(const std::string& principal) {
    const Resources read = ask(propfind(principal, 0, {names::kHomeSet}));
    const Resource* resource = itself(read);
    if (resource == nullptr) {
        return false;
    }
    account_.principal = read.url;
    std::vector<std::string> homes = hrefsIn(*resource, names::kHomeSet, read.url);
    const bool has = !homes.empty();
    listHomes(std::move(homes));
    return has;
}

void Discovery::listHomes(std::vector<std::string> homes) {
    for (const std::string& home : homes) {
        const Resources read = ask(askForBooks(home, 1));
        for (const Resource& resource : read.resources) {
            if (!isBook(resource)) {
                continue;
            }
            Book book = bookOf(resource, read.url);
            const bool known = std::any_of(account_.books.begin(), account_.books.end(),
                                           [&](const Book& other) { return other.url == book.url; });
            if (!known) {
                account_.books.push_back(std::move(book));
            }
        }
    }
    account_.homes = std::move(homes);
}

Account Discovery::fromAddress(const Url& url) {
    const std::string origin = url.origin();
    client_.trust(origin);
    const std::string wellKnown = origin + "/.well-known/carddav";
    const bool isServer = url.path == "/" || url.path == "/.well-known/carddav";
    const std::vector<std::string> places = isServer
                                                ? std::vector{wellKnown, origin + '/'}
                                                : std::vector{origin + url.path, wellKnown, origin + '/'};
    for (const std::string& place : places) {
        if (look(place)) {
            return found();
        }
    }
    throw Error(ErrorKind::notFound,
                url.host + " has no address books at " + url.path + ", or tells nobody where");
}

// The hosts of a mail domain are its own; anybody on the way may have told of others.
void Discovery::confirmService(const std::string& domain, const Url& url) const {
    const std::string origin = url.origin();
    if (!isWithin(url.host, domain) && !(confirm_ && confirm_(origin))) {
        throw Error(ErrorKind::untrustedHost,
                    domain + " names " + origin + " as its server; unasked the password is not sent there", 0,
                    {}, origin + url.path);
    }
}

Account Discovery::fromDomain(const std::string& domain) {
    struct Kind {
        const char *service, *scheme;
    };
    for (const auto& [service, scheme] : {Kind{"_carddavs._tcp.", "https"}, Kind{"_carddav._tcp.", "http"}}) {
        std::string record = service;
        record += domain;
        const std::vector<Service> services = dns_.services(record);
        for (const Service& place : services) {
            Url url{scheme, place.host, place.port, "/.well-known/carddav"};
            for (const std::string& text : dns_.texts(record)) {
                url.path = text.starts_with("path=/") ? text.substr(5) : url.path;
            }
            confirmService(domain, url);
            try {
                return fromAddress(url);
            } catch (const Error& error) {
                if (error.kind() != ErrorKind::network || &place == &services.back()) {
                    throw;
                }
            }
        }
    }
    return fromAddress({"https", domain, 443, "/"});
}

} // namespace

Account discover(Client& client, const std::string& address, const Dns& dns, const ConfirmHost& confirm) {
    Discovery discovery(client, dns, confirm);
    const bool hasScheme = address.find("://") != std::string::npos;
    const std::optional<Url> url =
        parseUrl(hasScheme ? address : "https://" + address.substr(address.rfind('@') + 1));
    if (!url) {
        throw Error(ErrorKind::refused,
                    "this is neither a mail address nor the address of a server: " + address);
    }
    const bool isDomain =
        !hasScheme && url->path == "/" && url->port == 443 && address.find('/') == std::string::npos;
    return isDomain ? discovery.fromDomain(url->host) : discovery.fromAddress(*url);
}

Book describeBook(Client& client, const std::string& url) {
    const Resources read = readResources(client, askForBooks(url, 0));
    const Resource* resource = itself(read);
    if (resource == nullptr || !isBook(*resource)) {
        throw Error(ErrorKind::notFound, "there is no address book at " + url);
    }
    return bookOf(*resource, read.url);
}

Book createBook(Client& client, const std::string& home, const std::string& name) {
    std::string part = newUuid();
    std::transform(part.begin(), part.end(), part.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    const std::string url = home + (home.ends_with('/') ? "" : "/") + part + '/';
    client.trust(home);
    client.perform({"MKCOL",
                    url,
                    {"Content-Type: application/xml; charset=utf-8"},
                    makeBookBody(name),
                    {},
                    16UL * 1024 * 1024});
    return describeBook(client, url);
}

} // namespace addressbook::carddav

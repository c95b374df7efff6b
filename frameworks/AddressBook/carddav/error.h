#pragma once

// What can go wrong with a server: a kind, by which callers decide what to do, and a sentence for the user.

#include <stdexcept>
#include <string>
#include <string_view>

namespace addressbook::carddav {

enum class ErrorKind {
    unauthorised, // 401: not this user name and password
    forbidden,    // 403
    notFound,     // 404, 410
    conflict,     // 409
    uidConflict, // 403 or 409 with no-uid-conflict: href() is the card that has the UID, when the server tells
    preconditionFailed, // 412: changed in the meantime, or there already
    tooLarge,           // 413, max-resource-size, or an answer larger than we take
    locked,             // 423
    busy,               // 429, 503, for longer than we wait
    full,               // 507: no room for it
    rejected,           // another 4xx: the server does not take this card or this request
    serverError,        // another 5xx
    network,            // no such host, no connection, broken off, too slow
    tls,                // no certificate that can be trusted
    malformedAnswer,    // the answer is not what the protocol has there
    untrustedHost, // another host asks for the password, and trust() does not name it; href() is its address
    refused, // by us: plain http, a redirect from https to http, too many redirects, an unusable address
    stopped, // the stop flag was set
};

// Whether the next request would most likely fail in the same way, so that it is no use to go on: what failed is the
// way to the server or the account, not the one card.
bool concernsServer(ErrorKind kind);

class Error : public std::runtime_error {
  public:
    // [sentence] is for the user, without a full stop; [status] of HTTP, 0 when there was no answer.
    Error(ErrorKind kind, const std::string& sentence, int status = 0, std::string condition = {},
          std::string href = {})
        : std::runtime_error(sentence), kind_(kind), status_(status), condition_(std::move(condition)),
          href_(std::move(href)) {}

    [[nodiscard]] ErrorKind kind() const { return kind_; }
    [[nodiscard]] int status() const { return status_; }

    // Returns the condition that was not met, as "{DAV:}valid-sync-token" (RFC 4918, 16); empty when none was told.
    [[nodiscard]] const std::string& condition() const { return condition_; }

    // Returns the address that the error speaks of, for the kinds that say so; else empty.
    [[nodiscard]] const std::string& href() const { return href_; }

  private:
    ErrorKind kind_;
    int status_;
    std::string condition_, href_;
};

} // namespace addressbook::carddav

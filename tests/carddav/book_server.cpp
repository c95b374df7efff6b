#include "tests/carddav/book_server.h"

#include <utility>

namespace carddav_test {
namespace {

// The text between two others, from [at] on; nothing when it is not there. [at] moves behind it.
std::optional<std::string> between(const std::string& text, const std::string& begin, const std::string& end,
                                   std::size_t& at) {
    const std::size_t from = text.find(begin, at);
    const std::size_t to = from == std::string::npos ? from : text.find(end, from + begin.size());
    if (to == std::string::npos) {
        return std::nullopt;
    }
    at = to + end.size();
    return text.substr(from + begin.size(), to - from - begin.size());
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        result += c == '&' ? "&amp;" : c == '<' ? "&lt;" : std::string(1, c);
    }
    return result;
}

// The path of a target, without percent signs.
std::string decoded(const std::string& target) {
    const std::string path = target.substr(0, target.find('?'));
    std::string result;
    for (std::size_t at = 0; at < path.size(); ++at) {
        if (path[at] == '%' && at + 2 < path.size()) {
            result += static_cast<char>(std::stoi(path.substr(at + 1, 2), nullptr, 16));
            at += 2;
        } else {
            result += path[at];
        }
    }
    return result;
}

std::string status(const std::string& href, int code) {
    return "<D:response><D:href>" + href + "</D:href><D:status>HTTP/1.1 " + std::to_string(code) +
           " Whatever</D:status></D:response>";
}

Reply refused(int code, const std::string& condition) {
    return {code,
            R"(<?xml version="1.0"?><D:error xmlns:D="DAV:" xmlns:C="urn:ietf:params:xml:ns:carddav">)" +
                condition + "</D:error>"};
}

constexpr const char* kReports = "<D:supported-report-set><D:supported-report><D:report><D:sync-collection/>"
                                 "</D:report></D:supported-report></D:supported-report-set>";

} // namespace

BookServer::BookServer(Habits habits, const Certificate* certificate)
    : habits_(std::move(habits)),
      server_([this](const Received& received) { return answer(received); }, certificate) {}

void BookServer::fail(Fault fault) {
    const std::lock_guard lock(mutex_);
    fault_ = std::move(fault);
}

void BookServer::forgetTokens() {
    const std::lock_guard lock(mutex_);
    ++generation_;
}

void BookServer::put(const std::string& path, const std::string& card) {
    const std::lock_guard lock(mutex_);
    store(path, card);
}

void BookServer::remove(const std::string& path) {
    const std::lock_guard lock(mutex_);
    erase(path);
}

std::map<std::string, std::string> BookServer::cards() const {
    const std::lock_guard lock(mutex_);
    std::map<std::string, std::string> result;
    for (const auto& [path, card] : cards_) {
        result[path] = card.text;
    }
    return result;
}

Reply BookServer::answer(const Received& received) {
    const std::lock_guard lock(mutex_);
    if (fault_) {
        if (std::optional<Reply> bad = fault_(received)) {
            return *bad;
        }
    }
    if (received.header("authorization") != "Basic aWRhOnMzY3JldA==") {
        return {401, "", {"WWW-Authenticate: Basic realm=\"tests\""}};
    }
    return serve(received);
}

Reply BookServer::serve(const Received& received) {
    if (received.method == "PROPFIND") {
        return propfind(received);
    }
    if (received.method == "REPORT") {
        return report(received);
    }
    if (received.method == "PUT" || received.method == "DELETE") {
        return write(received);
    }
    if (received.method == "MKCOL") {
        return makeBook(received);
    }
    const auto card = cards_.find(decoded(received.target));
    if (received.method != "GET" || card == cards_.end()) {
        return {404};
    }
    return {200,
            card->second.text,
            {"Content-Type: text/vcard", "ETag: " + habits_.etag(std::to_string(card->second.change))}};
}

std::string BookServer::hrefOf(const std::string& path) const {
    return habits_.href(path, server_.url(""));
}

std::string BookServer::describe(const std::string& book) const {
    return response(hrefOf(book),
                    "<D:resourcetype><D:collection/><C:addressbook/></D:resourcetype><D:displayname>" +
                        books_.at(book) + "</D:displayname><S:getctag>" + token() + "</S:getctag>" +
                        (habits_.syncTokens ? kReports : ""));
}

Reply BookServer::propfind(const Received& received) const {
    const std::string path = decoded(received.target);
    const bool deep = received.header("depth") == "1";
    const std::string principal =
        "<D:current-user-principal><D:href>/ida/</D:href></D:current-user-principal>";
    if (path == "/") {
        return multistatus(response("/", principal));
    }
    if (path == kHome) {
        std::string all = response(kHome, principal + "<C:addressbook-home-set><D:href>/ida/</D:href>"
                                                      "</C:addressbook-home-set>");
        for (const auto& [book, name] : books_) {
            all += deep ? describe(book) : "";
        }
        return multistatus(all);
    }
    if (!books_.contains(path)) {
        return {404};
    }
    std::string all = describe(path);
    for (const auto& [href, card] : cards_) {
        if (deep && href.starts_with(path)) {
            all += response(hrefOf(href), "<D:getetag>" + escaped(habits_.etag(std::to_string(card.change))) +
                                              "</D:getetag><D:resourcetype/>");
        }
    }
    return multistatus(all);
}

Reply BookServer::report(const Received& received) const {
    std::size_t at = 0;
    if (const std::optional<std::string> token =
            between(received.body, "<D:sync-token>", "</D:sync-token>", at)) {
        return habits_.syncTokens ? changes(decoded(received.target), *token)
                                  : refused(403, "<D:supported-report/>");
    }
    return multiget(received.body);
}

std::string BookServer::token() const {
    return "tag:" + std::to_string(generation_) + ':' + std::to_string(change_);
}

Reply BookServer::changes(const std::string& book, const std::string& token) const {
    const std::string own = "tag:" + std::to_string(generation_) + ':';
    if (!token.empty() && !token.starts_with(own)) {
        return refused(403, "<D:valid-sync-token/>");
    }
    const int since = token.empty() ? 0 : std::stoi(token.substr(own.size()));
    std::string all;
    for (const auto& [href, change] : changed_) {
        if (!href.starts_with(book) || change <= since) {
            continue;
        }
        if (cards_.contains(href)) {
            all += response(hrefOf(href),
                            "<D:getetag>" + escaped(habits_.etag(std::to_string(change))) + "</D:getetag>");
        } else if (!token.empty()) {
            all += status(hrefOf(href), 404);
        }
    }
    return multistatus(all + "<D:sync-token>" + this->token() + "</D:sync-token>");
}

Reply BookServer::multiget(const std::string& body) const {
    std::string all;
    std::size_t at = 0;
    while (const std::optional<std::string> href = between(body, "<D:href>", "</D:href>", at)) {
        const auto card = cards_.find(decoded(*href));
        all += card == cards_.end()
                   ? status(hrefOf(decoded(*href)), 404)
                   : response(hrefOf(card->first),
                              "<D:getetag>" + escaped(habits_.etag(std::to_string(card->second.change))) +
                                  "</D:getetag><C:address-data>" + escaped(card->second.text) +
                                  "</C:address-data>");
    }
    return multistatus(all);
}

Reply BookServer::write(const Received& received) {
    const std::string path = decoded(received.target);
    const auto card = cards_.find(path);
    const std::string match = received.header("if-match");
    if (received.header("if-none-match") == "*" && card != cards_.end()) {
        return {412};
    }
    if (!match.empty() && (card == cards_.end() ||
                           (match != "*" && match != habits_.etag(std::to_string(card->second.change))))) {
        return {card == cards_.end() && received.method == "DELETE" ? 404 : 412};
    }
    if (received.method == "DELETE") {
        const bool was = card != cards_.end();
        erase(path);
        return {was ? 204 : 404};
    }
    const bool isNew = card == cards_.end();
    store(path, received.body);
    Reply reply{isNew ? 201 : 204};
    if (habits_.tellsEtag) {
        reply.headers.push_back("ETag: " + habits_.etag(std::to_string(change_)));
    }
    return reply;
}

Reply BookServer::makeBook(const Received& received) {
    std::size_t at = 0;
    books_[decoded(received.target)] =
        between(received.body, "<D:displayname>", "</D:displayname>", at).value_or("");
    return {201};
}

void BookServer::store(const std::string& path, const std::string& card) {
    ++change_;
    cards_[path] = {habits_.store(card), change_};
    changed_[path] = change_;
}

void BookServer::erase(const std::string& path) {
    if (cards_.erase(path) != 0) {
        changed_[path] = ++change_;
    }
}

} // namespace carddav_test

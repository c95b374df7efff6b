#include "tests/sync/memory_server.h"

namespace addressbook::sync::test {

using carddav::Change;
using carddav::Changes;
using carddav::Error;
using carddav::ErrorKind;
using carddav::Progress;
using carddav::Write;
using carddav::Written;

namespace {

std::string uidIn(const std::string& text) {
    const auto at = text.find("\nUID:");
    return at == std::string::npos ? std::string() : text.substr(at + 5, text.find("\r\n", at + 1) - at - 5);
}

} // namespace

void MemoryServer::put(const std::string& href, const std::string& text) {
    ++version;
    cards[href] = {text, '"' + std::to_string(version) + '"', version};
    gone.erase(href);
}

void MemoryServer::remove(const std::string& href) {
    if (cards.erase(href) > 0) {
        gone[href] = ++version;
    }
}

std::string MemoryServer::textOf(const std::string& href) const {
    const auto found = cards.find(href);
    return found == cards.end() ? std::string() : found->second.text;
}

std::string MemoryServer::hrefOf(const std::string& line) const {
    for (const auto& [href, card] : cards) {
        if (card.text.find(line) != std::string::npos) {
            return href;
        }
    }
    return {};
}

void MemoryCollection::begin(const std::string& what) {
    requests.push_back(what);
    if (onRequest) {
        onRequest(what);
    }
}

void MemoryCollection::end(const std::string& what) {
    if (onRequest) {
        onRequest("answer " + what);
    }
}

Changes MemoryCollection::changes(const std::string& state, const std::function<void(Change&&)>& each) {
    begin("list");
    const bool everything = state.empty();
    const std::int64_t since = everything ? 0 : std::stoll(state);
    if (!everything && (server_.forgetsTokens || (!server_.hasTokens && since != server_.version))) {
        server_.forgetsTokens = false;
        return {Progress::beginAnew, {}};
    }
    std::map<std::int64_t, Change> told; // by version
    for (const auto& [href, card] : server_.cards) {
        if (card.version > since) {
            told[card.version] = {href, server_.tellsEtags ? card.etag : std::string(), false};
        }
    }
    for (const auto& [href, version] : server_.gone) {
        if (version > since && !everything) {
            told[version] = {href, {}, true};
        }
    }
    const std::string now = std::to_string(server_.version);
    std::size_t count = 0;
    for (auto& [version, change] : told) {
        if (server_.hasTokens && server_.piece > 0 && count++ == server_.piece) {
            return {Progress::more, std::to_string(version - 1)};
        }
        each(std::move(change));
    }
    end("list");
    return {Progress::complete, now};
}

void MemoryCollection::fetch(const std::function<std::optional<std::string>()>& next,
                             const std::function<void(carddav::Fetched&&)>& each) {
    while (const auto href = next()) {
        begin("get " + *href);
        const auto found = server_.cards.find(*href);
        end("get " + *href);
        if (found == server_.cards.end()) {
            each({*href, {}, {}, Error(ErrorKind::notFound, "it is gone")});
        } else {
            each({*href, server_.tellsEtags ? found->second.etag : std::string(), found->second.text, {}});
        }
    }
}

void MemoryCollection::write(const std::function<std::optional<Write>()>& next,
                             const std::function<void(const Write&, Written&&)>& done) {
    while (const auto write = next()) {
        const std::string what = (write->kind == Write::Kind::remove ? "delete " : "put ") + write->href;
        begin(what);
        auto error = onWrite ? onWrite(*write) : std::nullopt;
        Written written = error ? Written{write->href, {}, error} : make(*write);
        end(what);
        if (answersAreLost) {
            done(*write, {write->href, {}, Error(ErrorKind::network, "the connection broke off")});
            throw Error(ErrorKind::network, "the connection broke off");
        }
        done(*write, std::move(written));
    }
}

Written MemoryCollection::make(const Write& write) {
    const auto fails = [&](ErrorKind kind, const std::string& href = {}) {
        return Written{write.href, {}, Error(kind, "the server does not take it", 0, {}, href)};
    };
    const auto found = server_.cards.find(write.href);
    const bool exists = found != server_.cards.end();
    const bool same = exists && (write.etag.empty() || write.etag == found->second.etag);
    if (write.kind == Write::Kind::create) {
        if (exists) {
            return fails(ErrorKind::preconditionFailed);
        }
        for (const auto& [href, card] : server_.cards) {
            if (uidIn(card.text) == uidIn(write.card)) {
                return fails(ErrorKind::uidConflict, tellsConflictingHref ? href : std::string());
            }
        }
    } else if (!exists) {
        return write.kind == Write::Kind::remove ? Written{write.href, {}, {}} : fails(ErrorKind::notFound);
    } else if (!same) {
        return fails(ErrorKind::preconditionFailed);
    }
    if (write.kind == Write::Kind::remove) {
        server_.remove(write.href);
        return {write.href, {}, {}};
    }
    server_.put(write.href, server_.rewrite ? server_.rewrite(write.card) : write.card);
    const bool told = server_.answersEtags && server_.tellsEtags && !server_.rewrite;
    return {write.href, told ? server_.cards[write.href].etag : std::string(), {}};
}

} // namespace addressbook::sync::test

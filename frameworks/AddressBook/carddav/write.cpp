#include "frameworks/AddressBook/carddav/write.h"

#include "frameworks/AddressBook/carddav/etag.h"
#include "frameworks/AddressBook/carddav/url.h"

namespace addressbook::carddav {

Writer::Writer(Client& client, const std::string& url, const std::function<std::optional<Write>()>& next,
               const std::function<void(const Write&, Written&&)>& done)
    : client_(client), url_(url), next_(next), done_(done) {}

void Writer::run() {
    fill();
    client_.run();
    if (fatal_) {
        throw Error(*fatal_);
    }
}

void Writer::fill() {
    while (inFlight_ < client_.options().requestsAtOnce && !exhausted_ && !fatal_) {
        if (const std::optional<Write> write = next_()) {
            ask(*write, write->etag);
        } else {
            exhausted_ = true;
        }
    }
}

void Writer::ask(const Write& write, const std::string& etag) {
    Request request;
    request.url = resolve(url_, write.href).value_or(write.href);
    if (write.kind == Write::Kind::remove) {
        request.method = "DELETE";
    } else {
        request.method = "PUT";
        request.headers.emplace_back("Content-Type: text/vcard; charset=utf-8");
        request.body = write.card;
    }
    if (write.kind == Write::Kind::create) {
        request.headers.emplace_back("If-None-Match: *");
    } else if (!etag.empty()) {
        request.headers.push_back("If-Match: " + etag);
    } else if (write.kind == Write::Kind::change) {
        request.headers.emplace_back("If-Match: *");
    }
    ++inFlight_;
    client_.send(std::move(request), [this, write, etag](Result&& result) {
        --inFlight_;
        finish(write, etag, std::move(result));
        fill();
    });
}

void Writer::finish(const Write& write, const std::string& etag, Result&& result) {
    const std::optional<Error>& error = result.error;
    // By the book no weak etag ever matches: without the mark it does where only the mark was in the way.
    if (error && error->kind() == ErrorKind::preconditionFailed && isWeakEtag(etag)) {
        ask(write, etag.substr(2));
        return;
    }
    if (error && concernsServer(error->kind()) && !fatal_) {
        fatal_ = error;
    }
    const bool gone = error && error->kind() == ErrorKind::notFound && write.kind == Write::Kind::remove;
    if (error && !gone) {
        done_(write, {write.href, {}, error});
    } else {
        done_(write, readAnswer(write, result.answer));
    }
}

Written Writer::readAnswer(const Write& write, const Answer& answer) const {
    Written written{write.href, {}, std::nullopt};
    if (write.kind == Write::Kind::remove) {
        return written;
    }
    // A strong etag promises that the card is stored as it was sent (RFC 6352, 6.3.2.3).
    const std::string etag = answer.header("etag");
    if (!isWeakEtag(etag)) {
        written.etag = etag;
    }
    const std::string location = answer.header("location");
    if (write.kind == Write::Kind::create && !location.empty()) {
        const std::optional<std::string> address = resolve(answer.url, location);
        const std::optional<Url> there = address ? parseUrl(*address) : std::nullopt;
        const std::optional<Url> here = parseUrl(url_);
        if (there && here && there->host == here->host) {
            written.href = normalHref(answer.url, location).value_or(write.href);
        }
    }
    return written;
}

} // namespace addressbook::carddav

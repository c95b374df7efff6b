#include "frameworks/AddressBook/carddav/fetch.h"

#include "frameworks/AddressBook/carddav/multistatus.h"
#include "frameworks/AddressBook/carddav/names.h"
#include "frameworks/AddressBook/carddav/requests.h"
#include "frameworks/AddressBook/carddav/status_error.h"
#include "frameworks/AddressBook/carddav/url.h"

#include <algorithm>

namespace addressbook::carddav {
namespace {

constexpr std::size_t kRequestsAtOnce = 4; // enough to keep a server busy while another answer is read

// Lines end with CR LF, as a card's do; XML makes LF of it.
std::string cardLines(std::string_view text) {
    std::string result;
    result.reserve(text.size() + text.size() / 16 + 2);
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\n' && (at == 0 || text[at - 1] != '\r')) {
            result += '\r';
        }
        result += text[at];
    }
    const std::size_t last = result.find_last_not_of("\r\n");
    result.resize(last == std::string::npos ? 0 : last + 1);
    return result.empty() ? result : result + "\r\n";
}

// Whether a batch may have failed because of one card in it.
bool mayBeOfOneCard(ErrorKind kind) {
    return kind == ErrorKind::malformedAnswer || kind == ErrorKind::serverError ||
           kind == ErrorKind::tooLarge || kind == ErrorKind::full || kind == ErrorKind::rejected;
}

bool isUnknownRequest(const Error& error) {
    return error.status() == 405 || error.status() == 501 || error.condition() == names::kSupportedReport;
}

// What a multiget says of one card; nothing when it has neither the card nor a reason.
std::optional<Fetched> readCard(const Resource& resource, const std::string& href,
                                const std::string& address) {
    if (const Property* card = resource.find(names::kCard); card != nullptr && !card->text.empty()) {
        return Fetched{href, resource.text(names::kEtag), cardLines(card->text), std::nullopt};
    }
    if (resource.status >= 400) {
        return Fetched{href, {}, {}, errorOfStatus(resource.status, {}, "REPORT", address)};
    }
    return std::nullopt;
}

} // namespace

Fetcher::Fetcher(Client& client, const std::string& url, const CollectionOptions& options,
                 const std::function<std::optional<std::string>()>& next,
                 const std::function<void(Fetched&&)>& each)
    : client_(client), url_(url), options_(options), next_(next), each_(each) {}

void Fetcher::run() {
    fill();
    client_.run();
    if (fatal_) {
        throw Error(*fatal_);
    }
}

void Fetcher::fill() {
    while (inFlight_ < kRequestsAtOnce && !exhausted_ && !fatal_) {
        Hrefs hrefs;
        while (hrefs.size() < options_.batch && !exhausted_) {
            if (std::optional<std::string> href = next_()) {
                hrefs.push_back(std::move(*href));
            } else {
                exhausted_ = true;
            }
        }
        if (!hrefs.empty()) {
            ask(std::move(hrefs));
        }
    }
}

void Fetcher::ask(Hrefs hrefs) {
    if (!multiget_) {
        for (const std::string& href : hrefs) {
            get(href);
        }
        return;
    }
    Request request{
        "REPORT", url_, {"Depth: 0", "Content-Type: application/xml; charset=utf-8"}, multigetBody(hrefs),
        {},       0};
    // Each card may be as large as it can be, and XML writes some characters with several.
    request.maxAnswer = 2 * options_.maxCard + hrefs.size() * options_.maxCard;
    auto open = std::make_shared<std::set<std::string>>(std::make_move_iterator(hrefs.begin()),
                                                        std::make_move_iterator(hrefs.end()));
    auto reader = std::make_shared<MultistatusReader>(
        [this, open](Resource&& resource) {
            const std::optional<std::string> href = normalHref(url_, resource.href);
            const auto at = href ? open->find(*href) : open->end();
            if (at == open->end()) {
                return; // not asked for, or told twice
            }
            if (std::optional<Fetched> fetched = readCard(resource, *at, url_)) {
                open->erase(at);
                deliver(std::move(*fetched));
            }
        },
        options_.maxCard);
    request.receive = [reader](std::string_view bytes) { reader->feed(bytes); };
    ++inFlight_;
    client_.send(std::move(request), [this, open, reader](Result&& result) {
        --inFlight_;
        if (!result.error) {
            try {
                reader->finish();
            } catch (const Error& error) {
                result.error = error;
            }
        }
        finish(open, std::move(result));
        fill();
    });
}

void Fetcher::finish(const std::shared_ptr<std::set<std::string>>& open, Result&& result) {
    if (!result.error || open->empty()) {
        for (const std::string& href : *open) { // which the server passed over
            get(href);
        }
        return;
    }
    const Error& error = *result.error;
    if (isUnknownRequest(error)) {
        multiget_ = false;
        for (const std::string& href : *open) {
            get(href);
        }
    } else if (!mayBeOfOneCard(error.kind())) {
        fail(error);
    } else {
        split(*open, error);
    }
}

void Fetcher::split(const std::set<std::string>& open, const Error& error) {
    constexpr int kMaxFailures = 40; // more than it takes to find a bad card among some hundreds
    if (fatal_ || ++failures_ > kMaxFailures) {
        fail(error);
        return;
    }
    if (open.size() == 1) {
        get(*open.begin());
        return;
    }
    const auto middle = std::next(open.begin(), static_cast<std::ptrdiff_t>(open.size() / 2));
    ask({open.begin(), middle});
    ask({middle, open.end()});
}

void Fetcher::get(const std::string& href) {
    const std::optional<std::string> address = resolve(url_, href);
    // Packed, some servers give it another etag.
    Request request{
        "GET", address.value_or(href), {"Accept: text/vcard, text/x-vcard", "Accept-Encoding: identity"}, {},
        {},    options_.maxCard};
    ++inFlight_;
    client_.send(std::move(request), [this, href](Result&& result) {
        --inFlight_;
        if (result.error && concernsServer(result.error->kind())) {
            fail(*result.error);
        } else if (result.error) {
            deliver({href, {}, {}, std::move(result.error)});
        } else {
            deliver({href, result.answer.header("etag"), cardLines(result.answer.body), std::nullopt});
        }
        fill();
    });
}

void Fetcher::deliver(Fetched fetched) {
    failures_ = fetched.error ? failures_ : 0;
    each_(std::move(fetched));
}

void Fetcher::fail(const Error& error) {
    if (!fatal_) {
        fatal_ = error;
    }
}

} // namespace addressbook::carddav

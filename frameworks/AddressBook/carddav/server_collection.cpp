#include "frameworks/AddressBook/carddav/server_collection.h"

#include "frameworks/AddressBook/carddav/discovery.h"
#include "frameworks/AddressBook/carddav/fetch.h"
#include "frameworks/AddressBook/carddav/multistatus.h"
#include "frameworks/AddressBook/carddav/names.h"
#include "frameworks/AddressBook/carddav/propfind.h"
#include "frameworks/AddressBook/carddav/requests.h"
#include "frameworks/AddressBook/carddav/url.h"
#include "frameworks/AddressBook/carddav/write.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace addressbook::carddav {
namespace {

// How a state begins that changes() gives; what follows is the server's. A list has nothing that tells of changes.
// Behind it the server's last token and, on a line of its own, the one before if it was another. The next time both are
// asked with: servers that go by the moment at which a change began (DAViCal) tell a change that was under way when they
// gave a token only to who asks with an older one. That alone would not do: who came after the older token and is gone
// is told by some only with the last one.
constexpr std::string_view kTokenState = "sync-token ";
constexpr std::string_view kCtagState = "ctag ";
constexpr std::string_view kListState = "list";

// Whether a server that was asked what changed since a token knows that no more. Some say so by the condition, others by
// a status alone, one stumbles: to begin anew costs a listing, and loses nothing.
bool forgotToken(const Error& error) {
    constexpr std::array kStatuses = {400, 409, 410, 412, 500};
    return error.condition() == names::kValidToken ||
           std::find(kStatuses.begin(), kStatuses.end(), error.status()) != kStatuses.end();
}

// Whether a server that tells of the report does not have it after all.
bool hasNoReport(const Error& error) {
    return error.condition() == names::kSupportedReport || error.kind() == ErrorKind::rejected ||
           error.status() == 501;
}

// A part of the href that depends on [text] alone: FNV-1a of 64 bits.
std::string digest(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    }
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string digits;
    for (int shift = 60; shift >= 0; shift -= 4) {
        digits += kDigits[hash >> shift & 15];
    }
    return digits;
}

class ServerCollection : public Collection {
  public:
    ServerCollection(Client& client, const std::string& url, CollectionOptions options);

    Changes changes(const std::string& state, const std::function<void(Change&&)>& each) override;
    void fetch(const std::function<std::optional<std::string>()>& next,
               const std::function<void(Fetched&&)>& each) override {
        Fetcher(client_, url_, options_, next, each).run();
    }
    void write(const std::function<std::optional<Write>()>& next,
               const std::function<void(const Write&, Written&&)>& done) override {
        Writer(client_, url_, next, done).run();
    }
    [[nodiscard]] std::string hrefFor(const std::string& uid) const override;

  private:
    Changes everything(const std::function<void(Change&&)>& each);
    Changes sync(const std::string& token, const std::function<void(Change&&)>& each);
    Changes list(std::string state, const std::function<void(Change&&)>& each);
    std::optional<Change> changeOf(const Resource& resource, bool removals) const;

    Client& client_;
    std::string url_, path_; // both end with a slash
    CollectionOptions options_;
};

ServerCollection::ServerCollection(Client& client, const std::string& url, CollectionOptions options)
    : client_(client), options_(options) {
    const std::optional<Url> parts = parseUrl(url);
    if (!parts) {
        throw Error(ErrorKind::refused, "this is no address of an address book: " + url);
    }
    path_ = normalHref(url, parts->path).value_or("/");
    path_ += path_.ends_with('/') ? "" : "/";
    url_ = parts->origin() + path_;
    client_.trust(url_);
}

Changes ServerCollection::changes(const std::string& state, const std::function<void(Change&&)>& each) {
    if (state.empty()) {
        return everything(each);
    }
    if (state.starts_with(kCtagState)) {
        const Book book = describeBook(client_, url_);
        const bool same = !book.ctag.empty() && state.substr(kCtagState.size()) == book.ctag;
        return same ? Changes{Progress::complete, state} : Changes{Progress::beginAnew, {}};
    }
    if (!state.starts_with(kTokenState)) { // a list: nothing tells whether it is another by now
        return {Progress::beginAnew, {}};
    }
    try {
        const std::string tokens = state.substr(kTokenState.size());
        const std::size_t end = tokens.find('\n');
        const std::string last = tokens.substr(0, end);
        if (end != std::string::npos) {
            sync(tokens.substr(end + 1), each);
        }
        Changes told = sync(last, each);
        if (told.progress == Progress::complete && told.state != std::string(kTokenState) + last) {
            told.state += '\n' + last;
        }
        return told;
    } catch (const Error& error) {
        if (!forgotToken(error)) {
            throw;
        }
        return {Progress::beginAnew, {}};
    }
}

Changes ServerCollection::everything(const std::function<void(Change&&)>& each) {
    const Book book = describeBook(client_, url_);
    if (book.hasSyncReport) {
        try {
            return sync({}, each);
        } catch (const Error& error) {
            if (!hasNoReport(error)) {
                throw;
            }
        }
    }
    // The tag is from before the list: what changes between them is told the next time.
    return list(book.ctag.empty() ? std::string(kListState) : std::string(kCtagState) + book.ctag, each);
}

// What a resource in a listing is to the collection; nothing for the collection itself and collections in it.
// [removals]: a status 404 says that a card was removed. Any other one says that it is there, but not how.
std::optional<Change> ServerCollection::changeOf(const Resource& resource, bool removals) const {
    const std::optional<std::string> href = normalHref(url_, resource.href);
    if (!href || *href == path_ || *href + '/' == path_ || href->ends_with('/') ||
        resource.has(names::kResourceType, names::kIsCollection)) {
        return std::nullopt;
    }
    const bool gone = resource.status == 404 || resource.status == 410;
    if (gone && !removals) {
        return std::nullopt;
    }
    std::string etag = resource.text(names::kEtag);
    if (std::any_of(etag.begin(), etag.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; })) {
        etag.clear(); // it could not be sent
    }
    return Change{*href, gone ? std::string() : std::move(etag), gone};
}

Changes ServerCollection::sync(const std::string& token, const std::function<void(Change&&)>& each) {
    bool truncated = false;
    MultistatusReader reader([&](Resource&& resource) {
        const std::optional<std::string> href = normalHref(url_, resource.href);
        if (href && (*href == path_ || *href + '/' == path_)) {
            truncated = truncated || resource.status == 507;
        } else if (std::optional<Change> change = changeOf(resource, true)) {
            each(std::move(*change));
        }
    });
    client_.perform({"REPORT",
                     url_,
                     {"Depth: 0", "Content-Type: application/xml; charset=utf-8"},
                     syncBody(token),
                     [&](std::string_view bytes) { reader.feed(bytes); },
                     options_.maxListing,
                     options_.listingTimeout});
    reader.finish();
    if (reader.syncToken().empty()) {
        throw Error(ErrorKind::malformedAnswer, "the server tells changes without a sync token");
    }
    if (truncated && reader.syncToken() == token) {
        throw Error(ErrorKind::malformedAnswer,
                    "the server tells only a part of the changes, and always the same one");
    }
    return {truncated ? Progress::more : Progress::complete, std::string(kTokenState) + reader.syncToken()};
}

Changes ServerCollection::list(std::string state, const std::function<void(Change&&)>& each) {
    MultistatusReader reader([&](Resource&& resource) {
        if (std::optional<Change> change = changeOf(resource, false)) {
            each(std::move(*change));
        }
    });
    Request request = propfind(url_, 1, {names::kEtag, names::kResourceType});
    request.receive = [&](std::string_view bytes) { reader.feed(bytes); };
    request.maxAnswer = options_.maxListing;
    request.stallTimeout = options_.listingTimeout;
    client_.perform(std::move(request));
    reader.finish();
    return {Progress::complete, std::move(state)};
}

std::string ServerCollection::hrefFor(const std::string& uid) const {
    constexpr std::size_t kMaxName = 120;
    std::string name;
    for (const char c : uid) {
        const bool usual = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                           c == '-' || c == '_';
        name += usual ? c : '-';
    }
    if (name != uid || name.empty() || name.size() > kMaxName) {
        name = name.substr(0, kMaxName / 2) + '-' + digest(uid); // a path that no server stumbles over
    }
    return path_ + name + ".vcf";
}

} // namespace

std::unique_ptr<Collection> openCollection(Client& client, const std::string& url,
                                           CollectionOptions options) {
    return std::make_unique<ServerCollection>(client, url, options);
}

} // namespace addressbook::carddav

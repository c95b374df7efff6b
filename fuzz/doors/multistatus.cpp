// What a CardDAV server answers: a multistatus document in pieces, a condition, addresses and etags.

#include "frameworks/AddressBook/carddav/multistatus.h"
#include "frameworks/AddressBook/carddav/error.h"
#include "frameworks/AddressBook/carddav/etag.h"
#include "frameworks/AddressBook/carddav/url.h"
#include "fuzz/support/claim.h"
#include "fuzz/support/input.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace {

using namespace addressbook::carddav;

constexpr std::size_t kMostText = 4096; // of a property; small, so that inputs reach it

// What was read of an answer, or why it could not be.
struct Answer {
    std::string told;
    std::size_t resources = 0;
};

void lookAt(const Resource& resource) {
    (void)resource.find("{DAV:}getetag");
    (void)resource.text("{DAV:}displayname");
    (void)resource.has("{DAV:}resourcetype", "{urn:ietf:params:xml:ns:carddav}addressbook");
    if (const auto address = resolve("https://example.com/books/ida/", resource.href)) {
        fuzz::claim(parseUrl(*address).has_value(), "an address that an href means is an address");
    }
}

// Reads an answer in pieces; [each] 0 is all at once.
Answer read(std::string_view text, std::size_t each) {
    Answer answer;
    MultistatusReader reader(
        [&](Resource&& resource) {
            lookAt(resource);
            ++answer.resources;
            answer.told += resource.href + ' ' + std::to_string(resource.status) + ' ';
            for (const Property& property : resource.properties) {
                fuzz::claim(property.text.size() <= kMostText,
                            "a property has no more text than it may have");
                answer.told += property.name + '=' + property.text + ';';
            }
        },
        kMostText);
    try {
        for (std::size_t at = 0; at < text.size(); at += std::min(each, text.size() - at)) {
            reader.feed(text.substr(at, each));
        }
        reader.finish();
        answer.told += reader.syncToken();
    } catch (const Error& error) {
        fuzz::claim(error.kind() == ErrorKind::malformedAnswer,
                    "a document that cannot be read is a malformed answer");
        answer.told = "malformed";
    }
    return answer;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    const std::size_t piece = 1 + input.number<uint8_t>() % 16;
    const std::string_view text = input.rest();
    const Answer whole = read(text, std::max<std::size_t>(1, text.size()));
    const Answer pieces = read(text, piece);
    fuzz::claim(whole.told == pieces.told, "an answer says the same in whatever pieces it comes");
    const Condition condition = readCondition(text);
    (void)sameEtag(condition.name, condition.href);
    (void)isWeakEtag(text);
    if (const auto url = parseUrl(std::string(text))) {
        (void)url->origin();
        (void)url->isLoopback();
    }
    return 0;
}

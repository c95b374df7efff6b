#include "frameworks/AddressBook/carddav/etag.h"

#include "frameworks/AddressBook/values/text.h"

namespace addressbook::carddav {

bool isWeakEtag(std::string_view etag) {
    return etag.starts_with("W/") || etag.starts_with("w/");
}

bool sameEtag(std::string_view one, std::string_view other) {
    const auto plain = [](std::string_view etag) {
        etag = trim(etag);
        if (isWeakEtag(etag)) {
            etag.remove_prefix(2);
        }
        if (etag.size() >= 2 && etag.front() == '"' && etag.back() == '"') {
            etag = etag.substr(1, etag.size() - 2);
        }
        return etag;
    };
    return !plain(one).empty() && plain(one) == plain(other);
}

} // namespace addressbook::carddav

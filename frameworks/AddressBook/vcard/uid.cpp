#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>

namespace addressbook::vcard {

namespace {

bool isUuid(std::string_view text) {
    if (text.size() != 36) {
        return false;
    }
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool dash = at == 8 || at == 13 || at == 18 || at == 23;
        const char byte = text[at];
        const bool hex =
            (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'F') || (byte >= 'a' && byte <= 'f');
        if (dash ? byte != '-' : !hex) {
            return false;
        }
    }
    return true;
}

} // namespace

std::string uuidOf(std::string_view uid) {
    constexpr std::string_view kUrn = "urn:uuid:";
    if (equalsIgnoringCase(uid.substr(0, kUrn.size()), kUrn)) {
        uid.remove_prefix(kUrn.size());
    }
    for (const std::string_view suffix : {":ABPerson", ":ABGroup"}) {
        if (uid.ends_with(suffix)) {
            uid.remove_suffix(suffix.size());
        }
    }
    if (isUuid(uid)) {
        return upperCase(uid);
    }
    // A name space for this purpose. The result must never change, or cards would be taken for new ones.
    static const boost::uuids::uuid kNameSpace =
        boost::uuids::string_generator()("6f1b7c0e-3d52-4d0a-9a57-5f0c6a1e8b21");
    return upperCase(to_string(boost::uuids::name_generator_sha1(kNameSpace)(uid.data(), uid.size())));
}

} // namespace addressbook::vcard

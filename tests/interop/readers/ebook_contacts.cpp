// Prints as JSON what libebook-contacts sees in the cards of a file. The form is described in ../README.md.

#include "tests/interop/readers/cards.h"

#include <libebook-contacts/libebook-contacts.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using interop::Json;

struct Unref {
    void operator()(EContact* contact) const { g_object_unref(contact); }
};
using Contact = std::unique_ptr<EContact, Unref>;

std::string textOf(const char* text) {
    return text ? text : "";
}

std::string text(EContact* contact, EContactField field) {
    char* value = static_cast<char*>(e_contact_get(contact, field));
    std::string result = textOf(value);
    g_free(value);
    return result;
}

std::string date(EContact* contact, EContactField field) {
    auto* value = static_cast<EContactDate*>(e_contact_get(contact, field));
    if (!value) {
        return {};
    }
    char* written = e_contact_date_to_string(value);
    std::string result = textOf(written);
    g_free(written);
    e_contact_date_free(value);
    return result;
}

std::vector<std::string> types(EVCardAttribute* line) {
    std::vector<std::string> words;
    for (GList* each = e_vcard_attribute_get_param(line, EVC_TYPE); each; each = each->next) {
        std::string word = static_cast<const char*>(each->data);
        std::transform(word.begin(), word.end(), word.begin(),
                       [](unsigned char c) { return std::toupper(c); });
        words.push_back(std::move(word));
    }
    std::sort(words.begin(), words.end());
    return words;
}

// The lines of a property, each with the values that the library takes its value apart into.
template <typename Take>
void forEach(EContact* contact, const char* property, Take take) {
    for (GList* each = e_vcard_get_attributes(E_VCARD(contact)); each; each = each->next) {
        auto* line = static_cast<EVCardAttribute*>(each->data);
        if (g_ascii_strcasecmp(e_vcard_attribute_get_name(line), property) == 0) {
            std::vector<std::string> values;
            for (GList* value = e_vcard_attribute_get_values(line); value; value = value->next) {
                values.push_back(textOf(static_cast<const char*>(value->data)));
            }
            take(line, std::move(values));
        }
    }
}

std::string joined(const std::vector<std::string>& values, char separator) {
    std::string all;
    for (const std::string& value : values) {
        all += (&value == values.data() ? std::string() : std::string(1, separator)) + value;
    }
    return all;
}

Json labelled(EContact* contact, const char* property) {
    Json entries = Json::array();
    forEach(contact, property, [&](EVCardAttribute* line, std::vector<std::string> values) {
        entries.push_back({{"value", joined(values, ';')}, {"types", types(line)}});
    });
    return entries;
}

Json plain(EContact* contact, const char* property) {
    Json entries = Json::array();
    forEach(contact, property, [&](EVCardAttribute*, std::vector<std::string> values) {
        entries.push_back(joined(values, ','));
    });
    return entries;
}

Json parts(EContact* contact, const char* property) {
    Json first = Json::array();
    forEach(contact, property, [&](EVCardAttribute*, std::vector<std::string> values) {
        if (first.empty()) {
            first = values;
        }
    });
    return first;
}

Json name(EContact* contact) {
    auto* name = static_cast<EContactName*>(e_contact_get(contact, E_CONTACT_NAME));
    if (!name) {
        return Json::array();
    }
    Json result{textOf(name->family), textOf(name->given), textOf(name->additional), textOf(name->prefixes),
                textOf(name->suffixes)};
    e_contact_name_free(name);
    return result;
}

Json addresses(EContact* contact) {
    Json entries = Json::array();
    forEach(contact, EVC_ADR, [&](EVCardAttribute* line, std::vector<std::string> values) {
        entries.push_back({{"value", values}, {"types", types(line)}});
    });
    return entries;
}

Json categories(EContact* contact) {
    Json names = Json::array();
    auto* list = static_cast<GList*>(e_contact_get(contact, E_CONTACT_CATEGORY_LIST));
    for (GList* each = list; each; each = each->next) {
        names.push_back(textOf(static_cast<const char*>(each->data)));
    }
    g_list_free_full(list, g_free);
    return names;
}

// The names at the services that the library knows, as URIs.
Json messaging(EContact* contact) {
    constexpr std::array kServices{
        std::pair(E_CONTACT_IM_AIM, "aim"),     std::pair(E_CONTACT_IM_JABBER, "xmpp"),
        std::pair(E_CONTACT_IM_YAHOO, "ymsgr"), std::pair(E_CONTACT_IM_MSN, "msnim"),
        std::pair(E_CONTACT_IM_ICQ, "icq"),     std::pair(E_CONTACT_IM_GADUGADU, "gg"),
        std::pair(E_CONTACT_IM_SKYPE, "skype"), std::pair(E_CONTACT_IM_GOOGLE_TALK, "gtalk"),
    };
    Json uris = Json::array();
    for (const auto& [field, scheme] : kServices) {
        auto* list = static_cast<GList*>(e_contact_get(contact, field));
        for (GList* each = list; each; each = each->next) {
            uris.push_back(std::string(scheme) + ':' + textOf(static_cast<const char*>(each->data)));
        }
        g_list_free_full(list, g_free);
    }
    for (const Json& uri : plain(contact, "IMPP")) {
        uris.push_back(uri);
    }
    return uris;
}

std::string digestOf(const guchar* data, gsize length) {
    char* text = g_compute_checksum_for_data(G_CHECKSUM_SHA256, data, length);
    std::string digest = textOf(text);
    g_free(text);
    return digest;
}

std::string photo(EContact* contact) {
    auto* photo = static_cast<EContactPhoto*>(e_contact_get(contact, E_CONTACT_PHOTO));
    std::string digest;
    if (photo && photo->type == E_CONTACT_PHOTO_TYPE_INLINED) {
        digest = digestOf(photo->data.inlined.data, photo->data.inlined.length);
    } else if (photo && g_str_has_prefix(photo->data.uri, "data:") && strchr(photo->data.uri, ',')) {
        gsize length = 0;
        guchar* data = g_base64_decode(strchr(photo->data.uri, ',') + 1, &length);
        digest = digestOf(data, length);
        g_free(data);
    }
    if (photo) {
        e_contact_photo_free(photo);
    }
    return digest;
}

Json seen(const std::string& text) {
    const Contact contact(e_contact_new_from_vcard(text.c_str()));
    EContact* card = contact.get();
    Json members = plain(card, "X-ADDRESSBOOKSERVER-MEMBER");
    for (const Json& member : plain(card, "MEMBER")) {
        members.push_back(member);
    }
    return {{"uid", ::text(card, E_CONTACT_UID)},
            {"fullname", ::text(card, E_CONTACT_FULL_NAME)},
            {"name", name(card)},
            {"nickname", ::text(card, E_CONTACT_NICKNAME)},
            {"org", parts(card, EVC_ORG)},
            {"title", ::text(card, E_CONTACT_TITLE)},
            {"note", ::text(card, E_CONTACT_NOTE)},
            {"birthday", date(card, E_CONTACT_BIRTH_DATE)},
            {"anniversary", date(card, E_CONTACT_ANNIVERSARY)},
            {"spouse", ::text(card, E_CONTACT_SPOUSE)},
            {"manager", ::text(card, E_CONTACT_MANAGER)},
            {"assistant", ::text(card, E_CONTACT_ASSISTANT)},
            {"phones", labelled(card, EVC_TEL)},
            {"emails", labelled(card, EVC_EMAIL)},
            {"addresses", addresses(card)},
            {"urls", plain(card, EVC_URL)},
            {"messaging", messaging(card)},
            {"categories", categories(card)},
            {"members", members},
            {"photo", photo(card)}};
}

} // namespace

int main(int count, char** arguments) {
    return interop::printCards(count, arguments, seen);
}

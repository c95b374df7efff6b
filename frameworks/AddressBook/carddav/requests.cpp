#include "frameworks/AddressBook/carddav/requests.h"

#include "frameworks/AddressBook/carddav/names.h"

#include <array>

namespace addressbook::carddav {
namespace {

constexpr std::string_view kHead = R"(<?xml version="1.0" encoding="utf-8"?>)";
constexpr std::string_view kNamespaces =
    R"( xmlns:D="DAV:" xmlns:C="urn:ietf:params:xml:ns:carddav" xmlns:S="http://calendarserver.org/ns/")";

struct Prefix {
    std::string_view space, prefix;
};
constexpr std::array kPrefixes = {Prefix{"{DAV:}", "D:"}, Prefix{"{urn:ietf:params:xml:ns:carddav}", "C:"},
                                  Prefix{"{http://calendarserver.org/ns/}", "S:"}};

std::string tag(std::string_view name) {
    for (const auto& [space, prefix] : kPrefixes) {
        if (name.starts_with(space)) {
            return std::string(prefix) + std::string(name.substr(space.size()));
        }
    }
    return std::string(name);
}

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        if (c == '&') {
            result += "&amp;";
        } else if (c == '<') {
            result += "&lt;";
        } else if (c == '>') {
            result += "&gt;";
        } else if (static_cast<unsigned char>(c) >= 0x20) { // XML has no other characters there
            result += c;
        }
    }
    return result;
}

// A document with this root.
std::string document(std::string_view root, const std::string& inside) {
    const std::string name = tag(root);
    return std::string(kHead) + '<' + name + std::string(kNamespaces) + '>' + inside + "</" + name + '>';
}

} // namespace

std::string propfindBody(std::initializer_list<std::string_view> properties) {
    std::string inside = "<D:prop>";
    for (const std::string_view property : properties) {
        inside += '<' + tag(property) + "/>";
    }
    return document("{DAV:}propfind", inside + "</D:prop>");
}

std::string syncBody(const std::string& token) {
    return document(names::kSyncReport, "<D:sync-token>" + escaped(token) +
                                            "</D:sync-token><D:sync-level>1</D:sync-level>"
                                            "<D:prop><D:getetag/></D:prop>");
}

std::string multigetBody(std::span<const std::string> hrefs) {
    std::string inside = "<D:prop><D:getetag/><C:address-data/></D:prop>";
    for (const std::string& href : hrefs) {
        inside += "<D:href>" + escaped(href) + "</D:href>";
    }
    return document("{urn:ietf:params:xml:ns:carddav}addressbook-multiget", inside);
}

std::string makeBookBody(const std::string& name) {
    return document("{DAV:}mkcol",
                    "<D:set><D:prop><D:resourcetype><D:collection/><C:addressbook/></D:resourcetype>"
                    "<D:displayname>" +
                        escaped(name) + "</D:displayname></D:prop></D:set>");
}

} // namespace addressbook::carddav

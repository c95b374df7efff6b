#include "frameworks/AddressBook/carddav/url.h"

#include "frameworks/AddressBook/values/text.h"

#include <curl/curl.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace addressbook::carddav {
namespace {

using Parser = std::unique_ptr<CURLU, decltype(&curl_url_cleanup)>;

Parser newParser() {
    return {curl_url(), curl_url_cleanup};
}

std::string part(CURLU* parser, CURLUPart which, unsigned flags = 0) {
    char* text = nullptr;
    if (curl_url_get(parser, which, &text, flags) != CURLUE_OK) {
        return {};
    }
    std::string result = text;
    curl_free(text);
    return result;
}

std::optional<Url> partsOf(CURLU* parser) {
    Url url;
    url.scheme = part(parser, CURLUPART_SCHEME);
    url.host = part(parser, CURLUPART_HOST);
    std::transform(url.host.begin(), url.host.end(), url.host.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    url.port = std::atoi(part(parser, CURLUPART_PORT, CURLU_DEFAULT_PORT).c_str());
    url.path = part(parser, CURLUPART_PATH);
    if (const std::string query = part(parser, CURLUPART_QUERY); !query.empty()) {
        url.path += '?' + query;
    }
    const bool named = !part(parser, CURLUPART_USER).empty() || !part(parser, CURLUPART_PASSWORD).empty();
    if ((url.scheme != "http" && url.scheme != "https") || url.host.empty() || named) {
        return std::nullopt;
    }
    return url;
}

int hexDigit(char c) {
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                  : -1;
}

bool standsForItself(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~' || c == '@';
}

void appendEncoded(std::string& to, char c) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    to += '%';
    to += kDigits[byte >> 4];
    to += kDigits[byte & 15];
}

// A path in the form of normalHref(). An encoded slash stays one: it does not part segments.
std::string normalPath(std::string_view path) {
    std::string result;
    result.reserve(path.size() + 16);
    for (std::size_t at = 0; at < path.size(); ++at) {
        char c = path[at];
        bool encoded = false;
        if (c == '%' && at + 2 < path.size() && hexDigit(path[at + 1]) >= 0 && hexDigit(path[at + 2]) >= 0) {
            c = static_cast<char>(hexDigit(path[at + 1]) * 16 + hexDigit(path[at + 2]));
            at += 2;
            encoded = true;
        }
        if (standsForItself(c) || (c == '/' && !encoded)) {
            result += c;
        } else {
            appendEncoded(result, c);
        }
    }
    return result;
}

} // namespace

bool Url::isLoopback() const {
    const bool dotted =
        std::all_of(host.begin(), host.end(), [](char c) { return (c >= '0' && c <= '9') || c == '.'; });
    return host == "localhost" || host == "[::1]" || (dotted && host.starts_with("127."));
}

std::optional<Url> parseUrl(const std::string& address) {
    const Parser parser = newParser();
    if (curl_url_set(parser.get(), CURLUPART_URL, address.c_str(), CURLU_URLENCODE) != CURLUE_OK) {
        return std::nullopt;
    }
    return partsOf(parser.get());
}

std::optional<std::string> resolve(const std::string& base, std::string_view reference) {
    const std::string text(trim(reference));
    const Parser parser = newParser();
    if (text.empty() ||
        curl_url_set(parser.get(), CURLUPART_URL, base.c_str(), CURLU_URLENCODE) != CURLUE_OK) {
        return std::nullopt;
    }
    const std::optional<Url> from = partsOf(parser.get());
    if (!from || curl_url_set(parser.get(), CURLUPART_URL, text.c_str(), CURLU_URLENCODE) != CURLUE_OK) {
        return std::nullopt;
    }
    const std::optional<Url> to = partsOf(parser.get());
    return to ? std::optional(to->origin() + to->path) : std::nullopt;
}

std::optional<std::string> normalHref(const std::string& base, std::string_view href) {
    const std::string_view text = trim(href);
    // Nearly all hrefs are paths, of which there is nothing to resolve.
    if (text.starts_with('/') && !text.starts_with("//") && text.find("/.") == std::string_view::npos) {
        const std::size_t query = std::min(text.find_first_of("?#"), text.size());
        return normalPath(text.substr(0, query)) + std::string(text.substr(query));
    }
    const std::optional<std::string> address = resolve(base, text);
    const std::optional<Url> url = address ? parseUrl(*address) : std::nullopt;
    if (!url) {
        return std::nullopt;
    }
    const std::size_t query = std::min(url->path.find('?'), url->path.size());
    return normalPath(url->path.substr(0, query)) + url->path.substr(query);
}

std::string percentEncode(std::string_view bytes) {
    std::string result;
    for (const char c : bytes) {
        if (standsForItself(c)) {
            result += c;
        } else {
            appendEncoded(result, c);
        }
    }
    return result;
}

} // namespace addressbook::carddav

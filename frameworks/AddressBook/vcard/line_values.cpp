#include "frameworks/AddressBook/vcard/line_values.h"

#include "frameworks/AddressBook/values/text.h"
#include "frameworks/AddressBook/vcard/card_lines.h"
#include "frameworks/AddressBook/vcard/dates.h"
#include "frameworks/AddressBook/vcard/encoding.h"
#include "frameworks/AddressBook/vcard/labels.h"
#include "frameworks/AddressBook/vcard/vcard.h"

#include <algorithm>

namespace addressbook::vcard {

namespace {

std::string withoutPrefix(std::string text, std::string_view prefix) {
    if (equalsIgnoringCase(std::string_view(text).substr(0, prefix.size()), prefix)) {
        text.erase(0, prefix.size());
    }
    return text;
}

} // namespace

std::string_view schemeOf(std::string_view uri) {
    const std::size_t colon = uri.find(':');
    if (colon == std::string_view::npos || colon == 0) {
        return {};
    }
    const std::string_view scheme = uri.substr(0, colon);
    const bool plain = std::all_of(scheme.begin(), scheme.end(), [](char byte) {
        return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
               byte == '+' || byte == '-' || byte == '.';
    });
    return plain ? scheme : std::string_view();
}

bool isMessaging(std::string_view property) {
    const auto services = messagingServices();
    return std::any_of(services.begin(), services.end(),
                       [&](const MessagingService& each) { return each.property == property; });
}

Value takeText(const Rule& rule, ContentLine& line) {
    std::string value(trim(line.text()));
    if (rule.shape == Shape::telephones) {
        value = withoutPrefix(std::move(value), "tel:");
    } else if (rule.shape == Shape::links) {
        value = withoutPrefix(std::move(value), "mailto:");
    }
    std::erase_if(line.params, [](const Param& param) { return param.name == "VALUE"; });
    return value.empty() ? Value() : Value(std::move(value));
}

std::optional<FloatingDate> takeDay(ContentLine& line) {
    int omitted = 0;
    for (const char byte : line.param("X-APPLE-OMIT-YEAR").substr(0, 4)) {
        omitted = byte >= '0' && byte <= '9' ? omitted * 10 + (byte - '0') : 0;
    }
    const auto date = parseDay(line.text(), omitted);
    if (date) {
        std::erase_if(line.params, [](const Param& param) {
            return param.name == "X-APPLE-OMIT-YEAR" || param.name == "VALUE";
        });
    }
    return date;
}

bool saysLessThanADay(const ContentLine& line) {
    const std::string text(trim(line.text()));
    const bool digits = text.find_first_not_of("0123456789-") == std::string::npos;
    return equalsIgnoringCase(line.param("VALUE"), "text") || text.starts_with('T') ||
           (digits && (text.size() == 4 || (text.size() == 5 && text.starts_with("---")) ||
                       (text.size() == 7 && text[4] == '-')));
}

std::optional<std::string> pictureData(const ContentLine& line) {
    const std::string_view value = trim(line.value);
    const std::string_view scheme = schemeOf(value);
    if (equalsIgnoringCase(scheme, "data")) {
        const std::string uri = line.text();
        const std::size_t comma = uri.find(',');
        if (comma == std::string::npos || !upperCase(uri.substr(0, comma)).ends_with(";BASE64")) {
            return std::nullopt;
        }
        return uri.substr(comma + 1);
    }
    constexpr std::size_t kLongestScheme = 12; // of those that name pictures; longer ones are broken data
    if (line.transfer == Transfer::base64 && (scheme.empty() || scheme.size() > kLongestScheme)) {
        return std::string(value);
    }
    if (!scheme.empty() || !line.param("VALUE").empty()) {
        return std::nullopt;
    }
    return std::string(value);
}

Dictionary addressFields(const ContentLine& line) {
    std::vector<std::string> parts = line.components(7);
    parts.resize(7);
    std::string street;
    for (std::size_t at = 0; at < 3; ++at) {
        if (!parts[at].empty()) {
            street += (street.empty() ? "" : "\n") + parts[at];
        }
    }
    Dictionary fields;
    const auto set = [&fields](const char* key, std::string text) {
        if (!text.empty()) {
            fields[key] = std::move(text);
        }
    };
    set("Street", std::move(street));
    set("City", std::move(parts[3]));
    set("State", std::move(parts[4]));
    set("ZIP", std::move(parts[5]));
    set("Country", std::move(parts[6]));
    return fields;
}

Value messagingValue(std::string_view service, std::string user, std::string_view& property) {
    if (user.empty()) {
        return {};
    }
    for (const MessagingService& each : messagingServices()) {
        if (equalsIgnoringCase(each.name, service)) {
            service = each.name;
            if (!each.property.empty()) {
                property = each.property;
                return user;
            }
        }
    }
    Dictionary fields{{std::string(kInstantMessageUsername), std::move(user)}};
    if (!service.empty()) {
        fields[std::string(kInstantMessageService)] = std::string(service);
    }
    return fields;
}

Value takeMessaging(ContentLine& line, std::string_view& property, std::string& asRead) {
    const std::string uri(trim(line.text()));
    std::string user = uri;
    const std::string scheme(schemeOf(user));
    if (!scheme.empty()) {
        const bool slashes = std::string_view(user).substr(scheme.size() + 1).starts_with("//");
        user = trim(std::string_view(user).substr(scheme.size() + (slashes ? 3 : 1)));
    }
    std::string service(line.param("X-SERVICE-TYPE"));
    if (service.empty() && !equalsIgnoringCase(scheme, "x-apple")) {
        service = scheme;
    }
    for (const MessagingService& each : messagingServices()) {
        if (equalsIgnoringCase(service, each.scheme)) {
            service = each.name;
        }
    }
    if (!isNamedByScheme(service) || service == scheme) { // else the scheme says another one
        std::erase_if(line.params, [](const Param& param) { return param.name == "X-SERVICE-TYPE"; });
    }
    for (const MessagingService& each : messagingServices()) {
        if (equalsIgnoringCase(service, each.name)) {
            service = each.name;
        }
    }
    if (messagingUri(service, user) != uri) {
        asRead = escapeUri(uri);
    }
    return messagingValue(service, std::move(user), property);
}

Value takeProfile(ContentLine& line) {
    Dictionary fields;
    const auto take = [&](std::string_view name, std::string_view key) {
        for (Param& param : line.params) {
            if (param.name == name) {
                // The first TYPE that is not "pref" is the service.
                const auto word =
                    std::find_if(param.values.begin(), param.values.end(), [](const auto& each) {
                        return !each.empty() && !equalsIgnoringCase(each, "pref");
                    });
                if (word == param.values.end()) {
                    continue;
                }
                fields[std::string(key)] = std::move(*word);
                param.values.erase(word);
                break;
            }
        }
        std::erase_if(line.params, [](const Param& param) { return param.values.empty(); });
    };
    take("TYPE", kSocialProfileService);
    take("X-USER", kSocialProfileUsername);
    take("X-USERID", kSocialProfileIdentifier);
    if (std::string url(trim(line.text())); !url.empty()) {
        fields[std::string(kSocialProfileUrl)] = std::move(url);
    }
    return fields.empty() ? Value() : Value(std::move(fields));
}

} // namespace addressbook::vcard

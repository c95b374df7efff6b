// The options of cURL that requests may have.
#include "host/network/transfer.h"

#include <algorithm>
#include <cstdlib>

namespace host {

namespace {

enum class Kind : uint8_t {
    flag,   // no value: sets the option to its number
    text,   // a value, as it is
    number, // a value, a whole number
    time,   // a value, seconds with a fraction; the option is in milliseconds
    flagOf, // no value: calls its function
    valueOf // a value, for its function
};

struct Option {
    std::string_view name;
    char letter; // 0 for none
    Kind kind;
    CURLoption option = CURLOPT_LASTENTRY;
    long number = 1;
    void (*apply)(Transfer&, const std::string&) = nullptr;

    constexpr Option(std::string_view text, char shortName, CURLoption target, long value)
        : name(text), letter(shortName), kind(Kind::flag), option(target), number(value) {}
    constexpr Option(std::string_view text, char shortName, Kind valueKind, CURLoption target)
        : name(text), letter(shortName), kind(valueKind), option(target) {}
    constexpr Option(std::string_view text, char shortName, Kind valueKind,
                     void (*function)(Transfer&, const std::string&))
        : name(text), letter(shortName), kind(valueKind), apply(function) {}

    bool takesValue() const { return kind != Kind::flag && kind != Kind::flagOf; }
};

std::string text(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

// Returns the data of an option: what a name behind @ holds, else the value itself.
std::string dataOf(const Transfer& transfer, const std::string& value, bool keepsLines) {
    if (!value.starts_with('@')) {
        return value;
    }
    std::string data = text(transfer.request.read(value.substr(1)));
    if (!keepsLines) {
        std::erase_if(data, [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
    }
    return data;
}

void data(Transfer& transfer, const std::string& value) {
    transfer.addData(dataOf(transfer, value, false));
}
void dataBinary(Transfer& transfer, const std::string& value) {
    transfer.addData(dataOf(transfer, value, true));
}
void dataRaw(Transfer& transfer, const std::string& value) {
    transfer.addData(value);
}

std::string percentEncoded(const std::string& value) {
    const std::unique_ptr<char, decltype(&curl_free)> encoded(
        curl_easy_escape(nullptr, value.data(), static_cast<int>(value.size())), curl_free);
    return encoded == nullptr ? std::string() : std::string(encoded.get());
}

// The forms content, =content, name=content, @name, name@name.
void dataUrlencode(Transfer& transfer, const std::string& value) {
    const size_t sign = value.find_first_of("=@");
    if (sign == std::string::npos) {
        transfer.addData(percentEncoded(value));
        return;
    }
    const std::string content =
        value[sign] == '@' ? text(transfer.request.read(value.substr(sign + 1))) : value.substr(sign + 1);
    transfer.addData((sign == 0 ? std::string() : value.substr(0, sign) + "=") + percentEncoded(content));
}

void json(Transfer& transfer, const std::string& value) {
    transfer.addData(dataOf(transfer, value, true));
    transfer.addHeader("Content-Type: application/json");
    transfer.addHeader("Accept: application/json");
}

void header(Transfer& transfer, const std::string& value) {
    transfer.addHeader(value);
}

curl_mimepart* addPart(Transfer& transfer, const std::string& name) {
    if (transfer.form == nullptr) {
        transfer.form.reset(curl_mime_init(transfer.easy.get()));
    }
    curl_mimepart* part = curl_mime_addpart(transfer.form.get());
    curl_mime_name(part, name.c_str());
    return part;
}

size_t requireEquals(const std::string& value, std::string_view option) {
    const size_t sign = value.find('=');
    if (sign == std::string::npos) {
        throw OptionError(std::string(option) + " expects name=content, found " + value);
    }
    return sign;
}

// The forms name=content, name=<name, name=@name;type=...;filename=...
void form(Transfer& transfer, const std::string& value) {
    const size_t sign = requireEquals(value, "--form");
    curl_mimepart* part = addPart(transfer, value.substr(0, sign));
    std::string content = value.substr(sign + 1);
    for (size_t at = content.rfind(';'); at != std::string::npos; at = content.rfind(';')) {
        if (content.compare(at, 6, ";type=") == 0) {
            curl_mime_type(part, content.substr(at + 6).c_str());
        } else if (content.compare(at, 10, ";filename=") == 0) {
            curl_mime_filename(part, content.substr(at + 10).c_str());
        } else {
            break;
        }
        content.resize(at);
    }
    if (!content.starts_with('@') && !content.starts_with('<')) {
        curl_mime_data(part, content.data(), content.size());
        return;
    }
    const std::string name = content.substr(1);
    const Bytes bytes = transfer.request.read(name);
    curl_mime_data(part, reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (content.starts_with('@') && value.find(";filename=") == std::string::npos) {
        curl_mime_filename(part, name.substr(name.find_last_of("/$") + 1).c_str());
    }
}
void formString(Transfer& transfer, const std::string& value) {
    const size_t sign = requireEquals(value, "--form-string");
    curl_mime_data(addPart(transfer, value.substr(0, sign)), value.data() + sign + 1,
                   value.size() - sign - 1);
}

void uploadFile(Transfer& transfer, const std::string& value) {
    transfer.upload = transfer.request.read(value);
}

// The certificates to trust, from a variable or a file.
void authorities(Transfer& transfer, const std::string& value) {
    Bytes bytes = transfer.request.read(value);
    curl_blob contents{bytes.data(), bytes.size(), CURL_BLOB_COPY};
    curl_easy_setopt(transfer.easy.get(), CURLOPT_CAINFO_BLOB, &contents);
}

void insecure(Transfer& transfer, const std::string& /*value*/) {
    curl_easy_setopt(transfer.easy.get(), CURLOPT_SSL_VERIFYPEER, 0L);
    curl_easy_setopt(transfer.easy.get(), CURLOPT_SSL_VERIFYHOST, 0L);
}

void bearer(Transfer& transfer, const std::string& value) {
    curl_easy_setopt(transfer.easy.get(), CURLOPT_HTTPAUTH, CURLAUTH_BEARER);
    curl_easy_setopt(transfer.easy.get(), CURLOPT_XOAUTH2_BEARER, value.c_str());
}

void ignore(Transfer& /*transfer*/, const std::string& /*value*/) {}

constexpr long kAnyAuth = static_cast<long>(CURLAUTH_ANY);

constexpr Option kOptions[] = {
    {"--basic", 0, CURLOPT_HTTPAUTH, CURLAUTH_BASIC},
    {"--anyauth", 0, CURLOPT_HTTPAUTH, kAnyAuth},
    {"--cacert", 0, Kind::valueOf, authorities},
    {"--compressed", 0, Kind::flagOf,
     [](Transfer& transfer, const std::string&) {
         curl_easy_setopt(transfer.easy.get(), CURLOPT_ACCEPT_ENCODING, "");
     }},
    {"--connect-timeout", 0, Kind::time, CURLOPT_CONNECTTIMEOUT_MS},
    {"--cookie", 'b', Kind::text, CURLOPT_COOKIE},
    {"--data", 'd', Kind::valueOf, data},
    {"--data-ascii", 0, Kind::valueOf, data},
    {"--data-binary", 0, Kind::valueOf, dataBinary},
    {"--data-raw", 0, Kind::valueOf, dataRaw},
    {"--data-urlencode", 0, Kind::valueOf, dataUrlencode},
    {"--digest", 0, CURLOPT_HTTPAUTH, CURLAUTH_DIGEST},
    {"--dump-header", 'D', Kind::valueOf,
     [](Transfer& transfer, const std::string& value) { transfer.headerName = value; }},
    {"--fail", 'f', CURLOPT_FAILONERROR, 1},
    {"--FM-return-container-variable", 0, Kind::flagOf,
     [](Transfer& transfer, const std::string&) { transfer.isContainer = true; }},
    {"--FM-text-encoding", 0, Kind::valueOf,
     [](Transfer& transfer, const std::string& value) { transfer.charset = value; }},
    {"--form", 'F', Kind::valueOf, form},
    {"--form-string", 0, Kind::valueOf, formString},
    {"--get", 'G', Kind::flagOf,
     [](Transfer& transfer, const std::string&) { transfer.sendsBodyInUrl = true; }},
    {"--head", 'I', Kind::flagOf,
     [](Transfer& transfer, const std::string&) {
         transfer.showsHeaders = true;
         curl_easy_setopt(transfer.easy.get(), CURLOPT_NOBODY, 1L);
     }},
    {"--header", 'H', Kind::valueOf, header},
    {"--http1.0", '0', CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_0},
    {"--http1.1", 0, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1},
    {"--http2", 0, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_2_0},
    {"--include", 'i', Kind::flagOf,
     [](Transfer& transfer, const std::string&) { transfer.showsHeaders = true; }},
    {"--insecure", 'k', Kind::flagOf, insecure},
    {"--ipv4", '4', CURLOPT_IPRESOLVE, CURL_IPRESOLVE_V4},
    {"--ipv6", '6', CURLOPT_IPRESOLVE, CURL_IPRESOLVE_V6},
    {"--json", 0, Kind::valueOf, json},
    {"--location", 'L', CURLOPT_FOLLOWLOCATION, 1},
    {"--location-trusted", 0, Kind::flagOf,
     [](Transfer& transfer, const std::string&) {
         curl_easy_setopt(transfer.easy.get(), CURLOPT_FOLLOWLOCATION, 1L);
         curl_easy_setopt(transfer.easy.get(), CURLOPT_UNRESTRICTED_AUTH, 1L);
     }},
    {"--max-redirs", 0, Kind::number, CURLOPT_MAXREDIRS},
    {"--max-time", 'm', Kind::time, CURLOPT_TIMEOUT_MS},
    {"--noproxy", 0, Kind::text, CURLOPT_NOPROXY},
    {"--oauth2-bearer", 0, Kind::valueOf, bearer},
    {"--output", 'o', Kind::valueOf,
     [](Transfer& transfer, const std::string& value) { transfer.outputName = value; }},
    {"--proxy", 'x', Kind::text, CURLOPT_PROXY},
    {"--proxy-user", 'U', Kind::text, CURLOPT_PROXYUSERPWD},
    {"--range", 'r', Kind::text, CURLOPT_RANGE},
    {"--referer", 'e', Kind::text, CURLOPT_REFERER},
    {"--request", 'X', Kind::text, CURLOPT_CUSTOMREQUEST},
    {"--show-error", 'S', Kind::flagOf, ignore},
    {"--silent", 's', Kind::flagOf, ignore},
    {"--upload-file", 'T', Kind::valueOf, uploadFile},
    {"--user", 'u', Kind::text, CURLOPT_USERPWD},
    {"--user-agent", 'A', Kind::text, CURLOPT_USERAGENT},
};

double numberOf(const Option& option, const std::string& value) {
    char* end = nullptr;
    const double number = std::strtod(value.c_str(), &end);
    if (value.empty() || *end != '\0' || !(number >= 0 && number < 1e9)) {
        throw OptionError(std::string(option.name) + " expects a number, found " + value);
    }
    return number;
}

void apply(Transfer& transfer, const Option& option, const std::string& value) {
    CURL* easy = transfer.easy.get();
    switch (option.kind) {
    case Kind::flag:
        curl_easy_setopt(easy, option.option, option.number);
        return;
    case Kind::text:
        curl_easy_setopt(easy, option.option, value.c_str());
        return;
    case Kind::number:
        curl_easy_setopt(easy, option.option, static_cast<long>(numberOf(option, value)));
        return;
    case Kind::time:
        curl_easy_setopt(easy, option.option, static_cast<long>(1000 * numberOf(option, value)));
        return;
    case Kind::flagOf:
    case Kind::valueOf:
        option.apply(transfer, value);
        return;
    }
}

// Returns the option with a name, or with a letter.
const Option& find(const std::string& word, char letter) {
    const auto* found = std::find_if(std::begin(kOptions), std::end(kOptions), [&](const Option& option) {
        return letter != 0 ? option.letter == letter : option.name == word;
    });
    if (found == std::end(kOptions)) {
        std::string known;
        for (const Option& option : kOptions) {
            known += (known.empty() ? "" : " ") + std::string(option.name);
        }
        throw OptionError("there is no cURL option " + word + " here; there are " + known);
    }
    return *found;
}

} // namespace

void applyOptions(Transfer& transfer) {
    const std::vector<std::string>& words = transfer.request.options;
    for (size_t at = 0; at < words.size(); ++at) {
        const std::string& word = words[at];
        if (word.size() < 2 || word[0] != '-') {
            throw OptionError("expected a cURL option, found " + word);
        }
        const auto nextWord = [&](const Option& option) -> const std::string& {
            if (at + 1 == words.size()) {
                throw OptionError("the cURL option " + std::string(option.name) + " expects a value");
            }
            return words[++at];
        };
        if (word.starts_with("--")) {
            const Option& option = find(word, 0);
            apply(transfer, option, option.takesValue() ? nextWord(option) : std::string());
            continue;
        }
        for (size_t letter = 1; letter < word.size(); ++letter) { // -sL, -XPOST, -X POST
            const Option& option = find(std::string("-") + word[letter], word[letter]);
            if (!option.takesValue()) {
                apply(transfer, option, {});
                continue;
            }
            apply(transfer, option, letter + 1 < word.size() ? word.substr(letter + 1) : nextWord(option));
            break;
        }
    }
}

} // namespace host

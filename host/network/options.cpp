// The options of cURL that requests may have.
#include "host/network/transfer.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace host {

namespace {

enum class Kind : uint8_t {
    flag,   // no value: sets the option to its number
    text,   // a value, as it is
    number, // a value, a whole number
    time,   // a value, seconds with a fraction; the option is in milliseconds
    size,   // a value, bytes, also with K, M or G behind
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
    Transfer::add(transfer.headers, "Content-Type: application/json");
    Transfer::add(transfer.headers, "Accept: application/json");
}

void header(Transfer& transfer, const std::string& value) {
    Transfer::add(transfer.headers, value);
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

// Options whose value is a variable or a file that the library reads.
template <CURLoption option>
void file(Transfer& transfer, const std::string& value) {
    transfer.setFile(option, value);
}

// The forms name and name:password.
void certificate(Transfer& transfer, const std::string& value) {
    const size_t colon = value.find(':');
    transfer.setFile(CURLOPT_SSLCERT, value.substr(0, colon));
    if (colon != std::string::npos) {
        curl_easy_setopt(transfer.easy.get(), CURLOPT_KEYPASSWD, value.substr(colon + 1).c_str());
    }
}

// Cookies as name=value, else what the cookies are in.
void cookie(Transfer& transfer, const std::string& value) {
    if (value.find('=') == std::string::npos) {
        transfer.setFile(CURLOPT_COOKIEFILE, value);
    } else {
        curl_easy_setopt(transfer.easy.get(), CURLOPT_COOKIE, value.c_str());
    }
}
void cookieJar(Transfer& transfer, const std::string& value) {
    transfer.cookieName = value;
    curl_easy_setopt(transfer.easy.get(), CURLOPT_COOKIEFILE, ""); // which keeps cookies
}

void trace(Transfer& transfer, const std::string& value) {
    transfer.traceName = value;
}

template <long which>
void keepPost(Transfer& transfer, const std::string& /*value*/) {
    transfer.keepsPost |= which;
}

template <curl_proxytype type>
void socks(Transfer& transfer, const std::string& value) {
    curl_easy_setopt(transfer.easy.get(), CURLOPT_PROXY, value.c_str());
    curl_easy_setopt(transfer.easy.get(), CURLOPT_PROXYTYPE, static_cast<long>(type));
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
constexpr long kNtlm = static_cast<long>(CURLAUTH_NTLM);

constexpr Option kOptions[] = {
    {"--anyauth", 0, CURLOPT_HTTPAUTH, kAnyAuth},
    {"--append", 'a', CURLOPT_APPEND, 1},
    {"--basic", 0, CURLOPT_HTTPAUTH, CURLAUTH_BASIC},
    {"--cacert", 0, Kind::valueOf, file<CURLOPT_CAINFO>},
    {"--cert", 'E', Kind::valueOf, certificate},
    {"--cert-type", 0, Kind::text, CURLOPT_SSLCERTTYPE},
    {"--ciphers", 0, Kind::text, CURLOPT_SSL_CIPHER_LIST},
    {"--compressed", 0, Kind::flagOf,
     [](Transfer& transfer, const std::string&) {
         curl_easy_setopt(transfer.easy.get(), CURLOPT_ACCEPT_ENCODING, "");
     }},
    {"--connect-timeout", 0, Kind::time, CURLOPT_CONNECTTIMEOUT_MS},
    {"--continue-at", 'C', Kind::number, CURLOPT_RESUME_FROM},
    {"--cookie", 'b', Kind::valueOf, cookie},
    {"--cookie-jar", 'c', Kind::valueOf, cookieJar},
    {"--crlf", 0, CURLOPT_CRLF, 1},
    {"--crlfile", 0, Kind::valueOf, file<CURLOPT_CRLFILE>},
    {"--data", 'd', Kind::valueOf, data},
    {"--data-ascii", 0, Kind::valueOf, data},
    {"--data-binary", 0, Kind::valueOf, dataBinary},
    {"--data-raw", 0, Kind::valueOf, dataRaw},
    {"--data-urlencode", 0, Kind::valueOf, dataUrlencode},
    {"--digest", 0, CURLOPT_HTTPAUTH, CURLAUTH_DIGEST},
    {"--disable-eprt", 0, CURLOPT_FTP_USE_EPRT, 0},
    {"--disable-epsv", 0, CURLOPT_FTP_USE_EPSV, 0},
    {"--dump-header", 'D', Kind::valueOf,
     [](Transfer& transfer, const std::string& value) { transfer.headerName = value; }},
    {"--fail", 'f', CURLOPT_FAILONERROR, 1},
    {"--FM-return-container-variable", 0, Kind::flagOf,
     [](Transfer& transfer, const std::string&) { transfer.isContainer = true; }},
    {"--FM-text-encoding", 0, Kind::valueOf,
     [](Transfer& transfer, const std::string& value) { transfer.charset = value; }},
    {"--form", 'F', Kind::valueOf, form},
    {"--form-string", 0, Kind::valueOf, formString},
    {"--ftp-create-dirs", 0, CURLOPT_FTP_CREATE_MISSING_DIRS, 1},
    {"--ftp-pasv", 0, Kind::flagOf, ignore},
    {"--ftp-port", 'P', Kind::text, CURLOPT_FTPPORT},
    {"--ftp-skip-pasv-ip", 0, CURLOPT_FTP_SKIP_PASV_IP, 1},
    {"--get", 'G', Kind::flagOf,
     [](Transfer& transfer, const std::string&) { transfer.sendsBodyInUrl = true; }},
    {"--globoff", 'g', Kind::flagOf, ignore},
    {"--head", 'I', Kind::flagOf,
     [](Transfer& transfer, const std::string&) {
         transfer.showsHeaders = true;
         curl_easy_setopt(transfer.easy.get(), CURLOPT_NOBODY, 1L);
     }},
    {"--header", 'H', Kind::valueOf, header},
    {"--http1.0", '0', CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_0},
    {"--http1.1", 0, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1},
    {"--http2", 0, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_2_0},
    {"--ignore-content-length", 0, CURLOPT_IGNORE_CONTENT_LENGTH, 1},
    {"--include", 'i', Kind::flagOf,
     [](Transfer& transfer, const std::string&) { transfer.showsHeaders = true; }},
    {"--insecure", 'k', Kind::flagOf, insecure},
    {"--interface", 0, Kind::text, CURLOPT_INTERFACE},
    {"--ipv4", '4', CURLOPT_IPRESOLVE, CURL_IPRESOLVE_V4},
    {"--ipv6", '6', CURLOPT_IPRESOLVE, CURL_IPRESOLVE_V6},
    {"--json", 0, Kind::valueOf, json},
    {"--key", 0, Kind::valueOf, file<CURLOPT_SSLKEY>},
    {"--key-type", 0, Kind::text, CURLOPT_SSLKEYTYPE},
    {"--limit-rate", 0, Kind::size, CURLOPT_MAX_RECV_SPEED_LARGE},
    {"--list-only", 'l', CURLOPT_DIRLISTONLY, 1},
    {"--location", 'L', CURLOPT_FOLLOWLOCATION, 1},
    {"--location-trusted", 0, Kind::flagOf,
     [](Transfer& transfer, const std::string&) {
         curl_easy_setopt(transfer.easy.get(), CURLOPT_FOLLOWLOCATION, 1L);
         curl_easy_setopt(transfer.easy.get(), CURLOPT_UNRESTRICTED_AUTH, 1L);
     }},
    {"--max-filesize", 0, Kind::size, CURLOPT_MAXFILESIZE_LARGE},
    {"--max-redirs", 0, Kind::number, CURLOPT_MAXREDIRS},
    {"--max-time", 'm', Kind::time, CURLOPT_TIMEOUT_MS},
    {"--negotiate", 0, CURLOPT_HTTPAUTH, CURLAUTH_NEGOTIATE},
    {"--no-buffer", 'N', Kind::flagOf, ignore},
    {"--no-keepalive", 0, CURLOPT_TCP_KEEPALIVE, 0},
    {"--noproxy", 0, Kind::text, CURLOPT_NOPROXY},
    {"--ntlm", 0, CURLOPT_HTTPAUTH, kNtlm},
    {"--oauth2-bearer", 0, Kind::valueOf, bearer},
    {"--output", 'o', Kind::valueOf,
     [](Transfer& transfer, const std::string& value) { transfer.outputName = value; }},
    {"--pass", 0, Kind::text, CURLOPT_KEYPASSWD},
    {"--path-as-is", 0, CURLOPT_PATH_AS_IS, 1},
    {"--pinnedpubkey", 0, Kind::text, CURLOPT_PINNEDPUBLICKEY},
    {"--post301", 0, Kind::flagOf, keepPost<CURL_REDIR_POST_301>},
    {"--post302", 0, Kind::flagOf, keepPost<CURL_REDIR_POST_302>},
    {"--post303", 0, Kind::flagOf, keepPost<CURL_REDIR_POST_303>},
    {"--proxy", 'x', Kind::text, CURLOPT_PROXY},
    {"--proxy-anyauth", 0, CURLOPT_PROXYAUTH, kAnyAuth},
    {"--proxy-basic", 0, CURLOPT_PROXYAUTH, CURLAUTH_BASIC},
    {"--proxy-digest", 0, CURLOPT_PROXYAUTH, CURLAUTH_DIGEST},
    {"--proxy-ntlm", 0, CURLOPT_PROXYAUTH, kNtlm},
    {"--proxy-user", 'U', Kind::text, CURLOPT_PROXYUSERPWD},
    {"--proxytunnel", 'p', CURLOPT_HTTPPROXYTUNNEL, 1},
    {"--quote", 'Q', Kind::valueOf,
     [](Transfer& transfer, const std::string& value) { Transfer::add(transfer.commands, value); }},
    {"--range", 'r', Kind::text, CURLOPT_RANGE},
    {"--raw", 0, CURLOPT_HTTP_TRANSFER_DECODING, 0},
    {"--referer", 'e', Kind::text, CURLOPT_REFERER},
    {"--request", 'X', Kind::text, CURLOPT_CUSTOMREQUEST},
    {"--resolve", 0, Kind::valueOf,
     [](Transfer& transfer, const std::string& value) { Transfer::add(transfer.addresses, value); }},
    {"--show-error", 'S', Kind::flagOf, ignore},
    {"--silent", 's', Kind::flagOf, ignore},
    {"--socks4", 0, Kind::valueOf, socks<CURLPROXY_SOCKS4>},
    {"--socks4a", 0, Kind::valueOf, socks<CURLPROXY_SOCKS4A>},
    {"--socks5", 0, Kind::valueOf, socks<CURLPROXY_SOCKS5>},
    {"--socks5-hostname", 0, Kind::valueOf, socks<CURLPROXY_SOCKS5_HOSTNAME>},
    {"--speed-limit", 'Y', Kind::number, CURLOPT_LOW_SPEED_LIMIT},
    {"--speed-time", 'y', Kind::number, CURLOPT_LOW_SPEED_TIME},
    {"--ssl", 0, CURLOPT_USE_SSL, CURLUSESSL_TRY},
    {"--ssl-reqd", 0, CURLOPT_USE_SSL, CURLUSESSL_ALL},
    {"--tcp-nodelay", 0, CURLOPT_TCP_NODELAY, 1},
    {"--tlsv1.0", 0, CURLOPT_SSLVERSION, CURL_SSLVERSION_TLSv1_0},
    {"--tlsv1.1", 0, CURLOPT_SSLVERSION, CURL_SSLVERSION_TLSv1_1},
    {"--tlsv1.2", 0, CURLOPT_SSLVERSION, CURL_SSLVERSION_TLSv1_2},
    {"--tlsv1.3", 0, CURLOPT_SSLVERSION, CURL_SSLVERSION_TLSv1_3},
    {"--trace", 0, Kind::valueOf, trace},
    {"--trace-ascii", 0, Kind::valueOf, trace},
    {"--upload-file", 'T', Kind::valueOf, uploadFile},
    {"--use-ascii", 'B', CURLOPT_TRANSFERTEXT, 1},
    {"--user", 'u', Kind::text, CURLOPT_USERPWD},
    {"--user-agent", 'A', Kind::text, CURLOPT_USERAGENT},
    {"--verbose", 'v', Kind::flagOf, ignore},
};

double numberOf(const Option& option, const std::string& value) {
    char* end = nullptr;
    const double number = std::strtod(value.c_str(), &end);
    if (value.empty() || *end != '\0' || !(number >= 0 && number < 1e9)) {
        throw OptionError(std::string(option.name) + " expects a number, found " + value);
    }
    return number;
}

curl_off_t sizeOf(const Option& option, std::string value) {
    constexpr std::string_view kUnits = "KMG";
    const size_t unit =
        value.empty()
            ? std::string_view::npos
            : kUnits.find(static_cast<char>(std::toupper(static_cast<unsigned char>(value.back()))));
    int shift = 0;
    if (unit != std::string_view::npos) {
        shift = 10 * (static_cast<int>(unit) + 1);
        value.pop_back();
    }
    return static_cast<curl_off_t>(numberOf(option, value)) << shift;
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
    case Kind::size:
        curl_easy_setopt(easy, option.option, sizeOf(option, value));
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

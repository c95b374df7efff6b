#include "frameworks/AddressBook/carddav/transfer.h"

#include "frameworks/AddressBook/carddav/url.h"
#include "frameworks/AddressBook/values/text.h"

#include <algorithm>
#include <new>
#include <unistd.h>

namespace addressbook::carddav {
namespace {

constexpr std::size_t kMaxErrorBody = 64UL * 1024; // of an answer that is no success: enough for its reason
constexpr std::size_t kMaxHeaders = 200;

bool hasControl(std::string_view text) {
    return std::any_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

bool isTls(CURLcode code) {
    switch (code) {
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CERTPROBLEM:
    case CURLE_SSL_CIPHER:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
        return true;
    default:
        return false;
    }
}

} // namespace

template <class Value>
void Transfer::set(CURLoption option, Value value) {
    if (const CURLcode code = curl_easy_setopt(handle_.get(), option, value); code != CURLE_OK) {
        throw Error(ErrorKind::refused,
                    std::string("the connection cannot be set up: ") + curl_easy_strerror(code));
    }
}

Transfer::Transfer(const ClientOptions& options)
    : handle_(curl_easy_init()), caFile_(options.caFile), stallTimeout_(options.stallTimeout) {
    if (!handle_) {
        throw std::bad_alloc();
    }
    setFixedOptions(options);
}

void Transfer::setFixedOptions(const ClientOptions& options) {
    set(CURLOPT_PRIVATE, static_cast<void*>(this));
    set(CURLOPT_ERRORBUFFER, message_.data());
    set(CURLOPT_HEADERFUNCTION, &Transfer::onHeader);
    set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    set(CURLOPT_WRITEFUNCTION, &Transfer::onBody);
    set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_FOLLOWLOCATION, 0L);
    set(CURLOPT_ACCEPT_ENCODING, ""); // all that libcurl unpacks
    set(CURLOPT_USERAGENT, "Velocard");
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_2TLS));
    set(CURLOPT_PIPEWAIT, 1L); // several requests over one connection of HTTP/2 rather than over several
    set(CURLOPT_TCP_KEEPALIVE, 1L);
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(options.connectTimeout.count()));
    set(CURLOPT_LOW_SPEED_LIMIT, 10L);
    // GnuTLS reads every file of the system's folder for each connection, which takes 30 ms; the file that Debian makes
    // of them is read in 7. With a file of the user's own there is no place for both but with the folder.
    constexpr const char* kAuthorities = "/etc/ssl/certs/ca-certificates.crt";
    if (!caFile_.empty()) {
        set(CURLOPT_CAINFO, caFile_.c_str());
    } else if (access(kAuthorities, R_OK) == 0) {
        set(CURLOPT_CAINFO, kAuthorities);
        set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }
}

void Transfer::prepare(const Request& request, const std::string& url, const Authorization& authorization) {
    request_ = &request;
    const std::optional<Url> parts = parseUrl(url);
    host_ = parts ? parts->host : url;
    answer_ = {};
    answer_.url = url;
    received_ = 0;
    thrown_ = nullptr;
    message_[0] = '\0';

    // No waiting for "100 Continue": most servers do not send it.
    headers_.reset(curl_slist_append(nullptr, "Expect:"));
    for (const std::string& header : request.headers) {
        if (hasControl(header)) {
            throw Error(ErrorKind::refused, "a header with control characters cannot be sent to " + host_);
        }
        curl_slist* longer = curl_slist_append(headers_.get(), header.c_str());
        if (longer == nullptr) {
            throw std::bad_alloc();
        }
        headers_.release(); // NOLINT(bugprone-unused-return-value): [longer] is the same list
        headers_.reset(longer);
    }
    const std::chrono::seconds stallTimeout =
        request.stallTimeout.count() > 0 ? request.stallTimeout : stallTimeout_;
    set(CURLOPT_LOW_SPEED_TIME, static_cast<long>(stallTimeout.count()));
    set(CURLOPT_URL, url.c_str());
    set(CURLOPT_HTTPHEADER, headers_.get());
    if (request.body.empty()) {
        set(CURLOPT_POSTFIELDS, static_cast<const char*>(nullptr));
        set(CURLOPT_HTTPGET, 1L);
    } else {
        set(CURLOPT_POSTFIELDS, request.body.data());
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
    }
    set(CURLOPT_CUSTOMREQUEST, request.method.c_str());
    const bool bearer = authorization.methods == static_cast<long>(CURLAUTH_BEARER);
    set(CURLOPT_HTTPAUTH, authorization.methods);
    set(CURLOPT_USERNAME, bearer ? nullptr : authorization.user);
    set(CURLOPT_PASSWORD, bearer ? nullptr : authorization.secret);
    set(CURLOPT_XOAUTH2_BEARER, bearer ? authorization.secret : nullptr);
}

std::size_t Transfer::onHeader(char* bytes, std::size_t size, std::size_t count, void* self) {
    auto& transfer = *static_cast<Transfer*>(self);
    try {
        transfer.takeHeader({bytes, size * count});
        return size * count;
    } catch (...) {
        transfer.thrown_ = std::current_exception();
        return 0;
    }
}

std::size_t Transfer::onBody(char* bytes, std::size_t size, std::size_t count, void* self) {
    auto& transfer = *static_cast<Transfer*>(self);
    try {
        transfer.takeBody({bytes, size * count});
        return size * count;
    } catch (...) {
        transfer.thrown_ = std::current_exception();
        return 0;
    }
}

void Transfer::takeHeader(std::string_view line) {
    if (line.starts_with("HTTP/")) { // a new head: the one before was "100 Continue", or asked who we are
        answer_.headers.clear();
        answer_.body.clear();
        received_ = 0;
        long status = 0;
        curl_easy_getinfo(handle_.get(), CURLINFO_RESPONSE_CODE, &status);
        answer_.status = static_cast<int>(status);
        return;
    }
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) {
        return;
    }
    if (answer_.headers.size() >= kMaxHeaders) {
        throw Error(ErrorKind::malformedAnswer, host_ + " answers with too many headers");
    }
    std::string name(trim(line.substr(0, colon)));
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    answer_.headers.emplace_back(std::move(name), trim(line.substr(colon + 1)));
}

void Transfer::takeBody(std::string_view bytes) {
    if (answer_.status / 100 != 2) {
        answer_.body += bytes.substr(0, kMaxErrorBody - std::min(kMaxErrorBody, answer_.body.size()));
        return;
    }
    received_ += bytes.size();
    if (received_ > request_->maxAnswer) {
        throw Error(ErrorKind::tooLarge, host_ + " answers with more than " +
                                             std::to_string(request_->maxAnswer) +
                                             " bytes, which is more than was to be expected");
    }
    if (request_->receive) {
        request_->receive(bytes);
    } else {
        answer_.body += bytes;
    }
}

std::optional<Error> Transfer::errorOf(CURLcode code) const {
    if (thrown_) {
        try {
            std::rethrow_exception(thrown_);
        } catch (const Error& error) {
            return error;
        }
    }
    const std::string details = message_[0] != '\0' ? message_.data() : curl_easy_strerror(code);
    switch (code) {
    case CURLE_OK:
        return std::nullopt;
    case CURLE_PEER_FAILED_VERIFICATION:
        return Error(ErrorKind::tls,
                     "the certificate of " + host_ +
                         " is self-signed, from an authority that this machine does not know, or for "
                         "another host (" +
                         details + "): a server of your own needs the file of its authority");
    case CURLE_SSL_CACERT_BADFILE:
        return Error(ErrorKind::tls,
                     "the file of authorities " + caFile_ + " cannot be read, or has no certificates");
    case CURLE_COULDNT_RESOLVE_HOST:
        return Error(ErrorKind::network,
                     "no host is named " + host_ + ", or names cannot be looked up at the moment");
    case CURLE_COULDNT_CONNECT:
        return Error(ErrorKind::network, host_ + " cannot be reached (" + details + ")");
    case CURLE_OPERATION_TIMEDOUT:
        return Error(ErrorKind::network, host_ + " takes too long to answer (" + details + ")");
    case CURLE_BAD_CONTENT_ENCODING:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_UNSUPPORTED_PROTOCOL: // an answer in HTTP/0.9 or another protocol
        return Error(ErrorKind::malformedAnswer,
                     "the answer of " + host_ + " cannot be read (" + details + ")");
    case CURLE_URL_MALFORMAT:
        return Error(ErrorKind::refused, "this is no address of a server: " + answer_.url);
    default:
        return Error(isTls(code) ? ErrorKind::tls : ErrorKind::network,
                     "the connection to " + host_ + " failed (" + details + ")");
    }
}

long Transfer::methodsAsked() const {
    long methods = 0;
    curl_easy_getinfo(handle_.get(), CURLINFO_HTTPAUTH_AVAIL, &methods);
    return methods & static_cast<long>(CURLAUTH_BASIC | CURLAUTH_DIGEST);
}

} // namespace addressbook::carddav

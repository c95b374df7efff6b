#include "host/network/transfer.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace host {

MemoryFile::MemoryFile(const Bytes& contents) : descriptor_(memfd_create("fmhost", MFD_CLOEXEC)) {
    if (descriptor_ < 0) {
        throw std::bad_alloc();
    }
    for (size_t at = 0; at < contents.size();) {
        const ssize_t written = write(descriptor_, contents.data() + at, contents.size() - at);
        if (written <= 0) {
            close(descriptor_);
            throw std::bad_alloc();
        }
        at += static_cast<size_t>(written);
    }
}
MemoryFile::MemoryFile(MemoryFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
MemoryFile::~MemoryFile() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

std::string MemoryFile::path() const {
    return "/proc/self/fd/" + std::to_string(descriptor_);
}

void Transfer::add(ListHolder& list, const std::string& line) {
    curl_slist* longer = curl_slist_append(list.get(), line.c_str());
    if (longer == nullptr) {
        throw std::bad_alloc();
    }
    if (list == nullptr) { // else the first line stays where it is
        list.reset(longer);
    }
}

void Transfer::setFile(CURLoption option, const std::string& name) {
    Bytes contents = request.read(name);
    if (std::find(contents.begin(), contents.end(), '\0') == contents.end()) { // a text, maybe of a variable
        std::replace(contents.begin(), contents.end(), static_cast<unsigned char>('\r'),
                     static_cast<unsigned char>('\n'));
    }
    files.emplace_back(contents);
    curl_easy_setopt(easy.get(), option, files.back().path().c_str());
}

void Transfer::addData(const std::string& data) {
    body = body ? *body + "&" + data : data;
}

namespace {

constexpr long kConnectSeconds = 60;
constexpr size_t kLargestBody = size_t{2} << 30;

// FileMaker's codes for what can go wrong.
struct Failure {
    CURLcode code;
    int number;
};
constexpr int kConnectionFailed = 1631;
constexpr Failure kFailures[] = {
    {CURLE_UNSUPPORTED_PROTOCOL, 1626}, {CURLE_LOGIN_DENIED, 1627},
    {CURLE_REMOTE_ACCESS_DENIED, 1627}, {CURLE_SSL_CONNECT_ERROR, 1628},
    {CURLE_SSL_CERTPROBLEM, 1628},      {CURLE_PEER_FAILED_VERIFICATION, 1628},
    {CURLE_SSL_CACERT_BADFILE, 1628},   {CURLE_OPERATION_TIMEDOUT, 1629},
    {CURLE_URL_MALFORMAT, 1630},
};

int numberOf(CURLcode code, long status) {
    constexpr long kUnauthorized = 401;
    if (code == CURLE_HTTP_RETURNED_ERROR && status == kUnauthorized) {
        return 1627;
    }
    const auto* row = std::find_if(std::begin(kFailures), std::end(kFailures),
                                   [&](const Failure& failure) { return failure.code == code; });
    return row == std::end(kFailures) ? kConnectionFailed : row->number;
}

// The callbacks return another number than the library expects to end the transfer.
size_t receive(char* data, size_t size, size_t count, void* to) {
    auto& bytes = *static_cast<Bytes*>(to);
    try {
        if (bytes.size() + size * count > kLargestBody) {
            return CURL_WRITEFUNC_ERROR;
        }
        bytes.insert(bytes.end(), data, data + size * count);
        return size * count;
    } catch (const std::bad_alloc&) {
        return CURL_WRITEFUNC_ERROR;
    }
}

size_t send(char* data, size_t size, size_t count, void* from) {
    auto& transfer = *static_cast<Transfer*>(from);
    const size_t sent = std::min(size * count, transfer.upload->size() - transfer.uploaded);
    std::copy_n(transfer.upload->begin() + static_cast<std::ptrdiff_t>(transfer.uploaded), sent, data);
    transfer.uploaded += sent;
    return sent;
}

int progress(void* from, curl_off_t /*total*/, curl_off_t /*now*/, curl_off_t /*uploadTotal*/,
             curl_off_t /*uploaded*/) {
    const auto& transfer = *static_cast<Transfer*>(from);
    return transfer.request.mustStop() ? 1 : 0;
}

// Notes what happens, as `curl --verbose` shows it, and the contents that go out and come in.
int note(CURL* /*easy*/, curl_infotype type, char* data, size_t size, void* to) {
    constexpr std::string_view kMarks[] = {"* ", "< ",
                                           "> "}; // of messages, headers that come, headers that go
    auto& trace = *static_cast<Bytes*>(to);
    try {
        if (static_cast<size_t>(type) < std::size(kMarks)) {
            const std::string_view mark = kMarks[type];
            trace.insert(trace.end(), mark.begin(), mark.end());
        }
        if (type <= CURLINFO_DATA_OUT && trace.size() + size <= kLargestBody) {
            trace.insert(trace.end(), data, data + size);
        }
    } catch (const std::bad_alloc&) {
        trace.clear();
    }
    return 0;
}

// Returns all cookies that are known now, in the form of a cookie file.
Bytes cookies(CURL* easy) {
    constexpr std::string_view kHead = "# Netscape HTTP Cookie File\n";
    Bytes file(kHead.begin(), kHead.end());
    curl_slist* list = nullptr;
    curl_easy_getinfo(easy, CURLINFO_COOKIELIST, &list);
    const ListHolder holder(list);
    for (const curl_slist* each = list; each != nullptr; each = each->next) {
        const std::string line = std::string(each->data) + "\n";
        file.insert(file.end(), line.begin(), line.end());
    }
    return file;
}

// Returns the URL with percent signs for blanks and what is not ASCII.
std::string encodedUrl(const std::string& url) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string result;
    for (const char c : url) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= ' ' || byte >= 0x7F) {
            result += {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
        } else {
            result += c;
        }
    }
    return result;
}

void setBody(Transfer& transfer, std::string& url) {
    CURL* easy = transfer.easy.get();
    if (transfer.form != nullptr) {
        curl_easy_setopt(easy, CURLOPT_MIMEPOST, transfer.form.get());
    } else if (transfer.upload) {
        curl_easy_setopt(easy, CURLOPT_UPLOAD, 1L);
        curl_easy_setopt(easy, CURLOPT_READFUNCTION, send);
        curl_easy_setopt(easy, CURLOPT_READDATA, &transfer);
        curl_easy_setopt(easy, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(transfer.upload->size()));
    } else if (transfer.body && transfer.sendsBodyInUrl) {
        url += (url.find('?') == std::string::npos ? "?" : "&") + *transfer.body;
    } else if (transfer.body) {
        curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(transfer.body->size()));
        curl_easy_setopt(easy, CURLOPT_COPYPOSTFIELDS, transfer.body->data());
    }
}

// Returns the charset that a Content-Type names, in lower case.
std::string charsetOf(const char* contentType) {
    std::string type = contentType == nullptr ? "" : contentType;
    std::transform(type.begin(), type.end(), type.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const size_t at = type.find("charset=");
    if (at == std::string::npos) {
        return {};
    }
    const std::string charset = type.substr(at + 8, type.find(';', at) - at - 8);
    const size_t begin = charset.find_first_not_of("\" ");
    return begin == std::string::npos ? std::string()
                                      : charset.substr(begin, charset.find_last_not_of("\" ") - begin + 1);
}

// Returns the name that the answer's Content-Disposition gives it, else the last part of the URL.
std::string fileNameOf(CURL* easy) {
    curl_header* header = nullptr;
    if (curl_easy_header(easy, "Content-Disposition", 0, CURLH_HEADER, -1, &header) == CURLHE_OK) {
        const std::string value = header->value;
        const size_t at = value.find("filename=");
        if (at != std::string::npos) {
            std::string name = value.substr(at + 9, value.find(';', at) - at - 9);
            std::erase(name, '"');
            return name.substr(name.find_last_of("/\\") + 1);
        }
    }
    const char* effective = nullptr;
    curl_easy_getinfo(easy, CURLINFO_EFFECTIVE_URL, &effective);
    std::string url = effective == nullptr ? "" : effective;
    url.resize(std::min(url.size(), url.find_first_of("?#")));
    const size_t host = url.find("://");
    const size_t slash = url.find_last_of('/');
    return host == std::string::npos || slash < host + 3 ? std::string() : url.substr(slash + 1);
}

// Moves what was received to the places that the options name.
void distribute(Transfer& transfer, NetworkResponse& response) {
    if (!transfer.headerName.empty()) {
        response.outputs.push_back({transfer.headerName, transfer.receivedHeaders});
    }
    if (!transfer.cookieName.empty()) {
        response.outputs.push_back({transfer.cookieName, cookies(transfer.easy.get())});
    }
    if (!transfer.traceName.empty()) {
        response.outputs.push_back({transfer.traceName, transfer.trace});
    }
    if (transfer.showsHeaders) {
        transfer.received.insert(transfer.received.begin(), transfer.receivedHeaders.begin(),
                                 transfer.receivedHeaders.end());
    }
    if (transfer.outputName.empty()) {
        response.body = std::move(transfer.received);
    } else {
        response.outputs.push_back({transfer.outputName, std::move(transfer.received)});
        response.isBodyElsewhere = true;
    }
}

NetworkResponse fetch(const NetworkRequest& request) {
    static const CURLcode kStarted = curl_global_init(CURL_GLOBAL_DEFAULT);
    Transfer transfer{request, EasyHolder(kStarted == CURLE_OK ? curl_easy_init() : nullptr)};
    CURL* easy = transfer.easy.get();
    if (easy == nullptr) {
        throw std::bad_alloc();
    }
    std::array<char, CURL_ERROR_SIZE> message{};
    curl_easy_setopt(easy, CURLOPT_ERRORBUFFER, message.data());
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "http,https,ftp,ftps");
    curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, receive);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer.received);
    curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, receive);
    curl_easy_setopt(easy, CURLOPT_HEADERDATA, &transfer.receivedHeaders);
    curl_easy_setopt(easy, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(easy, CURLOPT_XFERINFOFUNCTION, progress);
    curl_easy_setopt(easy, CURLOPT_XFERINFODATA, &transfer);
    applyOptions(transfer);
    std::string url = request.url;
    setBody(transfer, url);
    url = encodedUrl(url);
    curl_easy_setopt(easy, CURLOPT_URL, url.c_str());
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, transfer.headers.get());
    curl_easy_setopt(easy, CURLOPT_RESOLVE, transfer.addresses.get());
    curl_easy_setopt(easy, CURLOPT_QUOTE, transfer.commands.get());
    curl_easy_setopt(easy, CURLOPT_POSTREDIR, transfer.keepsPost);
    if (!transfer.traceName.empty()) {
        curl_easy_setopt(easy, CURLOPT_VERBOSE, 1L);
        curl_easy_setopt(easy, CURLOPT_DEBUGFUNCTION, note);
        curl_easy_setopt(easy, CURLOPT_DEBUGDATA, &transfer.trace);
    }

    NetworkResponse response;
    const CURLcode code = curl_easy_perform(easy);
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    if (code != CURLE_OK) {
        response.code = numberOf(code, status);
        response.message = message[0] != '\0' ? message.data() : curl_easy_strerror(code);
    }
    const char* type = nullptr;
    curl_easy_getinfo(easy, CURLINFO_CONTENT_TYPE, &type);
    response.charset = transfer.charset.empty() ? charsetOf(type) : transfer.charset;
    response.fileName = fileNameOf(easy);
    response.isContainer = transfer.isContainer;
    distribute(transfer, response);
    return response;
}

} // namespace

extern "C" __attribute__((visibility("default"))) const Network velocardNetwork = {fetch};

} // namespace host

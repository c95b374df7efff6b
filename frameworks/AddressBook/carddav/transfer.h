#pragma once

// One exchange of a request and an answer by libcurl: its options, and what its codes mean.

#include "frameworks/AddressBook/carddav/error.h"
#include "frameworks/AddressBook/carddav/request.h"

#include <curl/curl.h>

#include <array>
#include <exception>
#include <memory>
#include <optional>
#include <string>

namespace addressbook::carddav {

// What of the credentials goes along.
struct Authorization {
    long methods =
        CURLAUTH_BASIC; // with _DIGEST: as the server asks; or _BEARER. Nothing is sent without a secret
    const char* user = nullptr;
    const char* secret = nullptr;
};

// Is used for one exchange after another, so that a nonce of Digest serves several.
class Transfer {
  public:
    explicit Transfer(const ClientOptions& options);

    // Sets everything for a request to [url]. [request] must live, unchanged, until the exchange is over. Throws Error
    // (refused) for a header that cannot be sent.
    void prepare(const Request& request, const std::string& url, const Authorization& authorization);

    [[nodiscard]] CURL* handle() const { return handle_.get(); }

    // After the exchange: the answer, and what prevented it. Throws what Request::receive threw if that was no Error.
    Answer takeAnswer() { return std::move(answer_); }
    std::optional<Error> errorOf(CURLcode code) const;

    // Returns the methods among Basic and Digest by which the server asked who we are; 0 when it did not ask.
    [[nodiscard]] long methodsAsked() const;

  private:
    static std::size_t onHeader(char* bytes, std::size_t size, std::size_t count, void* self);
    static std::size_t onBody(char* bytes, std::size_t size, std::size_t count, void* self);
    void takeHeader(std::string_view line);
    void takeBody(std::string_view bytes);
    void setFixedOptions(const ClientOptions& options);

    template <class Value>
    void set(CURLoption option, Value value);

    struct CloseHandle {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    };
    struct FreeList {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };

    std::array<char, CURL_ERROR_SIZE> message_{};
    std::unique_ptr<curl_slist, FreeList> headers_;
    std::unique_ptr<CURL, CloseHandle> handle_; // last: it refers to what is above
    const Request* request_ = nullptr;
    std::string caFile_, host_;
    std::chrono::seconds stallTimeout_;
    Answer answer_;
    std::size_t received_ = 0;
    std::exception_ptr thrown_; // by a callback: no exception passes through libcurl
};

} // namespace addressbook::carddav

#include "frameworks/AddressBook/carddav/http.h"

#include "frameworks/AddressBook/carddav/status_error.h"
#include "frameworks/AddressBook/carddav/transfer.h"
#include "frameworks/AddressBook/carddav/url.h"

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>

namespace addressbook::carddav {
namespace {

using Clock = std::chrono::steady_clock;
constexpr int kMaxRedirects = 5;
constexpr int kPollMilliseconds = 100; // how soon a stop is noticed

bool isRedirect(int status) {
    return status == 301 || status == 302 || status == 307 || status == 308;
}

// What Retry-After asks for: seconds, or a date. Without it a second, then twice as long each time.
std::chrono::seconds waitOf(const Answer& answer, int retries) {
    const std::string text = answer.header("retry-after");
    if (text.empty()) {
        return std::chrono::seconds(1L << std::min(retries, 10));
    }
    if (text.find_first_not_of("0123456789") == std::string::npos) {
        constexpr std::size_t kDigits = 9; // enough for years
        return std::chrono::seconds(std::stol(text.substr(0, kDigits)));
    }
    const time_t date = curl_getdate(text.c_str(), nullptr);
    return std::chrono::seconds(std::max<time_t>(0, date == -1 ? 1 : date - time(nullptr)));
}

// A request on its way through redirects and repetitions.
struct Job {
    Request request;
    std::function<void(Result&&)> done;
    std::string url;
    int redirects = 0, retries = 0;
    bool renewed = false;    // the bearer's token
    bool authorized = false; // the password went along
};

} // namespace

struct Client::Impl {
    Impl(ClientOptions options, Credentials credentials);
    ~Impl() { abandon(); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    void run();
    void startReady();
    void start(std::unique_ptr<Job> job);
    std::optional<Error> refusal(const Url& url) const;
    Authorization authorizationFor(const Url& url);
    bool isTrusted(const Url& url) const;
    void finish(CURL* handle, CURLcode code);
    void judge(std::unique_ptr<Job> job, Answer answer);
    void redirect(std::unique_ptr<Job> job, Answer answer);
    bool again(std::unique_ptr<Job>& job, const Answer& answer);
    void abandon();

    struct CloseMulti {
        void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
    };
    struct Active {
        std::unique_ptr<Transfer> transfer;
        std::unique_ptr<Job> job;
    };

    ClientOptions options;
    Credentials credentials;
    Secret secret; // the password, or the bearer's token
    bool asked = false;
    std::set<std::string> trusted;       // origins
    std::map<std::string, long> methods; // by which an origin asked who we are
    std::deque<std::unique_ptr<Job>> queue;
    Clock::time_point resume; // before which nothing is started, as the server is busy
    std::unique_ptr<CURLM, CloseMulti> multi;
    std::vector<std::unique_ptr<Transfer>> idle;
    std::map<CURL*, Active> active;
    bool running = false;
};

Client::Impl::Impl(ClientOptions givenOptions, Credentials givenCredentials)
    : options(std::move(givenOptions)), credentials(std::move(givenCredentials)) {
    static std::once_flag once;
    std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
    multi.reset(curl_multi_init());
    if (!multi) {
        throw std::bad_alloc();
    }
    options.requestsAtOnce = std::max<std::size_t>(1, options.requestsAtOnce);
    curl_multi_setopt(multi.get(), CURLMOPT_MAX_HOST_CONNECTIONS,
                      static_cast<long>(std::max<std::size_t>(1, options.connections)));
}

// After an exception, and at the end.
void Client::Impl::abandon() {
    for (auto& [handle, entry] : active) {
        curl_multi_remove_handle(multi.get(), handle);
    }
    active.clear();
    queue.clear();
    running = false;
}

void Client::Impl::run() {
    if (running) {
        throw std::logic_error("a client runs its requests already");
    }
    struct Guard {
        Impl& impl;
        ~Guard() { impl.abandon(); } // nothing is left after a run that ended well
    } guard{*this};
    running = true;
    while (!queue.empty() || !active.empty()) {
        if (options.stop != nullptr && options.stop->load()) {
            throw Error(ErrorKind::stopped, "stopped");
        }
        startReady();
        int count = 0;
        curl_multi_perform(multi.get(), &count);
        bool finished = false;
        while (const CURLMsg* message = curl_multi_info_read(multi.get(), &count)) {
            if (message->msg == CURLMSG_DONE) {
                finish(message->easy_handle, message->data.result);
                finished = true;
            }
        }
        if (!finished && (!active.empty() || Clock::now() < resume)) {
            curl_multi_poll(multi.get(), nullptr, 0, kPollMilliseconds, nullptr);
        }
    }
}

void Client::Impl::startReady() {
    while (!queue.empty() && active.size() < options.requestsAtOnce && Clock::now() >= resume) {
        std::unique_ptr<Job> job = std::move(queue.front());
        queue.pop_front();
        start(std::move(job));
    }
}

std::optional<Error> Client::Impl::refusal(const Url& url) const {
    if (url.scheme == "http" && !url.isLoopback() && !options.allowHttp) {
        return Error(ErrorKind::refused,
                     "plain http to " + url.host +
                         " is refused: everybody on the way could read the password and the cards");
    }
    return std::nullopt;
}

bool Client::Impl::isTrusted(const Url& url) const {
    Url before = url; // it was trusted with http, where anybody could listen
    before.scheme = "http";
    before.port = 80;
    return trusted.contains(url.origin()) ||
           (url.scheme == "https" && url.port == 443 && trusted.contains(before.origin()));
}

Authorization Client::Impl::authorizationFor(const Url& url) {
    const bool bearer = static_cast<bool>(credentials.bearer);
    if ((!bearer && !credentials.password) || !isTrusted(url)) {
        return {};
    }
    if (!asked) {
        secret = bearer ? credentials.bearer(false) : credentials.password();
        asked = true;
    }
    if (bearer) {
        return {static_cast<long>(CURLAUTH_BEARER), nullptr, secret.text()};
    }
    const auto known = methods.find(url.origin());
    const long either = static_cast<long>(CURLAUTH_BASIC | CURLAUTH_DIGEST);
    return {known != methods.end() ? known->second : either, credentials.user.c_str(), secret.text()};
}

void Client::Impl::start(std::unique_ptr<Job> job) {
    const std::optional<Url> url = parseUrl(job->url);
    std::optional<Error> error =
        url ? refusal(*url) : Error(ErrorKind::refused, "this is no address of a server: " + job->url);
    std::unique_ptr<Transfer> transfer;
    if (!error) {
        if (idle.empty()) {
            transfer = std::make_unique<Transfer>(options);
        } else {
            transfer = std::move(idle.back());
            idle.pop_back();
        }
        const Authorization authorization = authorizationFor(*url);
        job->authorized = authorization.secret != nullptr;
        try {
            transfer->prepare(job->request, job->url, authorization);
        } catch (const Error& problem) {
            error = problem;
        }
    }
    if (error) {
        job->done({{}, std::move(error)});
        return;
    }
    CURL* handle = transfer->handle();
    active[handle] = {std::move(transfer), std::move(job)};
    curl_multi_add_handle(multi.get(), handle);
}

void Client::Impl::finish(CURL* handle, CURLcode code) {
    const auto at = active.find(handle);
    curl_multi_remove_handle(multi.get(), handle);
    Active entry = std::move(at->second);
    active.erase(at);
    const std::optional<Url> url = parseUrl(entry.job->url);
    const long methodsAsked = entry.transfer->methodsAsked();
    if (methodsAsked != 0 && url) {
        const bool digest = (methodsAsked & static_cast<long>(CURLAUTH_DIGEST)) != 0;
        methods[url->origin()] = static_cast<long>(digest ? CURLAUTH_DIGEST : CURLAUTH_BASIC);
    }
    std::optional<Error> error = entry.transfer->errorOf(code);
    Answer answer = entry.transfer->takeAnswer();
    idle.push_back(std::move(entry.transfer));
    if (error) {
        entry.job->done({std::move(answer), std::move(error)});
    } else {
        judge(std::move(entry.job), std::move(answer));
    }
}

void Client::Impl::judge(std::unique_ptr<Job> job, Answer answer) {
    if (isRedirect(answer.status) && !answer.header("location").empty()) {
        redirect(std::move(job), std::move(answer));
        return;
    }
    if (again(job, answer)) {
        queue.push_front(std::move(job));
        return;
    }
    std::optional<Error> error;
    if (answer.status == 401 && !job->authorized) {
        const std::optional<Url> url = parseUrl(job->url);
        if (!credentials.password && !credentials.bearer) {
            error = Error(ErrorKind::unauthorised, url->host + " asks for a user name and a password", 401);
        } else {
            error = Error(ErrorKind::untrustedHost,
                          "the way leads to " + url->origin() +
                              ", which asks for the password; unasked it is not sent to another host",
                          401, {}, job->url);
        }
    } else if (answer.status / 100 != 2) {
        error = errorOfStatus(answer.status, answer.body, job->request.method, job->url);
        if (error->kind() == ErrorKind::busy && !answer.header("retry-after").empty()) {
            const std::string wait = std::to_string(waitOf(answer, 0).count());
            error = Error(ErrorKind::busy, error->what() + ("; it asks to wait for " + wait + " seconds"),
                          answer.status);
        }
    }
    job->done({std::move(answer), std::move(error)});
}

void Client::Impl::redirect(std::unique_ptr<Job> job, Answer answer) {
    const std::string location = answer.header("location");
    const std::optional<std::string> target = resolve(job->url, location);
    const std::optional<Url> from = parseUrl(job->url);
    const std::optional<Url> to = target ? parseUrl(*target) : std::nullopt;
    std::optional<Error> error;
    if (!to) {
        error = Error(ErrorKind::malformedAnswer, from->host + " leads to what is no address: " + location);
    } else if (from->scheme == "https" && to->scheme == "http") {
        error = Error(ErrorKind::refused, from->host + " leads from https to plain http, which is refused");
    } else if (++job->redirects > kMaxRedirects) {
        error = Error(ErrorKind::refused, from->host + " leads from one address to another without end");
    }
    if (error) {
        job->done({std::move(answer), std::move(error)});
        return;
    }
    job->url = *target;
    queue.push_front(std::move(job));
}

// Whether the request is made once more: with a new token, or after a while.
bool Client::Impl::again(std::unique_ptr<Job>& job, const Answer& answer) {
    if (answer.status == 401 && job->authorized && credentials.bearer && !job->renewed) {
        secret = credentials.bearer(true);
        job->renewed = true;
        return true;
    }
    if (answer.status != 429 && answer.status != 503) {
        return false;
    }
    const std::chrono::seconds wait = waitOf(answer, job->retries);
    if (wait > options.maxWait || job->retries >= options.maxRetries) {
        return false;
    }
    ++job->retries;
    resume = std::max(resume, Clock::now() + wait);
    return true;
}

Client::Client(ClientOptions options, Credentials credentials)
    : impl_(std::make_unique<Impl>(std::move(options), std::move(credentials))) {}

Client::~Client() = default;

void Client::trust(const std::string& url) {
    if (const std::optional<Url> parts = parseUrl(url)) {
        impl_->trusted.insert(parts->origin());
    }
}

Answer Client::perform(Request request) {
    Result result;
    send(std::move(request), [&](Result&& made) { result = std::move(made); });
    run();
    if (result.error) {
        throw Error(*result.error);
    }
    return std::move(result.answer);
}

void Client::send(Request request, std::function<void(Result&&)> done) {
    auto job = std::make_unique<Job>();
    job->url = request.url;
    job->request = std::move(request);
    job->done = std::move(done);
    impl_->queue.push_back(std::move(job));
}

void Client::run() {
    impl_->run();
}

const ClientOptions& Client::options() const {
    return impl_->options;
}

} // namespace addressbook::carddav

// Requests, as a server sees them, and answers, however they come.

#include "tests/carddav/server.h"
#include "tests/carddav/support.h"

#include <zlib.h>

#include <algorithm>
#include <stdexcept>

namespace carddav_test {
namespace {

using namespace addressbook::carddav;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// What zlib packs, as gzip.
std::string gzip(const std::string& text) {
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 9, Z_DEFAULT_STRATEGY);
    std::string packed(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

Request get(const std::string& url) {
    return {"GET", url, {}, {}, {}, 1024UL * 1024};
}

TEST(HttpTest, SendsMethodHeadersAndBody) {
    Server server([](const Received&) { return Reply{200, "answer", {"ETag: \"1\""}}; });
    Client client;
    const Answer answer =
        client.perform({"PUT", server.url("/a%20b.vcf"), {"If-Match: \"x\""}, "BEGIN", {}, 100});
    EXPECT_EQ(answer.status, 200);
    EXPECT_EQ(answer.body, "answer");
    EXPECT_EQ(answer.header("etag"), "\"1\"");
    const Received received = server.received().at(0);
    EXPECT_EQ(received.method, "PUT");
    EXPECT_EQ(received.target, "/a%20b.vcf");
    EXPECT_EQ(received.header("if-match"), "\"x\"");
    EXPECT_EQ(received.body, "BEGIN");
    EXPECT_FALSE(received.has("expect"));
    EXPECT_FALSE(received.has("authorization"));
}

TEST(HttpTest, EachStatusHasItsKind) {
    struct Case {
        int status;
        ErrorKind kind;
    };
    for (const auto& [status, kind] :
         {Case{401, ErrorKind::unauthorised}, Case{403, ErrorKind::forbidden}, Case{404, ErrorKind::notFound},
          Case{409, ErrorKind::conflict}, Case{410, ErrorKind::notFound},
          Case{412, ErrorKind::preconditionFailed}, Case{413, ErrorKind::tooLarge},
          Case{415, ErrorKind::rejected}, Case{423, ErrorKind::locked}, Case{500, ErrorKind::serverError},
          Case{502, ErrorKind::serverError}, Case{507, ErrorKind::full}}) {
        Server server([status = status](const Received&) { return Reply{status, "<html>sorry</html>"}; });
        Client client({}, ida());
        client.trust(server.url());
        const Error error = errorOf([&] { client.perform(get(server.url("/x"))); });
        EXPECT_EQ(error.kind(), kind) << status;
        EXPECT_EQ(error.status(), status);
        EXPECT_THAT(error.what(), testing::HasSubstr("127.0.0.1")) << error.what();
        EXPECT_THAT(error.what(), testing::HasSubstr("GET /x: " + std::to_string(status))) << error.what();
    }
}

TEST(HttpTest, ConditionTellsMoreThanTheStatus) {
    Server server([](const Received&) {
        return Reply{
            403, R"(<?xml version="1.0"?><e:error xmlns:e="DAV:" xmlns:c="urn:ietf:params:xml:ns:carddav">)"
                 "<c:no-uid-conflict><e:href>/ida/other.vcf</e:href></c:no-uid-conflict></e:error>"};
    });
    Client client;
    const Error error = errorOf([&] { client.perform(get(server.url())); });
    EXPECT_EQ(error.kind(), ErrorKind::uidConflict);
    EXPECT_EQ(error.condition(), "{urn:ietf:params:xml:ns:carddav}no-uid-conflict");
    EXPECT_EQ(error.href(), "/ida/other.vcf");
}

TEST(HttpTest, ManyRequestsShareFewConnections) {
    Server server([](const Received& received) { return Reply{200, received.target, {}, 2ms}; });
    ClientOptions options;
    options.connections = 3;
    options.requestsAtOnce = 6;
    Client client(options);
    std::size_t answered = 0;
    for (int at = 0; at < 100; ++at) {
        const std::string path = "/" + std::to_string(at);
        client.send(get(server.url(path)), [&, path](Result&& result) {
            EXPECT_FALSE(result.error);
            EXPECT_EQ(result.answer.body, path);
            ++answered;
        });
    }
    client.run();
    EXPECT_EQ(answered, 100U);
    EXPECT_EQ(server.connections(), 3);
    EXPECT_EQ(server.mostAtOnce(), 3);
}

TEST(HttpTest, CallbackMayAddRequests) {
    Server server([](const Received&) { return Reply{}; });
    Client client;
    int answered = 0;
    std::function<void(Result&&)> next = [&](Result&&) {
        if (++answered < 5) {
            client.send(get(server.url()), next);
        }
    };
    client.send(get(server.url()), next);
    client.run();
    EXPECT_EQ(answered, 5);
    EXPECT_EQ(server.connections(), 1);
}

TEST(HttpTest, AsksForPackedAnswersAndUnpacksThem) {
    const std::string text(100000, 'x');
    Server server([&](const Received&) { return Reply{200, gzip(text), {"Content-Encoding: gzip"}}; });
    Client client;
    EXPECT_EQ(client.perform(get(server.url())).body, text);
    EXPECT_THAT(server.received().at(0).header("accept-encoding"), testing::HasSubstr("gzip"));
}

TEST(HttpTest, BoundHoldsForWhatIsUnpacked) {
    Server server([](const Received&) {
        return Reply{200, gzip(std::string(50'000'000, 'x')), {"Content-Encoding: gzip"}};
    });
    Client client;
    EXPECT_EQ(errorOf([&] { client.perform(get(server.url())); }).kind(), ErrorKind::tooLarge);
}

TEST(HttpTest, PiecesArriveAsTheyCome) {
    Server server([](const Received&) { return Reply{200, std::string(300'000, 'x')}; });
    Client client;
    Request request = get(server.url());
    std::size_t size = 0;
    std::size_t pieces = 0;
    request.receive = [&](std::string_view bytes) {
        size += bytes.size();
        ++pieces;
    };
    EXPECT_EQ(client.perform(std::move(request)).body, "");
    EXPECT_EQ(size, 300'000U);
    EXPECT_GT(pieces, 1U);
}

TEST(HttpTest, WhatACallbackThrowsLeavesTheCall) {
    Server server([](const Received&) { return Reply{200, "text"}; });
    Client client;
    Request request = get(server.url());
    request.receive = [](std::string_view) { throw std::out_of_range("mine"); };
    EXPECT_THROW(client.perform(request), std::out_of_range);
    client.send(get(server.url()), [](Result&&) { throw std::out_of_range("mine"); });
    EXPECT_THROW(client.run(), std::out_of_range);
    EXPECT_EQ(client.perform(get(server.url())).body, "text") << "the client is usable afterwards";
}

TEST(HttpTest, HeaderWithALineBreakIsNotSent) {
    Server server([](const Received&) { return Reply{}; });
    Client client;
    const Error error =
        errorOf([&] { client.perform({"PUT", server.url(), {"If-Match: a\r\nX: y"}, "b", {}, 100}); });
    EXPECT_EQ(error.kind(), ErrorKind::refused);
    EXPECT_TRUE(server.received().empty());
}

TEST(HttpTest, WaitsAsTheServerAsks) {
    for (const int status : {429, 503}) {
        int count = 0;
        Server server([&](const Received&) {
            return ++count == 1 ? Reply{status, "", {"Retry-After: 1"}} : Reply{200, "now"};
        });
        Client client;
        const auto begin = Clock::now();
        EXPECT_EQ(client.perform(get(server.url())).body, "now");
        EXPECT_GE(Clock::now() - begin, 1s);
        EXPECT_LT(Clock::now() - begin, 3s);
    }
}

TEST(HttpTest, NobodyIsAskedWhileTheServerIsBusy) {
    std::vector<Clock::time_point> times;
    Server server([&](const Received&) {
        times.push_back(Clock::now());
        return times.size() == 1 ? Reply{429, "", {"Retry-After: 1"}} : Reply{};
    });
    ClientOptions options;
    options.requestsAtOnce = options.connections = 1;
    Client client(options);
    for (int at = 0; at < 3; ++at) {
        client.send(get(server.url()), [](Result&& result) { EXPECT_FALSE(result.error); });
    }
    client.run();
    ASSERT_EQ(times.size(), 4U);
    EXPECT_GE(times[1] - times[0], 1s);
}

TEST(HttpTest, WaitsNoLongerThanTheBound) {
    Server server([](const Received&) { return Reply{503, "", {"Retry-After: 3600"}}; });
    Client client;
    const auto begin = Clock::now();
    const Error error = errorOf([&] { client.perform(get(server.url())); });
    EXPECT_EQ(error.kind(), ErrorKind::busy);
    EXPECT_THAT(error.what(), testing::HasSubstr("3600 seconds"));
    EXPECT_LT(Clock::now() - begin, 1s);
    EXPECT_EQ(server.received().size(), 1U);
}

TEST(HttpTest, ReadsRetryAfterAsADate) {
    Server server(
        [](const Received&) { return Reply{503, "", {"Retry-After: Fri, 31 Dec 2099 23:59:59 GMT"}}; });
    Client client;
    EXPECT_EQ(errorOf([&] { client.perform(get(server.url())); }).kind(), ErrorKind::busy);
    EXPECT_EQ(server.received().size(), 1U);
}

TEST(HttpTest, RepeatsABusyRequestOnlySoOften) {
    Server server([](const Received&) { return Reply{503, "", {"Retry-After: 0"}}; });
    Client client;
    EXPECT_EQ(errorOf([&] { client.perform(get(server.url())); }).kind(), ErrorKind::busy);
    EXPECT_EQ(server.received().size(), 4U);
}

TEST(HttpTest, StalledAnswerTimesOut) {
    Server server([](const Received&) { return Reply{200, "late", {}, 30s}; });
    ClientOptions options;
    options.stallTimeout = 1s;
    Client client(options);
    const auto begin = Clock::now();
    const Error error = errorOf([&] { client.perform(get(server.url())); });
    EXPECT_EQ(error.kind(), ErrorKind::network);
    EXPECT_THAT(error.what(), testing::HasSubstr("too long"));
    EXPECT_LT(Clock::now() - begin, 5s);
}

TEST(HttpTest, BrokenOffAnswerIsAnError) {
    Server server([](const Received&) { return Reply{200, std::string(1000, 'x'), {}, 0ms, 500}; });
    Client client;
    EXPECT_EQ(errorOf([&] { client.perform(get(server.url())); }).kind(), ErrorKind::network);
}

TEST(HttpTest, NoAnswerAndNoHttpAreErrors) {
    Client client;
    {
        Server server(
            [](const Received&) { return Reply{200, "", {}, 0ms, std::string::npos, "220 smtp ready\r\n"}; });
        EXPECT_EQ(errorOf([&] { client.perform(get(server.url())); }).kind(), ErrorKind::malformedAnswer);
    }
    EXPECT_EQ(errorOf([&] { client.perform(get("http://127.0.0.1:1/")); }).kind(), ErrorKind::network);
    EXPECT_EQ(errorOf([&] { client.perform(get("ftp://127.0.0.1/")); }).kind(), ErrorKind::refused);
}

// Stops a request a fifth of a second after it was sent.
void expectStopped(const Server& server) {
    std::atomic<bool> stop{false};
    ClientOptions options;
    options.stop = &stop;
    Client client(options);
    std::thread other([&] {
        std::this_thread::sleep_for(200ms);
        stop = true;
    });
    const auto begin = Clock::now();
    EXPECT_EQ(errorOf([&] { client.perform(get(server.url())); }).kind(), ErrorKind::stopped);
    EXPECT_LT(Clock::now() - begin, 1s);
    other.join();
}

TEST(HttpTest, StopEndsWhatRuns) {
    const Server server([](const Received&) { return Reply{200, "late", {}, 30s}; });
    expectStopped(server);
}

TEST(HttpTest, StopEndsAWaitForABusyServer) {
    const Server server([](const Received&) { return Reply{503, "", {"Retry-After: 30"}}; });
    expectStopped(server);
}

} // namespace
} // namespace carddav_test

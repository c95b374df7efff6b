// Cards that are fetched, also when some of them cannot be had.

#include "frameworks/AddressBook/carddav/server_collection.h"

#include "tests/carddav/server.h"
#include "tests/carddav/support.h"

#include <set>

namespace carddav_test {
namespace {

using namespace addressbook::carddav;

constexpr const char* kPath = "/ida/book/";

std::string pathOf(int number) {
    return kPath + std::to_string(number) + ".vcf";
}

std::vector<std::string> paths(int count) {
    std::vector<std::string> result;
    for (int at = 0; at < count; ++at) {
        result.push_back(pathOf(at));
    }
    return result;
}

// The hrefs that a multiget asks for.
std::vector<std::string> asked(const Received& received) {
    std::vector<std::string> result;
    const std::string open = "<D:href>";
    for (std::size_t at = received.body.find(open); at != std::string::npos;
         at = received.body.find(open, at)) {
        at += open.size();
        result.push_back(received.body.substr(at, received.body.find('<', at) - at));
    }
    return result;
}

std::string cardAt(const std::string& path) {
    return response(path, "<D:getetag>\"e\"</D:getetag><C:address-data>BEGIN:VCARD\nUID:" + path +
                              "\nEND:VCARD\n</C:address-data>");
}

// All that are asked for.
Reply good(const Received& received) {
    std::string responses;
    for (const std::string& path : asked(received)) {
        responses += cardAt(path);
    }
    return multistatus(responses);
}

struct Outcome {
    std::map<std::string, Fetched> cards;
    int twice = 0;

    [[nodiscard]] int bad() const {
        return static_cast<int>(std::count_if(
            cards.begin(), cards.end(), [](const auto& entry) { return entry.second.error.has_value(); }));
    }
};

Outcome fetchFrom(Server& server, int count, CollectionOptions options = {}) {
    Client client;
    Outcome outcome;
    openCollection(client, server.url(kPath), options)->fetch(each(paths(count)), [&](Fetched&& fetched) {
        const std::string href = fetched.href;
        outcome.twice += outcome.cards.emplace(href, std::move(fetched)).second ? 0 : 1;
    });
    EXPECT_EQ(outcome.twice, 0);
    EXPECT_EQ(outcome.cards.size(), static_cast<std::size_t>(count));
    return outcome;
}

TEST(FetchTest, BatchesOverSeveralConnections) {
    Server server([](const Received& received) {
        Reply reply = good(received);
        reply.delay = std::chrono::milliseconds(20);
        return reply;
    });
    CollectionOptions options;
    options.batch = 10;
    const Outcome outcome = fetchFrom(server, 95, options);
    EXPECT_EQ(outcome.bad(), 0);
    const Fetched& first = outcome.cards.at(pathOf(0));
    EXPECT_EQ(first.etag, "\"e\"");
    EXPECT_EQ(first.card, "BEGIN:VCARD\r\nUID:/ida/book/0.vcf\r\nEND:VCARD\r\n");
    EXPECT_EQ(server.received().size(), 10U);
    EXPECT_EQ(server.mostAtOnce(), 4);
    EXPECT_EQ(server.connections(), 4);
}

TEST(FetchTest, MissingOnesAreTold) {
    Server server([](const Received&) {
        return multistatus(cardAt(pathOf(0)) + "<D:response><D:href>" + pathOf(1) +
                           "</D:href><D:status>HTTP/1.1 404 Not Found</D:status></D:response>" +
                           cardAt(pathOf(2)));
    });
    const Outcome outcome = fetchFrom(server, 3);
    EXPECT_EQ(outcome.bad(), 1);
    EXPECT_EQ(outcome.cards.at(pathOf(1)).error->kind(), ErrorKind::notFound);
}

TEST(FetchTest, HrefsThatComeOtherwiseAreThoseAskedFor) {
    Server server([](const Received& received) {
        return multistatus(cardAt(received.body.find("J%C3%B8rgen") != std::string::npos
                                      ? "http://other.example/ida/book/J%c3%b8rgen%40home.vcf"
                                      : "/nothing"));
    });
    Client client;
    std::vector<Fetched> got;
    openCollection(client, server.url(kPath))
        ->fetch(each(std::vector<std::string>{"/ida/book/J%C3%B8rgen@home.vcf"}),
                [&](Fetched&& fetched) { got.push_back(std::move(fetched)); });
    ASSERT_EQ(got.size(), 1U);
    EXPECT_FALSE(got[0].error);
    EXPECT_EQ(got[0].href, "/ida/book/J%C3%B8rgen@home.vcf");
}

TEST(FetchTest, WhatTheServerPassesOverIsAskedForAlone) {
    Server server([](const Received& received) {
        if (received.method == "GET") {
            return received.target == pathOf(3) ? Reply{404} : Reply{200, "BEGIN:VCARD\r\n", {"ETag: \"g\""}};
        }
        return multistatus(cardAt(pathOf(0)) + cardAt("/ida/book/never-asked.vcf") + cardAt(pathOf(0)));
    });
    const Outcome outcome = fetchFrom(server, 4);
    EXPECT_EQ(outcome.bad(), 1);
    EXPECT_EQ(outcome.cards.at(pathOf(1)).etag, "\"g\"");
    EXPECT_EQ(outcome.cards.at(pathOf(3)).error->kind(), ErrorKind::notFound);
}

TEST(FetchTest, CardThatIsNoXmlKeepsBackNoOther) {
    Server server([](const Received& received) {
        if (received.method == "GET") {
            return Reply{200, "BEGIN:VCARD\r\nNOTE:\x01\r\nEND:VCARD\r\n", {"ETag: \"g\""}};
        }
        std::string responses;
        for (const std::string& path : asked(received)) {
            responses += path == pathOf(42) ? response(path, "<C:address-data>NOTE:\x01</C:address-data>")
                                            : cardAt(path);
        }
        return multistatus(responses);
    });
    const Outcome outcome = fetchFrom(server, 100);
    EXPECT_EQ(outcome.bad(), 0);
    EXPECT_THAT(outcome.cards.at(pathOf(42)).card, testing::HasSubstr("\x01"));
    EXPECT_LT(server.received().size(), 30U);
}

TEST(FetchTest, CardThatTheServerStumblesOverKeepsBackNoOther) {
    for (const int status : {500, 413, 507, 400}) {
        Server server([status](const Received& received) {
            const bool bad =
                received.body.find(pathOf(42) + "<") != std::string::npos || received.target == pathOf(42);
            return bad ? Reply{status} : good(received);
        });
        const Outcome outcome = fetchFrom(server, 100);
        EXPECT_EQ(outcome.bad(), 1) << status;
        EXPECT_EQ(outcome.cards.at(pathOf(42)).error->status(), status);
    }
}

TEST(FetchTest, CardThatIsTooLargeKeepsBackNoOther) {
    Server server([](const Received& received) {
        if (received.method == "GET") {
            return Reply{200, std::string(5000, 'x')};
        }
        std::string responses;
        for (const std::string& path : asked(received)) {
            responses +=
                path == pathOf(5)
                    ? response(path, "<C:address-data>" + std::string(5000, 'x') + "</C:address-data>")
                    : cardAt(path);
        }
        return multistatus(responses);
    });
    CollectionOptions options;
    options.maxCard = 4000;
    const Outcome outcome = fetchFrom(server, 10, options);
    EXPECT_EQ(outcome.bad(), 1);
    EXPECT_EQ(outcome.cards.at(pathOf(5)).error->kind(), ErrorKind::tooLarge);
}

TEST(FetchTest, BrokenOffAnswerEndsTheFetch) {
    Server server([](const Received& received) {
        Reply reply = good(received);
        reply.cutAt = reply.body.size() / 2;
        return reply;
    });
    Client client;
    std::size_t got = 0;
    const Error error = errorOf([&] {
        openCollection(client, server.url(kPath))->fetch(each(paths(100)), [&](Fetched&& fetched) {
            EXPECT_FALSE(fetched.error);
            ++got;
        });
    });
    EXPECT_EQ(error.kind(), ErrorKind::network);
    EXPECT_GT(got, 20U) << "what came is told";
}

TEST(FetchTest, ServerWithoutMultigetIsAskedForEach) {
    Server server([](const Received& received) {
        return received.method == "REPORT" ? Reply{501} : Reply{200, "BEGIN:VCARD\n"};
    });
    EXPECT_EQ(fetchFrom(server, 20).bad(), 0);
    EXPECT_EQ(server.received().size(), 21U);
}

TEST(FetchTest, CollectionThatIsGoneIsNotManyCardsThatAreGone) {
    for (const auto& [status, kind] :
         {std::pair(404, ErrorKind::notFound), std::pair(403, ErrorKind::forbidden),
          std::pair(401, ErrorKind::unauthorised)}) {
        Server server([status = status](const Received&) { return Reply{status}; });
        Client client;
        const Error error = errorOf([&] {
            openCollection(client, server.url(kPath))->fetch(each(paths(10)), [](Fetched&&) {
                ADD_FAILURE();
            });
        });
        EXPECT_EQ(error.kind(), kind);
        EXPECT_EQ(server.received().size(), 1U);
    }
}

TEST(FetchTest, ServerThatAlwaysFailsIsGivenUp) {
    Server server([](const Received&) { return Reply{500}; });
    Client client;
    const Error error = errorOf(
        [&] { openCollection(client, server.url(kPath))->fetch(each(paths(10000)), [](Fetched&&) {}); });
    EXPECT_EQ(error.kind(), ErrorKind::serverError);
    EXPECT_LT(server.received().size(), 200U);
}

TEST(FetchTest, WhatTheCallbackThrowsEndsIt) {
    Server server(good);
    Client client;
    EXPECT_THROW(openCollection(client, server.url(kPath))
                     ->fetch(each(paths(10)), [](Fetched&&) { throw std::out_of_range("mine"); }),
                 std::out_of_range);
}

TEST(FetchTest, HrefsAreTakenAsTheyAreNeeded) {
    Server server(good);
    Client client;
    int taken = 0;
    int told = 0;
    int most = 0;
    const auto next = [&]() -> std::optional<std::string> {
        most = std::max(most, taken - told);
        return taken < 5000 ? std::optional(pathOf(taken++)) : std::nullopt;
    };
    openCollection(client, server.url(kPath))->fetch(next, [&](Fetched&&) { ++told; });
    EXPECT_EQ(told, 5000);
    EXPECT_LE(most, 500) << "memory holds a few batches";
}

} // namespace
} // namespace carddav_test

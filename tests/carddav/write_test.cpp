// Cards that are sent and removed, and how that fails.

#include "frameworks/AddressBook/carddav/server_collection.h"

#include "tests/carddav/server.h"
#include "tests/carddav/support.h"

namespace carddav_test {
namespace {

using namespace addressbook::carddav;
using namespace std::chrono_literals;

constexpr const char* kPath = "/ida/book/";
constexpr const char* kHref = "/ida/book/1.vcf";
constexpr const char* kCard = "BEGIN:VCARD\r\nEND:VCARD\r\n";

Written writeTo(Server& server, const Write& write) {
    Client client;
    std::vector<Written> all;
    openCollection(client, server.url(kPath))
        ->write(each(std::vector{write}), [&](const Write& made, Written&& written) {
            EXPECT_EQ(made.href, write.href);
            all.push_back(std::move(written));
        });
    EXPECT_EQ(all.size(), 1U);
    return all.empty() ? Written{} : all[0];
}

const Write kCreate{Write::Kind::create, kHref, "", kCard};
const Write kChange{Write::Kind::change, kHref, "\"1\"", kCard};
const Write kRemove{Write::Kind::remove, kHref, "\"1\"", ""};

TEST(WriteTest, CreateDoesNotOverwrite) {
    Server server([](const Received&) { return Reply{201, "", {"ETag: \"9\""}}; });
    const Written written = writeTo(server, kCreate);
    EXPECT_FALSE(written.error);
    EXPECT_EQ(written.etag, "\"9\"");
    EXPECT_EQ(written.href, kHref);
    const Received received = server.received().at(0);
    EXPECT_EQ(received.method, "PUT");
    EXPECT_EQ(received.target, kHref);
    EXPECT_EQ(received.header("if-none-match"), "*");
    EXPECT_EQ(received.header("content-type"), "text/vcard; charset=utf-8");
    EXPECT_EQ(received.body, kCard);
}

TEST(WriteTest, ChangeNamesWhatItChanges) {
    Server server([](const Received&) { return Reply{204, "", {"ETag: \"2\""}}; });
    EXPECT_EQ(writeTo(server, kChange).etag, "\"2\"");
    EXPECT_EQ(server.received().at(0).header("if-match"), "\"1\"");
    EXPECT_FALSE(server.received().at(0).has("if-none-match"));
}

TEST(WriteTest, ChangeWithoutEtagMakesNoNewCard) {
    Server server([](const Received&) { return Reply{204}; });
    Write write = kChange;
    write.etag = "";
    writeTo(server, write);
    EXPECT_EQ(server.received().at(0).header("if-match"), "*");
}

TEST(WriteTest, EtagWithoutQuotesIsSentAsItCame) {
    Server server(
        [](const Received& received) { return Reply{received.header("if-match") == "abc" ? 204 : 412}; });
    Write write = kChange;
    write.etag = "abc";
    EXPECT_FALSE(writeTo(server, write).error);
}

TEST(WriteTest, WithoutAStrongEtagTheCardIsToBeFetchedAgain) {
    for (const char* header : {"ETag: W/\"2\"", "X-Nothing: 1"}) {
        Server server([=](const Received&) { return Reply{204, "", {header}}; });
        const Written written = writeTo(server, kChange);
        EXPECT_FALSE(written.error);
        EXPECT_EQ(written.etag, "");
    }
}

TEST(WriteTest, WeakEtagIsTriedWithoutItsMark) {
    Server server(
        [](const Received& received) { return Reply{received.header("if-match") == "\"1\"" ? 204 : 412}; });
    Write write = kChange;
    write.etag = "W/\"1\"";
    EXPECT_FALSE(writeTo(server, write).error);
    write.etag = "W/\"2\"";
    EXPECT_EQ(writeTo(server, write).error->kind(), ErrorKind::preconditionFailed);
    EXPECT_EQ(server.received().size(), 4U);
}

TEST(WriteTest, NewCardMayBeElsewhere) {
    Server server([](const Received&) { return Reply{201, "", {"Location: /ida/book/J%c3%b8.vcf"}}; });
    EXPECT_EQ(writeTo(server, kCreate).href, "/ida/book/J%C3%B8.vcf");
    Server other(
        [](const Received&) { return Reply{201, "", {"Location: http://elsewhere.example/x.vcf"}}; });
    EXPECT_EQ(writeTo(other, kCreate).href, kHref);
}

TEST(WriteTest, RemovedByOthersIsRemoved) {
    for (const int status : {204, 200, 404, 410}) {
        Server server([=](const Received&) { return Reply{status}; });
        EXPECT_FALSE(writeTo(server, kRemove).error) << status;
        EXPECT_EQ(server.received().at(0).method, "DELETE");
        EXPECT_EQ(server.received().at(0).header("if-match"), "\"1\"");
    }
}

TEST(WriteTest, EachRefusalIsToldWithItsCard) {
    for (const auto& [status, kind] :
         {std::pair(403, ErrorKind::forbidden), std::pair(404, ErrorKind::notFound),
          std::pair(409, ErrorKind::conflict), std::pair(412, ErrorKind::preconditionFailed),
          std::pair(413, ErrorKind::tooLarge), std::pair(415, ErrorKind::rejected),
          std::pair(423, ErrorKind::locked), std::pair(500, ErrorKind::serverError),
          std::pair(507, ErrorKind::full)}) {
        Server server([status = status](const Received&) { return Reply{status}; });
        const Written written = writeTo(server, kChange);
        ASSERT_TRUE(written.error) << status;
        EXPECT_EQ(written.error->kind(), kind) << status;
    }
}

TEST(WriteTest, UidThatIsThereAlreadyIsToldWithItsCard) {
    Server server([](const Received&) {
        return Reply{409, "<error xmlns='DAV:'><no-uid-conflict xmlns='urn:ietf:params:xml:ns:carddav'>"
                          "<href xmlns='DAV:'>/ida/book/other.vcf</href></no-uid-conflict></error>"};
    });
    const Written written = writeTo(server, kCreate);
    ASSERT_TRUE(written.error);
    EXPECT_EQ(written.error->kind(), ErrorKind::uidConflict);
    EXPECT_EQ(written.error->href(), "/ida/book/other.vcf");
}

std::vector<Write> many(int count) {
    std::vector<Write> writes;
    for (int at = 0; at < count; ++at) {
        writes.push_back({Write::Kind::create, kPath + std::to_string(at) + ".vcf", "", kCard});
    }
    return writes;
}

TEST(WriteTest, SeveralAtOnceAndOneBadCardStopsNoOther) {
    Server server([](const Received& received) {
        Reply reply{received.target == "/ida/book/7.vcf" ? 400 : 201};
        reply.delay = 5ms;
        return reply;
    });
    Client client;
    int good = 0;
    int bad = 0;
    openCollection(client, server.url(kPath))->write(each(many(50)), [&](const Write&, Written&& written) {
        ++(written.error ? bad : good);
    });
    EXPECT_EQ(good, 49);
    EXPECT_EQ(bad, 1);
    EXPECT_EQ(server.received().size(), 50U);
    EXPECT_EQ(server.connections(), 4);
    EXPECT_GT(server.mostAtOnce(), 1);
}

TEST(WriteTest, WhatConcernsTheServerEndsIt) {
    Server server([](const Received&) { return Reply{401}; });
    Client client({}, ida());
    int told = 0;
    const Error error = errorOf([&] {
        openCollection(client, server.url(kPath))
            ->write(each(many(50)), [&](const Write&, Written&& written) {
                EXPECT_EQ(written.error->kind(), ErrorKind::unauthorised);
                ++told;
            });
    });
    EXPECT_EQ(error.kind(), ErrorKind::unauthorised);
    EXPECT_LE(told, 8) << "no more than were on their way";
    EXPECT_GE(told, 1);
}

TEST(WriteTest, LostAnswerIsAnErrorOfTheNetwork) {
    Server server([](const Received&) { return Reply{201, "lost answer", {}, 0ms, 3}; });
    Client client;
    std::vector<Written> all;
    const Error error = errorOf([&] {
        openCollection(client, server.url(kPath))->write(each(many(1)), [&](const Write&, Written&& written) {
            all.push_back(std::move(written));
        });
    });
    EXPECT_EQ(error.kind(), ErrorKind::network);
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].error->kind(), ErrorKind::network);
}

TEST(WriteTest, BusyServerGetsItLater) {
    int count = 0;
    Server server([&](const Received& received) {
        EXPECT_EQ(received.body, kCard);
        return ++count == 1 ? Reply{429, "", {"Retry-After: 1"}} : Reply{201};
    });
    EXPECT_FALSE(writeTo(server, kCreate).error);
    EXPECT_EQ(count, 2);
}

} // namespace
} // namespace carddav_test

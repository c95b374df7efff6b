// What changed since the last time, with sync tokens and without.

#include "frameworks/AddressBook/carddav/server_collection.h"

#include "tests/carddav/server.h"
#include "tests/carddav/support.h"

namespace carddav_test {
namespace {

using namespace addressbook::carddav;

constexpr const char* kPath = "/ida/book/";

// What the book tells of itself.
std::string book(const std::string& properties) {
    return response(kPath, "<D:resourcetype><D:collection/><C:addressbook/></D:resourcetype>" + properties);
}
constexpr const char* kHasReport =
    "<D:supported-report-set><D:supported-report><D:report><D:sync-collection/>"
    "</D:report></D:supported-report></D:supported-report-set>";

std::string card(const std::string& href, const std::string& etag) {
    return response(href, "<D:getetag>" + etag + "</D:getetag>");
}

std::string status(const std::string& href, int code) {
    return "<D:response><D:href>" + href + "</D:href><D:status>HTTP/1.1 " + std::to_string(code) +
           " Whatever</D:status></D:response>";
}

Reply page(const std::string& responses, const std::string& token) {
    return multistatus(responses + "<D:sync-token>" + token + "</D:sync-token>");
}

Reply forgotten(int code) {
    return {code, R"(<?xml version="1.0"?><D:error xmlns:D="DAV:"><D:valid-sync-token/></D:error>)"};
}

struct Told {
    Changes changes;
    std::vector<Change> list;

    // "path etag", or "path -" for one that was removed, in one text.
    [[nodiscard]] std::string text() const {
        std::string result;
        for (const Change& change : list) {
            result += change.href.substr(change.href.rfind('/') + 1) + ' ' +
                      (change.removed ? "-" : change.etag) + ';';
        }
        return result;
    }
};

Told changesOf(Server& server, const std::string& state) {
    Client client;
    Told told;
    const auto collection = openCollection(client, server.url(kPath));
    told.changes =
        collection->changes(state, [&](Change&& change) { told.list.push_back(std::move(change)); });
    return told;
}

TEST(SyncTokenTest, AsksForEachChangeTwice) {
    std::vector<std::string> asked;
    int now = 1;
    Server server([&](const Received& received) {
        if (received.method == "PROPFIND") {
            return multistatus(book(kHasReport));
        }
        const std::size_t from = received.body.find("<D:sync-token>") + 14;
        asked.push_back(received.body.substr(from, received.body.find('<', from) - from));
        return page("", 't' + std::to_string(now));
    });
    std::string state;
    const auto ask = [&] { state = changesOf(server, state).changes.state; };
    ask();
    now = 2;
    ask();
    const std::string afterChange = state;
    ask();
    EXPECT_NE(state, afterChange);
    const std::string rest = state;
    ask();
    EXPECT_EQ(state, rest);
    EXPECT_EQ(asked, (std::vector<std::string>{"", "t1", "t1", "t2", "t2"}));
}

TEST(SyncTokenTest, TellsEverythingThenWhatChanged) {
    Server server([](const Received& received) {
        if (received.method == "PROPFIND") {
            return multistatus(book(kHasReport));
        }
        const bool first = received.body.find("<D:sync-token></D:sync-token>") != std::string::npos;
        return first ? page(card("/ida/book/1.vcf", "\"1\"") + status(kPath, 200), "http://a/t&amp;1")
                     : page(status("/ida/book/1.vcf", 404) + card("/ida/book/2.vcf", "\"2\""), "t2");
    });
    const Told first = changesOf(server, "");
    EXPECT_EQ(first.text(), "1.vcf \"1\";");
    EXPECT_EQ(first.changes.progress, Progress::complete);
    const Told second = changesOf(server, first.changes.state);
    EXPECT_EQ(second.text(), "1.vcf -;2.vcf \"2\";");
    EXPECT_EQ(second.changes.progress, Progress::complete);
    EXPECT_NE(second.changes.state, first.changes.state);
    const std::vector<Received> received = server.received();
    ASSERT_EQ(received.size(), 3U) << "with a state, one request is enough";
    EXPECT_EQ(received[2].method, "REPORT");
    EXPECT_EQ(received[2].header("depth"), "0");
    EXPECT_THAT(received[2].body, testing::HasSubstr("<D:sync-token>http://a/t&amp;1</D:sync-token>"));
    EXPECT_THAT(received[2].body, testing::HasSubstr("<D:sync-level>1</D:sync-level>"));
}

TEST(SyncTokenTest, TruncatedAnswerGoesOn) {
    Server server([](const Received& received) {
        return received.body.find(">t1<") != std::string::npos
                   ? page(card("1.vcf", "a") + status(kPath, 507), "t2")
                   : page(card("2.vcf", "b"), "t3");
    });
    const Told first = changesOf(server, "sync-token t1");
    EXPECT_EQ(first.changes.progress, Progress::more);
    EXPECT_EQ(first.text(), "1.vcf a;");
    const Told second = changesOf(server, first.changes.state);
    EXPECT_EQ(second.changes.progress, Progress::complete);
    EXPECT_EQ(second.text(), "2.vcf b;");
}

TEST(SyncTokenTest, TruncatedAnswerThatNeverGoesOnIsAnError) {
    Server server([](const Received&) { return page(status(kPath, 507), "t1"); });
    EXPECT_EQ(errorOf([&] { changesOf(server, "sync-token t1"); }).kind(), ErrorKind::malformedAnswer);
}

TEST(SyncTokenTest, ForgottenTokenBeginsAnew) {
    for (const int code : {403, 409, 400, 412, 500}) {
        Server server(
            [=](const Received&) { return code != 403 && code != 409 ? Reply{code} : forgotten(code); });
        const Told told = changesOf(server, "sync-token old");
        EXPECT_EQ(told.changes.progress, Progress::beginAnew) << code;
        EXPECT_EQ(told.changes.state, "");
        EXPECT_TRUE(told.list.empty());
    }
}

TEST(SyncTokenTest, WhatIsNoForgottenTokenIsAnError) {
    for (const auto& [code, kind] :
         {std::pair(403, ErrorKind::forbidden), std::pair(404, ErrorKind::notFound),
          std::pair(502, ErrorKind::serverError)}) {
        Server server([code = code](const Received&) { return Reply{code}; });
        EXPECT_EQ(errorOf([&] { changesOf(server, "sync-token t"); }).kind(), kind);
    }
}

TEST(SyncTokenTest, ServerMayTakeItsTimeToList) {
    Server server([](const Received&) {
        Reply reply = page(card("1.vcf", "a"), "t2");
        // libcurl averages over five seconds, in which the request itself went out.
        reply.delay = std::chrono::milliseconds(7000);
        return reply;
    });
    ClientOptions options;
    options.stallTimeout = std::chrono::seconds(1);
    Client client(options);
    int told = 0;
    openCollection(client, server.url(kPath))->changes("sync-token t1", [&](Change&&) { ++told; });
    EXPECT_EQ(told, 1);
}

TEST(SyncTokenTest, AnswerWithoutANewTokenIsAnError) {
    Server server([](const Received&) { return multistatus(card("1.vcf", "a")); });
    EXPECT_EQ(errorOf([&] { changesOf(server, "sync-token t"); }).kind(), ErrorKind::malformedAnswer);
}

TEST(SyncTokenTest, BrokenAnswersAreErrors) {
    {
        Server server([](const Received&) { return Reply{207, "<multistatus xmlns='DAV:'><response>"}; });
        EXPECT_EQ(errorOf([&] { changesOf(server, "sync-token t"); }).kind(), ErrorKind::malformedAnswer);
    }
    {
        Server server([](const Received&) {
            return Reply{207, "<!DOCTYPE a [<!ENTITY b \"c\">]><multistatus xmlns='DAV:'>&b;</multistatus>"};
        });
        EXPECT_EQ(errorOf([&] { changesOf(server, "sync-token t"); }).kind(), ErrorKind::malformedAnswer);
    }
    {
        Server server([](const Received&) { return Reply{200, "<html>Welcome</html>"}; });
        EXPECT_EQ(errorOf([&] { changesOf(server, "sync-token t"); }).kind(), ErrorKind::malformedAnswer);
    }
    {
        Server server([](const Received&) { return Reply{204}; });
        EXPECT_EQ(errorOf([&] { changesOf(server, "sync-token t"); }).kind(), ErrorKind::malformedAnswer);
    }
}

TEST(SyncTokenTest, HrefsAreInOneForm) {
    Server server([](const Received&) {
        return page(card("http://elsewhere/ida/book/J%c3%b8rgen.vcf", "a") +
                        card("/ida/book/a%40b.vcf", "b") + card("/ida/book/sub/", "c") +
                        card("/ida/book", "d"),
                    "t2");
    });
    const Told told = changesOf(server, "sync-token t1");
    ASSERT_EQ(told.list.size(), 2U);
    EXPECT_EQ(told.list[0].href, "/ida/book/J%C3%B8rgen.vcf");
    EXPECT_EQ(told.list[1].href, "/ida/book/a@b.vcf");
}

TEST(SyncTokenTest, CardWithoutEtagOrWithAFaultIsThere) {
    Server server([](const Received&) {
        return page(response("1.vcf", "") + status("2.vcf", 403) + card("3.vcf", "a&#13;&#10;X: y"), "t2");
    });
    EXPECT_EQ(changesOf(server, "sync-token t1").text(), "1.vcf ;2.vcf ;3.vcf ;");
}

TEST(SyncTokenTest, ServerThatOnlyClaimsTheReportIsAskedForAList) {
    Server server([](const Received& received) {
        if (received.method == "REPORT") {
            return Reply{501};
        }
        return received.header("depth") == "0" ? multistatus(book(kHasReport))
                                               : multistatus(book("") + card("/ida/book/1.vcf", "a"));
    });
    const Told told = changesOf(server, "");
    EXPECT_EQ(told.text(), "1.vcf a;");
    EXPECT_EQ(told.changes.progress, Progress::complete);
}

TEST(CtagTest, UnchangedTagAsksNoMore) {
    std::string tag = "c1";
    Server server([&](const Received& received) {
        return received.header("depth") == "0"
                   ? multistatus(book("<S:getctag>" + tag + "</S:getctag>"))
                   : multistatus(book("") + card("/ida/book/1.vcf", "a") + status("/ida/book/2.vcf", 404));
    });
    const Told first = changesOf(server, "");
    EXPECT_EQ(first.text(), "1.vcf a;");
    EXPECT_EQ(first.changes.progress, Progress::complete);
    const Told second = changesOf(server, first.changes.state);
    EXPECT_EQ(second.text(), "");
    EXPECT_EQ(second.changes.progress, Progress::complete);
    EXPECT_EQ(second.changes.state, first.changes.state);
    EXPECT_EQ(server.received().size(), 3U);
    tag = "c2";
    const Told third = changesOf(server, first.changes.state);
    EXPECT_EQ(third.changes.progress, Progress::beginAnew);
    EXPECT_TRUE(third.list.empty());
}

TEST(CtagTest, WithoutATagEverythingIsToldEachTime) {
    Server server([&](const Received& received) {
        return received.header("depth") == "0" ? multistatus(book(""))
                                               : multistatus(book("") + card("/ida/book/1.vcf", "a"));
    });
    const Told first = changesOf(server, "");
    EXPECT_EQ(first.changes.progress, Progress::complete);
    EXPECT_FALSE(first.changes.state.empty());
    EXPECT_EQ(changesOf(server, first.changes.state).changes.progress, Progress::beginAnew);
}

TEST(CtagTest, CollectionThatIsGoneIsNotAnEmptyOne) {
    Server server([](const Received&) { return Reply{404}; });
    EXPECT_EQ(errorOf([&] { changesOf(server, ""); }).kind(), ErrorKind::notFound);
    EXPECT_EQ(errorOf([&] { changesOf(server, "ctag c1"); }).kind(), ErrorKind::notFound);
}

TEST(CollectionTest, HrefForAUidIsAlwaysTheSameAndHarmless) {
    Client client;
    const auto collection = openCollection(client, "https://a.example/ida/b%6Fok");
    EXPECT_EQ(collection->hrefFor("0F-aa"), "/ida/book/0F-aa.vcf");
    const std::string odd = collection->hrefFor("urn:uuid:../../\xC3\xB8");
    EXPECT_EQ(odd, collection->hrefFor("urn:uuid:../../\xC3\xB8"));
    EXPECT_NE(odd, collection->hrefFor("urn:uuid:../../\xC3\xA5"));
    EXPECT_EQ(odd.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-/.", 0), std::string::npos) << odd;
    EXPECT_EQ(odd.rfind('/'), std::string("/ida/book").size());
    EXPECT_LT(collection->hrefFor(std::string(5000, 'x')).size(), 200U);
    EXPECT_NE(collection->hrefFor(""), "/ida/book/.vcf");
    EXPECT_EQ(errorOf([&] { openCollection(client, "no address"); }).kind(), ErrorKind::refused);
}

} // namespace
} // namespace carddav_test

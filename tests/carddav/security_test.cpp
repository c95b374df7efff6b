// Whom the password goes to, and whom it does not.

#include "tests/carddav/server.h"
#include "tests/carddav/support.h"
#include "tests/support/temporary_folder.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace carddav_test {
namespace {

using namespace addressbook::carddav;

Request propfindOf(const std::string& url) {
    return {"PROPFIND", url, {"Depth: 0"}, "<a/>", {}, 1024UL * 1024};
}

// Answers only those who say who they are with Basic.
Reply basicOnly(const Received& received) {
    return received.has("authorization") ? Reply{200, "hello"}
                                         : Reply{401, "", {"WWW-Authenticate: Basic realm=\"books\""}};
}

TEST(PasswordTest, BasicIsSentAtOnceAfterTheFirstTime) {
    Server server(basicOnly);
    Client client({}, ida());
    client.trust(server.url());
    EXPECT_EQ(client.perform(propfindOf(server.url())).body, "hello");
    EXPECT_EQ(client.perform(propfindOf(server.url())).body, "hello");
    const std::vector<Received> received = server.received();
    ASSERT_EQ(received.size(), 3U);
    EXPECT_FALSE(received[0].has("authorization"));
    EXPECT_EQ(received[1].header("authorization"), kBasic);
    EXPECT_EQ(received[1].body, "<a/>");
    EXPECT_EQ(received[2].header("authorization"), kBasic);
}

TEST(PasswordTest, IsAskedForOnce) {
    Server server(basicOnly);
    int count = 0;
    Credentials credentials = ida();
    credentials.password = [&] {
        ++count;
        return Secret(std::string("s3cret"));
    };
    Client client({}, std::move(credentials));
    client.trust(server.url());
    client.perform(propfindOf(server.url()));
    client.perform(propfindOf(server.url()));
    EXPECT_EQ(count, 1);
}

TEST(PasswordTest, WrongOneIsUnauthorised) {
    Server server(
        [](const Received&) { return Reply{401, "", {"WWW-Authenticate: Basic realm=\"books\""}}; });
    Client client({}, ida("wrong"));
    client.trust(server.url());
    const Error error = errorOf([&] { client.perform(propfindOf(server.url())); });
    EXPECT_EQ(error.kind(), ErrorKind::unauthorised);
    EXPECT_THAT(error.what(), testing::Not(testing::HasSubstr("wrong")));
    EXPECT_LE(server.received().size(), 3U);
}

TEST(PasswordTest, NobodyToAskForOne) {
    Server server(basicOnly);
    Client client;
    const Error error = errorOf([&] { client.perform(propfindOf(server.url())); });
    EXPECT_EQ(error.kind(), ErrorKind::unauthorised);
    EXPECT_THAT(error.what(), testing::HasSubstr("asks for a user name"));
}

TEST(PasswordTest, DigestNeverSendsThePassword) {
    Server server([](const Received& received) {
        const std::string sent = received.header("authorization");
        return sent.starts_with("Digest ") && sent.find("username=\"ida\"") != std::string::npos
                   ? Reply{200, "hello"}
                   : Reply{401,
                           "",
                           {"WWW-Authenticate: Basic realm=\"b\"",
                            "WWW-Authenticate: Digest realm=\"b\", nonce=\"abc\", qop=\"auth\""}};
    });
    Client client({}, ida());
    client.trust(server.url());
    EXPECT_EQ(client.perform(propfindOf(server.url())).body, "hello");
    EXPECT_EQ(client.perform(propfindOf(server.url())).body, "hello");
    const std::vector<Received> received = server.received();
    EXPECT_EQ(received.size(), 3U) << "a nonce serves several requests";
    for (const Received& request : received) {
        EXPECT_FALSE(request.header("authorization").starts_with("Basic"));
    }
    EXPECT_EQ(received.back().body, "<a/>");
}

TEST(PasswordTest, BearerIsRenewedOnce) {
    Server server([](const Received& received) {
        return received.header("authorization") == "Bearer fresh" ? Reply{200, "hello"} : Reply{401};
    });
    std::vector<bool> asked;
    Credentials credentials;
    credentials.bearer = [&](bool renew) {
        asked.push_back(renew);
        return Secret(std::string(renew ? "fresh" : "stale"));
    };
    Client client({}, std::move(credentials));
    client.trust(server.url());
    EXPECT_EQ(client.perform(propfindOf(server.url())).body, "hello");
    EXPECT_EQ(asked, (std::vector{false, true}));
    EXPECT_EQ(server.received().at(0).header("authorization"), "Bearer stale");
}

TEST(PasswordTest, HostsThatAreNotTrustedDoNotGetIt) {
    Server server(basicOnly);
    Client client({}, ida());
    client.trust(server.url("/", "localhost"));
    const Error error = errorOf([&] { client.perform(propfindOf(server.url())); });
    EXPECT_EQ(error.kind(), ErrorKind::untrustedHost);
    EXPECT_EQ(error.href(), server.url());
    for (const Received& request : server.received()) {
        EXPECT_FALSE(request.has("authorization"));
    }
}

TEST(SecretTest, WipesTheTextItTook) {
    std::string text = "a password that is longer than a short string";
    const char* bytes = text.data();
    const Secret secret(std::move(text));
    EXPECT_STREQ(secret.text(), "a password that is longer than a short string");
    EXPECT_EQ(bytes[0], '\0'); // NOLINT: the string still has its memory
    EXPECT_EQ(bytes[20], '\0');
}

TEST(RedirectTest, KeepsMethodAndBody) {
    for (const int status : {301, 302, 307, 308}) {
        Server server([=](const Received& received) {
            return received.target == "/new/" ? Reply{200, "here"} : Reply{status, "", {"Location: /new/"}};
        });
        Client client({}, ida());
        client.trust(server.url());
        const Answer answer = client.perform(propfindOf(server.url("/old/")));
        EXPECT_EQ(answer.body, "here");
        EXPECT_EQ(answer.url, server.url("/new/"));
        const Received last = server.received().back();
        EXPECT_EQ(last.method, "PROPFIND") << status;
        EXPECT_EQ(last.body, "<a/>");
        EXPECT_EQ(last.header("depth"), "0");
    }
}

TEST(RedirectTest, AnotherHostGetsNoPassword) {
    Server other([](const Received&) { return Reply{200, "here"}; });
    Server server([&](const Received& received) {
        return received.has("authorization") ? Reply{302, "", {"Location: " + other.url("/x", "localhost")}}
                                             : Reply{401, "", {"WWW-Authenticate: Basic realm=\"books\""}};
    });
    Client client({}, ida());
    client.trust(server.url());
    EXPECT_EQ(client.perform(propfindOf(server.url())).body, "here");
    EXPECT_EQ(server.received().back().header("authorization"), kBasic);
    EXPECT_FALSE(other.received().at(0).has("authorization"));
}

TEST(RedirectTest, AnotherPortIsAnotherHost) {
    Server other(basicOnly);
    Server server([&](const Received&) { return Reply{307, "", {"Location: " + other.url("/x")}}; });
    Client client({}, ida());
    client.trust(server.url());
    const Error error = errorOf([&] { client.perform(propfindOf(server.url())); });
    EXPECT_EQ(error.kind(), ErrorKind::untrustedHost);
    EXPECT_EQ(error.href(), other.url("/x"));
    EXPECT_FALSE(other.received().at(0).has("authorization"));
}

TEST(RedirectTest, EndsSomeTime) {
    Server server(
        [](const Received& received) { return Reply{301, "", {"Location: " + received.target + "x"}}; });
    Client client;
    EXPECT_EQ(errorOf([&] { client.perform(propfindOf(server.url())); }).kind(), ErrorKind::refused);
    EXPECT_EQ(server.received().size(), 6U);
}

TEST(RedirectTest, ToNowhereIsMalformed) {
    Server server([](const Received&) { return Reply{301, "", {"Location: javascript:alert(1)"}}; });
    Client client;
    EXPECT_EQ(errorOf([&] { client.perform(propfindOf(server.url())); }).kind(), ErrorKind::malformedAnswer);
}

TEST(RedirectTest, NotFromHttpsToHttp) {
    Certificate certificate;
    support::TemporaryFolder folder;
    std::ofstream(folder.path() / "ca.pem") << certificate.pem();
    Server plain([](const Received&) { return Reply{200, "here"}; });
    Server server([&](const Received&) { return Reply{301, "", {"Location: " + plain.url()}}; },
                  &certificate);
    ClientOptions options;
    options.caFile = folder.path() / "ca.pem";
    options.allowHttp = true;
    Client client(options, ida());
    client.trust(server.url());
    EXPECT_EQ(errorOf([&] { client.perform(propfindOf(server.url())); }).kind(), ErrorKind::refused);
    EXPECT_TRUE(plain.received().empty());
}

TEST(TlsTest, SelfSignedCertificateIsRefusedWithASentence) {
    Certificate certificate;
    Server server([](const Received&) { return Reply{200, "here"}; }, &certificate);
    Client client({}, ida());
    client.trust(server.url());
    const Error error = errorOf([&] { client.perform(propfindOf(server.url())); });
    EXPECT_EQ(error.kind(), ErrorKind::tls);
    EXPECT_THAT(error.what(), testing::HasSubstr("certificate of 127.0.0.1 is self-signed"));
    EXPECT_TRUE(server.received().empty());
}

TEST(TlsTest, AuthorityOfAFileIsTrusted) {
    Certificate certificate;
    support::TemporaryFolder folder;
    std::ofstream(folder.path() / "ca.pem") << certificate.pem();
    Server server(basicOnly, &certificate);
    ClientOptions options;
    options.caFile = folder.path() / "ca.pem";
    Client client(options, ida());
    client.trust(server.url("/", "localhost"));
    EXPECT_EQ(client.perform(propfindOf(server.url("/", "localhost"))).body, "hello");
    const Error error =
        errorOf([&] { client.perform(propfindOf("https://127.0.0.2:" + std::to_string(server.port()))); });
    EXPECT_TRUE(error.kind() == ErrorKind::tls || error.kind() == ErrorKind::network) << error.what();
}

TEST(TlsTest, FileThatIsNoCertificateIsTold) {
    Certificate certificate;
    Server server([](const Received&) { return Reply{}; }, &certificate);
    ClientOptions options;
    options.caFile = "/no/such/file.pem";
    Client client(options);
    const Error error = errorOf([&] { client.perform(propfindOf(server.url())); });
    EXPECT_EQ(error.kind(), ErrorKind::tls);
    EXPECT_THAT(error.what(), testing::HasSubstr("/no/such/file.pem"));
}

TEST(PlainHttpTest, OnlyToThisMachine) {
    Client client;
    const Error error = errorOf([&] { client.perform(propfindOf("http://dav.example.invalid/")); });
    EXPECT_EQ(error.kind(), ErrorKind::refused);
    EXPECT_THAT(error.what(), testing::HasSubstr("plain http to dav.example.invalid is refused"));
    ClientOptions options;
    options.allowHttp = true;
    Client allowing(options);
    EXPECT_EQ(errorOf([&] { allowing.perform(propfindOf("http://dav.example.invalid/")); }).kind(),
              ErrorKind::network);
}

TEST(PlainHttpTest, NotByARedirectEither) {
    Server server([](const Received&) { return Reply{301, "", {"Location: http://dav.example.invalid/"}}; });
    Client client({}, ida());
    client.trust(server.url());
    EXPECT_EQ(errorOf([&] { client.perform(propfindOf(server.url())); }).kind(), ErrorKind::refused);
}

} // namespace
} // namespace carddav_test

// Addresses and hrefs.

#include "frameworks/AddressBook/carddav/url.h"

#include <gtest/gtest.h>

namespace carddav_test {
namespace {

using namespace addressbook::carddav;

TEST(UrlTest, Parts) {
    const auto url = parseUrl("HTTPS://Dav.Example.COM/a/b?c");
    ASSERT_TRUE(url);
    EXPECT_EQ(url->scheme, "https");
    EXPECT_EQ(url->host, "dav.example.com");
    EXPECT_EQ(url->port, 443);
    EXPECT_EQ(url->path, "/a/b?c");
    EXPECT_EQ(url->origin(), "https://dav.example.com");
    EXPECT_EQ(parseUrl("http://[::1]:8080")->origin(), "http://[::1]:8080");
    EXPECT_EQ(parseUrl("http://a:443/")->origin(), "http://a:443");
}

TEST(UrlTest, OthersAreNone) {
    for (const char* text : {"", "/path", "ftp://a/", "file:///etc/passwd", "https://", "https://ida:x@a/",
                             "https://ida@a/", "https://a:99999/", "https://a b/"}) {
        EXPECT_FALSE(parseUrl(text)) << text;
    }
}

TEST(UrlTest, Loopback) {
    for (const char* text :
         {"http://localhost/", "http://127.0.0.1/", "http://127.9.9.9:1/", "http://[::1]/"}) {
        EXPECT_TRUE(parseUrl(text)->isLoopback()) << text;
    }
    for (const char* text : {"http://localhost.example.com/", "http://127.example.com/", "http://128.0.0.1/",
                             "http://[::2]/", "http://127.0.0.1.example.com/"}) {
        EXPECT_FALSE(parseUrl(text)->isLoopback()) << text;
    }
}

TEST(UrlTest, Resolves) {
    const std::string base = "https://a.example/x/y/";
    EXPECT_EQ(resolve(base, "/z"), "https://a.example/z");
    EXPECT_EQ(resolve(base, "z"), "https://a.example/x/y/z");
    EXPECT_EQ(resolve(base, "../z"), "https://a.example/x/z");
    EXPECT_EQ(resolve(base, "https://b.example:8443/z"), "https://b.example:8443/z");
    EXPECT_EQ(resolve(base, "//b.example/z"), "https://b.example/z");
    EXPECT_EQ(resolve(base, ""), std::nullopt);
    EXPECT_EQ(resolve(base, "mailto:ida@example.com"), std::nullopt);
}

TEST(HrefTest, OneFormForAll) {
    const std::string base = "https://a.example/ida/book/";
    const std::string expected = "/ida/book/J%C3%B8rgen%20%28home%29@x.vcf";
    for (const char* text :
         {"/ida/book/J%C3%B8rgen%20%28home%29@x.vcf", "/ida/book/J%c3%b8rgen%20(home)%40x.vcf",
          "/ida/book/J\xC3\xB8rgen (home)@x.vcf", "https://a.example/ida/book/J%C3%B8rgen%20(home)@x.vcf",
          "https://A.example:443/ida/book/J%C3%B8rgen%20(home)@x%2evcf", "J%C3%B8rgen%20(home)%40x.vcf",
          "/ida/./book/../book/J%C3%B8rgen%20(home)%40x.vcf", "  /ida/book/J%C3%B8rgen%20(home)%40x.vcf\n"}) {
        EXPECT_EQ(normalHref(base, text), expected) << text;
        EXPECT_EQ(normalHref(base, *normalHref(base, text)), expected);
    }
}

TEST(HrefTest, WhatIsDifferentStaysSo) {
    const std::string base = "https://a.example/";
    EXPECT_EQ(normalHref(base, "/a%2Fb"), "/a%2Fb");
    EXPECT_EQ(normalHref(base, "/a%2fb"), "/a%2Fb");
    EXPECT_EQ(normalHref(base, "/a%252Fb"), "/a%252Fb");
    EXPECT_EQ(normalHref(base, "/a+b"), "/a%2Bb");
    EXPECT_NE(normalHref(base, "/A"), normalHref(base, "/a"));
    EXPECT_EQ(normalHref(base, "/100%"), "/100%25");
    EXPECT_EQ(normalHref(base, "/a%zzb"), "/a%25zzb");
    EXPECT_EQ(normalHref(base, ""), std::nullopt);
    EXPECT_EQ(normalHref(base, "mailto:ida"), std::nullopt);
}

} // namespace
} // namespace carddav_test

// Messages of name servers.

#include "frameworks/AddressBook/carddav/dns.h"

#include <gtest/gtest.h>

namespace carddav_test {
namespace {

using namespace addressbook::carddav;

std::string number(int value) {
    return {static_cast<char>(value >> 8), static_cast<char>(value & 255)};
}

// A name in the form of a message: each part behind its length.
std::string name(const std::string& text) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('.', at), text.size());
        result += static_cast<char>(end - at) + text.substr(at, end - at);
        at = end + 1;
    }
    return result + '\0';
}

// A record whose name is that of the question.
std::string record(int type, const std::string& data) {
    return std::string("\xC0\x0C", 2) + number(type) + number(1) + std::string("\0\0\x0E\x10", 4) +
           number(static_cast<int>(data.size())) + data;
}

// An answer with one question.
std::string message(int type, const std::vector<std::string>& records) {
    std::string result = number(77) + number(0x8180) + number(1) + number(static_cast<int>(records.size())) +
                         number(0) + number(0) + name("_carddavs._tcp.example.com") + number(type) +
                         number(1);
    for (const std::string& one : records) {
        result += one;
    }
    return result;
}

constexpr int kSrv = 33;
constexpr int kTxt = 16;

std::string service(int priority, int weight, int port, const std::string& host) {
    return record(kSrv, number(priority) + number(weight) + number(port) + name(host));
}

TEST(DnsTest, ServicesComeInTheOrderOfTheirUse) {
    const auto services = readServices(
        message(kSrv, {service(20, 0, 443, "c.example.com"), service(10, 1, 443, "b.example.com"),
                       service(10, 9, 8443, "a.example.com")}));
    ASSERT_EQ(services.size(), 3U);
    EXPECT_EQ(services[0].host, "a.example.com");
    EXPECT_EQ(services[0].port, 8443);
    EXPECT_EQ(services[1].host, "b.example.com");
    EXPECT_EQ(services[2].host, "c.example.com");
}

TEST(DnsTest, DotSaysThatThereIsNone) {
    EXPECT_TRUE(readServices(message(kSrv, {service(0, 0, 0, "")})).empty());
}

TEST(DnsTest, OtherRecordsArePassedOver) {
    EXPECT_TRUE(readServices(message(kSrv, {record(5, name("other.example.com"))})).empty());
}

TEST(DnsTest, Texts) {
    const auto texts = readTexts(message(kTxt, {record(kTxt, "\x0Apath=/dav/\x03x=1")}));
    ASSERT_EQ(texts.size(), 2U);
    EXPECT_EQ(texts[0], "path=/dav/");
    EXPECT_EQ(texts[1], "x=1");
}

TEST(DnsTest, DamagedMessagesAreHarmless) {
    const std::string good =
        message(kSrv, {service(1, 1, 443, "a.example.com"), service(2, 1, 443, "b.example.com")});
    for (std::size_t size = 0; size < good.size(); ++size) {
        EXPECT_LE(readServices(good.substr(0, size)).size(), 1U);
    }
    for (std::size_t at = 0; at < good.size(); ++at) {
        std::string bad = good;
        bad[at] = '\xFF';
        readServices(bad);
        readTexts(bad);
    }
    const std::string text = message(kTxt, {record(kTxt, "\x7Fpath=/dav/")});
    readTexts(text);
}

} // namespace
} // namespace carddav_test

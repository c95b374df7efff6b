// Answers of PROPFIND and REPORT, good and bad.

#include "frameworks/AddressBook/carddav/etag.h"
#include "frameworks/AddressBook/carddav/multistatus.h"

#include "tests/carddav/support.h"

#include <set>
#include <stdexcept>

namespace carddav_test {
namespace {

using namespace addressbook::carddav;

struct Read {
    std::vector<Resource> resources;
    std::string token;
};

// Reads a text in pieces of [piece] bytes.
Read read(const std::string& text, std::size_t piece = 1) {
    Read result;
    MultistatusReader reader([&](Resource&& resource) { result.resources.push_back(std::move(resource)); });
    for (std::size_t at = 0; at < text.size(); at += piece) {
        reader.feed(std::string_view(text).substr(at, piece));
    }
    reader.finish();
    result.token = reader.syncToken();
    return result;
}

std::string whyNot(const std::string& text) {
    const Error error = errorOf([&] { read(text, 4096); });
    EXPECT_EQ(error.kind(), ErrorKind::malformedAnswer) << error.what();
    return error.what();
}

constexpr const char* kHead = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";

TEST(MultistatusTest, ReadsResourcesWithTheirProperties) {
    const std::string text = std::string(kHead) + R"(
<d:multistatus xmlns:d="DAV:" xmlns:x="urn:ietf:params:xml:ns:carddav">
  <d:response>
    <d:href>
      /ida/1.vcf
    </d:href>
    <d:propstat><d:status>HTTP/1.1 404 Not Found</d:status><d:prop><d:displayname/></d:prop></d:propstat>
    <d:propstat><d:prop><d:getetag>"1"</d:getetag><x:address-data>BEGIN&#13;
A&amp;B &lt;<![CDATA[C&D]]></x:address-data></d:prop><d:status>HTTP/1.1 200 OK</d:status></d:propstat>
  </d:response>
  <d:response><d:status>HTTP/2 404</d:status><d:href>/ida/2.vcf</d:href></d:response>
  <d:sync-token> http://example.com/7 </d:sync-token>
</d:multistatus>)";
    for (const std::size_t piece : {1UL, 7UL, text.size()}) {
        const Read got = read(text, piece);
        ASSERT_EQ(got.resources.size(), 2U);
        const Resource& first = got.resources[0];
        EXPECT_EQ(first.href, "/ida/1.vcf");
        EXPECT_EQ(first.status, 0);
        EXPECT_EQ(first.text("{DAV:}getetag"), "\"1\"");
        EXPECT_EQ(first.text("{urn:ietf:params:xml:ns:carddav}address-data"), "BEGIN\r\nA&B <C&D");
        EXPECT_EQ(first.find("{DAV:}displayname"), nullptr);
        ASSERT_EQ(first.properties.size(), 3U);
        EXPECT_EQ(first.properties[0].status, 404);
        EXPECT_EQ(got.resources[1].href, "/ida/2.vcf");
        EXPECT_EQ(got.resources[1].status, 404);
        EXPECT_EQ(got.token, "http://example.com/7");
    }
}

TEST(MultistatusTest, ReadsAnyPrefixAndNone) {
    const Read got =
        read(std::string(kHead) +
             "<multistatus xmlns='DAV:'><response><href>/1</href><propstat><prop>"
             "<getetag>x</getetag><getctag xmlns='http://calendarserver.org/ns/'>5</getctag>"
             "<y:addressbook-home-set xmlns:y='urn:ietf:params:xml:ns:carddav'><href>/h/</href>"
             "</y:addressbook-home-set></prop><status>HTTP/1.1 200 OK</status></propstat></response>"
             "</multistatus>");
    ASSERT_EQ(got.resources.size(), 1U);
    EXPECT_EQ(got.resources[0].text("{http://calendarserver.org/ns/}getctag"), "5");
    EXPECT_TRUE(got.resources[0].has("{urn:ietf:params:xml:ns:carddav}addressbook-home-set", "{DAV:}href"));
    EXPECT_EQ(got.resources[0].properties[2].inside[0].text, "/h/");
}

TEST(MultistatusTest, ReadsElementsInsideAProperty) {
    const Read got =
        read(std::string(kHead) +
             "<D:multistatus xmlns:D='DAV:' xmlns:C='urn:ietf:params:xml:ns:carddav'><D:response>"
             "<D:href>/</D:href><D:propstat><D:prop><C:supported-address-data>"
             "<C:address-data-type content-type='text/vcard' version='3.0'/>"
             "<C:address-data-type version=\"4.0\"/></C:supported-address-data>"
             "<D:supported-report-set><D:supported-report><D:report><D:sync-collection/></D:report>"
             "</D:supported-report></D:supported-report-set></D:prop>"
             "<D:status>HTTP/1.1 200 OK</D:status></D:propstat></D:response></D:multistatus>");
    const Property* versions =
        got.resources.at(0).find("{urn:ietf:params:xml:ns:carddav}supported-address-data");
    ASSERT_NE(versions, nullptr);
    ASSERT_EQ(versions->inside.size(), 2U);
    EXPECT_EQ(versions->inside[0].attributes[1], (std::pair<std::string, std::string>("version", "3.0")));
    EXPECT_EQ(versions->inside[1].attributes[0].second, "4.0");
    EXPECT_TRUE(got.resources[0].has("{DAV:}supported-report-set", "{DAV:}sync-collection"));
}

TEST(MultistatusTest, ReadsStatusAndReasonOfTruncation) {
    const Read got =
        read(std::string(kHead) + "<D:multistatus xmlns:D='DAV:'><D:response><D:href>/b/</D:href>"
                                  "<D:status>HTTP/1.1 507 Insufficient Storage</D:status>"
                                  "<D:error><D:number-of-matches-within-limits/></D:error></D:response>"
                                  "<D:sync-token>t</D:sync-token></D:multistatus>");
    EXPECT_EQ(got.resources.at(0).status, 507);
    EXPECT_EQ(got.resources.at(0).error, "{DAV:}number-of-matches-within-limits");
}

TEST(MultistatusTest, SeveralHrefsShareAStatus) {
    const Read got = read("<multistatus xmlns='DAV:'><response><href>/1</href><href>/2</href><href>/3</href>"
                          "<status>HTTP/1.1 404 Not Found</status></response></multistatus>");
    std::set<std::string> hrefs;
    for (const Resource& resource : got.resources) {
        EXPECT_EQ(resource.status, 404);
        hrefs.insert(resource.href);
    }
    EXPECT_EQ(hrefs, (std::set<std::string>{"/1", "/2", "/3"}));
}

TEST(MultistatusTest, StatusThatCannotBeReadIsNoSuccess) {
    const Read got =
        read(std::string(kHead) + "<D:multistatus xmlns:D='DAV:'><D:response><D:href>/1</D:href>"
                                  "<D:propstat><D:prop><D:getetag>x</D:getetag></D:prop>"
                                  "<D:status>fine</D:status></D:propstat></D:response></D:multistatus>");
    EXPECT_EQ(got.resources.at(0).find("{DAV:}getetag"), nullptr);
}

TEST(MultistatusTest, ReadsOtherEncodings) {
    const Read got =
        read("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><D:multistatus xmlns:D='DAV:'><D:response>"
             "<D:href>/\xF8</D:href></D:response></D:multistatus>");
    EXPECT_EQ(got.resources.at(0).href, "/\xC3\xB8");
}

TEST(MultistatusTest, EmptyOneIsGood) {
    EXPECT_TRUE(read("<multistatus xmlns='DAV:'/>").resources.empty());
}

TEST(MultistatusTest, LargePictureIsOneText) {
    const std::string photo(30'000'000, 'A');
    const Read got =
        read("<multistatus xmlns='DAV:'><response><href>/1</href><propstat><prop><x>" + photo +
                 "</x></prop><status>HTTP/1.1 200 OK</status></propstat></response></multistatus>",
             16384);
    EXPECT_EQ(got.resources.at(0).properties.at(0).text.size(), photo.size());
}

TEST(MultistatusTest, LargeAnswerIsReadInLittleMemory) {
    std::size_t count = 0;
    MultistatusReader reader([&](Resource&&) { ++count; });
    reader.feed("<multistatus xmlns='DAV:'>");
    const std::string one =
        "<response><href>/ida/book/card-with-a-long-name-000000.vcf</href><propstat><prop>"
        "<getetag>\"0123456789abcdef\"</getetag></prop><status>HTTP/1.1 200 OK</status>"
        "</propstat></response>";
    for (int at = 0; at < 200'000; ++at) {
        reader.feed(one);
    }
    reader.feed("</multistatus>");
    reader.finish();
    EXPECT_EQ(count, 200'000U);
}

TEST(BadMultistatusTest, TruncatedAtAnyByte) {
    const std::string text =
        "<multistatus xmlns='DAV:'><response><href>/1</href><propstat><prop><getetag>x</getetag>"
        "</prop><status>HTTP/1.1 200 OK</status></propstat></response></multistatus>";
    for (std::size_t size = 0; size < text.size(); ++size) {
        whyNot(text.substr(0, size));
    }
}

TEST(BadMultistatusTest, Malformed) {
    whyNot("");
    whyNot("no XML at all");
    whyNot("<multistatus xmlns='DAV:'><response></multistatus>");
    whyNot("<multistatus xmlns='DAV:'><response>&nosuch;</response></multistatus>");
    whyNot(std::string("<multistatus xmlns='DAV:'><response>\0</response></multistatus>", 63));
    whyNot("<multistatus xmlns='DAV:'><response>\x01</response></multistatus>");
    whyNot("<multistatus xmlns='DAV:'><response>\xFF\xFE</response></multistatus>");
    whyNot("<multistatus xmlns='DAV:'/><more/>");
    EXPECT_THAT(whyNot("<html><body>Welcome</body></html>"), testing::HasSubstr("no multistatus, but html"));
    EXPECT_THAT(whyNot("<multistatus/>"), testing::HasSubstr("no multistatus"));
}

TEST(BadMultistatusTest, EntityBombIsRefusedBeforeItGoesOff) {
    std::string bomb = "<!DOCTYPE m [<!ENTITY a0 \"boom\">";
    for (int at = 1; at < 30; ++at) {
        const std::string before = "&a" + std::to_string(at - 1) + ';';
        bomb += "<!ENTITY a" + std::to_string(at) + " \"" + before + before + before + "\">";
    }
    EXPECT_THAT(whyNot(kHead + bomb +
                       "]><multistatus xmlns='DAV:'><response><href>&a29;</href></response></multistatus>"),
                testing::HasSubstr("document type"));
}

TEST(BadMultistatusTest, NothingOutsideIsRead) {
    EXPECT_THAT(whyNot("<!DOCTYPE m SYSTEM \"file:///etc/passwd\"><multistatus xmlns='DAV:'/>"),
                testing::HasSubstr("document type"));
    EXPECT_THAT(
        whyNot("<!DOCTYPE m [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><multistatus xmlns='DAV:'><response>"
               "<href>&x;</href></response></multistatus>"),
        testing::HasSubstr("document type"));
}

// What is read of an encoding with states would depend on the pieces in which it comes.
TEST(BadMultistatusTest, OtherEncodingsOfSeveralBytesAreRefused) {
    for (const char* encoding : {"utf-7", "ISO-2022-JP", "Shift_JIS"}) {
        EXPECT_THAT(whyNot(std::string("<?xml version='1.0' encoding='") + encoding +
                           "'?><multistatus xmlns='DAV:'/>"),
                    testing::HasSubstr(std::string("its encoding is ") + encoding));
    }
    for (const std::string& utf32 : {std::string("\0\0\0<\0\0\0a", 8), std::string("<\0\0\0a\0\0\0", 8)}) {
        EXPECT_THAT(whyNot(utf32), testing::HasSubstr("its encoding is UTF-32"));
    }
}

TEST(BadMultistatusTest, BoundsHold) {
    std::string deep;
    for (int at = 0; at < 1000; ++at) {
        deep += "<a>";
    }
    EXPECT_THAT(whyNot("<multistatus xmlns='DAV:'>" + deep), testing::HasSubstr("too deep"));
    std::string many;
    for (int at = 0; at < 100'000; ++at) {
        many += "<a/>";
    }
    const std::string open = "<multistatus xmlns='DAV:'><response><propstat><prop>";
    EXPECT_THAT(whyNot(open + many), testing::HasSubstr("too many"));
    EXPECT_THAT(whyNot(open + "<p>" + many), testing::HasSubstr("too many"));
    std::string attributes;
    for (int at = 0; at < 17; ++at) {
        attributes += " a" + std::to_string(at) + "='x'";
    }
    EXPECT_THAT(whyNot(open + "<p><q" + attributes + "/>"), testing::HasSubstr("too many attributes"));
    EXPECT_THAT(whyNot("<multistatus xmlns='DAV:'><response><href>" + std::string(1'000'000, '/')),
                testing::HasSubstr("too large"));
    const Error error = errorOf([&] {
        MultistatusReader reader([](Resource&&) {}, 1000);
        reader.feed(open + "<p>" + std::string(2000, 'x'));
    });
    EXPECT_THAT(error.what(), testing::HasSubstr("too large"));
}

TEST(BadMultistatusTest, WhatTheCallbackThrowsLeavesTheReader) {
    MultistatusReader reader([](Resource&&) { throw std::out_of_range("mine"); });
    EXPECT_THROW(reader.feed("<multistatus xmlns='DAV:'><response/><response/></multistatus>"),
                 std::out_of_range);
}

TEST(ConditionTest, ReadsWhatWasNotMet) {
    const Condition condition =
        readCondition("<?xml version='1.0'?><error xmlns='DAV:'>\n <valid-sync-token/>\n "
                      "<other><href>/no</href></other></error>");
    EXPECT_EQ(condition.name, "{DAV:}valid-sync-token");
    EXPECT_EQ(readCondition("<html/>").name, "");
    EXPECT_EQ(readCondition("<error xmlns='DAV:'><x/>").name, "");
    EXPECT_EQ(readCondition("").name, "");
}

TEST(EtagTest, QuotesAndWeaknessDoNotMakeAnother) {
    EXPECT_TRUE(sameEtag("\"a\"", "\"a\""));
    EXPECT_TRUE(sameEtag("a", "\"a\""));
    EXPECT_TRUE(sameEtag("W/\"a\"", "\"a\""));
    EXPECT_FALSE(sameEtag("\"a\"", "\"A\""));
    EXPECT_FALSE(sameEtag("", ""));
    EXPECT_FALSE(sameEtag("\"\"", "\"\""));
    EXPECT_TRUE(isWeakEtag("W/\"a\""));
    EXPECT_FALSE(isWeakEtag("\"W/a\""));
}

} // namespace
} // namespace carddav_test

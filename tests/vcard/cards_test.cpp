// A table with a row for everything that a line can express: the lines, a property, and its expected value.

#include "tests/vcard/support.h"

#include <gtest/gtest.h>

namespace addressbook::vcard {
namespace {

struct Row {
    std::vector<std::string> lines;
    std::string_view property;
    std::string expected;
    std::string version = "3.0";
};

void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        std::vector<std::string> lines = row.lines;
        lines.insert(lines.begin(), "X-PHONETIC-LAST-NAME:present"); // so that no card is empty
        EXPECT_EQ(describe(readOne(cardText(lines, row.version)), row.property), row.expected)
            << row.lines.front() << " in version " << row.version;
    }
}

using namespace property;

TEST(NamesTest, PartsOfN) {
    const Card card = readOne(cardText({"N:Berg;Ida;Maria,Eva;Dr.;jun.", "FN:Someone Else"}));
    EXPECT_EQ(describe(card, kLast), "Berg");
    EXPECT_EQ(describe(card, kFirst), "Ida");
    EXPECT_EQ(describe(card, kMiddle), "Maria,Eva");
    EXPECT_EQ(describe(card, kTitle), "Dr.");
    EXPECT_EQ(describe(card, kSuffix), "jun.");
    EXPECT_EQ(describe(card, kPersonFlags), "-");
}

TEST(NamesTest, Table) {
    check({
        {{"N:Be\\;rg;I\\,da"}, kLast, "Be;rg"},
        {{"N:Be\\;rg;I\\,da"}, kFirst, "I,da"},
        {{"N: Berg ; Ida "}, kFirst, "Ida"},
        {{"FN:Ida Maria Berg"}, kFirst, "Ida Maria"},
        {{"FN:Ida Maria Berg"}, kLast, "Berg"},
        {{"FN:Ida"}, kFirst, "Ida"},
        {{"N:;;;;", "FN:Ida Berg"}, kLast, "Berg"},
        {{"N:Berg", "FN:Ida Other"}, kFirst, "-"},
        {{"N:A;B;C;D;E;more"}, kUnknownLines, "[+N;AS-READ=\"A;B;C;D;E;more\":A;B;C;D;E]"},
        {{"N:A;B;C;D;E;"}, kUnknownLines, "-"},
        {{"NICKNAME:Idi,Ida"}, kNickname, "Idi,Ida"},
        {{"X-MAIDENNAME:Tal"}, kMaidenName, "Tal"},
        {{"X-PHONETIC-FIRST-NAME:Eeda"}, kFirstPhonetic, "Eeda"},
        {{"X-PHONETIC-MIDDLE-NAME:Maa"}, kMiddlePhonetic, "Maa"},
        {{"TITLE:Baker"}, kJobTitle, "Baker"},
        {{"ORG:Mill;Bread;Rolls"}, kOrganization, "Mill"},
        {{"ORG:Mill;Bread;Rolls"}, kDepartment, "Bread; Rolls"},
        {{"ORG:Mill;"}, kDepartment, "-"},
        {{"ORG:Mill", "ORG:Lake"}, kUnknownLines, "[ORG:Lake]"},
    });
    EXPECT_EQ(describe(readOne(cardText({"N:Berg", "SOUND;X-IRMC-N:bergu;aida;;;"}, "2.1")), kLastPhonetic),
              "bergu");
}

TEST(CompaniesTest, AreNoPeople) {
    check({
        {{"N:Berg;Ida", "ORG:Mill", "X-ABShowAs:COMPANY"}, kPersonFlags, "1"},
        {{"N:;;;;", "FN:Mill", "ORG:Mill;Bread"}, kPersonFlags, "1"},
        {{"FN:Mill", "ORG:Mill"}, kPersonFlags, "1"},
        {{"FN:Mill", "ORG:Mill"}, kFirst, "-"},
        {{"FN:Mill", "ORG:Mill", "X-ABShowAs:PERSON"}, kPersonFlags, "-"},
        {{"KIND:org", "FN:The Mill"}, kPersonFlags, "1", "4.0"},
        {{"FN:Ida Berg", "ORG:Mill"}, kPersonFlags, "-"},
        {{"N:Berg", "X-ABOrder:LASTFIRST"}, kPersonFlags, "16"},
        {{"N:Berg", "X-ABOrder:FIRSTLAST", "X-ABShowAs:company"}, kPersonFlags, "33"},
    });
}

TEST(TextTest, Escapes) {
    check({
        {{"NOTE:one\\ntwo\\Nthree"}, kNote, "one\ntwo\nthree"},
        {{"NOTE:a\\,b\\;c\\:d\\\\e\\\"f"}, kNote, "a,b;c:d\\e\"f"},
        {{"NOTE:a,b;c\\x"}, kNote, "a,b;c\\x"},
        {{"NOTE: leading"}, kNote, " leading"},
        {{"NOTE:one", "NOTE:two", "NOTE:two"}, kNote, "one\ntwo\ntwo"},
        {{"NOTE:loose", "line without a colon"}, kNote, "loose\nline without a colon"},
        {{"URL:http\\://mill.example/?a\\,b;c,d"}, kUrls, "[HomePage:http://mill.example/?a,b;c,d]"},
        {{"NOTE;ENCODING=QUOTED-PRINTABLE:a=0D=0Ab=3D"}, kNote, "a\nb=", "2.1"},
        {{"NOTE;QUOTED-PRINTABLE:C:=5Cnew"}, kNote, "C:\\new", "2.1"},
        {{"ADR;HOME:;;Lane 3\\", "Back house\\", "2nd floor;Town"},
         kAddress,
         "[Home:{City=Town Street=Lane 3\nBack house\n2nd floor}]",
         "2.1"},
    });
}

TEST(TelephonesTest, TypesAreLabels) {
    check({
        {{"TEL;type=HOME:1"}, kPhone, "[Home:1]"},
        {{"TEL;TYPE=work,voice:1"}, kPhone, "[Work:1]"},
        {{"TEL;TYPE=\"work,voice\":1"}, kPhone, "[Work:1]"},
        {{"TEL;TYPE=HOME,TYPE=VOICE:1"}, kPhone, "[Home:1]"},
        {{"TEL;CELL:1"}, kPhone, "[Mobile:1]", "2.1"},
        {{"TEL;type=IPHONE;type=CELL;type=VOICE:1"}, kPhone, "[iPhone:1]"},
        {{"TEL;type=MAIN:1"}, kPhone, "[Main:1]"},
        {{"TEL;type=PAGER:1"}, kPhone, "[Pager:1]"},
        {{"TEL;type=HOME;type=FAX:1"}, kPhone, "[HomeFAX:1]"},
        {{"TEL;FAX;WORK:1"}, kPhone, "[WorkFAX:1]", "2.1"},
        {{"TEL;FAX:1"}, kPhone, "[OtherFAX:1]", "2.1"},
        {{"TEL;type=OTHER:1"}, kPhone, "[Other:1]"},
        {{"TEL:1"}, kPhone, "[Other:1]"},
        {{"TEL;type=boat:1"}, kPhone, "[boat:1]"},
        {{"TEL;X-Boat:1"}, kPhone, "[Boat:1]", "2.1"},
        {{"TEL;TYPE=\"\xE8\x88\xB9\":1"}, kPhone, "[\xE8\x88\xB9:1]"},
        {{"TEL;type=VIDEO:1"}, kPhone, "[Other:1]"},
        {{"TEL:"}, kPhone, "-"},
        {{"TEL;VALUE=uri;TYPE=home:tel:+1-2;ext=3"}, kPhone, "[Home:+1-2;ext=3]", "4.0"},
        {{"item1.TEL;type=CELL:1", "item1.X-ABLabel:_$!<Assistant>!$_"}, kPhone, "[Assistant:1]"},
        {{"item7.X-ABLabel:My own\\, label", "ITEM7.TEL:1"}, kPhone, "[My own, label:1]"},
        {{"TEL;type=HOME:1", "TEL;type=WORK;type=pref:2"}, kPhone, "[Home:1 Work*:2]"},
        {{"TEL;type=HOME;type=pref:1", "TEL;type=WORK:2"}, kPhone, "[Home*:1 Work:2]"},
        {{"TEL;PREF=9:1", "TEL;PREF=2:2", "TEL;PREF=2:3"}, kPhone, "[Other:1 Other*:2 Other:3]", "4.0"},
    });
}

TEST(ListsTest, Table) {
    check({
        {{"EMAIL;type=INTERNET;type=HOME:a@b.example"}, kEmail, "[Home:a@b.example]"},
        {{"EMAIL:mailto:a@b.example"}, kEmail, "[Other:a@b.example]"},
        {{"EMAIL;type=school:a@b.example"}, kEmail, "[school:a@b.example]"},
        {{"URL;type=WORK:x"}, kUrls, "[Work:x]"},
        {{"CALURI:webcal://x"}, kCalendarUris, "[Other:webcal://x]"},
        {{"item1.X-ABRELATEDNAMES:Ole", "item1.X-ABLabel:_$!<Brother>!$_"}, kRelatedNames, "[Brother:Ole]"},
        {{"RELATED;TYPE=spouse;VALUE=text:Ole"}, kRelatedNames, "[Spouse:Ole]", "4.0"},
        {{"RELATED;TYPE=muse;VALUE=text:Ole"}, kRelatedNames, "[muse:Ole]", "4.0"},
        {{"RELATED;TYPE=friend:urn:uuid:1"}, kRelatedNames, "-", "4.0"},
        {{"X-SPOUSE:Ole"}, kRelatedNames, "[Spouse:Ole]"},
        {{"X-EVOLUTION-MANAGER:Ole"}, kRelatedNames, "[Manager:Ole]"},
        {{"X-MS-ASSISTANT:Ole"}, kRelatedNames, "[Assistant:Ole]"},
    });
}

TEST(AddressesTest, Table) {
    check({
        {{"ADR;type=HOME:;;Lane 3;Town;Shire;12345;Land"},
         kAddress,
         "[Home:{City=Town Country=Land State=Shire Street=Lane 3 ZIP=12345}]"},
        {{"ADR;type=HOME:Box 7;Floor 2;Lane 3;Town"},
         kAddress,
         "[Home:{City=Town Street=Box 7\nFloor 2\nLane 3}]"},
        {{"item1.ADR;type=WORK:;;Lane 3", "item1.X-ABADR:dk"},
         kAddress,
         "[Work:{CountryCode=dk Street=Lane 3}]"},
        {{"ADR:;;a\\nb\\;c\\,d,e;Town"}, kAddress, "[Other:{City=Town Street=a\nb;c,d,e}]"},
        {{"ADR;type=HOME:;;;;;;"}, kAddress, "-"},
    });
}

TEST(DatesTest, AreNoonsOfDays) {
    check({
        {{"BDAY:1980-03-22"}, kBirthday, "1980-03-22"},
        {{"BDAY;value=date:19800322"}, kBirthday, "1980-03-22"},
        {{"BDAY:1980-03-22T23:30:00Z"}, kBirthday, "1980-03-22"},
        {{"BDAY;X-APPLE-OMIT-YEAR=1604:1604-02-29"}, kBirthday, "1604-02-29"},
        {{"BDAY;X-APPLE-OMIT-YEAR=1999:1999-05-06"}, kBirthday, "1604-05-06"},
        {{"BDAY:--0229"}, kBirthday, "1604-02-29", "4.0"},
        {{"BDAY:--02-29"}, kBirthday, "1604-02-29", "4.0"},
        {{"BDAY:1981-02-29"}, kBirthday, "-"},
        {{"BDAY;VALUE=text:circa 1800"}, kUnknownLines, "[BDAY;VALUE=text:circa 1800]", "4.0"},
        {{"BDAY:1985-04"}, kUnknownLines, "[BDAY:1985-04]", "4.0"},
        {{"item1.X-ABDATE:2001-02-03", "item1.X-ABLabel:_$!<Anniversary>!$_"},
         kOtherDates,
         "[Anniversary:2001-02-03]"},
        {{"ANNIVERSARY:20090808T1430-0500"}, kOtherDates, "[Anniversary:2009-08-08]", "4.0"},
        {{"X-MS-ANNIVERSARY:20110113"}, kOtherDates, "[Anniversary:2011-01-13]", "2.1"},
    });
    for (const char* zone : {"UTC", "Pacific/Auckland"}) { // 13 hours ahead in summer
        setenv("TZ", zone, 1);
        EXPECT_EQ(readOne(cardText({"N:A", "BDAY:2001-01-01"})).values.at("Birthday"),
                  Value(FloatingDate{12 * 3600}));
        EXPECT_EQ(describe(readOne(cardText({"N:A", "BDAY:--1231"})), kBirthday), "1604-12-31");
    }
    unsetenv("TZ");
}

TEST(MessagingTest, Table) {
    check({
        {{"X-AIM;type=HOME:ida"}, kAim, "[Home:ida]"},
        {{"X-JABBER:ida"}, kJabber, "[Other:ida]"},
        {{"X-MSN:ida"}, kMsn, "[Other:ida]"},
        {{"X-YAHOO:ida", "X-YAHOO-ID:ida"}, kYahoo, "[Other:ida]"},
        {{"X-ICQ:1"}, kIcq, "[Other:1]"},
        {{"IMPP;X-SERVICE-TYPE=Jabber;type=WORK:xmpp:ida@x"}, kJabber, "[Work:ida@x]"},
        {{"IMPP:xmpp:ida@x"}, kJabber, "[Other:ida@x]", "4.0"},
        {{"X-AIM:ida", "IMPP;X-SERVICE-TYPE=AIM:aim:ida"}, kAim, "[Other:ida]"},
        {{"IMPP;X-SERVICE-TYPE=Skype;type=HOME:skype:ida"},
         kInstantMessage,
         "[Home:{InstantMessageService=Skype InstantMessageUsername=ida}]"},
        {{"IMPP;X-SERVICE-TYPE=Signal:sgnl://ida"},
         kInstantMessage,
         "[Other:{InstantMessageService=Signal InstantMessageUsername=ida}]"},
        {{"X-SKYPE:ida"},
         kInstantMessage,
         "[Other:{InstantMessageService=Skype InstantMessageUsername=ida}]"},
        {{"IMPP;TYPE=personal:sip:ida@x"},
         kInstantMessage,
         "[Home:{InstantMessageService=sip InstantMessageUsername=ida@x}]"},
        {{"X-SOCIALPROFILE;type=bird;x-user=ida:http://bird.example/ida"},
         kSocialProfile,
         "[Other:{serviceName=bird url=http://bird.example/ida username=ida}]"},
    });
}

TEST(PicturesTest, ByteForByte) {
    const Value picture = Bytes{0xFF, 0xD8, 0xFF, 0x00, 0x01};
    const std::vector<std::vector<std::string>> forms{
        {"PHOTO;ENCODING=b;TYPE=JPEG:/9j/AAE="},
        {"PHOTO;ENCODING=b;TYPE=JPEG:/9j/", " AAE="},
        {"PHOTO;BASE64:", "  /9j/", "  AAE="},
        {"PHOTO;ENCODING=BASE64;JPEG:/9j/AAE=", ""},
        {"PHOTO;TYPE=JPEG;ENCODING=BASE64:", "/9j/", "AAE=", ""},
        {"PHOTO;ENCODING=BASE64:/9j/", "AAE="},
        {"PHOTO:data:image/jpeg;base64,/9j/AAE="},
        {"PHOTO:data:image/jpeg;base64\\,/9j/AAE="},
        {"PHOTO;TYPE=JPEG:/9j/AAE"},
    };
    for (const auto& form : forms) {
        std::vector<std::string> lines = form;
        lines.insert(lines.begin(), "N:A");
        lines.emplace_back("TEL:1");
        const Card card = readOne(cardText(lines));
        EXPECT_EQ(card.values.contains(".Image") ? card.values.at(".Image") : Value(), picture)
            << form.front();
        EXPECT_EQ(describe(card, kPhone), "[Other:1]") << form.front();
    }
    check({
        {{"PHOTO;VALUE=uri:http://x.example/a.png"},
         kUnknownLines,
         "[PHOTO;VALUE=uri:http://x.example/a.png]"},
        {{"PHOTO:http://x.example/a.png"}, kUnknownLines, "[PHOTO:http://x.example/a.png]", "4.0"},
        {{"PHOTO;ENCODING=b:AAAA", "PHOTO;ENCODING=b:BBBB"}, kImage, "3 bytes"},
        {{"PHOTO;ENCODING=b:"}, kImage, "-"},
    });
}

TEST(UniqueIdsTest, FromEitherProperty) {
    const std::string uuid = "6B29A774-D124-4822-B8D0-2780EC117F60";
    const auto uidOf = [](std::vector<std::string> lines) {
        lines.insert(lines.begin(), "N:A");
        return readOne(cardText(lines)).uid;
    };
    EXPECT_EQ(uidOf({"X-ABUID:" + uuid + "\\:ABPerson"}), uuid + ":ABPerson");
    EXPECT_EQ(uidOf({"UID:" + uuid}), uuid + ":ABPerson");
    EXPECT_EQ(uidOf({"UID:urn:uuid:6b29a774-d124-4822-b8d0-2780ec117f60"}), uuid + ":ABPerson");
    EXPECT_EQ(uidOf({"UID:11111111-1111-4111-8111-111111111111", "X-ABUID:" + uuid + ":ABPerson"}),
              uuid + ":ABPerson");
    EXPECT_EQ(uidOf({}), "");
    // A UID of any other form is hashed. The hash must never change: cards would be taken for new ones.
    EXPECT_EQ(uidOf({"UID:357"}), "1BBE4831-72C3-56D4-A414-C9D7C7A93F36:ABPerson");
    const Card card = readOne(cardText({"N:A", "UID:357"}));
    EXPECT_EQ(unknownLines(card), std::vector<std::string>{"UID:357"});
    const Card both = readOne(
        cardText({"N:A", "UID:11111111-1111-4111-8111-111111111111", "X-ABUID:" + uuid + ":ABPerson"}));
    EXPECT_EQ(both.otherUuid, "11111111-1111-4111-8111-111111111111");
}

TEST(UnknownTest, LinesSurviveInTheFormOfVersion3) {
    const Card card =
        readOne(cardText({"N:A", "LABEL;HOME;ENCODING=QUOTED-PRINTABLE:a=0D=0Ab", "KEY;X509;BASE64:QUJD",
                          " REVG", "", "X-Thing;CHARSET=UTF-8;odd:1;2,3", "GEO:1;2"},
                         "2.1"));
    EXPECT_EQ(unknownLines(card),
              (std::vector<std::string>{"LABEL;TYPE=HOME:a\\nb", "KEY;TYPE=X509;ENCODING=b:QUJDREVG",
                                        "X-Thing;TYPE=odd:1;2,3", "GEO:1;2"}));
}

TEST(UnknownTest, ParametersStayWithTheirLine) {
    const Card card =
        readOne(cardText({"N;SORT-AS=\"b,c\":A;B", "TEL;X-ID=7;type=HOME,MSG:1", "TEL;type=HOME:2"}));
    EXPECT_EQ(unknownLines(card),
              (std::vector<std::string>{"+N;SORT-AS=\"b,c\":A;B;;;", "+TEL;X-ID=7;TYPE=MSG:1"}));
}

TEST(UnknownTest, LinesOfAGroupStayTogether) {
    const Card card = readOne(cardText({"N:A", "item5.ADR;type=HOME:;;Lane", "item5.X-ABADR:Lane in Town",
                                        "item8.X-OTHER:1", "item8.X-ABLabel:mine"}));
    EXPECT_EQ(unknownLines(card),
              (std::vector<std::string>{"+item1.ADR:;;Lane;;;;", "item1.X-ABADR:Lane in Town",
                                        "item2.X-OTHER:1", "item2.X-ABLabel:mine"}));
}

TEST(ParametersTest, CaretsAndQuotes) {
    const Card card = readOne(cardText({"N:A", "ADR;LABEL=\"a: b^nc^'d^^e\":;;Lane"}, "4.0"));
    EXPECT_EQ(unknownLines(card), (std::vector<std::string>{"+ADR;LABEL=\"a: b^nc^'d^^e\":;;Lane;;;;"}));
}

TEST(AgentsTest, AreKeptWhole) {
    const std::string nested = "BEGIN:VCARD\\nVERSION:2.1\\nN:Inner\\nEND:VCARD";
    for (const std::vector<std::string>& lines :
         {std::vector<std::string>{"N:Outer", "AGENT:", "BEGIN:VCARD", "VERSION:2.1", "N:Inner", "END:VCARD",
                                   "TEL:1"},
          std::vector<std::string>{"N:Outer", "AGENT:BEGIN:VCARD", "VERSION:2.1", "N:Inner", "END:VCARD",
                                   "TEL:1"},
          std::vector<std::string>{"N:Outer", "AGENT:" + nested, "TEL:1"}}) {
        const Card card = readOne(cardText(lines));
        EXPECT_EQ(describe(card, kLast), "Outer");
        EXPECT_EQ(describe(card, kPhone), "[Other:1]");
        EXPECT_EQ(unknownLines(card), std::vector<std::string>{"AGENT:" + nested});
    }
}

} // namespace
} // namespace addressbook::vcard

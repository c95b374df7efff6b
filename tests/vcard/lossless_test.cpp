// What a card says beside the values of an address book comes back as it was: line by line, in version 3.0 and by
// way of 4.0.

#include "tests/vcard/support.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace addressbook::vcard {
namespace {

using Lines = std::vector<std::string>;

Lines written(const Card& card, WrittenVersion version = WrittenVersion::v3) {
    return linesOf(write(card, version));
}

bool has(const Lines& lines, const std::string& line) {
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

struct Row {
    std::string line;
    std::string expected = ""; // empty: the line itself
    std::string version = "3.0";
};

TEST(LosslessTest, Lines) {
    const std::vector<Row> rows{
        // Full names, lists, units, all parts of an address.
        {"FN:Ida, the Baker", "FN:Ida\\, the Baker"},
        {"NICKNAME:Idi,Ida"},
        {"NICKNAME:Idi\\,Ida"},
        {"ORG:Mill;Bread;Rolls;Night"},
        {"ORG:Mill;;Rolls"},
        {"ADR;type=HOME:Box 7;Floor 2;Lane 3;Town;;;"},
        {"ADR;type=HOME:;;Lane 3,Back;Town;;;"},
        {"ADR;HOME:Box, 7;;Lane 3;Town", "ADR;type=HOME:Box\\, 7;;Lane 3;Town;;;", "2.1"},
        // Types.
        {"TEL;TYPE=VOICE:1", "TEL;type=VOICE:1"},
        {"TEL;TYPE=HOME,VOICE:1", "TEL;type=HOME;TYPE=VOICE:1"},
        {"TEL;TYPE=Boat:1"},
        {"TEL;TYPE=X-Boat,VOICE:1"},
        {"TEL;TYPE=MOBILE:1", "TEL;type=CELL;TYPE=MOBILE:1"},
        {"TEL;TYPE=OTHER:1"},
        {"TEL:1"},
        {"TEL;FAX:1", "TEL;type=FAX:1", "2.1"},
        {"TEL;TYPE=HOME,PREF:1", "TEL;type=HOME;type=pref:1"},
        {"EMAIL;TYPE=X400:a", "EMAIL;type=INTERNET;TYPE=X400:a"},
        // Addresses on the net.
        {"URL:http://x.example/?a,b;c"},
        {"URL:http\\://x.example/?a\\,b", "URL:http://x.example/?a,b"},
        {"IMPP:matrix:@ida:x.example"},
        {"IMPP:tg:ida"},
        {"IMPP;X-SERVICE-TYPE=Telegram:tg:ida"},
        {"IMPP;X-SERVICE-TYPE=signal:SGNL:ida"},
        {"IMPP:unknown:a,b;c"},
        {"IMPP;X-SERVICE-TYPE=Signal:sgnl://ida"},
        {"IMPP:jabber:ida", "IMPP;X-SERVICE-TYPE=Jabber:jabber:ida"},
        {"X-JABBER:ida", "IMPP;X-SERVICE-TYPE=Jabber:xmpp:ida"},
        {"IMPP;X-SERVICE-TYPE=Jabber:xmpp:ida", "X-JABBER:ida"},
        {"IMPP;X-SERVICE-TYPE=GoogleTalk:xmpp:ida", "X-GOOGLE-TALK:ida"},
        // Days.
        {"ANNIVERSARY:20010203", "X-EVOLUTION-ANNIVERSARY;value=date:2001-02-03", "4.0"},
        {"X-EVOLUTION-ANNIVERSARY:2001-02-03", "X-ANNIVERSARY;value=date:2001-02-03"},
        {"BDAY:1996-10-22T14:00:00Z", "BDAY;value=date-time:1996-10-22T14:00:00Z"},
        {"BDAY;VALUE=text:circa 1800", "", "4.0"},
        {"BDAY:1985-04", "", "4.0"},
        // Odd lines.
        {"X-messaging/aim-All:ida"},
        {"X-My Field:1"},
        {"X-a.b.c:1"},
        {"item1.X-a.b:1"},
        {"work.X-OTHER:1"},
        {"messaging/icq:1"},
        {"X-" + std::string(100, 'L') + ":1"},
        {"X-P;X-Q=(a b);X-R=:1"},
        {"TEL;X-Q=(a b):1"},
        {"TEL;X-ODD NAME=1:1"},
        {"CATEGORIES-X:a,b"},
        {"RELATED;TYPE=friend,colleague;VALUE=uri:urn:uuid:1", "", "4.0"},
        {"SORT-STRING:Berg"},
        {"CLASS:PUBLIC"},
        {"X-CLASS:PUBLIC"},
        {"KEY;TYPE=PGP;ENCODING=b:QUJD"},
        {"KEY;TYPE=x;ENCODING=b:QUJD"},
        {"LOGO;VALUE=uri:http://x.example/a.png"},
        {"GEO:1.5;-2"},
    };
    for (const Row& row : rows) {
        const std::string expected = row.expected.empty() ? row.line : row.expected;
        const Card card = readOne(cardText({"N:Berg;Ida;;;", row.line}, row.version));
        EXPECT_TRUE(card.skipped.empty()) << row.line;
        EXPECT_TRUE(has(written(card), expected)) << row.line << '\n' << write(card);
        const Card again = readOne(write(card));
        EXPECT_TRUE(sameContents(card, again)) << row.line << '\n' << write(card) << write(again);
        const std::string text4 = write(card, WrittenVersion::v4);
        if (row.line.find("T14:00") == std::string::npos) { // 4.0 has no hyphens in it
            EXPECT_TRUE(sameContents(card, readOne(text4))) << row.line << '\n' << text4;
        }
    }
}

TEST(LosslessTest, LabelsOfTypeWords) {
    const auto label = [](const std::string& line) {
        return describe(readOne(cardText({"N:A", line})), property::kPhone);
    };
    EXPECT_EQ(label("TEL;TYPE=VOICE:1"), "[:1]");
    EXPECT_EQ(label("TEL;TYPE=VOICE,WORK:1"), "[Work:1]");
    EXPECT_EQ(label("TEL;TYPE=bOaT,VOICE:1"), "[bOaT:1]");
    EXPECT_EQ(label("TEL;TYPE=X-My-Boat:1"), "[My-Boat:1]");
}

TEST(LosslessTest, AFullNameLastsUntilTheNameChanges) {
    Card card = readOne(cardText({"N:Berg;Ida;;;", "FN;LANGUAGE=da:Bager Ida"}));
    EXPECT_EQ(keptFullName(card), "Bager Ida");
    card.values["Email"] = MultiValue{{{"1", "x", Value(std::string("a@b.example"))}}, ""};
    EXPECT_TRUE(has(written(card), "FN;LANGUAGE=da:Bager Ida"));
    card.values["First"] = std::string("Eva");
    EXPECT_EQ(keptFullName(card), std::nullopt);
    EXPECT_TRUE(has(written(card), "FN:Eva Berg"));
}

TEST(LosslessTest, ChangedValuesLoseTheirOldForm) {
    Card card = readOne(cardText({"N:A", "ORG:Mill;Bread;Rolls", "NICKNAME:a,b"}));
    card.values["ABDepartment"] = std::string("Cakes");
    card.values["Nickname"] = std::string("c");
    EXPECT_TRUE(has(written(card), "ORG:Mill;Cakes"));
    EXPECT_TRUE(has(written(card), "NICKNAME:c"));
}

TEST(LosslessTest, PreferenceIsNotInvented) {
    const Card card = readOne(cardText({"N:A", "TEL;TYPE=HOME:1", "TEL;TYPE=WORK:2", "EMAIL:a"}));
    EXPECT_EQ(write(card).find("pref"), std::string::npos);
    EXPECT_EQ(write(card, WrittenVersion::v4).find("PREF"), std::string::npos);
    const Card two = readOne(cardText({"N:A", "TEL;PREF:1", "TEL;PREF;HOME:2"}, "2.1"));
    EXPECT_EQ(describe(two, property::kPhone), "[Other*:1 Home:2]");
    EXPECT_TRUE(has(written(two), "TEL;type=HOME;TYPE=pref:2"));
    EXPECT_TRUE(sameContents(two, readOne(write(two))));
}

TEST(LosslessTest, SeveralTypesOfARelation) {
    const Card card = readOne(cardText({"N:A", "RELATED;VALUE=text;TYPE=\"friend,colleague\":Ole"}, "4.0"));
    EXPECT_EQ(describe(card, property::kRelatedNames), "[Friend:Ole]");
    EXPECT_TRUE(has(written(card), "item1.X-ABRELATEDNAMES;TYPE=friend,colleague:Ole"));
    EXPECT_TRUE(has(written(card, WrittenVersion::v4), "RELATED;VALUE=text;TYPE=friend,colleague:Ole"));
}

TEST(LosslessTest, ALabelledListSaysItOnce) {
    const Lines lines = written(readOne(
        cardText({"N:A", "item1.X-ABDATE:2001-02-03", "item1.X-ABLabel:_$!<Anniversary>!$_",
                  "X-ANNIVERSARY:2001-02-03", "X-EVOLUTION-ANNIVERSARY;X-A=1:2001-02-03", "X-SPOUSE:Ole",
                  "X-EVOLUTION-SPOUSE:Ole", "X-SKYPE:ida", "IMPP;X-SERVICE-TYPE=Skype:skype:ida"})));
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const auto& line) { return line.find("2001-02-03") != std::string::npos; }),
              3);
    EXPECT_TRUE(has(lines, "X-EVOLUTION-ANNIVERSARY;value=date;X-A=1:2001-02-03"));
    EXPECT_EQ(
        std::count_if(lines.begin(), lines.end(), [](const auto& line) { return line.ends_with(":Ole"); }),
        2);
    EXPECT_EQ(
        std::count_if(lines.begin(), lines.end(), [](const auto& line) { return line.ends_with(":ida"); }),
        2);
}

TEST(Version4Test, APerson) {
    const Card card = readOne(cardText({
        "N:Berg;Ida;;Dr.;",
        "ORG:Mill;Bread",
        "X-ABShowAs:COMPANY",
        "EMAIL;type=INTERNET;type=HOME;type=pref:a@b.example",
        "TEL;type=CELL:1",
        "item1.ADR;type=WORK:;;Lane 3;Town;;;",
        "item1.X-ABADR:dk",
        "BDAY;X-APPLE-OMIT-YEAR=1604;value=date:1604-02-29",
        "item2.X-ABDATE:2001-02-03",
        "item2.X-ABLabel:_$!<Anniversary>!$_",
        "item3.X-ABRELATEDNAMES:Ole",
        "item3.X-ABLabel:_$!<Spouse>!$_",
        "PHOTO;ENCODING=b;TYPE=JPEG:/9j/AAE=",
        "CATEGORIES:a\\,b,c",
        "UID:6B29A774-D124-4822-B8D0-2780EC117F60",
    }));
    EXPECT_EQ(written(card, WrittenVersion::v4), (Lines{
                                                     "N:Berg;Ida;;Dr.;",
                                                     "FN:Mill",
                                                     "ORG:Mill;Bread",
                                                     "EMAIL;PREF=1;TYPE=HOME:a@b.example",
                                                     "TEL;TYPE=CELL:1",
                                                     "item1.ADR;TYPE=WORK:;;Lane 3;Town;;;",
                                                     "item1.X-ABADR:dk",
                                                     "BDAY:--0229",
                                                     "ANNIVERSARY:20010203",
                                                     "X-ANNIVERSARY;value=date:2001-02-03",
                                                     "X-EVOLUTION-ANNIVERSARY;value=date:2001-02-03",
                                                     "RELATED;VALUE=text;TYPE=SPOUSE:Ole",
                                                     "X-EVOLUTION-SPOUSE:Ole",
                                                     "KIND:org",
                                                     "PHOTO;VALUE=uri:data:image/jpeg;base64,/9j/AAE=",
                                                     "CATEGORIES:a\\,b,c",
                                                     "UID:urn:uuid:6B29A774-D124-4822-B8D0-2780EC117F60",
                                                     "X-ABUID:6B29A774-D124-4822-B8D0-2780EC117F60:ABPerson",
                                                 }));
}

// Of two names, one of them would be read as a copy of the other.
TEST(Version4Test, AnAnniversaryThatIsThereTwiceComesBackTwice) {
    for (const std::string second : {"20010506", "20010506T", "20010506T1020"}) {
        const Card card = readOne(cardText({"N:A", "ANNIVERSARY:20010506", "ANNIVERSARY:" + second}, "4.0"));
        const std::string version4 = write(card, WrittenVersion::v4);
        EXPECT_EQ(write(readOne(version4), WrittenVersion::v4), version4);
        EXPECT_EQ(written(readOne(version4)), written(card)) << second;
    }
}

TEST(Version4Test, DataOfLinesThatNoPropertyHoldsComesBack) {
    const std::vector<std::string> lines{"KEY;TYPE=PGP;ENCODING=b:QUJDREVG", "LOGO;ENCODING=b:QUJDREVG"};
    const Card card = readOne(cardText({"N:A", lines[0], lines[1]}));
    const auto version4 = written(card, WrittenVersion::v4);
    EXPECT_TRUE(has(version4, "KEY;VALUE=uri:data:application/pgp-keys;base64,QUJDREVG"));
    EXPECT_TRUE(has(version4, "LOGO;VALUE=uri:data:application/octet-stream;base64,QUJDREVG"));
    EXPECT_EQ(unknownLines(readOne(write(card, WrittenVersion::v4))), lines);
}

TEST(Version4Test, ARelationsNameMayLookLikeAnAddress) {
    for (const std::string name : {"http://a.example", "mailto:a", "urn:b"}) {
        const Card card = readOne(cardText({"N:A", "X-ABRELATEDNAMES:" + name}));
        EXPECT_TRUE(sameContents(readOne(write(card, WrittenVersion::v4)), card)) << name;
    }
}

TEST(Version4Test, ARelationsTypeIsNoWordOf4) {
    const Card card = readOne(cardText({"N:A", "X-ABRELATEDNAMES;TYPE=spouse:Ole"}));
    EXPECT_TRUE(sameContents(readOne(write(card, WrittenVersion::v4)), card));
}

TEST(Version4Test, DataInAUriOfVersion3IsWrittenAsItIsReadAgain) {
    for (const std::string line : {"X-A:data:image/png;base64,QUJD", "X-A:data:text/html;base64,QUJD",
                                   "X-A:data:a", "X-A;X-B=1:data:image/png;base64,QUJD"}) {
        const std::string version4 = write(readOne(cardText({"N:A", line})), WrittenVersion::v4);
        EXPECT_EQ(write(readOne(version4), WrittenVersion::v4), version4) << line;
    }
}

// What says that it is data, and is text in some character set.
TEST(Version4Test, DataThatIsNoneComesBackAsText) {
    const Card card = readOne(cardText({"N:A", "X-A;ENCODING=b:\x83"}));
    EXPECT_EQ(unknownLines(card), std::vector<std::string>{"X-A;ENCODING=b:\u0192"});
    for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
        EXPECT_EQ(unknownLines(readOne(write(card, version))), unknownLines(card));
    }
}

// Within a URI it would be other data.
TEST(Version4Test, DataWithOtherCharactersIsAValue) {
    const std::string line = "KEY;ENCODING=b:QUJD\\,";
    const Card card = readOne(cardText({"N:A", line}));
    EXPECT_TRUE(has(written(card, WrittenVersion::v4), "X-ODD-LINE:KEY\\;ENCODING=b:QUJD\\\\\\,"));
    EXPECT_EQ(unknownLines(readOne(write(card, WrittenVersion::v4))), std::vector<std::string>{line});
}

// As an encoding of 3.0 has no escapes, a line end in it would be the end of the line.
TEST(Version4Test, DataInAUriHasBlanksThatAreNone) {
    const Card card = readOne(cardText(
        {"N:A", "KEY:data:application/pgp-keys;base64,QU\\nJD", "LOGO:data:image/png;base64,\\nD%"}, "4.0"));
    EXPECT_EQ(unknownLines(card),
              (Lines{"KEY;TYPE=PGP;ENCODING=b:QUJD", "LOGO:data:image/png;base64,\\nD%"}));
    for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
        EXPECT_TRUE(sameContents(readOne(write(card, version)), card));
    }
}

TEST(Version4Test, DataInALineOfTextStaysAText) {
    const std::string line = "KIND:data:image/png;base64,QUJD";
    const Card card = readOne(cardText({"N:A", line}, "4.0"));
    EXPECT_EQ(unknownLines(card), std::vector<std::string>{line});
    EXPECT_TRUE(sameContents(readOne(write(card, WrittenVersion::v3)), card));
}

TEST(Version4Test, NamesThatTheStandardDoesNotAllowAreValues) {
    const std::vector<std::string> lines{"X-messaging/aim-All:a\\,b", "X-My Field;TYPE=x:1", "item1.X-A/B:c"};
    const Card card = readOne(cardText({"N:A", lines[0], lines[1], lines[2], "item1.TEL:1"}));
    const auto version4 = written(card, WrittenVersion::v4);
    EXPECT_TRUE(has(version4, "X-ODD-LINE:X-messaging/aim-All:a\\\\\\,b"));
    EXPECT_TRUE(has(version4, "item1.X-ODD-LINE:item1.X-A/B:c"));
    for (const std::string& line : lines) {
        EXPECT_TRUE(has(written(card), line));
        EXPECT_TRUE(has(written(readOne(write(card, WrittenVersion::v4))), line));
    }
}

// Behind a note they would be read as more of it.
TEST(LosslessTest, LinesWithOddNamesStayWhatTheyAreBehindANote) {
    const std::string odd = "\u00C5ngstr\u00F6m:" + std::string(200, '5');
    const Card card = readOne(cardText({"N:A", odd, "X-A:ends with \\", odd, "A B:c", "NOTE:a"}));
    EXPECT_EQ(unknownLines(card), (std::vector<std::string>{odd, "X-A:ends with \\n" + odd, "A B:c"}));
    for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
        const Card again = readOne(write(card, version));
        EXPECT_TRUE(sameContents(again, card));
        EXPECT_EQ(write(again, version), write(card, version));
    }
    EXPECT_TRUE(has(written(card), "A B:c"));
}

// A line may say that it is an odd one and be none, or be one of these.
TEST(LosslessTest, OddLinesWithinOddLines) {
    for (const std::string version : {"3.0", "4.0"}) {
        const std::vector<std::string> lines{"X-ODD-LINE:X-ODD-LINE:A B:c", "X-ODD-LINE:END:VCARD",
                                             "X-ODD-LINE:none", "X-ODD-LINE:X-A:plain"};
        const Card card = readOne(cardText({"N:A", lines[0], lines[1], lines[2], lines[3]}, version));
        EXPECT_EQ(unknownLines(card),
                  (std::vector<std::string>{"X-ODD-LINE:A B:c", lines[1], lines[2], lines[3]}));
        for (const WrittenVersion form : {WrittenVersion::v3, WrittenVersion::v4}) {
            EXPECT_TRUE(sameContents(readOne(write(card, form)), card)) << version;
        }
    }
}

// Only groups have members; with a person they are lines as all others.
TEST(LosslessTest, MembersOfAPersonStayWhereTheyAre) {
    for (const std::string name : {"MEMBER", "Member", "X-ADDRESSBOOKSERVER-MEMBER"}) {
        const Card card = readOne(cardText({"N:A", "X-A:1", name + ":", name + ":urn:uuid:2", "X-B:3"}));
        EXPECT_EQ(unknownLines(card),
                  (std::vector<std::string>{"X-A:1", name + ":", name + ":urn:uuid:2", "X-B:3"}));
        for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
            const std::string written = write(card, version);
            EXPECT_EQ(write(readOne(written), version), written);
        }
        EXPECT_EQ(unknownLines(readOne(write(card, WrittenVersion::v3))), unknownLines(card));
    }
}

TEST(LosslessTest, AnOddLineOfVersion3IsNoBirthday) {
    const Card card = readOne(cardText({"N:A", "X-ODD-LINE:BDAY:19800322"}));
    EXPECT_EQ(unknownLines(card), std::vector<std::string>{"X-ODD-LINE:BDAY:19800322"});
    EXPECT_TRUE(sameContents(readOne(write(card, WrittenVersion::v3)), card));
}

TEST(Version4Test, SecondLinesOfWhatMayStandOnceAreValues) {
    const Card card = readOne(cardText({"N:Berg;Ida;;;", "N:Tal;Ole;;;", "UID:1", "UID:2", "GENDER:F",
                                        "GENDER:M", "X-ANNIVERSARY:2001-02-03", "item1.X-ABDATE:2010-10-10",
                                        "item1.X-ABLabel:_$!<Anniversary>!$_"}));
    const auto version4 = written(card, WrittenVersion::v4);
    for (const std::string name : {"N", "UID", "GENDER", "ANNIVERSARY"}) {
        EXPECT_EQ(std::count_if(version4.begin(), version4.end(),
                                [&](const std::string& line) {
                                    return line.substr(0, line.find_first_of(":;")) == name;
                                }),
                  1)
            << name;
    }
    EXPECT_TRUE(has(version4, "X-ODD-LINE:N:Tal\\;Ole\\;\\;\\;"));
    EXPECT_TRUE(sameContents(card, readOne(write(card, WrittenVersion::v4))));
}

// One of them has another name in version 3.0.
TEST(Version4Test, SecondLinesWithTwoNamesAreValues) {
    for (const Lines& lines :
         {Lines{"X-ADDRESSBOOKSERVER-KIND:", "KIND:"}, Lines{"KIND:", "X-ADDRESSBOOKSERVER-KIND:"}}) {
        const Card card = readOne(cardText({"N:A", lines[0], lines[1]}));
        EXPECT_EQ(unknownLines(card), lines);
        const std::string version4 = write(card, WrittenVersion::v4);
        EXPECT_TRUE(has(written(card, WrittenVersion::v4), "X-ODD-LINE:" + lines[1]));
        EXPECT_EQ(write(readOne(version4), WrittenVersion::v4), version4);
    }
}

TEST(LosslessTest, ACompanyThatIsCalledByItsPhoneGetsNoName) {
    const Card card = readOne(cardText({"X-ABShowAs:COMPANY", "TEL:555"}));
    EXPECT_TRUE(has(written(card), "FN:555"));
    for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
        EXPECT_TRUE(sameContents(readOne(write(card, version)), card));
    }
}

TEST(LosslessTest, TheAddressOfAPictureIsNoData) {
    const Card card = readOne(cardText({"N:A", "PHOTO;ENCODING=b:http://a.example/b"}));
    EXPECT_EQ(unknownLines(card), Lines{"PHOTO:http://a.example/b"});
    for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
        EXPECT_TRUE(has(written(card, version), "PHOTO:http://a.example/b"));
        EXPECT_TRUE(sameContents(readOne(write(card, version)), card));
    }
}

TEST(LosslessTest, TextInBase64HasNoNulls) {
    const Card card = readOne(cardText({"N:A", "NOTE;ENCODING=b:YQBi"}));
    EXPECT_EQ(describe(card, property::kNote), "ab");
    EXPECT_TRUE(readAll(cardText({"N;ENCODING=b:AA"})).cards.empty()); // as if it were empty
}

// The first is that of the card, also where it is what would be written anyway.
TEST(LosslessTest, ASecondUidStaysTheSecond) {
    const std::string first = "22222222-2222-4222-8222-222222222224";
    for (const std::string version : {"3.0", "4.0"}) {
        for (const std::string& uid : {first, "urn:uuid:" + first, std::string("abc")}) {
            const Card card = readOne(cardText({"N:A", "UID:" + uid, "UID:other"}, version));
            for (const WrittenVersion form : {WrittenVersion::v3, WrittenVersion::v4}) {
                const Card again = readOne(write(card, form));
                EXPECT_EQ(again.uid, card.uid) << uid;
                EXPECT_EQ(unknownLines(again), (Lines{"UID:" + uid, "UID:other"}));
                EXPECT_EQ(write(again, form), write(card, form));
            }
        }
    }
}

// The label that is not used would be taken for the entry's, where that is said by TYPE words.
TEST(LosslessTest, ASecondLabelOfAnEntryStaysTheSecond) {
    const Card card = readOne(
        cardText({"N:A", "item1.TEL:1", "item1.X-ABLabel:_$!<Home>!$_", "item1.X-ABLabel:Boat",
                  "item2.X-ABRELATEDNAMES:Ole", "item2.X-ABLabel:_$!<Spouse>!$_", "item2.X-ABLabel:"}));
    EXPECT_EQ(unknownLines(card).back(), "item2.X-ABLabel:");
    for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
        const std::string written = write(card, version);
        EXPECT_TRUE(sameContents(readOne(written), card)) << written;
        EXPECT_EQ(write(readOne(written), version), written);
    }
}

// An IMPP stands beside lines that other readers know, which have no blank there.
TEST(LosslessTest, AMessagingNameHasNoBlankBehindItsScheme) {
    const Card card = readOne(cardText({"N:A", "IMPP:xmpp: 1", "IMPP:skype: 2"}));
    EXPECT_TRUE(has(written(card), "X-JABBER:1"));
    EXPECT_TRUE(has(written(card), "X-SKYPE:2"));
    EXPECT_TRUE(has(written(card), "IMPP;X-SERVICE-TYPE=Jabber:xmpp: 1"));
    EXPECT_TRUE(sameContents(readOne(write(card, WrittenVersion::v4)), card));
}

TEST(LosslessTest, AnOrderOfNamesIsNotUndoneByALineThatNamesNone) {
    const Card card = readOne(cardText({"N:A", "X-ABOrder:LASTFIRST", "X-ABOrder:none"}));
    EXPECT_TRUE(has(written(card), "X-ABOrder:LASTFIRST"));
    EXPECT_TRUE(sameContents(readOne(write(card, WrittenVersion::v3)), card));
}

// It would escape the separators that are put behind it.
TEST(LosslessTest, ABackslashAtTheEndOfComponentsIsText) {
    const Card card = readOne(cardText({"N:A", "ADR:\\", "ADR:Box;;Elm 1,Back\\", "ORG:a;b;c\\"}));
    for (const std::string line : {"ADR:\\\\;;;;;;", "ADR:Box;;Elm 1,Back\\\\;;;;", "ORG:a;b;c\\\\"}) {
        EXPECT_TRUE(has(written(card), line)) << line;
    }
    EXPECT_TRUE(sameContents(readOne(write(card, WrittenVersion::v3)), card));
}

TEST(LosslessTest, ADayWithoutAYearHasATime) {
    const Card card = readOne(cardText({"N:A", "BDAY:--0405T10:20", "ANNIVERSARY:--0405T"}));
    EXPECT_TRUE(has(written(card, WrittenVersion::v4), "BDAY:--0405T1020"));
    EXPECT_TRUE(has(written(card, WrittenVersion::v4), "ANNIVERSARY:--0405T"));
    EXPECT_TRUE(sameContents(readOne(write(card, WrittenVersion::v3)), card));
    const std::string version4 = write(card, WrittenVersion::v4);
    EXPECT_EQ(write(readOne(version4), WrittenVersion::v4), version4);
}

// The slashes that other programs put behind a scheme are none of the name.
TEST(LosslessTest, AMessagingNameMayBeginWithSlashes) {
    const Card card = readOne(cardText({"N:A", "X-AIM:///a", "X-SKYPE://b"}));
    EXPECT_TRUE(has(written(card), "IMPP;X-SERVICE-TYPE=AIM:aim://///a"));
    for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
        EXPECT_TRUE(sameContents(readOne(write(card, version)), card));
    }
}

// Else the name would have another label once it has been written and read again, as the IMPP goes first then.
TEST(LosslessTest, OfTwoLinesOfAMessagingNameTheOneThatSaysALabelHoldsIt) {
    for (const std::string type : {"WORK", "E"}) {
        const std::string labelled = "IMPP;X-SERVICE-TYPE=Skype;TYPE=" + type + ":skype:ida";
        const Card card = readOne(cardText({"N:A", "X-SKYPE:ida", labelled}));
        for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
            EXPECT_TRUE(sameContents(readOne(write(card, version)), card)) << write(card, version);
        }
        EXPECT_TRUE(sameContents(readOne(cardText({"N:A", labelled, "X-SKYPE:ida"})), card));
    }
}

TEST(LosslessTest, AnEmptyOrganizationIsNoFormOfTheNext) {
    const Card card = readOne(cardText({"N:A", "ORG:;;", "ORG:Mill"}));
    EXPECT_TRUE(has(written(card), "ORG:Mill"));
}

// A card may have a parameter with the name by which the address book keeps the form in which a line was read.
TEST(LosslessTest, AParameterOfACardIsNoFormInWhichItWasRead) {
    for (const std::string line : {"N;AS-READ=b:A;;;;", "FN;AS-READ=b:A", "TEL;AS-READ=2:1", "TEL;AS-READ=:1",
                                   "ORG;AS-READ=b:Mill;Bread;Rolls", "NOTE;AS-READ=b;AS-READ=c:a"}) {
        const Card card = readOne(cardText({line, "NICKNAME:c"}));
        EXPECT_TRUE(has(written(card), line)) << testing::PrintToString(written(card));
        EXPECT_EQ(written(readOne(write(card, WrittenVersion::v4))), written(card));
    }
    const Card group = readOne(cardText(
        {"X-ADDRESSBOOKSERVER-KIND:group", "FN;AS-READ=b:Crew", "X-ADDRESSBOOKSERVER-MEMBER;AS-READ=b:1"}));
    EXPECT_TRUE(has(written(group), "FN;AS-READ=b:Crew"));
    EXPECT_TRUE(has(written(group), "X-ADDRESSBOOKSERVER-MEMBER;AS-READ=b:1"));
}

// What other address books would stumble over.

TEST(OtherReadersTest, CaretsAreQuoted) {
    const Card card = readOne(cardText({"N:A", "ADR;LABEL=\"a^nb ^'c^'\":;;Elm 1;;;;"}));
    EXPECT_TRUE(has(written(card), "ADR;LABEL=\"a^nb ^'c^'\":;;Elm 1;;;;"));
}

TEST(OtherReadersTest, ACommaAtAnEndIsNoList) {
    const Card card = readOne(cardText({"N:Berg,;Ida;;;", "ADR:;;Elm 1,;Town;;;"}));
    EXPECT_TRUE(has(written(card), "N:Berg\\,;Ida;;;"));
    EXPECT_TRUE(has(written(card), "ADR:;;Elm 1\\,;Town;;;"));
    const Card lists = readOne(cardText({"N:Berg,Tal;Ida;;;", "ADR:;;Elm 1,Floor 2;Town;;;"}));
    EXPECT_TRUE(has(written(lists), "N:Berg,Tal;Ida;;;"));
    EXPECT_TRUE(has(written(lists), "ADR:;;Elm 1,Floor 2;Town;;;"));
}

TEST(OtherReadersTest, ALabelThatIsOnlyAWordIsThatOfOtherPrograms) {
    const Card card = readOne(cardText({"N:A", "item1.X-ABRELATEDNAMES:Ole", "item1.X-ABLabel:Spouse",
                                        "item2.X-ABDATE:2001-02-03", "item2.X-ABLabel:anniversary"}));
    EXPECT_TRUE(has(written(card), "X-EVOLUTION-SPOUSE:Ole"));
    EXPECT_TRUE(has(written(card), "X-ANNIVERSARY;value=date:2001-02-03"));
    for (const WrittenVersion version : {WrittenVersion::v3, WrittenVersion::v4}) {
        EXPECT_TRUE(sameContents(card, readOne(write(card, version))));
    }
}

TEST(OtherReadersTest, AProfileSaysNothing) {
    EXPECT_EQ(unknownLines(readOne(cardText({"PROFILE:VCARD", "N:A"}))), std::vector<std::string>());
}

} // namespace
} // namespace addressbook::vcard

// Random cards, from a fixed seed, are unchanged when they are written and read.

#include "tests/vcard/support.h"

#include "frameworks/AddressBook/store/store.h"
#include "frameworks/AddressBook/vcard/dates.h"

#include <gtest/gtest.h>

#include <random>

namespace addressbook::vcard {
namespace {

class Maker {
  public:
    explicit Maker(unsigned seed) : random_(seed) {}

    Card card() {
        Card card;
        card.uid = uuidOf(text()) + ":ABPerson";
        for (const BuiltInProperty& each : builtInProperties()) {
            if (each.scope == Scope::group || below(3) == 0) {
                continue;
            }
            if (Value value = make(each); !value.empty()) {
                card.values[std::string(each.name)] = std::move(value);
            }
        }
        card.values[std::string(property::kLast)] = trimmed();
        if (below(2)) {
            card.values[std::string(property::kPersonFlags)] = std::int64_t{below(2) ? 1 : 33};
        }
        if (below(2)) {
            card.values[std::string(property::kImage)] = bytes();
        }
        return card;
    }

    std::size_t below(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
    }

  private:
    // Characters that reading and writing must treat with care, and some that they need not.
    std::string text() {
        static const std::vector<std::string> kParts{"a",         "Z",   ",",        ";",
                                                     ":",         "\\",  "\"",       "\n",
                                                     "=",         "n",   "N",        "^",
                                                     ".",         "+",   "-",        "\t",
                                                     " ",         "'",   "\xC3\xA9", "\xF0\x9F\x9A\xA3",
                                                     "item1",     "\\n", "TYPE=",    "BEGIN:VCARD",
                                                     "END:VCARD", "=3D"};
        std::string result = "x"; // text at the ends of components is trimmed on reading
        for (std::size_t left = below(30); left > 0; --left) {
            result += kParts[below(kParts.size())];
        }
        return result + "y";
    }

    std::string trimmed() { return text(); }

    Bytes bytes() {
        Bytes result(1 + below(300));
        for (std::uint8_t& byte : result) {
            byte = static_cast<std::uint8_t>(below(256));
        }
        return result;
    }

    FloatingDate day() {
        const std::string year = std::to_string(below(5) ? 1900 + below(150) : kNoYear);
        return parseDay(year + "-0" + std::to_string(1 + below(9)) + "-1" + std::to_string(below(10)), 0)
            .value();
    }

    std::string label() {
        static const std::vector<std::string> kLabels{"_$!<Home>!$_",
                                                      "_$!<Work>!$_",
                                                      "_$!<Other>!$_",
                                                      "iPhone",
                                                      "_$!<Mobile>!$_",
                                                      "_$!<HomeFAX>!$_",
                                                      "_$!<Pager>!$_",
                                                      "HOME",
                                                      "_$!<HomePage>!$_",
                                                      "pref",
                                                      "_$!<Spouse>!$_",
                                                      "fax",
                                                      "",
                                                      "voice",
                                                      "boat",
                                                      "_$!<OtherFAX>!$_",
                                                      "_$!<Anniversary>!$_",
                                                      "_$!<Manager>!$_"};
        return below(3) ? kLabels[below(kLabels.size())] : text();
    }

    Value entryValue(std::string_view property, int type) {
        if (type == static_cast<int>(Type::date)) {
            return day();
        }
        if (type == static_cast<int>(Type::string)) {
            return text();
        }
        Dictionary fields;
        if (property == property::kAddress) {
            for (const char* key : {"Street", "City", "State", "ZIP", "Country"}) {
                fields[key] = text();
            }
        }
        if (property == property::kAddress && below(2)) {
            fields["CountryCode"] = std::string("dk");
        }
        if (property == property::kInstantMessage) {
            fields = {{"InstantMessageService", below(2) ? std::string("Skype") : text()},
                      {"InstantMessageUsername", text()}};
        }
        if (property == property::kSocialProfile) {
            fields = {{"url", text()},
                      {"username", std::string("some body")},
                      {"serviceName", std::string("bird")}};
        }
        return fields;
    }

    Value make(const BuiltInProperty& each) {
        const bool kept = each.name == property::kUid || each.name == property::kCreation ||
                          each.name == property::kModification || each.name == property::kHomePage ||
                          each.name == property::kPersonFlags;
        if (kept) {
            return {}; // the framework's own, or not in vCards
        }
        if (each.type == static_cast<int>(Type::date)) {
            return day();
        }
        if (each.type == static_cast<int>(Type::string)) {
            return text();
        }
        MultiValue list;
        for (std::size_t left = 1 + below(4); left > 0; --left) {
            list.entries.push_back({newUuid(), label(), entryValue(each.name, each.type & 0xFF)});
        }
        if (const std::size_t chosen = below(list.entries.size()); chosen > 0) {
            list.primary = list.entries[chosen].identifier;
        }
        return list;
    }

    std::mt19937 random_;
};

TEST(RoundTripTest, RandomCards) {
    Maker maker(20240229);
    for (int round = 0; round < 500; ++round) {
        const Card card = maker.card();
        const std::string text = write(card);
        const ReadResult result = readAll(text);
        ASSERT_EQ(result.problems.size(), 0u) << text;
        ASSERT_EQ(result.cards.size(), 1u) << text;
        for (const auto& [property, value] : card.values) {
            EXPECT_EQ(describe(result.cards[0], property), describe(value)) << property << '\n' << text;
        }
        ASSERT_TRUE(sameContents(card, result.cards[0])) << text;
        ASSERT_EQ(write(result.cards[0]), text);
        const std::string text4 = write(card, WrittenVersion::v4);
        const ReadResult result4 = readAll(text4);
        ASSERT_EQ(result4.cards.size(), 1u) << text4;
        for (const auto& [property, value] : card.values) {
            EXPECT_EQ(describe(result4.cards[0], property), describe(value)) << property << '\n' << text4;
        }
        ASSERT_TRUE(sameContents(card, result4.cards[0])) << text4;
    }
}

TEST(RoundTripTest, UnknownLines) {
    const Card card = readOne(cardText({
        "N;SORT-AS=\"x,y\":A;B",
        "TEL;X-ID=1;type=HOME:1",
        "TEL;X-ID=2;type=HOME:1",
        "TEL;type=boat,MSG,pref:1",
        "item9.ADR;LABEL=\"a^nb\":;;Lane",
        "item9.X-ABADR:no code",
        "item9.X-EXTRA:1",
        "ORG;TYPE=work:Mill",
        "ORG:Lake",
        "NOTE;LANGUAGE=da:hej",
        "KEY;ENCODING=b;TYPE=x:QUJD",
        "X-EMPTY:",
        "X-A;P=\"a;b:c\":v;w\\,x",
        "PHOTO;X-CROP=1:QUJD",
        "PHOTO;VALUE=uri:http://x.example",
        "group.X-B:1",
        "group.X-ABLabel:l",
        "UID:not a uuid",
        "BDAY;ALTID=1:2000-01-02",
        "BDAY;ALTID=1;VALUE=text:then",
        "EMAIL;PREF=3:a",
        "EMAIL;PREF=2:b",
    }));
    const Card again = readOne(write(card));
    EXPECT_EQ(unknownLines(again), unknownLines(card));
    EXPECT_TRUE(sameContents(card, again));
    EXPECT_EQ(write(again), write(card));
    EXPECT_GT(unknownLines(card).size(), 15u);
}

// Each line with what was once lost or doubled by it.
TEST(RoundTripTest, UnknownLinesThatAreHardToTellApart) {
    const std::vector<std::vector<std::string>> cards{
        {"TEL;type=HOME:1", "TEL;PREF=1:2", "TEL;type=HOME;PREF=3:1"}, // equal lines, one with parameters
        {"item1.TEL:1", "item1.EMAIL:a", "item1.X-ABLabel:both", "item1.X-MORE:x"},
        {"item1.TEL:1", "item1.X-ABLabel:one", "item1.X-ABLabel:two", "item1.X-MORE:x"},
        {"item1.ADR:;;a", "item1.ADR:;;b", "item1.X-ABADR:dk", "item1.X-MORE:x"},
        {"NOTE;QUOTED-PRINTABLE:a=00b", "X-A;QUOTED-PRINTABLE:a=00b"},
    };
    for (std::vector<std::string> lines : cards) {
        lines.insert(lines.begin(), "N:A");
        const Card card = readOne(cardText(lines));
        const Card again = readOne(write(card));
        EXPECT_EQ(unknownLines(again), unknownLines(card)) << write(card);
        EXPECT_TRUE(sameContents(card, again)) << write(card);
        EXPECT_EQ(write(again), write(card));
    }
}

TEST(RoundTripTest, LabelsChangedInsideAGroupStayApart) {
    Card card =
        readOne(cardText({"N:A", "item1.TEL:1", "item1.EMAIL:a", "item1.X-ABLabel:both", "item1.X-MORE:x"}));
    card.values["Email"].as<MultiValue>()->entries[0].label = "other";
    const Card again = readOne(write(card));
    EXPECT_EQ(describe(again, property::kPhone), "[both:1]");
    EXPECT_EQ(describe(again, property::kEmail), "[other:a]");
}

} // namespace
} // namespace addressbook::vcard

#include "frameworks/AddressBook/store/interned_words.h"
#include "frameworks/AddressBook/store/record_codec.h"
#include "frameworks/AddressBook/values/property.h"
#include "frameworks/AddressBook/values/uid.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

namespace addressbook::test {
namespace {

const Value kManyTypes = MultiValue{
    {{"0F0E0D0C-0B0A-4908-8706-050403020100", "_$!<Home>!$_",
      Dictionary{{"City", std::string("Ulm")},
                 {"own", Array{1.5, std::int64_t{-3}, Date{2}, Bytes{1}, Value()}}}},
     {"short", "own label",
      DateComponents{.year = 1604, .month = 2, .day = 29, .hour = {}, .minute = {}, .second = {}}}},
    "short"};

TEST(CardTest, ValuesReturnUnchanged) {
    EXPECT_EQ(decodeValue(encodeValue(kManyTypes)), kManyTypes);
}

// What the list in place holds, decoded.
Value decodedList(std::string_view bytes) {
    const EncodedList list = listIn(bytes);
    MultiValue values{{}, list.primary.text()};
    for (const EncodedEntry& entry : list.entries) {
        values.entries.push_back(
            {entry.identifier.text(), std::string(entry.label), decodeValue(entry.value)});
    }
    return values;
}

TEST(CardTest, ListsAndTextsAreReadInPlace) {
    EXPECT_TRUE(holdsList(encodeValue(kManyTypes)));
    EXPECT_EQ(decodedList(encodeValue(kManyTypes)), kManyTypes);
    EXPECT_EQ(decodedList(encodeValue(MultiValue{})), Value(MultiValue{}));
    EXPECT_FALSE(holdsList(encodeValue(Array{})));
    EXPECT_FALSE(holdsList(""));
    EXPECT_THROW(listIn(encodeValue(Array{})), DamagedRecord);
    EXPECT_EQ(textIn(encodeValue(std::string("a\0b", 3))), std::string_view("a\0b", 3));
    EXPECT_EQ(textIn(encodeValue(Bytes{1})), std::nullopt);
    EXPECT_EQ(textIn(""), std::nullopt);
    EXPECT_THROW(textIn(encodeValue(std::string("text")) + "x"), DamagedRecord);
}

TEST(CardTest, PropertiesAreFoundByWellKnownAndByOtherNames) {
    const std::string card = encodeRecord({{"First", "1"}, {"own", "2"}, {"Last", "3"}});
    EXPECT_EQ(findProperty(card, "First"), "1");
    EXPECT_EQ(findProperty(card, "Last"), "3");
    EXPECT_EQ(findProperty(card, "own"), "2");
    EXPECT_EQ(findProperty(card, "Middle"), std::nullopt);
    EXPECT_EQ(findProperty(card, "other"), std::nullopt);
}

TEST(CardTest, EveryCutEndIsNoticed) {
    const std::string bytes = encodeValue(kManyTypes);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_THROW(decodeValue(std::string_view(bytes).substr(0, length)), DamagedRecord) << length;
        EXPECT_THROW(listIn(std::string_view(bytes).substr(0, length)), DamagedRecord) << length;
    }
    EXPECT_THROW(decodeValue(bytes + "x"), DamagedRecord);
}

TEST(CardTest, EveryFlippedBitIsNoticed) {
    const std::string card =
        encodeRecord({{"First", encodeValue(std::string("Ada"))}, {"Phone", encodeValue(kManyTypes)}});
    for (std::size_t bit = 0; bit < card.size() * 8; ++bit) {
        std::string flipped = card;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
        EXPECT_THROW(verifyChecksum(flipped), DamagedRecord) << bit;
    }
}

// A list in place is handed out in parts, so its damage has to be seen at once.
TEST(CardTest, AListInPlaceIsDamagedWhenTheDecodedOneIs) {
    const std::string bytes = encodeValue(kManyTypes);
    int damaged = 0;
    for (std::size_t bit = 8; bit < bytes.size() * 8; ++bit) {
        std::string flipped = bytes;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
        std::optional<Value> whole;
        try {
            whole = decodeValue(flipped);
        } catch (const DamagedRecord&) {
            ++damaged;
            EXPECT_THROW(listIn(flipped), DamagedRecord) << bit;
            continue;
        }
        EXPECT_EQ(encodeValue(decodedList(flipped)), encodeValue(*whole)) << bit;
    }
    EXPECT_GT(damaged, 100);
}

TEST(CardTest, RandomBytesAreNoValueOrSomeValueButNeverACrash) {
    unsigned state = 1;
    for (int round = 0; round < 20000; ++round) {
        std::string bytes;
        for (int i = 0; i < 24; ++i) {
            state = state * 1664525 + 1013904223;
            bytes.push_back(static_cast<char>((state >> 24) % 11));
        }
        try {
            const Value value = decodeValue(bytes);
            EXPECT_EQ(encodeValue(decodeValue(encodeValue(value))), encodeValue(value));
        } catch (const DamagedRecord&) {
        }
    }
}

TEST(CardTest, TooDeepANestIsRefused) {
    Value value;
    for (int depth = 0; depth < kMaxValueDepth; ++depth) {
        value = Array{value};
    }
    EXPECT_EQ(decodeValue(encodeValue(value)), value);
    EXPECT_THROW(encodeValue(Array{value}), std::length_error);
}

TEST(CardTest, DamagedBytesThatNestTooDeeplyAreToldAsSuch) {
    const std::string array = encodeValue(Array{Value()});
    const std::string around = array.substr(0, array.size() - encodeValue(Value()).size());
    std::string deep = encodeValue(Value());
    for (int depth = 0; depth <= kMaxValueDepth; ++depth) {
        deep.insert(0, around);
    }
    const auto problem = [](const auto& read) -> std::string {
        try {
            read();
        } catch (const DamagedRecord& error) {
            return error.what();
        }
        return "read";
    };
    EXPECT_EQ(problem([&] { decodeValue(deep); }), "a value is nested too deeply");
    const std::string list = encodeValue(MultiValue{{{"", "", Value()}}, ""});
    const std::string inList = list.substr(0, list.size() - encodeValue(Value()).size()) + deep;
    std::vector<EncodedLeaf> leaves; // which skips what it does not take apart
    EXPECT_EQ(problem([&] { leavesIn(inList, leaves); }), "a value is nested too deeply");
    // A number has at most ten bytes.
    const std::string whole = encodeValue(std::int64_t{0}).substr(0, 1);
    EXPECT_EQ(problem([&] { decodeValue(whole + std::string(9, '\x80') + '\x00'); }), "read");
    EXPECT_EQ(problem([&] { decodeValue(whole + std::string(11, '\x80')); }), "a number never ends");
}

TEST(CardTest, PartsAreTakenOutWhole) {
    const Value text = std::string("DE");
    const Value inner =
        Dictionary{{"City", std::string("Bonn")}, {"own", Array{std::string("a"), std::int64_t{2}}}};
    const std::string bytes = encodeValue(Dictionary{{"Country", std::string("DE")}, {"inner", inner}});
    std::vector<EncodedLeaf> leaves;
    leavesIn(bytes, leaves);
    ASSERT_EQ(leaves.size(), 2U);
    EXPECT_EQ(leaves[0].key, "Country");
    EXPECT_EQ(decodeValue(leaves[0].value), Value(std::string("DE")));
    EXPECT_EQ(leaves[1].key, "inner");
    EXPECT_EQ(decodeValue(leaves[1].value), inner);
    const Value list = MultiValue{{{"1", "home", text}, {"2", "work", inner}}, "2"};
    const std::string nested = encodeValue(MultiValue{{{"3", "own", list}, {"4", "", text}}, "3"});
    leaves.clear();
    leavesIn(nested, leaves);
    ASSERT_EQ(leaves.size(), 2U);
    EXPECT_EQ(decodeValue(leaves[0].value), list);
    EXPECT_EQ(leaves[0].label, "own");
    EXPECT_EQ(decodeValue(leaves[1].value), text);
}

TEST(CardTest, UniqueIdsArePackedOnlyWhenTheyReturnUnchanged) {
    for (const char* text :
         {"0F0E0D0C-0B0A-4908-8706-050403020100", "0F0E0D0C-0B0A-4908-8706-050403020100:ABPerson",
          "0F0E0D0C-0B0A-4908-8706-050403020100:ABGroup"}) {
        const auto packed = packUid(text);
        ASSERT_TRUE(packed) << text;
        EXPECT_EQ(unpackUid(*packed), text);
    }
    for (const char* text :
         {"", "0f0e0d0c-0b0a-4908-8706-050403020100", "0F0E0D0C-0B0A-4908-8706-050403020100:Other",
          "0F0E0D0C00B0A-4908-8706-050403020100", "0F0E0D0C-0B0A-4908-8706-05040302010"}) {
        EXPECT_FALSE(packUid(text)) << text;
    }
    const std::vector<std::string> uids{"odd", "0F0E0D0C-0B0A-4908-8706-050403020100:ABGroup", ""};
    EXPECT_EQ(decodeUids(encodeUids(uids)), uids);
}

// The numbers are in every database: this fails when a word is moved instead of added at the end.
TEST(UidTest, ForkedChildDoesNotGiveTheIdentifiersOfItsParent) {
    newUuid(); // so that random numbers are in store
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        const std::string uuid = newUuid();
        _exit(write(ends[1], uuid.data(), uuid.size()) == static_cast<ssize_t>(uuid.size()) ? 0 : 1);
    }
    close(ends[1]);
    std::string theirs(36, ' ');
    EXPECT_EQ(read(ends[0], theirs.data(), theirs.size()), 36);
    close(ends[0]);
    waitpid(child, nullptr, 0);
    EXPECT_NE(newUuid(), theirs);
    EXPECT_EQ(theirs[14], '4');
}

TEST(CardTest, TheNumbersOfWordsStay) {
    EXPECT_EQ(wordCode("First"), 1);
    EXPECT_EQ(wordCode("GroupName"), 32);
    EXPECT_EQ(wordCode("Street"), 35);
    EXPECT_EQ(wordCode("_$!<Home>!$_"), 41);
    EXPECT_EQ(wordCode("UID"), 65);
    EXPECT_EQ(wordCode("no such word"), 0);
    EXPECT_EQ(wordOf(66), "");
    for (std::uint64_t code = 1; code <= 65; ++code) {
        EXPECT_EQ(wordCode(wordOf(code)), static_cast<int>(code));
    }
}

TEST(PropertiesTest, HaveTheTypesOfTheFramework) {
    EXPECT_EQ(builtInProperties().size(), 36U);
    EXPECT_EQ(builtInType(Kind::person, "UID"), 1);
    EXPECT_EQ(builtInType(Kind::group, "Modification"), 4);
    EXPECT_EQ(builtInType(Kind::person, "Birthday"), 4);
    EXPECT_EQ(builtInType(Kind::person, "ABPersonFlags"), 2);
    EXPECT_EQ(builtInType(Kind::person, "Phone"), 257);
    EXPECT_EQ(builtInType(Kind::person, "ABDate"), 260);
    EXPECT_EQ(builtInType(Kind::person, "Address"), 262);
    EXPECT_EQ(builtInType(Kind::group, "GroupName"), 1);
    EXPECT_EQ(builtInType(Kind::person, "GroupName"), 0);
    EXPECT_EQ(builtInType(Kind::group, "First"), 0);
    EXPECT_EQ(builtInType(Kind::person, ".Image"), 7);
    for (const BuiltInProperty& row : builtInProperties()) {
        EXPECT_FALSE(isInternal(row.name)) << row.name;
    }
}

TEST(ValuesTest, KnowTheirType) {
    EXPECT_EQ(typeOf(Value()), 0);
    EXPECT_EQ(typeOf(Value(std::string("x"))), 1);
    EXPECT_EQ(typeOf(Value(DateComponents{})), 8);
    EXPECT_EQ(typeOf(Value(Bytes{})), 7);
    EXPECT_EQ(typeOf(Value(Dictionary{})), 6);
    EXPECT_EQ(typeOf(Value(Array{})), 5);
    EXPECT_EQ(typeOf(Value(MultiValue{{{"", "", 1.5}, {"", "", 2.5}}, ""})), 259);
    EXPECT_EQ(typeOf(Value(MultiValue{{{"", "", 1.5}, {"", "", std::int64_t{2}}}, ""})), 0);
    EXPECT_EQ(typeOf(Value(MultiValue{})), 0);
}

} // namespace
} // namespace addressbook::test

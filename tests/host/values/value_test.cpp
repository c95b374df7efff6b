#include "host/values/value.h"

#include "host/values/text.h"

#include <gtest/gtest.h>

namespace host {

namespace {

constexpr ValueType kTypes[] = {ValueType::text, ValueType::number,    ValueType::date,
                                ValueType::time, ValueType::timestamp, ValueType::container};

Value numberOf(std::u16string_view text) {
    return Value::number(Number::fromText(text));
}
std::string text(const Value& value) {
    return toUtf8(value.asText());
}

DateTime moment() {
    return DateTime(*dayNumber(2010, 12, 25), 3661);
}

Value pictureNamed(const char16_t* name) {
    Container container;
    container.setFileNames(name);
    return Value::container(container);
}

// What each value is as each type, by its text; "none" for a value that cannot be read so.
TEST(ValueTest, ReadsAsEveryType) {
    struct Row {
        Value value;
        const char* number;
        const char* date;
        const char* time;
        const char* timestamp;
        bool isTrue;
    };
    const Row rows[] = {
        {Value::text(u"12/25/2010"), "12252010", "12/25/2010", "0:00:00", "12/25/2010 12:00:00 AM", true},
        {Value::text(u"1:01:01"), "10101", "?", "1:01:01", "?", true},
        {Value::text(u"12/25/2010 1:01:01 AM"), "1225201010101", "12/25/2010", "1:01:01",
         "12/25/2010 1:01:01 AM", true},
        {Value::text(u"none"), "", "?", "?", "?", false},
        {Value::text(u"a0"), "0", "?", "?", "?", false},
        {Value::number(734131), "734131", "12/25/2010", "203:55:31", "1/9/0001 11:55:31 AM", true},
        {numberOf(u"1.9"), "1.9", "1/1/0001", "0:00:01.9", "1/1/0001 12:00:01.9 AM", true},
        {Value::number(0), "0", "?", "0:00:00", "1/1/0001 12:00:00 AM", false},
        {Value::number(-1), "-1", "?", "-0:00:01", "?", true},
        {numberOf(u"1e300"), nullptr, "?", "?", "?", true},
        {Value::date(moment()), "734131", "12/25/2010", "?", "12/25/2010 12:00:00 AM", true},
        {Value::time(moment()), "3661", "?", "1:01:01", "1/1/0001 1:01:01 AM", true},
        {Value::timestamp(moment()), "63428835661", "12/25/2010", "1:01:01", "12/25/2010 1:01:01 AM", true},
        {pictureNamed(u"5.png"), "?", "?", "?", "?", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(text(row.value));
        if (row.number != nullptr) {
            EXPECT_EQ(text(row.value.convertedTo(ValueType::number)), row.number);
        }
        EXPECT_EQ(text(row.value.convertedTo(ValueType::date)), row.date);
        EXPECT_EQ(text(row.value.convertedTo(ValueType::time)), row.time);
        EXPECT_EQ(text(row.value.convertedTo(ValueType::timestamp)), row.timestamp);
        EXPECT_EQ(row.value.asBoolean(), row.isTrue);
        EXPECT_FALSE(row.value.isEmpty());
    }
}

TEST(ValueTest, EmptyIsEmptyAsEveryType) {
    for (const ValueType from : kTypes) {
        for (const ValueType to : kTypes) {
            const Value value = Value::empty(from).convertedTo(to);
            EXPECT_EQ(value.type(), to);
            EXPECT_TRUE(value.isEmpty());
            EXPECT_EQ(value.asText(), u"");
            EXPECT_EQ(value.asNumber(), std::nullopt);
            EXPECT_EQ(value.asDate(), std::nullopt);
            EXPECT_FALSE(value.asBoolean());
        }
    }
    EXPECT_TRUE(Value::text(u"").isEmpty());
    EXPECT_TRUE(Value::container({}).isEmpty());
    EXPECT_EQ(Value::container({}).type(), ValueType::container);
    EXPECT_EQ(Value().type(), ValueType::text);
}

TEST(ValueTest, InvalidStaysInvalid) {
    const Value invalid = Value::invalid();
    EXPECT_FALSE(invalid.isEmpty());
    EXPECT_EQ(invalid.asText(), u"?");
    EXPECT_FALSE(invalid.asBoolean());
    EXPECT_EQ(invalid.asTimestamp(), std::nullopt);
    for (const ValueType to : kTypes) {
        EXPECT_FALSE(invalid.convertedTo(to).isValid());
    }
    EXPECT_FALSE(Value::timestamp(DateTime(1, -1)).isValid());
    EXPECT_FALSE(Value::text(std::u16string(500, u'1')).convertedTo(ValueType::number).isValid());
}

TEST(ValueTest, KeepsItsOwnPartAlone) {
    EXPECT_EQ(Value::date(moment()).asTimestamp()->seconds(), 0);
    EXPECT_EQ(Value::time(moment()).asTimestamp()->day(), 1);
    EXPECT_EQ(text(Value::timestamp(DateTime(1, 90000))), "1/2/0001 1:00:00 AM");
    EXPECT_EQ(text(Value::time(DateTime(1, 90000))), "25:00:00");
}

TEST(ValueTest, ContainerShowsItsFileNames) {
    EXPECT_EQ(text(pictureNamed(u"a.png")), "a.png");
    EXPECT_EQ(pictureNamed(u"a.png").asContainer().count(), 1U);
    Container unnamed;
    unnamed.setPictureSize(1, 1);
    EXPECT_EQ(text(Value::container(unnamed)), "");
    EXPECT_FALSE(Value::container(unnamed).isEmpty());
    EXPECT_TRUE(Value::text(u"a.png").asContainer().isEmpty());
}

TEST(ValueTest, SharesItsText) {
    const Value value = Value::text(std::u16string(1000, u'x'));
    const Value copies[] = {value, value};
    EXPECT_EQ(&copies[0].storedText(), &copies[1].storedText());
    EXPECT_EQ(Value::number(5).storedText(), u"");
}

} // namespace

} // namespace host

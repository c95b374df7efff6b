#pragma once

// A value of a calculation: of one type, and readable as the others. Here is the one place that says how.
//
//   text       its number is made of its digits; its date, time or time stamp is what it spells
//   number     as a date, the number of the day; as a time, seconds; as a time stamp, seconds from the start of day 1
//   date       its number is the number of its day (1 January of year 1 is 1); as a time stamp, its midnight
//   time       its number is its seconds; as a time stamp, seconds from the start of day 1
//   timestamp  its number is its seconds from the start of day 1; as a date or a time, that part of it
//   container  its text is its file names; it is no number and no date
//   invalid    what could not be computed: its text is "?", it is nothing else
//
// An empty value is empty as every type.

#include "host/values/container.h"
#include "host/values/date_time.h"
#include "host/values/number.h"
#include "host/values/text_style.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace host {

enum class ValueType : uint8_t { invalid, text, number, date, time, timestamp, container };

// What is remembered with a text for as long as the text lives, so that it need not be found out again.
struct TextNote {
    virtual ~TextNote() = default;
    TextNote() = default;
    TextNote(const TextNote&) = delete;
    TextNote& operator=(const TextNote&) = delete;
};

// A value. It does not change; copying is cheap and shares what is large.
class Value {
  public:
    Value() = default; // empty text

    static Value invalid() { return Value(ValueType::invalid, {}); }
    static Value empty(ValueType type) { return Value(type, {}); }
    static Value text(std::u16string text);
    static Value text(std::u16string_view text) { return Value::text(std::u16string(text)); }
    static Value text(const char16_t* text) { return Value::text(std::u16string(text)); }
    // A text with styles; they do not count when values are compared.
    static Value styledText(std::u16string text, StyledRuns styles);
    static Value number(Number number) { return Value(ValueType::number, std::move(number)); }
    // The day or the time alone counts for a date or a time. A time stamp's time is brought inside its day.
    static Value date(const DateTime& day) { return Value(ValueType::date, DateTime(day.day())); }
    static Value time(const DateTime& time) { return Value(ValueType::time, DateTime(1, time.seconds())); }
    static Value timestamp(const DateTime& moment);
    static Value container(Container container);

    ValueType type() const noexcept { return type_; }
    bool isValid() const noexcept { return type_ != ValueType::invalid; }
    // No text, no number, no streams. What could not be computed is not empty.
    bool isEmpty() const noexcept;

    std::u16string asText() const;
    // Nothing when the value is empty or is no number: a text without digits, a container.
    std::optional<Number> asNumber() const;
    // Whether it is a number other than 0, or a container with streams.
    bool asBoolean() const;
    // The part of the answer that the name says; nothing when the value is empty or spells no such thing.
    std::optional<DateTime> asDate() const;
    std::optional<DateTime> asTime() const;
    std::optional<DateTime> asTimestamp() const;
    // The streams; none unless the value is a container.
    const Container& asContainer() const noexcept;

    // The text of a text value, without a copy; empty for every other type. Lives as long as a value that
    // shares it.
    const std::u16string& storedText() const noexcept;

    // The styles of a text value; none for every other one.
    const StyledRuns& styles() const noexcept;

    // What was remembered with a text value; null for none. A note does not change what the value is; values
    // that share the text share it. Not for several threads at once.
    const TextNote* note() const noexcept;
    // Remembers something with a text value in place of what was; nothing happens to values without a text.
    void setNote(std::shared_ptr<const TextNote> note) const;

    // The value as another type: empty when it is empty, invalid when it cannot be read so.
    Value convertedTo(ValueType type) const;

  private:
    struct TextData {
        std::u16string text;
        StyledRuns styles;
        mutable std::shared_ptr<const TextNote> note;
    };
    using Text = std::shared_ptr<const TextData>;
    using Streams = std::shared_ptr<const Container>;
    using Content =
        std::variant<std::monostate, Text, Number, DateTime, Streams>; // nothing: empty, or invalid

    Value(ValueType type, Content content) : type_(type), content_(std::move(content)) {}
    std::optional<DateTime> asDateTime(ValueType wanted) const;

    ValueType type_ = ValueType::text;
    Content content_;
};

} // namespace host

#pragma once

// A value of a calculation. It has one type and can be read as the others:
//
//   text       as a number, all its digits; as a date, time or time stamp, the one that it spells
//   number     as a date, the day of that number; as a time, seconds; as a time stamp, seconds from day 1
//   date       as a number, the number of its day (1 January of year 1 is 1); as a time stamp, its midnight
//   time       as a number, its seconds; as a time stamp, that many seconds from the start of day 1
//   timestamp  as a number, its seconds from the start of day 1; as a date or a time, that part of it
//   container  as text, its file names; never a number or a date
//   invalid    a value that could not be computed: as text "?", never anything else
//
// Every type also has an empty value, which is empty as any other type.

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

// Something derived from a text that is kept with it for as long as the text lives, so that it is computed
// once.
struct TextNote {
    virtual ~TextNote() = default;
    TextNote() = default;
    TextNote(const TextNote&) = delete;
    TextNote& operator=(const TextNote&) = delete;

    // Returns the text, for Value::written().
    virtual std::u16string text() const { return {}; }
};

// An immutable value. Copying is cheap: copies share texts, large numbers and streams.
class Value {
  public:
    Value() = default; // empty text

    static Value invalid() { return Value(ValueType::invalid, {}); }
    static Value empty(ValueType type) { return Value(type, {}); }
    static Value text(std::u16string text);
    static Value text(std::u16string_view text) { return Value::text(std::u16string(text)); }
    static Value text(const char16_t* text) { return Value::text(std::u16string(text)); }
    // Returns a text with styles, which are ignored when values are compared.
    static Value styledText(std::u16string text, StyledRuns styles);
    // A text that is written when it is first asked for, by a note that is kept with it. The text must not be empty.
    static Value written(std::shared_ptr<const TextNote> note);
    static Value number(Number number) { return Value(ValueType::number, std::move(number)); }
    // Return values of a date, of which only the day counts; a time, of which only the time counts; and a
    // time stamp, whose time is carried into its day (DateTime::normalized).
    static Value date(const DateTime& day) { return Value(ValueType::date, DateTime(day.day())); }
    static Value time(const DateTime& time) { return Value(ValueType::time, DateTime(1, time.seconds())); }
    static Value timestamp(const DateTime& moment);
    static Value container(Container container);

    ValueType type() const noexcept { return type_; }
    bool isValid() const noexcept { return type_ != ValueType::invalid; }
    // Whether the value is empty: no text, no number, no streams. An invalid value is not empty.
    bool isEmpty() const noexcept;

    std::u16string asText() const;
    // Returns the number; nothing when the value is empty or has none, as a text without digits or a
    // container.
    std::optional<Number> asNumber() const;
    // Whether the value is a number other than 0, or a container with streams.
    bool asBoolean() const;
    // Return the value as a date, a time, or a time stamp; nothing when it is empty or cannot be read as one.
    std::optional<DateTime> asDate() const;
    std::optional<DateTime> asTime() const;
    std::optional<DateTime> asTimestamp() const;
    // Returns the streams; an empty container unless the value is a container.
    const Container& asContainer() const noexcept;

    // Returns the text of a text value, without a copy; empty for every other type. The reference is valid as
    // long as any value that shares the text.
    const std::u16string& storedText() const;

    // Returns the styles of a text value; none for every other type.
    const StyledRuns& styles() const noexcept;

    // Returns the note kept with a text value; null for none. Values that share a text share its note, which
    // is no part of the value. Not thread-safe.
    const TextNote* note() const noexcept;
    // Keeps a note with a text value, in place of the one before. Does nothing for values of other types. Not
    // thread-safe.
    void setNote(std::shared_ptr<const TextNote> note) const;

    // Returns the text, and the note; without a copy when nothing else shares them. The note is null when something
    // does. For who has the value to itself, and does not need it any more.
    std::u16string takeText() &&;
    std::shared_ptr<const TextNote> takeNote() &&;

    // Returns the value as another type: an empty one when it is empty, invalid when it cannot be read so.
    Value convertedTo(ValueType type) const;

  private:
    struct TextData {
        std::u16string text;
        StyledRuns styles;
        std::shared_ptr<const TextNote> note;
        bool isWritten = true; // else the note writes the text when it is asked for
    };
    using Text = std::shared_ptr<TextData>;
    using Streams = std::shared_ptr<const Container>;
    using Content =
        std::variant<std::monostate, Text, Number, DateTime, Streams>; // nothing: empty, or invalid

    Value(ValueType type, Content content) : type_(type), content_(std::move(content)) {}
    std::optional<DateTime> asDateTime(ValueType wanted) const;

    ValueType type_ = ValueType::text;
    Content content_;
};

} // namespace host

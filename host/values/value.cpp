#include "host/values/value.h"

#include "host/values/formats.h"

#include <algorithm>

namespace host {

namespace {

// Returns the number's text with the decimal point of the formats in use.
std::u16string numberText(const Number& number) {
    std::u16string text = number.toText();
    if (formats().decimalPoint != u'.') {
        std::replace(text.begin(), text.end(), u'.', formats().decimalPoint);
    }
    return text;
}

} // namespace

Value Value::text(std::u16string text) {
    if (text.empty()) {
        return {};
    }
    return Value(ValueType::text, std::make_shared<TextData>(TextData{std::move(text), {}, nullptr}));
}

Value Value::styledText(std::u16string text, StyledRuns styles) {
    if (text.empty()) {
        return {};
    }
    return Value(ValueType::text, std::make_shared<TextData>(
                                      TextData{std::move(text), simplifiedRuns(std::move(styles)), nullptr}));
}

Value Value::written(std::shared_ptr<const TextNote> note) {
    return Value(ValueType::text, std::make_shared<TextData>(TextData{{}, {}, std::move(note), false}));
}

Value Value::timestamp(const DateTime& moment) {
    const auto normalized = moment.normalized();
    return normalized ? Value(ValueType::timestamp, *normalized) : invalid();
}

Value Value::container(Container container) {
    if (container.isEmpty()) {
        return empty(ValueType::container);
    }
    return Value(ValueType::container, std::make_shared<const Container>(std::move(container)));
}

bool Value::isEmpty() const noexcept {
    return isValid() && std::holds_alternative<std::monostate>(content_);
}

const std::u16string& Value::storedText() const {
    static const std::u16string none;
    const Text* text = std::get_if<Text>(&content_);
    if (text == nullptr) {
        return none;
    }
    TextData& data = **text;
    if (!data.isWritten) {
        data.text = data.note->text();
        data.isWritten = true;
    }
    return data.text;
}

std::u16string Value::takeText() && {
    const Text* text = std::get_if<Text>(&content_);
    if (text == nullptr || text->use_count() > 1) {
        return asText();
    }
    storedText();
    return std::move((*text)->text);
}

std::shared_ptr<const TextNote> Value::takeNote() && {
    const Text* text = std::get_if<Text>(&content_);
    return text != nullptr && text->use_count() == 1 ? std::move((*text)->note) : nullptr;
}

const StyledRuns& Value::styles() const noexcept {
    static const StyledRuns none;
    const Text* text = std::get_if<Text>(&content_);
    return text != nullptr ? (*text)->styles : none;
}

const TextNote* Value::note() const noexcept {
    const Text* text = std::get_if<Text>(&content_);
    return text != nullptr ? (*text)->note.get() : nullptr;
}

void Value::setNote(std::shared_ptr<const TextNote> note) const {
    if (const Text* text = std::get_if<Text>(&content_)) {
        storedText(); // which the note before may still have to write
        (*text)->note = std::move(note);
    }
}

const Container& Value::asContainer() const noexcept {
    static const Container none;
    const Streams* streams = std::get_if<Streams>(&content_);
    return streams != nullptr ? **streams : none;
}

std::u16string Value::asText() const {
    if (!isValid()) {
        return u"?";
    }
    if (isEmpty()) {
        return {};
    }
    switch (type_) {
    case ValueType::number:
        return numberText(std::get<Number>(content_));
    case ValueType::date:
        return std::get<DateTime>(content_).dateText();
    case ValueType::time:
        return std::get<DateTime>(content_).timeText();
    case ValueType::timestamp:
        return std::get<DateTime>(content_).timestampText();
    case ValueType::container:
        return asContainer().fileNames().value_or(u"");
    case ValueType::text:
    case ValueType::invalid:
        break;
    }
    return storedText();
}

std::optional<Number> Value::asNumber() const {
    if (!isValid() || isEmpty()) {
        return std::nullopt;
    }
    switch (type_) {
    case ValueType::text:
        if (Number::standsIn(storedText())) {
            try {
                return Number::fromText(storedText(), formats().decimalPoint);
            } catch (const NumberError&) {
                return std::nullopt; // more digits than a Number may have
            }
        }
        return std::nullopt;
    case ValueType::number:
        return std::get<Number>(content_);
    case ValueType::date:
        return Number(std::get<DateTime>(content_).day());
    case ValueType::time:
        return std::get<DateTime>(content_).seconds();
    case ValueType::timestamp:
        return std::get<DateTime>(content_).timestampSeconds();
    case ValueType::container:
    case ValueType::invalid:
        break;
    }
    return std::nullopt;
}

bool Value::asBoolean() const {
    if (type_ == ValueType::container) {
        return !isEmpty();
    }
    const auto number = asNumber();
    return number && !number->isZero();
}

std::optional<DateTime> Value::asDateTime(ValueType wanted) const {
    if (type_ == ValueType::text) {
        // A time goes first where times are written with points, as dates may be.
        const auto time = wanted == ValueType::time ? DateTime::timeFromText(storedText()) : std::nullopt;
        return time ? time
                    : DateTime::timestampFromText(storedText()); // which is also read from a date alone
    }
    if (const DateTime* moment = std::get_if<DateTime>(&content_)) {
        const bool hasDay = type_ != ValueType::time;
        const bool hasTime = type_ != ValueType::date;
        const bool answers = (wanted != ValueType::date || hasDay) && (wanted != ValueType::time || hasTime);
        return answers ? wanted == ValueType::timestamp ? moment->normalized() : std::optional(*moment)
                       : std::nullopt;
    }
    const Number* number = std::get_if<Number>(&content_);
    if (number == nullptr) {
        return std::nullopt;
    }
    switch (wanted) {
    case ValueType::date: {
        const int64_t day = number->floor().toInt64();
        return day >= 1 && day <= kLastDay ? std::optional(DateTime(static_cast<int32_t>(day)))
                                           : std::nullopt;
    }
    case ValueType::time:
        return DateTime::fromSeconds(*number);
    default:
        return DateTime::fromTimestampSeconds(*number);
    }
}

std::optional<DateTime> Value::asDate() const {
    const auto moment = asDateTime(ValueType::date);
    return moment ? std::optional(DateTime(moment->day())) : std::nullopt;
}

std::optional<DateTime> Value::asTime() const {
    const auto moment = asDateTime(ValueType::time);
    return moment ? std::optional(DateTime(1, moment->seconds())) : std::nullopt;
}

std::optional<DateTime> Value::asTimestamp() const {
    return asDateTime(ValueType::timestamp);
}

Value Value::convertedTo(ValueType type) const {
    if (type == type_ || !isValid()) {
        return *this;
    }
    if (isEmpty()) {
        return empty(type);
    }
    switch (type) {
    case ValueType::text:
        return text(asText());
    case ValueType::number: {
        auto number = asNumber();
        if (number) {
            return Value::number(std::move(*number));
        }
        return type_ == ValueType::text && !Number::standsIn(storedText()) ? empty(type) : invalid();
    }
    case ValueType::date: {
        const auto day = asDate();
        return day ? date(*day) : invalid();
    }
    case ValueType::time: {
        const auto clock = asTime();
        return clock ? time(*clock) : invalid();
    }
    case ValueType::timestamp: {
        const auto moment = asTimestamp();
        return moment ? timestamp(*moment) : invalid();
    }
    case ValueType::container:
    case ValueType::invalid:
        break;
    }
    return invalid();
}

} // namespace host

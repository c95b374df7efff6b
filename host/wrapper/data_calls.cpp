// FM_Data_*.
#include "host/values/locales.h"
#include "host/wrapper/fonts.h"
#include "host/wrapper/guard.h"
#include "host/wrapper/host_styles.h"
#include "host/wrapper/objects.h"

#pragma GCC diagnostic ignored "-Wignored-qualifiers" // the interface's own

using fmx::_fmxcpt;
using fmx::Data;
using fmx::errcode;
using fmx::int32;
using host::guarded;
using host::inside;
using host::outside;
using host::self;
using host::Value;
using host::ValueType;

// The native types have the numbers of ValueType; there is one more, for a number that is true or false.
static_assert(static_cast<int>(ValueType::invalid) == Data::kDTInvalid);
static_assert(static_cast<int>(ValueType::text) == Data::kDTText);
static_assert(static_cast<int>(ValueType::number) == Data::kDTNumber);
static_assert(static_cast<int>(ValueType::date) == Data::kDTDate);
static_assert(static_cast<int>(ValueType::time) == Data::kDTTime);
static_assert(static_cast<int>(ValueType::timestamp) == Data::kDTTimeStamp);
static_assert(static_cast<int>(ValueType::container) == Data::kDTBinary);

namespace host {

namespace {

// Returns the type of a value of a native type. Throws std::invalid_argument for an unknown number.
ValueType typeFor(int32 nativeType) {
    if (nativeType < Data::kDTInvalid || nativeType > Data::kDTBoolean) {
        throw std::invalid_argument("no native type has that number");
    }
    return nativeType == Data::kDTBoolean ? ValueType::number : static_cast<ValueType>(nativeType);
}

} // namespace

void DataObject::forgetReadings() {
    number_.reset();
    date_.reset();
    time_.reset();
    timestamp_.reset();
}

void DataObject::store(Value value, int32 nativeType) {
    nativeType_ = value.isValid() ? nativeType : int32{Data::kDTInvalid};
    text_.reset();
    if (isText()) {
        text_ = TextObject{value.storedText(), styleRuns(value.styles())};
    }
    value_ = std::move(value);
    forgetReadings();
}

void DataObject::set(const Value& value) {
    locale_ = {};
    if (value.type() == ValueType::text) {
        set(TextObject{value.storedText(), styleRuns(value.styles())});
    } else {
        store(value, static_cast<int32>(value.type()));
    }
}

errcode DataObject::set(const Value& value, int32 nativeType) {
    Value converted = value.convertedTo(typeFor(nativeType));
    if (nativeType == Data::kDTBoolean && converted.isValid() && !converted.isEmpty()) {
        converted = Value::number(converted.asBoolean() ? 1 : 0);
    }
    store(std::move(converted), nativeType);
    return this->value().isValid() ? kSucceeded : kNotThatType;
}

void DataObject::set(TextObject text) {
    text_ = std::move(text);
    value_.reset();
    nativeType_ = Data::kDTText;
    forgetReadings();
}

void DataObject::clear(int32 nativeType) {
    store(Value::empty(typeFor(nativeType)), nativeType);
}

Value DataObject::unsharedValue() const {
    if (!isText()) {
        return value();
    }
    const auto& [characters, styles] = *text_;
    return styles.isEmpty() ? Value::text(characters)
                            : Value::styledText(characters, styledRuns(styles, characters.size()));
}

const Value& DataObject::value() const {
    if (!value_) {
        value_ = unsharedValue();
    }
    return *value_;
}

const TextObject& DataObject::text() const {
    if (!text_) {
        text_ = TextObject{value().asText(), {}};
    }
    return *text_;
}

const FixPtObject& DataObject::number() const {
    if (!number_) {
        assign(number_.emplace(), value().asNumber().value_or(Number()));
    }
    return *number_;
}

const DateTime& DataObject::moment(std::optional<DateTime>& kept,
                                   std::optional<DateTime> (Value::*read)() const) const {
    if (!kept) {
        kept = (value().*read)().value_or(DateTime());
    }
    return *kept;
}

} // namespace host

Data* FM_Data_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<Data>(); });
}
void FM_Data_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<Data>(object);
}

bool FM_Data_IsEmpty(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<Data>(object).value().isEmpty(); });
}
bool FM_Data_IsValid(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<Data>(object).value().isValid(); });
}
// This host has no find mode, so that no value is a find request.
bool FM_Data_IsFindRequest(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        static_cast<void>(self<Data>(object));
        return false;
    });
}
void FM_Data_Clear(void* object, int32 type, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Data>(object).clear(type); });
}

const fmx::Text& FM_Data_GetAsText(const void* object, _fmxcpt& block) noexcept {
    return outside<fmx::Text>(
        guarded(block, [&]() -> const host::TextObject& { return self<Data>(object).text(); }));
}
const fmx::FixPt& FM_Data_GetAsNumber(const void* object, _fmxcpt& block) noexcept {
    return outside<fmx::FixPt>(
        guarded(block, [&]() -> const host::FixPtObject& { return self<Data>(object).number(); }));
}
const fmx::DateTime& FM_Data_GetAsDate(const void* object, _fmxcpt& block) noexcept {
    return outside<fmx::DateTime>(
        guarded(block, [&]() -> const host::DateTime& { return self<Data>(object).date(); }));
}
const fmx::DateTime& FM_Data_GetAsTime(const void* object, _fmxcpt& block) noexcept {
    return outside<fmx::DateTime>(
        guarded(block, [&]() -> const host::DateTime& { return self<Data>(object).time(); }));
}
const fmx::DateTime& FM_Data_GetAsTimeStamp(const void* object, _fmxcpt& block) noexcept {
    return outside<fmx::DateTime>(
        guarded(block, [&]() -> const host::DateTime& { return self<Data>(object).timestamp(); }));
}
bool FM_Data_GetAsBoolean(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<Data>(object).value().asBoolean(); });
}
const fmx::BinaryData& FM_Data_GetBinaryData(const void* object, _fmxcpt& block) noexcept {
    return outside<fmx::BinaryData>(
        guarded(block, [&]() -> const host::Container& { return self<Data>(object).value().asContainer(); }));
}
const fmx::Locale& FM_Data_GetLocale(const void* object, _fmxcpt& block) noexcept {
    return outside<fmx::Locale>(
        guarded(block, [&]() -> const host::LocaleObject& { return self<Data>(object).locale(); }));
}
const int32 FM_Data_GetNativeType(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<Data>(object).nativeType(); });
}

void FM_Data_ConvertData(void* object, int32 type, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Data>(object).set(Value(self<Data>(object).value()), type); });
}
errcode FM_Data_SetAsText(void* object, const fmx::Text& value, const fmx::Locale& locale, int32 type,
                          _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        host::DataObject& data = self<Data>(object);
        errcode code = host::kSucceeded;
        if (type == Data::kDTText) {
            data.set(inside(value));
        } else {
            code = data.set(host::valueIn(inside(locale).type, inside(value).characters, host::typeFor(type)),
                            type);
        }
        data.setLocale(inside(locale));
        return code;
    });
}
void FM_Data_SetAsNumber(void* object, const fmx::FixPt& value, int32 type, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Data>(object).set(Value::number(inside(value).value), type); });
}
void FM_Data_SetAsDate(void* object, const fmx::DateTime& value, int32 type, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Data>(object).set(Value::date(inside(value)), type); });
}
void FM_Data_SetAsTime(void* object, const fmx::DateTime& value, int32 type, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Data>(object).set(Value::time(inside(value)), type); });
}
void FM_Data_SetAsTimeStamp(void* object, const fmx::DateTime& value, int32 type, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<Data>(object).set(Value::timestamp(inside(value)), type); });
}
void FM_Data_SetDateTime(void* object, const fmx::DateTime& value, int32 dateTimeType, int32 nativeType,
                         _fmxcpt& block) noexcept {
    guarded(block, [&] {
        host::DataObject& data = self<Data>(object);
        switch (dateTimeType) {
        case Data::kDTDate:
            data.set(Value::date(inside(value)), nativeType);
            break;
        case Data::kDTTime:
            data.set(Value::time(inside(value)), nativeType);
            break;
        case Data::kDTTimeStamp:
            data.set(Value::timestamp(inside(value)), nativeType);
            break;
        default:
            throw std::invalid_argument("no part of a date-time has that type");
        }
    });
}
void FM_Data_SetBinaryData(void* object, const fmx::BinaryData& value, bool forceBinaryNativeType,
                           _fmxcpt& block) noexcept {
    guarded(block, [&] {
        const host::Container& streams = inside(value);
        const bool namesAlone = streams.count() == 1 && streams.fileNames();
        self<Data>(object).set(Value::container(streams),
                               namesAlone && !forceBinaryNativeType ? Data::kDTText : Data::kDTBinary);
    });
}

fmx::FontID FM_Data_GetFontID(void* object, const fmx::Text& name, fmx::FontScript script,
                              const fmx::ExprEnv& /*env*/, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        static_cast<void>(self<Data>(object));
        return host::fontNumber(inside(name).characters, script);
    });
}
bool FM_Data_GetFontInfo(const void* object, fmx::FontID font, fmx::Text& name, fmx::FontScript& script,
                         const fmx::ExprEnv& /*env*/, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        static_cast<void>(self<Data>(object));
        const auto known = host::fontOf(font);
        if (known) {
            inside(name) = {known->name, {}};
            script = known->script;
        }
        return known.has_value();
    });
}
fmx::FontID FM_Data_GetPostscriptFontID(const void* object, const fmx::Text& name,
                                        const fmx::ExprEnv& /*env*/, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        static_cast<void>(self<Data>(object));
        return host::fontNumber(inside(name).characters, fmx::CharacterStyle::kFontScript_Roman);
    });
}
bool FM_Data_GetPostscriptFontInfo(const void* object, fmx::FontID font, fmx::Text& name,
                                   const fmx::ExprEnv& /*env*/, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        static_cast<void>(self<Data>(object));
        const auto known = host::fontOf(font);
        if (known) {
            inside(name) = {known->name, {}};
        }
        return known.has_value();
    });
}

#pragma once

// The objects behind the opaque classes of the interface, and the conversions between the two.

#include "host/values/value.h"
#include "host/wrapper/interface.h"
#include "host/wrapper/style_runs.h"

#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace host {

// The error codes of operations; 0 is success.
inline constexpr fmx::errcode kSucceeded = 0;
inline constexpr fmx::errcode kUnavailable = 3;   // there is no such stream, or no hook for the call
inline constexpr fmx::errcode kNotThatType = 102; // the value cannot be read as the wanted type
inline constexpr fmx::errcode kNoFile = 802;      // there is no database
inline constexpr fmx::errcode kNoDate = 500;
inline constexpr fmx::errcode kNoTime = 501;
inline constexpr fmx::errcode kNoNumber = 504; // a division by zero, too many digits

struct LocaleObject {
    fmx::int32 type = fmx::Locale::kType_System;
};

// A text, and the styles of its characters.
struct TextObject {
    std::u16string characters;
    StyleRuns styles;
};

// A number, and the digits after the point that it keeps.
struct FixPtObject {
    static constexpr int kDefaultPrecision = 16;

    Number value;
    int precision = kDefaultPrecision;
};

// A value with its readings as the interface's types, which are made when first asked for and kept until the
// value is set again. A copy makes its own readings. For text the object itself is what is kept, and the
// Value is such a reading, because plug-ins seldom need it.
class DataObject {
  public:
    DataObject() : text_(TextObject()) {}
    explicit DataObject(const Value& value) { set(value); }
    DataObject(const DataObject& other)
        : locale_(other.locale_), nativeType_(other.nativeType_),
          value_(other.isText() ? std::nullopt : other.value_),
          text_(other.isText() ? other.text_ : std::nullopt) {}
    DataObject& operator=(const DataObject&) = delete;

    const Value& value() const;
    // Returns the value, which shares its text with nothing that is kept here: whoever has it may change it in
    // place.
    Value unsharedValue() const;
    const LocaleObject& locale() const { return locale_; }
    fmx::int32 nativeType() const { return nativeType_; }
    void setLocale(const LocaleObject& locale) { locale_ = locale; }

    // Sets a value with the native type of its type, and the system's locale.
    void set(const Value& value);
    // Sets the value, converted to a native type; an invalid value when it cannot be converted.
    fmx::errcode set(const Value& value, fmx::int32 nativeType);
    // Sets a text with its styles.
    void set(TextObject text);
    void clear(fmx::int32 nativeType);

    const TextObject& text() const;
    const FixPtObject& number() const;
    const DateTime& date() const { return moment(date_, &Value::asDate); }
    const DateTime& time() const { return moment(time_, &Value::asTime); }
    const DateTime& timestamp() const { return moment(timestamp_, &Value::asTimestamp); }

  private:
    bool isText() const { return nativeType_ == fmx::Data::kDTText; }
    const DateTime& moment(std::optional<DateTime>& kept,
                           std::optional<DateTime> (Value::*read)() const) const;
    void store(Value value, fmx::int32 nativeType);
    void forgetReadings();

    LocaleObject locale_;
    fmx::int32 nativeType_ = fmx::Data::kDTText;
    mutable std::optional<Value> value_;
    mutable std::optional<TextObject> text_;
    mutable std::optional<FixPtObject> number_;
    mutable std::optional<DateTime> date_;
    mutable std::optional<DateTime> time_;
    mutable std::optional<DateTime> timestamp_;
};

// A vector of values, whose addresses stay the same when it grows.
struct DataVectObject {
    std::vector<std::unique_ptr<DataObject>> values;
};

struct RowVectObject {
    std::vector<std::unique_ptr<DataVectObject>> rows;
};

// An environment, which has nothing but its identity.
struct ExprEnvObject {};

template <class Opaque>
struct ObjectOf;
template <>
struct ObjectOf<fmx::Locale> {
    using Type = LocaleObject;
};
template <>
struct ObjectOf<fmx::Text> {
    using Type = TextObject;
};
template <>
struct ObjectOf<fmx::CharacterStyle> {
    using Type = CharacterStyleObject;
};
template <>
struct ObjectOf<fmx::Color> {
    using Type = ColorObject;
};
template <>
struct ObjectOf<fmx::FixPt> {
    using Type = FixPtObject;
};
template <>
struct ObjectOf<fmx::DateTime> {
    using Type = DateTime;
};
template <>
struct ObjectOf<fmx::QuadChar> {
    using Type = StreamType;
};
template <>
struct ObjectOf<fmx::BinaryData> {
    using Type = Container;
};
template <>
struct ObjectOf<fmx::Data> {
    using Type = DataObject;
};
template <>
struct ObjectOf<fmx::DataVect> {
    using Type = DataVectObject;
};
template <>
struct ObjectOf<fmx::RowVect> {
    using Type = RowVectObject;
};
template <>
struct ObjectOf<fmx::ExprEnv> {
    using Type = ExprEnvObject;
};

// Returns the object behind an opaque reference.
template <class Opaque>
const typename ObjectOf<Opaque>::Type& inside(const Opaque& opaque) {
    return *reinterpret_cast<const typename ObjectOf<Opaque>::Type*>(&opaque);
}
template <class Opaque>
    requires(!std::is_const_v<Opaque>)
typename ObjectOf<Opaque>::Type& inside(Opaque& opaque) {
    return *reinterpret_cast<typename ObjectOf<Opaque>::Type*>(&opaque);
}

// Returns the object that a method is called for. Throws std::invalid_argument for null.
template <class Opaque>
const typename ObjectOf<Opaque>::Type& self(const void* object) {
    if (object == nullptr) {
        throw std::invalid_argument("a call without its object");
    }
    return *static_cast<const typename ObjectOf<Opaque>::Type*>(object);
}
template <class Opaque>
typename ObjectOf<Opaque>::Type& self(void* object) {
    if (object == nullptr) {
        throw std::invalid_argument("a call without its object");
    }
    return *static_cast<typename ObjectOf<Opaque>::Type*>(object);
}

// Returns the opaque reference to an object.
template <class Opaque>
Opaque& outside(typename ObjectOf<Opaque>::Type& object) {
    return *reinterpret_cast<Opaque*>(&object);
}
template <class Opaque>
const Opaque& outside(const typename ObjectOf<Opaque>::Type& object) {
    return *reinterpret_cast<const Opaque*>(&object);
}

// Make and delete an object, given by its opaque pointer.
template <class Opaque, class... Arguments>
Opaque* made(Arguments&&... arguments) {
    return reinterpret_cast<Opaque*>(new
                                     typename ObjectOf<Opaque>::Type{std::forward<Arguments>(arguments)...});
}
template <class Opaque>
void destroy(void* object) noexcept {
    delete static_cast<typename ObjectOf<Opaque>::Type*>(object);
}

// Returns a size in the interface's 32 bits. Throws std::length_error when it is too large.
inline fmx::uint32 size32(size_t size) {
    if (size > std::numeric_limits<fmx::uint32>::max()) {
        throw std::length_error("more than the interface can count");
    }
    return static_cast<fmx::uint32>(size);
}

// Throws std::invalid_argument when [buffer] is null but [size] is not 0.
inline void requireBuffer(const void* buffer, size_t size) {
    if (buffer == nullptr && size > 0) {
        throw std::invalid_argument("a call without its buffer");
    }
}

// Sets a number, rounded to [precision] digits after the point.
void assign(FixPtObject& result, const Number& value, int precision);
// Sets a number and its precision to all digits that it has after the point.
void assign(FixPtObject& result, Number value);

} // namespace host

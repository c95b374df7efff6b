// FM_FixPt_*.
#include "host/wrapper/guard.h"
#include "host/wrapper/objects.h"

#include <algorithm>
#include <compare>
#include <limits>

using fmx::_fmxcpt;
using fmx::FixPt;
using fmx::int32;
using fmx::int64;
using host::FixPtObject;
using host::guarded;
using host::inside;
using host::Number;
using host::self;

namespace host {

void assign(FixPtObject& result, const Number& value, int precision) {
    result.precision = std::clamp(precision, 0, Number::kMaxDigits);
    result.value = value.rounded(result.precision);
}

void assign(FixPtObject& result, Number value) {
    result.precision = std::max(FixPtObject::kDefaultPrecision, value.places());
    result.value = std::move(value);
}

} // namespace host

namespace {

FixPt* madeNumber(int32 value, int precision) {
    return host::made<FixPt>(Number(value), std::clamp(precision, 0, Number::kMaxDigits));
}

// Returns the precision of a result: that of the operand with the higher one.
int precisionFor(const FixPtObject& left, const FixPtObject& right) {
    return std::max(left.precision, right.precision);
}

template <class Operation>
void calculate(const void* object, const FixPt& arg, FixPt& result, Operation operation) {
    const FixPtObject& left = self<FixPt>(object);
    const FixPtObject& right = inside(arg);
    const int precision = precisionFor(left, right);
    host::assign(inside(result), operation(left.value, right.value, precision), precision);
}

std::strong_ordering compared(const void* object, const FixPt& other) {
    return self<FixPt>(object).value <=> inside(other).value;
}

} // namespace

FixPt* FM_FixPt_Constructor1(int32 value, int32 precision, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return madeNumber(value, precision); });
}
FixPt* FM_FixPt_Constructor2(int32 value, const FixPt& precisionExample, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return madeNumber(value, inside(precisionExample).precision); });
}
void FM_FixPt_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<FixPt>(object);
}

void FM_FixPt_AssignInt(void* object, int32 value, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<FixPt>(object).value = value; });
}
void FM_FixPt_AssignInt64(void* object, int64 value, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<FixPt>(object).value = value; });
}
void FM_FixPt_AssignDouble(void* object, double value, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        FixPtObject& number = self<FixPt>(object);
        number.value = Number::fromDouble(value).rounded(number.precision);
    });
}
void FM_FixPt_AssignFixPt(void* object, const FixPt& value, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<FixPt>(object) = inside(value); });
}

bool FM_FixPt_operatorEQ(const void* object, const FixPt& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) == 0; });
}
bool FM_FixPt_operatorNE(const void* object, const FixPt& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) != 0; });
}
bool FM_FixPt_operatorLT(const void* object, const FixPt& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) < 0; });
}
bool FM_FixPt_operatorLE(const void* object, const FixPt& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) <= 0; });
}
bool FM_FixPt_operatorGT(const void* object, const FixPt& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) > 0; });
}
bool FM_FixPt_operatorGE(const void* object, const FixPt& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return compared(object, other) >= 0; });
}

void FM_FixPt_Increment(void* object, int32 amount, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<FixPt>(object).value = self<FixPt>(object).value + amount; });
}
void FM_FixPt_Increment64(void* object, int64 amount, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<FixPt>(object).value = self<FixPt>(object).value + amount; });
}
void FM_FixPt_Decrement(void* object, int32 amount, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<FixPt>(object).value = self<FixPt>(object).value - amount; });
}
void FM_FixPt_Decrement64(void* object, int64 amount, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<FixPt>(object).value = self<FixPt>(object).value - amount; });
}
void FM_FixPt_Negate(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<FixPt>(object).value = -self<FixPt>(object).value; });
}
int32 FM_FixPt_GetPrecision(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<FixPt>(object).precision; });
}
void FM_FixPt_SetPrecision(void* object, int32 precision, _fmxcpt& block) noexcept {
    guarded(block, [&] { host::assign(self<FixPt>(object), self<FixPt>(object).value, precision); });
}

void FM_FixPt_Add(const void* object, const FixPt& arg, FixPt& result, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        calculate(object, arg, result,
                  [](const Number& a, const Number& b, int /*precision*/) { return a + b; });
    });
}
void FM_FixPt_Subtract(const void* object, const FixPt& arg, FixPt& result, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        calculate(object, arg, result,
                  [](const Number& a, const Number& b, int /*precision*/) { return a - b; });
    });
}
void FM_FixPt_Multiply(const void* object, const FixPt& arg, FixPt& result, _fmxcpt& block) noexcept {
    guarded(block, [&] {
        calculate(object, arg, result,
                  [](const Number& a, const Number& b, int /*precision*/) { return a * b; });
    });
}
fmx::errcode FM_FixPt_Divide(const void* object, const FixPt& arg, FixPt& result, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        try {
            calculate(object, arg, result, Number::divide);
        } catch (const host::NumberError&) {
            return host::kNoNumber;
        }
        return host::kSucceeded;
    });
}

bool FM_FixPt_AsBool(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return !self<FixPt>(object).value.isZero(); });
}
int32 FM_FixPt_AsLong(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return static_cast<int32>(std::clamp<int64_t>(self<FixPt>(object).value.toInt64(),
                                                      std::numeric_limits<int32>::min(),
                                                      std::numeric_limits<int32>::max()));
    });
}
int64 FM_FixPt_AsLong64(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return int64{self<FixPt>(object).value.toInt64()}; });
}
double FM_FixPt_AsFloat(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<FixPt>(object).value.toDouble(); });
}

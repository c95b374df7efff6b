#pragma once

/// Decimal numbers of the host.

#include "FMXClient.h"

FMX_BEGIN_CALLS

FMX_API fmx::FixPt* FM_FixPt_Constructor1(fmx::int32 value, fmx::int32 precision, fmx::_fmxcpt&) noexcept;
FMX_API fmx::FixPt* FM_FixPt_Constructor2(fmx::int32 value, const fmx::FixPt& precisionExample,
                                          fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_AssignInt(void* self, fmx::int32 value, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_AssignInt64(void* self, fmx::int64 value, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_AssignDouble(void* self, double value, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_AssignFixPt(void* self, const fmx::FixPt& value, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorEQ(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorNE(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorLT(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorLE(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorGT(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorGE(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Increment(void* self, fmx::int32 amount, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Increment64(void* self, fmx::int64 amount, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Decrement(void* self, fmx::int32 amount, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Decrement64(void* self, fmx::int64 amount, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Negate(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int32 FM_FixPt_GetPrecision(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_SetPrecision(void* self, fmx::int32 precision, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Add(const void* self, const fmx::FixPt& arg, fmx::FixPt& result,
                          fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Subtract(const void* self, const fmx::FixPt& arg, fmx::FixPt& result,
                               fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Multiply(const void* self, const fmx::FixPt& arg, fmx::FixPt& result,
                               fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_FixPt_Divide(const void* self, const fmx::FixPt& arg, fmx::FixPt& result,
                                     fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_AsBool(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int32 FM_FixPt_AsLong(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int64 FM_FixPt_AsLong64(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API double FM_FixPt_AsFloat(const void* self, fmx::_fmxcpt&) noexcept;

FMX_END_CALLS

namespace fmx {

/// A decimal number with a precision: the number of digits after the point that it keeps, 0 to 400. The
/// result of an operation has the higher precision of its operands.
class FixPt {
  public:
    FMX_OPAQUE_CLASS(FixPt)
    FixPt& operator=(const FixPt&) = delete;

    /// The default precision.
    enum { kDefltFixedPrecision = 16 };

    void AssignInt(int32 value) { Call(FM_FixPt_AssignInt, this, value); }
    void AssignInt64(int64 value) { Call(FM_FixPt_AssignInt64, this, value); }
    void AssignDouble(double value) { Call(FM_FixPt_AssignDouble, this, value); }
    void AssignFixPt(const FixPt& value) { Call(FM_FixPt_AssignFixPt, this, value); }

    bool operator==(const FixPt& other) const { return Call(FM_FixPt_operatorEQ, this, other); }
    bool operator!=(const FixPt& other) const { return Call(FM_FixPt_operatorNE, this, other); }
    bool operator<(const FixPt& other) const { return Call(FM_FixPt_operatorLT, this, other); }
    bool operator<=(const FixPt& other) const { return Call(FM_FixPt_operatorLE, this, other); }
    bool operator>(const FixPt& other) const { return Call(FM_FixPt_operatorGT, this, other); }
    bool operator>=(const FixPt& other) const { return Call(FM_FixPt_operatorGE, this, other); }

    void Increment(int32 amount) { Call(FM_FixPt_Increment, this, amount); }
    void Increment64(int64 amount) { Call(FM_FixPt_Increment64, this, amount); }
    void Decrement(int32 amount) { Call(FM_FixPt_Decrement, this, amount); }
    void Decrement64(int64 amount) { Call(FM_FixPt_Decrement64, this, amount); }
    void Negate() { Call(FM_FixPt_Negate, this); }

    int32 GetPrecision() const { return Call(FM_FixPt_GetPrecision, this); }
    void SetPrecision(int32 precision) { Call(FM_FixPt_SetPrecision, this, precision); }

    /// The result may be the same object as an operand.
    void Add(const FixPt& arg, FixPt& result) const { Call(FM_FixPt_Add, this, arg, result); }
    void Subtract(const FixPt& arg, FixPt& result) const { Call(FM_FixPt_Subtract, this, arg, result); }
    void Multiply(const FixPt& arg, FixPt& result) const { Call(FM_FixPt_Multiply, this, arg, result); }
    /// Return non-zero, and leave the result unchanged, when the divisor is zero.
    errcode Divide(const FixPt& arg, FixPt& result) const { return Call(FM_FixPt_Divide, this, arg, result); }

    /// Returns false only for zero.
    bool AsBool() const { return Call(FM_FixPt_AsBool, this); }
    /// Returns the whole part, or the nearest limit of 32 bits.
    int32 AsLong() const { return Call(FM_FixPt_AsLong, this); }
    /// Returns the whole part, or the nearest limit of 64 bits.
    int64 AsLong64() const { return Call(FM_FixPt_AsLong64, this); }
    double AsFloat() const { return Call(FM_FixPt_AsFloat, this); }
};

/// Owns a number.
template <class Base>
class FixPtHolder : public Base {
  public:
    explicit FixPtHolder(int32 value = 0, int32 precision = FixPt::kDefltFixedPrecision)
        : Base(Call(FM_FixPt_Constructor1, value, precision)) {}
    FixPtHolder(int32 value, const FixPt& precisionExample)
        : Base(Call(FM_FixPt_Constructor2, value, precisionExample)) {}
};
FMX_HOLDERS(FixPt)

} // namespace fmx

/// Decimal numbers of the host.
#pragma once

#include "FMXTypes.h"

#include <memory>

extern "C" {

FMX_API fmx::FixPt* FM_FixPt_Constructor1(fmx::int32 value, int precision, fmx::_fmxcpt&) noexcept;
FMX_API fmx::FixPt* FM_FixPt_Constructor2(fmx::int32 value, const fmx::FixPt& precisionExample,
                                          fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_AssignInt(void* self, fmx::int32 value, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_AssignDouble(void* self, double value, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_AssignFixPt(void* self, const fmx::FixPt& value, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorEQ(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorNE(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorLT(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorLE(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorGT(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_FixPt_operatorGE(const void* self, const fmx::FixPt& other, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Increment(void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Decrement(void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_Negate(void* self, fmx::_fmxcpt&) noexcept;
FMX_API int FM_FixPt_GetPrecision(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_FixPt_SetPrecision(void* self, int precision, fmx::_fmxcpt&) noexcept;
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
FMX_API double FM_FixPt_AsFloat(const void* self, fmx::_fmxcpt&) noexcept;

} // extern "C"

namespace fmx {

/// A decimal number, with a precision: the digits behind the point that it keeps, 0 to 400. The result of a
/// calculation has the greater precision of its operands.
class FixPt {
  public:
    FMX_OPAQUE_CLASS(FixPt)
    FixPt& operator=(const FixPt&) = delete;

    void AssignInt(int32 value) { Call(FM_FixPt_AssignInt, this, value); }
    void AssignDouble(double value) { Call(FM_FixPt_AssignDouble, this, value); }
    void AssignFixPt(const FixPt& value) { Call(FM_FixPt_AssignFixPt, this, value); }

    bool operator==(const FixPt& other) const { return Call(FM_FixPt_operatorEQ, this, other); }
    bool operator!=(const FixPt& other) const { return Call(FM_FixPt_operatorNE, this, other); }
    bool operator<(const FixPt& other) const { return Call(FM_FixPt_operatorLT, this, other); }
    bool operator<=(const FixPt& other) const { return Call(FM_FixPt_operatorLE, this, other); }
    bool operator>(const FixPt& other) const { return Call(FM_FixPt_operatorGT, this, other); }
    bool operator>=(const FixPt& other) const { return Call(FM_FixPt_operatorGE, this, other); }

    void Increment() { Call(FM_FixPt_Increment, this); }
    void Decrement() { Call(FM_FixPt_Decrement, this); }
    void Negate() { Call(FM_FixPt_Negate, this); }

    int GetPrecision() const { return Call(FM_FixPt_GetPrecision, this); }
    void SetPrecision(int precision) { Call(FM_FixPt_SetPrecision, this, precision); }

    /// The result may be one of the operands.
    void Add(const FixPt& arg, FixPt& result) const { Call(FM_FixPt_Add, this, arg, result); }
    void Subtract(const FixPt& arg, FixPt& result) const { Call(FM_FixPt_Subtract, this, arg, result); }
    void Multiply(const FixPt& arg, FixPt& result) const { Call(FM_FixPt_Multiply, this, arg, result); }
    /// Non-zero, and the result unchanged, when the divisor is zero.
    errcode Divide(const FixPt& arg, FixPt& result) const { return Call(FM_FixPt_Divide, this, arg, result); }

    /// False for zero alone.
    bool AsBool() const { return Call(FM_FixPt_AsBool, this); }
    /// The whole part, held to the range of 32 bits.
    int32 AsLong() const { return Call(FM_FixPt_AsLong, this); }
    double AsFloat() const { return Call(FM_FixPt_AsFloat, this); }
};

/// Owns a number.
class FixPtAutoPtr : public std::unique_ptr<FixPt> {
  public:
    explicit FixPtAutoPtr(int32 value = 0, int precision = 16) {
        reset(Call(FM_FixPt_Constructor1, value, precision));
    }
    FixPtAutoPtr(int32 value, const FixPt& precisionExample) {
        reset(Call(FM_FixPt_Constructor2, value, precisionExample));
    }
};

} // namespace fmx

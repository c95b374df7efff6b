/// Container values of the host: streams of bytes in their order, at most one for each four-character code.
#pragma once

#include "FMXText.h"

extern "C" {

FMX_API fmx::QuadChar* FM_QuadChar_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API fmx::QuadChar* FM_QuadChar_Constructor2(char c0, char c1, char c2, char c3, fmx::_fmxcpt&) noexcept;
FMX_API fmx::QuadChar* FM_QuadChar_Constructor3(const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API void FM_QuadChar_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::QuadChar& FM_QuadChar_operatorAS(void* self, const fmx::QuadChar& other,
                                                    fmx::_fmxcpt&) noexcept;
FMX_API char& FM_QuadChar_operatorAR(void* self, fmx::uint32 index, fmx::_fmxcpt&) noexcept;
FMX_API const char& FM_QuadChar_operatorCAR(const void* self, fmx::uint32 index, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorEQ(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorNE(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorLT(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorLE(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorGT(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_QuadChar_operatorGE(const void* self, const fmx::QuadChar& other, fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_QuadChar_GetMacType(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_QuadChar_SetMacType(void* self, fmx::uint32 type, fmx::_fmxcpt&) noexcept;

FMX_API fmx::BinaryData* FM_BinaryData_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API fmx::BinaryData* FM_BinaryData_Constructor2(const fmx::BinaryData& other, fmx::_fmxcpt&) noexcept;
FMX_API void FM_BinaryData_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API const fmx::BinaryData& FM_BinaryData_operatorAS(void* self, const fmx::BinaryData& other,
                                                        fmx::_fmxcpt&) noexcept;
FMX_API bool FM_BinaryData_operatorEQ(const void* self, const fmx::BinaryData& other, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_BinaryData_operatorNE(const void* self, const fmx::BinaryData& other, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int32 FM_BinaryData_GetCount(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::int32 FM_BinaryData_GetIndex(const void* self, const fmx::QuadChar& type,
                                          fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_BinaryData_GetTotalSize(const void* self, fmx::_fmxcpt&) noexcept;
FMX_API void FM_BinaryData_GetType(const void* self, fmx::int32 index, fmx::QuadChar& type,
                                   fmx::_fmxcpt&) noexcept;
FMX_API fmx::uint32 FM_BinaryData_GetSize(const void* self, fmx::int32 index, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_GetData(const void* self, fmx::int32 index, fmx::uint32 offset,
                                           fmx::uint32 amount, void* buffer, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_Add(void* self, const fmx::QuadChar& type, fmx::uint32 amount,
                                       void* buffer, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_BinaryData_Remove(void* self, const fmx::QuadChar& type, fmx::_fmxcpt&) noexcept;
FMX_API void FM_BinaryData_RemoveAll(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_GetFNAMData(const void* self, fmx::Text& fileNames,
                                               fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_AddFNAMData(void* self, const fmx::Text& fileNames,
                                               fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_GetSIZEData(const void* self, short& width, short& height,
                                               fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_AddSIZEData(void* self, short width, short height, fmx::_fmxcpt&) noexcept;

} // extern "C"

namespace fmx {

/// A code of four characters: the type of a stream, the identifier of a plug-in.
class QuadChar {
  public:
    FMX_OPAQUE_CLASS(QuadChar)

    const QuadChar& operator=(const QuadChar& other) { return Call(FM_QuadChar_operatorAS, this, other); }
    /// One of the four characters; the index is 0 to 3.
    char& operator[](uint32 index) { return Call(FM_QuadChar_operatorAR, this, index); }
    const char& operator[](uint32 index) const { return Call(FM_QuadChar_operatorCAR, this, index); }

    bool operator==(const QuadChar& other) const { return Call(FM_QuadChar_operatorEQ, this, other); }
    bool operator!=(const QuadChar& other) const { return Call(FM_QuadChar_operatorNE, this, other); }
    bool operator<(const QuadChar& other) const { return Call(FM_QuadChar_operatorLT, this, other); }
    bool operator<=(const QuadChar& other) const { return Call(FM_QuadChar_operatorLE, this, other); }
    bool operator>(const QuadChar& other) const { return Call(FM_QuadChar_operatorGT, this, other); }
    bool operator>=(const QuadChar& other) const { return Call(FM_QuadChar_operatorGE, this, other); }

    /// The code as one number, the first character in its highest byte.
    uint32 GetMacType() const { return Call(FM_QuadChar_GetMacType, this); }
    void SetMacType(uint32 type) { Call(FM_QuadChar_SetMacType, this, type); }
};

/// Owns a code: four zeros, four characters, or a copy.
class QuadCharAutoPtr : public std::unique_ptr<QuadChar> {
  public:
    QuadCharAutoPtr() { reset(Call(FM_QuadChar_Constructor1)); }
    QuadCharAutoPtr(char c0, char c1, char c2, char c3) {
        reset(Call(FM_QuadChar_Constructor2, c0, c1, c2, c3));
    }
    explicit QuadCharAutoPtr(const QuadChar& other) { reset(Call(FM_QuadChar_Constructor3, other)); }
};

/// A container value. Indexes are zero-based.
class BinaryData {
  public:
    FMX_OPAQUE_CLASS(BinaryData)

    const BinaryData& operator=(const BinaryData& other) {
        return Call(FM_BinaryData_operatorAS, this, other);
    }
    bool operator==(const BinaryData& other) const { return Call(FM_BinaryData_operatorEQ, this, other); }
    bool operator!=(const BinaryData& other) const { return Call(FM_BinaryData_operatorNE, this, other); }

    int32 GetCount() const { return Call(FM_BinaryData_GetCount, this); }
    /// Where the stream of a type stands; -1 when there is none.
    int32 GetIndex(const QuadChar& type) const { return Call(FM_BinaryData_GetIndex, this, type); }
    /// The bytes of all streams together.
    uint32 GetTotalSize() const { return Call(FM_BinaryData_GetTotalSize, this); }
    void GetType(int32 index, QuadChar& type) const { Call(FM_BinaryData_GetType, this, index, type); }
    uint32 GetSize(int32 index) const { return Call(FM_BinaryData_GetSize, this, index); }
    /// Copies bytes of a stream; non-zero, and nothing copied, when it has no such range.
    errcode GetData(int32 index, uint32 offset, uint32 amount, void* buffer) const {
        return Call(FM_BinaryData_GetData, this, index, offset, amount, buffer);
    }
    /// Adds a stream at the end, or replaces the one of that type where it stands.
    errcode Add(const QuadChar& type, uint32 amount, void* buffer) {
        return Call(FM_BinaryData_Add, this, type, amount, buffer);
    }
    /// Whether there was such a stream to remove.
    bool Remove(const QuadChar& type) { return Call(FM_BinaryData_Remove, this, type); }
    void RemoveAll() { Call(FM_BinaryData_RemoveAll, this); }

    /// The file names; non-zero, and the text unchanged, when the container has none.
    errcode GetFNAMData(Text& fileNames) const { return Call(FM_BinaryData_GetFNAMData, this, fileNames); }
    errcode AddFNAMData(const Text& fileNames) { return Call(FM_BinaryData_AddFNAMData, this, fileNames); }
    /// The size of the picture in points; non-zero, and both unchanged, when the container says none.
    errcode GetSIZEData(short& width, short& height) const {
        return Call(FM_BinaryData_GetSIZEData, this, width, height);
    }
    errcode AddSIZEData(short width, short height) {
        return Call(FM_BinaryData_AddSIZEData, this, width, height);
    }
};

/// Owns a container value: an empty one, or a copy.
class BinaryDataAutoPtr : public std::unique_ptr<BinaryData> {
  public:
    BinaryDataAutoPtr() { reset(Call(FM_BinaryData_Constructor1)); }
    explicit BinaryDataAutoPtr(const BinaryData& other) { reset(Call(FM_BinaryData_Constructor2, other)); }
};

} // namespace fmx

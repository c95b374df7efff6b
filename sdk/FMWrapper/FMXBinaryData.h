#pragma once

/// Container values of the host: an ordered list of streams of bytes, at most one for each four-character
/// type.

#include "FMXClient.h"
#include "FMXTypes.h"

FMX_BEGIN_CALLS

FMX_API fmx::BinaryData* FM_BinaryData_Constructor1(fmx::_fmxcpt&) noexcept;
FMX_API fmx::BinaryData* FM_BinaryData_Constructor2(const fmx::BinaryData& other, fmx::_fmxcpt&) noexcept;
FMX_API fmx::BinaryData* FM_BinaryData_Constructor3(const fmx::Text& fileName, fmx::uint32 amount,
                                                    void* buffer, fmx::_fmxcpt&) noexcept;
FMX_API fmx::BinaryData* FM_BinaryData_Constructor4(const fmx::Text& fileName, fmx::uint32* context,
                                                    fmx::_fmxcpt&) noexcept;
FMX_API void FM_BinaryData_Delete(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::BinaryData& FM_BinaryData_operatorAS(void* self, const fmx::BinaryData& other,
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
FMX_API fmx::errcode FM_BinaryData_AddBegin(void* self, const fmx::QuadChar& type, fmx::uint32* context,
                                            fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_AddAppend(void* self, fmx::uint32 context, fmx::uint32 amount,
                                             void* buffer, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_AddFinish(void* self, fmx::uint32 context, fmx::_fmxcpt&) noexcept;
FMX_API bool FM_BinaryData_Remove(void* self, const fmx::QuadChar& type, fmx::_fmxcpt&) noexcept;
FMX_API void FM_BinaryData_RemoveAll(void* self, fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_GetFNAMData(const void* self, fmx::Text& fileNames,
                                               fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_AddFNAMData(void* self, const fmx::Text& fileNames,
                                               fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_GetSIZEData(const void* self, fmx::int16& width, fmx::int16& height,
                                               fmx::_fmxcpt&) noexcept;
FMX_API fmx::errcode FM_BinaryData_AddSIZEData(void* self, fmx::int16 width, fmx::int16 height,
                                               fmx::_fmxcpt&) noexcept;

FMX_END_CALLS

namespace fmx {

/// A container value. Indexes are zero-based.
class BinaryData {
  public:
    FMX_OPAQUE_CLASS(BinaryData)

    BinaryData& operator=(const BinaryData& other) { return Call(FM_BinaryData_operatorAS, this, other); }
    bool operator==(const BinaryData& other) const { return Call(FM_BinaryData_operatorEQ, this, other); }
    bool operator!=(const BinaryData& other) const { return Call(FM_BinaryData_operatorNE, this, other); }

    int32 GetCount() const { return Call(FM_BinaryData_GetCount, this); }
    /// Returns the index of the stream of a type; -1 when there is none.
    int32 GetIndex(const QuadChar& type) const { return Call(FM_BinaryData_GetIndex, this, type); }
    /// Returns the number of bytes in all streams.
    uint32 GetTotalSize() const { return Call(FM_BinaryData_GetTotalSize, this); }
    void GetType(int32 index, QuadChar& type) const { Call(FM_BinaryData_GetType, this, index, type); }
    uint32 GetSize(int32 index) const { return Call(FM_BinaryData_GetSize, this, index); }
    /// Copies bytes of a stream. Returns non-zero, and copies nothing, when it has no such range.
    errcode GetData(int32 index, uint32 offset, uint32 amount, void* buffer) const {
        return Call(FM_BinaryData_GetData, this, index, offset, amount, buffer);
    }
    /// Adds a stream at the end, or replaces the one of that type in its place.
    errcode Add(const QuadChar& type, uint32 amount, void* buffer) {
        return Call(FM_BinaryData_Add, this, type, amount, buffer);
    }
    /// Write a stream in pieces: begin it, which gives the number by which the other two refer to it, append
    /// bytes, and add it as `Add` does. Return non-zero for a number that is no pending stream of this
    /// container.
    errcode AddBegin(const QuadChar& type, uint32& context) {
        return Call(FM_BinaryData_AddBegin, this, type, &context);
    }
    errcode AddAppend(uint32 context, uint32 amount, void* buffer) {
        return Call(FM_BinaryData_AddAppend, this, context, amount, buffer);
    }
    errcode AddFinish(uint32 context) { return Call(FM_BinaryData_AddFinish, this, context); }
    /// Removes the stream of a type; returns whether there was one.
    bool Remove(const QuadChar& type) { return Call(FM_BinaryData_Remove, this, type); }
    void RemoveAll() { Call(FM_BinaryData_RemoveAll, this); }

    /// Gets the file names. Returns non-zero, and leaves the text unchanged, when the container has none.
    errcode GetFNAMData(Text& fileNames) const { return Call(FM_BinaryData_GetFNAMData, this, fileNames); }
    errcode AddFNAMData(const Text& fileNames) { return Call(FM_BinaryData_AddFNAMData, this, fileNames); }
    /// Gets the size of the picture in points. Returns non-zero, and leaves both unchanged, when the
    /// container has none.
    errcode GetSIZEData(int16& width, int16& height) const {
        return Call(FM_BinaryData_GetSIZEData, this, width, height);
    }
    errcode AddSIZEData(int16 width, int16 height) {
        return Call(FM_BinaryData_AddSIZEData, this, width, height);
    }
};

/// Owns a container value: an empty one, a copy, a file with a name and bytes, or a file whose bytes are
/// written in pieces (`AddAppend`, `AddFinish`).
template <class Base>
class BinaryDataHolder : public Base {
  public:
    BinaryDataHolder() : Base(Call(FM_BinaryData_Constructor1)) {}
    explicit BinaryDataHolder(const BinaryData& other) : Base(Call(FM_BinaryData_Constructor2, other)) {}
    BinaryDataHolder(const Text& fileName, uint32 amount, void* buffer)
        : Base(Call(FM_BinaryData_Constructor3, fileName, amount, buffer)) {}
    BinaryDataHolder(const Text& fileName, uint32& context)
        : Base(Call(FM_BinaryData_Constructor4, fileName, &context)) {}
};
FMX_HOLDERS(BinaryData)

} // namespace fmx

// FM_QuadChar_* and FM_BinaryData_*.
#include "FMWrapper/FMXBinaryData.h"

#include "host/wrapper/guard.h"
#include "host/wrapper/objects.h"

#include <algorithm>

using fmx::_fmxcpt;
using fmx::BinaryData;
using fmx::errcode;
using fmx::int32;
using fmx::QuadChar;
using fmx::Text;
using fmx::uint32;
using host::Container;
using host::guarded;
using host::inside;
using host::self;
using host::StreamType;

namespace {

// Throws for an index that the container does not have.
const Container::Stream& streamAt(const Container& container, int32 index) {
    return container.at(static_cast<size_t>(index)); // a negative one is far out of range
}

} // namespace

QuadChar* FM_QuadChar_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<QuadChar>(); });
}
QuadChar* FM_QuadChar_Constructor2(char c0, char c1, char c2, char c3, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<QuadChar>(StreamType{{c0, c1, c2, c3}}); });
}
QuadChar* FM_QuadChar_Constructor3(const QuadChar& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<QuadChar>(inside(other)); });
}
void FM_QuadChar_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<QuadChar>(object);
}
const QuadChar& FM_QuadChar_operatorAS(void* object, const QuadChar& other, _fmxcpt& block) noexcept {
    return host::outside<QuadChar>(
        guarded(block, [&]() -> const StreamType& { return self<QuadChar>(object) = inside(other); }));
}
char& FM_QuadChar_operatorAR(void* object, uint32 index, _fmxcpt& block) noexcept {
    return guarded(block, [&]() -> char& { return self<QuadChar>(object).characters.at(index); });
}
const char& FM_QuadChar_operatorCAR(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return guarded(block, [&]() -> const char& { return self<QuadChar>(object).characters.at(index); });
}
bool FM_QuadChar_operatorEQ(const void* object, const QuadChar& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<QuadChar>(object) == inside(other); });
}
bool FM_QuadChar_operatorNE(const void* object, const QuadChar& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<QuadChar>(object) != inside(other); });
}
bool FM_QuadChar_operatorLT(const void* object, const QuadChar& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<QuadChar>(object) < inside(other); });
}
bool FM_QuadChar_operatorLE(const void* object, const QuadChar& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<QuadChar>(object) <= inside(other); });
}
bool FM_QuadChar_operatorGT(const void* object, const QuadChar& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<QuadChar>(object) > inside(other); });
}
bool FM_QuadChar_operatorGE(const void* object, const QuadChar& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<QuadChar>(object) >= inside(other); });
}
uint32 FM_QuadChar_GetMacType(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<QuadChar>(object).code(); });
}
void FM_QuadChar_SetMacType(void* object, uint32 type, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<QuadChar>(object).setCode(type); });
}

BinaryData* FM_BinaryData_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<BinaryData>(); });
}
BinaryData* FM_BinaryData_Constructor2(const BinaryData& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<BinaryData>(inside(other)); });
}
void FM_BinaryData_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<BinaryData>(object);
}
const BinaryData& FM_BinaryData_operatorAS(void* object, const BinaryData& other, _fmxcpt& block) noexcept {
    return host::outside<BinaryData>(
        guarded(block, [&]() -> const Container& { return self<BinaryData>(object) = inside(other); }));
}
bool FM_BinaryData_operatorEQ(const void* object, const BinaryData& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<BinaryData>(object) == inside(other); });
}
bool FM_BinaryData_operatorNE(const void* object, const BinaryData& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<BinaryData>(object) != inside(other); });
}

int32 FM_BinaryData_GetCount(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return static_cast<int32>(self<BinaryData>(object).count()); });
}
int32 FM_BinaryData_GetIndex(const void* object, const QuadChar& type, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        const auto index = self<BinaryData>(object).find(inside(type));
        return index ? static_cast<int32>(*index) : -1;
    });
}
uint32 FM_BinaryData_GetTotalSize(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::size32(self<BinaryData>(object).totalSize()); });
}
void FM_BinaryData_GetType(const void* object, int32 index, QuadChar& type, _fmxcpt& block) noexcept {
    guarded(block, [&] { inside(type) = streamAt(self<BinaryData>(object), index).type(); });
}
uint32 FM_BinaryData_GetSize(const void* object, int32 index, _fmxcpt& block) noexcept {
    return guarded(block,
                   [&] { return host::size32(streamAt(self<BinaryData>(object), index).bytes().size()); });
}
errcode FM_BinaryData_GetData(const void* object, int32 index, uint32 offset, uint32 amount, void* buffer,
                              _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        const Container& container = self<BinaryData>(object);
        host::requireBuffer(buffer, amount);
        if (index < 0 || static_cast<size_t>(index) >= container.count()) {
            return host::kUnavailable;
        }
        const host::Bytes& bytes = streamAt(container, index).bytes();
        if (offset > bytes.size() || amount > bytes.size() - offset) {
            return host::kUnavailable;
        }
        std::copy_n(bytes.data() + offset, amount, static_cast<unsigned char*>(buffer));
        return host::kSucceeded;
    });
}
errcode FM_BinaryData_Add(void* object, const QuadChar& type, uint32 amount, void* buffer,
                          _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        host::requireBuffer(buffer, amount);
        const auto* bytes = static_cast<const unsigned char*>(buffer);
        self<BinaryData>(object).set(inside(type), host::Bytes(bytes, bytes + amount));
        return host::kSucceeded;
    });
}
bool FM_BinaryData_Remove(void* object, const QuadChar& type, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<BinaryData>(object).remove(inside(type)); });
}
void FM_BinaryData_RemoveAll(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<BinaryData>(object).clear(); });
}

errcode FM_BinaryData_GetFNAMData(const void* object, Text& fileNames, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        auto names = self<BinaryData>(object).fileNames();
        if (!names) {
            return host::kUnavailable;
        }
        inside(fileNames) = std::move(*names);
        return host::kSucceeded;
    });
}
errcode FM_BinaryData_AddFNAMData(void* object, const Text& fileNames, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        self<BinaryData>(object).setFileNames(inside(fileNames));
        return host::kSucceeded;
    });
}
errcode FM_BinaryData_GetSIZEData(const void* object, short& width, short& height, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        const auto size = self<BinaryData>(object).pictureSize();
        if (!size) {
            return host::kUnavailable;
        }
        std::tie(width, height) = *size;
        return host::kSucceeded;
    });
}
errcode FM_BinaryData_AddSIZEData(void* object, short width, short height, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        self<BinaryData>(object).setPictureSize(width, height);
        return host::kSucceeded;
    });
}

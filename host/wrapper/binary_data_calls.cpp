// FM_BinaryData_*.
#include "host/values/container_file.h"
#include "host/wrapper/guard.h"
#include "host/wrapper/objects.h"
#include "host/wrapper/pending_streams.h"

#include <algorithm>

using fmx::_fmxcpt;
using fmx::BinaryData;
using fmx::errcode;
using fmx::int16;
using fmx::int32;
using fmx::QuadChar;
using fmx::Text;
using fmx::uint32;
using host::Container;
using host::guarded;
using host::inside;
using host::self;

namespace {

// Returns the stream at an index. Throws std::out_of_range when the container has none.
const Container::Stream& streamAt(const Container& container, int32 index) {
    return container.at(static_cast<size_t>(index)); // a negative one is far out of range
}

host::Bytes bytesOf(const void* buffer, uint32 amount) {
    const auto* bytes = static_cast<const unsigned char*>(buffer);
    return {bytes, bytes + amount};
}

} // namespace

BinaryData* FM_BinaryData_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<BinaryData>(); });
}
BinaryData* FM_BinaryData_Constructor2(const BinaryData& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<BinaryData>(inside(other)); });
}
BinaryData* FM_BinaryData_Constructor3(const Text& fileName, uint32 amount, void* buffer,
                                       _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        host::requireBuffer(buffer, amount);
        return host::made<BinaryData>(
            host::fileContainer(inside(fileName).characters, bytesOf(buffer, amount)));
    });
}
BinaryData* FM_BinaryData_Constructor4(const Text& fileName, uint32* context, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        host::requireBuffer(context, 1);
        auto container = std::make_unique<Container>();
        container->setFileNames(inside(fileName).characters);
        *context = host::beginStream(*container, host::kFileStream);
        return &host::outside<BinaryData>(*container.release());
    });
}
void FM_BinaryData_Delete(void* object, _fmxcpt&) noexcept {
    host::forgetStreams(object);
    host::destroy<BinaryData>(object);
}
BinaryData& FM_BinaryData_operatorAS(void* object, const BinaryData& other, _fmxcpt& block) noexcept {
    return host::outside<BinaryData>(
        guarded(block, [&]() -> Container& { return self<BinaryData>(object) = inside(other); }));
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
        self<BinaryData>(object).set(inside(type), bytesOf(buffer, amount));
        return host::kSucceeded;
    });
}
errcode FM_BinaryData_AddBegin(void* object, const QuadChar& type, uint32* context, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        host::requireBuffer(context, 1);
        *context = host::beginStream(self<BinaryData>(object), inside(type));
        return host::kSucceeded;
    });
}
errcode FM_BinaryData_AddAppend(void* object, uint32 context, uint32 amount, void* buffer,
                                _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        host::requireBuffer(buffer, amount);
        return host::appendToStream(self<BinaryData>(object), context,
                                    {static_cast<const unsigned char*>(buffer), amount})
                   ? host::kSucceeded
                   : host::kUnavailable;
    });
}
errcode FM_BinaryData_AddFinish(void* object, uint32 context, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        return host::finishStream(self<BinaryData>(object), context) ? host::kSucceeded : host::kUnavailable;
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
        inside(fileNames) = {std::move(*names), {}};
        return host::kSucceeded;
    });
}
errcode FM_BinaryData_AddFNAMData(void* object, const Text& fileNames, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        self<BinaryData>(object).setFileNames(inside(fileNames).characters);
        return host::kSucceeded;
    });
}
errcode FM_BinaryData_GetSIZEData(const void* object, int16& width, int16& height, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        const auto size = self<BinaryData>(object).pictureSize();
        if (!size) {
            return host::kUnavailable;
        }
        std::tie(width, height) = *size;
        return host::kSucceeded;
    });
}
errcode FM_BinaryData_AddSIZEData(void* object, int16 width, int16 height, _fmxcpt& block) noexcept {
    return guarded(block, [&] {
        self<BinaryData>(object).setPictureSize(width, height);
        return host::kSucceeded;
    });
}

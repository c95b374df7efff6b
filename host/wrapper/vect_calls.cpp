// FM_DataVect_* and FM_RowVect_*.
#include "host/wrapper/guard.h"
#include "host/wrapper/objects.h"

using fmx::_fmxcpt;
using fmx::Data;
using fmx::DataVect;
using fmx::RowVect;
using fmx::Text;
using fmx::uint32;
using host::DataObject;
using host::guarded;
using host::inside;
using host::outside;
using host::self;

namespace {

// Returns the value at an index. Throws std::out_of_range when there is none.
const DataObject& valueAt(const void* object, uint32 index) {
    return *self<DataVect>(object).values.at(index);
}

} // namespace

DataVect* FM_DataVect_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<DataVect>(); });
}
void FM_DataVect_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<DataVect>(object);
}
uint32 FM_DataVect_Size(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::size32(self<DataVect>(object).values.size()); });
}
void FM_DataVect_Clear(void* object, _fmxcpt& block) noexcept {
    guarded(block, [&] { self<DataVect>(object).values.clear(); });
}
bool FM_DataVect_IsEmpty(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<DataVect>(object).values.empty(); });
}
void FM_DataVect_PushBack(void* object, const Data& value, _fmxcpt& block) noexcept {
    guarded(block,
            [&] { self<DataVect>(object).values.push_back(std::make_unique<DataObject>(inside(value))); });
}
Data* FM_DataVect_PopBack(void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&]() -> Data* {
        auto& values = self<DataVect>(object).values;
        if (values.empty()) {
            return nullptr;
        }
        DataObject* last = values.back().release();
        values.pop_back();
        return reinterpret_cast<Data*>(last);
    });
}

const Data& FM_DataVect_At(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<Data>(guarded(block, [&]() -> const DataObject& { return valueAt(object, index); }));
}
const Text& FM_DataVect_AtAsText(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<Text>(
        guarded(block, [&]() -> const host::TextObject& { return valueAt(object, index).text(); }));
}
const fmx::FixPt& FM_DataVect_AtAsNumber(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<fmx::FixPt>(
        guarded(block, [&]() -> const host::FixPtObject& { return valueAt(object, index).number(); }));
}
const fmx::DateTime& FM_DataVect_AtAsDate(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<fmx::DateTime>(
        guarded(block, [&]() -> const host::DateTime& { return valueAt(object, index).date(); }));
}
const fmx::DateTime& FM_DataVect_AtAsTime(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<fmx::DateTime>(
        guarded(block, [&]() -> const host::DateTime& { return valueAt(object, index).time(); }));
}
const fmx::DateTime& FM_DataVect_AtAsTimeStamp(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<fmx::DateTime>(
        guarded(block, [&]() -> const host::DateTime& { return valueAt(object, index).timestamp(); }));
}
bool FM_DataVect_AtAsBoolean(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return valueAt(object, index).value().asBoolean(); });
}
const fmx::BinaryData& FM_DataVect_AtAsBinaryData(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<fmx::BinaryData>(guarded(
        block, [&]() -> const host::Container& { return valueAt(object, index).value().asContainer(); }));
}

RowVect* FM_RowVect_Constructor1(_fmxcpt& block) noexcept {
    return guarded(block, [] { return host::made<RowVect>(); });
}
void FM_RowVect_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<RowVect>(object);
}
uint32 FM_RowVect_Size(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::size32(self<RowVect>(object).rows.size()); });
}
bool FM_RowVect_IsEmpty(const void* object, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return self<RowVect>(object).rows.empty(); });
}
const DataVect& FM_RowVect_At(const void* object, uint32 index, _fmxcpt& block) noexcept {
    return outside<DataVect>(guarded(
        block, [&]() -> const host::DataVectObject& { return *self<RowVect>(object).rows.at(index); }));
}

// FM_QuadChar_* and FM_Locale_*.
#include "host/wrapper/guard.h"
#include "host/wrapper/objects.h"

#pragma GCC diagnostic ignored "-Wignored-qualifiers" // the interface's own

using fmx::_fmxcpt;
using fmx::int32;
using fmx::Locale;
using fmx::QuadChar;
using fmx::uchar;
using fmx::uint32;
using host::guarded;
using host::inside;
using host::self;
using host::StreamType;

namespace {

// Returns one of the four characters. Throws std::out_of_range for an index that is not 0 to 3.
uchar characterAt(const void* object, int32 index) {
    return static_cast<uchar>(self<QuadChar>(object).characters.at(static_cast<size_t>(index)));
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
uchar FM_QuadChar_operatorAR(void* object, int32 index, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return characterAt(object, index); });
}
const uchar FM_QuadChar_operatorCAR(const void* object, int32 index, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return characterAt(object, index); });
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

Locale* FM_Locale_Constructor1(int32 type, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<Locale>(type); });
}
Locale* FM_Locale_Constructor2(const Locale& other, _fmxcpt& block) noexcept {
    return guarded(block, [&] { return host::made<Locale>(inside(other)); });
}
void FM_Locale_Delete(void* object, _fmxcpt&) noexcept {
    host::destroy<Locale>(object);
}
Locale& FM_Locale_operatorAS(void* object, const Locale& other, _fmxcpt& block) noexcept {
    return host::outside<Locale>(
        guarded(block, [&]() -> host::LocaleObject& { return self<Locale>(object) = inside(other); }));
}

// Functions of the host's library, defined here again: the program's own definitions win over a library's,
// and pass the call on.

#include "tests/plugin/host_double.h"

#include <dlfcn.h>
#include <optional>
#include <utility>

namespace {

std::vector<host_double::Registration> registered;
std::vector<std::pair<std::string, short>> unregistered;
int living = 0;
std::vector<std::string_view> madeAndDeleted;
fmx::int32 madeLocaleType = 0;
const fmx::Locale* usedLocale = nullptr;
std::optional<int> callsUntilFailure;
int failureCode = 0;
std::function<void()> beforeFailure;
bool failed = false;

// Whether this call is the one that fails; its block then says so.
bool failsNow(fmx::_fmxcpt& block) {
    if (!callsUntilFailure || (*callsUntilFailure)-- > 0) {
        return false;
    }
    callsUntilFailure.reset();
    failed = true;
    if (beforeFailure) {
        beforeFailure();
    }
    block.code = failureCode;
    return true;
}

// Lets the test's own calls succeed for the rest of the block.
class Unharmed {
  public:
    Unharmed() : waiting_(std::exchange(callsUntilFailure, std::nullopt)) {}
    ~Unharmed() { callsUntilFailure = waiting_; }
    Unharmed(const Unharmed&) = delete;
    Unharmed& operator=(const Unharmed&) = delete;

  private:
    std::optional<int> waiting_;
};

template <typename Function>
Function* real(Function* /*own*/, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::string characters(const fmx::QuadChar& identifier) {
    std::string text;
    for (fmx::uint32 i = 0; i < 4; ++i) {
        text += static_cast<char>(identifier[i]);
    }
    return text;
}

std::string bytes(const fmx::Text& text) {
    std::string result(4 * text.GetSize() + 1, '\0');
    text.GetBytes(result.data(), static_cast<fmx::uint32>(result.size()), 0, fmx::Text::kSize_End,
                  fmx::Text::kEncoding_UTF8);
    result.resize(result.find('\0'));
    return result;
}

} // namespace

namespace host_double {

const std::vector<Registration>& registrations() {
    return registered;
}

const std::vector<std::pair<std::string, short>>& unregistrations() {
    return unregistered;
}

const std::vector<std::string_view>& lives() {
    return madeAndDeleted;
}

fmx::int32 localeType() {
    return madeLocaleType;
}

const fmx::Locale* textLocale() {
    return usedLocale;
}

void reset() {
    registered.clear();
    unregistered.clear();
    madeAndDeleted.clear();
    usedLocale = nullptr;
    callsUntilFailure.reset();
    beforeFailure = {};
    failed = false;
}

int livingObjects() {
    return living;
}

void failAfter(int calls, int code, std::function<void()> atFailure) {
    callsUntilFailure = calls;
    beforeFailure = std::move(atFailure);
    failureCode = code;
    failed = false;
}

bool hasFailed() {
    return failed;
}

} // namespace host_double

// A function that makes an object, or deletes one.
#define MAKES(type, name, parameters, ...)                                                                   \
    fmx::type* name parameters noexcept {                                                                    \
        if (failsNow(block)) {                                                                               \
            return nullptr;                                                                                  \
        }                                                                                                    \
        ++living;                                                                                            \
        madeAndDeleted.emplace_back("+ " #name);                                                             \
        return real(name, #name)(__VA_ARGS__);                                                               \
    }
#define DELETES(name)                                                                                        \
    void name(void* self, fmx::_fmxcpt& block) noexcept {                                                    \
        --living;                                                                                            \
        madeAndDeleted.emplace_back("- " #name);                                                             \
        real(name, #name)(self, block);                                                                      \
    }

// Any other function: the call is made even when it is then reported as failed, so that there is a result.
#define PASSES(result, name, parameters, ...)                                                                \
    result name parameters noexcept {                                                                        \
        failsNow(block);                                                                                     \
        return real(name, #name)(__VA_ARGS__);                                                               \
    }

extern "C" {

MAKES(Text, FM_Text_Constructor1, (fmx::_fmxcpt & block), block)
MAKES(DateTime, FM_DateTime_Constructor1, (fmx::_fmxcpt & block), block)
MAKES(QuadChar, FM_QuadChar_Constructor2, (char c0, char c1, char c2, char c3, fmx::_fmxcpt& block), c0, c1,
      c2, c3, block)
MAKES(Locale, FM_Locale_Constructor1, (fmx::int32 type, fmx::_fmxcpt& block), madeLocaleType = type, block)
MAKES(Data, FM_Data_Constructor1, (fmx::_fmxcpt & block), block)
MAKES(BinaryData, FM_BinaryData_Constructor1, (fmx::_fmxcpt & block), block)
MAKES(BinaryData, FM_BinaryData_Constructor2, (const fmx::BinaryData& other, fmx::_fmxcpt& block), other,
      block)
DELETES(FM_Text_Delete)
DELETES(FM_DateTime_Delete)
DELETES(FM_QuadChar_Delete)
DELETES(FM_Locale_Delete)
DELETES(FM_Data_Delete)
DELETES(FM_BinaryData_Delete)

PASSES(fmx::uint32, FM_BinaryData_GetTotalSize, (const void* self, fmx::_fmxcpt& block), self, block)
PASSES(fmx::int32, FM_BinaryData_GetIndex, (const void* self, const fmx::QuadChar& type, fmx::_fmxcpt& block),
       self, type, block)
PASSES(fmx::uint32, FM_BinaryData_GetSize, (const void* self, fmx::int32 index, fmx::_fmxcpt& block), self,
       index, block)
PASSES(fmx::errcode, FM_BinaryData_GetData,
       (const void* self, fmx::int32 index, fmx::uint32 offset, fmx::uint32 amount, void* buffer,
        fmx::_fmxcpt& block),
       self, index, offset, amount, buffer, block)
PASSES(fmx::errcode, FM_BinaryData_GetSIZEData,
       (const void* self, short& width, short& height, fmx::_fmxcpt& block), self, width, height, block)
PASSES(fmx::errcode, FM_BinaryData_AddSIZEData, (void* self, short width, short height, fmx::_fmxcpt& block),
       self, width, height, block)
PASSES(fmx::errcode, FM_BinaryData_Add,
       (void* self, const fmx::QuadChar& type, fmx::uint32 amount, void* buffer, fmx::_fmxcpt& block), self,
       type, amount, buffer, block)
PASSES(void, FM_Data_SetBinaryData,
       (void* self, const fmx::BinaryData& value, bool forced, fmx::_fmxcpt& block), self, value, forced,
       block)
PASSES(const fmx::BinaryData&, FM_DataVect_AtAsBinaryData,
       (const void* self, fmx::uint32 index, fmx::_fmxcpt& block), self, index, block)
PASSES(void, FM_Text_AssignUnicodeWithLength,
       (void* self, const fmx::uint16* text, fmx::uint32 length, fmx::_fmxcpt& block), self, text, length,
       block)

PASSES(void, FM_Text_SetText,
       (void* self, const fmx::Text& other, fmx::uint32 position, fmx::uint32 size, fmx::_fmxcpt& block),
       self, other, position, size, block)
PASSES(fmx::Locale&, FM_Locale_operatorAS, (void* self, const fmx::Locale& other, fmx::_fmxcpt& block), self,
       other, block)

PASSES(fmx::uint32, FM_Text_GetSize, (const void* self, fmx::_fmxcpt& block), self, block)
PASSES(void, FM_Text_Assign, (void* self, const char* text, fmx::int32 encoding, fmx::_fmxcpt& block), self,
       text, encoding, block)
PASSES(void, FM_Text_AssignUnicode, (void* self, const fmx::uint16* text, fmx::_fmxcpt& block), self, text,
       block)
PASSES(void, FM_Text_GetUnicode,
       (const void* self, fmx::uint16* buffer, fmx::uint32 position, fmx::uint32 size, fmx::_fmxcpt& block),
       self, buffer, position, size, block)
PASSES(fmx::uint32, FM_Text_Find,
       (const void* self, const fmx::Text& wanted, fmx::uint32 position, fmx::_fmxcpt& block), self, wanted,
       position, block)
PASSES(void, FM_Text_DeleteText, (void* self, fmx::uint32 position, fmx::uint32 size, fmx::_fmxcpt& block),
       self, position, size, block)
PASSES(fmx::uint32, FM_DataVect_Size, (const void* self, fmx::_fmxcpt& block), self, block)
PASSES(const fmx::Text&, FM_DataVect_AtAsText, (const void* self, fmx::uint32 index, fmx::_fmxcpt& block),
       self, index, block)
PASSES(bool, FM_DataVect_AtAsBoolean, (const void* self, fmx::uint32 index, fmx::_fmxcpt& block), self, index,
       block)
PASSES(const fmx::Locale&, FM_Data_GetLocale, (const void* self, fmx::_fmxcpt& block), self, block)
PASSES(fmx::errcode, FM_Data_SetAsText,
       (void* self, const fmx::Text& value, const fmx::Locale& locale, fmx::int32 type, fmx::_fmxcpt& block),
       (usedLocale = &locale, self), value, locale, type, block)
PASSES(void, FM_Data_SetAsTimeStamp,
       (void* self, const fmx::DateTime& value, fmx::int32 type, fmx::_fmxcpt& block), self, value, type,
       block)
PASSES(fmx::errcode, FM_DateTime_SetNormalizedDate1,
       (void* self, fmx::int16 month, fmx::int16 day, fmx::int16 year, fmx::_fmxcpt& block), self, month, day,
       year, block)
PASSES(fmx::errcode, FM_DateTime_SetNormalizedTime1,
       (void* self, fmx::int64 hour, fmx::int16 minute, fmx::int16 second, fmx::int32 microseconds,
        fmx::_fmxcpt& block),
       self, hour, minute, second, microseconds, block)

fmx::errcode FM_ExprEnv_RegisterExternalFunction(const fmx::QuadChar& plugin, short id, const fmx::Text& name,
                                                 const fmx::Text& prototype, short minArguments,
                                                 short maxArguments, fmx::uint32 flags,
                                                 fmx::ExtPluginType function, fmx::_fmxcpt& block) noexcept {
    if (!failsNow(block)) {
        const Unharmed unharmed;
        registered.push_back({characters(plugin), id, bytes(name), bytes(prototype), minArguments,
                              maxArguments, flags, function});
    }
    return 1; // refused, for all that the plug-in cares
}

fmx::errcode FM_ExprEnv_UnRegisterExternalFunction(const fmx::QuadChar& plugin, short id,
                                                   fmx::_fmxcpt& block) noexcept {
    if (!failsNow(block)) {
        const Unharmed unharmed;
        unregistered.emplace_back(characters(plugin), id);
    }
    return 1;
}

} // extern "C"

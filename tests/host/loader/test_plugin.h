#pragma once

// Support for the plug-ins of these tests: registering functions, and answering the host's requests for
// strings.

#include "host/wrapper/interface.h"

#include <cstring>

#define TEST_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))

namespace test_plugin {

inline void assign(fmx::Text& text, const char* value) {
    text.Assign(value, fmx::Text::kEncoding_UTF8);
}

inline fmx::errcode registerFunction(short id, const char* name, const char* prototype, short minArguments,
                                     short maxArguments, fmx::ExtPluginType handler) {
    const fmx::QuadCharUniquePtr plugin('T', 'E', 'S', 'T');
    const fmx::TextUniquePtr nameText;
    const fmx::TextUniquePtr prototypeText;
    assign(*nameText, name);
    assign(*prototypeText, prototype);
    return fmx::ExprEnv::RegisterExternalFunction(*plugin, id, *nameText, *prototypeText, minArguments,
                                                  maxArguments, 0xFF01, handler);
}

inline fmx::errcode unregisterFunction(short id) {
    const fmx::QuadCharUniquePtr plugin('T', 'E', 'S', 'T');
    return fmx::ExprEnv::UnRegisterExternalFunction(*plugin, id);
}

// Writes ASCII text into the buffer of a message that asks for a string, if it fits.
inline void answerString(FMX_ExternCallPtr call, const char* text) {
    const size_t size = std::strlen(text);
    if (size + 1 < call->parm3) {
        auto* buffer = reinterpret_cast<fmx::uint16*>(call->result);
        for (size_t i = 0; i <= size; ++i) {
            buffer[i] = static_cast<unsigned char>(text[i]);
        }
    }
}

inline void setText(fmx::Data& result, const fmx::Text& text) {
    const fmx::LocaleUniquePtr locale(fmx::Locale::kType_System);
    result.SetAsText(text, *locale);
}

inline void setNumber(fmx::Data& result, int number) {
    const fmx::FixPtUniquePtr value(number);
    result.SetAsNumber(*value);
}

} // namespace test_plugin

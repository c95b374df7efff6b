#pragma once

// Conversions of values to the plug-in interface's objects and back. They throw what the interface throws:
// std::bad_alloc, std::exception.

#include "host/values/value.h"

#include "host/wrapper/interface.h"

#include <string>

namespace host {

std::u16string textOf(const fmx::Text& text);
void setText(fmx::Text& text, std::u16string_view value);

Value valueOf(const fmx::Data& data);

// Objects that setData() uses, kept because making one takes longer than using it.
struct ConversionTools {
    fmx::TextUniquePtr text;
    fmx::LocaleUniquePtr locale{fmx::Locale::kType_System};
};

// Sets [data] to a value, with the native type of its type.
void setData(fmx::Data& data, const Value& value, ConversionTools& tools);

} // namespace host

#pragma once

// Values across the plug-in interface, and back. Throws what the interface throws: std::bad_alloc,
// std::exception.

#include "host/values/value.h"

#include "host/wrapper/interface.h"

#include <string>

namespace host {

std::u16string textOf(const fmx::Text& text);
void setText(fmx::Text& text, std::u16string_view value);

Value valueOf(const fmx::Data& data);

// Host objects that setting a value needs on the way; kept, because making one costs more than using it.
struct ConversionTools {
    fmx::TextUniquePtr text;
    fmx::LocaleUniquePtr locale{fmx::Locale::kType_System};
};

// Makes [data] that value, of the same type.
void setData(fmx::Data& data, const Value& value, ConversionTools& tools);

} // namespace host

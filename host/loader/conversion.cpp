#include "host/loader/conversion.h"

#include "host/wrapper/host_values.h"

namespace host {

std::u16string textOf(const fmx::Text& text) {
    std::u16string result(text.GetSize(), u'\0');
    text.GetUnicode(reinterpret_cast<fmx::uint16*>(result.data()), 0,
                    static_cast<fmx::uint32>(result.size()));
    return result;
}

Value valueOf(const fmx::Data& data) {
    Value value;
    fmx::Call(FM_Host_GetValue, data, value);
    return value;
}

void setData(fmx::Data& data, const Value& value) {
    fmx::Call(FM_Host_SetValue, data, value);
}

void setArguments(fmx::DataVect& arguments, std::span<const Value> values) {
    fmx::Call(FM_Host_SetValues, arguments, values);
}

} // namespace host

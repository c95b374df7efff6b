#include "tests/host/wrapper/support.h"

fmx::TextUniquePtr hostText(std::u16string_view text) {
    fmx::TextUniquePtr result;
    const std::u16string copy(text);
    result->AssignUnicodeWithLength(reinterpret_cast<const fmx::uint16*>(copy.data()),
                                    static_cast<fmx::uint32>(copy.size()));
    return result;
}

std::u16string unitsOf(const fmx::Text& text) {
    std::u16string result(text.GetSize(), u'\0');
    text.GetUnicode(reinterpret_cast<fmx::uint16*>(result.data()), 0, text.GetSize());
    return result;
}

std::u16string digitsOf(const fmx::FixPt& number) {
    fmx::DataUniquePtr data;
    data->SetAsNumber(number);
    return unitsOf(data->GetAsText());
}

const fmx::FixPt& numberFrom(fmx::Data& holder, std::u16string_view text) {
    holder.SetAsText(*hostText(text), holder.GetLocale());
    return holder.GetAsNumber();
}

#include "host/loader/conversion.h"

#include "host/wrapper/host_styles.h"

#include <utility>

namespace host {

namespace {

fmx::int32 nativeType(ValueType type) {
    switch (type) {
    case ValueType::invalid:
        return fmx::Data::kDTInvalid;
    case ValueType::text:
        return fmx::Data::kDTText;
    case ValueType::number:
        return fmx::Data::kDTNumber;
    case ValueType::date:
        return fmx::Data::kDTDate;
    case ValueType::time:
        return fmx::Data::kDTTime;
    case ValueType::timestamp:
        return fmx::Data::kDTTimeStamp;
    case ValueType::container:
        return fmx::Data::kDTBinary;
    }
    return fmx::Data::kDTInvalid;
}

Container containerOf(const fmx::BinaryData& data) {
    Container container;
    const fmx::QuadCharUniquePtr type;
    for (fmx::int32 i = 0; i < data.GetCount(); ++i) {
        data.GetType(i, *type);
        StreamType name;
        name.setCode(type->GetMacType());
        Bytes bytes(data.GetSize(i));
        if (!bytes.empty()) {
            data.GetData(i, 0, static_cast<fmx::uint32>(bytes.size()), bytes.data());
        }
        container.set(name, std::move(bytes));
    }
    return container;
}

void setContainer(fmx::Data& data, const Container& container) {
    const fmx::BinaryDataUniquePtr binary;
    const fmx::QuadCharUniquePtr type;
    for (const Container::Stream& stream : container) {
        const Bytes& bytes = stream.bytes();
        type->SetMacType(stream.type().code());
        // The interface declares the bytes as writable, but only reads them.
        binary->Add(*type, static_cast<fmx::uint32>(bytes.size()), const_cast<unsigned char*>(bytes.data()));
    }
    data.SetBinaryData(*binary, true);
}

Value styledTextOf(const fmx::Text& text) {
    StyledRuns styles;
    fmx::Call(FM_Host_GetStyles, text, styles);
    return Value::styledText(textOf(text), std::move(styles));
}

} // namespace

std::u16string textOf(const fmx::Text& text) {
    std::u16string result(text.GetSize(), u'\0');
    text.GetUnicode(reinterpret_cast<fmx::uint16*>(result.data()), 0,
                    static_cast<fmx::uint32>(result.size()));
    return result;
}

void setText(fmx::Text& text, std::u16string_view value) {
    text.AssignUnicodeWithLength(reinterpret_cast<const fmx::uint16*>(value.data()),
                                 static_cast<fmx::uint32>(value.size()));
}

// Numbers, dates and times are passed as text, which is exact.
Value valueOf(const fmx::Data& data) {
    switch (data.GetNativeType()) {
    case fmx::Data::kDTText:
        return styledTextOf(data.GetAsText());
    case fmx::Data::kDTNumber:
    case fmx::Data::kDTBoolean:
        return Value::text(textOf(data.GetAsText())).convertedTo(ValueType::number);
    case fmx::Data::kDTDate:
        return Value::text(textOf(data.GetAsText())).convertedTo(ValueType::date);
    case fmx::Data::kDTTime:
        return Value::text(textOf(data.GetAsText())).convertedTo(ValueType::time);
    case fmx::Data::kDTTimeStamp:
        return Value::text(textOf(data.GetAsText())).convertedTo(ValueType::timestamp);
    case fmx::Data::kDTBinary:
        return Value::container(containerOf(data.GetBinaryData()));
    default:
        return Value::invalid();
    }
}

void setData(fmx::Data& data, const Value& value, ConversionTools& tools) {
    if (value.type() == ValueType::container) {
        setContainer(data, value.asContainer());
        return;
    }
    const fmx::int32 type = nativeType(value.type());
    if (!value.isValid() || value.isEmpty()) {
        data.Clear(type);
        return;
    }
    if (value.type() == ValueType::text) {
        setText(*tools.text, value.storedText());
        if (!value.styles().empty()) {
            fmx::Call(FM_Host_SetStyles, *tools.text, value.styles());
        }
    } else {
        setText(*tools.text, value.asText());
    }
    data.SetAsText(*tools.text, *tools.locale, type);
}

} // namespace host

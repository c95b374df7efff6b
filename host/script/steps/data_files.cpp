// Steps that read and write files piece by piece.
#include "host/script/data_files.h"

#include "host/script/step_context.h"
#include "host/script/steps/categories.h"
#include "host/values/container_file.h"
#include "host/values/text.h"

namespace host {

namespace {

enum Encoding : int { kUtf8, kUtf16, kBytes };

int64_t integer(const Value& value) {
    return value.asNumber().value_or(0).toInt64();
}

std::u16string utf16Text(const Bytes& bytes) {
    std::u16string text;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        text += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
    }
    return text;
}

Bytes utf16Bytes(std::u16string_view text) {
    Bytes bytes;
    for (const char16_t unit : text) {
        bytes.push_back(static_cast<unsigned char>(unit & 0xFF));
        bytes.push_back(static_cast<unsigned char>(unit >> 8));
    }
    return bytes;
}

void openDataFile(StepContext& step) {
    step.assign(1, Value::number(step.dataFiles().open(step.path(0))));
}

void closeDataFile(StepContext& step) {
    step.dataFiles().close(integer(step.value(0)));
}

void readFromDataFile(StepContext& step) {
    enum : size_t { kId, kAmount, kTarget, kEncoding };
    const std::optional<int64_t> amount =
        step.isGiven(kAmount) ? std::optional(integer(step.value(kAmount))) : std::nullopt;
    Bytes bytes = step.dataFiles().read(integer(step.value(kId)), amount);
    Value value;
    switch (step.number(kEncoding, kUtf8)) {
    case kUtf8:
        value = Value::text(fromUtf8({reinterpret_cast<const char*>(bytes.data()), bytes.size()}));
        break;
    case kUtf16:
        value = Value::text(utf16Text(bytes));
        break;
    default:
        value = bytes.empty() ? Value() : Value::container(fileContainer(u"", std::move(bytes)));
        break;
    }
    step.trace(value);
    step.assign(kTarget, std::move(value));
}

void writeToDataFile(StepContext& step) {
    enum : size_t { kId, kSource, kEncoding, kLineFeed };
    const Value source = step.value(kSource);
    const int encoding = step.number(kEncoding, kUtf8);
    Bytes bytes;
    if (encoding == kBytes && source.type() == ValueType::container) {
        const Container::Stream* stream = fileStream(source.asContainer());
        bytes = stream == nullptr ? Bytes() : stream->bytes();
    } else {
        const std::u16string text = source.asText() + (step.isGiven(kLineFeed) ? u"\n" : u"");
        const std::string narrow = toUtf8(text);
        bytes = encoding == kUtf16 ? utf16Bytes(text) : Bytes(narrow.begin(), narrow.end());
    }
    step.dataFiles().write(integer(step.value(kId)), bytes);
}

void getPosition(StepContext& step) {
    step.assign(1, Value::number(step.dataFiles().position(integer(step.value(0)))));
}

void setPosition(StepContext& step) {
    step.dataFiles().setPosition(integer(step.value(0)), integer(step.value(1)));
}

constexpr StepRow kSteps[] = {
    {u"Open Data File [ calculation ; Target: $variable ]", openDataFile,
     "Opens a file for reading and writing; the variable takes its number."},
    {u"Close Data File [ File ID: calculation ]", closeDataFile, "Closes an open data file."},
    {u"Read from Data File [ File ID: calculation ; {Amount (bytes): calculation} ; Target: $variable ; "
     u"{Read as: UTF-8/UTF-16/Bytes} ]",
     readFromDataFile, "Reads from the position on, to the end without an amount."},
    {u"Write to Data File [ File ID: calculation ; Data source: calculation ; {Write as: UTF-8/UTF-16/Bytes} "
     u"; "
     u"{Append line feed} ]",
     writeToDataFile, "Writes at the position, over what is there."},
    {u"Get Data File Position [ File ID: calculation ; Target: $variable ]", getPosition,
     "The position in bytes, from 0."},
    {u"Set Data File Position [ File ID: calculation ; New position: calculation ]", setPosition,
     "Goes to a position in bytes, from 0."},
};

} // namespace

std::span<const StepRow> dataFileSteps() {
    return kSteps;
}

} // namespace host

#include "host/calc/functions/data.h"

#include "host/values/container_file.h"
#include "host/values/text.h"

#include <unicode/utf8.h>

namespace host {

DataBytes::DataBytes(const Value& value) : exist_(value.isValid()) {
    if (value.type() == ValueType::container) {
        const Container::Stream* stream = fileStream(value.asContainer());
        exist_ = stream != nullptr;
        bytes_ = exist_ ? std::span<const unsigned char>(stream->bytes()) : bytes_;
    } else {
        utf8_ = toUtf8(value.asText());
        bytes_ = {reinterpret_cast<const unsigned char*>(utf8_.data()), utf8_.size()};
    }
}

Value namelessFile(Bytes bytes) {
    Container container;
    container.set(kFileStream, std::move(bytes));
    return Value::container(std::move(container));
}

Value decodedValue(Bytes bytes, std::u16string_view name) {
    if (!name.empty()) {
        return Value::container(pictureContainer(name, std::move(bytes)));
    }
    return isUtf8(bytes) ? Value::text(fromUtf8({reinterpret_cast<const char*>(bytes.data()), bytes.size()}))
                         : namelessFile(std::move(bytes));
}

bool isUtf8(std::span<const unsigned char> bytes) {
    for (size_t at = 0; at < bytes.size();) {
        UChar32 c = 0;
        U8_NEXT(bytes.data(), at, bytes.size(), c);
        if (c < 0) {
            return false;
        }
    }
    return true;
}

} // namespace host

#include "host/calc/styled_text.h"

#include "host/calc/operations.h"

#include <utility>

namespace host {

StyledText::StyledText(const Value& value)
    : written_(value.type() == ValueType::text ? std::u16string() : value.asText()),
      text_(value.type() == ValueType::text ? value.storedText() : written_), styles_(value.styles()) {}

Value StyledText::slice(std::u16string_view piece) const {
    if (styles_.empty()) {
        return Value::text(piece);
    }
    const size_t begin = positionOf(piece);
    return Value::styledText(std::u16string(piece), slicedRuns(styles_, begin, begin + piece.size()));
}

StyledTextWriter::StyledTextWriter(Value first) : styles_(first.styles()) {
    text_ = std::move(first).takeText();
}

void StyledTextWriter::append(std::u16string_view plain) {
    appendRuns(styles_, text_.size(), {}, plain.size());
    text_ += plain;
}

void StyledTextWriter::append(const Value& value) {
    const size_t before = text_.size();
    appendText(text_, value);
    appendRuns(styles_, before, value.styles(), text_.size() - before);
}

void StyledTextWriter::append(const StyledText& from, std::u16string_view piece) {
    if (from.styles().empty()) {
        append(piece);
        return;
    }
    const size_t begin = from.positionOf(piece);
    appendRuns(styles_, text_.size(), slicedRuns(from.styles(), begin, begin + piece.size()), piece.size());
    text_ += piece;
}

Value StyledTextWriter::take() {
    Value result = styles_.empty() ? Value::text(std::move(text_))
                                   : Value::styledText(std::move(text_), std::move(styles_));
    *this = {};
    return result;
}

Value terminatedList(const StyledText& from, const std::vector<std::u16string_view>& values) {
    StyledTextWriter list;
    for (const std::u16string_view value : values) {
        list.append(from, value);
        list.append(u'\r');
    }
    return list.take();
}

} // namespace host

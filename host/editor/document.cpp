#include "host/editor/document.h"

#include "host/calc/characters.h"
#include "host/calc/lexer.h"

#include <algorithm>

namespace host {

namespace {

bool isWordUnit(char16_t c) {
    return c == u'$' || (c >= 0xD800 && c < 0xE000) || continuesName(c);
}

} // namespace

Document::Document(std::filesystem::path file, std::u16string text)
    : file_(std::move(file)), kind_(fileKind(file_).value_or(FileKind::calculation)) {
    setText(std::move(text));
}

SourcePtr Document::source() const {
    return std::make_shared<Source>(file_.string(), text_);
}

void Document::setText(std::u16string text) {
    text_ = std::move(text);
    lines_ = {0};
    for (size_t i = 0; i < text_.size(); ++i) {
        const bool isPair = text_[i] == u'\r' && i + 1 < text_.size() && text_[i + 1] == u'\n';
        if ((text_[i] == u'\r' && !isPair) || text_[i] == u'\n') {
            lines_.push_back(i + 1);
        }
    }
}

void Document::replace(EditorPosition begin, EditorPosition end, std::u16string_view with) {
    const size_t from = offset(begin);
    const size_t to = std::max(offset(end), from);
    setText(text_.substr(0, from).append(with).append(text_, to));
}

size_t Document::offset(EditorPosition position) const {
    if (position.line >= lines_.size()) {
        return text_.size();
    }
    const size_t begin = lines_[position.line];
    const size_t end = std::min(text_.find_first_of(u"\r\n", begin), text_.size());
    return begin + std::min(position.character, end - begin);
}

EditorPosition Document::position(size_t offset) const {
    offset = std::min(offset, text_.size());
    const auto next = std::upper_bound(lines_.begin(), lines_.end(), offset);
    const auto line = static_cast<size_t>(next - lines_.begin()) - 1;
    return {line, offset - lines_[line]};
}

EditorPosition Document::position(Place place) const {
    const size_t line = std::min<size_t>(place.line == 0 ? 0 : place.line - 1, lines_.size() - 1);
    const size_t end = offset({line, SIZE_MAX});
    const std::u16string_view text = std::u16string_view(text_).substr(lines_[line], end - lines_[line]);
    return {line, Characters(text).slice(0, place.column == 0 ? 0 : place.column - 1).size()};
}

size_t Document::wordBegin(size_t offset) const {
    while (offset > 0 && isWordUnit(text_[offset - 1])) {
        --offset;
    }
    return offset;
}

std::u16string Document::wordAt(size_t offset) const {
    const size_t begin = wordBegin(offset);
    size_t end = begin;
    while (end < text_.size() && isWordUnit(text_[end])) {
        ++end;
    }
    return text_.substr(begin, end - begin);
}

std::u16string Document::lineBefore(size_t offset) const {
    const size_t begin = lines_[position(offset).line];
    return text_.substr(begin, offset - begin);
}

} // namespace host

#include "host/editor/format.h"

#include "host/check/calc_file.h"
#include "host/editor/layout.h"
#include "host/editor/script_format.h"
#include "host/values/text.h"

#include <algorithm>
#include <optional>

namespace host {

namespace {

// Returns the line end of a text: that of its first line.
std::u16string lineEnd(std::u16string_view text) {
    const size_t at = text.find_first_of(u"\r\n");
    if (at == std::u16string_view::npos || text[at] == u'\n') {
        return u"\n";
    }
    return text.substr(at).starts_with(u"\r\n") ? u"\r\n" : u"\r";
}

std::u16string replaced(std::u16string_view text, std::u16string_view what, std::u16string_view with) {
    std::u16string result;
    for (size_t found = 0; (found = text.find(what)) != std::u16string_view::npos;) {
        result += text.substr(0, found);
        result += with;
        text.remove_prefix(found + what.size());
    }
    return result.append(text);
}

std::vector<std::u16string> linesOf(std::u16string_view text) {
    std::vector<std::u16string> lines;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find(u'\n', begin), text.size());
        lines.emplace_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return lines;
}

// Returns a formatted calculation for a file of calculations, where a backslash continues a line. Nothing for
// one that cannot be parsed, as tests expect some to fail.
std::optional<std::u16string> continuedLines(const CalcCheck& check, const FormatStyle& style) {
    try {
        const auto source = std::make_shared<Source>("", fromUtf8(check.text));
        std::vector<Piece> pieces = readPieces(source, 0, source->text().size(), false);
        const bool hasTextOfSeveralLines = std::any_of(pieces.begin(), pieces.end(), [](const Piece& piece) {
            return piece.text.find(u'\n') != std::u16string::npos;
        });
        return replaced(layOut(std::move(pieces), {0, style.indent}), u"\n",
                        hasTextOfSeveralLines ? u"\\\n" : u" \\\n"); // a blank would be a part of the text
    } catch (const CalcError&) {
        return std::nullopt;
    }
}

std::u16string formatCalculations(const Source& file, bool isMarkdown, const FormatStyle& style) {
    const std::u16string text(file.text());
    const std::vector<std::u16string> lines = linesOf(text);
    std::u16string result;
    size_t at = 0; // the next line
    const auto copyUpTo = [&](size_t line) {
        for (; at < line; ++at) {
            result += lines[at] + u'\n';
        }
    };
    for (const CalcCheck& check : parseCalcTest(toUtf8(text), isMarkdown).checks) {
        const auto count = static_cast<size_t>(std::count(check.text.begin(), check.text.end(), '\n')) + 1;
        copyUpTo(static_cast<size_t>(check.line) - 1);
        if (const auto formatted = continuedLines(check, style)) {
            result += *formatted + u'\n';
            at += count;
        }
    }
    copyUpTo(lines.size());
    return result;
}

// Whether the first indented line is indented by a tab.
bool usesTabs(std::u16string_view text) {
    for (size_t i = 0; i < text.size(); ++i) {
        const bool startsLine = i == 0 || text[i - 1] == u'\n' || text[i - 1] == u'\r';
        if (startsLine && (text[i] == u'\t' || text[i] == u' ')) {
            return text[i] == u'\t';
        }
    }
    return false;
}

std::u16string formatText(const SourcePtr& file, FileKind kind, const FormatStyle& style) {
    switch (kind) {
    case FileKind::calculations:
        return formatCalculations(*file, false, style);
    case FileKind::markdown:
        return formatCalculations(*file, true, style);
    case FileKind::script:
        return formatScript(file, style);
    case FileKind::calculation:
    case FileKind::customFunctions:
        break;
    }
    const std::u16string text = layOut(readPieces(file, 0, file->text().size(), false), style);
    return text.empty() ? text : text + u'\n';
}

} // namespace

std::u16string formatFile(const SourcePtr& file, FileKind kind, const FormatStyle& wanted) {
    FormatStyle style = wanted;
    if (style.indent.empty()) {
        style.indent = usesTabs(file->text()) ? u"\t" : kIndent;
    }
    const std::u16string end = lineEnd(file->text());
    if (end == u"\n") {
        return formatText(file, kind, style);
    }
    const auto plain = std::make_shared<Source>(file->name(), replaced(file->text(), end, u"\n"));
    return replaced(formatText(plain, kind, style), u"\n", end);
}

} // namespace host

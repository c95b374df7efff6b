#include "tools/command_line/shell_words.h"

namespace command_line {

std::vector<std::string> shellWords(std::string_view line) {
    std::vector<std::string> words(1);
    bool inWord = false;
    char quote = 0;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char sign = line[at];
        const bool isBlank = sign == ' ' || sign == '\t' || sign == '\n';
        if (quote == 0 && isBlank) {
            if (inWord) {
                words.emplace_back();
            }
            inWord = false;
            continue;
        }
        inWord = true;
        if (quote == 0 && (sign == '\'' || sign == '"')) {
            quote = sign;
        } else if (sign == quote) {
            quote = 0;
        } else if (sign == '\\' && quote != '\'' && at + 1 < line.size()) {
            words.back() += line[++at];
        } else {
            words.back() += sign;
        }
    }
    return words;
}

} // namespace command_line

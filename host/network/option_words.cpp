#include "host/network/network.h"

namespace host {

std::vector<std::string> optionWords(std::string_view options) {
    constexpr std::string_view kBlanks = " \t\r\n";
    std::vector<std::string> words;
    bool isOpen = false; // whether a word has begun
    const auto add = [&](char c) {
        if (!isOpen) {
            words.emplace_back();
            isOpen = true;
        }
        words.back() += c;
    };
    for (size_t at = 0; at < options.size(); ++at) {
        const char c = options[at];
        if (c == '"' || c == '\'') {
            if (!isOpen) {
                words.emplace_back();
                isOpen = true;
            }
            for (++at; at < options.size() && options[at] != c; ++at) {
                at += c == '"' && options[at] == '\\' && at + 1 < options.size() ? 1 : 0;
                words.back() += options[at];
            }
            if (at >= options.size()) {
                throw OptionError("the cURL options have a quote " + std::string(1, c) + " without its end");
            }
        } else if (c == '\\' && at + 1 < options.size()) {
            add(options[++at]);
        } else if (kBlanks.find(c) != std::string_view::npos) {
            isOpen = false;
        } else {
            add(c);
        }
    }
    return words;
}

} // namespace host

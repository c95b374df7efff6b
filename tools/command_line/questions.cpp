#include "tools/command_line/questions.h"

#include "tools/command_line/manual.h"
#include "tools/command_line/shell_words.h"

#include <exception>
#include <iostream>
#include <string_view>

namespace command_line {

namespace {

// Returns a text as one line without tabs.
std::string oneLine(std::string text) {
    for (char& sign : text) {
        if (sign == '\n' || sign == '\t' || sign == '\r') {
            sign = ' ';
        }
    }
    return text;
}

void print(const Completion& completion, std::string_view line) {
    constexpr std::string_view kPaths[] = {"words", "files", "folders"};
    std::cout << kPaths[static_cast<std::size_t>(completion.paths)]
              << (completion.continues ? " nospace" : "") << '\n'
              << oneLine(shellWords(line).back()) << '\n';
    for (const Candidate& candidate : completion.candidates) {
        if (candidate.word.find_first_of("\n\t\r") == std::string::npos) { // nobody types those
            std::cout << candidate.word << '\t' << oneLine(candidate.description) << '\n';
        }
    }
    std::cout << std::flush;
}

} // namespace

std::optional<int> answerQuestion(int argc, char** argv, const CLI::App& program,
                                  const Completers& completers) {
    if (argc != 3) {
        return std::nullopt;
    }
    const std::string_view question = argv[1];
    try {
        if (question == "--manual") {
            writeManuals(program, VELOCARD_VERSION, argv[2]);
            return 0;
        }
        if (question == "--complete") {
            print(complete(program, completers, argv[2]), argv[2]);
            return 0;
        }
    } catch (const std::exception& error) {
        std::cerr << program.get_name() << ": " << error.what() << std::endl;
        return 1;
    }
    return std::nullopt;
}

void addVersion(CLI::App& program) {
    program.set_version_flag("--version", program.get_name() + " " VELOCARD_VERSION,
                             "Print the version and exit");
}

} // namespace command_line

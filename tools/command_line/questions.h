#pragma once

// The two questions that not users but the build and shells ask a program:
//
//   PROGRAM --manual FOLDER    writes the manual pages into a folder
//   PROGRAM --complete LINE    says what fits at the end of a line: "words", "files" or "folders", with
//                              " nospace" when more may follow in the word; then the word that is completed,
//                              without quotes; then a line for each candidate, a tab before its description

#include "tools/command_line/completion.h"

#include <optional>

namespace command_line {

// Answers a question, if the arguments are one, and returns the exit status; nothing for all other arguments.
std::optional<int> answerQuestion(int argc, char** argv, const CLI::App& program,
                                  const Completers& completers);

// Adds the option --version, which prints the program's name and the version of Velocard.
void addVersion(CLI::App& program);

} // namespace command_line

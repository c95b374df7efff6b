#include "host/console/format_command.h"

#include "host/console/commands.h"
#include "host/script/file_bytes.h"
#include "host/script/script_library.h"
#include "host/values/text.h"

#include <iostream>
#include <iterator>

namespace host {

namespace {

ExitCode formatInput(const FormatCommand& command) {
    const std::string text{std::istreambuf_iterator<char>(std::cin), {}};
    const auto source = std::make_shared<Source>("standard input", fromUtf8(text));
    const std::string formatted = toUtf8(formatFile(source, FileKind::calculation, command.style));
    if (!command.check) {
        std::cout << formatted;
        return ExitCode::ok;
    }
    return formatted == text ? ExitCode::ok : ExitCode::failure;
}

ExitCode formatOne(const std::string& file, const FormatCommand& command) {
    const std::optional<FileKind> kind = fileKind(file);
    if (!kind) {
        throw FileError(file +
                        " is of no kind that can be formatted; expected .fmscript, .fmfn, .calc or .md");
    }
    const SourcePtr source = readSource(file);
    const std::string before = toUtf8(source->text());
    const std::string after = toUtf8(formatFile(source, *kind, command.style));
    if (after == before) {
        return ExitCode::ok;
    }
    if (!command.check) {
        writeBytes(file, Bytes(after.begin(), after.end()));
    }
    std::cout << file << '\n';
    return command.check ? ExitCode::failure : ExitCode::ok;
}

} // namespace

ExitCode runFormat(const FormatCommand& command) {
    if (command.files.empty()) {
        return formatInput(command);
    }
    ExitCode result = ExitCode::ok;
    const auto failed = [&result](ExitCode code) { result = result == ExitCode::ok ? code : result; };
    for (const std::string& file : command.files) {
        try {
            failed(file == "-" ? formatInput(command) : formatOne(file, command));
        } catch (const CalcError& error) {
            std::cerr << error.report() << '\n';
            failed(exitCodeOf(error));
        } catch (const FileError& error) {
            std::cerr << "fmhost: " << error.what() << '\n';
            failed(ExitCode::usage);
        }
    }
    return result;
}

} // namespace host

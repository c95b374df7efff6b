#pragma once

// The exit statuses of the program; scripts and continuous integration rely on the numbers.

namespace host {

enum class ExitCode : int {
    ok = 0,
    failure = 1, // an evaluation, a script or a test failed
    usage = 2,   // wrong options, or a file that cannot be read
    parse = 3,   // a calculation or a script that cannot be parsed
    load = 4,    // the plug-in could not be loaded, refused to run, or registered what it must not
};

} // namespace host

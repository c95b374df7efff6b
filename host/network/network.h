#pragma once

// Fetching what a URL names. The transfer is a library of its own, which brings many others with it and is
// loaded when a script first needs it; its function is called through the table that it exports.

#include "host/values/container.h"

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host {

struct NetworkRequest {
    std::string url;
    std::vector<std::string> options; // cURL's, word by word: "--request", "POST"; optionWords() makes them

    // Returns the contents of a variable ("$name") or of a file, for options that send or trust it. May throw
    // whatever its caller understands.
    std::function<Bytes(const std::string& name)> read;

    // Tells whether to give up. Called a few times a second; must not throw.
    std::function<bool()> mustStop;
};

struct NetworkResponse {
    int code = 0;             // FileMaker's error code; 0 for success
    std::string message;      // what went wrong
    Bytes body;               // what was answered; with a code, what had arrived
    std::string charset;      // of a text, in lower case; empty when nobody named one
    std::string fileName;     // that the server or the URL names; may be empty
    bool isContainer = false; // --FM-return-container-variable: a text, too, is a file

    // What options put elsewhere than in the result: "$name" or a file, and its contents.
    struct Output {
        std::string name;
        Bytes contents;
    };
    std::vector<Output> outputs;
    bool isBodyElsewhere = false; // the body is one of the outputs
};

// Thrown for options that cannot be understood.
struct OptionError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Splits options into words, as a shell does: blanks separate them, in quotes ' and " they do not, and a
// backslash takes the next character as it is (not in ''). Throws OptionError for a quote without its end.
std::vector<std::string> optionWords(std::string_view options);

// The functions of the library.
struct Network {
    // Fetches, and answers also when that fails. Throws OptionError, and what NetworkRequest::read throws.
    NetworkResponse (*fetch)(const NetworkRequest& request);
};

// The symbol that the library exports.
extern "C" const Network velocardNetwork;
inline constexpr const char* kNetworkSymbol = "velocardNetwork";
inline constexpr const char* kNetworkLibrary = "libFMHostNetwork.so";

} // namespace host

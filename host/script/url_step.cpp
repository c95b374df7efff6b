#include "host/script/url_step.h"

#include "host/calc/functions/data.h"
#include "host/calc/text_encoding.h"
#include "host/modules/installed_library.h"
#include "host/network/network.h"
#include "host/script/file_bytes.h"
#include "host/script/script_library.h"
#include "host/script/step_context.h"
#include "host/values/container_file.h"
#include "host/values/text.h"

namespace host {

namespace fs = std::filesystem;

namespace {

// Returns the functions of the network's library. Throws std::runtime_error when it is not there.
const Network& network() {
    static const auto* const kLoaded =
        static_cast<const Network*>(libraryObject(kNetworkLibrary, kNetworkSymbol));
    return *kLoaded;
}

Value fileValue(const std::string& name, Bytes bytes) {
    return Value::container(pictureContainer(fromUtf8(name), std::move(bytes)));
}

// Returns bytes as text when they are UTF-8, or in the charset that is named; else as a file.
Value receivedValue(Bytes bytes, const std::string& name, const std::string& charset) {
    if (!charset.empty() && charset != "utf-8") {
        if (auto text = decodedText(bytes, fromUtf8(charset))) {
            return Value::text(std::move(*text));
        }
    }
    return isUtf8(bytes) ? decodedValue(std::move(bytes), {}) : fileValue(name, std::move(bytes));
}

void readFile(StepContext& step, const std::string& url) {
    fs::path file = step.path(kUrlAddress);
    if (url.starts_with("file://")) {
        file = url.substr(std::min(url.find('/', 7), url.size()));
    }
    try {
        Value value = receivedValue(readBytes(file), file.filename().string(), {});
        step.trace(value);
        step.assign(kUrlTarget, std::move(value));
    } catch (const FileError& error) {
        step.fail(kFileMissing, error.what(), kUrlAddress);
    }
}

// Reads what an option names: a variable of the script, or a file relative to its folder.
Bytes readNamed(const StepContext& step, const std::string& name) {
    if (!name.starts_with('$')) {
        return readBytes(step.fileBeside(name));
    }
    const Value* value = step.session().variable(foldName(fromUtf8(name)));
    if (value == nullptr) {
        return {};
    }
    const DataBytes data(*value);
    return {data.bytes().begin(), data.bytes().end()};
}

void put(StepContext& step, NetworkResponse::Output output) {
    if (output.name.starts_with('$')) {
        step.session().setVariable(foldName(fromUtf8(output.name)),
                                   receivedValue(std::move(output.contents), {}, {}));
    } else {
        writeBytes(step.fileBeside(output.name), output.contents);
    }
}

void download(StepContext& step, const std::string& url) {
    try {
        NetworkRequest request{url, optionWords(toUtf8(step.text(kUrlOptions))), {}, {}};
        request.read = [&step](const std::string& name) { return readNamed(step, name); };
        request.mustStop = [&step] { return step.session().reasonToStopNow() != nullptr; };
        NetworkResponse response = network().fetch(request);
        step.requireTime();
        for (NetworkResponse::Output& output : response.outputs) {
            put(step, std::move(output));
        }
        if (response.code != 0) {
            step.fail(response.code, url + ": " + response.message, kUrlAddress);
        }
        if (!response.isBodyElsewhere) {
            Value value = response.isContainer
                              ? fileValue(response.fileName, std::move(response.body))
                              : receivedValue(std::move(response.body), response.fileName, response.charset);
            step.trace(value);
            step.assign(kUrlTarget, std::move(value));
        }
    } catch (const OptionError& error) {
        step.fail(kCommandUnavailable, error.what(), kUrlOptions);
    } catch (const FileError& error) {
        step.fail(kFileMissing, error.what(), kUrlOptions);
    }
}

} // namespace

void insertFromUrl(StepContext& step) {
    const std::string url = toUtf8(step.text(kUrlAddress));
    if (url.starts_with("file:")) {
        readFile(step, url);
        return;
    }
    if (!step.session().environment().allowsNetwork) {
        step.fail(kNetworkUnavailable, "the host uses the network with --allow-network only: " + url,
                  kUrlAddress);
    }
    download(step, url);
}

} // namespace host

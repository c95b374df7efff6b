// Steps that set variables.
#include "host/script/file_bytes.h"
#include "host/script/script_library.h"
#include "host/script/step_context.h"
#include "host/script/steps/categories.h"
#include "host/values/container_file.h"
#include "host/values/text.h"

namespace host {

namespace {

void setVariable(StepContext& step) {
    Value value = step.value(1);
    step.trace(value);
    step.assign(0, std::move(value));
}

void insertText(StepContext& step) {
    enum : size_t { kSelect, kTarget, kText };
    Value value = step.value(kText);
    step.trace(value);
    step.assign(kTarget, std::move(value));
}

// Inserts the file of a file: URL; as text when it is UTF-8.
void insertFromUrl(StepContext& step) {
    enum : size_t { kSelect, kDialog, kTarget, kUrl, kVerify, kOptions };
    const std::string url = toUtf8(step.text(kUrl));
    if (!url.starts_with("file:")) {
        step.fail(kNetworkUnavailable, "the host uses no network; a URL can be that of a file (file:/...)",
                  kUrl);
    }
    std::filesystem::path file = step.path(kUrl);
    if (url.starts_with("file://")) {
        file = url.substr(url.find('/', 7) == std::string::npos ? url.size() : url.find('/', 7));
    }
    try {
        const Bytes bytes = readBytes(file);
        std::u16string text = fromUtf8({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        const std::string back = toUtf8(text);
        const bool isText = back.size() == bytes.size() &&
                            std::equal(bytes.begin(), bytes.end(), back.begin(), [](unsigned char a, char b) {
                                return a == static_cast<unsigned char>(b);
                            });
        Value value = isText ? Value::text(std::move(text))
                             : Value::container(pictureContainer(fromUtf8(file.filename().string()), bytes));
        step.trace(value);
        step.assign(kTarget, std::move(value));
    } catch (const FileError& error) {
        step.fail(kFileMissing, error.what(), kUrl);
    }
}

void setSessionIdentifier(StepContext& step) {
    step.session().environment().sessionIdentifier = step.text(0);
}

constexpr StepRow kSteps[] = {
    {u"Set Variable [ $variable ; Value: calculation ]", setVariable, "Gives a value to a variable.",
     StepForm::quiet},
    {u"Insert Text [ {Select} ; Target: $variable ; calculation ]", insertText,
     "Puts a text into a variable."},
    {u"Insert Calculated Result [ {Select} ; Target: $variable ; calculation ]", insertText,
     "Puts the result of a calculation into a variable."},
    {u"Insert from URL [ {Select} ; {With dialog: On/Off} ; Target: $variable ; calculation ; "
     u"{Verify SSL Certificates} ; {cURL options: calculation} ]",
     insertFromUrl, "Puts what a file: URL names into a variable; other URLs are error 1631."},
    {u"Set Session Identifier [ calculation ]", setSessionIdentifier, "Sets Get ( SessionIdentifier )."},
};

} // namespace

std::span<const StepRow> variableSteps() {
    return kSteps;
}

} // namespace host

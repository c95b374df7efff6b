// JSON: a path and a value in the first two lines, the document behind them, in every function for JSON. What is written
// is read back as it was.

#include "fuzz/support/calculator.h"
#include "fuzz/support/claim.h"
#include "fuzz/support/input.h"
#include "host/calc/json_text.h"
#include "host/calc/parser.h"
#include "host/values/text.h"

#include <charconv>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace host;

constexpr const char16_t* kCalculations[] = {
    u"JSONGetElement ( $json ; $path )",
    u"JSONGetElementType ( $json ; $path )",
    u"JSONListKeys ( $json ; $path )",
    u"JSONListValues ( $json ; $path )",
    u"JSONDeleteElement ( $json ; $path )",
    u"JSONFormatElements ( $json )",
    u"JSONSetElement ( $json ; $path ; $value ; JSONString )",
    u"JSONSetElement ( $json ; $path ; $value ; JSONNumber )",
    u"JSONSetElement ( $json ; $path ; $value ; JSONRaw )",
    u"JSONSetElement ( $json ; [ $path ; $json ; JSONObject ] ; [ \"[:]\" ; $value ; JSONBoolean ] )",
    u"JSONSetElement ( $json ; $path & \".a[+]\" ; $value ; JSONArray )",
    u"JSONMakeArray ( $json ; $value ; JSONRaw )",
    u"JSONParse ( $json )",
    u"JSONParsedState ( $json )",
};

// Larger arrays, which a few bytes ask for, take longer than a fuzzer's second; real ones may have 5,000 times as many
// places.
constexpr std::size_t kMostPlaces = 2000;

// Returns a path without those of its indices that make the arrays too large.
std::string boundedPath(std::string_view path) {
    std::string result;
    std::size_t places = 0; // asked for so far
    while (!path.empty()) {
        std::size_t index = 0;
        const auto [end, error] = std::from_chars(path.data(), path.data() + path.size(), index);
        const auto digits = static_cast<std::size_t>(end - path.data());
        if (digits == 0) {
            result += path.front();
            path.remove_prefix(1);
            continue;
        }
        if (error == std::errc() && index <= kMostPlaces - places) {
            places += index;
            result += path.substr(0, digits);
        }
        path.remove_prefix(digits);
    }
    return result;
}

// What has been written is the same when it is read and written again.
void roundTrip(const Value& text) {
    const auto parsed = parsedJson(text);
    if (!parsed->error.empty()) {
        return;
    }
    for (const std::u16string& written : {jsonText(parsed->root), formattedJson(parsed->root)}) {
        const auto again = parsedJson(Value::text(written));
        fuzz::claim(again->error.empty(), "what is written as JSON is JSON");
        fuzz::claim(jsonText(again->root) == jsonText(parsed->root), "JSON is read back as it was written");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, size);
    Session session;
    session.setVariable(u"$path", Value::text(fromUtf8(boundedPath(input.until('\n')))));
    session.setVariable(u"$value", Value::text(fromUtf8(input.until('\n'))));
    const Value json = Value::text(fromUtf8(input.rest()));
    session.setVariable(u"$json", json);
    for (const char16_t* text : kCalculations) {
        // The document is used up by those that change it, and so is a calculation that was parsed only once.
        const auto source = std::make_shared<const Source>("", text);
        const Value result = fuzz::evaluate(session, parseCalculation(source, session.functions()));
        roundTrip(result);
    }
    roundTrip(json);
    return 0;
}

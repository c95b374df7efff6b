#include "fuzz/support/calculator.h"

#include "fuzz/support/stop_after.h"
#include "host/calc/parser.h"
#include "host/calc/stack_limit.h"
#include "host/values/text.h"

#include <memory>

namespace fuzz {

namespace {

// A fuzzer's bound is a second; the rest is for what does not look at the clock.
constexpr std::chrono::milliseconds kTime{250};

} // namespace

void readAll(const host::Value& value) {
    (void)value.asText();
    (void)value.asBoolean();
    for (const auto type : {host::ValueType::text, host::ValueType::number, host::ValueType::date,
                            host::ValueType::time, host::ValueType::timestamp, host::ValueType::container}) {
        (void)value.convertedTo(type).asText();
    }
}

host::Value evaluate(host::Session& session, const host::Calculation& calculation) {
    host::growStack();
    const StopAfter stop(session.interruptFlag(), kTime);
    try {
        host::Value value = session.evaluate(calculation);
        readAll(value);
        return value;
    } catch (const host::CalcError& error) {
        (void)error.report();
        return host::Value::invalid();
    }
}

void evaluate(host::Session& session, std::string_view calculation) {
    try {
        const auto source = std::make_shared<const host::Source>("", host::fromUtf8(calculation));
        evaluate(session, host::parseCalculation(source, session.functions()));
    } catch (const host::CalcError& error) {
        (void)error.report();
    }
}

} // namespace fuzz

#include "host/loader/plugin_handler.h"

#include "host/calc/session.h"
#include "host/loader/conversion.h"

#include <algorithm>
#include <new>

namespace host {

namespace {

bool holdsContainer(std::span<const Value> values) {
    return std::any_of(values.begin(), values.end(),
                       [](const Value& value) { return value.type() == ValueType::container; });
}

} // namespace

Value PluginHandler::call(Session& session, std::span<Value> arguments) const {
    try {
        const CallFrames::Lease frame(frames_);
        setArguments(*frame->arguments, arguments);
        frame->result->Clear(fmx::Data::kDTText);
        const fmx::errcode code = code_(identity_.id, *frame->environment, *frame->arguments, *frame->result);
        session.setLastError(code);
        Value result = code == 0 ? valueOf(*frame->result) : Value::invalid();
        if (holdsContainer(arguments) || result.type() == ValueType::container) {
            frame->release(); // not kept until the next call, as values may be large
        }
        return result;
    } catch (const std::bad_alloc&) {
        throw ExternalFailure("out of memory");
    } catch (const std::exception& error) {
        throw ExternalFailure(error.what());
    } catch (...) {
        throw ExternalFailure("it threw something that is no standard exception");
    }
}

} // namespace host

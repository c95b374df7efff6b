#include "host/wrapper/guard.h"

#include "host/wrapper/host_hooks.h"

namespace host {

std::atomic<fmx::int32> callsUntilFailure{0};

namespace {

std::atomic<fmx::int32> failureCode{0};

} // namespace

fmx::int32 countedFailure() noexcept {
    fmx::int32 left = callsUntilFailure.load();
    while (left > 0 && !callsUntilFailure.compare_exchange_weak(left, left - 1)) {
    }
    return left == 1 ? failureCode.load() : 0;
}

} // namespace host

void FM_Host_FailNextCall(fmx::int32 code, fmx::int32 afterCalls) noexcept {
    host::failureCode = code;
    host::callsUntilFailure = code == 0 || afterCalls < 0 ? 0 : afterCalls + 1;
}

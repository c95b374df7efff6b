#include "host/wrapper/host_values.h"

#include "host/wrapper/guard.h"
#include "host/wrapper/objects.h"

void FM_Host_GetValue(const fmx::Data& data, host::Value& value, fmx::_fmxcpt& block) noexcept {
    host::guarded(block, [&] { value = host::inside(data).unsharedValue(); });
}

void FM_Host_SetValue(fmx::Data& data, const host::Value& value, fmx::_fmxcpt& block) noexcept {
    host::guarded(block, [&] { host::inside(data).set(value); });
}

void FM_Host_SetValues(fmx::DataVect& vector, std::span<const host::Value> values,
                       fmx::_fmxcpt& block) noexcept {
    host::guarded(block, [&] {
        auto& objects = host::inside(vector).values;
        objects.clear();
        for (const host::Value& value : values) {
            objects.push_back(std::make_unique<host::DataObject>(value));
        }
    });
}

#include "host/calc/function_registry.h"

#include "host/values/text.h"

namespace host {

bool FunctionRegistry::add(const ExternalFunctionPtr& function) {
    const bool added = functions_.emplace(foldName(function->name()), function).second;
    function->registered_ = function->registered_ || added;
    return added;
}

void FunctionRegistry::remove(const ExternalFunctionPtr& function) {
    const auto found = functions_.find(foldName(function->name()));
    if (found != functions_.end() && found->second == function) {
        function->registered_ = false;
        functions_.erase(found);
    }
}

ExternalFunctionPtr FunctionRegistry::find(std::u16string_view key) const {
    const auto found = functions_.find(key);
    return found == functions_.end() ? nullptr : found->second;
}

std::u16string foldName(std::u16string_view name) {
    return foldCase(name);
}

} // namespace host

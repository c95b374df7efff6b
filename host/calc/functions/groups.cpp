#include "host/calc/functions/groups.h"

#include <algorithm>
#include <array>

namespace host {

std::span<const FunctionGroup> functionGroups() {
    static const std::array kGroups = {
        FunctionGroup{"Text", textFunctions()},
        FunctionGroup{"Text", textWordFunctions()},
        FunctionGroup{"Text", textListFunctions()},
        FunctionGroup{"Text", textSortFunctions()},
        FunctionGroup{"Text", conversionFunctions()},
        FunctionGroup{"Text", styledTextFunctions()},
        FunctionGroup{"Text formatting", textFormattingFunctions()},
        FunctionGroup{"Number", numberFunctions()},
        FunctionGroup{"Trigonometric", trigonometricFunctions()},
        FunctionGroup{"Financial", financialFunctions()},
        FunctionGroup{"Aggregate", aggregateFunctions()},
        FunctionGroup{"Repeating", repeatingFunctions()},
        FunctionGroup{"Date", dateFunctions()},
        FunctionGroup{"Time", timeFunctions()},
        FunctionGroup{"Logical", logicalFunctions()},
        FunctionGroup{"JSON", jsonFunctions()},
        FunctionGroup{"Container", containerFunctions()},
        FunctionGroup{"Container", encodingFunctions()},
        FunctionGroup{"Container", cryptFunctions()},
        FunctionGroup{"Japanese", japaneseFunctions()},
        FunctionGroup{"Design", designFunctions()},
        FunctionGroup{"Artificial intelligence", aiFunctions()},
        FunctionGroup{"Mobile", mobileFunctions()},
        FunctionGroup{"Miscellaneous", miscellaneousFunctions()},
    };
    return kGroups;
}

std::span<const std::span<const GetRow>> getGroups() {
    static const std::array kGroups = {clockGets(), sessionGets(), systemGets(), absentGets()};
    return kGroups;
}

bool areValid(Arguments in) {
    return std::all_of(in.begin(), in.end(), [](const Value& value) { return value.isValid(); });
}

int64_t integer(const Value& value) {
    return value.asNumber().value_or(0).toInt64();
}

size_t count(const Value& value) {
    return static_cast<size_t>(std::max<int64_t>(integer(value), 0));
}

Value integerValue(int64_t number) {
    return Value::number(number);
}

} // namespace host

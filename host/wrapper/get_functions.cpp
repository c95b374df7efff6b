#include "host/wrapper/get_functions.h"

#include <algorithm>
#include <iterator>

namespace host {

namespace {

struct GetFunction {
    fmx::int16 number;
    std::u16string_view name;
};

constexpr GetFunction kGetFunctions[] = {
    {1001, u"ApplicationVersion"},
    {1002, u"CurrentDate"},
    {1003, u"LastError"},
    {1026, u"ScriptName"},
    {1028, u"SystemVersion"},
    {1029, u"CurrentTime"},
    {1040, u"FilePath"},
    {1062, u"ScriptParameter"},
    {1063, u"CurrentTimestamp"},
    {1080, u"ScriptResult"},
    {1089, u"TemporaryPath"},
    {1101, u"UUID"},
    {1104, u"CurrentTimeUTCMilliseconds"},
    {1133, u"CurrentTimeUTCMicroseconds"},
};

} // namespace

std::u16string_view getFunctionName(fmx::int16 which) {
    const auto* found = std::find_if(std::begin(kGetFunctions), std::end(kGetFunctions),
                                     [&](const GetFunction& function) { return function.number == which; });
    return found == std::end(kGetFunctions) ? std::u16string_view() : found->name;
}

} // namespace host

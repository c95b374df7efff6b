#include "plugin/shell/function_table.h"

#include "plugin/shell/handlers.h"
#include "plugin/shell/strings.h"
#include <algorithm>
#include <array>

namespace koru {
namespace {

constexpr auto kFunctions = std::to_array<ExternalFunction>({
    {0, 0, 1, Do_KORU_Version},
    {3, 1, 1, Do_KORU_Delete},
    {4, 6, 7, Do_KORU_Search},
    {5, 0, 1, Do_KORU_OpenFirstRecord},
    {6, 0, 1, Do_KORU_OpenNextRecord},
    {7, 1, 1, Do_KORU_Open},
    {8, 1, 3, Do_KORU_New},
    {9, 0, 1, Do_KORU_Save},
    {10, 0, 0, Do_KORU_GetFirstParentID},
    {11, 0, 0, Do_KORU_GetNextParentID},
    {12, 2, 4, Do_KORU_CompareProperty},
    {13, 1, 2, Do_KORU_GetValueForProperty},
    {14, 1, 2, Do_KORU_OpenFirstMVProperty},
    {15, 0, 0, Do_KORU_OpenNextMVProperty},
    {16, 2, 4, Do_KORU_GetValueForUID},
    {17, 2, 3, Do_KORU_SetValueForProperty},
    {18, 3, 5, Do_KORU_SetValueForUID},
    {19, 2, 3, Do_KORU_GetLabelForUID},
    {20, 3, 4, Do_KORU_SetLabelForUID},
    {22, 1, 2, Do_KORU_DeleteValueForProperty},
    {23, 2, 3, Do_KORU_DeleteValueForUID},
    {24, 1, 1, Do_KORU_AddPerson},
    {25, 1, 1, Do_KORU_RemovePerson},
    {26, 1, 1, Do_KORU_AddSubgroup},
    {27, 1, 1, Do_KORU_RemoveSubgroup},
    {28, 0, 0, Do_KORU_GetFirstMemberID},
    {29, 0, 0, Do_KORU_GetNextMemberID},
    {30, 0, 0, Do_KORU_GetFirstSubgroupID},
    {31, 0, 0, Do_KORU_GetNextSubgroupID},
    {32, 3, 4, Do_KORU_AddMV},
    {33, 7, 7, Do_KORU_AddAddress},
    {34, 0, 1, Do_KORU_GetLastError},
    {35, 2, 2, Do_KORU_AddCustomField},
    {36, 2, 2, Do_KORU_RemoveCustomField},
    {37, 3, 3, Do_KORU_SetCustomField},
    {38, 2, 2, Do_KORU_GetCustomField},
    {39, 0, 0, Do_KORU_GetImage},
    {40, 1, 1, Do_KORU_SetImage},
    {41, 3, 3, Do_KORU_GetListOfValues},
    {42, 3, 3, Do_KORU_ClearAll},
    {43, 1, 1, Do_KORU_Display},
    {45, 0, 0, Do_KORU_Reload},
});

static_assert(std::is_sorted(kFunctions.begin(), kFunctions.end(),
                             [](const auto& a, const auto& b) { return a.id <= b.id; }),
              "ids ascend and are unique");
static_assert(std::all_of(kFunctions.begin(), kFunctions.end(),
                          [](const auto& row) {
                              return 0 <= row.minArguments && row.minArguments <= row.maxArguments &&
                                     row.id != 21 && row.id != 44;
                          }),
              "argument ranges are ranges, and the free ids are free");

constexpr auto kUnregistrationOrder = std::to_array<short>({
    0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22,
    23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 45, 39, 40, 35, 36, 37, 38, 41, 42, 43,
});

// Shown in all calculation dialogs, and allowed on a server.
constexpr fmx::uint32 kFlags = 0xFF01;

// The identifier by which the host knows the plug-in.
constexpr char kPluginIdentifier[] = {'K', 'O', 'R', 'U'};

} // namespace

std::span<const ExternalFunction> externalFunctions() {
    return kFunctions;
}

std::span<const short> unregistrationOrder() {
    return kUnregistrationOrder;
}

bool acceptsCount(short function, fmx::uint32 count) {
    const auto row = std::lower_bound(kFunctions.begin(), kFunctions.end(), function,
                                      [](const ExternalFunction& entry, short id) { return entry.id < id; });
    if (row == kFunctions.end() || row->id != function) {
        return true;
    }
    return static_cast<fmx::uint32>(row->minArguments) <= count &&
           count <= static_cast<fmx::uint32>(row->maxArguments);
}

void registerFunctions() {
    const OwnedQuadChar plugin(kPluginIdentifier[0], kPluginIdentifier[1], kPluginIdentifier[2],
                               kPluginIdentifier[3]);
    OwnedText name;
    OwnedText prototype;
    for (const ExternalFunction& function : kFunctions) {
        Do_GetString(stringIdOf(function.id), name, true);
        Do_GetString(stringIdOf(function.id), prototype, false);
        fmx::ExprEnv::RegisterExternalFunction(*plugin, function.id, *name, *prototype, function.minArguments,
                                               function.maxArguments, kFlags, function.handler);
    }
}

void unregisterFunctions() {
    const OwnedQuadChar plugin(kPluginIdentifier[0], kPluginIdentifier[1], kPluginIdentifier[2],
                               kPluginIdentifier[3]);
    for (const short id : kUnregistrationOrder) {
        fmx::ExprEnv::UnRegisterExternalFunction(*plugin, id);
    }
}

} // namespace koru

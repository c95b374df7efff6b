#pragma once

#include "FMWrapper/FMXCalcEngine.h"
#include <type_traits>

// The external functions: each takes its id, the calculation's environment, the arguments and the result, and
// answers 0 (handler_frame.h says how failures are told). docs/functions.md describes them to users.
using HandlerFunction = std::remove_pointer_t<fmx::ExtPluginType>;

// shell/
HandlerFunction Do_KORU_Version;
HandlerFunction Do_KORU_GetLastError;

// records/
HandlerFunction Do_KORU_Search;
HandlerFunction Do_KORU_OpenFirstRecord;
HandlerFunction Do_KORU_OpenNextRecord;
HandlerFunction Do_KORU_Open;
HandlerFunction Do_KORU_New;
HandlerFunction Do_KORU_Save;
HandlerFunction Do_KORU_Delete;
HandlerFunction Do_KORU_ClearAll;

// properties/
HandlerFunction Do_KORU_GetValueForProperty;
HandlerFunction Do_KORU_SetValueForProperty;
HandlerFunction Do_KORU_DeleteValueForProperty;

#pragma once

#include "plugin/support/host_interface.h"
#include <type_traits>

// The handlers of the external functions. Each takes the function's id, the calculation's environment, the
// arguments and the result, and returns 0 (handler_frame.h says how failures are reported). docs/functions.md
// describes the functions to users.
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
HandlerFunction Do_KORU_Display;
HandlerFunction Do_KORU_Reload;

// properties/
HandlerFunction Do_KORU_GetValueForProperty;
HandlerFunction Do_KORU_SetValueForProperty;
HandlerFunction Do_KORU_DeleteValueForProperty;
HandlerFunction Do_KORU_OpenFirstMVProperty;
HandlerFunction Do_KORU_OpenNextMVProperty;
HandlerFunction Do_KORU_GetValueForUID;
HandlerFunction Do_KORU_SetValueForUID;
HandlerFunction Do_KORU_DeleteValueForUID;
HandlerFunction Do_KORU_GetLabelForUID;
HandlerFunction Do_KORU_SetLabelForUID;
HandlerFunction Do_KORU_Add; // not in the function table: reached through Do_KORU_AddMV
HandlerFunction Do_KORU_AddMV;
HandlerFunction Do_KORU_AddAddress;
HandlerFunction Do_KORU_CompareProperty;

// groups/
HandlerFunction Do_KORU_GetFirstParentID;
HandlerFunction Do_KORU_GetNextParentID;
HandlerFunction Do_KORU_GetFirstMemberID;
HandlerFunction Do_KORU_GetNextMemberID;
HandlerFunction Do_KORU_GetFirstSubgroupID;
HandlerFunction Do_KORU_GetNextSubgroupID;
HandlerFunction Do_KORU_AddPerson;
HandlerFunction Do_KORU_RemovePerson;
HandlerFunction Do_KORU_AddSubgroup;
HandlerFunction Do_KORU_RemoveSubgroup;
HandlerFunction Do_KORU_GetListOfValues;

// custom/
HandlerFunction Do_KORU_AddCustomField;
HandlerFunction Do_KORU_RemoveCustomField;
HandlerFunction Do_KORU_SetCustomField;
HandlerFunction Do_KORU_GetCustomField;

// images/
HandlerFunction Do_KORU_GetImage;
HandlerFunction Do_KORU_SetImage;

// notify/
HandlerFunction Do_KORU_RegisterUpdateScript; // not in the function table: kept ready

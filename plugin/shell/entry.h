#pragma once

#include "plugin/support/host_interface.h"

// Handles a message of the host. The plug-in's only exported symbol: the host calls it for every message. A
// failure of the host's own during start-up or shut-down leaves it as std::bad_alloc or std::exception.
extern "C" __attribute__((visibility("default"))) void FMExternCallProc(FMX_ExternCallPtr message);

// Makes what is needed once the functions are registered: the error object.
void Do_Init();

// Does nothing: the host's button for preferences, of which there are none.
void Do_Config();

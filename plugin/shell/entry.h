#pragma once

#include "plugin/support/host_interface.h"

// The plug-in's only exported symbol: the host calls it for every message. A failure of the host's own during
// start-up or shut-down leaves it as std::bad_alloc or std::exception.
extern "C" __attribute__((visibility("default"))) void FMExternCallProc(FMX_ExternCallPtr message);

// What start-up makes once the functions are registered: the error object.
void Do_Init();

// The host's preferences button: there are none.
void Do_Config();

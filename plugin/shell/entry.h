#pragma once

#include "plugin/support/host_interface.h"

// Handles a message of the host. This is the plug-in's only exported symbol. A failure of the host during
// start-up or shut-down leaves it as std::bad_alloc or std::exception.
extern "C" __attribute__((visibility("default"))) void FMExternCallProc(FMX_ExternCallPtr message);

// Makes the error object, once the functions are registered.
void Do_Init();

// Called for the host's preferences button. Does nothing, as there are no preferences.
void Do_Config();

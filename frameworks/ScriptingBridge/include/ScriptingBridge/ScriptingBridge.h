#pragma once

// The Scripting Bridge: controls the address book application, which on Linux is a program on the D-Bus
// session bus.

#import <ScriptingBridge/SBApplication.h>
#import <ScriptingBridge/SBElementArray.h>
#import <ScriptingBridge/SBObject.h>

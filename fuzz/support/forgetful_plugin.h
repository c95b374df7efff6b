#pragma once

// Makes the plug-in, and the address book of this process, as they were when they were loaded: all that is open and
// unsaved is forgotten. Exported by a plug-in that is made for fuzzing alone, which is otherwise the one that users get.
extern "C" __attribute__((visibility("default"))) void forgetEverything();

// The plug-in with one more function: the one that registers the script to start when another process changes
// the address book, which the plug-in has but does not register. The linker makes this wrap the plug-in's own
// registration (--wrap).

#include "plugin/shell/handlers.h"

void realRegisterFunctions() __asm__("__real__ZN4koru17registerFunctionsEv");
void wrappedRegisterFunctions() __asm__("__wrap__ZN4koru17registerFunctionsEv");

void wrappedRegisterFunctions() {
    realRegisterFunctions();
    const koru::OwnedQuadChar plugin('K', 'O', 'R', 'U');
    koru::OwnedText name;
    koru::OwnedText prototype;
    name->Assign("KORU_RegisterUpdateScript");
    prototype->Assign("KORU_RegisterUpdateScript( file ; script )");
    fmx::ExprEnv::RegisterExternalFunction(*plugin, 44, *name, *prototype, 2, 2, 0xFF01,
                                           Do_KORU_RegisterUpdateScript);
}

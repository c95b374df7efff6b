/* The call structure by a table of its own, for a compiler of C: the place of each field with pointers of 64
   bits and on a Mac with pointers of 32 bits. */
#include "FMWrapper/FMXExtern.h"

#ifdef __LP64__
#define PLACE(field, wide, narrow)                                                                           \
    _Static_assert(offsetof(struct FMX_ExternCallStruct, field) == (wide), "the place of " #field);
#define SIZE(wide, narrow) _Static_assert(sizeof(struct FMX_ExternCallStruct) == (wide), "the size");
#else
#define PLACE(field, wide, narrow)                                                                           \
    _Static_assert(offsetof(struct FMX_ExternCallStruct, field) == (narrow), "the place of " #field);
#define SIZE(wide, narrow) _Static_assert(sizeof(struct FMX_ExternCallStruct) == (narrow), "the size");
#endif

PLACE(extnVersion, 0, 0)
PLACE(resourceID, 2, 2)
PLACE(unusedID, 2, 2)
PLACE(entryPoint, 6, 4)
PLACE(cfmCalls, 14, 8)
PLACE(whichCall, 15, 9)
PLACE(unsafeCalls, 16, 10)
PLACE(parm1, 17, 11)
PLACE(parm2, 18, 12)
PLACE(parm3, 26, 16)
PLACE(instanceID, 34, 20)
PLACE(result, 42, 24)
PLACE(unused, 50, 28)
PLACE(cStartScript, 58, 72)
PLACE(cCurrentEnv, 66, 76)
SIZE(74, 80)

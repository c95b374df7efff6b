#pragma once

/* The plug-in interface as a host or a plug-in of others has it: written out by hand, by offsets and
 * signatures, without a header of this project. What stands here must not be changed to make a test pass.
 *
 * Own to these tests: the call structure below, byte by byte, and the signatures of the library's functions.
 * Not own: the functions themselves. They are those of libFMWrapper.so, found by their names: an interface
 * that others make has the same names there.
 */

#include <stdint.h>
#include <string.h>

/* Bytes of the call structure on 64-bit Linux. Nothing in it is aligned. */
enum {
    kVersion = 0,      /* int16: the host's interface version */
    kUnusedId = 2,     /* int32: -1 */
    kEntryPoint = 6,   /* pointer */
    kCfmCalls = 14,    /* char: 0 */
    kMessage = 15,     /* uint8 */
    kUnsafeCalls = 16, /* char */
    kParm1 = 17,       /* uint8 */
    kParm2 = 18,       /* pointer-sized */
    kParm3 = 26,       /* pointer-sized */
    kInstance = 34,    /* pointer-sized */
    kResult = 42,      /* pointer-sized */
    kUnused = 50,      /* pointer-sized */
    kStartScript = 58, /* pointer */
    kCurrentEnv = 66,  /* pointer */
    kStructureSize = 74
};

enum {
    kInit = 0,
    kIdle = 1,
    kShutdown = 4,
    kPreferences = 5,
    kGetString = 7,
    kSessionShutdown = 8,
    kFileShutdown = 9
};
enum { kNameString = 128, kHelpString = 129, kOptionsString = 131, kHelpAddressString = 132 };

static inline int16_t read16(const void* from, int offset) {
    int16_t value;
    memcpy(&value, (const char*)from + offset, sizeof value);
    return value;
}
static inline int32_t read32(const void* from, int offset) {
    int32_t value;
    memcpy(&value, (const char*)from + offset, sizeof value);
    return value;
}
static inline uintptr_t readWord(const void* from, int offset) {
    uintptr_t value;
    memcpy(&value, (const char*)from + offset, sizeof value);
    return value;
}
static inline uint8_t readByte(const void* from, int offset) {
    return ((const uint8_t*)from)[offset];
}
static inline void write16(void* to, int offset, int16_t value) {
    memcpy((char*)to + offset, &value, sizeof value);
}
static inline void write32(void* to, int offset, int32_t value) {
    memcpy((char*)to + offset, &value, sizeof value);
}
static inline void writeWord(void* to, int offset, uintptr_t value) {
    memcpy((char*)to + offset, &value, sizeof value);
}
static inline void writeByte(void* to, int offset, uint8_t value) {
    ((uint8_t*)to)[offset] = value;
}

/* The exception block that each function of the library takes as its last argument. */
typedef struct {
    int32_t version; /* 1 */
    int32_t code;    /* 0 when nothing went wrong */
} Block;

/* The code behind a function or a script step; answers an error code. */
typedef int16_t (*Handler)(int16_t id, const void* environment, const void* arguments, void* result);

typedef int16_t (*StartScript)(const void* file, const void* script, uint8_t control, const void* parameter);
typedef int16_t (*CurrentEnv)(void* environment);

enum { kUtf8 = 1, kSystemLocale = 1, kText = 1, kNumber = 2, kContainer = 6 };

/* The functions of the library that are used here: result, name, arguments. */
#define LIBRARY_FUNCTIONS(X)                                                                                 \
    X(void*, FM_QuadChar_Constructor2, (char, char, char, char, Block*))                                     \
    X(uint32_t, FM_QuadChar_GetMacType, (const void*, Block*))                                               \
    X(void, FM_QuadChar_Delete, (void*, Block*))                                                             \
    X(void*, FM_Locale_Constructor1, (int32_t, Block*))                                                      \
    X(void*, FM_Text_Constructor1, (Block*))                                                                 \
    X(void, FM_Text_Delete, (void*, Block*))                                                                 \
    X(void, FM_Text_Assign, (void*, const char*, int32_t, Block*))                                           \
    X(uint32_t, FM_Text_GetSize, (const void*, Block*))                                                      \
    X(void, FM_Text_GetBytes, (const void*, char*, uint32_t, uint32_t, uint32_t, int32_t, Block*))           \
    X(void*, FM_FixPt_Constructor1, (int32_t, int32_t, Block*))                                              \
    X(void, FM_FixPt_Delete, (void*, Block*))                                                                \
    X(int32_t, FM_FixPt_AsLong, (const void*, Block*))                                                       \
    X(void*, FM_Data_Constructor1, (Block*))                                                                 \
    X(void, FM_Data_Delete, (void*, Block*))                                                                 \
    X(int32_t, FM_Data_GetNativeType, (const void*, Block*))                                                 \
    X(const void*, FM_Data_GetAsText, (const void*, Block*))                                                 \
    X(int16_t, FM_Data_SetAsText, (void*, const void*, const void*, int32_t, Block*))                        \
    X(void, FM_Data_SetAsNumber, (void*, const void*, int32_t, Block*))                                      \
    X(void*, FM_DataVect_Constructor1, (Block*))                                                             \
    X(void, FM_DataVect_Delete, (void*, Block*))                                                             \
    X(void, FM_DataVect_PushBack, (void*, const void*, Block*))                                              \
    X(uint32_t, FM_DataVect_Size, (const void*, Block*))                                                     \
    X(const void*, FM_DataVect_At, (const void*, uint32_t, Block*))                                          \
    X(const void*, FM_DataVect_AtAsText, (const void*, uint32_t, Block*))                                    \
    X(const void*, FM_DataVect_AtAsNumber, (const void*, uint32_t, Block*))                                  \
    X(void*, FM_ExprEnv_Constructor1, (Block*))                                                              \
    X(void, FM_ExprEnv_Delete, (void*, Block*))                                                              \
    X(int16_t, FM_ExprEnv_Evaluate, (const void*, const void*, void*, Block*))                               \
    X(int16_t, FM_ExprEnv_RegisterExternalFunction,                                                          \
      (const void*, int16_t, const void*, const void*, int16_t, int16_t, uint32_t, Handler, Block*))         \
    X(int16_t, FM_ExprEnv_RegisterExternalFunctionEx,                                                        \
      (const void*, int16_t, const void*, const void*, const void*, int16_t, int16_t, uint32_t, Handler,     \
       Block*))                                                                                              \
    X(int16_t, FM_ExprEnv_UnRegisterExternalFunction, (const void*, int16_t, Block*))                        \
    X(int16_t, FM_ExprEnv_RegisterScriptStep,                                                                \
      (const void*, int16_t, const void*, const void*, const void*, uint32_t, Handler, Block*))              \
    X(int16_t, FM_ExprEnv_UnRegisterScriptStep, (const void*, int16_t, Block*))

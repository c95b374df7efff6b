#pragma once

/// The plain types of the host's plug-in interface, the messages that the host sends to a plug-in, and the
/// structure that carries them.
///
/// A plug-in exports `FMExternCallProc(FMX_ExternCallPtr)` and defines `gFMX_ExternCallPtr`, in which it
/// keeps the structure of the current message: `FMX_StartScript` and `FMX_SetToCurrentEnv` call the host by
/// way of it. This header is for C and C++.

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus

namespace fmx {

typedef uint8_t uchar;
typedef int16_t int16;
typedef uint16_t uint16;
typedef int32_t int32;
typedef uint32_t uint32;
typedef int64_t int64;
typedef uint64_t uint64;
/// An unsigned number as wide as a pointer.
typedef uintptr_t ptrtype;
/// The host's result of an operation: 0 when it succeeded.
typedef int16 errcode;
/// One unit of UTF-16; `unichar` is its older name.
typedef uint16 unichar16;
typedef uint16 unichar;

class BinaryData;
class CharacterStyle;
class Color;
class Data;
class DataVect;
class DateTime;
class ExprEnv;
class FixPt;
class Locale;
class QuadChar;
class RowVect;
class Text;

} // namespace fmx

typedef fmx::Text FMX_Text;
typedef fmx::Data FMX_Data;
typedef fmx::ExprEnv FMX_ExprEnv;

#else

typedef struct FMX_Text FMX_Text;
typedef struct FMX_Data FMX_Data;
typedef struct FMX_ExprEnv FMX_ExprEnv;

#endif

/// The messages (`whichCall`).
enum {
    /// Start-up; `parm1` is the application, `parm2` points to its version text, `result` receives the
    /// plug-in's interface version, or a refusal.
    kFMXT_Init = 0,
    /// Idle time; `parm1` is the idle level, `parm2` the session.
    kFMXT_Idle = 1,
    /// Shut-down.
    kFMXT_Shutdown = 4,
    /// The button of the preferences dialog was clicked.
    kFMXT_DoAppPreferences = 5,
    /// The host asks for a string: `parm1` says which, `parm2` is the language, `parm3` the capacity, in
    /// UTF-16 units, of the buffer to which `result` points.
    kFMXT_GetString = 7,
    /// A session ends; `parm2` says which.
    kFMXT_SessionShutdown = 8,
    /// A file is closed; `parm2` is the session, `parm3` the file.
    kFMXT_FileShutdown = 9,
    /// The schema of a file has changed.
    kFMXT_SchemaChange = 10
};

/// The applications that start a plug-in (`parm1` of `kFMXT_Init`).
enum {
    kFMXT_Developer = 0,
    kFMXT_Pro = 1,
    kFMXT_Runtime = 2,
    kFMXT_Server = 3,
    kFMXT_Web = 4,
    kFMXT_Mobile = 5,
    kFMXT_XDBC = 6,
    /// The scripts of a server.
    kFMXT_SASE = 7,
    kFMXT_IWP = 8,
    kFMXT_FMDAPI = 9,
    kFMXT_OData = 11,
    kFMXT_Tool = 99
};

/// The idle levels (`parm1` of `kFMXT_Idle`).
enum {
    kFMXT_UserIdle = 0,
    kFMXT_UserNotIdle = 1,
    kFMXT_ScriptPaused = 2,
    kFMXT_ScriptRunning = 3,
    kFMXT_Unsafe = 4
};

/// The strings that the host asks for (`parm1` of `kFMXT_GetString`).
enum {
    kFMXT_NameStr = 128,
    kFMXT_AppConfigStr = 129,
    kFMXT_OptionsStr = 131,
    /// The address of a help page; asked for from interface version 57 on.
    kFMXT_HelpURLStr = 132
};

/// The versions of this interface, and the two results by which a plug-in refuses to start.
enum {
    kBadExtnVersion = -1,
    kDoNotEnable = -2,
    kMinExtnVersion = 4,
    k40ExtnVersion = 11,
    k41ExtnVersion = 12,
    k50ExtnVersion = 14,
    k60ExtnVersion = 17,
    k70ExtnVersion = 50,
    k80ExtnVersion = 51,
    k110ExtnVersion = 52,
    /// The first version with 64-bit plug-ins.
    k120ExtnVersion = 53,
    k130ExtnVersion = 54,
    k140ExtnVersion = 55,
    k150ExtnVersion = 56,
    k160ExtnVersion = 57,
    k170ExtnVersion = 59,
    k180ExtnVersion = 60,
    k190ExtnVersion = 62,
    k191ExtnVersion = 63,
    k192ExtnVersion = 64,
    k193ExtnVersion = 65,
    k194ExtnVersion = 66,
    k195ExtnVersion = 67,
    k196ExtnVersion = 68,
    k201ExtnVersion = 71,
    k202ExtnVersion = 72,
    k203ExtnVersion = 73,
    k210ExtnVersion = 74,
    k211ExtnVersion = 75,
    k220ExtnVersion = 76,
    k221ExtnVersion = 77,
    kMaxExtnVersion = 255
};

/// What happens to a running script when a plug-in starts one (`control` of `FMX_StartScript`).
enum { kFMXT_Halt = 0, kFMXT_Exit = 1, kFMXT_Resume = 2, kFMXT_Pause = 3 };

#ifdef __cplusplus
extern "C" {
#endif

/// Starts a script, given by the names of its file and of itself, with a parameter; returns an error code.
typedef int16_t (*FMX_StartScriptCall)(const FMX_Text* fileName, const FMX_Text* scriptName, uint8_t control,
                                       const FMX_Data* parameter);
/// Sets an environment to that of the current calculation; returns an error code.
typedef int16_t (*FMX_CurrentEnvCall)(FMX_ExprEnv* env);

struct FMX_ExternCallStruct;
typedef struct FMX_ExternCallStruct* FMX_ExternCallPtr;

// The old call-backs of 32-bit Mac applications stand between the fields that all systems have.
#if defined(__APPLE__) && !defined(__LP64__) && !defined(__ENVIRONMENT_IPHONE_OS_VERSION_MIN_REQUIRED__)
#define FMX_OLD_CALL_BACKS 10
#else
#define FMX_OLD_CALL_BACKS 0
#endif

#ifdef __LP64__
typedef int32_t FMX_UnusedID;
#else
typedef int16_t FMX_UnusedID;
#endif

#pragma pack(push, 1)
/// A message to the plug-in. The structure has no padding, so that most fields are not aligned.
struct FMX_ExternCallStruct {
    /// The host's version of this interface.
    int16_t extnVersion;
    /// Not used any more; always -1. `resourceID` is its older name.
    union {
        FMX_UnusedID resourceID;
        FMX_UnusedID unusedID;
    };
    /// The plug-in's entry point.
    void (*entryPoint)(FMX_ExternCallPtr);
    char cfmCalls;
    /// The message.
    uint8_t whichCall;
    char unsafeCalls;
    uint8_t parm1;
    uintptr_t parm2;
    uintptr_t parm3;
    /// The plug-in's own bundle: a `CFBundleRef` on macOS, the handle of the loaded library or 0 elsewhere.
    uintptr_t instanceID;
    /// The result of the message, or the address of the buffer for it.
    uintptr_t result;
    uintptr_t unused;
#if FMX_OLD_CALL_BACKS
    void (*oldCallBacks[FMX_OLD_CALL_BACKS])(void);
#endif
    FMX_StartScriptCall cStartScript;
    FMX_CurrentEnvCall cCurrentEnv;
};
#pragma pack(pop)

/// The current message; every plug-in defines it.
extern FMX_ExternCallPtr gFMX_ExternCallPtr;

#ifdef __cplusplus
} // extern "C"
#endif

#define FMX_StartScript(file, script, control, parameter)                                                    \
    gFMX_ExternCallPtr->cStartScript(file, script, control, parameter)
#define FMX_SetToCurrentEnv(env) gFMX_ExternCallPtr->cCurrentEnv(env)

// Hosts and plug-ins that others built expect each field at one place: with pointers of 64 bits, and of 32.
#ifdef __cplusplus
#define FMX_ASSERT(condition, message) static_assert(condition, message)
#else
#define FMX_ASSERT(condition, message) _Static_assert(condition, message)
#endif
#ifdef __LP64__
#define FMX_ASSERT_OFFSET(field, bytes64, bytes32)                                                           \
    FMX_ASSERT(offsetof(struct FMX_ExternCallStruct, field) == (bytes64), "the place of " #field)
#else
#define FMX_ASSERT_OFFSET(field, bytes64, bytes32)                                                           \
    FMX_ASSERT(offsetof(struct FMX_ExternCallStruct, field) == (bytes32), "the place of " #field)
#endif
FMX_ASSERT_OFFSET(extnVersion, 0, 0);
FMX_ASSERT_OFFSET(resourceID, 2, 2);
FMX_ASSERT_OFFSET(unusedID, 2, 2);
FMX_ASSERT_OFFSET(entryPoint, 6, 4);
FMX_ASSERT_OFFSET(cfmCalls, 14, 8);
FMX_ASSERT_OFFSET(whichCall, 15, 9);
FMX_ASSERT_OFFSET(unsafeCalls, 16, 10);
FMX_ASSERT_OFFSET(parm1, 17, 11);
FMX_ASSERT_OFFSET(parm2, 18, 12);
FMX_ASSERT_OFFSET(parm3, 26, 16);
FMX_ASSERT_OFFSET(instanceID, 34, 20);
FMX_ASSERT_OFFSET(result, 42, 24);
FMX_ASSERT_OFFSET(unused, 50, 28);
FMX_ASSERT_OFFSET(cStartScript, 58, 32 + 4 * FMX_OLD_CALL_BACKS);
FMX_ASSERT_OFFSET(cCurrentEnv, 66, 36 + 4 * FMX_OLD_CALL_BACKS);
#ifdef __LP64__
FMX_ASSERT(sizeof(struct FMX_ExternCallStruct) == 74, "the structure has no padding");
#else
FMX_ASSERT(sizeof(struct FMX_ExternCallStruct) == 40 + 4 * FMX_OLD_CALL_BACKS,
           "the structure has no padding");
#endif
#undef FMX_ASSERT_OFFSET
#undef FMX_ASSERT
#undef FMX_OLD_CALL_BACKS
